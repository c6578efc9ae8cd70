// Float conversions: integer bounds at, inside and outside each limit, bit,
// float narrowing, text placement and the layer differences.
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::Context;
using kes::test::fmt;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

double up(double v) { return std::nextafter(v, kInf); }
double down(double v) { return std::nextafter(v, -kInf); }
float upf(float v) { return std::nextafter(v, std::numeric_limits<float>::infinity()); }
float downf(float v) { return std::nextafter(v, -std::numeric_limits<float>::infinity()); }

using Comnb = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

// One conversion of a float source to an integer, in both layers.
struct IntCase {
    const char *what;
    bool single; // CS_REAL source (value narrowed to float) or CS_FLOAT
    double value;
    CS_CONV_FUNC comn;
    Comnb comnb;
    CS_INT desttype;
    int size;
    bool is_signed;
    __int128 stored;
    CS_RETCODE comn_code;
    CS_RETCODE comnb_code;
};

__int128 read_int(const CS_BYTE *p, int size, bool is_signed)
{
    uint64_t raw = 0;
    std::memcpy(&raw, p, static_cast<size_t>(size));
    if (!is_signed)
        return raw;
    const int shift = 64 - 8 * size; // sign-extend from the value's width
    return static_cast<int64_t>(raw << shift) >> shift;
}

std::string str128(__int128 v)
{
    if (v < 0)
        return "-" + str128(-v);
    std::string s;
    do {
        s.insert(s.begin(), static_cast<char>('0' + static_cast<int>(v % 10)));
        v /= 10;
    } while (v != 0);
    return s;
}

constexpr CS_RETCODE OK = CS_SUCCEED, OVER = CS_EOVERFLOW, UNDER = CS_EUNDERFLOW;

