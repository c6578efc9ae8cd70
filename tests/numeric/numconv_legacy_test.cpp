// The legacy numeric entries on raw buffers and the fills and byte movers
// they end in: empty sources, the translated result codes, capacities around
// the value's length, the unbounded destlen of each form, and what is left in
// the bytes a member must not touch (0xee).
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "conv/legacy_fill.h"
#include "kescomn.h"
#include "support/context.h"

namespace {

using kes::test::hex;

constexpr CS_BYTE kUntouched = 0xee;

CS_BYTE *B(void *p) { return static_cast<CS_BYTE *>(p); }

CS_INT from_text(std::string t, CS_NUMERIC &dest, int p, int s)
{
    return com_mb_chartonum(B(t.data()), static_cast<CS_INT>(t.size()), B(&dest), 35, p, s, nullptr);
}

CS_NUMERIC numeric(const char *text, int p, int s)
{
    CS_NUMERIC n{};
    EXPECT_EQ(from_text(text, n, p, s), 35);
    return n;
}

// Results are the length written, 0 for an empty source, or the context
// codes translated (overflow -1, domain -6, precision -7, scale -8) except
// the numeric copy's truncation, which passes untranslated.
TEST(NumLegacy, LengthsAndTranslatedCodes)
{
    CS_NUMERIC n = numeric("-12.5", 5, 1), big = numeric("99999999999", 11, 0), to{};
    CS_BYTE out[8] = {}, *src = B(&n), *dest = B(&to);
    EXPECT_EQ(com_numtoi4(nullptr, 35, out, 4), 0);
    EXPECT_EQ(com_numtoi4(src, 0, out, 4), 0);
    EXPECT_EQ(com_numtoi1(src, 35, out, 1), -1); // below 0
    EXPECT_EQ(com_numtoi4(B(&big), 35, out, 4), -1);
    EXPECT_EQ(com_numtoflt8(src, 35, out, 8), 8);
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 4, 0), CS_TRUNCATED);
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 78, 0), -7);
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 5, 78), -8);
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 6, 2), comn_num_getlen(6) + 2);
    CS_INT seven = 7, i4;
    EXPECT_EQ(com_i4tonum(B(&seven), 4, dest, 35, 2, 2), -1);
    EXPECT_EQ(com_i4tonum(B(&seven), 4, dest, 35, 3, 2), 35);
    EXPECT_EQ(com_numtoi4(src, 35, out, 4), 4);
    std::memcpy(&i4, out, 4);
    EXPECT_EQ(i4, -12);
    n.precision = 0;
    EXPECT_EQ(com_numtoi4(src, 35, out, 4), -6);
}

TEST(NumLegacy, TextEntryCodesAndVaryPrefix)
{
    CS_NUMERIC n{};
    // Unlike the other entries, the text entry returns the context codes of
    // shape errors untranslated.
    const struct { const char *text; int p, s; CS_INT result; } cases[] = {
        {"12.55", 5, 1, -1}, {"123456", 5, 0, -1}, {"1x", 5, 0, -3}, {"1", 0, 0, CS_EPRECISION},
        {"1", 78, 0, CS_EPRECISION}, {"1", 5, -1, CS_ESCALE}, {"1", 5, 78, CS_ESCALE}};
    for (const auto &c : cases)
        EXPECT_EQ(from_text(c.text, n, c.p, c.s), c.result) << c.text << " " << c.p << "," << c.s;
    EXPECT_EQ(from_text(std::string(1024, '1'), n, 5, 0), CS_ESYNTAX); // beyond the scratch
    // A zero length prefix returns 0; otherwise srclen bytes are read.
    CS_BYTE vary[8] = {0, 0, '4', '2', ' ', ' '};
    EXPECT_EQ(com_mb_varychartonum(vary, 4, B(&n), 35, 5, 0, nullptr), 0);
    vary[0] = 2;
    EXPECT_EQ(com_mb_varychartonum(vary, 4, B(&n), 35, 5, 0, nullptr), 35);
    EXPECT_EQ(n.array[comn_num_getlen(5) - 1], 42);
}

