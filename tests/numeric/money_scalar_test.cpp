// Money and the other scalars: integer and float kernels and the money cells
// of the integer and float rows in both layers.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "numeric/mny.h"
#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::constant;
using kes::test::Context;
using kes::test::fmt;

constexpr int64_t kMax = INT64_MAX, kMin = INT64_MIN;

CS_MONEY M(int64_t v)
{
    CS_MONEY m;
    kes::money::set(m, v);
    return m;
}
int64_t V(const CS_MONEY &m) { return kes::money::value(m); }
__CONSTANT bytes_of(void *p, CS_INT len, CS_INT maxlen) { return constant(static_cast<CS_BYTE *>(p), len, maxlen); }

// Against 64-bit arithmetic on the units: half away from zero by the sign
// of the money (so -0.5 is -1); i4 and ui4 clamp with status 1 (ui4 to all
// ones), i8 cannot fail, and the unsigned forms refuse any negative value,
// even one that rounds to 0, without writing.
TEST(MoneyToInt, AgreesWithRoundingTheUnits)
{
    constexpr CS_UINT kUnwritten = 7;
    std::mt19937_64 rng(5);
    std::vector<int64_t> values = {14999, 15000, -4999, -5000, 21474836474999, 21474836475000, -21474836484999,
                                   -21474836485000, 42949672954999, 42949672955000, kMax, kMin};
    for (int i = 0; i < 20000; i++) {
        const auto v = static_cast<int64_t>(rng() >> (rng() % 64));
        values.push_back((rng() & 1) ? v : -v);
    }
    for (int64_t v : values) {
        SCOPED_TRACE(v);
        const int64_t q = v / 10000 + (v % 10000 >= 5000) - (v % 10000 <= -5000);
        CS_MONEY m = M(v);
        CS_INT i4 = 99;
        CS_BIGINT i8 = 99;
        CS_UINT u4 = kUnwritten;
        CS_UBIGINT u8 = kUnwritten;
        ASSERT_EQ(com__mnytoint(&m, &i4), q < INT32_MIN || q > INT32_MAX ? 1 : 0);
        ASSERT_EQ(i4, std::clamp<int64_t>(q, INT32_MIN, INT32_MAX));
        ASSERT_EQ(com__mnytoint8(&m, &i8), 0);
        ASSERT_EQ(i8, q);
        ASSERT_EQ(com__mnytouint(&m, &u4), v < 0 || q > UINT32_MAX ? 1 : 0);
        ASSERT_EQ(u4, v < 0 ? kUnwritten : std::min<int64_t>(q, UINT32_MAX));
        ASSERT_EQ(com__mnytouint8(&m, &u8), v < 0 ? 1 : 0);
        ASSERT_EQ(u8, v < 0 ? kUnwritten : static_cast<CS_UBIGINT>(q));
        ASSERT_EQ(V(m), v) << "source changed";
    }
    CS_MONEY4 m4{-15000}; // the 32-bit forms widen first
    CS_INT i4 = 0;
    CS_UBIGINT u8 = kUnwritten;
    EXPECT_EQ(com__mny4toint(&m4, &i4), 0);
    EXPECT_EQ(i4, -2);
    EXPECT_EQ(com__mny4touint8(&m4, &u8), 1);
    EXPECT_EQ(u8, kUnwritten);
}

TEST(MoneyToFloat, LowHalfPlusHighHalfTimesItsUnit)
{
    CS_MONEY m = M(kMin);
    CS_MONEY4 m4{-123456};
    double d = 0;
    float f = 0;
    EXPECT_EQ(com__mnytoflt8(&m, 8, &d, 8, 0), 8);
    EXPECT_EQ(d, -922337203685477.5808);
    EXPECT_EQ(com__mny4toflt4(&m4, &f), 4);
    EXPECT_EQ(f, -12.3456f);
}

