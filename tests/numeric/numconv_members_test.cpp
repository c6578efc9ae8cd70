// The members of the numeric row and column in both layers: clamps and codes
// to every integer type, floats, money, text and numeric to numeric, with
// randomised runs against GMP, strtod and the double's 17-digit text.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "kescomn.h"
#include "numconv_ref.h"
#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::Context;
using kes::test::fmt;
using namespace kes::test::ref;

using Conv = CS_RETCODE (*)(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *, CS_INT *);
using ConvB = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

CS_NUMERIC record(const Z &u, int p, int s)
{
    CS_NUMERIC n{};
    n.precision = static_cast<CS_BYTE>(p);
    n.scale = static_cast<CS_BYTE>(s);
    EXPECT_TRUE(record_bytes(u, len_of(p), n.array));
    return n;
}

// A record of decimal text whose decimals are the scale, built by GMP.
CS_NUMERIC num(std::string text, int p)
{
    const size_t dot = std::min(text.find('.'), text.size());
    const int s = static_cast<int>(text.size() - std::min(dot + 1, text.size()));
    return record(Z(text.erase(dot, 1)), p, s);
}

__CONSTANT src_of(CS_NUMERIC &n)
{
    __CONSTANT c = kes::test::constant(n.array, len_of(n.precision), len_of(n.precision));
    c.prec = n.precision;
    c.scale = n.scale;
    return c;
}

long long units_of(const CS_MONEY &m)
{
    return static_cast<long long>((static_cast<unsigned long long>(static_cast<CS_UINT>(m.mnyhigh)) << 32) | m.mnylow);
}

std::string unscaled(const CS_NUMERIC &n) { return from_bytes(n.array, len_of(n.precision)).str(); }

// lo, hi: bounds of the float route (0, 0: the 64-bit text route); neg, negb:
// a value below lo in each layer.
struct IntDest { Conv f; ConvB fb; int type; double lo, hi; CS_RETCODE neg, negb; };
const IntDest kDests[] = {
    {comn_numtoi1, comnb_numtoi1, CS_TINYINT_TYPE, 0, 255, CS_EOVERFLOW, CS_EOVERFLOW},
    {comn_numtoi2, comnb_numtoi2, CS_SMALLINT_TYPE, -32768, 32767, CS_EOVERFLOW, CS_EOVERFLOW},
    {comn_numtoi4, comnb_numtoi4, CS_INT_TYPE, -2147483648.0, 2147483647.0, CS_EOVERFLOW, CS_EOVERFLOW},
    {comn_numtoui2, comnb_numtoui2, CS_USMALLINT_TYPE, 0, 65535, CS_EUNDERFLOW, CS_EOVERFLOW},
    {comn_numtoui4, comnb_numtoui4, CS_UINT_TYPE, 0, 4294967295.0, CS_EUNDERFLOW, CS_EOVERFLOW},
    {comn_numtoi8, comnb_numtoi8, CS_BIGINT_TYPE, 0, 0, CS_EUNDERFLOW, CS_EUNDERFLOW},
    {comn_numtoui8, comnb_numtoui8, CS_UBIGINT_TYPE, 0, 0, CS_EUNDERFLOW, CS_EUNDERFLOW},
};
enum { I1, I2, I4, UI2, UI4, I8, UI8 };

// Converts in both layers; both must store `want`.
void expect_int(CS_NUMERIC n, const IntDest &d, long long want, CS_RETCODE rc, CS_RETCODE rcb)
{
    Context ctx;
    CAST_CONTEXT cast{};
    CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35), df = fmt(d.type, 8);
    CS_BYTE out[8] = {}, outb[8] = {};
    CS_INT len = -1;
    __CONSTANT src = src_of(n), dst = kes::test::constant(outb, 0, 8);
    EXPECT_EQ(code_name(d.f(ctx.get(), &sf, &n, &df, out, &len)), code_name(rc));
    EXPECT_EQ(code_name(d.fb(&cast, &src, &dst)), code_name(rcb));
    EXPECT_EQ(len, comn_typelen(d.type, 0));
    EXPECT_EQ(int_at(d.type, out), want);
    EXPECT_EQ(int_at(d.type, outb), want);
}

