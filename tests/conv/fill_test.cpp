// The fill routines every text and byte result ends in.
#include <string>

#include "conv/fill.h"
#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::constant;
using kes::test::fmt;

// Text of srclen bytes already in a buffer of '~'; what the fill leaves.
struct PadCase {
    const char *value;
    CS_INT maxlength;
    CS_INT format;
    CS_RETCODE code;
    std::string bytes; // the first maxlength bytes afterwards
    CS_INT destlen;
};

TEST(Fill, PadCharTable)
{
    using namespace std::string_literals;
    const PadCase cases[] = {
        {"ab", 4, 0, CS_SUCCEED, "ab~~"s, 2},
        {"ab", 4, CS_FMT_NULLTERM, CS_SUCCEED, "ab\0~"s, 3},       // terminator counted
        {"ab", 4, CS_FMT_PADNULL, CS_SUCCEED, "ab\0\0"s, 4},
        {"ab", 4, CS_FMT_PADNULL | CS_FMT_NULLTERM, CS_SUCCEED, "ab\0\0"s, 4},
        {"ab", 4, CS_FMT_PADBLANK, CS_SUCCEED, "ab  "s, 4},
        {"ab", 4, CS_FMT_PADBLANK | CS_FMT_NULLTERM, CS_SUCCEED, "ab \0"s, 4}, // NUL inside the length
        {"ab", 4, CS_FMT_PADBLANK | CS_FMT_PADNULL, CS_EFORMAT, "ab~~"s, 2},
        {"ab", 2, CS_FMT_NULLTERM, CS_EOVERFLOW, "a\0"s, 2},         // exact: no room for the NUL
        {"ab", 2, 0, CS_SUCCEED, "ab"s, 2},
        {"ab", 2, CS_FMT_PADBLANK, CS_SUCCEED, "ab"s, 2},
        {"abc", 2, 0, CS_EOVERFLOW, "ab"s, 3},
        {"abc", 2, CS_FMT_NULLTERM, CS_EOVERFLOW, "a\0"s, 3},
        {"a", 0, CS_FMT_NULLTERM, CS_EOVERFLOW, ""s, 1},
        {"", 0, 0, CS_SUCCEED, ""s, 0},
        {"", 1, CS_FMT_NULLTERM, CS_SUCCEED, "\0"s, 1},
        {"", 0, CS_FMT_NULLTERM, CS_EOVERFLOW, ""s, 0},
        {"", 2, CS_FMT_NULLTERM, CS_SUCCEED, "\0~"s, 1},
    };
    for (const PadCase &c : cases) {
        char buf[16];
        std::memset(buf, '~', sizeof buf);
        const CS_INT srclen = static_cast<CS_INT>(std::strlen(c.value));
        std::memcpy(buf, c.value, std::min<size_t>(static_cast<size_t>(srclen), static_cast<size_t>(c.maxlength)));
        CS_INT destlen = srclen;
        CS_DATAFMT df = fmt(CS_CHAR_TYPE, c.maxlength, c.format);
        SCOPED_TRACE(testing::Message() << '"' << c.value << "\" maxlength " << c.maxlength << " format " << c.format);
        EXPECT_EQ(code_name(comn__padchar(srclen, &df, buf, &destlen)), code_name(c.code));
        EXPECT_EQ(std::string(buf, static_cast<size_t>(c.maxlength)), c.bytes);
        EXPECT_EQ(buf[c.maxlength], '~') << "wrote past the capacity";
        EXPECT_EQ(destlen, c.destlen);
    }
}

TEST(Fill, PadUnicharWorksInCodeUnits)
{
    // "A" as one 16-bit unit, capacity of three units.
    CS_UNICHAR buf[4] = {'A', 0x7e7e, 0x7e7e, 0x7e7e};
    CS_INT destlen = 2;
    CS_DATAFMT df = fmt(CS_UNICHAR_TYPE, 6, CS_FMT_PADBLANK | CS_FMT_NULLTERM);
    EXPECT_EQ(comn__padunichar(2, &df, buf, &destlen), CS_SUCCEED);
    EXPECT_EQ(buf[1], ' ');
    EXPECT_EQ(buf[2], 0);
    EXPECT_EQ(buf[3], 0x7e7e);
    EXPECT_EQ(destlen, 6);

    CS_UNICHAR two[2] = {'A', 'B'};
    destlen = 4;
    df = fmt(CS_UNICHAR_TYPE, 4, CS_FMT_NULLTERM);
    EXPECT_EQ(comn__padunichar(4, &df, two, &destlen), CS_EOVERFLOW);
    EXPECT_EQ(two[0], 'A');
    EXPECT_EQ(two[1], 0); // the terminator replaces the last unit
    EXPECT_EQ(destlen, 4);

    CS_UNICHAR one[3] = {'A', 0x7e7e, 0x7e7e};
    destlen = 2;
    df = fmt(CS_UNICHAR_TYPE, 6, CS_FMT_NULLTERM);
    EXPECT_EQ(comn__padunichar(2, &df, one, &destlen), CS_SUCCEED);
    EXPECT_EQ(one[1], 0);
    EXPECT_EQ(destlen, 4);
}

