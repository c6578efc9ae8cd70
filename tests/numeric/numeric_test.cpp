// The exported record operations: result shapes, the codes at the edges,
// signs of zero, the cut rule of the comparison, and the assertions.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "kescomn/numeric.h"
#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::hex;

// A record from decimal digits (at most 38 of them, enough here) or, with a
// leading "x", from the hex of its magnitude.
CS_NUMERIC num(const std::string &text, int prec, int scale)
{
    CS_NUMERIC n;
    std::memset(&n, 0xEE, sizeof n);
    n.precision = static_cast<CS_BYTE>(prec);
    n.scale = static_cast<CS_BYTE>(scale);
    const int len = comn_num_getlen(prec);
    std::memset(n.array, 0, static_cast<size_t>(len));
    bool neg = false;
    std::string t = text;
    if (!t.empty() && t[0] == '-') {
        neg = true;
        t.erase(0, 1);
    }
    if (!t.empty() && t[0] == 'x') {
        t.erase(0, 1);
        const int nb = static_cast<int>(t.size() / 2);
        for (int i = 0; i < nb; ++i)
            n.array[len - nb + i] = static_cast<CS_BYTE>(std::stoi(t.substr(2 * static_cast<size_t>(i), 2), nullptr, 16));
    } else {
        unsigned __int128 v = 0;
        for (char c : t)
            v = v * 10 + static_cast<unsigned>(c - '0');
        for (int i = len - 1; i >= 1 && v != 0; --i, v >>= 8)
            n.array[i] = static_cast<CS_BYTE>(v);
    }
    n.array[0] = neg ? 1 : 0;
    return n;
}

std::string value_hex(const CS_NUMERIC &n) { return hex(n.array, static_cast<size_t>(comn_num_getlen(n.precision))); }

// The maximum of a precision as hex magnitude, by repeated multiplication.
std::string nines(int prec, int times = 1)
{
    CS_BYTE b[40]{};
    b[39] = 1;
    for (int k = 0; k < prec; ++k) {
        unsigned carry = 0;
        for (int i = 39; i >= 0; --i) {
            const unsigned v = b[i] * 10u + carry;
            b[i] = static_cast<CS_BYTE>(v);
            carry = v >> 8;
        }
    }
    // 10^prec - 1, then times a small factor.
    for (int i = 39; i >= 0 && b[i]-- == 0; --i) {
    }
    unsigned carry = 0;
    for (int i = 39; i >= 0; --i) {
        const unsigned v = b[i] * static_cast<unsigned>(times) + carry;
        b[i] = static_cast<CS_BYTE>(v);
        carry = v >> 8;
    }
    int first = 0;
    while (first < 39 && b[first] == 0)
        ++first;
    return "x" + hex(b + first, static_cast<size_t>(40 - first));
}

TEST(NumCmp, NegativeZeroEqualsZeroInEitherOrder)
{
    CS_NUMERIC negzero = num("0", 5, 2), zero = num("0", 9, 0);
    negzero.array[0] = 1;
    EXPECT_EQ(comn_numcmp(&negzero, &zero), 0);
    EXPECT_EQ(comn_numcmp(&zero, &negzero), 0);
    CS_NUMERIC small = num("-1", 5, 5); // -0.00001
    EXPECT_EQ(comn_numcmp(&small, &negzero), -1);
    EXPECT_EQ(comn_numcmp(&negzero, &small), 1);
}

TEST(NumCmp, WideValuesCutTheFinerOperand)
{
    // 77 + 10 > 77: precision 10 scale 10 is cut to scale 0, so 0.9999999999
    // equals 0 and 1 is above 0.5.
    CS_NUMERIC wide0 = num("0", 77, 0), wide1 = num("1", 77, 0);
    CS_NUMERIC frac = num("9999999999", 10, 10), half = num("5000000000", 10, 10);
    EXPECT_EQ(comn_numcmp(&wide0, &frac), 0);
    EXPECT_EQ(comn_numcmp(&frac, &wide0), 0);
    EXPECT_EQ(comn_numcmp(&wide1, &half), 1);
    // Within the limit the decimals count.
    CS_NUMERIC narrow0 = num("0", 67, 0);
    EXPECT_EQ(comn_numcmp(&narrow0, &frac), -1);
    CS_NUMERIC negfrac = num("-9999999999", 10, 10);
    EXPECT_EQ(comn_numcmp(&wide0, &negfrac), 1); // signs are decided before the cut
}

