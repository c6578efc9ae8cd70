// The money and money4 rows in both layers: rounding and clamps to every
// integer type (the double rounding of the 64-bit text route included),
// floats, numeric, text with its styles and right justification, and money
// text in; a randomised run of every integer destination against 128-bit
// arithmetic.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "kescomn.h"
#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::Context;
using kes::test::fmt;

using Conv = CS_RETCODE (*)(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *, CS_INT *);
using ConvB = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

CS_MONEY money(long long units)
{
    return CS_MONEY{static_cast<CS_INT>(static_cast<unsigned long long>(units) >> 32),
                    static_cast<CS_UINT>(units)};
}

long long read_int(int type, const CS_BYTE *b)
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

constexpr long long kUntouched = 0x5A5A5A5A5A5A5A5ALL;

struct IntCase {
    long long units;
    Conv f;
    ConvB fb;
    int type;
    long long stored; // kUntouched: nothing written
    CS_RETCODE rc;
};

TEST(MoneyToInt, RoundingClampsAndUnwrittenDestinations)
{
    const IntCase cases[] = {
        {15000, comn_moneytoi4, comnb_moneytoi4, CS_INT_TYPE, 2, CS_SUCCEED},
        {-15000, comn_moneytoi4, comnb_moneytoi4, CS_INT_TYPE, -2, CS_SUCCEED},
        {14999, comn_moneytoi4, comnb_moneytoi4, CS_INT_TYPE, 1, CS_SUCCEED},
        {21474836475000LL, comn_moneytoi4, comnb_moneytoi4, CS_INT_TYPE, INT32_MAX, CS_EOVERFLOW},
        {-1, comn_moneytoui4, comnb_moneytoui4, CS_UINT_TYPE, kUntouched, CS_EOVERFLOW},
        {-1, comn_moneytoui2, comnb_moneytoui2, CS_USMALLINT_TYPE, kUntouched, CS_EOVERFLOW},
        {655355000, comn_moneytoui2, comnb_moneytoui2, CS_USMALLINT_TYPE, 65535, CS_EOVERFLOW},
        {655344999, comn_moneytoui2, comnb_moneytoui2, CS_USMALLINT_TYPE, 65534, CS_SUCCEED},
        {-5000, comn_moneytoi1, comnb_moneytoi1, CS_TINYINT_TYPE, 0, CS_EOVERFLOW},
        {2555000, comn_moneytoi1, comnb_moneytoi1, CS_TINYINT_TYPE, 255, CS_EOVERFLOW},
        {INT64_MAX, comn_moneytoi1, comnb_moneytoi1, CS_TINYINT_TYPE, kUntouched, CS_EOVERFLOW},
        {-327685000, comn_moneytoi2, comnb_moneytoi2, CS_SMALLINT_TYPE, -32768, CS_EOVERFLOW},
        {INT64_MIN, comn_moneytoi2, comnb_moneytoi2, CS_SMALLINT_TYPE, -32768, CS_EOVERFLOW},
        // The 64-bit route rounds the two-decimal text a second time.
        {14950, comn_moneytoi8, comnb_moneytoi8, CS_BIGINT_TYPE, 2, CS_SUCCEED},
        {14950, comn_moneytoi4, comnb_moneytoi4, CS_INT_TYPE, 1, CS_SUCCEED},
        {-14950, comn_moneytoi8, comnb_moneytoi8, CS_BIGINT_TYPE, -2, CS_SUCCEED},
        {INT64_MAX, comn_moneytoi8, comnb_moneytoi8, CS_BIGINT_TYPE, 922337203685478LL, CS_SUCCEED},
        {INT64_MIN, comn_moneytoi8, comnb_moneytoi8, CS_BIGINT_TYPE, -922337203685478LL, CS_SUCCEED},
        {25000, comn_moneytoui8, comnb_moneytoui8, CS_UBIGINT_TYPE, 3, CS_SUCCEED},
        {-25000, comn_moneytoui8, comnb_moneytoui8, CS_UBIGINT_TYPE, 0, CS_ESYNTAX},
    };
    Context ctx;
    CAST_CONTEXT cast{};
    for (const auto &c : cases) {
        CS_MONEY m = money(c.units);
        CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8);
        CS_DATAFMT df = fmt(c.type, 8);
        CS_BYTE out[8];
        std::memcpy(out, &kUntouched, 8);
        CS_INT len = -1;
        EXPECT_EQ(code_name(c.f(ctx.get(), &sf, &m, &df, out, &len)), code_name(c.rc)) << c.units;
        EXPECT_EQ(len, comn_typelen(c.type, 0));
        if (c.stored == kUntouched)
            EXPECT_EQ(read_int(CS_BIGINT_TYPE, out), kUntouched) << c.units;
        else
            EXPECT_EQ(read_int(c.type, out), c.stored) << c.units;

        __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&m), 8, 8);
        CS_BYTE outb[8];
        std::memcpy(outb, &kUntouched, 8);
        __CONSTANT dst = kes::test::constant(outb, 0, 8);
        EXPECT_EQ(code_name(c.fb(&cast, &src, &dst)), code_name(c.rc)) << c.units;
        if (c.stored != kUntouched) {
            EXPECT_EQ(read_int(c.type, outb), c.stored) << c.units;
        }
    }
}

