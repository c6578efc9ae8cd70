// Money and the other scalars: integer and float kernels and the money cells
// of the integer and float rows in both layers.
#include <cmath>
#include <random>

#include "numeric/mny.h"
#include "support/context.h"

namespace {

using kes::test::code_name;
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

// ---- money to integers -----------------------------------------------------

TEST(MoneyToInt, RoundsHalfAwayFromZeroAndClamps)
{
    const struct {
        int64_t v;
        CS_INT i4;
        int i4_status;
        CS_BIGINT i8;
    } cases[] = {
        {15000, 2, 0, 2},
        {-15000, -2, 0, -2},
        {-5000, -1, 0, -1},
        {-4999, 0, 0, 0},
        {14999, 1, 0, 1},
        {21474836475000LL, INT32_MAX, 1, 2147483648LL},
        {21474836474999LL, INT32_MAX, 0, 2147483647LL},
        {-21474836485000LL, INT32_MIN, 1, -2147483649LL},
        {kMax, INT32_MAX, 1, 922337203685478LL},
        {kMin, INT32_MIN, 1, -922337203685478LL},
    };
    for (const auto &c : cases) {
        CS_MONEY m = M(c.v);
        CS_INT i4 = 99;
        EXPECT_EQ(com__mnytoint(&m, &i4), c.i4_status) << c.v;
        EXPECT_EQ(i4, c.i4) << c.v;
        CS_BIGINT i8 = 99;
        EXPECT_EQ(com__mnytoint8(&m, &i8), 0) << c.v;
        EXPECT_EQ(i8, c.i8) << c.v;
        EXPECT_EQ(V(m), c.v) << "source changed";
    }
}

TEST(MoneyToInt, UnsignedRefuseEveryNegativeWithoutWriting)
{
    CS_MONEY m = M(-1);
    CS_UINT u4 = 7;
    CS_UBIGINT u8 = 7;
    EXPECT_EQ(com__mnytouint(&m, &u4), 1);
    EXPECT_EQ(u4, 7U);
    EXPECT_EQ(com__mnytouint8(&m, &u8), 1);
    EXPECT_EQ(u8, 7U);
    m = M(42949672955000LL); // 4294967295.5 rounds past 32 bits
    EXPECT_EQ(com__mnytouint(&m, &u4), 1);
    EXPECT_EQ(u4, UINT32_MAX);
    m = M(42949672954999LL);
    EXPECT_EQ(com__mnytouint(&m, &u4), 0);
    EXPECT_EQ(u4, UINT32_MAX);
    m = M(kMax);
    EXPECT_EQ(com__mnytouint8(&m, &u8), 0);
    EXPECT_EQ(u8, 922337203685478ULL);

    CS_MONEY4 m4{-15000};
    CS_INT i4 = 0;
    EXPECT_EQ(com__mny4toint(&m4, &i4), 0);
    EXPECT_EQ(i4, -2);
    CS_BIGINT i8 = 0;
    EXPECT_EQ(com__mny4toint8(&m4, &i8), 0);
    EXPECT_EQ(i8, -2);
    EXPECT_EQ(com__mny4touint(&m4, &u4), 1);
    EXPECT_EQ(com__mny4touint8(&m4, &u8), 1);
}

// ---- money and floats ---------------------------------------------------------

TEST(MoneyToFloat, LowHalfPlusHighHalfTimesItsUnit)
{
    CS_MONEY m = M(kMin);
    double d = 0;
    EXPECT_EQ(com__mnytoflt8(&m, 8, &d, 8, 0), 8);
    EXPECT_EQ(d, -922337203685477.5808);
    m = M(1);
    EXPECT_EQ(com__mnytoflt8(&m, 8, &d, 8, 0), 8);
    EXPECT_EQ(d, 0.0001);
    float f = 0;
    m = M(-123456);
    EXPECT_EQ(com__mnytoflt4(&m, 8, &f, 4, 0), 4);
    EXPECT_EQ(f, -12.3456f);
    CS_MONEY4 m4{-123456};
    EXPECT_EQ(com__mny4toflt8(&m4, &d), 8);
    EXPECT_EQ(d, -12.3456);
    EXPECT_EQ(com__mny4toflt4(&m4, &f), 4);
    EXPECT_EQ(f, -12.3456f);
}

TEST(FloatToMoneyKernel, RoundsByAddingHalfAUnitToTheMagnitude)
{
    const struct {
        double v;
        int result;
        int64_t money;
    } cases[] = {
        {0.00005, 8, 1},
        {0.00004999, 8, 0},
        {-0.00005, 8, -1},
        {1.03125, 8, 10313}, // exactly half a unit, as binary fractions allow
        {-1.03125, 8, -10313},
        {12.34565, 8, 123456}, // its double lies just below the half
        {922337203685477.6, 8, kMax},
        {-922337203685477.6, 8, -kMax},
        {922337203685477.7, -1, 0},
        {-922337203685477.7, -1, 0},
        {std::numeric_limits<double>::infinity(), -1, 0},
        {1e300, -1, 0},
        {429496.7296, 8, 0x100000000LL},
        {-214748.3648, 8, -2147483648LL},
    };
    for (const auto &c : cases) {
        CS_MONEY m = M(99);
        double v = c.v;
        EXPECT_EQ(com__flt8tomny(&v, 8, &m, 8, 0), c.result) << c.v;
        EXPECT_EQ(V(m), c.money) << c.v;
    }
    CS_MONEY m = M(99);
    EXPECT_EQ(com__flt8tomny(nullptr, 8, &m, 8, 0), 8);
    EXPECT_EQ(V(m), 0);
    double v = 5.0;
    m = M(99);
    EXPECT_EQ(com__flt8tomny(&v, 0, &m, 8, 0), 8);
    EXPECT_EQ(V(m), 0);
}

// Within the range the kernel is off by at most one unit from the exact
// rounded product (its arithmetic is in doubles).
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

TEST(FloatToMoneyKernel, Money4GoesThroughMoneyAndNarrows)
{
    CS_MONEY4 m4{99};
    double v = 214748.3647;
    EXPECT_EQ(com__flt8tomny4(&v, 8, &m4, 0), 4);
    EXPECT_EQ(m4.mny4, INT32_MAX);
    v = 214748.36475;
    EXPECT_EQ(com__flt8tomny4(&v, 8, &m4, 0), -1);
    EXPECT_EQ(m4.mny4, INT32_MAX);
    v = -1e20;
    EXPECT_EQ(com__flt8tomny4(&v, 8, &m4, 0), -1);
    EXPECT_EQ(m4.mny4, 0) << "cleared first";
    float f = -214748.375f;
    EXPECT_EQ(com__flt4tomny4(&f, 4, &m4, 0), -1);
    EXPECT_EQ(m4.mny4, INT32_MIN);
}

TEST(FloatToMoneyMember, CodesAndLengthsInBothLayers)
{
    Context ctx;
    double big = 1e16;
    CS_MONEY m;
    CS_INT destlen = 0;
    CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_MONEY_TYPE, 8);
    EXPECT_EQ(comn_flt8tomoney(ctx.get(), &sfmt, &big, &dfmt, &m, &destlen), CS_EOVERFLOW);
    EXPECT_EQ(destlen, 8);
    double small = -1.25;
    EXPECT_EQ(comn_flt8tomoney(ctx.get(), &sfmt, &small, &dfmt, &m, &destlen), CS_SUCCEED);
    EXPECT_EQ(V(m), -12500);
    CS_MONEY4 m4;
    float f = 1.5f;
    sfmt = fmt(CS_REAL_TYPE, 4);
    dfmt = fmt(CS_MONEY4_TYPE, 4);
    EXPECT_EQ(comn_flt4tomny4(ctx.get(), &sfmt, &f, &dfmt, &m4, &destlen), CS_SUCCEED);
    EXPECT_EQ(m4.mny4, 15000);
    EXPECT_EQ(destlen, 4);

