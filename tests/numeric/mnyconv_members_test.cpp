// The money and money4 rows in both layers: rounding and clamps to every
// integer type (with the 64-bit route's double rounding), numeric, text with
// its styles and right justification, and money text in; a randomised run of
// the integer destinations against 128-bit arithmetic.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "kescomn.h"
#include "numconv_ref.h"
#include "support/context.h"

namespace {

using kes::test::code_name;
using kes::test::Context;
using kes::test::fmt;
using kes::test::ref::int_at;

using Conv = CS_RETCODE (*)(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *, CS_INT *);
using ConvB = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

CS_MONEY money(long long units)
{
    return CS_MONEY{static_cast<CS_INT>(static_cast<unsigned long long>(units) >> 32), static_cast<CS_UINT>(units)};
}

__CONSTANT src_of(void *p, CS_INT len) { return kes::test::constant(static_cast<CS_BYTE *>(p), len, len); }

constexpr long long kUntouched = 0x5A5A5A5A5A5A5A5ALL;

// Clamps at each bound, destinations left unwritten (negative to unsigned,
// beyond 32 bits to tinyint), and the 64-bit route, which rounds its
// two-decimal text a second time.
TEST(MoneyToInt, ClampsUnwrittenDestinationsAndDoubleRounding)
{
    const struct {
        long long units;
        Conv f;
        ConvB fb;
        int type;
        long long stored; // kUntouched: nothing written
        CS_RETCODE rc;
    } cases[] = {
        {15000, comn_moneytoi4, comnb_moneytoi4, CS_INT_TYPE, 2, CS_SUCCEED},
        {14950, comn_moneytoi4, comnb_moneytoi4, CS_INT_TYPE, 1, CS_SUCCEED},
        {21474836475000LL, comn_moneytoi4, comnb_moneytoi4, CS_INT_TYPE, INT32_MAX, CS_EOVERFLOW},
        {-1, comn_moneytoui4, comnb_moneytoui4, CS_UINT_TYPE, kUntouched, CS_EOVERFLOW},
        {655355000, comn_moneytoui2, comnb_moneytoui2, CS_USMALLINT_TYPE, 65535, CS_EOVERFLOW},
        {-5000, comn_moneytoi1, comnb_moneytoi1, CS_TINYINT_TYPE, 0, CS_EOVERFLOW},
        {INT64_MAX, comn_moneytoi1, comnb_moneytoi1, CS_TINYINT_TYPE, kUntouched, CS_EOVERFLOW},
        {INT64_MIN, comn_moneytoi2, comnb_moneytoi2, CS_SMALLINT_TYPE, -32768, CS_EOVERFLOW},
        {14950, comn_moneytoi8, comnb_moneytoi8, CS_BIGINT_TYPE, 2, CS_SUCCEED},
        {-14950, comn_moneytoi8, comnb_moneytoi8, CS_BIGINT_TYPE, -2, CS_SUCCEED},
        {INT64_MAX, comn_moneytoi8, comnb_moneytoi8, CS_BIGINT_TYPE, 922337203685478LL, CS_SUCCEED},
        {INT64_MIN, comn_moneytoi8, comnb_moneytoi8, CS_BIGINT_TYPE, -922337203685478LL, CS_SUCCEED},
        {25000, comn_moneytoui8, comnb_moneytoui8, CS_UBIGINT_TYPE, 3, CS_SUCCEED},
        {-25000, comn_moneytoui8, comnb_moneytoui8, CS_UBIGINT_TYPE, 0, CS_ESYNTAX},
    };
    Context ctx;
    CAST_CONTEXT cast{};
    CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8);
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.units) + " to type " + std::to_string(c.type));
        CS_MONEY m = money(c.units);
        CS_DATAFMT df = fmt(c.type, 8);
        CS_BYTE out[8], outb[8];
        std::memcpy(out, &kUntouched, 8);
        std::memcpy(outb, &kUntouched, 8);
        CS_INT len = -1;
        EXPECT_EQ(code_name(c.f(ctx.get(), &sf, &m, &df, out, &len)), code_name(c.rc));
        EXPECT_EQ(len, comn_typelen(c.type, 0));
        __CONSTANT src = src_of(&m, 8), dst = kes::test::constant(outb, 0, 8);
        EXPECT_EQ(code_name(c.fb(&cast, &src, &dst)), code_name(c.rc));
        const int as = c.stored == kUntouched ? CS_BIGINT_TYPE : c.type;
        EXPECT_EQ(int_at(as, out), c.stored);
        EXPECT_EQ(int_at(as, outb), c.stored);
    }
}