TEST(MoneyToInt, ZeroWithTheRoundingMarkIsAnAssertion)
{
    Context ctx;
    CS_MONEY m = money(5000); // 0.50: cut to 0, to be moved away from zero
    CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8);
    CS_DATAFMT df = fmt(CS_BIGINT_TYPE, 8);
    CS_BIGINT v;
    CS_INT len;
    EXPECT_BOMB(comn_moneytoi8(ctx.get(), &sf, &m, &df, &v, &len));
}

TEST(Mny4ToInt, ServerKernelsWithoutText)
{
    CAST_CONTEXT cast{};
    CS_MONEY4 m4{14950};
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&m4), 4, 4);
    CS_BIGINT v = 0;
    __CONSTANT dst = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), 0, 8);
    EXPECT_EQ(comnb_mny4toi8(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(v, 1); // one rounding only
    Context ctx;
    CS_DATAFMT sf = fmt(CS_MONEY4_TYPE, 4);
    CS_DATAFMT df = fmt(CS_BIGINT_TYPE, 8);
    CS_INT len;
    EXPECT_EQ(comn_mny4toi8(ctx.get(), &sf, &m4, &df, &v, &len), CS_SUCCEED);
    EXPECT_EQ(v, 2);
    m4.mny4 = -1;
    CS_UBIGINT u = 7;
    __CONSTANT udst = kes::test::constant(reinterpret_cast<CS_BYTE *>(&u), 0, 8);
    EXPECT_EQ(comnb_mny4toui8(&cast, &src, &udst), CS_EOVERFLOW);
    EXPECT_EQ(u, 7u);
}

TEST(MoneyToNum, RoundsBelowFourDecimalsAndChecksTheShape)
{
    Context ctx;
    CS_MONEY m = money(12350); // 1.2350
    CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8);
    struct Case {
        int p, s;
        CS_RETCODE rc;
        const char *text;
    } const cases[] = {
        {5, 2, CS_SUCCEED, "1.24"}, {10, 6, CS_SUCCEED, "1.235000"}, {5, 0, CS_SUCCEED, "1"},
        {3, 4, CS_EOVERFLOW, ""},   {0, 2, CS_EPRECISION, ""},       {78, 2, CS_EPRECISION, ""},
        {5, 78, CS_ESCALE, ""},
    };
    for (const auto &c : cases) {
        CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, c.p, c.s);
        CS_NUMERIC n{};
        CS_INT len = 0;
        EXPECT_EQ(code_name(comn_moneytonum(ctx.get(), &sf, &m, &df, &n, &len)), code_name(c.rc)) << c.p << "," << c.s;
        EXPECT_EQ(len, 35);
        if (c.rc != CS_SUCCEED)
            continue;
        CS_DATAFMT nf = fmt(CS_NUMERIC_TYPE, 35);
        CS_DATAFMT tf = fmt(CS_CHAR_TYPE, 40);
        char buf[40];
        CS_INT tl = 0;
        ASSERT_EQ(comn_numtochar(ctx.get(), &nf, &n, &tf, buf, &tl), CS_SUCCEED);
        EXPECT_EQ(std::string(buf, static_cast<size_t>(tl)), c.text);
    }
    // The server layer: lost digits cannot arise after rounding, so both
    // flag settings agree; the record is right-aligned in the capacity.
    CAST_CONTEXT cast{};
    CS_MONEY neg = money(-12350);
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&neg), 8, 8);
    CS_BYTE ob[35];
    __CONSTANT dst = kes::test::constant(ob, 0, 5);
    dst.prec = 5;
    dst.scale = 2;
    EXPECT_EQ(comnb_moneytonum(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(kes::test::hex(ob, 5), "010000007c");
}

TEST(MoneyToText, StylesPaddingAndRightJustification)
{
    Context ctx;
    CS_MONEY m = money(1000000); // 100
    CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8);
    struct Case {
        int maxlen, format, precision;
        CS_RETCODE rc;
        const char *text;
    } const cases[] = {
        {10, 0, 0, CS_SUCCEED, "100.00"},  {10, 0, 4 , CS_SUCCEED, "100.0000"},
        {10, 0, 1, CS_SUCCEED, "100.0"},   {10, 0, -3, CS_SUCCEED, "100.00"},
        {3, 0, 0, CS_EOVERFLOW, "100"},    {7, CS_FMT_NULLTERM, 0, CS_SUCCEED, "100.00"},
    };
    for (const auto &c : cases) {
        CS_DATAFMT df = fmt(CS_CHAR_TYPE, c.maxlen, c.format, c.precision);
        char buf[16] = {};
        CS_INT len = 0;
        EXPECT_EQ(code_name(comn_moneytochar(ctx.get(), &sf, &m, &df, buf, &len)), code_name(c.rc)) << c.maxlen;
        EXPECT_EQ(std::string(buf, std::strlen(c.text)), c.text);
    }
    CS_DATAFMT vf = fmt(CS_VARCHAR_TYPE, 258, 0, 4);
    CS_VARCHAR vc{};
    CS_INT len = 0;
    EXPECT_EQ(comn_moneytovarchar(ctx.get(), &sf, &m, &vf, &vc, &len), CS_SUCCEED);
    EXPECT_EQ(std::string(vc.str, static_cast<size_t>(vc.len)), "100.00");
    EXPECT_EQ(len, 258);

    CAST_CONTEXT cast{};
    CS_MONEY4 m4{-12345};
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&m4), 4, 4);
    CS_BYTE out[12];
    std::memset(out, '#', sizeof out);
    __CONSTANT dst = kes::test::constant(out, 0, 8);
    cast.format = CS_FMT_JUSTIFY_RT | CS_FMT_PADBLANK;
    EXPECT_EQ(comnb_mny4tochar(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), 8), "   -1.23");
    cast.format = 0;
    cast.style = 4 << 8;
    dst.maxlen = 6;
    EXPECT_EQ(comnb_mny4tochar(&cast, &src, &dst), CS_EOVERFLOW);
    EXPECT_EQ(comnb_mny4tovarchar(&cast, &src, &dst), CS_EOVERFLOW);
    dst.maxlen = 7;
    EXPECT_EQ(comnb_mny4tovarchar(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), 7), "-1.2345");
}

