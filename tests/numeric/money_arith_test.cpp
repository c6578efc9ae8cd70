// Money arithmetic: the rounding and cutting rules, the limits, the two entry
// layers, and a differential run against 128-bit integer arithmetic.
#include <random>

#include "numeric/mny.h"
#include "support/context.h"

namespace {

using kes::test::code_name;

constexpr int64_t kMax = INT64_MAX, kMin = INT64_MIN;

CS_MONEY M(int64_t v)
{
    CS_MONEY m;
    kes::money::set(m, v);
    return m;
}
int64_t V(const CS_MONEY &m) { return kes::money::value(m); }

TEST(MoneyLayout, HighHalfFirstThenLowHalf)
{
    CS_MONEY m = M(-2);
    EXPECT_EQ(m.mnyhigh, -1);
    EXPECT_EQ(m.mnylow, 0xFFFFFFFEU);
    EXPECT_EQ(kes::test::hex(&m, 8), "fffffffffeffffff");
    m = M(0x100000000LL);
    EXPECT_EQ(m.mnyhigh, 1);
    EXPECT_EQ(m.mnylow, 0U);
}

// ---- the four operations, by table ---------------------------------------

using Op3 = CS_RETCODE (*)(CS_MONEY *, CS_MONEY *, CS_MONEY *);
using RawOp3 = CS_INT (*)(CS_MONEY *, CS_MONEY *, CS_MONEY *);

struct OpCase {
    const char *what;
    Op3 comn;
    RawOp3 com;
    int64_t a, b;
    int64_t result; // what stands in the result afterwards
    int status;
};

constexpr int64_t kSentinel = 0x5A5A5A5A5A5A5A5ALL;

const OpCase kOpCases[] = {
    {"add", comn_mnyadd, com_mnyadd, 10000, 25000, 35000, 0},
    {"add max+1 overflows to zero", comn_mnyadd, com_mnyadd, kMax, 1, 0, 1},
    {"add min+-1 overflows to zero", comn_mnyadd, com_mnyadd, kMin, -1, 0, 1},
    {"add max+min", comn_mnyadd, com_mnyadd, kMax, kMin, -1, 0},
    {"add carry between halves", comn_mnyadd, com_mnyadd, 0xFFFFFFFFLL, 1, 0x100000000LL, 0},
    {"sub", comn_mnysub, com_mnysub, 5, 7, -2, 0},
    {"sub min-1 overflows", comn_mnysub, com_mnysub, kMin, 1, 0, 1},
    {"sub 0-min overflows", comn_mnysub, com_mnysub, 0, kMin, 0, 1},
    {"sub -1-min", comn_mnysub, com_mnysub, -1, kMin, kMax, 0},
    {"sub borrow between halves", comn_mnysub, com_mnysub, 0x100000000LL, 1, 0xFFFFFFFFLL, 0},
    // Products: 1.0001 * 1.0001 = 1.00020001 keeps 1.0002; 0.0100 * 0.0050
    // is below one unit and stays zero although its fraction is one half;
    // 0.0200 * 0.5025 = 0.01005 rounds up.
    {"mul 1.0001^2", comn_mnymul, com_mnymul, 10001, 10001, 10002, 0},
    {"mul sub-unit is zero", comn_mnymul, com_mnymul, 100, 50, 0, 0},
    {"mul sub-unit negative is zero", comn_mnymul, com_mnymul, -100, 50, 0, 0},
    {"mul rounds half up", comn_mnymul, com_mnymul, 200, 5025, 101, 0},
    {"mul rounds half away from zero", comn_mnymul, com_mnymul, -200, 5025, -101, 0},
    {"mul below half", comn_mnymul, com_mnymul, 200, 5024, 100, 0},
    {"mul by zero", comn_mnymul, com_mnymul, kMax, 0, 0, 0},
    {"mul max*1", comn_mnymul, com_mnymul, kMax, 10000, kMax, 0},
    {"mul min*1", comn_mnymul, com_mnymul, kMin, 10000, kMin, 0},
    {"mul min*-1 overflows, result kept", comn_mnymul, com_mnymul, kMin, -10000, kSentinel, 1},
    {"mul overflow keeps the result", comn_mnymul, com_mnymul, kMax, 20000, kSentinel, 1},
    {"mul to the most negative", comn_mnymul, com_mnymul, -4611686018427387904LL, 20000, kMin, 0},
    // Quotients are cut toward zero.
    {"div 1/3", comn_mnydivide, com_mnydivide, 10000, 30000, 3333, 0},
    {"div 2/3", comn_mnydivide, com_mnydivide, 20000, 30000, 6666, 0},
    {"div -2/3", comn_mnydivide, com_mnydivide, -20000, 30000, -6666, 0},
    {"div by zero zeroes", comn_mnydivide, com_mnydivide, 10000, 0, 0, 3},
    {"div zero by zero", comn_mnydivide, com_mnydivide, 0, 0, 0, 3},
    {"div zero", comn_mnydivide, com_mnydivide, 0, 7, 0, 0},
    {"div min/1", comn_mnydivide, com_mnydivide, kMin, 10000, kMin, 0},
    {"div min/-1 misses the range, kept", comn_mnydivide, com_mnydivide, kMin, -10000, kSentinel, 1},
    {"div max/0.0001 has 19 digits, zeroed", comn_mnydivide, com_mnydivide, kMax, 1, 0, 1},
    {"div 0.0001/max", comn_mnydivide, com_mnydivide, 1, kMax, 0, 0},
};

class MoneyOp : public ::testing::TestWithParam<OpCase> {};

TEST_P(MoneyOp, ResultAndStatusInBothLayers)
{
    const OpCase &c = GetParam();
    CS_MONEY a = M(c.a), b = M(c.b), r = M(kSentinel);
    const int status = c.com(&a, &b, &r);
    EXPECT_EQ(status, c.status);
    EXPECT_EQ(V(r), c.result);
    const CS_RETCODE mapped[] = {CS_SUCCEED, CS_EOVERFLOW, CS_ESYNTAX, CS_EDIVZERO};
    r = M(kSentinel);
    EXPECT_EQ(code_name(c.comn(&a, &b, &r)), code_name(mapped[c.status]));
    EXPECT_EQ(V(r), c.result);
    EXPECT_EQ(V(a), c.a) << "operand changed";
}

INSTANTIATE_TEST_SUITE_P(Table, MoneyOp, ::testing::ValuesIn(kOpCases));

TEST(MoneyOp, ResultMayAliasAnOperand)
{
    CS_MONEY a = M(30000), b = M(20000);
    EXPECT_EQ(comn_mnymul(&a, &b, &a), CS_SUCCEED);
    EXPECT_EQ(V(a), 60000);
    EXPECT_EQ(comn_mnydivide(&a, &b, &b), CS_SUCCEED);
    EXPECT_EQ(V(b), 30000);
    EXPECT_EQ(comn_mnyadd(&a, &a, &a), CS_SUCCEED);
    EXPECT_EQ(V(a), 120000);
}

// ---- the small kernels ----------------------------------------------------------

TEST(MoneySmall, IncrementDecrementAndNegationWrapAtTheLimits)
{
    CS_MONEY m = M(kMax);
    EXPECT_EQ(comn_mnyinc(&m), CS_EOVERFLOW);
    EXPECT_EQ(V(m), kMin) << "the wrapped value stays";
    EXPECT_EQ(com_mnydec(&m), 1);
    EXPECT_EQ(V(m), kMax);
    m = M(0xFFFFFFFFLL);
    EXPECT_EQ(com_mnyinc(&m), 0);
    EXPECT_EQ(V(m), 0x100000000LL);
    EXPECT_EQ(comn_mnydec(&m), CS_SUCCEED);
    EXPECT_EQ(V(m), 0xFFFFFFFFLL);
    m = M(kMin);
    EXPECT_EQ(comn_mnydec(&m), CS_EOVERFLOW);

    CS_MONEY in = M(kMin), out = M(5);
    EXPECT_EQ(com_mnyminus(&in, &out), 1);
    EXPECT_EQ(V(out), kMin);
    in = M(-7);
    EXPECT_EQ(comn_mnyminus(&in, &out), CS_SUCCEED);
    EXPECT_EQ(V(out), 7);

    CS_MONEY4 i4{INT32_MIN}, o4{5};
    EXPECT_EQ(com_mny4minus(&i4, &o4), 1);
    EXPECT_EQ(o4.mny4, 5) << "not written";
    i4.mny4 = INT32_MAX;
    EXPECT_EQ(comn_mny4minus(&i4, &o4), CS_SUCCEED);
    EXPECT_EQ(o4.mny4, -INT32_MAX);
}

TEST(MoneySmall, ScaleWorksOnTheMagnitude)
{
    const struct {
        int64_t v;
        int mpier, add;
        int64_t result;
        int status;
    } cases[] = {
        {-12, 10, 3, -123, 0},          {12, 0, -5, -5, 0},        {kMax / 10, 10, 7, kMax, 0},
        {kMax / 10, 10, 8, kMax / 10, 1}, {kMin, 1, 0, kMin, 1},     {1, -1, 0, 0xFFFFFFFFLL, 0},
        {0, 5, -1, 0xFFFFFFFFLL, 0},     {kMax, 2, 0, kMax, 1},
    };
    for (const auto &c : cases) {
        CS_MONEY m = M(c.v);
        EXPECT_EQ(com_mnyscale(&m, c.mpier, c.add), c.status) << c.v << "*" << c.mpier;
        EXPECT_EQ(V(m), c.result) << c.v << "*" << c.mpier;
    }
    CS_MONEY m = M(kMax);
    EXPECT_EQ(comn_mnyscale(&m, 10, 0), CS_EOVERFLOW);
}

TEST(MoneySmall, DownDividesTheMagnitudeAndReturnsTheRemainder)
{
    const struct {
        int64_t v;
        int dvsr;
        int64_t result;
        int remainder;
    } cases[] = {
        {123456, 10000, 12, 3456}, {-123456, 10000, -12, 3456}, {kMin, 10, kMin / 10, 8},
        {99, 0, 99, 0},            {99, 65536, 99, 0},          {99, 65536 + 10, 9, 9},
        {-5, 10, 0, 5},
    };
    for (const auto &c : cases) {
        CS_MONEY m = M(c.v);
        EXPECT_EQ(comn_mnydown(&m, c.dvsr), c.remainder) << c.v << "/" << c.dvsr;
        EXPECT_EQ(V(m), c.result) << c.v << "/" << c.dvsr;
    }
}

TEST(MoneySmall, InitAndDigitsHandTheSignToTheCaller)
{
    CS_MONEY m = M(-123456); // -12.3456
    EXPECT_EQ(comn_mnyinit(&m, 2), -1);
    EXPECT_EQ(V(m), 1235) << "half up on the last removed digit";
    std::string digits;
    char d;
    while (com_mnyndigit(&m, &d) == 1)
        digits.insert(digits.begin(), d);
    digits.insert(digits.begin(), d);
    EXPECT_EQ(digits, "1235");
    EXPECT_EQ(V(m), 0);

    m = M(kMin);
    EXPECT_EQ(com_mnyinit(&m, 0), -1);
    EXPECT_EQ(static_cast<uint64_t>(V(m)), uint64_t{1} << 63) << "the magnitude 2^63";
    m = M(149);
    EXPECT_EQ(com_mnyinit(&m, 2), 0);
    EXPECT_EQ(V(m), 1) << "only the last removed digit counts: 149 -> 14|9 -> 1|4";
    m = M(150);
    EXPECT_EQ(com_mnyinit(&m, 2), 0);
    EXPECT_EQ(V(m), 2);
    m = M(5);
    EXPECT_EQ(com_mnyinit(&m, 3), 0);
    EXPECT_EQ(V(m), 0) << "5 -> 0.005: the last removed digit is 0";
    m = M(500);
    EXPECT_EQ(com_mnyinit(&m, 3), 0);
    EXPECT_EQ(V(m), 1);
    m = M(kMax);
    EXPECT_EQ(com_mnyinit(&m, 40), 0);
    EXPECT_EQ(V(m), 0);
}

TEST(MoneySmall, CompareCopyZeroAndLimits)
{
    const int64_t ordered[] = {kMin, kMin + 1, -0x100000000LL, -1, 0, 1, 0xFFFFFFFFLL, 0x100000000LL, kMax};
    for (int64_t a : ordered)
        for (int64_t b : ordered) {
            CS_MONEY ma = M(a), mb = M(b);
            EXPECT_EQ(comn_mnycmp(&ma, &mb), a < b ? -1 : a > b ? 1 : 0) << a << " " << b;
        }
    CS_MONEY m = M(5), n = M(0);
    EXPECT_EQ(comn_mnycopy(&m, &n), CS_SUCCEED);
    EXPECT_EQ(V(n), 5);
    EXPECT_EQ(com_mnycopy(&m, &n), 0);
    comn_mnyzero(&n);
    EXPECT_EQ(V(n), 0);
    comn_mnymaxpos(&m);
    EXPECT_EQ(V(m), kMax);
    com_mnymaxneg(&m);
    EXPECT_EQ(V(m), kMin);

    CS_MONEY4 a{-3}, b{2}, c{0};
    EXPECT_EQ(comn_mny4cmp(&a, &b), -1);
    EXPECT_EQ(com_mny4cmp(&b, &a), 1);
    EXPECT_EQ(comn_mny4copy(&a, &c), CS_SUCCEED);
    EXPECT_EQ(c.mny4, -3);
    EXPECT_EQ(com_mny4copy(&b, &c), 0);
    comn_mny4zero(&c);
    EXPECT_EQ(c.mny4, 0);
}

TEST(MoneySmall, RemainderIsNotOffered)
{
    CS_MONEY a = M(5), b = M(3), r = M(kSentinel);
    EXPECT_EQ(com__mnyrem(&a, &b, &r), 1);
    EXPECT_EQ(V(r), kSentinel);
    CS_MONEY4 a4{5}, b4{3}, r4{9};
    EXPECT_EQ(com__mnyrem4(&a4, &b4, &r4), 1);
    EXPECT_EQ(r4.mny4, 9);
}

TEST(MoneyWideDivision, SixteenBitDivisorsTakeTheDigitLoopWiderOnesAreExact)
{
    std::mt19937_64 rng(99);
    for (int i = 0; i < 20000; i++) {
        const uint64_t num = rng() >> (rng() % 64);
        uint32_t den = static_cast<uint32_t>(rng()) >> (rng() % 32);
        if (den == 0 || (den < 0x10000 && den >= 0x8000))
            den = 7; // the digit loop is exact below 0x8000 only
        CS_MONEY n = M(static_cast<int64_t>(num)), d = M(0), r = M(0);
        d.mnyhigh = static_cast<CS_INT>(rng()); // never read
        d.mnylow = den;
        comn_mnyxdiv(&n, &d, &r);
        ASSERT_EQ(static_cast<uint64_t>(V(r)), num / den) << num << " / " << den;
    }
}

TEST(MoneyWideDivision, LargeSixteenBitDivisorsFollowSignedDigitRegisters)
{
    // 0xFFFF: the first remainder times 65536 no longer fits a signed 32-bit
    // register; what stands is what that arithmetic gives.
    CS_MONEY n = M(static_cast<int64_t>(0xFFFEFFFFFFFFFFFFULL)), d = M(0xFFFF), r = M(0);
    com__mny16div(&n, &d, &r);
    CS_MONEY again = M(0);
    comn__mny16div(&n, &d, &again);
    EXPECT_EQ(V(r), V(again));
    CS_MONEY untouched = M(kSentinel), zero = M(0);
    comn_mnyxdiv(&n, &zero, &untouched);
    EXPECT_EQ(V(untouched), kSentinel);
}

// ---- CS_MONEY4 --------------------------------------------------------------------

TEST(Money4, OperationsNarrowAndZeroOnAnyFailure)
{
    const struct {
        char op;
        CS_INT a, b, result;
        CS_RETCODE code;
    } cases[] = {
        {'+', INT32_MAX, 1, 0, CS_EOVERFLOW},
        {'+', 5, -7, -2, CS_SUCCEED},
        {'-', INT32_MIN, 1, 0, CS_EOVERFLOW},
        {'*', 2000000000, 20000, 0, CS_EOVERFLOW}, // 200000 * 2 leaves the 32-bit range
        {'*', 1000000, 20000, 2000000, CS_SUCCEED},
        {'*', 100, 50, 0, CS_SUCCEED},
        {'/', 10000, 30000, 3333, CS_SUCCEED},
        {'/', 10000, 0, 0, CS_EDIVZERO},
        {'/', INT32_MAX, 1, 0, CS_EOVERFLOW},
    };
    for (const auto &c : cases) {
        CS_MONEY4 a{c.a}, b{c.b}, r{12345};
        CS_RETCODE rc = 0;
        switch (c.op) {
        case '+': rc = comn_mny4add(&a, &b, &r); break;
        case '-': rc = comn_mny4sub(&a, &b, &r); break;
        case '*': rc = comn_mny4mul(&a, &b, &r); break;
        default: rc = comn_mny4divide(&a, &b, &r); break;
        }
        EXPECT_EQ(code_name(rc), code_name(c.code)) << c.a << c.op << c.b;
        EXPECT_EQ(r.mny4, c.result) << c.a << c.op << c.b;
    }
    CS_MONEY4 a{INT32_MAX}, b{1}, r{0};
    EXPECT_EQ(com_mny4add(&a, &b, &r), 1);
    EXPECT_EQ(com_mny4divide(&a, &b, &r), 1);
    b.mny4 = 0;
    EXPECT_EQ(com_mny4divide(&a, &b, &r), 3);
}

TEST(Money4, NarrowingStoresTheLimitOfTheSign)
{
    const struct {
        int64_t v;
        CS_INT stored;
        int result;
    } cases[] = {{INT32_MAX, INT32_MAX, 4},       {INT32_MIN, INT32_MIN, 4},
                 {INT32_MAX + 1LL, INT32_MAX, -1}, {INT32_MIN - 1LL, INT32_MIN, -1},
                 {0x80000000LL, INT32_MAX, -1},    {-0x100000000LL, INT32_MIN, -1},
                 {kMax, INT32_MAX, -1},            {kMin, INT32_MIN, -1}};
    for (const auto &c : cases) {
        CS_MONEY m = M(c.v);
        CS_MONEY4 m4{7};
        EXPECT_EQ(com__mnytomny4(&m, &m4), c.result) << c.v;
        EXPECT_EQ(m4.mny4, c.stored) << c.v;
    }
}

// ---- differential ------------------------------------------------------------------

// The rules in 128-bit arithmetic: products rounded half away from zero
// unless below one unit, quotients cut toward zero, overflow as the kernels
// report it.
struct Expected {
    int64_t result;
    int status;
    bool keeps; // the result is left as it was
};

Expected ref_mul(int64_t a, int64_t b)
{
    const __int128 p = static_cast<__int128>(a) * b;
    const unsigned __int128 mag = p < 0 ? -static_cast<unsigned __int128>(p) : p;
    unsigned __int128 q = mag / 10000;
    if (q == 0)
        return {0, 0, false};
    if (mag % 10000 >= 5000)
        ++q;
    if (q > static_cast<unsigned __int128>(kMax) + (p < 0 ? 1 : 0))
        return {0, 1, true};
    return {static_cast<int64_t>(p < 0 ? -static_cast<__int128>(q) : static_cast<__int128>(q)), 0, false};
}

Expected ref_div(int64_t a, int64_t b)
{
    if (b == 0)
        return {0, 3, false};
    const __int128 q = static_cast<__int128>(a) * 10000 / b; // C division cuts toward zero
    const __int128 limit19 = static_cast<__int128>(10000000000000000000ULL);
    if (q >= limit19 || q <= -limit19)
        return {0, 1, false};
    if (q > kMax || q < kMin)
        return {0, 1, true};
    return {static_cast<int64_t>(q), 0, false};
}

Expected ref_add(int64_t a, int64_t b, bool subtract)
{
    const __int128 r = subtract ? static_cast<__int128>(a) - b : static_cast<__int128>(a) + b;
    if (r > kMax || r < kMin)
        return {0, 1, false};
    return {static_cast<int64_t>(r), 0, false};
}

// Operands from every scale: a few near the limits and zero, the rest of
// random width so that products and quotients land on both sides of every
// boundary.
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
    std::mt19937_64 rng(20261122);
    int failures = 0;
    for (int i = 0; i < 100000 && failures < 20; i++) {
        const int64_t a = random_money(rng), b = random_money(rng);
        const char ops[] = {'+', '-', '*', '/'};
        for (char op : ops) {
            CS_MONEY ma = M(a), mb = M(b), r = M(kSentinel);
            Expected want{};
            int status = 0;
            switch (op) {
            case '+': status = com__mnyadd(&ma, &mb, &r); want = ref_add(a, b, false); break;
            case '-': status = com__mnysub(&ma, &mb, &r); want = ref_add(a, b, true); break;
            case '*': status = com__mnymul(&ma, &mb, &r); want = ref_mul(a, b); break;
            default: status = com__mnydiv(&ma, &mb, &r); want = ref_div(a, b); break;
            }
            const int64_t want_value = want.keeps ? kSentinel : want.result;
            if (status != want.status || V(r) != want_value) {
                ++failures;
                ADD_FAILURE() << a << " " << op << " " << b << ": got " << V(r) << " status " << status
                              << ", want " << want_value << " status " << want.status;
            }
        }
        CS_MONEY ma = M(a), mb = M(b);
        ASSERT_EQ(comn_mnycmp(&ma, &mb), a < b ? -1 : a > b ? 1 : 0);
    }
}