// The CS_MONEY4 forms go through CS_MONEY: the limit of the sign when only
// the narrowing fails, zero beyond the money range.
TEST(FloatToMoneyKernel, RoundsByAddingHalfAUnitToTheMagnitude)
{
    const struct { double v; int result; int64_t money; int result4; CS_INT money4; } cases[] = {
        {0.00005, 8, 1, 4, 1}, {0.00004999, 8, 0, 4, 0}, {-0.00005, 8, -1, 4, -1},
        {-1.03125, 8, -10313, 4, -10313}, // exactly half a unit, as binary fractions allow
        {12.34565, 8, 123456, 4, 123456}, // its double lies just below the half
        {214748.3647, 8, INT32_MAX, 4, INT32_MAX}, {214748.36475, 8, INT32_MAX + 1LL, -1, INT32_MAX},
        {-214748.3648, 8, INT32_MIN, 4, INT32_MIN}, {-214748.375, 8, -2147483750LL, -1, INT32_MIN},
        {922337203685477.6, 8, kMax, -1, INT32_MAX}, {-922337203685477.6, 8, -kMax, -1, INT32_MIN}, // not kMin
        {922337203685477.7, -1, 0, -1, 0}, {-922337203685477.7, -1, 0, -1, 0},
        {std::numeric_limits<double>::infinity(), -1, 0, -1, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.v);
        CS_MONEY m = M(99);
        CS_MONEY4 m4{99};
        double v = c.v;
        EXPECT_EQ(com__flt8tomny(&v, 8, &m, 8, 0), c.result);
        EXPECT_EQ(V(m), c.money);
        EXPECT_EQ(com__flt8tomny4(&v, 8, &m4, 0), c.result4);
        EXPECT_EQ(m4.mny4, c.money4);
    }
    // No source, or a source length of 0, stores zero.
    double v = 5.0;
    for (auto [src, len] : {std::pair{static_cast<double *>(nullptr), 8}, {&v, 0}}) {
        CS_MONEY m = M(99);
        EXPECT_EQ(com__flt8tomny(src, len, &m, 8, 0), 8);
        EXPECT_EQ(V(m), 0);
    }
}

// Against long double arithmetic: inside the range the kernel (which works
// in doubles) is off by at most one unit from the exactly rounded value.
TEST(FloatToMoneyKernel, StaysWithinOneUnitOfTheRoundedValue)
{
    std::mt19937_64 rng(12);
    std::uniform_real_distribution<double> exponent(-6, 14.9);
    for (int i = 0; i < 50000; i++) {
        double v = std::pow(10.0, exponent(rng));
        if (rng() & 1)
            v = -v;
        CS_MONEY m;
        ASSERT_EQ(com__flt8tomny(&v, 8, &m, 8, 0), 8) << v;
        const long double exact = std::roundl(static_cast<long double>(v) * 10000.0L);
        ASSERT_LE(std::fabs(static_cast<long double>(V(m)) - exact), 1.0L + std::fabs(exact) * 1e-15L) << v;
    }
}

TEST(FloatToMoneyMember, OnOverflowOnlyTheServerLayersSingleSourceClearsTheLength)
{
    Context ctx;
    double big = 1e16;
    CS_MONEY m;
    CS_INT destlen = 0;
    CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_MONEY_TYPE, 8);
    EXPECT_EQ(comn_flt8tomoney(ctx.get(), &sfmt, &big, &dfmt, &m, &destlen), CS_EOVERFLOW);
    EXPECT_EQ(destlen, 8);

    CAST_CONTEXT cast{};
    CS_BYTE out[8];
    float fbig = 1e6f;
    double dbig = 1e6;
    __CONSTANT fsrc = bytes_of(&fbig, 4, 4), dsrc = bytes_of(&dbig, 8, 8), dst = constant(out, 0, 4);
    EXPECT_EQ(comnb_flt4tomny4(&cast, &fsrc, &dst), CS_EOVERFLOW);
    EXPECT_EQ(dst.len, 0);
    dst = constant(out, 0, 4);
    EXPECT_EQ(comnb_flt8tomny4(&cast, &dsrc, &dst), CS_EOVERFLOW);
    EXPECT_EQ(dst.len, 4);
    dst = constant(out, 0, 8);
    EXPECT_EQ(comnb_flt4tomoney(&cast, &fsrc, &dst), CS_SUCCEED);
    std::memcpy(&m, out, 8);
    EXPECT_EQ(V(m), 10000000000LL);
}