TEST(TextToMoney, BothLayers)
{
    Context ctx;
    struct Case {
        const char *text;
        CS_RETCODE rc, rc4;
    } const cases[] = {
        {"12.3456", CS_SUCCEED, CS_SUCCEED},
        {"1,000.5", CS_SUCCEED, CS_SUCCEED},
        {"300000", CS_SUCCEED, CS_EOVERFLOW},
        {"99999999999999999", CS_EOVERFLOW, CS_EOVERFLOW},
        {"1x", CS_ESYNTAX, CS_ESYNTAX},
    };
    for (const auto &c : cases) {
        std::string t = c.text;
        CS_DATAFMT sf = fmt(CS_CHAR_TYPE, static_cast<CS_INT>(t.size()));
        CS_DATAFMT mf = fmt(CS_MONEY_TYPE, 8);
        CS_DATAFMT m4f = fmt(CS_MONEY4_TYPE, 4);
        CS_MONEY m{};
        CS_MONEY4 m4{};
        CS_INT len = 0;
        EXPECT_EQ(code_name(comn_chartomoney(ctx.get(), &sf, t.data(), &mf, &m, &len)), code_name(c.rc)) << t;
        EXPECT_EQ(len, 8);
        EXPECT_EQ(code_name(comn_chartomny4(ctx.get(), &sf, t.data(), &m4f, &m4, &len)), code_name(c.rc4)) << t;
        EXPECT_EQ(len, 4);
        CAST_CONTEXT cast{};
        __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(t.data()), static_cast<CS_INT>(t.size()),
                                             static_cast<CS_INT>(t.size()));
        CS_MONEY mb{};
        __CONSTANT dst = kes::test::constant(reinterpret_cast<CS_BYTE *>(&mb), 0, 8);
        EXPECT_EQ(code_name(comnb_chartomoney(&cast, &src, &dst)), code_name(c.rc)) << t;
        if (c.rc == CS_SUCCEED) {
            EXPECT_EQ(std::memcmp(&m, &mb, 8), 0) << t;
        }
        CS_VARCHAR vc{};
        vc.len = static_cast<CS_SMALLINT>(t.size());
        std::memcpy(vc.str, t.data(), t.size());
        CS_DATAFMT vf = fmt(CS_VARCHAR_TYPE, 258);
        CS_MONEY mv{};
        EXPECT_EQ(code_name(comn_varchartomoney(ctx.get(), &vf, &vc, &mf, &mv, &len)), code_name(c.rc)) << t;
    }
}

