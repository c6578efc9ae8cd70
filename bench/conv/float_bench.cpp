// Float conversions beside the C library doing the same work.
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "kescomn.h"
#include "support/ratio.h"

namespace {

// Doubles of every magnitude the text form meets in practice: whole numbers,
// fractions and wide exponents.
std::vector<double> sample_doubles()
{
    std::mt19937_64 rng(5);
    std::uniform_real_distribution<double> exponent(-30, 30);
    std::vector<double> values(1024);
    for (double &v : values)
        v = std::pow(10.0, exponent(rng)) * ((rng() & 1) ? 1 : -1);
    for (size_t i = 0; i < values.size(); i += 8)
        values[i] = static_cast<double>(static_cast<int>(rng() % 100000));
    return values;
}

void flt8tochar_lib(benchmark::State &state)
{
    CS_CONTEXT ctx{};
    com_conv_init(&ctx);
    const auto values = sample_doubles();
    CS_DATAFMT sf{};
    sf.datatype = CS_FLOAT_TYPE;
    CS_DATAFMT df{};
    df.datatype = CS_CHAR_TYPE;
    df.maxlength = 32;
    char out[32];
    CS_INT len;
    size_t i = 0;
    for (auto _ : state) {
        double v = values[i++ & 1023];
        benchmark::DoNotOptimize(comn_flt8tochar(&ctx, &sf, &v, &df, out, &len));
        benchmark::DoNotOptimize(out);
    }
    com_conv_free(&ctx);
}

// The formatted print with 17 digits, then the same two rewrites.
void flt8tochar_peer(benchmark::State &state)
{
    const auto values = sample_doubles();
    char out[1024];
    size_t i = 0;
    for (auto _ : state) {
        double v = values[i++ & 1023];
        int n = std::snprintf(out, sizeof out, "%.*g", 17, v == 0.0 ? 0.0 : v);
        char *text = out;
        if (text[0] == '0' && text[1] == '.')
            ++text, --n;
        if (!std::memchr(text, '.', n) && !std::memchr(text, 'e', n))
            std::memcpy(text + n, ".0", 3);
        benchmark::DoNotOptimize(text);
    }
}

void flt8toi4_lib(benchmark::State &state)
{
    CS_CONTEXT ctx{};
    com_conv_init(&ctx);
    const auto values = sample_doubles();
    CS_DATAFMT sf{};
    sf.datatype = CS_FLOAT_TYPE;
    CS_DATAFMT df{};
    df.datatype = CS_INT_TYPE;
    CS_INT out, len;
    size_t i = 0;
    for (auto _ : state) {
        double v = values[i++ & 1023];
        benchmark::DoNotOptimize(comn_flt8toi4(&ctx, &sf, &v, &df, &out, &len));
        benchmark::DoNotOptimize(out);
    }
    com_conv_free(&ctx);
}

void flt8toi4_peer(benchmark::State &state)
{
    const auto values = sample_doubles();
    size_t i = 0;
    for (auto _ : state) {
        double v = values[i++ & 1023];
        CS_INT out = v < -2147483648.0 ? INT32_MIN : v > 2147483647.0 ? INT32_MAX : static_cast<CS_INT>(v);
        benchmark::DoNotOptimize(out);
    }
}

BENCHMARK(flt8tochar_lib)->Name("flt8tochar/lib");
BENCHMARK(flt8tochar_peer)->Name("flt8tochar/peer");
BENCHMARK(flt8toi4_lib)->Name("flt8toi4/lib");
BENCHMARK(flt8toi4_peer)->Name("flt8toi4/peer");

} // namespace

KES_BENCH_MAIN();