TEST(Fill, PadBinHonoursOnlyTheNulFill)
{
    CS_BYTE buf[6] = {1, 2, 0xee, 0xee, 0xee, 0xee};
    CS_INT destlen = 2;
    CS_DATAFMT df = fmt(CS_BINARY_TYPE, 5, CS_FMT_PADBLANK | CS_FMT_NULLTERM);
    EXPECT_EQ(comn__padbin(2, &df, buf, &destlen), CS_SUCCEED);
    EXPECT_EQ(destlen, 2);
    EXPECT_EQ(buf[2], 0xee);
    df = fmt(CS_BINARY_TYPE, 5, CS_FMT_PADBLANK | CS_FMT_PADNULL); // no format check for bytes
    EXPECT_EQ(comn__padbin(2, &df, buf, &destlen), CS_SUCCEED);
    EXPECT_EQ(kes::test::hex(buf, 6), "0102000000ee");
    EXPECT_EQ(destlen, 5);
}

TEST(Fill, ServerPadChar)
{
    struct Case {
        const char *value;
        CS_INT maxlen;
        CS_INT format;
        CS_RETCODE code;
        std::string bytes;
        CS_INT len;
    };
    using namespace std::string_literals;
    const Case cases[] = {
        {"ab", 4, CS_FMT_NULLTERM, CS_SUCCEED, "ab\0~"s, 3},
        {"ab", 2, CS_FMT_NULLTERM, CS_EOVERFLOW, "ab"s, 2}, // no terminator written
        {"ab", 4, CS_FMT_PADBLANK, CS_SUCCEED, "ab  "s, 4},
        {"ab", 4, CS_FMT_PADNULL | CS_FMT_PADBLANK, CS_EFORMAT, "ab~~"s, 2},
        {"ab", 4, CS_FMT_PADBLANK | CS_FMT_JUSTIFY_RT | CS_FMT_NULLTERM, CS_EFORMAT, "ab~~"s, 2},
        // Right-justified: the blanks go in front of text the caller placed at the end.
        {"~~ab", 4, CS_FMT_PADBLANK | CS_FMT_JUSTIFY_RT, CS_SUCCEED, "  ab"s, 4},
    };
    for (const Case &c : cases) {
        CS_BYTE buf[8];
        std::memset(buf, '~', sizeof buf);
        std::memcpy(buf, c.value, std::strlen(c.value));
        CAST_CONTEXT cc{};
        cc.format = c.format;
        const bool right = (c.format & CS_FMT_JUSTIFY_RT) != 0;
        __CONSTANT dest = constant(buf, right ? 2 : static_cast<CS_INT>(std::strlen(c.value)), c.maxlen);
        SCOPED_TRACE(testing::Message() << c.value << " maxlen " << c.maxlen << " format " << c.format);
        EXPECT_EQ(code_name(comnb__padchar(&cc, &dest)), code_name(c.code));
        EXPECT_EQ(std::string(reinterpret_cast<char *>(buf), c.bytes.size()), c.bytes);
        EXPECT_EQ(dest.len, c.len);
    }
}

TEST(Fill, ServerPadBinFillsBlanksToo)
{
    CS_BYTE buf[4] = {7, 0xee, 0xee, 0xee};
    CAST_CONTEXT cc{};
    cc.format = CS_FMT_PADBLANK;
    __CONSTANT dest = constant(buf, 1, 4);
    EXPECT_EQ(comnb__padbin(&cc, &dest), CS_SUCCEED);
    EXPECT_EQ(kes::test::hex(buf, 4), "07202020");
    EXPECT_EQ(dest.len, 4);
}

TEST(Fill, FixedToVarbinCapsTheLength)
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