// Every row of the bound tables at its bound, one unit in the last place
// inside and one outside; the truncation and sign rules; NaN and infinities.
const IntCase kIntCases[] = {
    // i1: the sign is seen before truncation.
    {"i1 at 0", false, 0.0, comn_flt8toi1, comnb_flt8toi1, CS_TINYINT_TYPE, 1, false, 0, OK, OK},
    {"i1 -0.0", false, -0.0, comn_flt8toi1, comnb_flt8toi1, CS_TINYINT_TYPE, 1, false, 0, OK, OK},
    {"i1 -0.5", false, -0.5, comn_flt8toi1, comnb_flt8toi1, CS_TINYINT_TYPE, 1, false, 0, OVER, OVER},
    {"i1 below 0", false, down(0.0), comn_flt8toi1, comnb_flt8toi1, CS_TINYINT_TYPE, 1, false, 0, OVER, OVER},
    {"i1 at 255", false, 255.0, comn_flt8toi1, comnb_flt8toi1, CS_TINYINT_TYPE, 1, false, 255, OK, OK},
    {"i1 inside 255", false, down(255.0), comn_flt8toi1, comnb_flt8toi1, CS_TINYINT_TYPE, 1, false, 254, OK, OK},
    {"i1 above 255", false, up(255.0), comn_flt8toi1, comnb_flt8toi1, CS_TINYINT_TYPE, 1, false, 255, OVER, OVER},
    {"i1 2.9", false, 2.9, comn_flt8toi1, comnb_flt8toi1, CS_TINYINT_TYPE, 1, false, 2, OK, OK},
    {"i1 single above", true, upf(255.0f), comn_flt4toi1, comnb_flt4toi1, CS_TINYINT_TYPE, 1, false, 255, OVER, OVER},
    // i2
    {"i2 -0.5", false, -0.5, comn_flt8toi2, comnb_flt8toi2, CS_SMALLINT_TYPE, 2, true, 0, OK, OK},
    {"i2 -0.9", false, -0.9, comn_flt8toi2, comnb_flt8toi2, CS_SMALLINT_TYPE, 2, true, 0, OK, OK},
    {"i2 at lo", false, -32768.0, comn_flt8toi2, comnb_flt8toi2, CS_SMALLINT_TYPE, 2, true, -32768, OK, OK},
    {"i2 inside lo", false, up(-32768.0), comn_flt8toi2, comnb_flt8toi2, CS_SMALLINT_TYPE, 2, true, -32767, OK, OK},
    {"i2 below lo", false, down(-32768.0), comn_flt8toi2, comnb_flt8toi2, CS_SMALLINT_TYPE, 2, true, -32768, OVER, OVER},
    {"i2 at hi", false, 32767.0, comn_flt8toi2, comnb_flt8toi2, CS_SMALLINT_TYPE, 2, true, 32767, OK, OK},
    {"i2 above hi", false, up(32767.0), comn_flt8toi2, comnb_flt8toi2, CS_SMALLINT_TYPE, 2, true, 32767, OVER, OVER},
    {"i2 -inf", false, -kInf, comn_flt8toi2, comnb_flt8toi2, CS_SMALLINT_TYPE, 2, true, -32768, OVER, OVER},
    {"i2 single -32768.5", true, -32768.5, comn_flt4toi2, comnb_flt4toi2, CS_SMALLINT_TYPE, 2, true, -32768, OVER, OVER},
    // i4
    {"i4 2147483647.5", false, 2147483647.5, comn_flt8toi4, comnb_flt8toi4, CS_INT_TYPE, 4, true, INT32_MAX, OVER, OVER},
    {"i4 at hi", false, 2147483647.0, comn_flt8toi4, comnb_flt8toi4, CS_INT_TYPE, 4, true, INT32_MAX, OK, OK},
    {"i4 inside hi", false, down(2147483647.0), comn_flt8toi4, comnb_flt8toi4, CS_INT_TYPE, 4, true, 2147483646, OK, OK},
    {"i4 at lo", false, -2147483648.0, comn_flt8toi4, comnb_flt8toi4, CS_INT_TYPE, 4, true, INT32_MIN, OK, OK},
    {"i4 below lo", false, down(-2147483648.0), comn_flt8toi4, comnb_flt8toi4, CS_INT_TYPE, 4, true, INT32_MIN, OVER, OVER},
    {"i4 -2.9", false, -2.9, comn_flt8toi4, comnb_flt8toi4, CS_INT_TYPE, 4, true, -2, OK, OK},
    {"i4 +inf", false, kInf, comn_flt8toi4, comnb_flt8toi4, CS_INT_TYPE, 4, true, INT32_MAX, OVER, OVER},
    {"i4 NaN", false, kNaN, comn_flt8toi4, comnb_flt8toi4, CS_INT_TYPE, 4, true, INT32_MIN, OK, OK},
    {"i4 single 2^31", true, 2147483648.0, comn_flt4toi4, comnb_flt4toi4, CS_INT_TYPE, 4, true, INT32_MAX, OVER, OVER},
    {"i4 single below 2^31", true, downf(2147483648.0f), comn_flt4toi4, comnb_flt4toi4, CS_INT_TYPE, 4, true, 2147483520, OK, OK},
    // i8 from a double: the bound is the largest double below 2^63 that
    // the table names, not 2^63 itself.
    {"i8 at hi", false, 9223372036854769664.0, comn_flt8toi8, comnb_flt8toi8, CS_BIGINT_TYPE, 8, true, 9223372036854769664LL, OK, OK},
    {"i8 inside hi", false, down(9223372036854769664.0), comn_flt8toi8, comnb_flt8toi8, CS_BIGINT_TYPE, 8, true, 9223372036854768640LL, OK, OK},
    {"i8 above hi", false, up(9223372036854769664.0), comn_flt8toi8, comnb_flt8toi8, CS_BIGINT_TYPE, 8, true, 9223372036854769664LL, OVER, OVER},
    {"i8 at lo", false, -9223372036854769664.0, comn_flt8toi8, comnb_flt8toi8, CS_BIGINT_TYPE, 8, true, -9223372036854769664LL, OK, OK},
    {"i8 below lo", false, down(-9223372036854769664.0), comn_flt8toi8, comnb_flt8toi8, CS_BIGINT_TYPE, 8, true, -9223372036854769664LL, OVER, OVER},
    {"i8 inside lo", false, up(-9223372036854769664.0), comn_flt8toi8, comnb_flt8toi8, CS_BIGINT_TYPE, 8, true, -9223372036854768640LL, OK, OK},
    {"i8 -inf", false, -kInf, comn_flt8toi8, comnb_flt8toi8, CS_BIGINT_TYPE, 8, true, -9223372036854769664LL, OVER, OVER},
    // i8 from a single compares as a single against 9.22337e18.
    {"i8 single at hi", true, 9.22337e18f, comn_flt4toi8, comnb_flt4toi8, CS_BIGINT_TYPE, 8, true, static_cast<int64_t>(9.22337e18f), OK, OK},
    {"i8 single above hi", true, upf(9.22337e18f), comn_flt4toi8, comnb_flt4toi8, CS_BIGINT_TYPE, 8, true, 9223370000000000000LL, OVER, OVER},
    {"i8 single inside hi", true, downf(9.22337e18f), comn_flt4toi8, comnb_flt4toi8, CS_BIGINT_TYPE, 8, true, static_cast<int64_t>(downf(9.22337e18f)), OK, OK},
    {"i8 single at lo", true, -9.22337e18f, comn_flt4toi8, comnb_flt4toi8, CS_BIGINT_TYPE, 8, true, static_cast<int64_t>(-9.22337e18f), OK, OK},
    {"i8 single below lo", true, downf(-9.22337e18f), comn_flt4toi8, comnb_flt4toi8, CS_BIGINT_TYPE, 8, true, -9223370000000000000LL, OVER, OVER},
    // unsigned destinations: below the range comn_ says UNDER, comnb_ OVER.
    {"ui2 -1", false, -1.0, comn_flt8toui2, comnb_flt8toui2, CS_USMALLINT_TYPE, 2, false, 0, UNDER, OVER},
    {"ui2 -0.5", false, -0.5, comn_flt8toui2, comnb_flt8toui2, CS_USMALLINT_TYPE, 2, false, 0, UNDER, OVER},
    {"ui2 -0.0", false, -0.0, comn_flt8toui2, comnb_flt8toui2, CS_USMALLINT_TYPE, 2, false, 0, OK, OK},
    {"ui2 at hi", false, 65535.0, comn_flt8toui2, comnb_flt8toui2, CS_USMALLINT_TYPE, 2, false, 65535, OK, OK},
    {"ui2 inside hi", false, down(65535.0), comn_flt8toui2, comnb_flt8toui2, CS_USMALLINT_TYPE, 2, false, 65534, OK, OK},
    {"ui2 single -0.5", true, -0.5, comn_flt4toui2, comnb_flt4toui2, CS_USMALLINT_TYPE, 2, false, 0, UNDER, OVER},
    {"ui2 above hi", false, up(65535.0), comn_flt8toui2, comnb_flt8toui2, CS_USMALLINT_TYPE, 2, false, 65535, OVER, OVER},
    {"ui4 at hi", false, 4294967295.0, comn_flt8toui4, comnb_flt8toui4, CS_UINT_TYPE, 4, false, UINT32_MAX, OK, OK},
    {"ui4 inside hi", false, down(4294967295.0), comn_flt8toui4, comnb_flt8toui4, CS_UINT_TYPE, 4, false, 4294967294U, OK, OK},
    {"ui4 above hi", false, up(4294967295.0), comn_flt8toui4, comnb_flt8toui4, CS_UINT_TYPE, 4, false, UINT32_MAX, OVER, OVER},
    {"ui4 below", false, down(0.0), comn_flt8toui4, comnb_flt8toui4, CS_UINT_TYPE, 4, false, 0, UNDER, OVER},
    {"ui4 single -inf", true, -kInf, comn_flt4toui4, comnb_flt4toui4, CS_UINT_TYPE, 4, false, 0, UNDER, OVER},
    // ui8: at or above 2^63 one less than exact.
    {"ui8 2^63", false, 9223372036854775808.0, comn_flt8toui8, comnb_flt8toui8, CS_UBIGINT_TYPE, 8, false, 9223372036854775807ULL, OK, OK},
    {"ui8 below 2^63", false, down(9223372036854775808.0), comn_flt8toui8, comnb_flt8toui8, CS_UBIGINT_TYPE, 8, false, 9223372036854774784ULL, OK, OK},
    {"ui8 above 2^63", false, up(9223372036854775808.0), comn_flt8toui8, comnb_flt8toui8, CS_UBIGINT_TYPE, 8, false, 9223372036854777855ULL, OK, OK},
    {"ui8 at hi", false, 18446744073709500416.0, comn_flt8toui8, comnb_flt8toui8, CS_UBIGINT_TYPE, 8, false, 18446744073709500415ULL, OK, OK},
    {"ui8 above hi", false, up(18446744073709500416.0), comn_flt8toui8, comnb_flt8toui8, CS_UBIGINT_TYPE, 8, false, 18446744073709500416ULL, OVER, OVER},
    {"ui8 at 0", false, 0.0, comn_flt8toui8, comnb_flt8toui8, CS_UBIGINT_TYPE, 8, false, 0, OK, OK},
    {"ui8 below", false, -1e-300, comn_flt8toui8, comnb_flt8toui8, CS_UBIGINT_TYPE, 8, false, 0, UNDER, OVER},
    {"ui8 small", false, 12345.99, comn_flt8toui8, comnb_flt8toui8, CS_UBIGINT_TYPE, 8, false, 12345, OK, OK},
    {"ui8 single at hi", true, 1.84467e19f, comn_flt4toui8, comnb_flt4toui8, CS_UBIGINT_TYPE, 8, false,
     static_cast<__int128>(9223372036854775807ULL) + static_cast<uint64_t>(static_cast<double>(1.84467e19f) - 9223372036854775808.0), OK, OK},
    {"ui8 single above hi", true, upf(1.84467e19f), comn_flt4toui8, comnb_flt4toui8, CS_UBIGINT_TYPE, 8, false, 18446700000000000000ULL, OVER, OVER},
    {"ui8 single inf", true, kInf, comn_flt4toui8, comnb_flt4toui8, CS_UBIGINT_TYPE, 8, false, 18446700000000000000ULL, OVER, OVER},
};