    // Only the single source clears dest->len on overflow.
    CAST_CONTEXT cast{};
    CS_BYTE out[8];
    float fbig = 1e6f;
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&fbig), 4, 4);
    __CONSTANT dst = kes::test::constant(out, 0, 4);
    EXPECT_EQ(comnb_flt4tomny4(&cast, &src, &dst), CS_EOVERFLOW);
    EXPECT_EQ(dst.len, 0);
    dst = kes::test::constant(out, 0, 8);
    EXPECT_EQ(comnb_flt4tomoney(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(dst.len, 8);
    double dbig = 1e6;
    src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&dbig), 8, 8);
    dst = kes::test::constant(out, 0, 4);
    EXPECT_EQ(comnb_flt8tomny4(&cast, &src, &dst), CS_EOVERFLOW);
    EXPECT_EQ(dst.len, 4);
    dbig = 1e300;
    dst = kes::test::constant(out, 0, 8);
    EXPECT_EQ(comnb_flt8tomoney(&cast, &src, &dst), CS_EOVERFLOW);
    EXPECT_EQ(dst.len, 8);
}

// ---- integers to money --------------------------------------------------------

TEST(IntToMoney, ScalesByTenThousandAndOverflowsAtTheLimits)
{
    Context ctx;
    const struct {
        const char *what;
        CS_CONV_FUNC f;
        CS_INT srctype;
        uint64_t raw; // source bytes, little-endian, of the source's size
        CS_INT desttype;
        int64_t stored;
        CS_RETCODE code;
    } cases[] = {
        {"i1 255", comn_i1tomoney, CS_TINYINT_TYPE, 255, CS_MONEY_TYPE, 2550000, CS_SUCCEED},
        {"i2 -32768", comn_i2tomoney, CS_SMALLINT_TYPE, 0x8000, CS_MONEY_TYPE, -327680000, CS_SUCCEED},
        {"i4 min", comn_i4tomoney, CS_INT_TYPE, 0x80000000, CS_MONEY_TYPE, -21474836480000LL, CS_SUCCEED},
        {"i8 largest", comn_i8tomoney, CS_BIGINT_TYPE, 922337203685477ULL, CS_MONEY_TYPE, 9223372036854770000LL, CS_SUCCEED},
        {"i8 one past", comn_i8tomoney, CS_BIGINT_TYPE, 922337203685478ULL, CS_MONEY_TYPE, 922337203685478LL, CS_EOVERFLOW},
        {"i8 -one past", comn_i8tomoney, CS_BIGINT_TYPE, static_cast<uint64_t>(-922337203685478LL), CS_MONEY_TYPE, -922337203685478LL, CS_EOVERFLOW},
        {"ui2 max", comn_ui2tomoney, CS_USMALLINT_TYPE, 65535, CS_MONEY_TYPE, 655350000, CS_SUCCEED},
        {"ui4 max", comn_ui4tomoney, CS_UINT_TYPE, 0xFFFFFFFF, CS_MONEY_TYPE, 42949672950000LL, CS_SUCCEED},
        {"ui8 top bit", comn_ui8tomoney, CS_UBIGINT_TYPE, 1ULL << 63, CS_MONEY_TYPE, kMax, CS_EOVERFLOW},
        {"ui8 small", comn_ui8tomoney, CS_UBIGINT_TYPE, 3, CS_MONEY_TYPE, 30000, CS_SUCCEED},
        {"i4 to mny4 ok", comn_i4tomny4, CS_INT_TYPE, 214748, CS_MONEY4_TYPE, 2147480000, CS_SUCCEED},
        {"i4 to mny4 over", comn_i4tomny4, CS_INT_TYPE, 214749, CS_MONEY4_TYPE, INT32_MAX, CS_EOVERFLOW},
        {"i4 to mny4 under", comn_i4tomny4, CS_INT_TYPE, static_cast<uint32_t>(-214749), CS_MONEY4_TYPE, INT32_MIN, CS_EOVERFLOW},
        {"i8 to mny4 far", comn_i8tomny4, CS_BIGINT_TYPE, 1ULL << 62, CS_MONEY4_TYPE, INT32_MAX, CS_EOVERFLOW},
        {"i8 to mny4 far below", comn_i8tomny4, CS_BIGINT_TYPE, 1ULL << 63, CS_MONEY4_TYPE, INT32_MIN, CS_EOVERFLOW},
        {"ui8 to mny4 top bit", comn_ui8tomny4, CS_UBIGINT_TYPE, ~0ULL, CS_MONEY4_TYPE, INT32_MAX, CS_EOVERFLOW},
        {"ui2 to mny4", comn_ui2tomny4, CS_USMALLINT_TYPE, 65535, CS_MONEY4_TYPE, 655350000, CS_SUCCEED},
        {"ui4 to mny4 over", comn_ui4tomny4, CS_UINT_TYPE, 214749, CS_MONEY4_TYPE, INT32_MAX, CS_EOVERFLOW},
        {"i1 to mny4", comn_i1tomny4, CS_TINYINT_TYPE, 7, CS_MONEY4_TYPE, 70000, CS_SUCCEED},
        {"ui4 to mny4", comn_ui4tomny4, CS_UINT_TYPE, 1, CS_MONEY4_TYPE, 10000, CS_SUCCEED},
        {"i2 to mny4", comn_i2tomny4, CS_SMALLINT_TYPE, 0xFFFF, CS_MONEY4_TYPE, -10000, CS_SUCCEED},
    };
    for (const auto &c : cases) {
        CS_BYTE src[8];
        std::memcpy(src, &c.raw, 8);
        CS_BYTE dest[8] = {};
        CS_INT destlen = 0;
        CS_DATAFMT sfmt = fmt(c.srctype, comn_typelen(c.srctype, 0));
        CS_DATAFMT dfmt = fmt(c.desttype, comn_typelen(c.desttype, 0));
        EXPECT_EQ(code_name(c.f(ctx.get(), &sfmt, src, &dfmt, dest, &destlen)), code_name(c.code)) << c.what;
        EXPECT_EQ(destlen, c.desttype == CS_MONEY_TYPE ? 8 : 4) << c.what;
        if (c.desttype == CS_MONEY_TYPE) {
            CS_MONEY m;
            std::memcpy(&m, dest, 8);
            EXPECT_EQ(V(m), c.stored) << c.what;
        } else {
            CS_INT m4;
            std::memcpy(&m4, dest, 4);
            EXPECT_EQ(m4, c.stored) << c.what;
        }
        EXPECT_EQ(com_conv_func(ctx.get(), c.srctype, c.desttype), c.f) << c.what;
    }
}

