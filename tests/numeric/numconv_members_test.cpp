// The members of the numeric row and the numeric column in both layers:
// clamping and codes to every integer type, floats, money, text, numeric to
// numeric, and randomised runs against GMP, strtod and "%.17g" text.
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

// A record of value u (unscaled) at p, s.
CS_NUMERIC record(const Z &u, int p, int s)
{
    CS_NUMERIC n{};
    n.precision = static_cast<CS_BYTE>(p);
    n.scale = static_cast<CS_BYTE>(s);
    EXPECT_TRUE(record_bytes(u, len_of(p), n.array));
    return n;
}

// A record from decimal text through the library's own reader.
CS_NUMERIC parse(Context &ctx, const std::string &text, int p, int s)
{
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, static_cast<CS_INT>(text.size()));
    CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, p, s);
    CS_NUMERIC n{};
    CS_INT len = 0;
    std::string t = text;
    EXPECT_EQ(comn_chartonum(ctx.get(), &sf, t.data(), &df, &n, &len), CS_SUCCEED) << text;
    return n;
}

std::string text_of(Context &ctx, CS_NUMERIC n)
{
    CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35);
    CS_DATAFMT df = fmt(CS_CHAR_TYPE, 100);
    char buf[100];
    CS_INT len = 0;
    EXPECT_EQ(comn_numtochar(ctx.get(), &sf, &n, &df, buf, &len), CS_SUCCEED);
    return std::string(buf, static_cast<size_t>(len));
}

using Conv = CS_RETCODE (*)(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *, CS_INT *);
using ConvB = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

struct IntCase {
    const char *value;
    int p, s;
    Conv f;
    ConvB fb;
    int desttype;
    long long stored;
    CS_RETCODE comn, comnb;
};

// Reads back a destination of the type's size as a signed or unsigned value.
long long stored_as(int type, const CS_BYTE *b)
{
    switch (type) {
    case CS_TINYINT_TYPE: return b[0];
    case CS_SMALLINT_TYPE: { CS_SMALLINT v; std::memcpy(&v, b, 2); return v; }
    case CS_USMALLINT_TYPE: { CS_USMALLINT v; std::memcpy(&v, b, 2); return v; }
    case CS_INT_TYPE: { CS_INT v; std::memcpy(&v, b, 4); return v; }
    case CS_UINT_TYPE: { CS_UINT v; std::memcpy(&v, b, 4); return v; }
    default: { long long v; std::memcpy(&v, b, 8); return v; }
    }
}

