// Text to CS_FLOAT and CS_REAL: the range results and their order against the
// syntax test, the single-precision limit, the length limit, trailing white
// space, NULs, both layers, and a differential run against strtod.
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <string_view>

#include "support/context.h"

namespace {

using namespace std::string_view_literals;
using kes::test::Context;
using kes::test::code_name;

uint64_t bits_of(double d)
{
    uint64_t b;
    std::memcpy(&b, &d, 8);
    return b;
}

uint32_t bits_of(float f)
{
    uint32_t b;
    std::memcpy(&b, &f, 4);
    return b;
}

template <class F> struct Outcome {
    CS_RETCODE rc;
    CS_INT destlen;
    F value;
};

template <class F> Outcome<F> convert(Context &ctx, std::string_view text, F initial = F(-7))
{
    std::string src(text);
    CS_DATAFMT sf = kes::test::fmt(CS_CHAR_TYPE, static_cast<CS_INT>(src.size()));
    CS_DATAFMT df = kes::test::fmt(sizeof(F) == 8 ? CS_FLOAT_TYPE : CS_REAL_TYPE);
    F value = initial;
    CS_INT destlen = -3;
    const CS_RETCODE rc = sizeof(F) == 8 ? comn_chartoflt8(ctx.get(), &sf, src.data(), &df, &value, &destlen)
                                         : comn_chartoflt4(ctx.get(), &sf, src.data(), &df, &value, &destlen);
    return {rc, destlen, value};
}

template <class F> struct Case {
    std::string_view text;
    CS_RETCODE rc;
    F value; // compared bit for bit; -7 means left alone
};

template <class F> void run_table(std::initializer_list<Case<F>> cases)
{
    Context ctx;
    for (const Case<F> &c : cases) {
        SCOPED_TRACE("text \"" + std::string(c.text) + "\"");
        const Outcome<F> out = convert<F>(ctx, c.text);
        EXPECT_EQ(code_name(out.rc), code_name(c.rc));
        EXPECT_EQ(bits_of(out.value), bits_of(c.value)) << out.value;
        EXPECT_EQ(out.destlen, c.rc == CS_ESYNTAX ? 0 : static_cast<CS_INT>(sizeof(F)));
    }
}

TEST(ScanFloat, DoubleValuesRangesAndSyntax)
{
    run_table<double>({
        {"1.5", CS_SUCCEED, 1.5},
        {"  -1.5", CS_SUCCEED, -1.5},
        {"+2.5e3 \t\n", CS_SUCCEED, 2500.0},
        {"0x1p3", CS_SUCCEED, 8.0},
        {".5", CS_SUCCEED, 0.5},
        {"0", CS_SUCCEED, 0.0},
        {"-0", CS_SUCCEED, -0.0},
        {"4.9e-324", CS_SUCCEED, 4.9e-324},
        {"1.7976931348623157e308", CS_SUCCEED, DBL_MAX},
        {"1e400", CS_EOVERFLOW, DBL_MAX},
        {"-1e400", CS_EOVERFLOW, -DBL_MAX},
        {"inf", CS_EOVERFLOW, DBL_MAX},
        {"-Infinity", CS_EOVERFLOW, -DBL_MAX},
        {"1e-400", CS_EUNDERFLOW, 0.0},
        {"-1e-400", CS_EUNDERFLOW, -0.0},
        // Range results come before the syntax test.
        {"1e400x", CS_EOVERFLOW, DBL_MAX},
        {"1e-400x", CS_EUNDERFLOW, 0.0},
        // A refused text leaves the value of its leading part.
        {"1.5x", CS_ESYNTAX, 1.5},
        {"1e", CS_ESYNTAX, 1.0},
        {"1 2", CS_ESYNTAX, 1.0},
        {"abc", CS_ESYNTAX, 0.0},
        {"--1", CS_ESYNTAX, 0.0},
        // Blank text reads nothing and stops at its (trimmed) end.
        {"   ", CS_SUCCEED, 0.0},
        // A NUL ends the text that is read.
        {"2.5\0zz"sv, CS_SUCCEED, 2.5},
        {"\0"sv, CS_SUCCEED, 0.0},
    });
}

TEST(ScanFloat, RealLimitsAndSilentNarrowing)
{
    const float max_real = FLT_MAX;
    run_table<float>({
        {"1.5", CS_SUCCEED, 1.5f},
        {"3.4028234663852886e38", CS_SUCCEED, max_real},
        {"3.4028235e38", CS_EOVERFLOW, max_real},
        {"1e39", CS_EOVERFLOW, max_real},
        {"-1e39", CS_EOVERFLOW, -max_real},
        {"1e400", CS_EOVERFLOW, max_real},
        {"-inf", CS_EOVERFLOW, -max_real},
        {"1e-50", CS_SUCCEED, 0.0f},
        {"1e-40", CS_SUCCEED, static_cast<float>(1e-40)},
        {"1e-400", CS_EUNDERFLOW, 0.0f},
        {"1.5x", CS_ESYNTAX, -7.0f},
        {"0.1", CS_SUCCEED, static_cast<float>(0.1)},
    });
}

TEST(ScanFloat, NanPassesEveryTest)
{
    Context ctx;
    const Outcome<double> d = convert<double>(ctx, "nan");
    EXPECT_EQ(d.rc, CS_SUCCEED);
    EXPECT_TRUE(std::isnan(d.value));
    const Outcome<float> f = convert<float>(ctx, " -NAN ");
    EXPECT_EQ(f.rc, CS_SUCCEED);
    EXPECT_TRUE(std::isnan(f.value));
}

TEST(ScanFloat, TextOf1024BytesIsRefusedWhole)
{
    Context ctx;
    std::string text(1023, '0');
    text[0] = '1';
    text[1] = '.';
    EXPECT_EQ(convert<double>(ctx, text).rc, CS_SUCCEED);
    EXPECT_EQ(convert<double>(ctx, text).value, 1.0);
    text += "0";
    const Outcome<double> refused = convert<double>(ctx, text);
    EXPECT_EQ(refused.rc, CS_ESYNTAX);
    EXPECT_EQ(refused.destlen, 0);
    EXPECT_EQ(refused.value, -7.0);
}

TEST(ScanFloat, ServerLayerKeepsTheLengthOnSyntaxErrors)
{
    CAST_CONTEXT cc{};
    struct ServerCase {
        std::string_view text;
        CS_RETCODE rc;
        double value;
    };
    const ServerCase cases[] = {
        {"", CS_SUCCEED, 0.0},        {"12.25", CS_SUCCEED, 12.25}, {"x", CS_ESYNTAX, 0.0},
        {"1e999", CS_EOVERFLOW, DBL_MAX}, {"1e-999", CS_EUNDERFLOW, 0.0},
    };
    for (const ServerCase &c : cases) {
        SCOPED_TRACE(std::string(c.text));
        std::string text(c.text);
        double value = -7;
        __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(text.data()), static_cast<CS_INT>(text.size()), 0);
        __CONSTANT dest = kes::test::constant(reinterpret_cast<CS_BYTE *>(&value), 0, 8);
        EXPECT_EQ(code_name(comnb_chartoflt8(&cc, &src, &dest)), code_name(c.rc));
        EXPECT_EQ(value, c.value);
        EXPECT_EQ(dest.len, 8);
    }
    std::string text = "1e39";
    float real = 0;
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(text.data()), 4, 0);
    __CONSTANT dest = kes::test::constant(reinterpret_cast<CS_BYTE *>(&real), 0, 4);
    EXPECT_EQ(comnb_chartoflt4(&cc, &src, &dest), CS_EOVERFLOW);
    EXPECT_EQ(real, FLT_MAX);
    EXPECT_EQ(dest.len, 4);
}