TEST(NumAddSub, ResultShapes)
{
    struct Case {
        int p1, s1, p2, s2, p, s;
    } cases[] = {
        {10, 2, 10, 5, 14, 5}, {77, 0, 77, 0, 77, 0}, {5, 0, 5, 0, 6, 0},   {70, 0, 70, 70, 77, 70},
        {5, 10, 5, 10, 6, 10}, {1, 77, 1, 0, 77, 77}, {38, 38, 38, 0, 77, 38},
    };
    for (const Case &k : cases) {
        CS_NUMERIC a = num("0", k.p1, k.s1), b = num("0", k.p2, k.s2), r;
        std::memset(&r, 0, sizeof r);
        EXPECT_EQ(comn_numadd(&a, &b, &r), CS_SUCCEED);
        EXPECT_EQ(r.precision, k.p) << k.p1 << "," << k.s1 << " + " << k.p2 << "," << k.s2;
        EXPECT_EQ(r.scale, k.s) << k.p1 << "," << k.s1 << " + " << k.p2 << "," << k.s2;
    }
}

TEST(NumAddSub, OverflowAtSeventySevenDigits)
{
    CS_NUMERIC a = num(nines(77), 77, 0), r;
    // 2 * (10^77 - 1) carries out of the 33 bytes: cleared.
    EXPECT_EQ(comn_numadd(&a, &a, &r), CS_EOVERFLOW);
    EXPECT_EQ(r.precision, 77);
    EXPECT_EQ(value_hex(r), std::string(66, '0'));
    // 6e76 + 5e76 fits the bytes but not the precision: the bytes keep the
    // sum, since only a failure of the byte arithmetic clears them.
    CS_NUMERIC big = num(nines(76, 6), 77, 0); // 6 * (10^76 - 1)
    CS_NUMERIC big5 = num(nines(76, 5), 77, 0);
    EXPECT_EQ(comn_numadd(&big, &big5, &r), CS_EOVERFLOW);
    EXPECT_NE(value_hex(r), std::string(66, '0'));
    // One less than the limit is fine.
    CS_NUMERIC one = num("1", 77, 0), almost = num(nines(77), 77, 0);
    almost.array[32] -= 1;
    EXPECT_EQ(comn_numadd(&almost, &one, &r), CS_SUCCEED);
    EXPECT_EQ(comn_numcmp(&r, &a), 0);
}

TEST(NumAddSub, WideningCanOverflowValidOperands)
{
    // 70,0 and 70,70 meet at 77,70: seven integer digits remain.
    CS_NUMERIC frac = num("1", 70, 70), r;
    CS_NUMERIC seven = num("9999999", 70, 0), eight = num("10000000", 70, 0);
    EXPECT_EQ(comn_numadd(&seven, &frac, &r), CS_SUCCEED);
    EXPECT_EQ(comn_numadd(&eight, &frac, &r), CS_EOVERFLOW);
    EXPECT_EQ(r.precision, 77); // the shape is written all the same
    EXPECT_EQ(r.scale, 70);
}

TEST(NumAddSub, SignsAndZeros)
{
    CS_NUMERIC a = num("-12345", 7, 2), b = num("-12345", 7, 2), r;
    EXPECT_EQ(comn_numsub(&a, &b, &r), CS_SUCCEED);
    EXPECT_EQ(value_hex(r), "0000000000"); // positive zero
    CS_NUMERIC c = num("100", 7, 2);
    EXPECT_EQ(comn_numadd(&a, &c, &r), CS_SUCCEED);
    CS_NUMERIC want = num("-12245", 8, 2); // -123.45 + 1.00
    EXPECT_EQ(comn_numcmp(&r, &want), 0);
    EXPECT_EQ(comn_numsub(&c, &a, &r), CS_SUCCEED); // 1.00 - -123.45
    want = num("12445", 8, 2);
    EXPECT_EQ(comn_numcmp(&r, &want), 0);
    EXPECT_EQ(r.array[0], 0);
}

TEST(NumMul, ShapesZerosAndCutDigits)
{
    CS_NUMERIC zero = num("0", 5, 2), neg = num("-7", 3, 1), r;
    EXPECT_EQ(comn_nummul(&zero, &neg, &r), CS_SUCCEED);
    EXPECT_EQ(r.precision, 9); // 3 + 2 + 1 integer digits, scale 3
    EXPECT_EQ(r.scale, 3);
    EXPECT_EQ(r.array[0], 0);

    // Scale 40 times scale 40: true scale 80, kept 76; cut zeros are fine.
    CS_NUMERIC p1 = num("1", 40, 40);
    EXPECT_EQ(comn_nummul(&p1, &p1, &r), CS_EOVERFLOW); // 1e-80 loses its digit
    EXPECT_EQ(r.precision, 77);
    EXPECT_EQ(r.scale, 76);
    CS_NUMERIC e4 = num("10000", 40, 40); // 1e-36
    EXPECT_EQ(comn_nummul(&e4, &e4, &r), CS_SUCCEED); // 1e-72, cut zeros only
    CS_NUMERIC want = num("10000", 77, 76);
    EXPECT_EQ(comn_numcmp(&r, &want), 0);
}