TEST(NumToInt, ClampsCutsAndCodesInBothLayers)
{
    const IntCase cases[] = {
        {"5.5", 5, 1, comn_numtoi4, comnb_numtoi4, CS_INT_TYPE, 5, CS_SUCCEED, CS_TRUNCATED},
        {"-5.5", 5, 1, comn_numtoi4, comnb_numtoi4, CS_INT_TYPE, -5, CS_SUCCEED, CS_TRUNCATED},
        {"2147483647.9", 11, 1, comn_numtoi4, comnb_numtoi4, CS_INT_TYPE, INT32_MAX, CS_EOVERFLOW, CS_EOVERFLOW},
        {"2147483647", 11, 0, comn_numtoi4, comnb_numtoi4, CS_INT_TYPE, INT32_MAX, CS_SUCCEED, CS_SUCCEED},
        {"-2147483649", 11, 0, comn_numtoi4, comnb_numtoi4, CS_INT_TYPE, INT32_MIN, CS_EOVERFLOW, CS_EOVERFLOW},
        {"-0.5", 5, 1, comn_numtoui4, comnb_numtoui4, CS_UINT_TYPE, 0, CS_EUNDERFLOW, CS_EOVERFLOW},
        {"4294967296", 11, 0, comn_numtoui4, comnb_numtoui4, CS_UINT_TYPE, UINT32_MAX, CS_EOVERFLOW, CS_EOVERFLOW},
        {"-1", 5, 0, comn_numtoui2, comnb_numtoui2, CS_USMALLINT_TYPE, 0, CS_EUNDERFLOW, CS_EOVERFLOW},
        {"65536", 6, 0, comn_numtoui2, comnb_numtoui2, CS_USMALLINT_TYPE, 65535, CS_EOVERFLOW, CS_EOVERFLOW},
        {"65535.00", 7, 2, comn_numtoui2, comnb_numtoui2, CS_USMALLINT_TYPE, 65535, CS_SUCCEED, CS_SUCCEED},
        {"-1", 5, 0, comn_numtoi1, comnb_numtoi1, CS_TINYINT_TYPE, 0, CS_EOVERFLOW, CS_EOVERFLOW},
        {"256", 5, 0, comn_numtoi1, comnb_numtoi1, CS_TINYINT_TYPE, 255, CS_EOVERFLOW, CS_EOVERFLOW},
        {"255.5", 5, 1, comn_numtoi1, comnb_numtoi1, CS_TINYINT_TYPE, 255, CS_EOVERFLOW, CS_EOVERFLOW},
        {"254.9", 5, 1, comn_numtoi1, comnb_numtoi1, CS_TINYINT_TYPE, 254, CS_SUCCEED, CS_TRUNCATED},
        {"-32769", 5, 0, comn_numtoi2, comnb_numtoi2, CS_SMALLINT_TYPE, -32768, CS_EOVERFLOW, CS_EOVERFLOW},
        {"32767", 5, 0, comn_numtoi2, comnb_numtoi2, CS_SMALLINT_TYPE, 32767, CS_SUCCEED, CS_SUCCEED},
        {"9223372036854775807.9", 20, 1, comn_numtoi8, comnb_numtoi8, CS_BIGINT_TYPE, INT64_MAX, CS_SUCCEED,
         CS_TRUNCATED},
        {"9223372036854775808", 19, 0, comn_numtoi8, comnb_numtoi8, CS_BIGINT_TYPE, INT64_MAX, CS_EOVERFLOW,
         CS_EOVERFLOW},
        {"-9223372036854775808", 19, 0, comn_numtoi8, comnb_numtoi8, CS_BIGINT_TYPE, INT64_MIN, CS_SUCCEED,
         CS_SUCCEED},
        {"-9223372036854775809", 19, 0, comn_numtoi8, comnb_numtoi8, CS_BIGINT_TYPE, INT64_MIN, CS_EUNDERFLOW,
         CS_EUNDERFLOW},
        {"-0.9", 5, 1, comn_numtoi8, comnb_numtoi8, CS_BIGINT_TYPE, 0, CS_SUCCEED, CS_TRUNCATED},
        {"-0.9", 5, 1, comn_numtoui8, comnb_numtoui8, CS_UBIGINT_TYPE, 0, CS_EUNDERFLOW, CS_EUNDERFLOW},
        {"18446744073709551616", 20, 0, comn_numtoui8, comnb_numtoui8, CS_UBIGINT_TYPE, -1, CS_EOVERFLOW,
         CS_EOVERFLOW},
        {"18446744073709551615.5", 21, 1, comn_numtoui8, comnb_numtoui8, CS_UBIGINT_TYPE, -1, CS_SUCCEED,
         CS_TRUNCATED},
    };
    Context ctx;
    CAST_CONTEXT cast{};
    for (const auto &c : cases) {
        CS_NUMERIC n = parse(ctx, c.value, c.p, c.s);
        CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35);
        CS_DATAFMT df = fmt(c.desttype, 8);
        CS_BYTE out[8] = {};
        CS_INT len = -1;
        EXPECT_EQ(code_name(c.f(ctx.get(), &sf, &n, &df, out, &len)), code_name(c.comn)) << c.value;
        EXPECT_EQ(len, comn_typelen(c.desttype, 0)) << c.value;
        EXPECT_EQ(stored_as(c.desttype, out), c.stored) << c.value;

        __CONSTANT src = kes::test::constant(n.array, len_of(c.p), len_of(c.p));
        src.prec = n.precision;
        src.scale = n.scale;
        CS_BYTE outb[8] = {};
        __CONSTANT dst = kes::test::constant(outb, 0, 8);
        EXPECT_EQ(code_name(c.fb(&cast, &src, &dst)), code_name(c.comnb)) << c.value;
        EXPECT_EQ(stored_as(c.desttype, outb), c.stored) << c.value;
    }
}