TEST(NumLegacy, UncheckedBytes)
{
    CS_NUMERIC n;
    std::memset(&n, kUntouched, sizeof n);
    CS_BYTE src[40];
    for (int i = 0; i < 40; ++i)
        src[i] = static_cast<CS_BYTE>(i + 1);
    EXPECT_EQ(com_bintonum(src, 3, B(&n), 35, 99, 88), 35); // shape not validated
    EXPECT_EQ(n.precision, 99);
    EXPECT_EQ(n.scale, 88);
    EXPECT_EQ(hex(n.array, 5), "0102030000");
    EXPECT_EQ(com_bintonum(src, 40, B(&n), 35, 5, 0), 35); // cut to 33 bytes
    EXPECT_EQ(n.array[32], 33);
    CS_BYTE vary[6] = {2, 0, 9, 8, 7, 6};
    EXPECT_EQ(com_varybintonum(vary, 6, B(&n), 35, 5, 0), 35);
    EXPECT_EQ(hex(n.array, 3), "090800");
    vary[0] = 0;
    EXPECT_EQ(com_varybintonum(vary, 6, B(&n), 35, 5, 0), 0);
}

TEST(LegacyFill, PadCharAndString)
{
    const struct { bool string; CS_INT destlen, len; const char *want; } cases[] = {
        {false, 5, 2, "6162202020ee"}, {false, 2, 2, "6162eeeeeeee"}, {false, 1, 2, "6162eeeeeeee"},
        {false, -1, 2, "6162eeeeeeee"}, {false, 0, 0, "6162eeeeeeee"}, {false, 1, 0, "2062eeeeeeee"},
        {true, 5, 2, "6162202000ee"}, {true, 3, 2, "616200eeeeee"}, {true, 2, 2, "6100eeeeeeee"},
        {true, 1, 0, "0062eeeeeeee"}, {true, 0, 2, "616200eeeeee"}, {true, -1, 2, "616200eeeeee"},
    };
    for (const auto &c : cases) {
        CS_BYTE buf[6] = {'a', 'b', kUntouched, kUntouched, kUntouched, kUntouched};
        (c.string ? com__padstring : com__padchar)(buf, c.destlen, c.len);
        EXPECT_EQ(hex(buf, sizeof buf), c.want) << c.string << " destlen " << c.destlen << " len " << c.len;
    }
}