// The boundaries and one past each, and the layers' uneven codes: the server
// layer reports lost decimals, and negatives to 16- and 32-bit unsigned
// types are an underflow in the context layer but an overflow in the server.
TEST(NumToInt, BoundariesAndUnevenCodesInBothLayers)
{
    const struct { const char *value; int p, dest; long long stored; CS_RETCODE comn, comnb; } cases[] = {
        {"2147483647", 11, I4, INT32_MAX, CS_SUCCEED, CS_SUCCEED},
        {"2147483647.9", 11, I4, INT32_MAX, CS_EOVERFLOW, CS_EOVERFLOW}, // compared before the cut
        {"255.5", 5, I1, 255, CS_EOVERFLOW, CS_EOVERFLOW},
        {"-0.5", 5, UI4, 0, CS_EUNDERFLOW, CS_EOVERFLOW},
        {"65535.00", 7, UI2, 65535, CS_SUCCEED, CS_SUCCEED},
        {"9223372036854775807.9", 20, I8, INT64_MAX, CS_SUCCEED, CS_TRUNCATED},
        {"9223372036854775808", 19, I8, INT64_MAX, CS_EOVERFLOW, CS_EOVERFLOW},
        {"-9223372036854775808", 19, I8, INT64_MIN, CS_SUCCEED, CS_SUCCEED},
        {"-9223372036854775809", 19, I8, INT64_MIN, CS_EUNDERFLOW, CS_EUNDERFLOW},
        {"-0.9", 5, I8, 0, CS_SUCCEED, CS_TRUNCATED},
        {"-0.9", 5, UI8, 0, CS_EUNDERFLOW, CS_EUNDERFLOW},
        {"18446744073709551615.5", 21, UI8, -1, CS_SUCCEED, CS_TRUNCATED},
        {"18446744073709551616", 20, UI8, -1, CS_EOVERFLOW, CS_EOVERFLOW},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.value) + " to type " + std::to_string(kDests[c.dest].type));
        expect_int(num(c.value, c.p), kDests[c.dest], c.stored, c.comn, c.comnb);
    }
}

TEST(NumToScalar, FloatAndMoneyBoundaries)
{
    Context ctx;
    CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35), rf = fmt(CS_REAL_TYPE, 4);
    CS_DATAFMT mf = fmt(CS_MONEY_TYPE, 8), m4f = fmt(CS_MONEY4_TYPE, 4);
    CS_INT len;
    for (const char *sign : {"", "-"}) { // beyond the float range: clamped
        CS_NUMERIC n = num(sign + std::string(60, '9'), 60);
        CS_REAL r = 0;
        EXPECT_EQ(comn_numtoflt4(ctx.get(), &sf, &n, &rf, &r, &len), CS_EOVERFLOW);
        EXPECT_EQ(r, *sign ? -FLT_MAX : FLT_MAX);
    }
    const struct { const char *v; int p; CS_RETCODE rc; long long units; } ms[] = {
        {"-922337203685477.5808", 19, CS_SUCCEED, INT64_MIN}, {"-922337203685477.58085", 20, CS_EOVERFLOW, 0},
        {"922337203685477.5807", 19, CS_SUCCEED, INT64_MAX},  {"922337203685477.58075", 20, CS_EOVERFLOW, 0},
    };
    for (const auto &m : ms) {
        CS_NUMERIC n = num(m.v, m.p);
        CS_MONEY out{};
        EXPECT_EQ(code_name(comn_numtomoney(ctx.get(), &sf, &n, &mf, &out, &len)), code_name(m.rc)) << m.v;
        if (m.rc == CS_SUCCEED) {
            EXPECT_EQ(units_of(out), m.units);
        }
    }
    CS_MONEY4 m4{};
    CS_NUMERIC over = num("214748.36475", 11), min = num("-214748.3648", 11);
    EXPECT_EQ(comn_numtomny4(ctx.get(), &sf, &over, &m4f, &m4, &len), CS_EOVERFLOW);
    EXPECT_EQ(comn_numtomny4(ctx.get(), &sf, &min, &m4f, &m4, &len), CS_SUCCEED);
    EXPECT_EQ(m4.mny4, INT32_MIN);
}