TEST(NumToScalar, BitFloatsAndMoney)
{
    Context ctx;
    CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35);
    CS_INT len;
    {
        CS_NUMERIC n = parse(ctx, "0.001", 5, 3);
        CS_DATAFMT df = fmt(CS_BIT_TYPE, 1);
        CS_BIT b = 9;
        EXPECT_EQ(comn_numtobit(ctx.get(), &sf, &n, &df, &b, &len), CS_SUCCEED);
        EXPECT_EQ(b, 1);
        n = parse(ctx, "-0.000", 5, 3);
        EXPECT_EQ(comn_numtobit(ctx.get(), &sf, &n, &df, &b, &len), CS_SUCCEED);
        EXPECT_EQ(b, 0);
    }
    {
        CS_NUMERIC n = parse(ctx, std::string(60, '9'), 60, 0);
        CS_DATAFMT df = fmt(CS_REAL_TYPE, 4);
        CS_REAL r = 0;
        EXPECT_EQ(comn_numtoflt4(ctx.get(), &sf, &n, &df, &r, &len), CS_EOVERFLOW);
        EXPECT_EQ(r, FLT_MAX);
        n = parse(ctx, "-" + std::string(60, '9'), 60, 0);
        EXPECT_EQ(comn_numtoflt4(ctx.get(), &sf, &n, &df, &r, &len), CS_EOVERFLOW);
        EXPECT_EQ(r, -FLT_MAX);
    }
    {
        struct M {
            const char *v;
            int p, s;
            CS_RETCODE rc;
            long long units;
        } const ms[] = {
            {"-922337203685477.5808", 19, 4, CS_SUCCEED, INT64_MIN},
            {"-922337203685477.58085", 20, 5, CS_EOVERFLOW, 0},
            {"922337203685477.5807", 19, 4, CS_SUCCEED, INT64_MAX},
            {"922337203685477.58075", 20, 5, CS_EOVERFLOW, 0},
            {"1.23455", 6, 5, CS_SUCCEED, 12346},
            {"-1.23455", 6, 5, CS_SUCCEED, -12346},
            {"-0.00004", 6, 5, CS_SUCCEED, 0},
            {"12", 2, 0, CS_SUCCEED, 120000},
        };
        for (const auto &m : ms) {
            CS_NUMERIC n = parse(ctx, m.v, m.p, m.s);
            CS_DATAFMT df = fmt(CS_MONEY_TYPE, 8);
            CS_MONEY out{};
            EXPECT_EQ(code_name(comn_numtomoney(ctx.get(), &sf, &n, &df, &out, &len)), code_name(m.rc)) << m.v;
            if (m.rc == CS_SUCCEED) {
                EXPECT_EQ((static_cast<long long>(out.mnyhigh) << 32) | out.mnylow, m.units) << m.v;
            }
        }
        CS_NUMERIC n = parse(ctx, "214748.36475", 11, 5);
        CS_DATAFMT df = fmt(CS_MONEY4_TYPE, 4);
        CS_MONEY4 m4{};
        EXPECT_EQ(comn_numtomny4(ctx.get(), &sf, &n, &df, &m4, &len), CS_EOVERFLOW);
        n = parse(ctx, "-214748.3648", 11, 4);
        EXPECT_EQ(comn_numtomny4(ctx.get(), &sf, &n, &df, &m4, &len), CS_SUCCEED);
        EXPECT_EQ(m4.mny4, INT32_MIN);
    }
}