TEST(MoneyToInt, ZeroWithTheRoundingMarkIsAnAssertion)
{
    Context ctx;
    CS_MONEY m = money(5000); // 0.50: cut to 0, to be moved away from zero
    CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8), df = fmt(CS_BIGINT_TYPE, 8);
    CS_BIGINT v;
    CS_INT len;
    EXPECT_BOMB(comn_moneytoi8(ctx.get(), &sf, &m, &df, &v, &len));
}

// The server kernels of money4 to 64 bits round once; the context layer
// goes through the text and rounds twice.
TEST(Mny4ToInt, ServerRoundsOnceContextTwice)
{
    CAST_CONTEXT cast{};
    CS_MONEY4 m4{14950};
    CS_BIGINT v = 0;
    CS_UBIGINT u = 7;
    __CONSTANT src = src_of(&m4, 4), dst = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), 0, 8);
    EXPECT_EQ(comnb_mny4toi8(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(v, 1);
    Context ctx;
    CS_DATAFMT sf = fmt(CS_MONEY4_TYPE, 4), df = fmt(CS_BIGINT_TYPE, 8);
    CS_INT len;
    EXPECT_EQ(comn_mny4toi8(ctx.get(), &sf, &m4, &df, &v, &len), CS_SUCCEED);
    EXPECT_EQ(v, 2);
    m4.mny4 = -1;
    __CONSTANT udst = kes::test::constant(reinterpret_cast<CS_BYTE *>(&u), 0, 8);
    EXPECT_EQ(comnb_mny4toui8(&cast, &src, &udst), CS_EOVERFLOW);
    EXPECT_EQ(u, 7u);
}

TEST(MoneyToNum, ShapeChecksAndRightAlignedServerRecord)
{
    Context ctx;
    CS_MONEY m = money(12350); // 1.2350
    CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8);
    const struct {
        int p, s;
        CS_RETCODE rc;
    } cases[] = {{5, 2, CS_SUCCEED},     {3, 4, CS_EOVERFLOW},      {0, 2, CS_EPRECISION},
                 {78, 2, CS_EPRECISION}, {5, 78, CS_ESCALE}};
    for (const auto &c : cases) {
        CS_DATAFMT df = fmt(CS_NUMERIC_TYPE, 35, 0, c.p, c.s);
        CS_NUMERIC n{};
        CS_INT len = 0;
        EXPECT_EQ(code_name(comn_moneytonum(ctx.get(), &sf, &m, &df, &n, &len)), code_name(c.rc)) << c.p << "," << c.s;
        EXPECT_EQ(len, 35);
    }
    CAST_CONTEXT cast{};
    CS_MONEY neg = money(-12350);
    CS_BYTE ob[35];
    __CONSTANT src = src_of(&neg, 8), dst = kes::test::constant(ob, 0, 5);
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
    const struct {
        int maxlen, format, precision; // the precision picks the decimals; 0 or negative: 2
        CS_RETCODE rc;
        const char *text;
    } cases[] = {
        {10, 0, 0, CS_SUCCEED, "100.00"}, {10, 0, 4, CS_SUCCEED, "100.0000"}, {10, 0, 1, CS_SUCCEED, "100.0"},
        {10, 0, -3, CS_SUCCEED, "100.00"}, {3, 0, 0, CS_EOVERFLOW, "100"},   {7, CS_FMT_NULLTERM, 0, CS_SUCCEED, "100.00"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.maxlen) + " precision " + std::to_string(c.precision));
        CS_DATAFMT df = fmt(CS_CHAR_TYPE, c.maxlen, c.format, c.precision);
        char buf[16] = {};
        CS_INT len = 0;
        EXPECT_EQ(code_name(comn_moneytochar(ctx.get(), &sf, &m, &df, buf, &len)), code_name(c.rc));
        EXPECT_EQ(std::string(buf, std::strlen(c.text)), c.text);
    }
    CS_DATAFMT vf = fmt(CS_VARCHAR_TYPE, 258, 0, 4); // varchar ignores the precision
    CS_VARCHAR vc{};
    CS_INT len = 0;
    EXPECT_EQ(comn_moneytovarchar(ctx.get(), &sf, &m, &vf, &vc, &len), CS_SUCCEED);
    EXPECT_EQ(std::string(vc.str, static_cast<size_t>(vc.len)), "100.00");
    EXPECT_EQ(len, 258);

    CAST_CONTEXT cast{};
    CS_MONEY4 m4{-12345};
    CS_BYTE out[12];
    std::memset(out, '#', sizeof out);
    __CONSTANT src = src_of(&m4, 4), dst = kes::test::constant(out, 0, 8);
    cast.format = CS_FMT_JUSTIFY_RT | CS_FMT_PADBLANK;
    EXPECT_EQ(comnb_mny4tochar(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), 8), "   -1.23");
    cast.format = 0;
    cast.style = 4 << 8; // four decimals: 7 characters
    dst.maxlen = 6;
    EXPECT_EQ(comnb_mny4tochar(&cast, &src, &dst), CS_EOVERFLOW);
    EXPECT_EQ(comnb_mny4tovarchar(&cast, &src, &dst), CS_EOVERFLOW);
    dst.maxlen = 7;
    EXPECT_EQ(comnb_mny4tovarchar(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), 7), "-1.2345");
}

