// The legacy numeric entries on raw buffers: empty sources, the translated
// result codes, the text entry's own codes and the unchecked byte forms.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "kescomn.h"
#include "support/context.h"

namespace {

CS_BYTE *bytes(void *p) { return static_cast<CS_BYTE *>(p); }

CS_INT from_text(std::string t, CS_BYTE *dest, int p, int s)
{
    return com_mb_chartonum(bytes(t.data()), static_cast<CS_INT>(t.size()), dest, 35, p, s, nullptr);
}

// Results are the length written, 0 for an empty source, or the context
// codes translated (overflow -1, domain -6, precision -7, scale -8) except
// the numeric copy's truncation, which passes untranslated.
TEST(NumLegacy, LengthsAndTranslatedCodes)
{
    CS_NUMERIC n{}, big{}, to{};
    ASSERT_EQ(from_text("-12.5", bytes(&n), 5, 1), 35);
    ASSERT_EQ(from_text("99999999999", bytes(&big), 11, 0), 35);
    CS_BYTE out[8] = {}, *src = bytes(&n), *dest = bytes(&to);
    EXPECT_EQ(com_numtoi4(nullptr, 35, out, 4), 0);
    EXPECT_EQ(com_numtoi4(src, 0, out, 4), 0);
    EXPECT_EQ(com_numtoi1(src, 35, out, 1), -1); // below 0
    EXPECT_EQ(com_numtoi4(bytes(&big), 35, out, 4), -1);
    EXPECT_EQ(com_numtoflt8(src, 35, out, 8), 8);
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 4, 0), CS_TRUNCATED);
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 78, 0), -7);
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 5, 78), -8);
    EXPECT_EQ(com_numtonum(src, 35, dest, 35, 6, 2), comn_num_getlen(6) + 2);
    CS_INT seven = 7;
    EXPECT_EQ(com_i4tonum(bytes(&seven), 4, dest, 35, 2, 2), -1);
    EXPECT_EQ(com_i4tonum(bytes(&seven), 4, dest, 35, 3, 2), 35);
    EXPECT_EQ(com_numtoi4(src, 35, out, 4), 4);
    CS_INT i4;
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
        EXPECT_EQ(from_text(c.text, bytes(&n), c.p, c.s), c.result) << c.text << " " << c.p << "," << c.s;
    EXPECT_EQ(from_text(std::string(1024, '1'), bytes(&n), 5, 0), CS_ESYNTAX); // beyond the scratch
    // A zero length prefix returns 0; otherwise srclen bytes are read.
    CS_BYTE vary[8] = {0, 0, '4', '2', ' ', ' '};
    EXPECT_EQ(com_mb_varychartonum(vary, 4, bytes(&n), 35, 5, 0, nullptr), 0);
    vary[0] = 2;
    EXPECT_EQ(com_mb_varychartonum(vary, 4, bytes(&n), 35, 5, 0, nullptr), 35);
    EXPECT_EQ(n.array[comn_num_getlen(5) - 1], 42);
}

TEST(NumLegacy, UncheckedBytes)
{
    CS_NUMERIC n;
    std::memset(&n, 0xEE, sizeof n);
    CS_BYTE src[40], *dest = bytes(&n);
    for (int i = 0; i < 40; ++i)
        src[i] = static_cast<CS_BYTE>(i + 1);
    EXPECT_EQ(com_bintonum(src, 3, dest, 35, 99, 88), 35); // shape not validated
    EXPECT_EQ(n.precision, 99);
    EXPECT_EQ(n.scale, 88);
    EXPECT_EQ(kes::test::hex(n.array, 5), "0102030000");
    EXPECT_EQ(com_bintonum(src, 40, dest, 35, 5, 0), 35); // cut to 33 bytes
    EXPECT_EQ(n.array[32], 33);
    CS_BYTE vary[6] = {2, 0, 9, 8, 7, 6};
    EXPECT_EQ(com_varybintonum(vary, 6, dest, 35, 5, 0), 35);
    EXPECT_EQ(kes::test::hex(n.array, 3), "090800");
    vary[0] = 0;
    EXPECT_EQ(com_varybintonum(vary, 6, dest, 35, 5, 0), 0);
}

} // namespace
