// Numeric conversions beside their natural peers on the same values: 38-digit
// decimal text in and out beside GMP's mpz_set_str / mpz_get_str, and a
// numeric to double beside strtod of the same decimal text (scale 10).
#include <gmp.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "numeric/numconv.h"
#include "support/ratio.h"

namespace {

constexpr size_t kPool = 256; // values cycled through, against branch prediction
constexpr int kDigits = 38;

std::vector<std::string> texts(int scale)
{
    std::mt19937_64 rng(38);
    std::vector<std::string> out;
    for (size_t i = 0; i < kPool; ++i) {
        std::string s(kDigits, '0');
        s[0] = static_cast<char>('1' + rng() % 9);
        for (int k = 1; k < kDigits; ++k)
            s[k] = static_cast<char>('0' + rng() % 10);
        if (scale > 0)
            s.insert(s.size() - static_cast<size_t>(scale), ".");
        out.push_back(s);
    }
    return out;
}

struct Value {
    CS_BYTE bytes[33];
    __CONSTANT c;
};

// The values of the texts as 17-byte numerics (precision 38) at scale.
std::vector<Value> values(const std::vector<std::string> &t, int scale)
{
    std::vector<Value> out(t.size());
    for (size_t i = 0; i < t.size(); ++i) {
        std::string s = t[i];
        CS_BYTE *d = out[i].bytes;
        CS_INT len = 17;
        CS_BYTE p = 38, sc = static_cast<CS_BYTE>(scale);
        com__subchartoexctnume(s.data(), static_cast<int>(s.size()), &d, &len, &p, &sc, 0);
        out[i].c = __CONSTANT{};
        out[i].c.len = 17;
        out[i].c.prec = 38;
        out[i].c.scale = static_cast<CS_BYTE>(scale);
        out[i].c.value = out[i].bytes;
    }
    return out;
}

void text_to_num_lib(benchmark::State &state)
{
    auto t = texts(0);
    CS_BYTE out[17];
    size_t i = 0;
    for (auto _ : state) {
        std::string &s = t[i++ % kPool];
        CS_BYTE *d = out;
        CS_INT len = 17;
        CS_BYTE p = 38, sc = 0;
        benchmark::DoNotOptimize(com__subchartoexctnume(s.data(), kDigits, &d, &len, &p, &sc, 0));
        benchmark::DoNotOptimize(out);
    }
}

void text_to_num_peer(benchmark::State &state)
{
    auto t = texts(0);
    mpz_t v;
    mpz_init2(v, 256);
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(mpz_set_str(v, t[i++ % kPool].c_str(), 10));
        benchmark::ClobberMemory();
    }
    mpz_clear(v);
}

void num_to_text_lib(benchmark::State &state)
{
    auto v = values(texts(0), 0);
    char buf[kes::numeric::kNumTextBuf];
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(com__subexctnumetochar(&v[i++ % kPool].c, buf, sizeof buf));
        benchmark::DoNotOptimize(buf);
    }
}

void num_to_text_peer(benchmark::State &state)
{
    auto t = texts(0);
    std::vector<mpz_t> z(kPool);
    for (size_t k = 0; k < kPool; ++k)
        mpz_init_set_str(z[k], t[k].c_str(), 10);
    char buf[80];
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(mpz_get_str(buf, 10, z[i++ % kPool]));
        benchmark::ClobberMemory();
    }
    for (auto &x : z)
        mpz_clear(x);
}

void num_to_double_lib(benchmark::State &state)
{
    auto v = values(texts(10), 10);
    CS_FLOAT d;
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(com__subexctnumetoflt8(&v[i++ % kPool].c, &d));
        benchmark::DoNotOptimize(d);
    }
}

void num_to_double_peer(benchmark::State &state)
{
    auto t = texts(10);
    size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(std::strtod(t[i++ % kPool].c_str(), nullptr));
}

} // namespace

BENCHMARK(text_to_num_lib)->Name("text_to_num38/lib");
BENCHMARK(text_to_num_peer)->Name("text_to_num38/peer");
BENCHMARK(num_to_text_lib)->Name("num_to_text38/lib");
BENCHMARK(num_to_text_peer)->Name("num_to_text38/peer");
BENCHMARK(num_to_double_lib)->Name("num_to_double38/lib");
BENCHMARK(num_to_double_peer)->Name("num_to_double38/peer");

#include "support/ratio.h"
KES_BENCH_MAIN();
