// The kernel operations on __CONSTANT values, one group per operation, with
// the boundaries where byte arithmetic goes wrong: carries out of the top,
// lengths that differ, all-255 magnitudes, zeros of either sign.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "numeric/exctnume.h"
#include "numeric/limbs.h"
#include "support/context.h"

namespace {

using kes::test::hex;

// A value over its own buffer, from hex bytes (sign byte first).
struct Val {
    CS_BYTE buf[80]{};
    __CONSTANT c{};

    explicit Val(const std::string &bytes, int prec = 77, int scale = 0, int room = 0)
    {
        const int len = static_cast<int>(bytes.size() / 2);
        for (int i = 0; i < len; ++i)
            buf[i] = static_cast<CS_BYTE>(std::stoi(bytes.substr(2 * static_cast<size_t>(i), 2), nullptr, 16));
        c.len = room ? room : len;
        c.maxlen = c.len;
        c.prec = static_cast<CS_BYTE>(prec);
        c.scale = static_cast<CS_BYTE>(scale);
        c.value = buf;
    }
    Val(const Val &o) : c(o.c)
    {
        std::memcpy(buf, o.buf, sizeof buf);
        c.value = buf + (o.c.value - o.buf);
    }
    Val &operator=(const Val &o)
    {
        if (this != &o) {
            std::memcpy(buf, o.buf, sizeof buf);
            c = o.c;
            c.value = buf + (o.c.value - o.buf);
        }
        return *this;
    }
    __CONSTANT *p() { return &c; }
    // A cleared value of len bytes.
    static Val zeros(int len, int prec = 77, int scale = 0) { return Val(std::string(2 * static_cast<size_t>(len), '0'), prec, scale); }
    std::string str() const { return hex(c.value, static_cast<size_t>(c.len)); }
};

// ---- tables -------------------------------------------------------------------

TEST(NumeTables, PowerRowsAreTenTimesTheRowBefore)
{
    for (int n = 1; n <= 77; ++n) {
        const CS_BYTE *prev = Com__Nume_Byte_Power_Array[n - 1];
        const CS_BYTE *row = Com__Nume_Byte_Power_Array[n];
        // Row n is row n - 1 times ten.
        __CONSTANT a{}, b{};
        a.len = prev[0];
        a.value = const_cast<CS_BYTE *>(prev + 1);
        b.len = row[0];
        b.value = const_cast<CS_BYTE *>(row + 1);
        CS_BYTE out[40]{};
        __CONSTANT r{};
        r.len = 34;
        r.value = out;
        const __CONSTANT ten = kes::numeric::power_of_ten(1);
        ASSERT_EQ(com__exctnume_intmul(&a, &ten, &r), 0);
        EXPECT_EQ(com__exctnume_cmp(&r, &b, 0), 0) << n;
        EXPECT_EQ(row[0], Com__Nume_Prec_To_Len[n]) << n;
        EXPECT_EQ(row[1], 0) << n;
        for (int i = 1 + row[0]; i < 34; ++i)
            EXPECT_EQ(row[i], 0) << n << " byte " << i;
    }
    EXPECT_EQ(hex(Com__Nume_Byte_Power_Array[0], 4), "02000100");
    EXPECT_EQ(hex(Com__Nume_Byte_Power_Array[3], 5), "030003e8" "00");
}

TEST(NumeTables, LengthsAndPrecisionsAreInverse)
{
    const int first_lengths[] = {2, 2, 2, 3, 3, 4, 4, 4, 5};
    for (int p = 0; p < 9; ++p)
        EXPECT_EQ(Com__Nume_Prec_To_Len[p], first_lengths[p]) << p;
    EXPECT_EQ(Com__Nume_Prec_To_Len[19], 9);
    EXPECT_EQ(Com__Nume_Prec_To_Len[38], 17);
    EXPECT_EQ(Com__Nume_Prec_To_Len[77], 33);
    const int first_precs[] = {2, 4, 7, 9, 12, 14, 16, 19};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(Com__Nume_Len_To_Prec[i], first_precs[i]) << i;
    for (int len = 2; len <= 33; ++len) {
        const int p = Com__Nume_Len_To_Prec[len - 2];
        EXPECT_EQ(Com__Nume_Prec_To_Len[p], len);
        if (p < 77) {
            EXPECT_EQ(Com__Nume_Prec_To_Len[p + 1], len + 1);
        }
    }
    for (int i = 32; i < 35; ++i)
        EXPECT_EQ(Com__Nume_Len_To_Prec[i], 255);
}

// ---- comparison and precision ---------------------------------------------------

TEST(ExctnumeCmp, SignsZerosLengthsAndScales)
{
    struct Case {
        const char *a;
        int sa;
        const char *b;
        int sb;
        int flag, want;
    } cases[] = {
        {"0100", 0, "0000", 0, 3, 0},     // negative zero equals zero
        {"0000", 0, "0100", 0, 3, 0},
        {"0100", 0, "0001", 0, 3, -1},    // negative zero is below a positive value
        {"0101", 0, "0000", 0, 3, -1},
        {"0105", 0, "0103", 0, 3, -1},    // both negative: reversed
        {"0105", 0, "0003", 0, 0, 1},     // flag 0: magnitudes only
        {"00000005", 0, "0005", 0, 0, 0}, // lengths differ
        {"00010000", 0, "00ff", 0, 0, 1}, // a non-zero excess byte decides
        {"000a", 1, "0001", 0, 2, 0},     // 1.0 == 1
        {"000b", 1, "0001", 0, 2, 1},
        {"000b", 1, "0001", 0, 0, 1},
        {"0109", 1, "0101", 0, 3, 1},     // -0.9 > -1
    };
    for (const Case &k : cases) {
        Val a(k.a, 10, k.sa), b(k.b, 10, k.sb);
        EXPECT_EQ(com__exctnume_cmp(&a.c, &b.c, k.flag), k.want) << k.a << " " << k.b << " flag " << k.flag;
    }
}

TEST(ExctnumeCmp, WideOperandsAreCutNotWidened)
{
    // 77 digits at scale 0 against precision 10 scale 10: 77 + 10 > 77, so
    // the finer one is cut to scale 0 and 0.9999999999 equals 0.
    Val big = Val::zeros(33, 77, 0);
    Val small("0002540be3ff", 10, 10); // 9999999999
    EXPECT_EQ(com__exctnume_cmp(&big.c, &small.c, 3), 0);
    EXPECT_EQ(com__exctnume_cmp(&small.c, &big.c, 3), 0);
    // Within the limit the coarser one is widened and the decimals count.
    Val lo = Val::zeros(2, 1, 0);
    EXPECT_EQ(com__exctnume_cmp(&lo.c, &small.c, 3), -1);
}

TEST(ExctnumeCheckPrecision, AtAndAroundTenToThePrecision)
{
    Val nines("00270f", 4); // 9999
    Val ten4("002710", 4);  // 10000
    EXPECT_EQ(com__exctnume_checkprecision(&nines.c), 0);
    EXPECT_EQ(com__exctnume_checkprecision(&ten4.c), 1);
    ten4.c.prec = 5;
    EXPECT_EQ(com__exctnume_checkprecision(&ten4.c), 0);
    // A row longer than the value cannot be reached.
    Val shortv("00ff", 3);
    EXPECT_EQ(com__exctnume_checkprecision(&shortv.c), 0);
    Val one("0001", 0);
    EXPECT_EQ(com__exctnume_checkprecision(&one.c), 1);
}

TEST(ExctnumeSmall, IntcmpAndNeedsbyte)
{
    EXPECT_EQ(com__exctnume_intcmp(Val("000001").p(), 1), 1);
    EXPECT_EQ(com__exctnume_intcmp(Val("000101").p(), 1), 0);
    EXPECT_EQ(com__exctnume_intcmp(Val("010001").p(), 1), 1); // the sign does not count
    EXPECT_EQ(com__exctnume_intcmp(Val("0000").p(), 0), 1);
    EXPECT_EQ(com__exctnume_needsbyte(Val("00ffff").p()), 1);
    EXPECT_EQ(com__exctnume_needsbyte(Val("00fffe").p()), 0);
    EXPECT_EQ(com__exctnume_needsbyte(Val("01ffff").p()), 1);
}

// ---- copy and scale --------------------------------------------------------------

TEST(ExctnumeCopy, RightAlignedAcrossLengths)
{
    Val in("0200001234"), out("ffffffffffffff");
    EXPECT_EQ(com__exctnume_copy(&in.c, &out.c), 0);
    EXPECT_EQ(out.str(), "01000000001234"); // high bytes cleared, sign as 1
    Val shorter("ffffff");
    EXPECT_EQ(com__exctnume_copy(&in.c, &shorter.c), 0);
    EXPECT_EQ(shorter.str(), "011234");
    Val wide("0000011234"), two("ffff");
    EXPECT_EQ(com__exctnume_copy(&wide.c, &two.c), 1); // 0x01 would be lost
    EXPECT_EQ(two.str(), "0034");
}

TEST(ExctnumeScale, ShiftsStatusesAndInPlace)
{
    Val v("00007b", 5, 0); // 123
    Val out = Val::zeros(4, 7);
    EXPECT_EQ(com__exctnume_scale(&v.c, &out.c, 2, 0), 0);
    EXPECT_EQ(out.str(), "0000300c"); // 12300
    EXPECT_EQ(com__exctnume_scale(&v.c, &out.c, -1, 0), 6);
    EXPECT_EQ(out.str(), "0000000c"); // 12, digits lost but stored
    EXPECT_EQ(com__exctnume_scale(&v.c, &out.c, -3, 0), 6);
    EXPECT_EQ(out.str(), "00000000");
    EXPECT_EQ(com__exctnume_scale(&v.c, &out.c, 78, 0), 2);
    EXPECT_EQ(com__exctnume_scale(&v.c, &out.c, -78, 0), 2);
    EXPECT_EQ(com__exctnume_scale(&v.c, &out.c, 0, 0), 0);
    EXPECT_EQ(out.str(), "0000007b");
    EXPECT_EQ(com__exctnume_scale(&v.c, nullptr, 0, 0), 0);
    Val tiny("00007b", 5);
    EXPECT_EQ(com__exctnume_scale(&tiny.c, nullptr, 3, 0), 1); // 123000 needs three bytes
    Val neg("01000a", 5);
    EXPECT_EQ(com__exctnume_scale(&neg.c, nullptr, -1, 0), 0);
    EXPECT_EQ(neg.str(), "010001");
    EXPECT_EQ(neg.c.scale, 0); // never written
}

// ---- byte-run helpers ------------------------------------------------------------

TEST(ExctnumeDivby10, RemaindersAndTheLeadingByteRule)
{
    struct Case {
        const char *in;
        int rem;
        const char *out; // the run afterwards, from the returned pointer
    } cases[] = {
        {"0000ff", 5, "0019"},    // second byte zero, length 3: one byte dropped
        {"000100", 6, "0019"},    // 256 / 10
        {"00000a", 0, "0001"},
        {"0000", 0, "0000"},      // length 2 is never shortened
        {"00010000", 6, "001999"},
    };
    for (const Case &k : cases) {
        Val v(k.in);
        CS_BYTE *p = v.buf;
        int len = v.c.len;
        EXPECT_EQ(com__exctnume_divby10(&p, &len), k.rem) << k.in;
        EXPECT_EQ(hex(p, static_cast<size_t>(len)), k.out) << k.in;
    }
    // Length 3 with a last byte of 255 after the division stays as it is.
    Val odd("0009f5"); // 2549 / 10 = 254 r 9 -> 00 00 fe; not the exception
    CS_BYTE *p = odd.buf;
    int len = 3;
    EXPECT_EQ(com__exctnume_divby10(&p, &len), 9);
    EXPECT_EQ(len, 2);
    Val keep("0009ff"); // 2559 / 10 = 255 r 9 -> 00 00 ff: the exception
    p = keep.buf;
    len = 3;
    EXPECT_EQ(com__exctnume_divby10(&p, &len), 9);
    EXPECT_EQ(len, 3);
    EXPECT_EQ(p, keep.buf);
}

TEST(ExctnumeMulby10Add, CarryOutOfTheTop)
{
    Val v("000019");
    EXPECT_EQ(com__exctnume_mulby10_add(&v.c, 5), 0);
    EXPECT_EQ(v.str(), "0000ff");
    Val full("001999");
    EXPECT_EQ(com__exctnume_mulby10_add(&full.c, 5), 0);
    EXPECT_EQ(full.str(), "00ffff");
    EXPECT_EQ(com__exctnume_mulby10_add(&full.c, 0), 1);
}

TEST(ExctnumeIncDec, SignsCarriesAndEmptyValues)
{
    struct Case {
        const char *in;
        bool inc;
        int st;
        const char *out;
    } cases[] = {
        {"0000ff", true, 0, "000100"},  {"00ffff", true, 1, "000000"}, {"010001", true, 0, "000000"},
        {"010002", true, 0, "010001"},  {"010000", true, 0, "000001"}, // -0 + 1 = 1
        {"000000", false, 0, "010001"}, {"000100", false, 0, "0000ff"}, {"01ffff", false, 1, "010000"},
        {"010000", false, 0, "010001"}, {"000001", false, 0, "000000"},
    };
    for (const Case &k : cases) {
        Val v(k.in);
        EXPECT_EQ(k.inc ? com__exctnume_inc(&v.c) : com__exctnume_dec(&v.c), k.st) << k.in << " " << k.inc;
        EXPECT_EQ(v.str(), k.out) << k.in << " " << k.inc;
    }
    Val empty("", 1, 0);
    EXPECT_EQ(com__exctnume_inc(&empty.c), 2);
    EXPECT_EQ(com__exctnume_dec(&empty.c), 2);
}

// ---- magnitude arithmetic --------------------------------------------------------

TEST(ExctnumeIntAddSub, ResultLongerOrShorterThanTheOperands)
{
    Val a("00ffff"), b("000001");
    Val longer("ffffffffff");
    EXPECT_EQ(com__exctnume_intadd(&a.c, &b.c, &longer.c), 0);
    EXPECT_EQ(hex(longer.c.value + 1, 4), "00010000"); // the carry went into the byte above
    Val same("ffffff");
    EXPECT_EQ(com__exctnume_intadd(&a.c, &b.c, &same.c), 1);
    Val c("0000f0"), d("00000f"), shorter("ffff");
    EXPECT_EQ(com__exctnume_intadd(&c.c, &d.c, &shorter.c), 0);
    EXPECT_EQ(hex(shorter.c.value + 1, 1), "ff");
    Val e("000100"), f("0000ff"), s1("ffff");
    EXPECT_EQ(com__exctnume_intsub(&e.c, &f.c, &s1.c), 1); // a byte of op1 beyond reach
    Val s2("ffffff");
    EXPECT_EQ(com__exctnume_intsub(&e.c, &f.c, &s2.c), 0);
    EXPECT_EQ(hex(s2.c.value + 1, 2), "0001");
    // Carries and borrows across 64-bit limb boundaries.
    Val g("00" + std::string(18, 'f')), h("00" + std::string(16, '0') + "01"), r = Val::zeros(12);
    EXPECT_EQ(com__exctnume_intadd(&g.c, &h.c, &r.c), 0);
    EXPECT_EQ(r.str(), "000001000000000000000000");
    Val back = Val::zeros(12);
    EXPECT_EQ(com__exctnume_intsub(&r.c, Val("000000000000000000000001").p(), &back.c), 0);
    EXPECT_EQ(back.str(), "000000ffffffffffffffffff");
}

TEST(ExctnumeIntMul, ZeroOneSignAndOverflow)
{
    Val zero("0000"), neg("0107"), r("ffffff");
    EXPECT_EQ(com__exctnume_intmul(&neg.c, &zero.c, &r.c), 0);
    EXPECT_EQ(r.str(), "000000"); // cleared and positive
    Val one("0001");
    EXPECT_EQ(com__exctnume_intmul(&one.c, &neg.c, &r.c), 0);
    EXPECT_EQ(r.str(), "010007");
    Val n2("0103");
    EXPECT_EQ(com__exctnume_intmul(&neg.c, &n2.c, &r.c), 0);
    EXPECT_EQ(r.str(), "000015"); // equal sign bytes: positive
    Val big("00ffff"), r2("ffffff");
    EXPECT_EQ(com__exctnume_intmul(&big.c, &big.c, &r2.c), 1);
    Val r4 = Val::zeros(5);
    EXPECT_EQ(com__exctnume_intmul(&big.c, &big.c, &r4.c), 0);
    EXPECT_EQ(r4.str(), "00fffe0001");
}

// ---- division --------------------------------------------------------------------

TEST(ExctnumeIntDiv, ZeroSmallAndShortDivisors)
{
    Val a("000064"), zero("0000"), q = Val::zeros(8), r = Val::zeros(1);
    EXPECT_EQ(com__exctnume_intdiv(&a.c, &zero.c, &q.c, &r.c), 3);

    // Divisor above the dividend: no quotient, the remainder is the dividend.
    Val small("00000005"), big("000100");
    q = Val::zeros(8);
    EXPECT_EQ(com__exctnume_intdiv(&small.c, &big.c, &q.c, &r.c), 0);
    EXPECT_EQ(q.c.len, 0);
    EXPECT_EQ(r.c.value, small.buf + 2);
    EXPECT_EQ(hex(r.c.value + 1, static_cast<size_t>(r.c.len - 1)), "05");

    // One-byte divisor, exact: the remainder has length 0.
    Val d("000a");
    q = Val::zeros(8);
    EXPECT_EQ(com__exctnume_intdiv(&a.c, &d.c, &q.c, &r.c), 0);
    EXPECT_EQ(hex(q.c.value, static_cast<size_t>(q.c.len)), "000a");
    EXPECT_EQ(r.c.len, 0);
    EXPECT_GE(q.c.value, q.buf);

    // Room: the dividend's significant bytes plus two.
    Val a3("00ffffff"), d2("0002");
    Val tight = Val::zeros(5);
    EXPECT_EQ(com__exctnume_intdiv(&a3.c, &d2.c, &tight.c, &r.c), 0);
    Val too_tight = Val::zeros(4);
    EXPECT_EQ(com__exctnume_intdiv(&a3.c, &d2.c, &too_tight.c, &r.c), 1);
}

// Operands found by search on which the trial digit is one too large and the
// divisor has to be added back; the digit counts 3 and 4 are both covered.
TEST(ExctnumeIntDiv, AddBackCases)
{
    struct Case {
        const char *u, *v, *q, *r;
    } cases[] = {
        {"379c1b1ecd", "850c75", "6aff", "6b4442"},
        {"d1d6be", "04ff05", "29", "04fef1"},
        {"ed525c3a62", "01ff95", "76c1ff", "014ff7"},
        {"331b750b9f", "331b7c3f", "ff", "331448de"},
        {"973dedd6c603", "b5c6bfae", "d4ff", "4621bfb1"},
        {"196f057a7f24", "03ff37d5", "065cff", "033355f9"},
    };
    for (const Case &k : cases) {
        const std::string u = k.u, v = k.v;
        // The kernel takes the add-back path...
        CS_BYTE run[16]{};
        CS_BYTE vb[8]{};
        const int n = static_cast<int>(u.size() / 2), m = static_cast<int>(v.size() / 2);
        for (int i = 0; i < n; ++i)
            run[1 + i] = static_cast<CS_BYTE>(std::stoi(u.substr(2 * static_cast<size_t>(i), 2), nullptr, 16));
        for (int i = 0; i < m; ++i)
            vb[i] = static_cast<CS_BYTE>(std::stoi(v.substr(2 * static_cast<size_t>(i), 2), nullptr, 16));
        EXPECT_GE(kes::numeric::limbs::knuth_d(run, n, vb, m), 1) << k.u;

        // ...and the division is exact through the public kernel.
        Val a("00" + u), b("00" + v), q = Val::zeros(20), r = Val::zeros(1);
        ASSERT_EQ(com__exctnume_intdiv(&a.c, &b.c, &q.c, &r.c), 0) << k.u;
        EXPECT_EQ(q.c.value[0], 0) << k.u;
        EXPECT_EQ(hex(q.c.value + 1, static_cast<size_t>(q.c.len - 1)), k.q) << k.u;
        EXPECT_EQ(hex(r.c.value + 1, static_cast<size_t>(r.c.len - 1)), k.r) << k.u;
        EXPECT_GE(r.c.value, q.buf);
        EXPECT_LT(r.c.value + r.c.len, q.buf + 21);
    }
}

// The record operations divide on 32-bit digits with the same algorithm; a
// dividend and divisor on which that width needs the add-back step too.
TEST(ExctnumeDiv, AddBackOnThirtyTwoBitDigits)
{
    uint32_t u[5] = {0, 0x7fff, 0x8000, 0, 0};
    const uint32_t v[3] = {0x8000, 0, 1};
    EXPECT_EQ(kes::numeric::limbs::knuth_d(u, 4, v, 3), 1);
    EXPECT_EQ(u[1], 0xfffe0000u);

    Val a("00" "7fff000080000000000000000000", 77, 0), b("00" "80000000000000000001", 77, 0);
    Val q = Val::zeros(33, 77, 0), rem = Val::zeros(12);
    ASSERT_EQ(com__exctnume_div(&a.c, &b.c, &q.c, &rem.c), 0);
    EXPECT_EQ(hex(q.c.value + 29, 4), "fffe0000");
    EXPECT_EQ(rem.str(), "007fffffffffff00020000");
}

TEST(ExctnumeDiv, WorkAreaShiftAndRemainder)
{
    // A 33-byte dividend shifted by 70 places: 33 + 31 + 1 bytes for the
    // numerator, one more for the quotient and 2 for the remainder make 133.
    Val a = Val::zeros(33, 77, 0), b("0003", 1, 0);
    a.buf[32] = 1;
    Val q = Val::zeros(33, 77, 70);
    EXPECT_EQ(com__exctnume_div(&a.c, &b.c, &q.c, nullptr), 1);
    Val q69 = Val::zeros(33, 77, 69); // 131 bytes: 10^69 / 3 is computed
    EXPECT_EQ(com__exctnume_div(&a.c, &b.c, &q69.c, nullptr), 0);
    EXPECT_EQ(q69.c.value[32], 0x55); // 10^69 / 3 ends in the byte 0x55
    Val zero("0000", 1, 0);
    EXPECT_EQ(com__exctnume_div(&a.c, &zero.c, &q.c, nullptr), 1); // before the zero divisor is seen
    Val q2 = Val::zeros(33, 77, 10);
    EXPECT_EQ(com__exctnume_div(&a.c, &zero.c, &q2.c, nullptr), 3);
    Val q3 = Val::zeros(33, 77, 0);
    q3.c.scale = 0;
    Val wide = Val::zeros(33, 77, 0);
    wide.c.scale = 0;
    Val div = Val::zeros(2, 1, 78);
    div.buf[1] = 1;
    EXPECT_EQ(com__exctnume_div(&wide.c, &div.c, &q3.c, nullptr), 1); // shift 78

    // 100 / 7 with the remainder handed back.
    Val n("000064", 3, 0), d("0007", 1, 0), quo = Val::zeros(3, 3, 0), rem = Val::zeros(8);
    EXPECT_EQ(com__exctnume_div(&n.c, &d.c, &quo.c, &rem.c), 0);
    EXPECT_EQ(quo.str(), "00000e");
    EXPECT_EQ(rem.str(), "0002");
    Val sev("0007", 1, 0);
    EXPECT_EQ(com__exctnume_div(&sev.c, &sev.c, &quo.c, &rem.c), 0);
    EXPECT_EQ(rem.c.len, 0);
}

// ---- rounding ----------------------------------------------------------------------

TEST(ExctnumeRound, HalfAwayFromZeroOnTheFirstRemovedDigit)
{
    struct Case {
        const char *in;
        int prec, scale, to;
        const char *out;
    } cases[] = {
        {"00270b", 4, 3, 2, "002710"}, // 9.995 -> 10.000 (scale 3 kept)
        {"010004", 3, 3, 2, "000000"}, // -0.004 -> positive 0.000
        {"0104d2", 4, 3, 2, "0104ce"}, // -1.234 -> -1.230
        {"0104d5", 4, 3, 1, "0104b0"}, // -1.237 at 1 -> -1.200: only the 3 decides
        {"000af0", 4, 2, 2, "000af0"}, // no more decimals than asked
        {"003039", 5, 2, 0, "00300c"},  // 123.45 -> 123.00: the 4 decides, not the 5
        {"003039", 5, 2, -1, "002ee0"}, // 123.45 at -1 -> 120.00
    };
    for (const Case &k : cases) {
        Val in(k.in, k.prec, k.scale), out = Val::zeros(static_cast<int>(std::string(k.out).size() / 2));
        com__exctnume_round(&in.c, k.to, &out.c);
        EXPECT_EQ(out.str(), k.out) << k.in << " to " << k.to;
    }
    // 65535.9 -> 65536.0: the quotient 0xffff gets a byte before the increment.
    Val ff("0009ffff", 6, 1), out = Val::zeros(4);
    com__exctnume_round(&ff.c, 0, &out.c);
    EXPECT_EQ(out.str(), "000a0000"); // 655360
}

TEST(ExctnumeCeilingFloor, SignsAndExactValues)
{
    struct Case {
        const char *in;
        int scale, type;
        const char *out;
    } cases[] = {
        {"0105", 1, 1, "0000"}, // ceiling(-0.5) = +0
        {"0105", 1, 0, "0101"}, // floor(-0.5) = -1
        {"000c", 1, 1, "0002"}, // ceiling(1.2) = 2
        {"000c", 1, 0, "0001"},
        {"001e", 1, 1, "0003"}, // 3.0 exact
        {"011e", 1, 0, "0103"},
        {"00ff", 0, 1, "00ff"},
    };
    for (const Case &k : cases) {
        Val in(k.in, 3, k.scale), out("ffff", 9, 9);
        com__exctnume_ceilingfloor(&in.c, &out.c, k.type);
        EXPECT_EQ(out.str(), k.out) << k.in << " type " << k.type;
        EXPECT_EQ(out.c.scale, 0);
        EXPECT_EQ(out.c.prec, 3);
    }
}

// ---- signed operations ---------------------------------------------------------------

TEST(ExctnumeAddOrSub, EqualMagnitudesGivePositiveZero)
{
    Val a("0105", 2, 0), b("0105", 2, 0), r("ffff", 2, 0);
    EXPECT_EQ(com__exctnume_addorsub(&a.c, &b.c, &r.c, 1), 0);
    EXPECT_EQ(r.str(), "0000");
    Val c("0005", 2, 0);
    EXPECT_EQ(com__exctnume_addorsub(&a.c, &c.c, &r.c, 0), 0);
    EXPECT_EQ(r.str(), "0000");
    Val d("0007", 2, 0);
    EXPECT_EQ(com__exctnume_addorsub(&c.c, &d.c, &r.c, 1), 0); // 5 - 7
    EXPECT_EQ(r.str(), "0102");
    EXPECT_EQ(com__exctnume_addorsub(&a.c, &d.c, &r.c, 1), 0); // -5 - 7
    EXPECT_EQ(r.str(), "010c");
}

TEST(ExctnumeMul, ShiftOfSeventyEightPlacesIsMalformed)
{
    Val a("0000", 1, 77), b("0000", 1, 77), r = Val::zeros(2, 1, 76);
    EXPECT_EQ(com__exctnume_mul(&a.c, &b.c, &r.c), 2);
}

// ---- integers -------------------------------------------------------------------------

TEST(ExctnumeFromInt, PrecisionScaleSignAndRange)
{
    CS_BYTE d[40];
    CS_BYTE p = 0, s = 9;
    EXPECT_EQ(com__longtoexctnume(-5, d, 3, &p, &s), 0);
    EXPECT_EQ(p, 4); // largest precision of 3 bytes; scale reset
    EXPECT_EQ(s, 0);
    EXPECT_EQ(hex(d, 3), "010005");
    p = 5;
    s = 2;
    EXPECT_EQ(com__longtoexctnume(-5, d, 4, &p, &s), 0);
    EXPECT_EQ(hex(d, 4), "010001f4"); // -5.00
    EXPECT_EQ(com__longtoexctnume(1000, d, 4, &p, &s), 1); // 1000.00 has 6 digits
    p = 3;
    s = 0;
    EXPECT_EQ(com__longtoexctnume(0, d, 3, &p, &s), 0);
    EXPECT_EQ(hex(d, 3), "000000");
    p = 19;
    EXPECT_EQ(com__longlongtoexctnume(INT64_MIN, d, 9, &p, &s), 0);
    EXPECT_EQ(hex(d, 9), "018000000000000000");
    p = 20;
    EXPECT_EQ(com__ulonglongtoexctnume(UINT64_MAX, d, 9, &p, &s), 0);
    EXPECT_EQ(hex(d, 9), "00ffffffffffffffff");
    p = 19;
    EXPECT_EQ(com__ulonglongtoexctnume(UINT64_MAX, d, 9, &p, &s), 1); // 20 digits
    p = 20;
    EXPECT_EQ(com__ulonglongtoexctnume(UINT64_MAX, d, 8, &p, &s), 1); // bytes run out
    p = 10;
    EXPECT_EQ(com__ulongtoexctnume(4294967295u, d, 5, &p, &s), 0);
    EXPECT_EQ(hex(d, 5), "00ffffffff");
    s = 78;
    EXPECT_EQ(com__ulongtoexctnume(1, d, 5, &p, &s), 2);
}

} // namespace
