// Decimal text into and out of numerics: the reader's grammar and odd
// exponent rules, tolerant rounding, derived shapes, the writer's room, and a
// randomised round trip against GMP at every precision and scale.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "kescomn/numconv.h"
#include "numconv_ref.h"
#include "numeric/numconv.h"

namespace {

using namespace kes::test::ref;

struct Read {
    int status, prec, scale, len;
    std::string text; // written back when status is 0
};

std::string write_back(CS_BYTE *v, int len, int prec, int scale)
{
    __CONSTANT c{};
    c.len = len;
    c.prec = static_cast<CS_BYTE>(prec);
    c.scale = static_cast<CS_BYTE>(scale);
    c.value = v;
    char buf[kes::numeric::kNumTextBuf];
    const int at = com__subexctnumetochar(&c, buf, sizeof buf);
    return at < 0 ? "<none>" : std::string(buf + at, sizeof buf - static_cast<size_t>(at));
}

// Reads text at prec/scale (0/255: derived) into a value of the precision's
// own length (33 bytes when derived), with guard bytes on both sides.
Read read(const std::string &text, int prec, int scale, int tolerant)
{
    std::string buf = text; // NUL-terminated: the exponent scan relies on it
    CS_BYTE area[80];
    std::memset(area, 0xA5, sizeof area);
    CS_BYTE *start = area + 4, *dest = start;
    const int len0 = prec >= 1 && prec <= 77 ? len_of(prec) : 33;
    CS_INT destlen = len0;
    CS_BYTE p = static_cast<CS_BYTE>(prec), s = static_cast<CS_BYTE>(scale);
    Read r{};
    r.status = com__subchartoexctnume(buf.data(), static_cast<int>(text.size()), &dest, &destlen, &p, &s, tolerant);
    EXPECT_EQ(area[3], 0xA5) << text;
    EXPECT_EQ(start[len0], 0xA5) << text;
    r.prec = p, r.scale = s, r.len = destlen;
    if (r.status == 0) {
        EXPECT_EQ(dest + destlen, start + len0) << "digits stay right-aligned: " << text;
        r.text = write_back(dest, destlen, p, s);
    }
    return r;
}

// Status 0 ok, 1 overflow, 2 syntax, 6 digits lost (strict mode only).
TEST(NumTextRead, GrammarExponentsAndToleranceTable)
{
    const std::string n77(77, '9'), n78(78, '9'), n80(80, '7');
    const struct { std::string text; int prec, scale, tolerant, status; const char *out; } cases[] = {
        {" - 12.5  ", 5, 1, 0, 0, "-12.5"}, // blanks around and after the sign
        {"+-1", 5, 0, 0, 2, ""},       {"1 2", 5, 0, 0, 2, ""},       {"1..2", 5, 1, 0, 2, ""},
        {"1x", 5, 0, 0, 2, ""},        {"1. ", 5, 0, 0, 0, "1"},      {"-0.00", 5, 2, 0, 0, "0.00"},
        {"", 5, 2, 0, 0, "0.00"},      {"99999", 5, 0, 0, 0, "99999"}, {"100000", 5, 0, 0, 1, ""},
        // Extra decimals: strict refuses, tolerant rounds half away from zero
        // and ignores anything after the dropped digits.
        {"12.345", 5, 2, 0, 6, ""},    {"12.345", 5, 2, 1, 0, "12.35"}, {"12.344x", 5, 2, 1, 0, "12.34"},
        {"12.3x", 5, 2, 1, 2, ""},     {"999.995", 5, 2, 1, 1, ""},     {"-0.5", 1, 0, 1, 0, "-1"},
        // Exponents: an empty one is zero; a trailing blank needs two digits.
        {"1.5E1", 5, 0, 0, 0, "15"},   {"15e-1", 5, 1, 0, 0, "1.5"},    {"1.5e-1", 5, 1, 0, 6, ""},
        {"1.5e-1", 5, 1, 1, 0, "0.2"}, {"1e", 5, 0, 0, 0, "1"},         {"1e+", 5, 0, 0, 0, "1"},
        {"1e5", 6, 0, 0, 0, "100000"}, {"1e5 ", 6, 0, 0, 2, ""},        {"1e05 ", 6, 0, 0, 0, "100000"},
        {"1e+05 x", 6, 0, 0, 2, ""},   {"1e5x", 6, 0, 0, 2, ""},        {"1ex", 6, 0, 0, 2, ""},
        {"1e-5", 5, 0, 1, 0, "0"},     {"9.99e-5", 5, 4, 1, 0, "0.0001"}, {"1e6", 6, 0, 0, 1, ""},
        {"1e100", 6, 0, 0, 2, ""},
        // Capacity: 77 digits fit; 80 are refused even when they could round.
        {n77, 77, 0, 0, 0, n77.c_str()}, {n80, 77, 0, 0, 6, ""}, {n80, 77, 0, 1, 1, ""}, {n78, 0, 255, 1, 1, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE('"' + c.text + "\" p" + std::to_string(c.prec) + " s" + std::to_string(c.scale));
        const Read r = read(c.text, c.prec, c.scale, c.tolerant);
        EXPECT_EQ(r.status, c.status);
        if (c.status == 0 && r.status == 0) {
            EXPECT_EQ(r.text, c.out);
        }
    }
}

TEST(NumTextRead, DerivedPrecisionScaleAndLength)
{
    const struct { const char *text; int prec, scale; } cases[] = {
        {"00123.45", 5, 2}, {"0.05", 3, 2}, {"", 1, 0}, {"-7.250", 4, 3}, {"1.5e-3", 2, 1}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        const Read r = read(c.text, 0, 255, 0);
        ASSERT_EQ(r.status, 0);
        EXPECT_EQ(r.prec, c.prec);
        EXPECT_EQ(r.scale, c.scale);
        EXPECT_EQ(r.len, len_of(c.prec));
    }
    // An exponent below the digits leaves a wrapped scale byte.
    EXPECT_EQ(read("15e-3", 0, 255, 0).scale, 253);
}

// The returned offset is the room left over; -1 when the text does not fit.
TEST(NumTextWrite, ExactRoomOnePastAndOneShort)
{
    CS_BYTE v[3] = {1, 0x30, 0x39}; // -12345
    __CONSTANT c{};
    c.len = 3;
    c.value = v;
    char buf[kes::numeric::kNumTextBuf];
    for (int scale : {0, 2, 5, 7}) {
        SCOPED_TRACE(scale);
        c.scale = static_cast<CS_BYTE>(scale);
        const std::string want = fixed_text(Z("-12345"), scale);
        const int need = static_cast<int>(want.size());
        EXPECT_EQ(com__subexctnumetochar(&c, buf, need), 0);
        EXPECT_EQ(std::string(buf, want.size()), want);
        EXPECT_EQ(com__subexctnumetochar(&c, buf, need - 1), -1);
        EXPECT_EQ(com__subexctnumetochar(&c, buf, need + 1), 1);
    }
    v[1] = v[2] = 0; // negative zero prints unsigned
    c.scale = 3;
    EXPECT_EQ(com__subexctnumetochar(&c, buf, 5), 0);
    EXPECT_EQ(std::string(buf, 5), "0.000");
    // A negative value at scale 77 needs 80 characters: no room at all.
    CS_BYTE w[33] = {1};
    w[32] = 1;
    c.len = 33, c.prec = 77, c.scale = 77, c.value = w;
    EXPECT_EQ(com__subexctnumetochar(&c, buf, sizeof buf), -1);
    w[0] = 0;
    EXPECT_EQ(com__subexctnumetochar(&c, buf, sizeof buf), 0);
}

TEST(Kesatoll, SignsLimitsAndErrno)
{
    const struct { const char *s; bool is_unsigned; unsigned long long v; int err; } cases[] = {
        {"-123.9", false, static_cast<unsigned long long>(-123), 0}, {"-", false, 0, EINVAL},
        {"-+5", false, 5, 0}, // the plus makes it positive again
        {"9223372036854775807", false, INT64_MAX, 0}, {"9223372036854775808", false, INT64_MAX, ERANGE},
        {"-9223372036854775808", false, static_cast<unsigned long long>(INT64_MIN), 0},
        {"-9223372036854775809", false, static_cast<unsigned long long>(INT64_MIN), ERANGE},
        {"18446744073709551615", true, UINT64_MAX, 0}, {"18446744073709551616", true, UINT64_MAX, ERANGE},
        {"-0", true, 0, ERANGE}, {"+", true, 0, EINVAL}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.s);
        std::string s = c.s;
        errno = 0;
        EXPECT_EQ(c.is_unsigned ? kesatoull(s.data()) : static_cast<unsigned long long>(kesatoll(s.data())), c.v);
        EXPECT_EQ(errno, c.err);
    }
}

// Random values at random precision and scale, written padded, with "+00",
// or as unscaled digits with a two-digit exponent, must read back strictly
// to the same value.  Extra decimals are refused strictly and rounded half
// away from zero when tolerant, checked against GMP.
TEST(NumTextRead, RandomRoundTripAgainstGmp)
{
    std::mt19937_64 rng(20261122);
    for (long i = 0, n = cases(); i < n; ++i) {
        const int p = std::uniform_int_distribution<int>(1, 77)(rng);
        const int s = std::uniform_int_distribution<int>(0, p)(rng);
        const Z u = random_value(rng, p);
        if (sgn(u) < 0 && s == 77)
            continue; // has no text
        Z a;
        mpz_abs(a, u);
        const std::string sign = sgn(u) < 0 ? "-" : "", canon = fixed_text(u, s);
        std::string in = canon;
        switch (rng() % 4) {
        case 1: in = "  " + in + " \t"; break;
        case 2: in = sgn(u) < 0 ? in : "+00" + in; break;
        case 3: {
            char e[8];
            std::snprintf(e, sizeof e, "e-%02d", s);
            in = sign + a.str() + e;
        }
        }
        SCOPED_TRACE(in + " p" + std::to_string(p) + " s" + std::to_string(s));
        const Read r = read(in, p, s, 0);
        ASSERT_EQ(r.status, 0);
        ASSERT_EQ(r.text, canon);
        if (s == 77)
            continue;
        std::string extra;
        for (int k = std::uniform_int_distribution<int>(1, 77 - s)(rng); k > 0; --k)
            extra += static_cast<char>('0' + rng() % 10);
        const std::string longer = canon + (s == 0 ? "." : "") + extra;
        const Z rounded = shift_round(Z(sign + a.str() + extra), static_cast<int>(extra.size()));
        const Read t = read(longer, p, s, 1);
        ASSERT_EQ(t.status, exceeds(rounded, p) ? 1 : 0) << longer;
        if (t.status == 0) {
            ASSERT_EQ(t.text, fixed_text(rounded, s)) << longer;
        }
        ASSERT_EQ(read(longer, p, s, 0).status, 6) << longer;
    }
}

} // namespace
