// The kernel operations on __CONSTANT values at the boundaries where byte
// arithmetic goes wrong: carries out of the top, lengths that differ,
// all-255 magnitudes, zeros of either sign, the division work area.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "numeric/exctnume.h"
#include "numeric/limbs.h"
#include "support/context.h"

namespace {

using kes::test::hex;

void unhex(const std::string &h, CS_BYTE *out)
{
    for (size_t i = 0; i < h.size() / 2; ++i)
        out[i] = static_cast<CS_BYTE>(std::stoi(h.substr(2 * i, 2), nullptr, 16));
}

// A value over its own buffer, from hex bytes (sign byte first).
struct Val {
    CS_BYTE buf[80]{};
    __CONSTANT c{};

    explicit Val(const std::string &bytes, int prec = 77, int scale = 0)
    {
        unhex(bytes, buf);
        c.len = c.maxlen = static_cast<CS_INT>(bytes.size() / 2);
        c.prec = static_cast<CS_BYTE>(prec);
        c.scale = static_cast<CS_BYTE>(scale);
        c.value = buf;
    }
    __CONSTANT *p() { return &c; }
    static std::string zeros(int len) { return std::string(2 * static_cast<size_t>(len), '0'); }
    std::string str() const { return hex(c.value, static_cast<size_t>(c.len)); }
};

TEST(ExctnumeCmp, SignsZerosLengthsScalesAndTheSmallTests)
{
    struct Case { const char *a; int sa; const char *b; int sb, flag, want; } cases[] = {
        {"0100", 0, "0000", 0, 3, 0},     // negative zero equals zero
        {"0105", 0, "0103", 0, 3, -1},    // both negative: reversed
        {"0105", 0, "0003", 0, 0, 1},     // flag 0: magnitudes only
        {"00000005", 0, "0005", 0, 0, 0}, // lengths differ
        {"00010000", 0, "00ff", 0, 0, 1}, // a non-zero excess byte decides
        {"000a", 1, "0001", 0, 2, 0},     // 1.0 == 1
        {"000b", 1, "0001", 0, 0, 1},     // without bit 2 the scales are ignored
    };
    for (const Case &k : cases) {
        Val a(k.a, 10, k.sa), b(k.b, 10, k.sb);
        EXPECT_EQ(com__exctnume_cmp(&a.c, &b.c, k.flag), k.want) << k.a << " " << k.b << " flag " << k.flag;
    }
    // intcmp ignores the sign; needsbyte holds only for an all-ones magnitude.
    EXPECT_EQ(com__exctnume_intcmp(Val("010001").p(), 1), 1);
    EXPECT_EQ(com__exctnume_intcmp(Val("000101").p(), 1), 0);
    EXPECT_EQ(com__exctnume_needsbyte(Val("01ffff").p()), 1);
    EXPECT_EQ(com__exctnume_needsbyte(Val("00fffe").p()), 0);
}

TEST(ExctnumeCopyScale, RightAlignedLostBytesAndStatuses)
{
    Val in("0200001234"), out("ffffffffffffff"), shorter("ffffff"), wide("0000011234"), two("ffff");
    EXPECT_EQ(com__exctnume_copy(&in.c, &out.c), 0);
    EXPECT_EQ(out.str(), "01000000001234"); // high bytes cleared, sign as 1
    EXPECT_EQ(com__exctnume_copy(&in.c, &shorter.c), 0);
    EXPECT_EQ(shorter.str(), "011234");
    EXPECT_EQ(com__exctnume_copy(&wide.c, &two.c), 1); // 0x01 would be lost
    EXPECT_EQ(two.str(), "0034");

    struct Case { int shift, st; const char *out; } cases[] = {
        {2, 0, "0000300c"}, {-1, 6, "0000000c"}, {-3, 6, "00000000"}, {0, 0, "0000007b"},
        {78, 2, nullptr},   {-78, 2, nullptr}};
    for (const Case &k : cases) {
        Val v("00007b", 5), o(Val::zeros(4), 7);
        EXPECT_EQ(com__exctnume_scale(&v.c, &o.c, k.shift, 0), k.st) << k.shift;
        if (k.out) {
            EXPECT_EQ(o.str(), k.out) << k.shift;
        }
    }
    Val tiny("00007b", 5), neg("01000a", 5);
    EXPECT_EQ(com__exctnume_scale(&tiny.c, nullptr, 3, 0), 1); // 123000 needs three bytes
    EXPECT_EQ(com__exctnume_scale(&neg.c, nullptr, -1, 0), 0);
    EXPECT_EQ(neg.str(), "010001");
    EXPECT_EQ(neg.c.scale, 0); // never written
}

TEST(ExctnumeDivby10, RemaindersAndTheLeadingByteRule)
{
    // out: from the returned pointer.  Length 2 is never shortened; length 3
    // is, unless the last byte is 255.
    struct Case { const char *in; int rem; const char *out; } cases[] = {
        {"0000ff", 5, "0019"}, {"000100", 6, "0019"}, {"0000", 0, "0000"},  {"00010000", 6, "001999"},
        {"0009f5", 9, "00fe"}, {"0009ff", 9, "0000ff"},
    };
    for (const Case &k : cases) {
        Val v(k.in);
        CS_BYTE *p = v.buf;
        int len = v.c.len;
        EXPECT_EQ(com__exctnume_divby10(&p, &len), k.rem) << k.in;
        EXPECT_EQ(hex(p, static_cast<size_t>(len)), k.out) << k.in;
    }
    Val full("001999");
    EXPECT_EQ(com__exctnume_mulby10_add(&full.c, 5), 0);
    EXPECT_EQ(full.str(), "00ffff");
    EXPECT_EQ(com__exctnume_mulby10_add(&full.c, 0), 1); // carry out of the top
}

TEST(ExctnumeIncDec, SignsCarriesAndEmptyValues)
{
    struct Case { const char *in; bool inc; int st; const char *out; } cases[] = {
        {"0000ff", true, 0, "000100"},  {"00ffff", true, 1, "000000"},  {"010001", true, 0, "000000"},
        {"010000", true, 0, "000001"},  {"000000", false, 0, "010001"}, {"01ffff", false, 1, "010000"},
        {"010000", false, 0, "010001"}, {"000001", false, 0, "000000"},
    };
    for (const Case &k : cases) {
        Val v(k.in);
        EXPECT_EQ(k.inc ? com__exctnume_inc(&v.c) : com__exctnume_dec(&v.c), k.st) << k.in << " " << k.inc;
        EXPECT_EQ(v.str(), k.out) << k.in << " " << k.inc;
    }
    Val empty("");
    EXPECT_EQ(com__exctnume_inc(&empty.c), 2);
    EXPECT_EQ(com__exctnume_dec(&empty.c), 2);
}

TEST(ExctnumeIntAddSub, ResultLengthsAndLimbCarries)
{
    Val a("00ffff"), b("000001"), longer("ffffffffff"), same("ffffff");
    EXPECT_EQ(com__exctnume_intadd(&a.c, &b.c, &longer.c), 0);
    EXPECT_EQ(hex(longer.c.value + 1, 4), "00010000");
    EXPECT_EQ(com__exctnume_intadd(&a.c, &b.c, &same.c), 1);
    Val e("000100"), f("0000ff"), s1("ffff"), s2("ffffff");
    EXPECT_EQ(com__exctnume_intsub(&e.c, &f.c, &s1.c), 1); // a byte of op1 beyond reach
    EXPECT_EQ(com__exctnume_intsub(&e.c, &f.c, &s2.c), 0);
    EXPECT_EQ(hex(s2.c.value + 1, 2), "0001");
    // Carries and borrows across 64-bit limb boundaries.
    Val g("00" + std::string(18, 'f')), h("000000000000000001"), r(Val::zeros(12)), back(Val::zeros(12));
    EXPECT_EQ(com__exctnume_intadd(&g.c, &h.c, &r.c), 0);
    EXPECT_EQ(r.str(), "000001000000000000000000");
    EXPECT_EQ(com__exctnume_intsub(&r.c, &h.c, &back.c), 0);
    EXPECT_EQ(back.str(), "000000ffffffffffffffffff");
}

TEST(ExctnumeIntDiv, QuotientRoomIsTheDividendsBytesPlusTwo)
{
    Val a3("00ffffff"), d2("0002"), tight(Val::zeros(5)), too_tight(Val::zeros(4)), r(Val::zeros(1));
    EXPECT_EQ(com__exctnume_intdiv(&a3.c, &d2.c, &tight.c, &r.c), 0);
    EXPECT_EQ(com__exctnume_intdiv(&a3.c, &d2.c, &too_tight.c, &r.c), 1);
}

// Operands found by search on which the trial digit is one too large and the
// divisor has to be added back; divisor lengths 3 and 4 are both covered.
TEST(ExctnumeIntDiv, AddBackCases)
{
    struct Case { const char *u, *v, *q, *r; } cases[] = {
        {"379c1b1ecd", "850c75", "6aff", "6b4442"},       {"d1d6be", "04ff05", "29", "04fef1"},
        {"ed525c3a62", "01ff95", "76c1ff", "014ff7"},     {"331b750b9f", "331b7c3f", "ff", "331448de"},
        {"973dedd6c603", "b5c6bfae", "d4ff", "4621bfb1"}, {"196f057a7f24", "03ff37d5", "065cff", "033355f9"},
    };
    for (const Case &k : cases) {
        const std::string u = k.u, v = k.v;
        CS_BYTE run[16]{}, vb[8]{};
        unhex(u, run + 1);
        unhex(v, vb);
        EXPECT_GE(kes::numeric::limbs::knuth_d(run, static_cast<int>(u.size() / 2), vb, static_cast<int>(v.size() / 2)), 1)
            << k.u << ": the add-back path was not taken";
        Val a("00" + u), b("00" + v), q(Val::zeros(20)), r(Val::zeros(1));
        ASSERT_EQ(com__exctnume_intdiv(&a.c, &b.c, &q.c, &r.c), 0) << k.u;
        EXPECT_EQ(hex(q.c.value, static_cast<size_t>(q.c.len)), std::string("00") + k.q) << k.u;
        EXPECT_EQ(hex(r.c.value + 1, static_cast<size_t>(r.c.len - 1)), k.r) << k.u;
        EXPECT_TRUE(r.c.value >= q.buf && r.c.value + r.c.len < q.buf + 21) << k.u;
    }
}

// The division template at 32-bit digits, on a pair that needs the add-back
// step; the record division of the same operands must agree.
TEST(ExctnumeDiv, AddBackOnThirtyTwoBitDigits)
{
    uint32_t u[5] = {0, 0x7fff, 0x8000, 0, 0};
    const uint32_t v[3] = {0x8000, 0, 1};
    EXPECT_EQ(kes::numeric::limbs::knuth_d(u, 4, v, 3), 1);
    EXPECT_EQ(u[1], 0xfffe0000u);
    Val a("007fff000080000000000000000000"), b("0080000000000000000001"), q(Val::zeros(33)), rem(Val::zeros(12));
    ASSERT_EQ(com__exctnume_div(&a.c, &b.c, &q.c, &rem.c), 0);
    EXPECT_EQ(hex(q.c.value + 29, 4), "fffe0000");
    EXPECT_EQ(rem.str(), "007fffffffffff00020000");
}

// The same on 64-bit digits, where the trial digit comes from one hardware
// divide; the byte-wise division must agree.
TEST(ExctnumeDiv, AddBackOnSixtyFourBitDigits)
{
    constexpr uint64_t h = 0x8000000000000000u;
    uint64_t u[5] = {0, 0x8000, 0x8000, 1, 2};
    const uint64_t v[3] = {h, h, h};
    EXPECT_EQ(kes::numeric::limbs::knuth_d(u, 4, v, 3), 1);
    EXPECT_EQ(u[1], 0xffffu);
    const std::string num = "00" "0000000000008000" "0000000000008000" "0000000000000001" "0000000000000002";
    const std::string den = "00" "8000000000000000" "8000000000000000" "8000000000000000";
    Val a(num), b(den), q(Val::zeros(33)), rem(Val::zeros(25));
    ASSERT_EQ(com__exctnume_div(&a.c, &b.c, &q.c, &rem.c), 0);
    EXPECT_EQ(q.str(), "00" + std::string(60, '0') + "ffff");
    Val a2(num), b2(den), qb(Val::zeros(40)), rb(Val::zeros(1));
    ASSERT_EQ(com__exctnume_intdiv(&a2.c, &b2.c, &qb.c, &rb.c), 0);
    EXPECT_EQ(hex(qb.c.value + 1, static_cast<size_t>(qb.c.len - 1)), "ffff");
    const std::string rb_hex = hex(rb.c.value + 1, static_cast<size_t>(rb.c.len - 1));
    EXPECT_EQ(rem.str(), "00" + std::string(48 - rb_hex.size(), '0') + rb_hex);
}

TEST(ExctnumeDiv, WorkAreaBoundaryAndRemainder)
{
    // A 33-byte dividend shifted by 70 places: 33 + 31 + 1 bytes of numerator,
    // one more for the quotient and 2 for the remainder make 133 > 132.
    Val a(Val::zeros(33)), three("0003", 1), zero("0000", 1);
    a.buf[32] = 1;
    Val q70(Val::zeros(33), 77, 70), q69(Val::zeros(33), 77, 69), q10(Val::zeros(33), 77, 10);
    EXPECT_EQ(com__exctnume_div(&a.c, &three.c, &q70.c, nullptr), 1);
    EXPECT_EQ(com__exctnume_div(&a.c, &three.c, &q69.c, nullptr), 0); // 131 bytes
    EXPECT_EQ(q69.c.value[32], 0x55);                                  // 10^69 / 3 ends in 0x55
    EXPECT_EQ(com__exctnume_div(&a.c, &zero.c, &q70.c, nullptr), 1);  // the area is checked before the divisor
    EXPECT_EQ(com__exctnume_div(&a.c, &zero.c, &q10.c, nullptr), 3);
    Val tiny_div("0001", 1, 78), q0(Val::zeros(33));
    EXPECT_EQ(com__exctnume_div(&a.c, &tiny_div.c, &q0.c, nullptr), 1); // a shift of 78

    Val n("000064", 3), seven("0007", 1), quo(Val::zeros(3), 3), rem(Val::zeros(8));
    EXPECT_EQ(com__exctnume_div(&n.c, &seven.c, &quo.c, &rem.c), 0);
    EXPECT_EQ(quo.str(), "00000e");
    EXPECT_EQ(rem.str(), "0002"); // resized to the divisor's length
    EXPECT_EQ(com__exctnume_div(&seven.c, &seven.c, &quo.c, &rem.c), 0);
    EXPECT_EQ(rem.c.len, 0);
}

TEST(ExctnumeRound, HalfAwayFromZeroOnTheFirstRemovedDigit)
{
    struct Case { const char *in; int prec, scale, to; const char *out; } cases[] = {
        {"00270b", 4, 3, 2, "002710"},  // 9.995 -> 10.000 (scale 3 kept)
        {"010004", 3, 3, 2, "000000"},  // -0.004 -> positive 0.000
        {"0104d5", 4, 3, 1, "0104b0"},  // -1.237 at 1 -> -1.200: only the 3 decides
        {"000af0", 4, 2, 2, "000af0"},  // no more decimals than asked
        {"003039", 5, 2, 0, "00300c"},  // 123.45 -> 123.00: the 4 decides, not the 5
        {"003039", 5, 2, -1, "002ee0"}, // 123.45 at -1 -> 120.00
        {"0009ffff", 6, 1, 0, "000a0000"}, // 65535.9: the quotient 0xffff widens before the increment
    };
    for (const Case &k : cases) {
        Val in(k.in, k.prec, k.scale), out(Val::zeros(static_cast<int>(std::strlen(k.out) / 2)));
        com__exctnume_round(&in.c, k.to, &out.c);
        EXPECT_EQ(out.str(), k.out) << k.in << " to " << k.to;
    }
}

TEST(ExctnumeCeilingFloor, SignsAndExactValues)
{
    // type 1 ceiling, 0 floor: ceiling(-0.5) is +0, floor(-0.5) -1, -3.0 exact.
    struct Case { const char *in; int scale, type; const char *out; } cases[] = {
        {"0105", 1, 1, "0000"}, {"0105", 1, 0, "0101"}, {"000c", 1, 1, "0002"},
        {"000c", 1, 0, "0001"}, {"011e", 1, 0, "0103"}};
    for (const Case &k : cases) {
        Val in(k.in, 3, k.scale), out("ffff", 9, 9);
        com__exctnume_ceilingfloor(&in.c, &out.c, k.type);
        EXPECT_EQ(out.str(), k.out) << k.in << " type " << k.type;
        EXPECT_EQ(out.c.scale, 0);
        EXPECT_EQ(out.c.prec, 3);
    }
}

// Values and ranges go through the conversion members in int_to_num_test.cpp;
// here the rules only the kernel entry has.
TEST(ExctnumeFromInt, PrecisionZeroTakesTheLargestOfTheLengthAndScale78IsMalformed)
{
    CS_BYTE d[40], p = 0, s = 9;
    EXPECT_EQ(com__longtoexctnume(-5, d, 3, &p, &s), 0);
    EXPECT_EQ(p, 4);
    EXPECT_EQ(s, 0);
    EXPECT_EQ(hex(d, 3), "010005");
    s = 78;
    EXPECT_EQ(com__ulongtoexctnume(1, d, 5, &p, &s), 2);
}

} // namespace