// Char, varchar and the server layer agree; money4 overflows earlier.
TEST(TextToMoney, AllEntriesAgree)
{
    Context ctx;
    const struct {
        const char *text;
        CS_RETCODE rc, rc4;
    } cases[] = {
        {"1,000.5", CS_SUCCEED, CS_SUCCEED},
        {"300000", CS_SUCCEED, CS_EOVERFLOW},
        {"99999999999999999", CS_EOVERFLOW, CS_EOVERFLOW},
        {"1x", CS_ESYNTAX, CS_ESYNTAX},
    };
    CS_DATAFMT mf = fmt(CS_MONEY_TYPE, 8), m4f = fmt(CS_MONEY4_TYPE, 4), vf = fmt(CS_VARCHAR_TYPE, 258);
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        std::string t = c.text;
        const auto tl = static_cast<CS_INT>(t.size());
        CS_DATAFMT sf = fmt(CS_CHAR_TYPE, tl);
        CS_MONEY m{}, mb{}, mv{};
        CS_MONEY4 m4{};
        CS_INT len = 0;
        EXPECT_EQ(code_name(comn_chartomoney(ctx.get(), &sf, t.data(), &mf, &m, &len)), code_name(c.rc));
        EXPECT_EQ(len, 8);
        EXPECT_EQ(code_name(comn_chartomny4(ctx.get(), &sf, t.data(), &m4f, &m4, &len)), code_name(c.rc4));
        EXPECT_EQ(len, 4);
        CAST_CONTEXT cast{};
        __CONSTANT src = src_of(t.data(), tl), dst = kes::test::constant(reinterpret_cast<CS_BYTE *>(&mb), 0, 8);
        EXPECT_EQ(code_name(comnb_chartomoney(&cast, &src, &dst)), code_name(c.rc));
        CS_VARCHAR vc{};
        vc.len = static_cast<CS_SMALLINT>(tl);
        std::memcpy(vc.str, t.data(), t.size());
        EXPECT_EQ(code_name(comn_varchartomoney(ctx.get(), &vf, &vc, &mf, &mv, &len)), code_name(c.rc));
        if (c.rc == CS_SUCCEED) {
            EXPECT_EQ(kes::test::hex(&mb, 8), kes::test::hex(&m, 8));
            EXPECT_EQ(kes::test::hex(&mv, 8), kes::test::hex(&m, 8));
        }
    }
}