class FloatToInt : public ::testing::TestWithParam<IntCase> {};

TEST_P(FloatToInt, StoresTheBoundOrTheTruncationInBothLayers)
{
    const IntCase &c = GetParam();
    Context ctx;
    const float single = static_cast<float>(c.value);
    CS_BYTE src[8];
    if (c.single)
        std::memcpy(src, &single, 4);
    else
        std::memcpy(src, &c.value, 8);
    CS_DATAFMT sfmt = fmt(c.single ? CS_REAL_TYPE : CS_FLOAT_TYPE, c.single ? 4 : 8);
    CS_DATAFMT dfmt = fmt(c.desttype, c.size);
    CS_BYTE dest[9];
    std::memset(dest, 0xAB, sizeof dest);
    CS_INT destlen = -1;
    EXPECT_EQ(code_name(c.comn(ctx.get(), &sfmt, src, &dfmt, dest, &destlen)), code_name(c.comn_code));
    EXPECT_EQ(destlen, c.size);
    EXPECT_EQ(str128(read_int(dest, c.size, c.is_signed)), str128(c.stored));
    EXPECT_EQ(dest[c.size], 0xAB) << "wrote past the value";

    CAST_CONTEXT cast{};
    CS_BYTE bdest[8];
    __CONSTANT bsrc = kes::test::constant(src, c.single ? 4 : 8, 8);
    __CONSTANT bdst = kes::test::constant(bdest, 0, 8);
    EXPECT_EQ(code_name(c.comnb(&cast, &bsrc, &bdst)), code_name(c.comnb_code));
    EXPECT_EQ(bdst.len, c.size);
    EXPECT_EQ(str128(read_int(bdest, c.size, c.is_signed)), str128(c.stored));
}