TEST(LegacyFill, PadNtbstringKeepsOneCharacter)
{
    const struct { const char *text; CS_INT len, kept; } cases[] = {
        {"ab  ", 4, 2}, {"ab", 2, 2}, {"   ", 3, 1}, {" a ", 3, 2},
        {"a", 1, 1},    {"", 0, 0},   {"a b", 3, 3}, {"ab  ", 3, 2}};
    for (const auto &c : cases) {
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
    const struct { bool vary; CS_INT srclen, destlen, result; const char *want; } cases[] = {
        {false, 3, -1, 3, "616263eeee"}, {false, 3, 0, 3, "616263eeee"}, {false, 3, 3, 3, "616263eeee"},
        {false, 3, 5, 3, "6162630000"}, {false, 3, 2, -1, "6162eeeeee"}, {false, 3, 1, -1, "61eeeeeeee"},
        {false, 0, 5, 0, "eeeeeeeeee"}, {false, -2, 5, 0, "eeeeeeeeee"},
        {true, 3, -1, 3, "0300616263"}, {true, 3, 3, 3, "0300616263"}, {true, 3, 4, 3, "0300616263"},
        {true, 3, 2, -1, "02006162ee"}, {true, 3, 0, -1, "0000eeeeee"}, {true, 0, 4, 0, "eeeeeeeeee"},
    };
    for (const auto &c : cases) {
        CS_BYTE src[] = {'a', 'b', 'c'}, buf[5];
        std::memset(buf, kUntouched, sizeof buf);
        const auto f = c.vary ? com_anytovarybin : com_anytobinary;
        EXPECT_EQ(f(src, c.srclen, buf, c.destlen), c.result) << c.vary << " destlen " << c.destlen;
        EXPECT_EQ(hex(buf, sizeof buf), c.want) << c.vary << " destlen " << c.destlen;
        EXPECT_EQ(f(nullptr, 3, buf, c.destlen), 0);
    }
    // The record holds CS_MAX_CHAR bytes whatever an unbounded destlen says.
    CS_BYTE big[300] = {}, rec[sizeof(CS_VARBINARY)];
    EXPECT_EQ(com_anytovarybin(big, 300, rec, -1), -1);
    EXPECT_EQ(hex(rec, 2), "0001");
}

using Member = CS_INT (*)(CS_BYTE *, CS_INT, CS_BYTE *, CS_INT);

TEST(LegacyNumText, FormsAtEachCapacity)
{
    const std::string v = hex("-12.5", 5), cut = hex("-12.", 4), none(18, 'e');
    const struct { Member f; const char *name; CS_INT destlen, result; std::string want; } cases[] = {
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
    for (const auto &c : cases) {
        CS_BYTE buf[9];
        std::memset(buf, kUntouched, sizeof buf);
        EXPECT_EQ(c.f(B(&n), 35, buf, c.destlen), c.result) << c.name << ' ' << c.destlen;
        EXPECT_EQ(hex(buf, sizeof buf), c.want) << c.name << ' ' << c.destlen;
    }
}

TEST(LegacyNumText, EmptySourceAndBadRecord)
{
    CS_NUMERIC n = numeric("7", 1, 0), bad = n;
    CS_BYTE buf[40];
    for (Member f : {com_numtochar, com_numtostring, com_numtontbstring, com_numtovarychar, com_numtobin,
                     com_numtovarybin}) {
        std::memset(buf, kUntouched, sizeof buf);
        EXPECT_EQ(f(nullptr, 35, buf, 40), 0);
        EXPECT_EQ(f(B(&n), 0, buf, 40), 0);
        EXPECT_EQ(hex(buf, 3), "eeeeee");
    }
    bad.precision = 0;
    for (Member f : {com_numtochar, com_numtostring, com_numtontbstring})
        EXPECT_EQ(f(B(&bad), 35, buf, 40), -6);
    EXPECT_EQ(com_numtovarychar(B(&bad), 35, buf, 40), -6);
    EXPECT_EQ(hex(buf, 2), "0100");
    EXPECT_EQ(com_numtobin(B(&bad), 35, buf, 33), 33); // bytes are not validated
}

TEST(LegacyNumBytes, ArrayThroughTheMovers)
{
    CS_NUMERIC n = numeric("-12.5", 5, 1);
    const std::string array = hex(n.array, 33);
    ASSERT_EQ(array.substr(0, 8), "0100007d"); // sign, then 125 in three bytes
    CS_BYTE buf[36];
    std::memset(buf, kUntouched, sizeof buf);
    EXPECT_EQ(com_numtobin(B(&n), 35, buf, 35), 33);
    EXPECT_EQ(hex(buf, 36), array + "0000ee");
    std::memset(buf, kUntouched, sizeof buf);
    EXPECT_EQ(com_numtobin(B(&n), 35, buf, 10), -1);
    EXPECT_EQ(hex(buf, 11), array.substr(0, 20) + "ee");
    std::memset(buf, kUntouched, sizeof buf);
    EXPECT_EQ(com_numtovarybin(B(&n), 35, buf, 33), 33);
    EXPECT_EQ(hex(buf, 36), "2100" + array + "ee");
    EXPECT_EQ(com_numtovarybin(B(&n), 35, buf, 32), -1);
    EXPECT_EQ(hex(buf, 2), "2000");
}

TEST(LegacyNumNull, PrecisionScaleAndZeroRecord)
{
    const struct { CS_INT precision, scale, result; } cases[] = {
        {0, 0, -7}, {78, 0, -7}, {-1, 0, -7}, {1, -1, -8}, {77, 78, -8}, {1, 0, 35}, {77, 77, 35}, {78, 78, -7}};
    for (const auto &c : cases) {
        CS_NUMERIC out;
        std::memset(&out, kUntouched, sizeof out);
        EXPECT_EQ(com_setnumnull(B(&out), 35, nullptr, 0, c.precision, c.scale), c.result)
            << c.precision << ',' << c.scale;
        if (c.result == 35)
            EXPECT_EQ(hex(&out, 35), hex(&c.precision, 1) + hex(&c.scale, 1) + std::string(66, '0'));
        else
            EXPECT_EQ(out.precision, kUntouched);
    }
    // With a source it is the numeric copy.
    CS_NUMERIC v = numeric("1.5", 3, 1), out{}, direct{};
    EXPECT_EQ(com_setnumnull(B(&out), 35, B(&v), 35, 4, 2), 5);
    EXPECT_EQ(com_numtonum(B(&v), 35, B(&direct), 35, 4, 2), 5);
    EXPECT_EQ(hex(&out, 35), hex(&direct, 35));
    EXPECT_EQ(com_setnumnull(B(&out), 35, B(&v), 35, 2, 2), -1);
    EXPECT_EQ(com_setnumnull(B(&out), 35, B(&v), 0, 9, 9), 35);
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
