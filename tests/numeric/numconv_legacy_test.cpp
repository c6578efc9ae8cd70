// The legacy numeric entries on raw buffers: empty sources, the translated
// result codes, the unchecked byte forms and the text entry's own codes.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "kescomn.h"
#include "support/context.h"

namespace {

CS_NUMERIC from_text(const char *text, int p, int s)
{
    CS_NUMERIC n{};
    std::string t = text;
    EXPECT_EQ(com_mb_chartonum(reinterpret_cast<CS_BYTE *>(t.data()), static_cast<CS_INT>(t.size()),
                               reinterpret_cast<CS_BYTE *>(&n), 35, p, s, nullptr),
              35)
        << text;
    return n;
}

TEST(NumLegacy, ResultsAndTranslatedCodes)
{
    CS_NUMERIC n = from_text("-12.5", 5, 1);
    auto *src = reinterpret_cast<CS_BYTE *>(&n);
    CS_BYTE out[8] = {};
    EXPECT_EQ(com_numtoi4(nullptr, 35, out, 4), 0);
    EXPECT_EQ(com_numtoi4(src, 0, out, 4), 0);
    EXPECT_EQ(com_numtoi4(src, 35, out, 4), 4);
    CS_INT i4;
    std::memcpy(&i4, out, 4);
    EXPECT_EQ(i4, -12);
    EXPECT_EQ(com_numtoi1(src, 35, out, 1), -1); // below 0: overflow
    CS_NUMERIC big = from_text("99999999999", 11, 0);
    EXPECT_EQ(com_numtoi4(reinterpret_cast<CS_BYTE *>(&big), 35, out, 4), -1);
    EXPECT_EQ(com_numtoflt8(src, 35, out, 8), 8);
    CS_NUMERIC bad = n;
    bad.precision = 0;
    EXPECT_EQ(com_numtoi4(reinterpret_cast<CS_BYTE *>(&bad), 35, out, 4), -6);

    CS_NUMERIC to{};
    auto *dest = reinterpret_cast<CS_BYTE *>(&to);
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 4, 0), CS_TRUNCATED); // passes untranslated
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 78, 0), -7);
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 5, 78), -8);
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 6, 2), comn_num_getlen(6) + 2);
    CS_INT seven = 7;
    EXPECT_EQ(com_i4tonum(reinterpret_cast<CS_BYTE *>(&seven), 4, dest, 35, 3, 2), 35);
    EXPECT_EQ(com_i4tonum(reinterpret_cast<CS_BYTE *>(&seven), 4, dest, 35, 2, 2), -1);
    CS_MONEY m{0, 12350};
    EXPECT_EQ(com_moneytonum(reinterpret_cast<CS_BYTE *>(&m), 8, dest, 35, 5, 2), 35);
    CS_FLOAT f = 0.125;
    EXPECT_EQ(com_flt8tonum(reinterpret_cast<CS_BYTE *>(&f), 8, dest, 35, 5, 3), 35);
}

TEST(NumLegacy, TextEntryCodes)
{
    CS_NUMERIC n{};
    auto *dest = reinterpret_cast<CS_BYTE *>(&n);
    struct Case {
        const char *text;
        int p, s;
        CS_INT result;
    } const cases[] = {
        {"12.5", 5, 1, 35},  {"12.55", 5, 1, -1}, {"123456", 5, 0, -1}, {"1x", 5, 0, -3},
        {"1", 0, 0, CS_EPRECISION}, {"1", 78, 0, CS_EPRECISION}, {"1", 5, -1, CS_ESCALE}, {"1", 5, 78, CS_ESCALE},
    };
    for (const auto &c : cases) {
        std::string t = c.text;
        EXPECT_EQ(com_mb_chartonum(reinterpret_cast<CS_BYTE *>(t.data()), static_cast<CS_INT>(t.size()), dest, 35,
                                   c.p, c.s, nullptr),
                  c.result)
            << c.text;
    }
    std::string huge(1024, '1');
    EXPECT_EQ(com_mb_chartonum(reinterpret_cast<CS_BYTE *>(huge.data()), 1024, dest, 35, 5, 0, nullptr), CS_ESYNTAX);
    // The vary form: a zero prefix returns 0; otherwise srclen bytes are read.
    CS_BYTE vary[8] = {0, 0, '4', '2', ' ', ' '};
    EXPECT_EQ(com_mb_varychartonum(vary, 4, dest, 35, 5, 0, nullptr), 0);
    vary[0] = 2;
    EXPECT_EQ(com_mb_varychartonum(vary, 4, dest, 35, 5, 0, nullptr), 35);
    EXPECT_EQ(n.array[comn_num_getlen(5) - 1], 42);
}

TEST(NumLegacy, BytesAndNulls)
{
    CS_NUMERIC n;
    std::memset(&n, 0xEE, sizeof n);
    auto *dest = reinterpret_cast<CS_BYTE *>(&n);
    CS_BYTE bytes[40];
    for (int i = 0; i < 40; ++i)
        bytes[i] = static_cast<CS_BYTE>(i + 1);
    EXPECT_EQ(com_bintonum(bytes, 3, dest, 35, 99, 88), 35); // no validation
    EXPECT_EQ(n.precision, 99);
    EXPECT_EQ(n.scale, 88);
    EXPECT_EQ(kes::test::hex(n.array, 5), "0102030000");
    EXPECT_EQ(com_bintonum(bytes, 40, dest, 35, 5, 0), 35);
    EXPECT_EQ(n.array[32], 33);
    CS_BYTE vary[6] = {2, 0, 9, 8, 7, 6};
    EXPECT_EQ(com_varybintonum(vary, 6, dest, 35, 5, 0), 35);
    EXPECT_EQ(kes::test::hex(n.array, 3), "090800");
    vary[0] = 0;
    EXPECT_EQ(com_varybintonum(vary, 6, dest, 35, 5, 0), 0);

    EXPECT_EQ(com_setnumnull(dest, 35, nullptr, 0, 0, 0), -7);
    EXPECT_EQ(com_setnumnull(dest, 35, nullptr, 0, 5, 78), -8);
    EXPECT_EQ(com_setnumnull(dest, 35, nullptr, 0, 7, 2), 35);
    EXPECT_EQ(n.precision, 7);
    EXPECT_EQ(kes::test::hex(n.array, 33), std::string(66, '0'));
    CS_NUMERIC v = from_text("1.5", 3, 1);
    EXPECT_EQ(com_setnumnull(dest, 35, reinterpret_cast<CS_BYTE *>(&v), 35, 4, 2), 5);
}

} // namespace