// The server layer calls a cut that loses decimals only a truncation.
TEST(NumToText, TheServerCutAndTheVarcharLength)
{
    Context ctx;
    CS_NUMERIC n = num("-123.45", 6);
    CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35);
    CAST_CONTEXT cast{};
    __CONSTANT src = src_of(n);
    for (auto [maxlen, rc] : {std::pair{7, CS_SUCCEED}, {6, CS_TRUNCATED}, {4, CS_TRUNCATED}, {3, CS_EOVERFLOW}}) {
        CS_BYTE buf[16] = {};
        __CONSTANT dst = kes::test::constant(buf, 0, maxlen);
        EXPECT_EQ(code_name(comnb_numtochar(&cast, &src, &dst)), code_name(rc)) << maxlen;
        EXPECT_EQ(code_name(comnb_numtovarchar(&cast, &src, &dst)), code_name(rc)) << maxlen;
        EXPECT_EQ(dst.len, std::min(maxlen, 7));
    }
    CS_DATAFMT vf = fmt(CS_VARCHAR_TYPE, 258);
    CS_VARCHAR vc{};
    CS_INT len = 0;
    EXPECT_EQ(comn_numtovarchar(ctx.get(), &sf, &n, &vf, &vc, &len), CS_SUCCEED);
    EXPECT_EQ(len, 258); // the whole structure
    EXPECT_EQ(std::string(vc.str, static_cast<size_t>(vc.len)), "-123.45");
}