TEST(MoneyDifferential, Money4AgreesWithTheWideRulesNarrowed)
{
    std::mt19937_64 rng(4);
    for (int i = 0; i < 20000; i++) {
        const auto a = static_cast<CS_INT>(rng() >> (rng() % 64));
        const auto b = static_cast<CS_INT>(rng() >> (rng() % 64));
        CS_MONEY4 ma{a}, mb{b}, r{0};
        const int status = com__mnymul4(&ma, &mb, &r);
        Expected want = ref_mul(a, b);
        if (want.status == 0 && (want.result > INT32_MAX || want.result < INT32_MIN))
            want = {0, 1, false};
        ASSERT_EQ(status, want.status) << a << "*" << b;
        ASSERT_EQ(r.mny4, want.status ? 0 : want.result) << a << "*" << b;
        const int dstatus = com__mnydiv4(&ma, &mb, &r);
        want = ref_div(a, b);
        if (want.status == 0 && (want.result > INT32_MAX || want.result < INT32_MIN))
            want = {0, 1, false};
        ASSERT_EQ(dstatus, want.status) << a << "/" << b;
        ASSERT_EQ(r.mny4, want.status ? 0 : want.result) << a << "/" << b;
    }
}

// ---- assertions --------------------------------------------------------------------

TEST(MoneyDeath, NullArgumentsEndTheProcess)
{
    CS_MONEY a = M(1);
    EXPECT_NULL_POINTER(comn_mnyadd(&a, nullptr, &a));
    EXPECT_NULL_POINTER(com_mnymul(&a, &a, nullptr));
    EXPECT_NULL_POINTER(comn_mnycmp(nullptr, &a));
    EXPECT_NULL_POINTER(com_cvtmnytochar(&a, nullptr, 10, 0));
}

} // namespace