// The integer destinations of both rows against the round-half-away
// quotient in 128-bit arithmetic and the clamps.
TEST(MoneyToInt, RandomAgainstWideArithmetic)
{
    const struct {
        Conv f;
        ConvB fb4;
        int type;
        __int128 lo, hi;
    } dests[] = {
        {comn_moneytoi1, comnb_mny4toi1, CS_TINYINT_TYPE, 0, 255},
        {comn_moneytoi2, comnb_mny4toi2, CS_SMALLINT_TYPE, -32768, 32767},
        {comn_moneytoi4, comnb_mny4toi4, CS_INT_TYPE, INT32_MIN, INT32_MAX},
        {comn_moneytoui4, comnb_mny4toui4, CS_UINT_TYPE, 0, UINT32_MAX},
        {comn_moneytoui2, comnb_mny4toui2, CS_USMALLINT_TYPE, 0, 65535},
    };
    Context ctx;
    CAST_CONTEXT cast{};
    std::mt19937_64 rng(99);
    const char *env = std::getenv("KES_NUMCONV_CASES");
    CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8);
    for (long i = 0, n = env ? std::strtol(env, nullptr, 10) : 100000; i < n; ++i) {
        const long long units = static_cast<long long>(rng()) >> std::uniform_int_distribution<int>(20, 63)(rng);
        __int128 q = units / 10000, r = units % 10000;
        q += r >= 5000 ? 1 : r <= -5000 ? -1 : 0;
        const auto &d = dests[i % 5];
        CS_MONEY m = money(units);
        CS_DATAFMT df = fmt(d.type, 8);
        CS_BYTE out[8];
        std::memcpy(out, &kUntouched, 8);
        CS_INT len;
        SCOPED_TRACE(std::to_string(units) + " to type " + std::to_string(d.type));
        const CS_RETCODE rc = d.f(ctx.get(), &sf, &m, &df, out, &len);
        const bool unsigned_neg = (d.type == CS_UINT_TYPE || d.type == CS_USMALLINT_TYPE) && units < 0;
        if (unsigned_neg || (d.type == CS_TINYINT_TYPE && (q > INT32_MAX || q < INT32_MIN))) {
            ASSERT_EQ(rc, CS_EOVERFLOW);
            ASSERT_EQ(int_at(CS_BIGINT_TYPE, out), kUntouched);
        } else {
            const bool in = q >= d.lo && q <= d.hi;
            ASSERT_EQ(rc, in ? CS_SUCCEED : CS_EOVERFLOW);
            ASSERT_EQ(int_at(d.type, out), static_cast<long long>(in ? q : q < d.lo ? d.lo : d.hi));
        }
        if (units >= INT32_MIN && units <= INT32_MAX) { // the money4 row agrees where it can hold the value
            CS_MONEY4 m4{static_cast<CS_INT>(units)};
            CS_BYTE outb[8];
            std::memcpy(outb, out, 8);
            __CONSTANT src = src_of(&m4, 4), dst = kes::test::constant(outb, 0, 8);
            ASSERT_EQ(d.fb4(&cast, &src, &dst), rc);
            ASSERT_EQ(std::memcmp(outb, out, 8), 0);
        }
    }
}

} // namespace