INSTANTIATE_TEST_SUITE_P(Bounds, FloatToInt, ::testing::ValuesIn(kIntCases),
                         [](const auto &info) {
                             std::string name = info.param.what;
                             for (char &ch : name)
                                 if (!std::isalnum(static_cast<unsigned char>(ch)))
                                     ch = '_';
                             return name + "_" + std::to_string(info.index);
                         });

TEST(FloatToInt, CsLongIsAnI8Destination)
{
    Context ctx;
    double v = -7.5;
    CS_BIGINT out = 0;
    CS_INT destlen = 0;
    CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_LONG_TYPE, 8);
    EXPECT_EQ(comn_flt8toi8(ctx.get(), &sfmt, &v, &dfmt, &out, &destlen), CS_SUCCEED);
    EXPECT_EQ(out, -7);
}

// ---- bit and float to float ----------------------------------------------

TEST(FloatToBit, OnlyZeroOfEitherSignIsZero)
{
    Context ctx;
    const struct {
        double v;
        CS_BIT bit;
    } cases[] = {{0.0, 0}, {-0.0, 0}, {5e-324, 1}, {-1.0, 1}, {kNaN, 1}, {kInf, 1}};
    for (const auto &c : cases) {
        CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_BIT_TYPE, 1);
        CS_BIT out = 9;
        CS_INT destlen = 0;
        EXPECT_EQ(comn_flt8tobit(ctx.get(), &sfmt, const_cast<double *>(&c.v), &dfmt, &out, &destlen), CS_SUCCEED);
        EXPECT_EQ(out, c.bit) << c.v;
        EXPECT_EQ(destlen, 1);
        const float single = static_cast<float>(c.v); // the smallest double becomes 0.0f
        sfmt = fmt(CS_REAL_TYPE, 4);
        EXPECT_EQ(comn_flt4tobit(ctx.get(), &sfmt, const_cast<float *>(&single), &dfmt, &out, &destlen),
                  CS_SUCCEED);
        EXPECT_EQ(out, single != 0.0f ? 1 : 0) << c.v;
    }
}