TEST(IntToMoney, BitToMoneyIsServerOnlyAndTestsTheByte)
{
    Context ctx;
    EXPECT_EQ(com_conv_func(ctx.get(), CS_BIT_TYPE, CS_MONEY_TYPE), nullptr);
    EXPECT_EQ(com_conv_func(ctx.get(), CS_BIT_TYPE, CS_MONEY4_TYPE), nullptr);
    CAST_CONTEXT cast{};
    CS_BYTE bit = 2, out[8];
    __CONSTANT src = kes::test::constant(&bit, 1, 1);
    __CONSTANT dst = kes::test::constant(out, 77, 8);
    EXPECT_EQ(comnb_bittomoney(&cast, &src, &dst), CS_EDOMAIN);
    EXPECT_EQ(dst.len, 77) << "nothing written";
    bit = 1;
    EXPECT_EQ(comnb_bittomoney(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(dst.len, 8);
    CS_MONEY m;
    std::memcpy(&m, out, 8);
    EXPECT_EQ(V(m), 10000);
    EXPECT_EQ(comnb_bittomny4(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(dst.len, 4);
    CS_INT m4;
    std::memcpy(&m4, out, 4);
    EXPECT_EQ(m4, 10000);

    CS_INT big = INT32_MAX;
    src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&big), 4, 4);
    EXPECT_EQ(comnb_i4tomny4(&cast, &src, &dst), CS_EOVERFLOW);
    EXPECT_EQ(dst.len, 4);
    EXPECT_EQ(comnb_i4tomoney(&cast, &src, &dst), CS_SUCCEED);
}

TEST(IntToMoneyDeath, TypesAreAsserted)
{
    Context ctx;
    CS_INT v = 1;
    CS_MONEY m;
    CS_INT destlen;
    CS_DATAFMT sfmt = fmt(CS_INT_TYPE, 4), wrong = fmt(CS_MONEY4_TYPE, 4), dfmt = fmt(CS_MONEY_TYPE, 8);
    EXPECT_BOMB(comn_i4tomoney(ctx.get(), &sfmt, &v, &wrong, &m, &destlen));
    CS_DATAFMT long_src = fmt(CS_LONG_TYPE, 8);
    EXPECT_BOMB(comn_i8tomoney(ctx.get(), &long_src, &v, &dfmt, &m, &destlen));
    EXPECT_NULL_POINTER(comn_i4tomoney(ctx.get(), &sfmt, &v, &dfmt, nullptr, &destlen));
}

} // namespace