TEST(NumToText, PaddingAndTheServerCut)
{
    Context ctx;
    CS_NUMERIC n = parse(ctx, "-123.45", 6, 2);
    CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35);
    struct Case {
        int maxlen;
        int format;
        CS_RETCODE rc;
        const char *out;
    } const cases[] = {
        {7, 0, CS_SUCCEED, "-123.45"},
        {8, CS_FMT_NULLTERM, CS_SUCCEED, "-123.45"},
        {6, 0, CS_EOVERFLOW, "-123.4"},
        {9, CS_FMT_PADBLANK, CS_SUCCEED, "-123.45  "},
    };
    for (const auto &c : cases) {
        CS_DATAFMT df = fmt(CS_CHAR_TYPE, c.maxlen, c.format);
        char buf[16] = {};
        CS_INT len = 0;
        EXPECT_EQ(code_name(comn_numtochar(ctx.get(), &sf, &n, &df, buf, &len)), code_name(c.rc)) << c.maxlen;
        EXPECT_EQ(std::string(buf, std::strlen(c.out)), c.out) << c.maxlen;
    }
    // Server layer: losing decimals only is a truncation, more an overflow.
    CAST_CONTEXT cast{};
    __CONSTANT src = kes::test::constant(n.array, len_of(6), len_of(6));
    src.prec = 6;
    src.scale = 2;
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
    EXPECT_EQ(len, 258);
    EXPECT_EQ(std::string(vc.str, static_cast<size_t>(vc.len)), "-123.45");
}