uint32_t bits_of(float f)
{
    uint32_t b;
    std::memcpy(&b, &f, 4);
    return b;
}

TEST(FloatToFloat, DoubleToSingleSaturatesAboveTheLargestSingle)
{
    Context ctx;
    constexpr double largest = 3.4028234663852886e38;
    const struct {
        double v;
        uint32_t bits;
        CS_RETCODE code;
    } cases[] = {
        {largest, 0x7f7fffffU, CS_SUCCEED},
        {up(largest), 0x7f7fffffU, CS_EOVERFLOW},
        {kInf, 0x7f7fffffU, CS_EOVERFLOW},
        {-largest, 0xff7fffffU, CS_SUCCEED},
        {down(-largest), 0xff7fffffU, CS_EOVERFLOW},
        {-kInf, 0xff7fffffU, CS_EOVERFLOW},
        {1e-300, 0x00000000U, CS_SUCCEED}, // no underflow test
        {-1e-300, 0x80000000U, CS_SUCCEED},
        {0.1, bits_of(0.1f), CS_SUCCEED},
    };
    for (const auto &c : cases) {
        CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_REAL_TYPE, 4);
        float out = 0;
        CS_INT destlen = 0;
        EXPECT_EQ(code_name(comn_flt8toflt4(ctx.get(), &sfmt, const_cast<double *>(&c.v), &dfmt, &out, &destlen)),
                  code_name(c.code))
            << c.v;
        EXPECT_EQ(bits_of(out), c.bits) << c.v;
        EXPECT_EQ(destlen, 4);
        CAST_CONTEXT cast{};
        double v = c.v;
        float bout = 0;
        __CONSTANT bsrc = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), 8, 8);
        __CONSTANT bdst = kes::test::constant(reinterpret_cast<CS_BYTE *>(&bout), 0, 4);
        EXPECT_EQ(comnb_flt8toflt4(&cast, &bsrc, &bdst), c.code);
        EXPECT_EQ(bits_of(bout), c.bits);
        EXPECT_EQ(bdst.len, 4);
    }
}