// The context layer checks the fit before shifting the scale, the server
// layer after; CS_SRC_VALUE keeps the source's shape.
TEST(NumToNum, FitOrderAndSourceShape)
{
    Context ctx;
    CS_NUMERIC n = num("12345.1234567890", 20), out{};
    CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35), df = fmt(CS_NUMERIC_TYPE, 35, 0, 5, 0);
    CS_INT len = 0;
    EXPECT_EQ(comn_numtonum(ctx.get(), &sf, &n, &df, &out, &len), CS_EOVERFLOW);
    CAST_CONTEXT cast{};
    CS_BYTE ob[35] = {};
    __CONSTANT src = src_of(n), dst = kes::test::constant(ob, 0, 35);
    dst.prec = 5;
    EXPECT_EQ(comnb_numtonum(&cast, &src, &dst), CS_TRUNCATED);
    EXPECT_EQ(dst.len, len_of(5));
    cast.flags = 1;
    EXPECT_EQ(comnb_numtonum(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(from_bytes(ob, dst.len).str(), "12345");
    CS_DATAFMT same = fmt(CS_NUMERIC_TYPE, 35, 0, CS_SRC_VALUE, CS_SRC_VALUE), cut = fmt(CS_NUMERIC_TYPE, 35, 0, 20, 3);
    EXPECT_EQ(comn_numtonum(ctx.get(), &sf, &n, &same, &out, &len), CS_SUCCEED);
    EXPECT_EQ(len, len_of(20) + 2);
    EXPECT_EQ(unscaled(out), "123451234567890");
    EXPECT_EQ(comn_numtonum(ctx.get(), &sf, &n, &cut, &out, &len), CS_TRUNCATED);
    EXPECT_EQ(unscaled(out), "12345123");
    n.precision = 0; // a broken source
    EXPECT_EQ(comn_numtonum(ctx.get(), &sf, &n, &df, &out, &len), CS_EDOMAIN);
    CS_DATAFMT i4f = fmt(CS_INT_TYPE, 4);
    EXPECT_EQ(comn_numtoi4(ctx.get(), &sf, &n, &i4f, &out, &len), CS_EDOMAIN);
}

// Both entries check the destination shape alike: precision 1 to 77, scale
// at most 77 (a negative one wraps above); a scale above the precision passes.
TEST(NumShape, PrecisionAndScaleValidation)
{
    Context ctx;
    CS_NUMERIC n = num("0", 5), out{};
    CS_DATAFMT nf = fmt(CS_NUMERIC_TYPE, 35), cf = fmt(CS_CHAR_TYPE, 1);
    CS_INT len;
    const struct { int p, s; CS_RETCODE rc; } cases[] = {
        {0, 0, CS_EPRECISION}, {78, 0, CS_EPRECISION}, {5, -1, CS_ESCALE}, {5, 78, CS_ESCALE}, {5, 6, CS_SUCCEED},
        {77, 77, CS_SUCCEED}};
    for (const auto &c : cases) {
        CS_DATAFMT bad = fmt(CS_NUMERIC_TYPE, 35, 0, c.p, c.s);
        EXPECT_EQ(code_name(comn_numtonum(ctx.get(), &nf, &n, &bad, &out, &len)), code_name(c.rc)) << c.p << "," << c.s;
        EXPECT_EQ(code_name(comn_chartonum(ctx.get(), &cf, const_cast<char *>("0"), &bad, &out, &len)), code_name(c.rc));
    }
}

TEST(TextToNum, LayersFlagsAndSourceShape)
{
    Context ctx;
    const std::string huge(1024, '1');
    const struct { const char *text; int p, s; CS_RETCODE comn, strict, tolerant; } cases[] = {
        {"12.345", 5, 2, CS_EOVERFLOW, CS_TRUNCATED, CS_SUCCEED},
        {"12a", 5, 2, CS_ESYNTAX, CS_ESYNTAX, CS_ESYNTAX},
        {"123456", 5, 0, CS_EOVERFLOW, CS_EOVERFLOW, CS_EOVERFLOW},
        {huge.c_str(), 10, 0, CS_ESYNTAX, CS_ESYNTAX, CS_ESYNTAX}, // beyond the scratch
    };
    CS_NUMERIC n{};
    CS_INT len = 0;
    for (const auto &c : cases) {
        std::string t = c.text;
        const auto tl = static_cast<CS_INT>(t.size());
        CS_DATAFMT sf = fmt(CS_CHAR_TYPE, tl), df = fmt(CS_NUMERIC_TYPE, 35, 0, c.p, c.s);
        EXPECT_EQ(code_name(comn_chartonum(ctx.get(), &sf, t.data(), &df, &n, &len)), code_name(c.comn)) << tl;
        CAST_CONTEXT cast{};
        for (int flags : {0, 1}) {
            cast.flags = flags;
            CS_BYTE ob[35];
            __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(t.data()), tl, tl);
            __CONSTANT dst = kes::test::constant(ob, 0, len_of(c.p));
            dst.prec = static_cast<CS_BYTE>(c.p);
            dst.scale = static_cast<CS_BYTE>(c.s);
            EXPECT_EQ(code_name(comnb_chartonum(&cast, &src, &dst)), code_name(flags ? c.tolerant : c.strict)) << tl;
        }
    }
    CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, CS_SRC_VALUE, CS_SRC_VALUE), vf = fmt(CS_VARCHAR_TYPE, 258);
    CS_VARCHAR vc{};
    vc.len = 8;
    std::memcpy(vc.str, "00123.45", 8);
    ASSERT_EQ(comn_varchartonum(ctx.get(), &vf, &vc, &df, &n, &len), CS_SUCCEED);
    EXPECT_EQ(len, 35);
    EXPECT_EQ(n.precision, 5);
    EXPECT_EQ(n.scale, 2);
    EXPECT_EQ(unscaled(n), "12345");
}

