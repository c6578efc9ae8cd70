// Money text and arithmetic beside the same work on a plain 64-bit integer.
#include <charconv>
#include <cstring>
#include <random>
#include <vector>

#include "kescomn.h"
#include "support/ratio.h"

namespace {

std::vector<CS_MONEY> sample_money(unsigned seed, int max_shift)
{
    std::mt19937_64 rng(seed);
    std::vector<CS_MONEY> values(1024);
    for (CS_MONEY &m : values) {
        const auto v = static_cast<int64_t>(rng() >> (1 + rng() % max_shift)) * ((rng() & 1) ? 1 : -1);
        m.mnyhigh = static_cast<CS_INT>(v >> 32);
        m.mnylow = static_cast<CS_UINT>(v);
    }
    return values;
}

int64_t as_int64(const CS_MONEY &m) { return static_cast<int64_t>(static_cast<uint64_t>(static_cast<uint32_t>(m.mnyhigh)) << 32 | m.mnylow); }

void mnytochar_lib(benchmark::State &state)
{
    const auto values = sample_money(1, 63);
    char out[32];
    size_t i = 0;
    for (auto _ : state) {
        CS_MONEY m = values[i++ & 1023];
        benchmark::DoNotOptimize(com_precmnytochar(&m, out, sizeof out, 0, 4));
    }
}

// The integer's digits with std::to_chars, then the point moved in: the
// least any money printer must do.
void mnytochar_peer(benchmark::State &state)
{
    const auto values = sample_money(1, 63);
    char out[32];
    size_t i = 0;
    for (auto _ : state) {
        const int64_t v = as_int64(values[i++ & 1023]);
        char *end = std::to_chars(out, out + 24, v).ptr;
        std::memmove(end - 3, end - 4, 4);
        end[-4] = '.';
        benchmark::DoNotOptimize(out);
    }
}

void mnymul_lib(benchmark::State &state)
{
    const auto a = sample_money(2, 63), b = sample_money(3, 63);
    CS_MONEY r;
    size_t i = 0;
    for (auto _ : state) {
        CS_MONEY x = a[i & 1023], y = b[(i * 7) & 1023];
        ++i;
        benchmark::DoNotOptimize(comn_mnymul(&x, &y, &r));
        benchmark::DoNotOptimize(r);
    }
}

// The same rounding rule in 128-bit integer arithmetic.
void mnymul_peer(benchmark::State &state)
{
    const auto a = sample_money(2, 63), b = sample_money(3, 63);
    size_t i = 0;
    for (auto _ : state) {
        const __int128 p = static_cast<__int128>(as_int64(a[i & 1023])) * as_int64(b[(i * 7) & 1023]);
        ++i;
        const unsigned __int128 mag = p < 0 ? -static_cast<unsigned __int128>(p) : p;
        unsigned __int128 q = mag / 10000;
        if (q != 0 && mag % 10000 >= 5000)
            ++q;
        const bool overflow = q > static_cast<unsigned __int128>(INT64_MAX) + (p < 0);
        int64_t r = overflow ? 0 : static_cast<int64_t>(p < 0 ? -static_cast<__int128>(q) : static_cast<__int128>(q));
        benchmark::DoNotOptimize(r);
    }
}

void mnydivide_lib(benchmark::State &state)
{
    const auto a = sample_money(4, 63), b = sample_money(5, 63);
    CS_MONEY r;
    size_t i = 0;
    for (auto _ : state) {
        CS_MONEY x = a[i & 1023], y = b[(i * 7) & 1023];
        ++i;
        benchmark::DoNotOptimize(comn_mnydivide(&x, &y, &r));
        benchmark::DoNotOptimize(r);
    }
}

void mnydivide_peer(benchmark::State &state)
{
    const auto a = sample_money(4, 63), b = sample_money(5, 63);
    size_t i = 0;
    for (auto _ : state) {
        const int64_t y = as_int64(b[(i * 7) & 1023]);
        const __int128 q = y == 0 ? 0 : static_cast<__int128>(as_int64(a[i & 1023])) * 10000 / y;
        ++i;
        benchmark::DoNotOptimize(q);
    }
}

void mnyadd_lib(benchmark::State &state)
{
    const auto a = sample_money(6, 63), b = sample_money(7, 63);
    CS_MONEY r;
    size_t i = 0;
    for (auto _ : state) {
        CS_MONEY x = a[i & 1023], y = b[(i * 7) & 1023];
        ++i;
        benchmark::DoNotOptimize(comn_mnyadd(&x, &y, &r));
        benchmark::DoNotOptimize(r);
    }
}

void mnyadd_peer(benchmark::State &state)
{
    const auto a = sample_money(6, 63), b = sample_money(7, 63);
    size_t i = 0;
    for (auto _ : state) {
        int64_t r;
        if (__builtin_add_overflow(as_int64(a[i & 1023]), as_int64(b[(i * 7) & 1023]), &r))
            r = 0;
        ++i;
        benchmark::DoNotOptimize(r);
    }
}

BENCHMARK(mnytochar_lib)->Name("mnytochar/lib");
BENCHMARK(mnytochar_peer)->Name("mnytochar/peer");
BENCHMARK(mnymul_lib)->Name("mnymul/lib");
BENCHMARK(mnymul_peer)->Name("mnymul/peer");
BENCHMARK(mnydivide_lib)->Name("mnydivide/lib");
BENCHMARK(mnydivide_peer)->Name("mnydivide/peer");
BENCHMARK(mnyadd_lib)->Name("mnyadd/lib");
BENCHMARK(mnyadd_peer)->Name("mnyadd/peer");

} // namespace

KES_BENCH_MAIN();