TEST(IntToMoney, ScalesByTenThousandAndOverflowsAtTheLimits)
{
    constexpr CS_INT MNY = CS_MONEY_TYPE, M4 = CS_MONEY4_TYPE;
    constexpr CS_RETCODE OK = CS_SUCCEED, OVER = CS_EOVERFLOW;
    Context ctx;
    // raw: the source bytes, little-endian, of the source's size.
    struct Case { CS_CONV_FUNC f; CS_INT srctype; uint64_t raw; CS_INT desttype; int64_t stored; CS_RETCODE code; };
    const Case cases[] = {
        {comn_i2tomoney, CS_SMALLINT_TYPE, 0x8000, MNY, -327680000, OK},
        {comn_ui4tomoney, CS_UINT_TYPE, 0xFFFFFFFF, MNY, 42949672950000LL, OK},
        {comn_i8tomoney, CS_BIGINT_TYPE, 922337203685477ULL, MNY, 9223372036854770000LL, OK},
        // One past either way: the unscaled value stays.
        {comn_i8tomoney, CS_BIGINT_TYPE, 922337203685478ULL, MNY, 922337203685478LL, OVER},
        {comn_i8tomoney, CS_BIGINT_TYPE, static_cast<uint64_t>(-922337203685478LL), MNY, -922337203685478LL, OVER},
        {comn_ui8tomoney, CS_UBIGINT_TYPE, 1ULL << 63, MNY, kMax, OVER}, // top bit: always over
        {comn_i4tomny4, CS_INT_TYPE, 214748, M4, 2147480000, OK},
        {comn_i4tomny4, CS_INT_TYPE, 214749, M4, INT32_MAX, OVER},
        {comn_i4tomny4, CS_INT_TYPE, static_cast<uint32_t>(-214749), M4, INT32_MIN, OVER},
        {comn_i8tomny4, CS_BIGINT_TYPE, 1ULL << 63, M4, INT32_MIN, OVER},
        {comn_i1tomny4, CS_TINYINT_TYPE, 0xFF, M4, 2550000, OK}, // i1 is unsigned
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(::testing::Message() << "type " << c.srctype << " raw " << c.raw << " to " << c.desttype);
        CS_BYTE src[8], dest[8] = {};
        std::memcpy(src, &c.raw, 8);
        CS_INT destlen = 0;
        CS_DATAFMT sfmt = fmt(c.srctype, comn_typelen(c.srctype, 0));
        CS_DATAFMT dfmt = fmt(c.desttype, comn_typelen(c.desttype, 0));
        EXPECT_EQ(code_name(c.f(ctx.get(), &sfmt, src, &dfmt, dest, &destlen)), code_name(c.code));
        const bool wide = c.desttype == MNY;
        EXPECT_EQ(destlen, wide ? 8 : 4);
        CS_MONEY m;
        CS_INT m4;
        std::memcpy(wide ? static_cast<void *>(&m) : &m4, dest, wide ? 8 : 4);
        EXPECT_EQ(wide ? V(m) : m4, c.stored);
        EXPECT_EQ(com_conv_func(ctx.get(), c.srctype, c.desttype), c.f);
    }
}

TEST(IntToMoney, BitToMoneyIsServerOnlyAndTestsTheByte)
{
    Context ctx;
    EXPECT_EQ(com_conv_func(ctx.get(), CS_BIT_TYPE, CS_MONEY_TYPE), nullptr);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_BIT_TYPE, CS_MONEY4_TYPE), nullptr);
    CAST_CONTEXT cast{};
    CS_BYTE bit = 2, out[8];
    __CONSTANT src = constant(&bit, 1, 1), dst = constant(out, 77, 8);
    EXPECT_EQ(comnb_bittomoney(&cast, &src, &dst), CS_EDOMAIN);
    EXPECT_EQ(dst.len, 77) << "nothing written";
    bit = 1;
    EXPECT_EQ(comnb_bittomny4(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(dst.len, 4);
    CS_INT m4;
    std::memcpy(&m4, out, 4);
    EXPECT_EQ(m4, 10000);
}

TEST(MoneyScalarDeath, TypesAndPointersAreAsserted)
{
    Context ctx;
    CS_INT v = 1, destlen;
    CS_MONEY m;
    CS_DATAFMT sfmt = fmt(CS_INT_TYPE, 4), wrong = fmt(CS_MONEY4_TYPE, 4), dfmt = fmt(CS_MONEY_TYPE, 8);
    CS_DATAFMT long_src = fmt(CS_LONG_TYPE, 8);
    EXPECT_BOMB(comn_i4tomoney(ctx.get(), &sfmt, &v, &wrong, &m, &destlen));
    EXPECT_BOMB(comn_i8tomoney(ctx.get(), &long_src, &v, &dfmt, &m, &destlen)); // CS_LONG is no i8 source
    EXPECT_NULL_POINTER(comn_i4tomoney(ctx.get(), &sfmt, &v, &dfmt, nullptr, &destlen));
}

} // namespace