TEST(NumConvDeath, NullsWrongTypeAndUnprintableValue)
{
    Context ctx;
    CS_NUMERIC n = num("1", 5), neg = num("-0." + std::string(76, '0') + "1", 77); // no text at scale 77
    CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35), df = fmt(CS_INT_TYPE, 4), wrong = fmt(CS_REAL_TYPE, 4);
    CS_DATAFMT cf = fmt(CS_CHAR_TYPE, 100);
    CS_INT v, len;
    char buf[100];
    EXPECT_NULL_POINTER(comn_numtoi4(ctx.get(), &sf, nullptr, &df, &v, &len));
    EXPECT_NULL_POINTER(comn_chartonum(ctx.get(), &sf, &n, &df, &v, nullptr));
    EXPECT_BOMB(comn_numtoi4(ctx.get(), &sf, &n, &wrong, &v, &len));
    EXPECT_BOMB(comn_numtochar(ctx.get(), &sf, &neg, &cf, buf, &len));
}

// Every integer type in both layers: the float route against strtod of the
// GMP text and the clamps, the 64-bit route against GMP truncation.
TEST(NumToInt, RandomAgainstStrtodAndGmp)
{
    std::mt19937_64 rng(77);
    const Z i64lo("-9223372036854775808"), i64hi("9223372036854775807"), u64hi("18446744073709551615");
    for (long i = 0, n = cases(); i < n; ++i) {
        const int p = std::uniform_int_distribution<int>(1, 30)(rng);
        const int s = std::uniform_int_distribution<int>(0, p)(rng);
        const Z u = random_value(rng, p);
        const IntDest &d = kDests[i % 7];
        const std::string text = fixed_text(u, s);
        const double dv = std::strtod(text.c_str(), nullptr);
        Z q, r;
        mpz_tdiv_qr(q, r, u, ten_to(s));
        long long want = 0;
        CS_RETCODE rc = CS_SUCCEED, rcb = CS_SUCCEED;
        const bool u64 = d.type == CS_UBIGINT_TYPE;
        if (d.lo != d.hi) {
            if (dv < d.lo) {
                want = static_cast<long long>(d.lo), rc = d.neg, rcb = d.negb;
            } else if (dv > d.hi) {
                want = static_cast<long long>(d.hi), rc = rcb = CS_EOVERFLOW;
            } else {
                want = static_cast<long long>(dv);
                rcb = static_cast<double>(want) != dv ? CS_TRUNCATED : CS_SUCCEED;
            }
        } else if (mpz_cmp(q, u64 ? u64hi : i64hi) > 0) {
            want = u64 ? -1 : INT64_MAX, rc = rcb = CS_EOVERFLOW;
        } else if (u64 ? sgn(u) < 0 : mpz_cmp(q, i64lo) < 0) {
            want = u64 ? 0 : INT64_MIN, rc = rcb = CS_EUNDERFLOW;
        } else {
            const std::string qs = q.str();
            want = u64 ? static_cast<long long>(std::strtoull(qs.c_str(), nullptr, 10)) : std::stoll(qs);
            rcb = sgn(r) != 0 ? CS_TRUNCATED : CS_SUCCEED;
        }
        SCOPED_TRACE(text + " to type " + std::to_string(d.type));
        expect_int(record(u, p, s), d, want, rc, rcb);
        if (HasFailure())
            return;
    }
}

