// The money and money4 rows in both layers: integers (with the 64-bit
// route's double rounding), numeric, text out with its styles and right
// justification, and money text in; a randomised run of the integer
// destinations against 128-bit arithmetic.
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
using kes::test::constant;
using kes::test::fmt;
using kes::test::ref::int_at;

using Conv = CS_RETCODE (*)(CS_CONTEXT *, CS_DATAFMT *, CS_VOID *, CS_DATAFMT *, CS_VOID *, CS_INT *);
using ConvB = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

CS_MONEY money(long long units)
{
    return CS_MONEY{static_cast<CS_INT>(static_cast<unsigned long long>(units) >> 32), static_cast<CS_UINT>(units)};
}

__CONSTANT src_of(void *p, CS_INT len) { return constant(static_cast<CS_BYTE *>(p), len, len); }
CS_BYTE *bytes(void *p) { return static_cast<CS_BYTE *>(p); }

constexpr long long kUntouched = 0x5A5A5A5A5A5A5A5ALL;

// The 64-bit route rounds the two-decimal text a second time (1.495 -> 1.50
// -> 2) in both layers; negative to unsigned 64 bits is a syntax error.
TEST(MoneyToInt, SixtyFourBitRouteRoundsTwice)
{
    const struct { long long units; bool is_unsigned; long long stored; CS_RETCODE rc; } cases[] = {
        {14950, false, 2, CS_SUCCEED},          {-14950, false, -2, CS_SUCCEED},
        {INT64_MAX, false, 922337203685478LL, CS_SUCCEED}, {INT64_MIN, false, -922337203685478LL, CS_SUCCEED},
        {25000, true, 3, CS_SUCCEED},           {-25000, true, 0, CS_ESYNTAX},
    };
    Context ctx;
    CAST_CONTEXT cast{};
    CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8), df = fmt(CS_BIGINT_TYPE, 8);
    for (const auto &c : cases) {
        SCOPED_TRACE(c.units);
        CS_MONEY m = money(c.units);
        CS_DATAFMT uf = fmt(c.is_unsigned ? CS_UBIGINT_TYPE : CS_BIGINT_TYPE, 8);
        long long out = kUntouched, outb = kUntouched;
        CS_INT len = -1;
        __CONSTANT src = src_of(&m, 8), dst = constant(bytes(&outb), 0, 8);
        EXPECT_EQ(code_name((c.is_unsigned ? comn_moneytoui8 : comn_moneytoi8)(ctx.get(), &sf, &m, &uf, &out, &len)),
                  code_name(c.rc));
        EXPECT_EQ(len, 8);
        EXPECT_EQ(code_name((c.is_unsigned ? comnb_moneytoui8 : comnb_moneytoi8)(&cast, &src, &dst)), code_name(c.rc));
        EXPECT_EQ(out, c.stored);
        EXPECT_EQ(outb, c.stored);
    }
    // The money4 server kernel rounds once; its context entry goes by text.
    CS_MONEY4 m4{14950};
    CS_DATAFMT s4f = fmt(CS_MONEY4_TYPE, 4);
    long long v = 0;
    CS_INT len;
    __CONSTANT src = src_of(&m4, 4), dst = constant(bytes(&v), 0, 8);
    EXPECT_EQ(comnb_mny4toi8(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(v, 1);
    EXPECT_EQ(comn_mny4toi8(ctx.get(), &s4f, &m4, &df, &v, &len), CS_SUCCEED);
    EXPECT_EQ(v, 2);
    m4.mny4 = -1;
    EXPECT_EQ(comnb_mny4toui8(&cast, &src, &dst), CS_EOVERFLOW);
    EXPECT_EQ(v, 2);
    // 0.50 is cut to 0 and then to be moved away from zero: an assertion.
    CS_MONEY half = money(5000);
    EXPECT_BOMB(comn_moneytoi8(ctx.get(), &sf, &half, &df, &v, &len));
}

TEST(MoneyToNum, ShapeChecksAndRightAlignedServerRecord)
{
    Context ctx;
    CS_MONEY m = money(12350); // 1.2350
    CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8);
    const struct { int p, s; CS_RETCODE rc; } cases[] = {
        {5, 2, CS_SUCCEED}, {3, 4, CS_EOVERFLOW}, {0, 2, CS_EPRECISION}, {78, 2, CS_EPRECISION}, {5, 78, CS_ESCALE}};
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
    __CONSTANT src = src_of(&neg, 8), dst = constant(ob, 0, 5);
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
    // The precision picks the decimals, 0 or negative giving 2.
    const struct { int maxlen, format, precision; CS_RETCODE rc; const char *text; } cases[] = {
        {10, 0, 4, CS_SUCCEED, "100.0000"}, {10, 0, 1, CS_SUCCEED, "100.0"}, {10, 0, -3, CS_SUCCEED, "100.00"},
        {3, 0, 0, CS_EOVERFLOW, "100"},     {7, CS_FMT_NULLTERM, 0, CS_SUCCEED, "100.00"},
    };
    for (const auto &c : cases) {
        CS_DATAFMT df = fmt(CS_CHAR_TYPE, c.maxlen, c.format, c.precision);
        char buf[16] = {};
        CS_INT len = 0;
        EXPECT_EQ(code_name(comn_moneytochar(ctx.get(), &sf, &m, &df, buf, &len)), code_name(c.rc)) << c.text;
        EXPECT_EQ(std::string(buf, std::strlen(c.text) + 1), std::string(c.text) + '\0');
    }
    CS_DATAFMT vf = fmt(CS_VARCHAR_TYPE, 258, 0, 4); // varchar ignores the precision
    CS_VARCHAR vc{};
    CS_INT len = 0;
    EXPECT_EQ(comn_moneytovarchar(ctx.get(), &sf, &m, &vf, &vc, &len), CS_SUCCEED);
    EXPECT_EQ(std::string(vc.str, static_cast<size_t>(vc.len)), "100.00");
    EXPECT_EQ(len, 258);

    CAST_CONTEXT cast{};
    CS_MONEY4 m4{-12345};
    char out[12];
    std::memset(out, '#', sizeof out);
    __CONSTANT src = src_of(&m4, 4), dst = constant(bytes(out), 0, 8);
    cast.format = CS_FMT_JUSTIFY_RT | CS_FMT_PADBLANK;
    EXPECT_EQ(comnb_mny4tochar(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(std::string(out, 8), "   -1.23");
    cast.format = 0;
    cast.style = 4 << 8; // four decimals: 7 characters
    dst.maxlen = 6;
    EXPECT_EQ(comnb_mny4tochar(&cast, &src, &dst), CS_EOVERFLOW);
    EXPECT_EQ(comnb_mny4tovarchar(&cast, &src, &dst), CS_EOVERFLOW);
    dst.maxlen = 7;
    EXPECT_EQ(comnb_mny4tovarchar(&cast, &src, &dst), CS_SUCCEED);
    EXPECT_EQ(std::string(out, 7), "-1.2345");
}

// Char, varchar and the server layer agree; money4 overflows earlier.
TEST(TextToMoney, AllEntriesAgree)
{
    Context ctx;
    const struct { const char *text; CS_RETCODE rc, rc4; } cases[] = {
        {"1,000.5", CS_SUCCEED, CS_SUCCEED}, {"300000", CS_SUCCEED, CS_EOVERFLOW},
        {"99999999999999999", CS_EOVERFLOW, CS_EOVERFLOW}, {"1x", CS_ESYNTAX, CS_ESYNTAX}};
    CS_DATAFMT mf = fmt(CS_MONEY_TYPE, 8), m4f = fmt(CS_MONEY4_TYPE, 4), vf = fmt(CS_VARCHAR_TYPE, 258);
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        std::string t = c.text;
        const auto tl = static_cast<CS_INT>(t.size());
        CS_DATAFMT sf = fmt(CS_CHAR_TYPE, tl);
        CS_MONEY m{}, mb{}, mv{};
        CS_MONEY4 m4{};
        CS_INT len = 0, len4 = 0;
        CS_VARCHAR vc{};
        vc.len = static_cast<CS_SMALLINT>(tl);
        std::memcpy(vc.str, t.data(), t.size());
        CAST_CONTEXT cast{};
        __CONSTANT src = src_of(t.data(), tl), dst = constant(bytes(&mb), 0, 8);
        EXPECT_EQ(code_name(comn_chartomoney(ctx.get(), &sf, t.data(), &mf, &m, &len)), code_name(c.rc));
        EXPECT_EQ(code_name(comn_chartomny4(ctx.get(), &sf, t.data(), &m4f, &m4, &len4)), code_name(c.rc4));
        EXPECT_EQ(len + len4, 12);
        EXPECT_EQ(code_name(comnb_chartomoney(&cast, &src, &dst)), code_name(c.rc));
        EXPECT_EQ(code_name(comn_varchartomoney(ctx.get(), &vf, &vc, &mf, &mv, &len)), code_name(c.rc));
        if (c.rc == CS_SUCCEED) {
            EXPECT_EQ(kes::test::hex(&mb, 8), kes::test::hex(&m, 8));
            EXPECT_EQ(kes::test::hex(&mv, 8), kes::test::hex(&m, 8));
        }
    }
}

// Both rows and both layers to the smaller integers against the round half
// away quotient in 128-bit arithmetic: clamped in range, left unwritten for
// negatives to unsigned and for tinyint beyond 32 bits.
TEST(MoneyToInt, RandomAgainstWideArithmetic)
{
    const struct { Conv f; ConvB fb, fb4; int type; __int128 lo, hi; } dests[] = {
        {comn_moneytoi1, comnb_moneytoi1, comnb_mny4toi1, CS_TINYINT_TYPE, 0, 255},
        {comn_moneytoi2, comnb_moneytoi2, comnb_mny4toi2, CS_SMALLINT_TYPE, -32768, 32767},
        {comn_moneytoi4, comnb_moneytoi4, comnb_mny4toi4, CS_INT_TYPE, INT32_MIN, INT32_MAX},
        {comn_moneytoui4, comnb_moneytoui4, comnb_mny4toui4, CS_UINT_TYPE, 0, UINT32_MAX},
        {comn_moneytoui2, comnb_moneytoui2, comnb_mny4toui2, CS_USMALLINT_TYPE, 0, 65535},
    };
    Context ctx;
    CAST_CONTEXT cast{};
    std::mt19937_64 rng(99);
    CS_DATAFMT sf = fmt(CS_MONEY_TYPE, 8);
    for (long i = 0, n = kes::test::ref::cases(); i < n; ++i) {
        const long long units = static_cast<long long>(rng()) >> std::uniform_int_distribution<int>(0, 63)(rng);
        __int128 q = units / 10000, r = units % 10000;
        q += r >= 5000 ? 1 : r <= -5000 ? -1 : 0;
        const auto &d = dests[i % 5];
        CS_MONEY m = money(units);
        CS_DATAFMT df = fmt(d.type, 8);
        long long out = kUntouched, outb = kUntouched;
        CS_INT len;
        SCOPED_TRACE(std::to_string(units) + " to type " + std::to_string(d.type));
        const CS_RETCODE rc = d.f(ctx.get(), &sf, &m, &df, &out, &len);
        const bool unsigned_neg = (d.type == CS_UINT_TYPE || d.type == CS_USMALLINT_TYPE) && units < 0;
        if (unsigned_neg || (d.type == CS_TINYINT_TYPE && (q > INT32_MAX || q < INT32_MIN))) {
            ASSERT_EQ(rc, CS_EOVERFLOW);
            ASSERT_EQ(out, kUntouched);
        } else {
            const bool in = q >= d.lo && q <= d.hi;
            ASSERT_EQ(rc, in ? CS_SUCCEED : CS_EOVERFLOW);
            ASSERT_EQ(int_at(d.type, bytes(&out)), static_cast<long long>(in ? q : q < d.lo ? d.lo : d.hi));
        }
        __CONSTANT src = src_of(&m, 8), dst = constant(bytes(&outb), 0, 8);
        ASSERT_EQ(d.fb(&cast, &src, &dst), rc);
        if (units >= INT32_MIN && units <= INT32_MAX) { // the money4 row where it holds the value
            CS_MONEY4 m4{static_cast<CS_INT>(units)};
            src = src_of(&m4, 4);
            ASSERT_EQ(d.fb4(&cast, &src, &dst), rc);
        }
        ASSERT_EQ(std::memcmp(&outb, &out, 8), 0);
    }
}

} // namespace