// Every integer destination of both rows and both layers against the
// round-half-away quotient in 128-bit arithmetic and the table's clamps.
TEST(MoneyToInt, RandomAgainstWideArithmetic)
{
    struct Dest {
        Conv f;
        ConvB fb;
        int type;
        __int128 lo, hi;
    } const dests[] = {
        {comn_moneytoi1, comnb_moneytoi1, CS_TINYINT_TYPE, 0, 255},
        {comn_moneytoi2, comnb_moneytoi2, CS_SMALLINT_TYPE, -32768, 32767},
        {comn_moneytoi4, comnb_moneytoi4, CS_INT_TYPE, INT32_MIN, INT32_MAX},
        {comn_moneytoui4, comnb_moneytoui4, CS_UINT_TYPE, 0, UINT32_MAX},
        {comn_moneytoui2, comnb_moneytoui2, CS_USMALLINT_TYPE, 0, 65535},
    };
    Context ctx;
    CAST_CONTEXT cast{};
    std::mt19937_64 rng(99);
    const long n = std::getenv("KES_NUMCONV_CASES") ? std::strtol(std::getenv("KES_NUMCONV_CASES"), nullptr, 10)
                                                     : 100000;
    for (long i = 0; i < n; ++i) {
        const long long units = static_cast<long long>(rng()) >> std::uniform_int_distribution<int>(20, 63)(rng);
        const __int128 v = units;
        __int128 q = v / 10000, r = v % 10000;
        if (r >= 5000)
            ++q;
        else if (r <= -5000)
            --q;
        const Dest &d = dests[i % 5];
        CS_MONEY m = money(units);
        CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8);
        CS_DATAFMT df = fmt(d.type, 8);
        CS_BYTE out[8];
        std::memcpy(out, &kUntouched, 8);
        CS_INT len;
        const CS_RETCODE rc = d.f(ctx.get(), &sf, &m, &df, out, &len);
        const bool unsigned_neg = (d.type == CS_UINT_TYPE || d.type == CS_USMALLINT_TYPE) && units < 0;
        const bool wide_i1 = d.type == CS_TINYINT_TYPE && (q > INT32_MAX || q < INT32_MIN);
        if (unsigned_neg || wide_i1) {
            ASSERT_EQ(rc, CS_EOVERFLOW) << units;
            ASSERT_EQ(read_int(CS_BIGINT_TYPE, out), kUntouched) << units << " type " << d.type;
        } else if (q < d.lo || q > d.hi) {
            ASSERT_EQ(rc, CS_EOVERFLOW) << units;
            ASSERT_EQ(read_int(d.type, out), static_cast<long long>(q < d.lo ? d.lo : d.hi)) << units;
        } else {
            ASSERT_EQ(rc, CS_SUCCEED) << units;
            ASSERT_EQ(read_int(d.type, out), static_cast<long long>(q)) << units;
        }
        // The money4 row agrees wherever the value fits it.
        if (units >= INT32_MIN && units <= INT32_MAX) {
            CS_MONEY4 m4{static_cast<CS_INT>(units)};
            __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&m4), 4, 4);
            CS_BYTE outb[8];
            std::memcpy(outb, out, 8);
            __CONSTANT dst = kes::test::constant(outb, 0, 8);
            ConvB fb4 = d.type == CS_TINYINT_TYPE    ? comnb_mny4toi1
                        : d.type == CS_SMALLINT_TYPE ? comnb_mny4toi2
                        : d.type == CS_INT_TYPE      ? comnb_mny4toi4
                        : d.type == CS_UINT_TYPE     ? comnb_mny4toui4
                                                     : comnb_mny4toui2;
            ASSERT_EQ(fb4(&cast, &src, &dst), rc) << units;
            ASSERT_EQ(std::memcmp(outb, out, 8), 0) << units;
        }
    }
}

} // namespace
