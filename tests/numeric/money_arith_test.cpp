// Money arithmetic: a differential run against 128-bit integer arithmetic,
// then the odd rules at the limits, the two entry layers and the small kernels.
#include <random>
#include <string>

#include "numeric/mny.h"
#include "support/context.h"

namespace {

using kes::test::code_name;

constexpr int64_t kMax = INT64_MAX, kMin = INT64_MIN, kSentinel = 0x5A5A5A5A5A5A5A5ALL;

CS_MONEY M(int64_t v)
{
    CS_MONEY m;
    kes::money::set(m, v);
    return m;
}
int64_t V(const CS_MONEY &m) { return kes::money::value(m); }

// The oracle: the rules in 128-bit arithmetic.  keeps: the result is left as it was.
struct Expected { int64_t result; int status; bool keeps = false; };

Expected ref(char op, int64_t a, int64_t b)
{
    const __int128 wa = a, wb = b;
    switch (op) {
    case '+':
    case '-': {
        const __int128 r = op == '+' ? wa + wb : wa - wb; // overflow stores zero
        return r > kMax || r < kMin ? Expected{0, 1} : Expected{static_cast<int64_t>(r), 0};
    }
    case '*': { // half away from zero, except that a product below one unit is zero
        const __int128 p = wa * wb, mag = p < 0 ? -p : p;
        __int128 q = mag / 10000;
        if (q != 0 && mag % 10000 >= 5000)
            ++q;
        q = p < 0 ? -q : q;
        return q > kMax || q < kMin ? Expected{0, 1, true} : Expected{static_cast<int64_t>(q), 0};
    }
    default: { // cut toward zero; 19 digits or more zero the result, a smaller miss keeps it
        if (b == 0)
            return {0, 3};
        const __int128 q = wa * 10000 / wb, limit19 = static_cast<__int128>(10000000000000000000ULL);
        if (q >= limit19 || q <= -limit19)
            return {0, 1};
        return q > kMax || q < kMin ? Expected{0, 1, true} : Expected{static_cast<int64_t>(q), 0};
    }
    }
}

// Operands of every width, some at the limits and around zero, so that
// results land on both sides of every boundary.
int64_t random_money(std::mt19937_64 &rng)
{
    switch (rng() % 16) {
    case 0: return kMax - static_cast<int64_t>(rng() % 3);
    case 1: return kMin + static_cast<int64_t>(rng() % 3);
    case 2: return static_cast<int64_t>(rng() % 5) - 2;
    default: {
        const auto v = static_cast<int64_t>(rng() >> (rng() % 63));
        return (rng() & 1) ? v : -v;
    }
    }
}

TEST(MoneyDifferential, AgreesWith128BitArithmetic)
{
    using Kernel = int (*)(CS_MONEY *, CS_MONEY *, CS_MONEY *);
    const std::pair<char, Kernel> ops[] = {{'+', com__mnyadd}, {'-', com__mnysub}, {'*', com__mnymul}, {'/', com__mnydiv}};
    std::mt19937_64 rng(20261122);
    for (int i = 0; i < 100000; i++) {
        const int64_t a = random_money(rng), b = random_money(rng);
        for (const auto &[op, kernel] : ops) {
            CS_MONEY ma = M(a), mb = M(b), r = M(kSentinel);
            const Expected want = ref(op, a, b);
            ASSERT_EQ(kernel(&ma, &mb, &r), want.status) << a << " " << op << " " << b;
            ASSERT_EQ(V(r), want.keeps ? kSentinel : want.result) << a << " " << op << " " << b;
        }
        CS_MONEY ma = M(a), mb = M(b);
        ASSERT_EQ(comn_mnycmp(&ma, &mb), a < b ? -1 : a > b ? 1 : 0) << a << " " << b;
    }
}

// CS_MONEY4 products and quotients follow the wide rules; any failure, the
// narrowing included, zeroes the result.
TEST(MoneyDifferential, Money4AgreesWithTheWideRulesNarrowed)
{
    std::mt19937_64 rng(4);
    for (int i = 0; i < 20000; i++) {
        const auto a = static_cast<CS_INT>(rng() >> (rng() % 64)), b = static_cast<CS_INT>(rng() >> (rng() % 64));
        for (char op : {'*', '/'}) {
            CS_MONEY4 ma{a}, mb{b}, r{7};
            Expected want = ref(op, a, b);
            if (want.status == 0 && (want.result > INT32_MAX || want.result < INT32_MIN))
                want = {0, 1};
            ASSERT_EQ(op == '*' ? com__mnymul4(&ma, &mb, &r) : com__mnydiv4(&ma, &mb, &r), want.status)
                << a << op << b;
            ASSERT_EQ(r.mny4, want.status ? 0 : want.result) << a << op << b;
        }
    }
}

// comn_ maps the status to a result code, com_ returns it; result: what
// stands in the result afterwards.  Rounding itself is the differential's.
TEST(MoneyOp, OddRulesAtTheLimitsInBothLayers)
{
    using Comn = CS_RETCODE (*)(CS_MONEY *, CS_MONEY *, CS_MONEY *);
    using Com = CS_INT (*)(CS_MONEY *, CS_MONEY *, CS_MONEY *);
    const struct { Comn comn; Com com; int64_t a, b, result; int status; } cases[] = {
        {comn_mnyadd, com_mnyadd, 0xFFFFFFFFLL, 1, 0x100000000LL, 0}, // carry between halves
        {comn_mnyadd, com_mnyadd, kMax, 1, 0, 1},                      // overflow stores zero
        {comn_mnysub, com_mnysub, -1, kMin, kMax, 0},
        {comn_mnymul, com_mnymul, 100, 50, 0, 0},                      // 0.00005 is below a unit: zero
        {comn_mnymul, com_mnymul, kMin, -10000, kSentinel, 1},         // overflow keeps the result
        {comn_mnymul, com_mnymul, -4611686018427387904LL, 20000, kMin, 0},
        {comn_mnydivide, com_mnydivide, 0, 0, 0, 3},
        {comn_mnydivide, com_mnydivide, kMin, -10000, kSentinel, 1},   // just misses: kept
        {comn_mnydivide, com_mnydivide, kMax, 1, 0, 1},                // 19 digits: zeroed
    };
    const CS_RETCODE mapped[] = {CS_SUCCEED, CS_EOVERFLOW, CS_ESYNTAX, CS_EDIVZERO};
    for (const auto &c : cases) {
        SCOPED_TRACE(::testing::Message() << c.a << " op " << c.b);
        CS_MONEY a = M(c.a), b = M(c.b), r = M(kSentinel);
        EXPECT_EQ(c.com(&a, &b, &r), c.status);
        EXPECT_EQ(V(r), c.result);
        r = M(kSentinel);
        EXPECT_EQ(code_name(c.comn(&a, &b, &r)), code_name(mapped[c.status]));
        EXPECT_EQ(V(r), c.result);
        EXPECT_EQ(V(a), c.a) << "operand changed";
    }
    CS_MONEY a = M(30000), b = M(20000); // the result may alias an operand
    EXPECT_EQ(comn_mnymul(&a, &b, &a), CS_SUCCEED);
    EXPECT_EQ(V(a), 60000);
    EXPECT_EQ(comn_mnydivide(&a, &b, &b), CS_SUCCEED);
    EXPECT_EQ(V(b), 30000);
}

// (Narrowing to CS_MONEY4 is pinned through the float kernels in money_scalar_test.)
TEST(Money4, SumsZeroOnOverflow)
{
    CS_MONEY4 max{INT32_MAX}, min{INT32_MIN}, one{1}, zero{0}, r{9};
    EXPECT_EQ(comn_mny4add(&max, &one, &r), CS_EOVERFLOW);
    EXPECT_EQ(r.mny4, 0);
    r.mny4 = 9;
    EXPECT_EQ(com_mny4sub(&min, &one, &r), 1);
    EXPECT_EQ(r.mny4, 0);
    EXPECT_EQ(comn_mny4divide(&max, &zero, &r), CS_EDIVZERO);
}

TEST(MoneySmall, IncrementDecrementNegationAndRemainderAtTheLimits)
{
    CS_MONEY m = M(kMax), in = M(kMin), out = M(5);
    EXPECT_EQ(kes::test::hex(&in, 8), "0000008000000000") << "the signed high half first";
    EXPECT_EQ(comn_mnyinc(&m), CS_EOVERFLOW);
    EXPECT_EQ(V(m), kMin) << "the wrapped value stays";
    EXPECT_EQ(com_mnydec(&m), 1);
    EXPECT_EQ(V(m), kMax);
    EXPECT_EQ(com_mnyminus(&in, &out), 1);
    EXPECT_EQ(V(out), kMin) << "stored as itself";
    CS_MONEY4 i4{INT32_MIN}, o4{5};
    EXPECT_EQ(com_mny4minus(&i4, &o4), 1);
    EXPECT_EQ(o4.mny4, 5) << "the 32-bit twin does not write";
    CS_MONEY4 b4{3}; // no remainder is offered in either width
    EXPECT_EQ(com__mnyrem(&m, &in, &out), 1);
    EXPECT_EQ(com__mnyrem4(&i4, &b4, &o4), 1);
    EXPECT_EQ(V(out), kMin);
    EXPECT_EQ(o4.mny4, 5);
}

// Scale multiplies the magnitude by mpier and adds add, both taken unsigned;
// down divides it by the low 16 bits of dvsr and returns the remainder.
TEST(MoneySmall, ScaleAndDownWorkOnTheMagnitudeWithUnsignedOperands)
{
    // ret: the status of scale, the remainder of down.
    const struct { bool scale; int64_t v; int x, y; int64_t result; int ret; } cases[] = {{true, -12, 10, 3, -123, 0},           {true, 12, 0, -5, -5, 0},
                 {true, kMax / 10, 10, 7, kMax, 0},     {true, kMax / 10, 10, 8, kMax / 10, 1},
                 {true, kMin, 1, 0, kMin, 1},           {true, 1, -1, 0, 0xFFFFFFFFLL, 0},
                 {true, 0, 5, -1, 0xFFFFFFFFLL, 0},     {false, -123456, 10000, 0, -12, 3456},
                 {false, kMin, 10, 0, kMin / 10, 8},    {false, 99, 0, 0, 99, 0},
                 {false, 99, 65536, 0, 99, 0},          {false, 99, 65536 + 10, 0, 9, 9},
                 {false, -5, 10, 0, 0, 5}};
    for (const auto &c : cases) {
        SCOPED_TRACE(::testing::Message() << c.v << (c.scale ? " scale " : " down ") << c.x << " " << c.y);
        CS_MONEY m = M(c.v);
        EXPECT_EQ(c.scale ? com_mnyscale(&m, c.x, c.y) : comn_mnydown(&m, c.x), c.ret);
        EXPECT_EQ(V(m), c.result);
    }
}

TEST(MoneySmall, InitRoundsByTheLastRemovedDigitAloneAndHandsBackTheSign)
{
    const struct { int64_t v; int trim; uint64_t result; int sign; } cases[] = {{-123456, 2, 1235, -1}, {149, 2, 1, 0}, {150, 2, 2, 0}, {5, 3, 0, 0},
                 {500, 3, 1, 0},         {kMax, 40, 0, 0}, {kMin, 0, uint64_t{1} << 63, -1}};
    for (const auto &c : cases) {
        CS_MONEY m = M(c.v);
        EXPECT_EQ(comn_mnyinit(&m, c.trim), c.sign) << c.v << " trim " << c.trim;
        EXPECT_EQ(static_cast<uint64_t>(V(m)), c.result) << c.v << " trim " << c.trim;
    }
    CS_MONEY m = M(1235);
    std::string digits;
    char d;
    while (com_mnyndigit(&m, &d) == 1)
        digits.insert(digits.begin(), d);
    EXPECT_EQ(d + digits, "1235");
}

// Against the machine's unsigned division: 16-bit divisors take the digit
// loop (exact below 0x8000), wider ones divide exactly; the high half of
// the divisor is never read.
TEST(MoneyWideDivision, AgreesWithUnsignedDivision)
{
    std::mt19937_64 rng(99);
    for (int i = 0; i < 20000; i++) {
        const uint64_t num = rng() >> (rng() % 64);
        uint32_t den = static_cast<uint32_t>(rng()) >> (rng() % 32);
        if (den == 0 || (den < 0x10000 && den >= 0x8000))
            den = 7;
        CS_MONEY n = M(static_cast<int64_t>(num)), dv = M(0), r = M(0);
        dv.mnyhigh = static_cast<CS_INT>(rng());
        dv.mnylow = den;
        comn_mnyxdiv(&n, &dv, &r);
        ASSERT_EQ(static_cast<uint64_t>(V(r)), num / den) << num << " / " << den;
    }
    CS_MONEY n = M(99), zero = M(0), untouched = M(kSentinel);
    comn_mnyxdiv(&n, &zero, &untouched);
    EXPECT_EQ(V(untouched), kSentinel) << "a zero divisor leaves the result alone";
}

TEST(MoneyDeath, NullArgumentsEndTheProcess)
{
    CS_MONEY a = M(1);
    EXPECT_NULL_POINTER(comn_mnyadd(&a, nullptr, &a));
    EXPECT_NULL_POINTER(com_mnymul(&a, &a, nullptr));
    EXPECT_NULL_POINTER(comn_mnycmp(nullptr, &a));
}

} // namespace