// Numeric to double against strtod of the GMP text; double to numeric
// against the half-away rounding of the double's 17-significant-digit text.
TEST(NumFloat, RandomAgainstStrtodAndSeventeenDigitText)
{
    Context ctx;
    std::mt19937_64 rng(1717);
    CS_DATAFMT nf = fmt(CS_NUMERIC_TYPE, 35), ff = fmt(CS_FLOAT_TYPE, 8);
    for (long i = 0, n = cases(); i < n; ++i) {
        const int p = std::uniform_int_distribution<int>(1, 77)(rng);
        const int s = std::uniform_int_distribution<int>(0, p)(rng);
        const Z u = random_value(rng, p);
        CS_NUMERIC num = record(u, p, s), out{};
        CS_FLOAT d = 0;
        CS_INT len;
        if (sgn(u) >= 0 || s < 77) {
            ASSERT_EQ(comn_numtoflt8(ctx.get(), &nf, &num, &ff, &d, &len), CS_SUCCEED);
            ASSERT_EQ(d, std::strtod(fixed_text(u, s).c_str(), nullptr)) << fixed_text(u, s);
        }
        // A double of random mantissa, sign and magnitude, into random
        // precision and scale.
        double x = std::ldexp(std::uniform_real_distribution<double>(-1, 1)(rng),
                              std::uniform_int_distribution<int>(-80, 200)(rng));
        char text[40];
        std::snprintf(text, sizeof text, "%.17g", x);
        std::string mant = text;
        int exp10 = 0;
        if (const size_t e = mant.find('e'); e != std::string::npos) {
            exp10 = std::atoi(text + e + 1);
            mant.resize(e);
        }
        if (const size_t dot = mant.find('.'); dot != std::string::npos) {
            exp10 -= static_cast<int>(mant.size() - dot - 1);
            mant.erase(dot, 1);
        }
        const int tp = std::uniform_int_distribution<int>(1, 77)(rng);
        const int ts = std::uniform_int_distribution<int>(0, tp)(rng);
        const Z want = shift_round(Z(mant), -(exp10 + ts));
        CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, tp, ts);
        const CS_RETCODE rc = comn_flt8tonum(ctx.get(), &ff, &x, &df, &out, &len);
        SCOPED_TRACE(std::string(text) + " p" + std::to_string(tp) + " s" + std::to_string(ts));
        if (exceeds(want, tp)) {
            // Scaling by 78 or more is the reader's syntax status, which this
            // layer lets pass as success; only its overflow status is reported.
            ASSERT_EQ(rc, exp10 + ts >= 78 ? CS_SUCCEED : CS_EOVERFLOW);
        } else {
            ASSERT_EQ(rc, CS_SUCCEED);
            ASSERT_EQ(from_bytes(out.array, len_of(tp)).str(), want.str());
        }
    }
}

// Money into numeric at every scale and numeric into money, against GMP.
TEST(NumMoney, RandomBothWaysAgainstGmp)
{
    Context ctx;
    std::mt19937_64 rng(4444);
    CS_DATAFMT nf = fmt(CS_NUMERIC_TYPE, 35), mf = fmt(CS_MONEY_TYPE, 8);
    const Z mmax("9223372036854775807"), mmin("-9223372036854775808");
    for (long i = 0, n = cases(); i < n; ++i) {
        const int64_t units = static_cast<int64_t>(rng()) >> std::uniform_int_distribution<int>(0, 63)(rng);
        CS_MONEY m{static_cast<CS_INT>(static_cast<uint64_t>(units) >> 32), static_cast<CS_UINT>(units)};
        const int s = std::uniform_int_distribution<int>(0, 77)(rng);
        const int p = std::uniform_int_distribution<int>(1, 77)(rng);
        const Z want = shift_round(Z(std::to_string(units)), 4 - s);
        CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, p, s);
        CS_NUMERIC num{};
        CS_INT len;
        const CS_RETCODE rc = comn_moneytonum(ctx.get(), &mf, &m, &df, &num, &len);
        ASSERT_EQ(rc, exceeds(want, p) ? CS_EOVERFLOW : CS_SUCCEED) << units << " p" << p << " s" << s;
        if (rc == CS_SUCCEED) {
            ASSERT_EQ(from_bytes(num.array, len_of(p)).str(), want.str()) << units << " p" << p << " s" << s;
        }
        const int np = std::uniform_int_distribution<int>(1, 40)(rng);
        const int ns = std::uniform_int_distribution<int>(0, np)(rng);
        const Z u = random_value(rng, np), r = shift_round(u, ns - 4);
        CS_NUMERIC src = record(u, np, ns);
        CS_MONEY out{};
        const CS_RETCODE mrc = comn_numtomoney(ctx.get(), &nf, &src, &mf, &out, &len);
        const bool over = mpz_cmp(r, mmax) > 0 || mpz_cmp(r, mmin) < 0;
        ASSERT_EQ(mrc, over ? CS_EOVERFLOW : CS_SUCCEED) << fixed_text(u, ns);
        if (!over) {
            ASSERT_EQ(std::to_string(units_of(out)), r.str()) << fixed_text(u, ns);
        }
    }
}

} // namespace
