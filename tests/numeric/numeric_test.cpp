// The exported record operations outside what the differential test draws:
// invalid operands, the length tables and the assertions.  Values, shapes
// and codes of valid operands are checked against exact arithmetic in
// numeric_gmp_test.cpp.
#include <gtest/gtest.h>

#include <cstring>

#include "kescomn/numeric.h"
#include "support/context.h"

namespace {

CS_NUMERIC num(CS_BYTE magnitude, int prec, int scale)
{
    CS_NUMERIC n;
    std::memset(&n, 0, sizeof n);
    n.precision = static_cast<CS_BYTE>(prec);
    n.scale = static_cast<CS_BYTE>(scale);
    n.array[comn_num_getlen(prec) - 1] = magnitude;
    return n;
}

TEST(NumRecords, InvalidOperandsAreDomainErrorsAndLeaveTheResult)
{
    CS_NUMERIC good = num(5, 5, 0), r;
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
        EXPECT_EQ(r.precision, 0x33);
    }
}

// Accumulating in place (the result is an operand) must give what a separate
// result gets, though the result's shape differs from the operand's: narrow
// records take the word path, wide ones the byte kernel.
TEST(NumRecords, ResultMayBeAnOperand)
{
    using Op = CS_RETCODE (*)(CS_NUMERIC *, CS_NUMERIC *, CS_NUMERIC *);
    const Op ops[] = {comn_numadd, comn_numsub, comn_nummul, comn_numdivide};
    for (int prec : {10, 38, 39, 60}) {
        for (Op op : ops) {
            CS_NUMERIC a = num(200, prec, 2), b = num(7, prec, 2);
            a.array[comn_num_getlen(prec) - 2] = 1;
            CS_NUMERIC expected;
            const CS_RETCODE rc = op(&a, &b, &expected);
            CS_NUMERIC first = a, second = b;
            EXPECT_EQ(op(&first, &b, &first), rc);
            EXPECT_EQ(op(&a, &second, &second), rc);
            const size_t used = 2 + static_cast<size_t>(comn_num_getlen(expected.precision));
            EXPECT_EQ(0, std::memcmp(&first, &expected, used)) << prec;
            EXPECT_EQ(0, std::memcmp(&second, &expected, used)) << prec;
        }
    }
}

TEST(NumRecords, LengthsAndPrecisionsAtTheirEnds)
{
    const struct {
        int prec, len;
    } pairs[] = {{1, 2}, {19, 9}, {38, 17}, {77, 33}};
    for (const auto &k : pairs)
        EXPECT_EQ(comn_num_getlen(k.prec), k.len) << k.prec;
    EXPECT_EQ(comn_num_getprec(2), 2);
    EXPECT_EQ(comn_num_getprec(9), 19);
    EXPECT_EQ(comn_num_getprec(33), 77);
    EXPECT_EQ(comn_num_getprec(0), 0); // no precision fits under two bytes
    EXPECT_EQ(comn_num_getprec(1), 0);
}

TEST(NumRecordsDeath, AssertionsOnMisuse)
{
    CS_NUMERIC a = num(1, 5, 0), r;
    EXPECT_BOMB(comn_num_addorsub(&a, &a, &r, 2));
    EXPECT_BOMB(comn_num_getlen(78));
    EXPECT_BOMB(comn_num_getprec(34));
    EXPECT_NULL_POINTER(comn_numadd(&a, nullptr, &r));
    EXPECT_NULL_POINTER(comn_numcmp(&a, nullptr));
}

} // namespace
