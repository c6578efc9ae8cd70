// Decimal text into and out of numerics: the reader's grammar, exponents,
// tolerant rounding and derived shapes, the writer's fixed form, and a
// randomised round trip against GMP at every precision and scale.
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "kescomn/numconv.h"
#include "numconv_ref.h"
#include "numeric/numconv.h"

namespace {

using namespace kes::test::ref;

struct Read {
    int status;
    std::string text; // the value written back, when status is 0
    int prec;
    int scale;
    int len;
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

// Reads text at prec/scale (0 and 255: derived) into a value of the
// precision's own length (33 bytes when derived), with guard bytes around.
Read read(const std::string &text, int prec, int scale, int flag)
{
    std::string buf = text; // NUL-terminated for the exponent scan
    CS_BYTE area[kes::numeric::kNumScratch / 16 + 40];
    std::memset(area, 0xA5, sizeof area);
    CS_BYTE *start = area + 4;
    CS_BYTE *dest = start;
    const int len0 = prec >= 1 && prec <= 77 ? len_of(prec) : 33;
    CS_INT destlen = len0;
    CS_BYTE p = static_cast<CS_BYTE>(prec), s = static_cast<CS_BYTE>(scale);
    Read r{};
    r.status = com__subchartoexctnume(buf.data(), static_cast<int>(text.size()), &dest, &destlen, &p, &s, flag);
    EXPECT_EQ(area[3], 0xA5) << text;
    EXPECT_EQ(start[len0], 0xA5) << text;
    r.prec = p;
    r.scale = s;
    r.len = destlen;
    if (r.status == 0) {
        EXPECT_EQ(dest + destlen, start + len0) << "digits stay right-aligned: " << text;
        r.text = write_back(dest, destlen, p, s);
    }
    return r;
}

struct TextCase {
    const char *text;
    int prec, scale, flag;
    int status;
    const char *out;
};

TEST(NumTextRead, GrammarSignsBlanksAndTolerance)
{
    const TextCase cases[] = {
        {" - 12.5  ", 5, 1, 0, 0, "-12.5"},
        {"+12", 5, 0, 0, 0, "12"},
        {"+-1", 5, 0, 0, 2, ""},
        {"--1", 5, 0, 0, 2, ""},
        {"1 2", 5, 0, 0, 2, ""},
        {"1\t", 5, 0, 0, 0, "1"},
        {"1. ", 5, 0, 0, 0, "1"},
        {".5", 5, 1, 0, 0, "0.5"},
        {"1..2", 5, 1, 0, 2, ""},
        {"12.345", 5, 2, 0, 6, ""},
        {"12.345", 5, 2, 1, 0, "12.35"},
        {"12.344", 5, 2, 1, 0, "12.34"},
        {"-12.345", 5, 2, 1, 0, "-12.35"},
        {"12.344x", 5, 2, 1, 0, "12.34"},
        {"12.3x", 5, 2, 1, 2, ""},
        {"-0", 5, 0, 0, 0, "0"},
        {"-0.00", 5, 2, 0, 0, "0.00"},
        {"", 5, 2, 0, 0, "0.00"},
        {"   ", 5, 0, 0, 0, "0"},
        {"99999", 5, 0, 0, 0, "99999"},
        {"100000", 5, 0, 0, 1, ""},
        {"999.995", 5, 2, 1, 1, ""},
        {"999.994", 5, 2, 1, 0, "999.99"},
        {"12", 3, 2, 0, 1, ""},
        {"0.5", 1, 0, 1, 0, "1"},
        {"-0.5", 1, 0, 1, 0, "-1"},
        {"-0.4", 1, 0, 1, 0, "0"},
        {"1x", 5, 0, 0, 2, ""},
        {"x", 5, 0, 0, 2, ""},
    };
    for (const auto &c : cases) {
        const Read r = read(c.text, c.prec, c.scale, c.flag);
        EXPECT_EQ(r.status, c.status) << '"' << c.text << '"';
        if (c.status == 0 && r.status == 0) {
            EXPECT_EQ(r.text, c.out) << '"' << c.text << '"';
        }
    }
}

TEST(NumTextRead, ExponentPositionsAndTheirOddRules)
{
    const TextCase cases[] = {
        {"1.5e1", 5, 0, 0, 0, "15"},
        {"1.5E1", 5, 0, 0, 0, "15"},
        {"1.5e-1", 5, 1, 1, 0, "0.2"},
        {"1.5e-1", 5, 1, 0, 6, ""},
        {"15e-1", 5, 1, 0, 0, "1.5"},
        {"1e", 5, 0, 0, 0, "1"},
        {"1e+", 5, 0, 0, 0, "1"},
        {"1e5", 6, 0, 0, 0, "100000"},
        {"1e5 ", 6, 0, 0, 2, ""},
        {"1e05 ", 6, 0, 0, 0, "100000"},
        {"1e+5 ", 6, 0, 0, 2, ""},
        {"1e+05 ", 6, 0, 0, 0, "100000"},
        {"1e+05 x", 6, 0, 0, 2, ""},
        {"1e5x", 6, 0, 0, 2, ""},
        {"1ex", 6, 0, 0, 2, ""},
        {"1e-5", 5, 0, 0, 6, ""},
        {"1e-5", 5, 0, 1, 0, "0"},
        {"9.99e-5", 5, 4, 1, 0, "0.0001"},
        {"1e6", 6, 0, 0, 1, ""},
        {"1e100", 6, 0, 0, 2, ""},
    };
    for (const auto &c : cases) {
        const Read r = read(c.text, c.prec, c.scale, c.flag);
        EXPECT_EQ(r.status, c.status) << '"' << c.text << '"';
        if (c.status == 0 && r.status == 0) {
            EXPECT_EQ(r.text, c.out) << '"' << c.text << '"';
        }
    }
}

TEST(NumTextRead, DerivedPrecisionAndScale)
{
    struct Case {
        const char *text;
        int out_prec, out_scale;
    } const cases[] = {
        {"00123.45", 5, 2},
        {"0.05", 3, 2},
        {"123", 3, 0},
        {"0", 1, 0},
        {"", 1, 0},
        {"-7.250", 4, 3},
        {"1.5e-3", 2, 1}, // the exponent is not honoured in this mode
    };
    for (const auto &c : cases) {
        const Read r = read(c.text, 0, 255, 0);
        ASSERT_EQ(r.status, 0) << c.text;
        EXPECT_EQ(r.prec, c.out_prec) << c.text;
        EXPECT_EQ(r.scale, c.out_scale) << c.text;
        EXPECT_EQ(r.len, len_of(c.out_prec)) << c.text;
    }
    // An exponent below the digits leaves a wrapped scale byte.
    EXPECT_EQ(read("15e-3", 0, 255, 0).scale, 253);
}

TEST(NumTextRead, CapacityEightyDigits)
{
    const std::string eighty(80, '7');
    EXPECT_EQ(read(eighty, 77, 0, 0).status, 6);
    EXPECT_EQ(read(eighty, 77, 0, 1).status, 1);
    EXPECT_EQ(read(std::string(77, '9'), 77, 0, 0).text, std::string(77, '9'));
    EXPECT_EQ(read(std::string(78, '9'), 0, 255, 1).status, 1);
}

TEST(NumTextWrite, FixedFormAndRoom)
{
    CS_BYTE v[3] = {1, 0x30, 0x39}; // -12345
    __CONSTANT c{};
    c.len = 3;
    c.value = v;
    char buf[16];
    for (int scale : {0, 2, 5, 7}) {
        c.scale = static_cast<CS_BYTE>(scale);
        const std::string want = fixed_text(Z("-12345"), scale);
        const int need = static_cast<int>(want.size());
        EXPECT_EQ(com__subexctnumetochar(&c, buf, need), 0) << scale;
        EXPECT_EQ(std::string(buf, static_cast<size_t>(need)), want);
        EXPECT_EQ(com__subexctnumetochar(&c, buf, need - 1), -1) << scale;
        EXPECT_EQ(com__subexctnumetochar(&c, buf, need + 1), 1) << scale;
    }
    CS_BYTE z[3] = {1, 0, 0}; // negative zero prints unsigned
    c.value = z;
    c.scale = 3;
    EXPECT_EQ(com__subexctnumetochar(&c, buf, 5), 0);
    EXPECT_EQ(std::string(buf, 5), "0.000");
    EXPECT_EQ(com__subexctnumetochar(&c, buf, 4), -1);
}

TEST(NumTextWrite, NegativeAtScale77DoesNotFit)
{
    CS_BYTE v[33] = {1};
    v[32] = 1;
    __CONSTANT c{};
    c.len = 33;
    c.prec = 77;
    c.scale = 77;
    c.value = v;
    char buf[kes::numeric::kNumTextBuf];
    EXPECT_EQ(com__subexctnumetochar(&c, buf, sizeof buf), -1);
    v[0] = 0;
    EXPECT_EQ(com__subexctnumetochar(&c, buf, sizeof buf), 0);
}

TEST(Kesatoll, SignsDigitsAndLimits)
{
    struct Case {
        const char *s;
        long long v;
        int err;
    } const cases[] = {
        {"123", 123, 0},          {"-123.9", -123, 0},
        {"-+5", 5, 0},            {"+5", 5, 0},
        {"", 0, EINVAL},          {"-", 0, EINVAL},
        {"x", 0, EINVAL},         {"9223372036854775807", INT64_MAX, 0},
        {"9223372036854775808", INT64_MAX, ERANGE},
        {"-9223372036854775808", INT64_MIN, 0},
        {"-9223372036854775809", INT64_MIN, ERANGE},
    };
    for (const auto &c : cases) {
        errno = 0;
        std::string s = c.s;
        EXPECT_EQ(kesatoll(s.data()), c.v) << c.s;
        EXPECT_EQ(errno, c.err) << c.s;
    }
    struct UCase {
        const char *s;
        unsigned long long v;
        int err;
    } const ucases[] = {
        {"18446744073709551615", UINT64_MAX, 0},
        {"18446744073709551616", UINT64_MAX, ERANGE},
        {"-0", 0, ERANGE},
        {"+7", 7, 0},
        {"+", 0, EINVAL},
    };
    for (const auto &c : ucases) {
        errno = 0;
        std::string s = c.s;
        EXPECT_EQ(kesatoull(s.data()), c.v) << c.s;
        EXPECT_EQ(errno, c.err) << c.s;
    }
}

// Random values at random precision and scale, written in several forms
// (padding, leading zeros, a plus sign, short decimals, exponent), read back
// strictly, checked byte for byte against GMP and written out again.  Extra
// decimals check tolerant rounding against GMP half-away rounding.
TEST(NumTextRead, RandomRoundTripAgainstGmp)
{
    std::mt19937_64 rng(20261122);
    const long n = cases();
    for (long i = 0; i < n; ++i) {
        const int p = std::uniform_int_distribution<int>(1, 77)(rng);
        const int s = std::uniform_int_distribution<int>(0, p)(rng);
        const Z u = random_value(rng, p);
        if (sgn(u) < 0 && s == 77)
            continue; // has no text (see NegativeAtScale77DoesNotFit)
        const std::string canon = fixed_text(u, s);
        std::string in = canon;
        const int form = static_cast<int>(rng() % 5);
        if (form == 1) {
            in = "  " + in + " \t";
        } else if (form == 2 && sgn(u) >= 0) {
            in = "+00" + in;
        } else if (form == 3) {
            // The unscaled digits with an exponent of -s (two digits).
            Z a;
            mpz_abs(a, u);
            char e[8];
            std::snprintf(e, sizeof e, "e-%02d", s);
            in = (sgn(u) < 0 ? "-" : "") + a.str() + e;
        }
        const Read r = read(in, p, s, 0);
        ASSERT_EQ(r.status, 0) << in << " p" << p << " s" << s;
        ASSERT_EQ(r.text, canon) << in << " p" << p << " s" << s;

        // Extra decimals: strict refuses unless they are all zero-free of
        // digits, tolerant rounds half away from zero.
        if (s < 77) {
            const int k = std::uniform_int_distribution<int>(1, 77 - s)(rng);
            std::string extra;
            for (int j = 0; j < k; ++j)
                extra += static_cast<char>('0' + rng() % 10);
            std::string longer = fixed_text(u, s) + (s == 0 ? "." : "") + extra;
            Z unscaled(std::string(sgn(u) < 0 ? "-" : "") + [&] {
                Z a;
                mpz_abs(a, u);
                return a.str();
            }() + extra);
            const Z rounded = shift_round(unscaled, k);
            const Read t = read(longer, p, s, 1);
            if (exceeds(rounded, p)) {
                EXPECT_EQ(t.status, 1) << longer;
            } else {
                ASSERT_EQ(t.status, 0) << longer;
                EXPECT_EQ(t.text, fixed_text(rounded, s)) << longer << " p" << p << " s" << s;
            }
            EXPECT_EQ(read(longer, p, s, 0).status, 6) << longer;
        }
    }
}

} // namespace
