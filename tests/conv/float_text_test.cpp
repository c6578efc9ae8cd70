// Float text against the C library's "%.17g" with the two rewrites, byte for
// byte, over the extremes and random bit patterns, through the char and
// varchar members of both layers.
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include "support/context.h"

namespace {

#ifndef __has_feature
#define __has_feature(x) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
constexpr int kCases = 20000; // the sanitizers cost about fifty times the time
#else
constexpr int kCases = 1000000;
#endif

// The oracle: ".5" for "0.5", ".0" after a text with neither point nor
// exponent; -0.0 prints as 0.
std::string reference(double v)
{
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.17g", v == 0.0 ? 0.0 : v);
    std::string s = buf;
    if (s.compare(0, 2, "0.") == 0)
        s.erase(0, 1);
    return s.find_first_of(".e") == std::string::npos ? s + ".0" : s;
}

// The double through the context layer's char member (and through the
// server layer's when `server`), the single through the varchar member.
void check(CS_CONTEXT *ctx, double v, float f, bool server, int &mismatches)
{
    char out[64];
    CS_VARCHAR vc;
    CS_INT destlen = 0;
    CS_DATAFMT sf = kes::test::fmt(CS_FLOAT_TYPE, 8), df = kes::test::fmt(CS_CHAR_TYPE, sizeof out);
    EXPECT_EQ(comn_flt8tochar(ctx, &sf, &v, &df, out, &destlen), CS_SUCCEED);
    const std::string got(out, static_cast<size_t>(destlen)), want = reference(v);
    sf = kes::test::fmt(CS_REAL_TYPE, 4), df = kes::test::fmt(CS_VARCHAR_TYPE, sizeof vc);
    EXPECT_EQ(comn_flt4tovarchar(ctx, &sf, &f, &df, &vc, &destlen), CS_SUCCEED);
    const std::string got4(vc.str, static_cast<size_t>(vc.len)), want4 = reference(f);
    if (got != want || got4 != want4) {
        ++mismatches;
        ADD_FAILURE() << "double " << kes::test::hex(&v, 8) << ": got " << got << ", want " << want << "; single "
                      << kes::test::hex(&f, 4) << ": got " << got4 << ", want " << want4;
    }
    if (server) {
        CAST_CONTEXT cast{};
        __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), 8, 8);
        __CONSTANT dst = kes::test::constant(reinterpret_cast<CS_BYTE *>(out), 0, sizeof out);
        EXPECT_EQ(comnb_flt8tochar(&cast, &src, &dst), CS_SUCCEED);
        EXPECT_EQ(std::string(out, static_cast<size_t>(dst.len)), want);
    }
}

// First the extremes (both sides of 10^17 and 2^53, the subnormal edge, the
// largest, NaNs of either sign); then three draws in four are raw bit
// patterns, the rest short mantissas at small exponents, where fixed
// notation, the integer path below 10^17 and the ".0" rule live.
TEST(FloatText, ExtremesAndRandomValuesAgreeWithThePrint)
{
    kes::test::Context ctx;
    constexpr double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    int mismatches = 0;
    for (double v : {0.0, -0.0, 0.5, -0.5, 1e16, 1e17, 99999999999999999.0, 123456789012345678.0, 9007199254740993.0,
                     5e-324, 2.2250738585072009e-308, -1.7976931348623157e308, inf, -inf, nan, -nan, 1e-5})
        check(ctx.get(), v, static_cast<float>(v), true, mismatches);
    std::mt19937_64 rng(20240611);
    for (int i = 0; i < kCases && mismatches < 10; i++) {
        const uint64_t bits = rng();
        double v;
        std::memcpy(&v, &bits, 8);
        if ((bits & 3) == 0)
            v = std::ldexp(static_cast<double>(static_cast<int64_t>(rng() % 2000000) - 1000000),
                           static_cast<int>(rng() % 80) - 20);
        const auto fbits = static_cast<uint32_t>(rng());
        float f;
        std::memcpy(&f, &fbits, 4);
        check(ctx.get(), v, f, i % 16 == 0, mismatches);
    }
}

} // namespace