TEST(FloatToFloat, CopiesAndWideningAreExact)
{
    Context ctx;
    float single = 0.1f;
    double wide = 0;
    CS_INT destlen = 0;
    CS_DATAFMT sfmt = fmt(CS_REAL_TYPE, 4), dfmt = fmt(CS_FLOAT_TYPE, 8);
    EXPECT_EQ(comn_flt4toflt8(ctx.get(), &sfmt, &single, &dfmt, &wide, &destlen), CS_SUCCEED);
    EXPECT_EQ(wide, static_cast<double>(0.1f));
    EXPECT_EQ(destlen, 8);
    float copy = 0;
    dfmt = fmt(CS_REAL_TYPE, 4);
    EXPECT_EQ(comn_flt4toflt4(ctx.get(), &sfmt, &single, &dfmt, &copy, &destlen), CS_SUCCEED);
    EXPECT_EQ(copy, 0.1f);
    double d = -kInf, dcopy = 0;
    sfmt = fmt(CS_FLOAT_TYPE, 8);
    dfmt = fmt(CS_FLOAT_TYPE, 8);
    EXPECT_EQ(comn_flt8toflt8(ctx.get(), &sfmt, &d, &dfmt, &dcopy, &destlen), CS_SUCCEED);
    EXPECT_EQ(dcopy, -kInf);
}

// ---- text ------------------------------------------------------------------

struct TextCase {
    double value;
    bool single;
    CS_INT maxlength;
    CS_INT format;
    const char *stored; // the bytes counted by *destlen
    CS_INT destlen;
    CS_RETCODE code;
};

const TextCase kTextCases[] = {
    {1.0, false, 64, 0, "1.0", 3, CS_SUCCEED},
    {0.5, false, 64, 0, ".5", 2, CS_SUCCEED},
    {-0.5, false, 64, 0, "-0.5", 4, CS_SUCCEED},
    {1e100, false, 64, 0, "1e+100", 6, CS_SUCCEED},
    {-0.0, false, 64, 0, "0.0", 3, CS_SUCCEED},
    {0.1, false, 64, 0, ".10000000000000001", 18, CS_SUCCEED},
    {0.1, true, 64, 0, ".10000000149011612", 18, CS_SUCCEED},
    {1e16, false, 64, 0, "10000000000000000.0", 19, CS_SUCCEED},
    {1e17, false, 64, 0, "1e+17", 5, CS_SUCCEED},
    {kInf, false, 64, 0, "inf.0", 5, CS_SUCCEED},
    {-kInf, false, 64, 0, "-inf.0", 6, CS_SUCCEED},
    {kNaN, false, 64, 0, "nan.0", 5, CS_SUCCEED},
    {5e-324, false, 64, 0, "4.9406564584124654e-324", 23, CS_SUCCEED},
    {-2.2250738585072014e-308, false, 64, 0, "-2.2250738585072014e-308", 24, CS_SUCCEED},
    // The NUL counts in *destlen; exact capacity without the NUL bit fits.
    {1.0, false, 64, CS_FMT_NULLTERM, "1.0\0", 4, CS_SUCCEED},
    {1.0, false, 3, 0, "1.0", 3, CS_SUCCEED},
    {1.0, false, 6, CS_FMT_PADBLANK, "1.0   ", 6, CS_SUCCEED},
    {1.0, false, 5, CS_FMT_PADNULL, "1.0\0\0", 5, CS_SUCCEED},
    {1.0, false, 5, CS_FMT_PADNULL | CS_FMT_PADBLANK, "1.0", 3, CS_EFORMAT},
    // No room: "*" and a NUL for any capacity above 1; *destlen is 1 and the
    // fill that runs after it counts a terminator of the NUL bit.
    {0.5, false, 2, CS_FMT_NULLTERM, "*\0", 2, CS_EOVERFLOW},
    {1.0, false, 3, CS_FMT_NULLTERM, "*\0", 2, CS_EOVERFLOW},
    {123.25, false, 4, CS_FMT_PADBLANK, "*   ", 4, CS_EOVERFLOW},
    {123.25, false, 5, 0, "*", 1, CS_EOVERFLOW},
    // Capacity 1 or 0: nothing written, *destlen the smaller length.
    {0.5, false, 1, 0, "", 1, CS_EOVERFLOW},
    {0.5, false, 0, 0, "", 0, CS_EOVERFLOW},
};