TEST(ScanFloat, DoubleByteDigitsAreNormalisedFirst)
{
    // Full-width "1.5": 0xA3 0xB1, 0xA3 0xAE, 0xA3 0xB5 in a double-byte set.
    CS_BYTE width[256];
    CS_NORM_MAP norm[2]{};
    for (int b = 0; b < 256; b++) {
        width[b] = b >= 0x81 && b <= 0xFE ? 2 : 1;
        norm[0].norm[b] = b < 0x80 ? static_cast<CS_BYTE>(b) : 0;
    }
    norm[0].norm[0xA3] = 1;
    for (int c = 0x20; c < 0x7F; c++)
        norm[1].norm[0x80 + c] = static_cast<CS_BYTE>(c);
    CS_ATTRIB attr{};
    attr.cs_maxcharlen = 2;
    attr.cs_nnorm = 2;
    attr.cs_width_map = width;
    attr.cs_norm_map = norm;
    CAST_CONTEXT cc{};
    cc.char_attrib = &attr;
    std::string text = "\xA3\xB1\xA3\xAE\xA3\xB5";
    double value = 0;
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(text.data()), 6, 0);
    __CONSTANT dest = kes::test::constant(reinterpret_cast<CS_BYTE *>(&value), 0, 8);
    EXPECT_EQ(comnb_chartoflt8(&cc, &src, &dest), CS_SUCCEED);
    EXPECT_EQ(value, 1.5);
}

// ---- differential run against strtod ---------------------------------------------

std::string random_float_text(std::mt19937_64 &rng)
{
    double d;
    switch (rng() % 3) {
    case 0: { // any finite bit pattern
        uint64_t b = rng();
        std::memcpy(&d, &b, 8);
        if (!std::isfinite(d))
            d = 1.0;
        break;
    }
    case 1:
        d = std::ldexp(static_cast<double>(rng() % 1000000), static_cast<int>(rng() % 200) - 100);
        break;
    default:
        d = static_cast<double>(static_cast<int64_t>(rng() % 2000001) - 1000000) / 1000.0;
        break;
    }
    static const char *const formats[] = {"%.17g", "%.3g", "%.10e", "%f", "%a", "%.25g"};
    char buf[512];
    std::snprintf(buf, sizeof buf, formats[rng() % 6], d);
    std::string text = buf;
    if (rng() % 4 == 0)
        text = " " + text + "  ";
    return text;
}

TEST(ScanFloatDifferential, AgreesWithStrtodOnWellFormedText)
{
    Context ctx;
    std::mt19937_64 rng(0xf10a7);
    for (int i = 0; i < 20000; i++) {
        const std::string text = random_float_text(rng);
        errno = 0;
        const double expected = std::strtod(text.c_str(), nullptr);
        const Outcome<double> d = convert<double>(ctx, text);
        ASSERT_EQ(d.rc, CS_SUCCEED) << text;
        ASSERT_EQ(bits_of(d.value), bits_of(expected)) << text;
        const Outcome<float> f = convert<float>(ctx, text);
        if (std::fabs(expected) > FLT_MAX) {
            ASSERT_EQ(f.rc, CS_EOVERFLOW) << text;
            ASSERT_EQ(std::fabs(f.value), FLT_MAX) << text;
        } else {
            ASSERT_EQ(f.rc, CS_SUCCEED) << text;
            ASSERT_EQ(bits_of(f.value), bits_of(static_cast<float>(expected))) << text;
        }
    }
}

} // namespace
