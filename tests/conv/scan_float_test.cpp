// Text to CS_FLOAT and CS_REAL: the range results and their order against the
// syntax test, the single-precision limit, the length limit, NULs, both
// sources and layers, and a differential run against strtod.
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

#include "intl/test_charsets.h"
#include "support/context.h"

namespace {

using namespace std::string_view_literals;
using kes::test::code_name;

// Reads the text from a CS_CHAR source, a CS_VARCHAR one (past len it holds
// digits) and the server layer into -7, and compares the result bit for bit
// (NaN as NaN).  Only the context layer empties the length on a syntax error.
template <class F> void check(std::string_view text, CS_RETCODE rc, F value, CS_ATTRIB *attr = nullptr)
{
    static kes::test::Context ctx;
    constexpr bool kDouble = sizeof(F) == 8;
    std::string chars(text);
    for (int layer : {0, 1, 2}) {
        if ((layer == 1 && text.size() > CS_MAX_CHAR) || (layer < 2 && attr != nullptr))
            continue;
        SCOPED_TRACE(layer == 0 ? "char" : layer == 1 ? "varchar" : "server");
        CS_VARCHAR vc;
        std::memset(&vc, '9', sizeof vc);
        vc.len = static_cast<CS_SMALLINT>(layer == 1 ? text.size() : 0);
        std::memcpy(vc.str, text.data(), static_cast<size_t>(vc.len));
        CS_DATAFMT sf = layer == 1 ? kes::test::fmt(CS_VARCHAR_TYPE, sizeof vc)
                                   : kes::test::fmt(CS_CHAR_TYPE, static_cast<CS_INT>(text.size()));
        CS_DATAFMT df = kes::test::fmt(kDouble ? CS_FLOAT_TYPE : CS_REAL_TYPE);
        F out = F(-7);
        CS_INT destlen = -3;
        if (layer < 2) {
            CS_CONV_FUNC f = kDouble ? (layer == 1 ? comn_varchartoflt8 : comn_chartoflt8)
                                     : (layer == 1 ? comn_varchartoflt4 : comn_chartoflt4);
            CS_VOID *src = layer == 1 ? static_cast<CS_VOID *>(&vc) : chars.data();
            EXPECT_EQ(code_name(f(ctx.get(), &sf, src, &df, &out, &destlen)), code_name(rc));
        } else {
            CAST_CONTEXT cc{};
            cc.char_attrib = attr;
            __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(chars.data()), sf.maxlength, 0);
            __CONSTANT dest = kes::test::constant(reinterpret_cast<CS_BYTE *>(&out), -3, sizeof out);
            EXPECT_EQ(code_name((kDouble ? comnb_chartoflt8 : comnb_varchartoflt4)(&cc, &src, &dest)), code_name(rc));
            destlen = dest.len;
        }
        using Bits = std::conditional_t<kDouble, uint64_t, uint32_t>;
        if (std::isnan(value)) {
            EXPECT_TRUE(std::isnan(out)) << out;
        } else {
            EXPECT_EQ(std::bit_cast<Bits>(out), std::bit_cast<Bits>(value)) << out;
        }
        EXPECT_EQ(destlen, layer < 2 && rc == CS_ESYNTAX ? 0 : static_cast<CS_INT>(sizeof out));
    }
}