TEST(NumToNum, CopyBeforeShiftInContextShiftBeforeFitInServer)
{
    Context ctx;
    CS_NUMERIC n = parse(ctx, "12345.1234567890", 20, 10);
    CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35);
    CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, 5, 0);
    CS_NUMERIC out{};
    CS_INT len = 0;
    EXPECT_EQ(comn_numtonum(ctx.get(), &sf, &n, &df, &out, &len), CS_EOVERFLOW);

    CAST_CONTEXT cast{};
    __CONSTANT src = kes::test::constant(n.array, len_of(20), len_of(20));
    src.prec = 20;
    src.scale = 10;
    CS_BYTE ob[35] = {};
    __CONSTANT dst = kes::test::constant(ob, 0, 35);
    dst.prec = 5;
    dst.scale = 0;
    EXPECT_EQ(comnb_numtonum(&cast, &src, &dst), CS_TRUNCATED);
    EXPECT_EQ(dst.len, len_of(5));
    cast.flags = 1;
    EXPECT_EQ(comnb_numtonum(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(from_bytes(ob, dst.len).str(), "12345");

    // Source values and validation.
    CS_DATAFMT same = fmt(CS_NUMERIC_TYPE, 35, 0, CS_SRC_VALUE, CS_SRC_VALUE);
    EXPECT_EQ(comn_numtonum(ctx.get(), &sf, &n, &same, &out, &len), CS_SUCCEED);
    EXPECT_EQ(len, len_of(20) + 2);
    EXPECT_EQ(text_of(ctx, out), "12345.1234567890");
    CS_DATAFMT cut = fmt(CS_NUMERIC_TYPE, 35, 0, 20, 3);
    EXPECT_EQ(comn_numtonum(ctx.get(), &sf, &n, &cut, &out, &len), CS_TRUNCATED);
    EXPECT_EQ(text_of(ctx, out), "12345.123");
    for (auto [p, s, rc] : {std::tuple{0, 0, CS_EPRECISION}, {78, 0, CS_EPRECISION}, {5, 78, CS_ESCALE}}) {
        CS_DATAFMT bad = fmt(CS_NUMERIC_TYPE, 35, 0, p, s);
        EXPECT_EQ(comn_numtonum(ctx.get(), &sf, &n, &bad, &out, &len), rc);
    }
    CS_NUMERIC broken = n;
    broken.precision = 0;
    EXPECT_EQ(comn_numtonum(ctx.get(), &sf, &broken, &df, &out, &len), CS_EDOMAIN);
    CS_DATAFMT i4f = fmt(CS_INT_TYPE, 4);
    EXPECT_EQ(comn_numtoi4(ctx.get(), &sf, &broken, &i4f, &out, &len), CS_EDOMAIN);
}

TEST(TextToNum, ContextAndServerLayers)
{
    Context ctx;
    struct Case {
        const char *text;
        int p, s;
        CS_RETCODE comn, comnb_strict, comnb_tolerant;
    } const cases[] = {
        {"12.345", 5, 2, CS_EOVERFLOW, CS_TRUNCATED, CS_SUCCEED},
        {"12.34", 5, 2, CS_SUCCEED, CS_SUCCEED, CS_SUCCEED},
        {"12a", 5, 2, CS_ESYNTAX, CS_ESYNTAX, CS_ESYNTAX},
        {"123456", 5, 0, CS_EOVERFLOW, CS_EOVERFLOW, CS_EOVERFLOW},
    };
    for (const auto &c : cases) {
        std::string t = c.text;
        CS_DATAFMT sf = fmt(CS_CHAR_TYPE, static_cast<CS_INT>(t.size()));
        CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, c.p, c.s);
        CS_NUMERIC n{};
        CS_INT len = 0;
        EXPECT_EQ(code_name(comn_chartonum(ctx.get(), &sf, t.data(), &df, &n, &len)), code_name(c.comn)) << c.text;
        CAST_CONTEXT cast{};
        for (int flags : {0, 1}) {
            cast.flags = flags;
            CS_BYTE ob[35];
            __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(t.data()), static_cast<CS_INT>(t.size()),
                                                 static_cast<CS_INT>(t.size()));
            __CONSTANT dst = kes::test::constant(ob, 0, len_of(c.p));
            dst.prec = static_cast<CS_BYTE>(c.p);
            dst.scale = static_cast<CS_BYTE>(c.s);
            EXPECT_EQ(code_name(comnb_chartonum(&cast, &src, &dst)),
                      code_name(flags ? c.comnb_tolerant : c.comnb_strict))
                << c.text << " flags " << flags;
        }
    }
    // Source values; a varchar source; the precision and scale checks.
    CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, CS_SRC_VALUE, CS_SRC_VALUE);
    CS_VARCHAR vc{};
    vc.len = 8;
    std::memcpy(vc.str, "00123.45", 8);
    CS_DATAFMT vf = fmt(CS_VARCHAR_TYPE, 258);
    CS_NUMERIC n{};
    CS_INT len = 0;
    ASSERT_EQ(comn_varchartonum(ctx.get(), &vf, &vc, &df, &n, &len), CS_SUCCEED);
    EXPECT_EQ(len, 35);
    EXPECT_EQ(n.precision, 5);
    EXPECT_EQ(n.scale, 2);
    EXPECT_EQ(text_of(ctx, n), "123.45");
    CS_DATAFMT sf = fmt(CS_CHAR_TYPE, 1);
    for (auto [p, s, rc] : {std::tuple{0, 0, CS_EPRECISION}, {78, 0, CS_EPRECISION}, {5, -1, CS_ESCALE}}) {
        CS_DATAFMT bad = fmt(CS_NUMERIC_TYPE, 35, 0, p, s);
        EXPECT_EQ(comn_chartonum(ctx.get(), &sf, const_cast<char *>("1"), &bad, &n, &len), rc);
    }
    std::string huge(1024, '1');
    CS_DATAFMT hf = fmt(CS_CHAR_TYPE, 1024);
    CS_DATAFMT ok = fmt(CS_NUMERIC_TYPE, 35, 0, 10, 0);
    EXPECT_EQ(comn_chartonum(ctx.get(), &hf, huge.data(), &ok, &n, &len), CS_ESYNTAX);
}

