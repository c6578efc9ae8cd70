// The fill routines every text and byte result ends in.
#include <string>
#include <vector>

#include "conv/fill.h"
#include "support/context.h"

namespace {

using namespace std::string_literals;
using kes::test::code_name;
using kes::test::constant;
using kes::test::fmt;
using kes::test::hex;
constexpr CS_INT kNul = CS_FMT_NULLTERM, kPadNul = CS_FMT_PADNULL, kBlank = CS_FMT_PADBLANK;

// The text already stands in a buffer of '~'; bytes are the first maxlength
// bytes afterwards.
TEST(Fill, PadCharTable)
{
    struct Case { std::string value; CS_INT maxlength, format; CS_RETCODE code; std::string bytes; CS_INT destlen; };
    const Case cases[] = {
        {"ab", 4, 0, CS_SUCCEED, "ab~~", 2},
        {"ab", 4, kNul, CS_SUCCEED, "ab\0~"s, 3}, // the terminator counts
        {"ab", 4, kPadNul, CS_SUCCEED, "ab\0\0"s, 4},
        {"ab", 4, kPadNul | kNul, CS_SUCCEED, "ab\0\0"s, 4},
        {"ab", 4, kBlank, CS_SUCCEED, "ab  ", 4},
        {"ab", 4, kBlank | kNul, CS_SUCCEED, "ab \0"s, 4}, // the NUL inside the length
        {"ab", 4, kBlank | kPadNul, CS_EFORMAT, "ab~~", 2},
        {"ab", 2, kNul, CS_EOVERFLOW, "a\0"s, 2}, // exact fit: no room for the NUL
        {"ab", 2, kBlank, CS_SUCCEED, "ab", 2},
        {"abc", 2, 0, CS_EOVERFLOW, "ab", 3},
        {"abc", 2, kNul, CS_EOVERFLOW, "a\0"s, 3},
        {"a", 0, kNul, CS_EOVERFLOW, "", 1},
        {"", 1, kNul, CS_SUCCEED, "\0"s, 1},
        {"", 0, kNul, CS_EOVERFLOW, "", 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << '"' << c.value << "\" maxlength " << c.maxlength << " format " << c.format);
        std::string buf = c.value.substr(0, static_cast<size_t>(c.maxlength)) + std::string(16, '~');
        const CS_INT srclen = static_cast<CS_INT>(c.value.size());
        CS_INT destlen = srclen;
        CS_DATAFMT df = fmt(CS_CHAR_TYPE, c.maxlength, c.format);
        EXPECT_EQ(code_name(comn__padchar(srclen, &df, buf.data(), &destlen)), code_name(c.code));
        EXPECT_EQ(buf.substr(0, static_cast<size_t>(c.maxlength) + 1), c.bytes + "~") << "wrote past the capacity";
        EXPECT_EQ(destlen, c.destlen);
    }
}

// The same rules counted in 16-bit units; maxlength and lengths are bytes.
TEST(Fill, PadUnicharWorksInCodeUnits)
{
    struct Case { std::vector<CS_UNICHAR> in; CS_INT srclen, maxlength, format; CS_RETCODE code;
                  std::vector<CS_UNICHAR> out; CS_INT destlen; };
    const CS_UNICHAR t = 0x7e7e;
    const Case cases[] = {
        {{'A', t, t, t}, 2, 6, kBlank | kNul, CS_SUCCEED, {'A', ' ', 0, t}, 6},
        {{'A', 'B', t}, 4, 4, kNul, CS_EOVERFLOW, {'A', 0, t}, 4}, // the terminator replaces the last unit
        {{'A', t, t}, 2, 6, kNul, CS_SUCCEED, {'A', 0, t}, 4},
    };
    for (const Case &c : cases) {
        std::vector<CS_UNICHAR> buf = c.in;
        CS_INT destlen = c.srclen;
        CS_DATAFMT df = fmt(CS_UNICHAR_TYPE, c.maxlength, c.format);
        EXPECT_EQ(code_name(comn__padunichar(c.srclen, &df, buf.data(), &destlen)), code_name(c.code));
        EXPECT_EQ(buf, c.out);
        EXPECT_EQ(destlen, c.destlen);
    }
}

// The context layer's byte fill honours only the NUL fill and checks no
// format; the server's fills blanks too.
TEST(Fill, ByteFills)
{
    CS_BYTE buf[6] = {1, 2, 0xee, 0xee, 0xee, 0xee};
    CS_INT destlen = 2;
    CS_DATAFMT df = fmt(CS_BINARY_TYPE, 5, kBlank | kNul);
    EXPECT_EQ(comn__padbin(2, &df, buf, &destlen), CS_SUCCEED);
    EXPECT_EQ(hex(buf, 6), "0102eeeeeeee");
    EXPECT_EQ(destlen, 2);
    df = fmt(CS_BINARY_TYPE, 5, kBlank | kPadNul);
    EXPECT_EQ(comn__padbin(2, &df, buf, &destlen), CS_SUCCEED);
    EXPECT_EQ(hex(buf, 6), "0102000000ee");
    EXPECT_EQ(destlen, 5);
    CAST_CONTEXT cc{};
    cc.format = kBlank;
    __CONSTANT dest = constant(buf, 1, 4);
    EXPECT_EQ(comnb__padbin(&cc, &dest), CS_SUCCEED);
    EXPECT_EQ(hex(buf, 5), "0120202000");
    EXPECT_EQ(dest.len, 4);
}

TEST(Fill, ServerPadChar)
{
    struct Case { std::string value; CS_INT maxlen, format; CS_RETCODE code; std::string bytes; CS_INT len; };
    const Case cases[] = {
        {"ab", 4, kNul, CS_SUCCEED, "ab\0~"s, 3},
        {"ab", 2, kNul, CS_EOVERFLOW, "ab", 2}, // no terminator written
        {"ab", 4, kBlank, CS_SUCCEED, "ab  ", 4},
        {"ab", 4, kPadNul | kBlank, CS_EFORMAT, "ab~~", 2},
        {"ab", 4, kBlank | CS_FMT_JUSTIFY_RT | kNul, CS_EFORMAT, "ab~~", 2},
        // Right-justified: the blanks go in front of text the caller placed at the end.
        {"~~ab", 4, kBlank | CS_FMT_JUSTIFY_RT, CS_SUCCEED, "  ab", 4},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.value << " maxlen " << c.maxlen << " format " << c.format);
        std::string buf = c.value + std::string(8, '~');
        CAST_CONTEXT cc{};
        cc.format = c.format;
        const CS_INT len = (c.format & CS_FMT_JUSTIFY_RT) ? 2 : static_cast<CS_INT>(c.value.size());
        __CONSTANT dest = constant(reinterpret_cast<CS_BYTE *>(buf.data()), len, c.maxlen);
        EXPECT_EQ(code_name(comnb__padchar(&cc, &dest)), code_name(c.code));
        EXPECT_EQ(buf.substr(0, c.bytes.size()), c.bytes);
        EXPECT_EQ(dest.len, c.len);
    }
}

TEST(Fill, FixedToVarbinCapsTheLengthAt256)
{
    CS_BYTE src[300];
    for (int i = 0; i < 300; i++)
        src[i] = static_cast<CS_BYTE>(i);
    CS_VARBINARY vb{};
    CS_INT destlen = 0;
    CS_DATAFMT df = fmt(CS_VARBINARY_TYPE, 258);
    EXPECT_EQ(comn_fixedtovarbin(nullptr, nullptr, src, &df, &vb, &destlen, 300), CS_EOVERFLOW);
    EXPECT_EQ(vb.len, 256);
    EXPECT_EQ(vb.array[255], 255);
    EXPECT_EQ(destlen, 258);
    EXPECT_EQ(comn_fixedtovarbin(nullptr, nullptr, src, &df, &vb, &destlen, 255), CS_SUCCEED);
    EXPECT_EQ(vb.len, 255);
}

} // namespace
