// Float text against the C library's formatted print: "%.17g" with the two
// rewrites, byte for byte, over random bit patterns of every exponent,
// subnormals, infinities and NaNs, through the char and varchar members of
// both layers.
#include <cstdio>
#include <random>
#include <string>

#include "support/context.h"

namespace {

using kes::test::Context;
using kes::test::fmt;

#if defined(__SANITIZE_ADDRESS__)
constexpr int kCases = 20000; // the sanitizers cost about fifty times the time
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr int kCases = 20000;
#else
constexpr int kCases = 1000000;
#endif
#else
constexpr int kCases = 1000000;
#endif

// The reference: the print, then ".5" for "0.5" and ".0" after a text with
// neither point nor exponent.
std::string reference(double v)
{
    char buf[1024];
    std::snprintf(buf, sizeof buf, "%.*g", 17, v == 0.0 ? 0.0 : v);
    std::string s = buf;
    if (s.compare(0, 2, "0.") == 0)
        s.erase(0, 1);
    if (s.find('.') == std::string::npos && s.find('e') == std::string::npos)
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

std::string via_comn_single(CS_CONTEXT *ctx, float v)
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
    CS_BYTE out[64];
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), 8, 8);
    __CONSTANT dst = kes::test::constant(out, 0, sizeof out);
    EXPECT_EQ(comnb_flt8tochar(&cast, &src, &dst), CS_SUCCEED);
    return std::string(reinterpret_cast<char *>(out), static_cast<size_t>(dst.len));
}

// Random bit patterns cover every exponent equally; a quarter of the cases
// use small exponents and short mantissas, where the fixed notation and the
// ".0" rule live.
double random_double(std::mt19937_64 &rng)
{
    const uint64_t bits = rng();
    if ((bits & 3) != 0) {
        double d;
        std::memcpy(&d, &bits, 8);
        return d;
    }
    const int64_t whole = static_cast<int64_t>(rng() % 2000000) - 1000000;
    const int shift = static_cast<int>(rng() % 40);
    return std::ldexp(static_cast<double>(whole), shift - 20);
}

TEST(FloatText, DoublesAgreeWithThePrintByteForByte)
{
    Context ctx;
    std::mt19937_64 rng(20240611);
    int mismatches = 0;
    for (int i = 0; i < kCases && mismatches < 10; i++) {
        const double v = random_double(rng);
        const std::string want = reference(v);
        const std::string got = via_comn(ctx.get(), v);
        if (got != want) {
            ++mismatches;
            ADD_FAILURE() << "value bits " << kes::test::hex(&v, 8) << ": got " << got << ", want " << want;
        }
        if (i % 16 == 0)
            EXPECT_EQ(via_comnb(v), want);
    }
}

TEST(FloatText, SinglesShowTheDigitsOfTheirExactDouble)
{
    Context ctx;
    std::mt19937_64 rng(7);
    int mismatches = 0;
    for (int i = 0; i < kCases && mismatches < 10; i++) {
        const auto bits = static_cast<uint32_t>(rng());
        float f;
        std::memcpy(&f, &bits, 4);
        const std::string want = reference(static_cast<double>(f));
        const std::string got = via_comn_single(ctx.get(), f);
        if (got != want) {
            ++mismatches;
            ADD_FAILURE() << "single bits " << kes::test::hex(&f, 4) << ": got " << got << ", want " << want;
        }
    }
}

// The extremes every run checks whatever the random draw.
TEST(FloatText, ExtremesAgree)
{
    Context ctx;
    const double cases[] = {
        0.0, -0.0, 1.0, -1.0, 0.5, -0.5, 0.1, 1e16, 1e17, 123456789012345678.0, 5e-324, -5e-324,
        2.2250738585072009e-308, 2.2250738585072014e-308, 1.7976931348623157e308, -1.7976931348623157e308,
        std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN(),
        9007199254740993.0, 0.30000000000000004, 1e-5, 1e-4, 99999999999999999.0};
    for (double v : cases)
        EXPECT_EQ(via_comn(ctx.get(), v), reference(v)) << kes::test::hex(&v, 8);
}

} // namespace