TEST(NumConvDeath, NullsAndWrongTypes)
{
    Context ctx;
    CS_NUMERIC n{};
    n.precision = 5;
    CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35);
    CS_DATAFMT df = fmt(CS_INT_TYPE, 4);
    CS_DATAFMT wrong = fmt(CS_REAL_TYPE, 4);
    CS_INT v, len;
    EXPECT_NULL_POINTER(comn_numtoi4(ctx.get(), &sf, nullptr, &df, &v, &len));
    EXPECT_NULL_POINTER(comn_chartonum(ctx.get(), &sf, &n, &df, &v, nullptr));
    EXPECT_BOMB(comn_numtoi4(ctx.get(), &sf, &n, &wrong, &v, &len));
    // A negative value at scale 77 has no text.
    CS_NUMERIC neg{};
    neg.precision = 77;
    neg.scale = 77;
    neg.array[0] = 1;
    neg.array[32] = 1;
    CS_DATAFMT cf = fmt(CS_CHAR_TYPE, 100);
    char buf[100];
    EXPECT_BOMB(comn_numtochar(ctx.get(), &sf, &neg, &cf, buf, &len));
}

// ---- randomised runs ----------------------------------------------------------------

struct IntDest {
    Conv f;
    ConvB fb;
    int type;
    double lo, hi;          // the float route's bounds; 0, 0 for the 64-bit text route
    CS_RETCODE neg, negb;   // a value below lo in each layer
};

// Numeric to every integer type: the float route against strtod of the GMP
// text and the table's clamps, the 64-bit route against GMP truncation.
TEST(NumToInt, RandomAgainstStrtodAndGmp)
{
    const IntDest dests[] = {
        {comn_numtoi1, comnb_numtoi1, CS_TINYINT_TYPE, 0, 255, CS_EOVERFLOW, CS_EOVERFLOW},
        {comn_numtoi2, comnb_numtoi2, CS_SMALLINT_TYPE, -32768, 32767, CS_EOVERFLOW, CS_EOVERFLOW},
        {comn_numtoi4, comnb_numtoi4, CS_INT_TYPE, -2147483648.0, 2147483647.0, CS_EOVERFLOW, CS_EOVERFLOW},
        {comn_numtoui2, comnb_numtoui2, CS_USMALLINT_TYPE, 0, 65535, CS_EUNDERFLOW, CS_EOVERFLOW},
        {comn_numtoui4, comnb_numtoui4, CS_UINT_TYPE, 0, 4294967295.0, CS_EUNDERFLOW, CS_EOVERFLOW},
        {comn_numtoi8, comnb_numtoi8, CS_BIGINT_TYPE, 0, 0, CS_EUNDERFLOW, CS_EUNDERFLOW},
        {comn_numtoui8, comnb_numtoui8, CS_UBIGINT_TYPE, 0, 0, CS_EUNDERFLOW, CS_EUNDERFLOW},
    };
    Context ctx;
    CAST_CONTEXT cast{};
    std::mt19937_64 rng(77);
    const long n = cases();
    CS_DATAFMT sf = fmt(CS_NUMERIC_TYPE, 35);
    for (long i = 0; i < n; ++i) {
        const int p = std::uniform_int_distribution<int>(1, 30)(rng);
        const int s = std::uniform_int_distribution<int>(0, p)(rng);
        const Z u = random_value(rng, p);
        CS_NUMERIC num = record(u, p, s);
        const IntDest &d = dests[i % 7];
        const std::string text = fixed_text(u, s);
        const double dv = std::strtod(text.c_str(), nullptr);
        Z pow, q, r;
        mpz_ui_pow_ui(pow, 10, static_cast<unsigned long>(s));
        mpz_tdiv_qr(q, r, u, pow);
        const bool frac = sgn(r) != 0;

        long long want = 0;
        CS_RETCODE rc = CS_SUCCEED, rcb = CS_SUCCEED;
        const bool unsigned64 = d.type == CS_UBIGINT_TYPE;
        if (d.lo != d.hi) {
            if (dv < d.lo) {
                want = static_cast<long long>(d.lo), rc = d.neg, rcb = d.negb;
            } else if (dv > d.hi) {
                want = static_cast<long long>(d.hi), rc = rcb = CS_EOVERFLOW;
            } else {
                want = static_cast<long long>(dv);
                rcb = static_cast<double>(want) != dv ? CS_TRUNCATED : CS_SUCCEED;
            }
        } else {
            Z lo, hi;
            mpz_set_str(lo, unsigned64 ? "0" : "-9223372036854775808", 10);
            mpz_set_str(hi, unsigned64 ? "18446744073709551615" : "9223372036854775807", 10);
            if (mpz_cmp(q, hi) > 0) {
                want = unsigned64 ? -1 : INT64_MAX, rc = rcb = CS_EOVERFLOW;
            } else if (mpz_cmp(q, lo) < 0 || (unsigned64 && sgn(u) < 0)) {
                want = unsigned64 ? 0 : INT64_MIN, rc = rcb = CS_EUNDERFLOW;
            } else {
                want = unsigned64 ? static_cast<long long>(std::strtoull(q.str().c_str(), nullptr, 10))
                                  : std::strtoll(q.str().c_str(), nullptr, 10);
                rcb = frac ? CS_TRUNCATED : CS_SUCCEED;
            }
        }
        CS_DATAFMT df = fmt(d.type, 8);
        CS_BYTE out[8] = {};
        CS_INT len;
        ASSERT_EQ(code_name(d.f(ctx.get(), &sf, &num, &df, out, &len)), code_name(rc)) << text << " type " << d.type;
        ASSERT_EQ(stored_as(d.type, out), want) << text << " type " << d.type;
        __CONSTANT src = kes::test::constant(num.array, len_of(p), len_of(p));
        src.prec = static_cast<CS_BYTE>(p);
        src.scale = static_cast<CS_BYTE>(s);
        CS_BYTE outb[8] = {};
        __CONSTANT dst = kes::test::constant(outb, 0, 8);
        ASSERT_EQ(code_name(d.fb(&cast, &src, &dst)), code_name(rcb)) << text << " type " << d.type;
        ASSERT_EQ(stored_as(d.type, outb), want) << text << " type " << d.type;
    }
}

