// Float text against the C library's formatted print: "%.17g" with the two
// rewrites, byte for byte, over random bit patterns of every exponent,
// subnormals, infinities and NaNs, through the char and varchar members of
// both layers.
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include "support/context.h"

namespace {

using kes::test::Context;
using kes::test::fmt;

#ifndef __has_feature
#define __has_feature(x) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
constexpr int kCases = 20000; // the sanitizers cost about fifty times the time
#else
constexpr int kCases = 1000000;
#endif

// The oracle: the print, then ".5" for "0.5" and ".0" after a text with
// neither point nor exponent; -0.0 prints as 0.
std::string reference(double v)
{
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.17g", v == 0.0 ? 0.0 : v);
    std::string s = buf;
    if (s.compare(0, 2, "0.") == 0)
        s.erase(0, 1);
    if (s.find_first_of(".e") == std::string::npos)
        s += ".0";
    return s;
}

std::string via_comn(CS_CONTEXT *ctx, double v)
{
    char out[64];
    CS_INT destlen = 0;
    CS_DATAFMT sfmt = fmt(CS_FLOAT_TYPE, 8), dfmt = fmt(CS_CHAR_TYPE, sizeof out);
    EXPECT_EQ(comn_flt8tochar(ctx, &sfmt, &v, &dfmt, out, &destlen), CS_SUCCEED);
    return std::string(out, static_cast<size_t>(destlen));
}

std::string via_comn_varchar(CS_CONTEXT *ctx, float v)
{
    CS_VARCHAR out;
    CS_INT destlen = 0;
    CS_DATAFMT sfmt = fmt(CS_REAL_TYPE, 4), dfmt = fmt(CS_VARCHAR_TYPE, sizeof out);
    EXPECT_EQ(comn_flt4tovarchar(ctx, &sfmt, &v, &dfmt, &out, &destlen), CS_SUCCEED);
    return std::string(out.str, static_cast<size_t>(out.len));
}

std::string via_comnb(double v)
{
    CAST_CONTEXT cast{};
    char out[64];
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), 8, 8);
    __CONSTANT dst = kes::test::constant(reinterpret_cast<CS_BYTE *>(out), 0, sizeof out);
    EXPECT_EQ(comnb_flt8tochar(&cast, &src, &dst), CS_SUCCEED);
    return std::string(out, static_cast<size_t>(dst.len));
}

// Three cases in four are raw bit patterns (every exponent alike); the rest
// are short mantissas at small exponents, where fixed notation, the integer
// path below 10^17 and the ".0" rule live.
double random_double(std::mt19937_64 &rng)
{
    const uint64_t bits = rng();
    if ((bits & 3) != 0) {
        double d;
        std::memcpy(&d, &bits, 8);
        return d;
    }
    const auto whole = static_cast<int64_t>(rng() % 2000000) - 1000000;
    return std::ldexp(static_cast<double>(whole), static_cast<int>(rng() % 80) - 20);
}

// Every double drawn goes through the context layer's char member (every
// sixteenth also through the server layer's), and a random single through
// the varchar member.
TEST(FloatText, RandomDoublesAndSinglesAgreeWithThePrint)
{
    Context ctx;
    std::mt19937_64 rng(20240611);
    int mismatches = 0;
    for (int i = 0; i < kCases && mismatches < 10; i++) {
        const double v = random_double(rng);
        const auto bits = static_cast<uint32_t>(rng());
        float f;
        std::memcpy(&f, &bits, 4);
        const std::string want = reference(v), got = via_comn(ctx.get(), v);
        const std::string want4 = reference(f), got4 = via_comn_varchar(ctx.get(), f);
        if (got != want || got4 != want4) {
            ++mismatches;
            ADD_FAILURE() << "double " << kes::test::hex(&v, 8) << ": got " << got << ", want " << want
                          << "; single " << kes::test::hex(&f, 4) << ": got " << got4 << ", want " << want4;
        }
        if (i % 16 == 0) {
            EXPECT_EQ(via_comnb(v), want);
        }
    }
}

// The extremes every run checks whatever the draw: both sides of 10^17 and
// 2^53, the subnormal edge, the largest, NaNs of either sign.
TEST(FloatText, ExtremesAgree)
{
    Context ctx;
    constexpr double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    for (double v : {0.0, -0.0, 0.5, -0.5, 1e16, 1e17, 99999999999999999.0, 123456789012345678.0, 9007199254740993.0,
                     5e-324, 2.2250738585072009e-308, -1.7976931348623157e308, inf, -inf, nan, -nan, 1e-5}) {
        EXPECT_EQ(via_comn(ctx.get(), v), reference(v)) << kes::test::hex(&v, 8);
        EXPECT_EQ(via_comnb(v), reference(v)) << kes::test::hex(&v, 8);
    }
}

} // namespace