TEST(NumDivide, TruncatesTowardZero)
{
    CS_NUMERIC ten = num("1000", 4, 2), three = num("3", 1, 0), r;
    EXPECT_EQ(comn_numdivide(&ten, &three, &r), CS_SUCCEED);
    EXPECT_EQ(r.precision, 8);
    EXPECT_EQ(r.scale, 6);
    EXPECT_EQ(value_hex(r), hex(num("3333333", 8, 6).array, 5));
    CS_NUMERIC m2 = num("-200", 4, 2);
    EXPECT_EQ(comn_numdivide(&m2, &three, &r), CS_SUCCEED);
    EXPECT_EQ(value_hex(r), hex(num("-666666", 8, 6).array, 5));
}

TEST(NumDivide, ZeroDividendAndZeroDivisor)
{
    CS_NUMERIC zero = num("0", 4, 2), negzero = num("0", 4, 2), three = num("-3", 1, 0), r;
    negzero.array[0] = 1;
    EXPECT_EQ(comn_numdivide(&negzero, &three, &r), CS_SUCCEED);
    EXPECT_EQ(value_hex(r), "0000000000");
    std::memset(r.array, 0x77, sizeof r.array);
    EXPECT_EQ(comn_numdivide(&three, &zero, &r), CS_EDIVZERO);
    EXPECT_EQ(comn_numdivide(&zero, &zero, &r), CS_EDIVZERO);
    for (CS_BYTE b : r.array)
        EXPECT_EQ(b, 0x77);
}

TEST(NumDivide, WorkAreaOverflowsBeforeAnyDigit)
{
    // 77 digits at scale 0 over a divisor of scale 0: shift 0 fits; the same
    // dividend at scale 0 over a 1-digit divisor of scale 76 shifts by 76.
    CS_NUMERIC big = num("1", 77, 0), one = num("1", 1, 0), fine = num("1", 1, 76), r;
    EXPECT_EQ(comn_numdivide(&big, &one, &r), CS_SUCCEED);
    EXPECT_EQ(comn_numdivide(&big, &fine, &r), CS_EOVERFLOW);
}

TEST(NumRecords, InvalidOperandsAreDomainErrors)
{
    CS_NUMERIC good = num("5", 5, 0), r;
    CS_NUMERIC bad[3] = {good, good, good};
    bad[0].precision = 0;
    bad[1].precision = 78;
    bad[2].scale = 78;
    for (CS_NUMERIC &b : bad) {
        std::memset(&r, 0x33, sizeof r);
        EXPECT_EQ(comn_numadd(&good, &b, &r), CS_EDOMAIN);
        EXPECT_EQ(comn_numsub(&b, &good, &r), CS_EDOMAIN);
        EXPECT_EQ(comn_nummul(&b, &good, &r), CS_EDOMAIN);
        EXPECT_EQ(comn_numdivide(&good, &b, &r), CS_EDOMAIN);
        EXPECT_EQ(r.precision, 0x33); // left alone
    }
}

TEST(NumRecords, LengthsAndPrecisions)
{
    EXPECT_EQ(comn_num_getlen(1), 2);
    EXPECT_EQ(comn_num_getlen(19), 9);
    EXPECT_EQ(comn_num_getlen(38), 17);
    EXPECT_EQ(comn_num_getlen(77), 33);
    EXPECT_EQ(comn_num_getprec(2), 2);
    EXPECT_EQ(comn_num_getprec(9), 19);
    EXPECT_EQ(comn_num_getprec(33), 77);
    EXPECT_EQ(comn_num_getprec(0), 0);
    EXPECT_EQ(comn_num_getprec(1), 0);
}

TEST(NumRecordsDeath, AssertionsOnMisuse)
{
    CS_NUMERIC a = num("1", 5, 0), r;
    EXPECT_BOMB(comn_num_addorsub(&a, &a, &r, 2));
    EXPECT_BOMB(comn_num_getlen(0));
    EXPECT_BOMB(comn_num_getlen(78));
    EXPECT_BOMB(comn_num_getprec(34));
    EXPECT_NULL_POINTER(comn_numadd(&a, nullptr, &r));
    EXPECT_NULL_POINTER(comn_nummul(nullptr, &a, &r));
    EXPECT_NULL_POINTER(comn_numdivide(&a, &a, nullptr));
    EXPECT_NULL_POINTER(comn_numcmp(&a, nullptr));
}

} // namespace