// Numeric to double against strtod of the GMP text, and double to numeric
// against the half-away rounding of the double's 17-digit text.
TEST(NumFloat, RandomAgainstStrtodAndSeventeenDigitText)
{
    Context ctx;
    std::mt19937_64 rng(1717);
    const long n = cases();
    CS_DATAFMT nf = fmt(CS_NUMERIC_TYPE, 35);
    CS_DATAFMT ff = fmt(CS_FLOAT_TYPE, 8);
    for (long i = 0; i < n; ++i) {
        const int p = std::uniform_int_distribution<int>(1, 77)(rng);
        const int s = std::uniform_int_distribution<int>(0, p)(rng);
        const Z u = random_value(rng, p);
        CS_NUMERIC num = record(u, p, s);
        CS_FLOAT d = 0;
        CS_INT len;
        if (sgn(u) < 0 && s == 77)
            continue;
        ASSERT_EQ(comn_numtoflt8(ctx.get(), &nf, &num, &ff, &d, &len), CS_SUCCEED);
        ASSERT_EQ(d, std::strtod(fixed_text(u, s).c_str(), nullptr)) << fixed_text(u, s);

        // A double of random bits and magnitude, into random precision/scale.
        double x;
        do {
            const uint64_t bits = rng();
            std::memcpy(&x, &bits, 8);
        } while (!std::isfinite(x));
        int e2;
        x = std::ldexp(std::frexp(x, &e2), std::uniform_int_distribution<int>(-80, 200)(rng));
        char text[64];
        std::snprintf(text, sizeof text, "%.17g", x);
        // Unscaled digits and exponent of the text.
        std::string t = text, digits;
        int exp10 = 0;
        const size_t epos = t.find('e');
        if (epos != std::string::npos) {
            exp10 = std::atoi(t.c_str() + epos + 1);
            t.resize(epos);
        }
        bool neg = false;
        for (char c : t) {
            if (c == '-')
                neg = true;
            else if (c == '.')
                exp10 -= 0; // counted below
            else
                digits += c;
        }
        const size_t dot = t.find('.');
        if (dot != std::string::npos)
            exp10 -= static_cast<int>(t.size() - dot - 1);
        Z mant((neg ? "-" : "") + digits);
        const int tp = std::uniform_int_distribution<int>(1, 77)(rng);
        const int ts = std::uniform_int_distribution<int>(0, tp)(rng);
        const Z want = shift_round(mant, -(exp10 + ts));
        CS_NUMERIC out{};
        CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, tp, ts);
        const CS_RETCODE rc = comn_flt8tonum(ctx.get(), &ff, &x, &df, &out, &len);
        if (exceeds(want, tp)) {
            // A scaling by 78 or more is the reader's status 2, which this
            // layer lets pass as success; only status 1 is an overflow.
            ASSERT_EQ(rc, exp10 + ts >= 78 ? CS_SUCCEED : CS_EOVERFLOW) << text << " p" << tp << " s" << ts;
        } else {
            ASSERT_EQ(rc, CS_SUCCEED) << text << " p" << tp << " s" << ts;
            ASSERT_EQ(from_bytes(out.array, len_of(tp)).str(), want.str()) << text << " p" << tp << " s" << ts;
        }
    }
}