class FloatToChar : public ::testing::TestWithParam<TextCase> {};

TEST_P(FloatToChar, TextAndPlacementFollowTheFormat)
{
    const TextCase &c = GetParam();
    Context ctx;
    char dest[80];
    std::memset(dest, '#', sizeof dest);
    CS_INT destlen = -7;
    CS_DATAFMT dfmt = fmt(CS_CHAR_TYPE, c.maxlength, c.format);
    CS_RETCODE rc;
    if (c.single) {
        float v = static_cast<float>(c.value);
        CS_DATAFMT sfmt = fmt(CS_REAL_TYPE, 4);
        rc = comn_flt4tochar(ctx.get(), &sfmt, &v, &dfmt, dest, &destlen);
    } else {
        double v = c.value;
        CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8);
        rc = comn_flt8tochar(ctx.get(), &sfmt, &v, &dfmt, dest, &destlen);
    }
    EXPECT_EQ(code_name(rc), code_name(c.code));
    EXPECT_EQ(destlen, c.destlen);
    if (c.maxlength > 1)
        EXPECT_EQ(std::string(dest, static_cast<size_t>(destlen)),
                  std::string(c.stored, static_cast<size_t>(c.destlen)));
    if (c.code == CS_EOVERFLOW && c.maxlength > 1 && (c.format & CS_FMT_PADBLANK) == 0)
        EXPECT_EQ(dest[1], '\0') << "the star is terminated";
    if (c.maxlength <= 1)
        EXPECT_EQ(dest[0], '#') << "nothing written";
    EXPECT_EQ(dest[c.maxlength], '#') << "wrote past the capacity";
}

INSTANTIATE_TEST_SUITE_P(Text, FloatToChar, ::testing::ValuesIn(kTextCases));

TEST(FloatToChar, ServerLayerWritesNothingWithoutRoomAndOnlyTheSingleClearsTheLength)
{
    CAST_CONTEXT cast{};
    cast.format = CS_FMT_NULLTERM;
    CS_BYTE out[8];
    std::memset(out, '#', sizeof out);
    double d = 0.25; // ".25": 3 bytes, no room for the NUL in 3
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&d), 8, 8);
    __CONSTANT dst = kes::test::constant(out, 0, 3);
    EXPECT_EQ(comnb_flt8tochar(&cast, &src, &dst), CS_EOVERFLOW);
    EXPECT_EQ(dst.len, 3);
    EXPECT_EQ(out[0], '#');

    float f = 0.25f;
    src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&f), 4, 4);
    dst = kes::test::constant(out, 0, 3);
    EXPECT_EQ(comnb_flt4tochar(&cast, &src, &dst), CS_EOVERFLOW);
    EXPECT_EQ(dst.len, 0);
    EXPECT_EQ(out[0], '#');

    dst = kes::test::constant(out, 0, 4);
    EXPECT_EQ(comnb_flt4tochar(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(dst.len, 4);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), 4), std::string(".25\0", 4));

}

