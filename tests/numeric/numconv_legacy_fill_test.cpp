// The raw-buffer fills and byte movers, and the numeric members that end in
// them: capacities around the value's length, the unbounded destlen of each
// form, and what is left in the bytes the member must not touch (0xee).
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "conv/legacy_fill.h"
#include "kescomn.h"
#include "support/context.h"

namespace {

using kes::test::hex;

constexpr CS_BYTE kUntouched = 0xee;

TEST(LegacyFill, PadCharAndString)
{
    struct Case { bool string; CS_INT destlen, len; const char *want; };
    const Case cases[] = {
        {false, 5, 2, "6162202020ee"}, {false, 2, 2, "6162eeeeeeee"}, {false, 1, 2, "6162eeeeeeee"},
        {false, -1, 2, "6162eeeeeeee"}, {false, 0, 0, "6162eeeeeeee"}, {false, 1, 0, "2062eeeeeeee"},
        {true, 5, 2, "6162202000ee"}, {true, 3, 2, "616200eeeeee"}, {true, 2, 2, "6100eeeeeeee"},
        {true, 1, 0, "0062eeeeeeee"}, {true, 0, 2, "616200eeeeee"}, {true, -1, 2, "616200eeeeee"},
    };
    for (const Case &c : cases) {
        CS_BYTE buf[6] = {'a', 'b', kUntouched, kUntouched, kUntouched, kUntouched};
        (c.string ? com__padstring : com__padchar)(buf, c.destlen, c.len);
        EXPECT_EQ(hex(buf, sizeof buf), c.want) << c.string << " destlen " << c.destlen << " len " << c.len;
    }
}

TEST(LegacyFill, PadNtbstringKeepsOneCharacter)
{
    struct Case { const char *text; CS_INT len, kept; };
    const Case cases[] = {{"ab  ", 4, 2}, {"ab", 2, 2}, {"   ", 3, 1}, {" a ", 3, 2}, {"a", 1, 1}, {"", 0, 0},
                          {"a b", 3, 3}, {"ab  ", 3, 2}};
    for (const Case &c : cases) {
        CS_BYTE buf[8];
        std::memset(buf, kUntouched, sizeof buf);
        std::memcpy(buf, c.text, std::strlen(c.text));
        EXPECT_EQ(com__padntbstring(buf, c.len), c.kept) << '"' << c.text << '"';
        EXPECT_EQ(buf[c.kept], 0) << c.text;
        EXPECT_EQ(buf[c.len + 1], c.len + 1 < static_cast<CS_INT>(std::strlen(c.text)) ? ' ' : kUntouched);
    }
}

TEST(LegacyFill, ByteMovers)
{
    struct Case { bool vary; CS_INT srclen, destlen, result; const char *want; };
    const Case cases[] = {
        {false, 3, -1, 3, "616263eeee"}, {false, 3, 0, 3, "616263eeee"}, {false, 3, 3, 3, "616263eeee"},
        {false, 3, 5, 3, "6162630000"}, {false, 3, 2, -1, "6162eeeeee"}, {false, 3, 1, -1, "61eeeeeeee"},
        {false, 0, 5, 0, "eeeeeeeeee"}, {false, -2, 5, 0, "eeeeeeeeee"},
        {true, 3, -1, 3, "0300616263"}, {true, 3, 3, 3, "0300616263"}, {true, 3, 4, 3, "0300616263"},
        {true, 3, 2, -1, "02006162ee"}, {true, 3, 0, -1, "0000eeeeee"}, {true, 0, 4, 0, "eeeeeeeeee"},
    };
    for (const Case &c : cases) {
        CS_BYTE src[] = {'a', 'b', 'c'};
        CS_BYTE buf[5];
        std::memset(buf, kUntouched, sizeof buf);
        EXPECT_EQ((c.vary ? com_anytovarybin : com_anytobinary)(src, c.srclen, buf, c.destlen), c.result)
            << c.vary << " destlen " << c.destlen;
        EXPECT_EQ(hex(buf, sizeof buf), c.want) << c.vary << " destlen " << c.destlen;
        EXPECT_EQ((c.vary ? com_anytovarybin : com_anytobinary)(nullptr, 3, buf, c.destlen), 0);
    }
    // The record holds CS_MAX_CHAR bytes whatever an unbounded destlen says.
    CS_BYTE big[300] = {}, rec[sizeof(CS_VARBINARY)];
    EXPECT_EQ(com_anytovarybin(big, 300, rec, -1), -1);
    EXPECT_EQ(hex(rec, 2), "0001");
}

CS_NUMERIC numeric(const char *text, int p, int s)
{
    CS_NUMERIC n{};
    std::string t = text;
    EXPECT_EQ(com_mb_chartonum(reinterpret_cast<CS_BYTE *>(t.data()), static_cast<CS_INT>(t.size()),
                               reinterpret_cast<CS_BYTE *>(&n), 35, p, s, nullptr),
              35);
    return n;
}

using Member = CS_INT (*)(CS_BYTE *, CS_INT, CS_BYTE *, CS_INT);

TEST(LegacyNumText, FormsAtEachCapacity)
{
    struct Case { Member f; const char *name; CS_INT destlen, result; std::string want; };
    const std::string v = hex("-12.5", 5), cut = hex("-12.", 4), none(18, 'e');
    const Case cases[] = {
        {com_numtochar, "char", 8, 5, v + "202020ee"},       {com_numtochar, "char", 5, 5, v + "eeeeeeee"},
        {com_numtochar, "char", -1, 5, v + "eeeeeeee"},      {com_numtochar, "char", 4, -1, cut + "eeeeeeeeee"},
        {com_numtochar, "char", 0, -1, none},                {com_numtostring, "string", 8, 5, v + "202000ee"},
        {com_numtostring, "string", 6, 5, v + "00eeeeee"},   {com_numtostring, "string", 5, 5, cut + "00eeeeeeee"},
        {com_numtostring, "string", 0, 5, v + "00eeeeee"},   {com_numtostring, "string", 4, -1, cut + "eeeeeeeeee"},
        {com_numtostring, "string", -1, -1, none},           {com_numtontbstring, "ntb", 8, 5, v + "00eeeeee"},
        {com_numtontbstring, "ntb", 6, 5, v + "00eeeeee"},   {com_numtontbstring, "ntb", 5, -1, v + "eeeeeeee"},
        {com_numtontbstring, "ntb", 0, 5, v + "00eeeeee"},   {com_numtovarychar, "vary", 5, 5, "0500" + v + "eeee"},
        {com_numtovarychar, "vary", -1, 5, "0500" + v + "eeee"},
        {com_numtovarychar, "vary", 4, -1, "0100" + cut + "eeeeee"},
        {com_numtovarychar, "vary", 0, -1, "0100" + none.substr(4)},
    };
    CS_NUMERIC n = numeric("-12.5", 5, 1);
    for (const Case &c : cases) {
        CS_BYTE buf[9];
        std::memset(buf, kUntouched, sizeof buf);
        EXPECT_EQ(c.f(reinterpret_cast<CS_BYTE *>(&n), 35, buf, c.destlen), c.result) << c.name << ' ' << c.destlen;
        EXPECT_EQ(hex(buf, sizeof buf), c.want) << c.name << ' ' << c.destlen;
    }
}

TEST(LegacyNumText, EmptySourceAndBadRecord)
{
    const Member members[] = {com_numtochar, com_numtostring, com_numtontbstring, com_numtovarychar,
                              com_numtobin, com_numtovarybin};
    CS_NUMERIC n = numeric("7", 1, 0);
    for (Member f : members) {
        CS_BYTE buf[40];
        std::memset(buf, kUntouched, sizeof buf);
        EXPECT_EQ(f(nullptr, 35, buf, 40), 0);
        EXPECT_EQ(f(reinterpret_cast<CS_BYTE *>(&n), 0, buf, 40), 0);
        EXPECT_EQ(hex(buf, 3), "eeeeee");
    }
    CS_NUMERIC bad = n;
    bad.precision = 0;
    CS_BYTE buf[40];
    for (Member f : {com_numtochar, com_numtostring, com_numtontbstring})
        EXPECT_EQ(f(reinterpret_cast<CS_BYTE *>(&bad), 35, buf, 40), -6);
    EXPECT_EQ(com_numtovarychar(reinterpret_cast<CS_BYTE *>(&bad), 35, buf, 40), -6);
    EXPECT_EQ(hex(buf, 2), "0100");
    EXPECT_EQ(com_numtobin(reinterpret_cast<CS_BYTE *>(&bad), 35, buf, 33), 33); // bytes are not validated
}

TEST(LegacyNumBytes, ArrayThroughTheMovers)
{
    CS_NUMERIC n = numeric("-12.5", 5, 1);
    auto *src = reinterpret_cast<CS_BYTE *>(&n);
    const std::string array = hex(n.array, 33);
    ASSERT_EQ(array.substr(0, 8), "0100007d"); // sign, then 125 in three bytes
    CS_BYTE buf[36];
    std::memset(buf, kUntouched, sizeof buf);
    EXPECT_EQ(com_numtobin(src, 35, buf, 35), 33);
    EXPECT_EQ(hex(buf, 36), array + "0000ee");
    std::memset(buf, kUntouched, sizeof buf);
    EXPECT_EQ(com_numtobin(src, 35, buf, 10), -1);
    EXPECT_EQ(hex(buf, 11), array.substr(0, 20) + "ee");
    std::memset(buf, kUntouched, sizeof buf);
    EXPECT_EQ(com_numtovarybin(src, 35, buf, 33), 33);
    EXPECT_EQ(hex(buf, 36), "2100" + array + "ee");
    EXPECT_EQ(com_numtovarybin(src, 35, buf, 32), -1);
    EXPECT_EQ(hex(buf, 2), "2000");
}

TEST(LegacyNumNull, PrecisionScaleAndZeroRecord)
{
    struct Case { CS_INT precision, scale, result; };
    const Case cases[] = {{0, 0, -7}, {78, 0, -7}, {-1, 0, -7}, {1, -1, -8}, {77, 78, -8},
                          {1, 0, 35}, {77, 77, 35}, {78, 78, -7}};
    for (const Case &c : cases) {
        CS_NUMERIC out;
        std::memset(&out, kUntouched, sizeof out);
        EXPECT_EQ(com_setnumnull(reinterpret_cast<CS_BYTE *>(&out), 35, nullptr, 0, c.precision, c.scale), c.result)
            << c.precision << ',' << c.scale;
        if (c.result == 35)
            EXPECT_EQ(hex(&out, 35), hex(&c.precision, 1) + hex(&c.scale, 1) + std::string(66, '0'));
        else
            EXPECT_EQ(out.precision, kUntouched);
    }
    CS_NUMERIC v = numeric("1.5", 3, 1), out{};
    EXPECT_EQ(com_setnumnull(reinterpret_cast<CS_BYTE *>(&out), 35, reinterpret_cast<CS_BYTE *>(&v), 35, 4, 2), 5);
    CS_NUMERIC direct{};
    EXPECT_EQ(com_numtonum(reinterpret_cast<CS_BYTE *>(&v), 35, reinterpret_cast<CS_BYTE *>(&direct), 35, 4, 2), 5);
    EXPECT_EQ(hex(&out, 35), hex(&direct, 35));
    EXPECT_EQ(com_setnumnull(reinterpret_cast<CS_BYTE *>(&out), 35, reinterpret_cast<CS_BYTE *>(&v), 35, 2, 2), -1);
    EXPECT_EQ(com_setnumnull(reinterpret_cast<CS_BYTE *>(&out), 35, reinterpret_cast<CS_BYTE *>(&v), 0, 9, 9), 35);
    EXPECT_EQ(out.precision, 9);
}

TEST(LegacyFillDeath, NullDestination)
{
    EXPECT_NULL_POINTER(com__padchar(nullptr, 3, 0));
    EXPECT_NULL_POINTER(com__padntbstring(nullptr, 1));
    CS_BYTE src[1] = {1};
    EXPECT_NULL_POINTER(com_anytobinary(src, 1, nullptr, 1));
}

} // namespace