TEST(ScanFloat, RangeBeforeSyntaxTheRealLimitAndTheLengthLimit)
{
    struct Case { bool real; std::string_view text; CS_RETCODE rc; double value; }; // -7: left alone
    const std::string long_text = "1." + std::string(1021, '0'), too_long = long_text + "0";
    const Case cases[] = {
        {false, "  -1.5", CS_SUCCEED, -1.5}, {false, "+2.5e3 \t\n", CS_SUCCEED, 2500.0}, {false, "0x1p3", CS_SUCCEED, 8.0},
        {false, ".5", CS_SUCCEED, 0.5}, {false, "-0", CS_SUCCEED, -0.0}, {false, "4.9e-324", CS_SUCCEED, 4.9e-324},
        {false, "1.7976931348623157e308", CS_SUCCEED, DBL_MAX}, {false, "1e400", CS_EOVERFLOW, DBL_MAX},
        {false, "-Infinity", CS_EOVERFLOW, -DBL_MAX}, {false, "1e-400", CS_EUNDERFLOW, 0.0},
        {false, "-1e-400", CS_EUNDERFLOW, -0.0}, {false, "1e400x", CS_EOVERFLOW, DBL_MAX},
        {false, "1e-400x", CS_EUNDERFLOW, 0.0}, {false, "   ", CS_SUCCEED, 0.0}, {false, "nan", CS_SUCCEED, NAN},
        {false, "", CS_SUCCEED, 0.0},
        // A refused text leaves a double destination holding its leading part; a NUL ends the text.
        {false, "1.5x", CS_ESYNTAX, 1.5}, {false, "1 2", CS_ESYNTAX, 1.0}, {false, "--1", CS_ESYNTAX, 0.0},
        {false, "2.5\0zz"sv, CS_SUCCEED, 2.5}, {false, "\0"sv, CS_SUCCEED, 0.0},
        {false, long_text, CS_SUCCEED, 1.0}, {false, too_long, CS_ESYNTAX, -7.0}, // 1024 bytes are refused unread
        {true, "3.4028234663852886e38", CS_SUCCEED, FLT_MAX}, {true, "3.4028235e38", CS_EOVERFLOW, FLT_MAX},
        {true, "-1e39", CS_EOVERFLOW, -FLT_MAX}, {true, "1e400", CS_EOVERFLOW, FLT_MAX},
        {true, "-inf", CS_EOVERFLOW, -FLT_MAX}, {true, "1e-50", CS_SUCCEED, 0.0}, {true, " -NAN ", CS_SUCCEED, NAN},
        {true, "1e-40", CS_SUCCEED, static_cast<float>(1e-40)}, {true, "1e-400", CS_EUNDERFLOW, 0.0},
        {true, "1.5x", CS_ESYNTAX, -7.0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE((c.real ? "real \"" : "float \"") + std::string(c.text.substr(0, 30)) + "\"");
        if (c.real)
            check<float>(c.text, c.rc, static_cast<float>(c.value));
        else
            check<double>(c.text, c.rc, c.value);
    }
}

// The server layer reads full-width digits and point by their ASCII equivalents.
TEST(ScanFloat, MultiByteTextIsNormalisedFirst)
{
    kes::test::DoubleByte set;
    check<double>("\x82\x50\x81\x44\x82\x54", CS_SUCCEED, 1.5, set);
}

// Printed doubles of every kind: any finite bit pattern, scaled integers,
// short decimals; in exponent, fixed, hexadecimal and over-long forms.
std::string random_float_text(std::mt19937_64 &rng)
{
    double d;
    switch (rng() % 3) {
    case 0: d = std::bit_cast<double>(static_cast<uint64_t>(rng())); d = std::isfinite(d) ? d : 1.0; break;
    case 1: d = std::ldexp(static_cast<double>(rng() % 1000000), static_cast<int>(rng() % 200) - 100); break;
    default: d = static_cast<double>(static_cast<int64_t>(rng() % 2000001) - 1000000) / 1000.0; break;
    }
    static const char *const formats[] = {"%.17g", "%.3g", "%.10e", "%f", "%a", "%.25g"};
    char buf[512];
    std::snprintf(buf, sizeof buf, formats[rng() % 6], d);
    return rng() % 4 == 0 ? " " + std::string(buf) + "  " : std::string(buf);
}

TEST(ScanFloatDifferential, AgreesWithStrtodOnWellFormedText)
{
    std::mt19937_64 rng(0xf10a7);
    for (int i = 0; i < 20000; i++) {
        const std::string text = random_float_text(rng);
        const double expected = std::strtod(text.c_str(), nullptr);
        const float narrowed = static_cast<float>(expected);
        SCOPED_TRACE(text);
        check<double>(text, CS_SUCCEED, expected);
        if (std::fabs(expected) > FLT_MAX)
            check<float>(text, CS_EOVERFLOW, std::copysign(FLT_MAX, narrowed));
        else
            check<float>(text, CS_SUCCEED, narrowed);
        ASSERT_FALSE(HasFailure());
    }
}

} // namespace