TEST(FloatToVarchar, ContextLayerAlwaysFitsServerLayerChecksTheCapacity)
{
    Context ctx;
    double v = -1.5e-7;
    CS_VARCHAR vc;
    std::memset(&vc, '#', sizeof vc);
    CS_INT destlen = 0;
    CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_VARCHAR_TYPE, 258);
    EXPECT_EQ(comn_flt8tovarchar(ctx.get(), &sfmt, &v, &dfmt, &vc, &destlen), CS_SUCCEED);
    EXPECT_EQ(destlen, 258);
    EXPECT_EQ(std::string(vc.str, static_cast<size_t>(vc.len)), "-1.4999999999999999e-07");

    CAST_CONTEXT cast{};
    CS_BYTE out[32];
    std::memset(out, '#', sizeof out);
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), 8, 8);
    for (CS_INT maxlen : {22, 23, 24}) {
        __CONSTANT dst = kes::test::constant(out, 0, maxlen);
        const CS_RETCODE rc = comnb_flt8tovarchar(&cast, &src, &dst);
        EXPECT_EQ(rc, maxlen >= 23 ? CS_SUCCEED : CS_EOVERFLOW) << maxlen;
        EXPECT_EQ(dst.len, maxlen >= 23 ? 23 : maxlen);
        EXPECT_EQ(out[0], maxlen >= 23 ? '-' : '#');
    }
}

TEST(FloatToBinary, StorageBytesThroughTheFixedHelpers)
{
    Context ctx;
    double v = 1.0;
    CS_BYTE out[10];
    std::memset(out, 0xEE, sizeof out);
    CS_INT destlen = 0;
    CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_BINARY_TYPE, 10, CS_FMT_PADNULL);
    EXPECT_EQ(comn_flt8tobin(ctx.get(), &sfmt, &v, &dfmt, out, &destlen), CS_SUCCEED);
    EXPECT_EQ(kes::test::hex(out, 10), "000000000000f03f0000");
    EXPECT_EQ(destlen, 10);
    float f = 1.0f;
    sfmt = fmt(CS_REAL_TYPE, 4);
    dfmt = fmt(CS_IMAGE_TYPE, 3);
    EXPECT_EQ(comn_flt4tobin(ctx.get(), &sfmt, &f, &dfmt, out, &destlen), CS_TRUNCATED);
    EXPECT_EQ(destlen, 3);
    CS_VARBINARY vb;
    dfmt = fmt(CS_VARBINARY_TYPE, 258);
    EXPECT_EQ(comn_flt4tovarbin(ctx.get(), &sfmt, &f, &dfmt, &vb, &destlen), CS_SUCCEED);
    EXPECT_EQ(vb.len, 4);
    EXPECT_EQ(kes::test::hex(vb.array, 4), "0000803f");
    EXPECT_EQ(destlen, 258);
}

// ---- assertions ------------------------------------------------------------

TEST(FloatConvDeath, ArgumentsAndTypesAreAsserted)
{
    Context ctx;
    double v = 1.0;
    CS_INT out = 0, destlen = 0;
    CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_INT_TYPE, 4);
    EXPECT_NULL_POINTER(comn_flt8toi4(ctx.get(), &sfmt, nullptr, &dfmt, &out, &destlen));
    EXPECT_NULL_POINTER(comn_flt8toi4(ctx.get(), &sfmt, &v, &dfmt, &out, nullptr));
    CS_DATAFMT wrong = fmt(CS_REAL_TYPE, 4);
    EXPECT_BOMB(comn_flt8toi4(ctx.get(), &wrong, &v, &dfmt, &out, &destlen));
    CS_DATAFMT wrong_dest = fmt(CS_SMALLINT_TYPE, 2);
    EXPECT_BOMB(comn_flt8toi4(ctx.get(), &sfmt, &v, &wrong_dest, &out, &destlen));
    char text[8];
    CS_DATAFMT negative = fmt(CS_CHAR_TYPE, -1);
    EXPECT_BOMB(comn_flt8tochar(ctx.get(), &sfmt, &v, &negative, text, &destlen));
}

} // namespace
