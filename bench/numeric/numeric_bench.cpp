// Exact numeric arithmetic beside GMP integers on the same magnitudes and,
// up to 34 digits, beside 128-bit decimal floating point.
//
// Sizes are operand digits.  add: two D-digit values (leading digit below 5,
// so the sum fits).  mul: two D-digit values, except at 77, where a 39-digit
// and a 38-digit value make a 77-digit product; the mixed pairs name the
// second operand's digits too, since operands of one precision take a
// shorter path.  div: two D-digit values at the library's default result
// scale; the peer divides the numerator that the library forms (the dividend
// times 10^shift), pre-scaled outside the timed loop.
#include <gmp.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "kescomn.h"
#include "support/ratio.h"

#ifdef KESCOMN_HAVE_BID
#define DECIMAL_CALL_BY_REFERENCE 0
#define DECIMAL_GLOBAL_ROUNDING 1
#define DECIMAL_GLOBAL_EXCEPTION_FLAGS 1
#include <bid_conf.h>
#include <bid_functions.h>
#endif

namespace {

constexpr size_t kPool = 256; // operand pairs cycled through, against branch prediction

std::string digits(std::mt19937_64 &rng, int n, int max_lead)
{
    std::string s(static_cast<size_t>(n), '0');
    s[0] = static_cast<char>('1' + rng() % static_cast<unsigned>(max_lead));
    for (size_t i = 1; i < s.size(); ++i)
        s[i] = static_cast<char>('0' + rng() % 10);
    return s;
}

CS_NUMERIC record(const std::string &text, int prec)
{
    CS_NUMERIC n;
    std::memset(&n, 0, sizeof n);
    n.precision = static_cast<CS_BYTE>(prec);
    const int len = comn_num_getlen(prec);
    mpz_t v;
    mpz_init_set_str(v, text.c_str(), 10);
    size_t count = 0;
    CS_BYTE buf[40];
    mpz_export(buf, &count, 1, 1, 1, 0, v);
    std::memcpy(n.array + len - count, buf, count);
    mpz_clear(v);
    return n;
}

enum class Kind { add, mul, div };

struct Operands {
    std::vector<std::string> a, b;
    int pa = 0, pb = 0;
};

Operands operands(Kind kind, const benchmark::State &state)
{
    const int d = static_cast<int>(state.range(0));
    std::mt19937_64 rng(static_cast<uint64_t>(d) * 31 + static_cast<uint64_t>(kind));
    Operands o;
    o.pa = d;
    o.pb = state.range(1) != 0 ? static_cast<int>(state.range(1)) : d;
    if (kind == Kind::mul && d == 77) {
        o.pa = 39;
        o.pb = 38;
    }
    for (size_t i = 0; i < kPool; ++i) {
        o.a.push_back(digits(rng, o.pa, kind == Kind::add ? 4 : 9));
        o.b.push_back(digits(rng, o.pb, kind == Kind::add ? 4 : 9));
    }
    return o;
}

using NumOp = CS_RETCODE (*)(CS_NUMERIC *, CS_NUMERIC *, CS_NUMERIC *);

template <Kind K> void lib(benchmark::State &state)
{
    const Operands o = operands(K, state);
    std::vector<CS_NUMERIC> a, b;
    for (size_t i = 0; i < kPool; ++i) {
        a.push_back(record(o.a[i], o.pa));
        b.push_back(record(o.b[i], o.pb));
    }
    constexpr NumOp op = K == Kind::add ? comn_numadd : K == Kind::mul ? comn_nummul : comn_numdivide;
    CS_NUMERIC r;
    size_t i = 0;
    for (auto _ : state) {
        const size_t k = i++ % kPool;
        const CS_RETCODE rc = op(&a[k], &b[k], &r);
        benchmark::DoNotOptimize(rc);
        benchmark::DoNotOptimize(r);
    }
    // Every operation must have succeeded, or the timing means nothing.
    for (size_t k = 0; k < kPool; ++k)
        if (op(&a[k], &b[k], &r) != CS_SUCCEED)
            state.SkipWithError("an operation failed");
}

template <Kind K> void gmp(benchmark::State &state)
{
    const Operands o = operands(K, state);
    std::vector<__mpz_struct> a(kPool), b(kPool);
    for (size_t i = 0; i < kPool; ++i) {
        mpz_init_set_str(&a[i], o.a[i].c_str(), 10);
        mpz_init_set_str(&b[i], o.b[i].c_str(), 10);
        if constexpr (K == Kind::div) {
            // The library's shift for two D-digit integers.
            CS_NUMERIC x = record(o.a[i], o.pa), y = record(o.b[i], o.pb), q;
            comn_numdivide(&x, &y, &q);
            mpz_t p;
            mpz_init(p);
            mpz_ui_pow_ui(p, 10, q.scale);
            mpz_mul(&a[i], &a[i], p);
            mpz_clear(p);
        }
    }
    mpz_t r;
    mpz_init2(r, 600);
    size_t i = 0;
    for (auto _ : state) {
        const size_t k = i++ % kPool;
        if constexpr (K == Kind::add)
            mpz_add(r, &a[k], &b[k]);
        else if constexpr (K == Kind::mul)
            mpz_mul(r, &a[k], &b[k]);
        else
            mpz_tdiv_q(r, &a[k], &b[k]);
        benchmark::DoNotOptimize(r->_mp_d[0]);
    }
    mpz_clear(r);
    for (size_t k = 0; k < kPool; ++k) {
        mpz_clear(&a[k]);
        mpz_clear(&b[k]);
    }
}

#ifdef KESCOMN_HAVE_BID
template <Kind K> void bid(benchmark::State &state)
{
    const Operands o = operands(K, state);
    std::vector<BID_UINT128> a, b;
    for (size_t i = 0; i < kPool; ++i) {
        a.push_back(bid128_from_string(const_cast<char *>(o.a[i].c_str())));
        b.push_back(bid128_from_string(const_cast<char *>(o.b[i].c_str())));
    }
    size_t i = 0;
    for (auto _ : state) {
        const size_t k = i++ % kPool;
        BID_UINT128 r;
        if constexpr (K == Kind::add)
            r = bid128_add(a[k], b[k]);
        else if constexpr (K == Kind::mul)
            r = bid128_mul(a[k], b[k]);
        else
            r = bid128_div(a[k], b[k]);
        benchmark::DoNotOptimize(r);
    }
}
#endif

void sizes(benchmark::internal::Benchmark *b, std::initializer_list<int> ds)
{
    for (int d : ds)
        b->Args({d, 0});
}

#define KES_NUMERIC_PAIR(kind)                                                                                 \
    BENCHMARK(lib<Kind::kind>)->Name(#kind "_vs_gmp/lib")->Apply([](auto *b) { sizes(b, {10, 19, 34, 38, 77}); }); \
    BENCHMARK(gmp<Kind::kind>)->Name(#kind "_vs_gmp/peer")->Apply([](auto *b) { sizes(b, {10, 19, 34, 38, 77}); })

KES_NUMERIC_PAIR(add);
KES_NUMERIC_PAIR(mul);
KES_NUMERIC_PAIR(div);

BENCHMARK(lib<Kind::mul>)->Name("mul_mixed_vs_gmp/lib")->Args({38, 20})->Args({38, 37});
BENCHMARK(gmp<Kind::mul>)->Name("mul_mixed_vs_gmp/peer")->Args({38, 20})->Args({38, 37});

#ifdef KESCOMN_HAVE_BID
#define KES_NUMERIC_BID_PAIR(kind)                                                                    \
    BENCHMARK(lib<Kind::kind>)->Name(#kind "_vs_bid128/lib")->Apply([](auto *b) { sizes(b, {10, 19, 34}); }); \
    BENCHMARK(bid<Kind::kind>)->Name(#kind "_vs_bid128/peer")->Apply([](auto *b) { sizes(b, {10, 19, 34}); })

KES_NUMERIC_BID_PAIR(add);
KES_NUMERIC_BID_PAIR(mul);
KES_NUMERIC_BID_PAIR(div);
#endif

} // namespace

KES_BENCH_MAIN()