// Numeric to money and back at every scale against GMP.
TEST(NumMoney, RandomBothWaysAgainstGmp)
{
    Context ctx;
    std::mt19937_64 rng(4444);
    const long n = cases();
    CS_DATAFMT nf = fmt(CS_NUMERIC_TYPE, 35);
    CS_DATAFMT mf = fmt(CS_MONEY_TYPE, 8);
    const Z mmax("9223372036854775807"), mmin("-9223372036854775808");
    for (long i = 0; i < n; ++i) {
        // Money into numeric at a random scale.
        const int64_t units = static_cast<int64_t>(rng()) >> std::uniform_int_distribution<int>(0, 63)(rng);
        CS_MONEY m{static_cast<CS_INT>(static_cast<uint64_t>(units) >> 32), static_cast<CS_UINT>(units)};
        const int s = std::uniform_int_distribution<int>(0, 77)(rng);
        const int p = std::uniform_int_distribution<int>(1, 77)(rng);
        const Z want = shift_round(Z(std::to_string(units)), 4 - s);
        CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, p, s);
        CS_NUMERIC num{};
        CS_INT len;
        const CS_RETCODE rc = comn_moneytonum(ctx.get(), &mf, &m, &df, &num, &len);
        if (exceeds(want, p)) {
            ASSERT_EQ(rc, CS_EOVERFLOW) << units << " p" << p << " s" << s;
        } else {
            ASSERT_EQ(rc, CS_SUCCEED) << units << " p" << p << " s" << s;
            ASSERT_EQ(from_bytes(num.array, len_of(p)).str(), want.str()) << units << " p" << p << " s" << s;
        }

        // Numeric into money: rounded half away from zero to 4 decimals.
        const int np = std::uniform_int_distribution<int>(1, 40)(rng);
        const int ns = std::uniform_int_distribution<int>(0, np)(rng);
        const Z u = random_value(rng, np);
        CS_NUMERIC src = record(u, np, ns);
        const Z r = shift_round(u, ns - 4);
        CS_MONEY out{};
        const CS_RETCODE mrc = comn_numtomoney(ctx.get(), &nf, &src, &mf, &out, &len);
        if (mpz_cmp(r, mmax) > 0 || mpz_cmp(r, mmin) < 0) {
            ASSERT_EQ(mrc, CS_EOVERFLOW) << fixed_text(u, ns);
        } else {
            ASSERT_EQ(mrc, CS_SUCCEED) << fixed_text(u, ns);
            const long long got = static_cast<long long>((static_cast<uint64_t>(static_cast<uint32_t>(out.mnyhigh)) << 32) | out.mnylow);
            ASSERT_EQ(std::to_string(got), r.str()) << fixed_text(u, ns);
        }
    }
}

} // namespace
