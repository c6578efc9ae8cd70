// Integer conversions beside the standard library doing the same work.
#include <charconv>
#include <cstring>
#include <random>
#include <vector>

#include "kescomn.h"
#include "support/ratio.h"

namespace {

std::vector<CS_INT> sample_ints()
{
    std::mt19937 rng(7);
    std::vector<CS_INT> values(1024);
    for (CS_INT &v : values)
        v = static_cast<CS_INT>(rng()) >> (rng() % 31);
    return values;
}

void i4tochar_lib(benchmark::State &state)
{
    CS_CONTEXT ctx{};
    com_conv_init(&ctx);
    const auto values = sample_ints();
    CS_DATAFMT sf{};
    sf.datatype = CS_INT_TYPE;
    CS_DATAFMT df{};
    df.datatype = CS_CHAR_TYPE;
    df.maxlength = 16;
    df.format = CS_FMT_PADBLANK;
    char out[16];
    CS_INT len;
    size_t i = 0;
    for (auto _ : state) {
        CS_INT v = values[i++ & 1023];
        benchmark::DoNotOptimize(comn_i4tochar(&ctx, &sf, &v, &df, out, &len));
        benchmark::DoNotOptimize(out);
    }
    com_conv_free(&ctx);
}

// The same digits with std::to_chars, then the same blank fill.
void i4tochar_peer(benchmark::State &state)
{
    const auto values = sample_ints();
    char out[16];
    size_t i = 0;
    for (auto _ : state) {
        CS_INT v = values[i++ & 1023];
        char *end = std::to_chars(out, out + sizeof out, v).ptr;
        std::memset(end, ' ', static_cast<size_t>(out + sizeof out - end));
        benchmark::DoNotOptimize(out);
    }
}

std::vector<CS_BIGINT> sample_bigints()
{
    std::mt19937_64 rng(11);
    std::vector<CS_BIGINT> values(1024);
    for (CS_BIGINT &v : values)
        v = static_cast<CS_BIGINT>(rng()) >> (rng() % 63);
    return values;
}

void i8toi4_lib(benchmark::State &state)
{
    CS_CONTEXT ctx{};
    com_conv_init(&ctx);
    const auto values = sample_bigints();
    CS_DATAFMT sf{};
    sf.datatype = CS_BIGINT_TYPE;
    CS_DATAFMT df{};
    df.datatype = CS_INT_TYPE;
    CS_INT out, len;
    size_t i = 0;
    for (auto _ : state) {
        CS_BIGINT v = values[i++ & 1023];
        benchmark::DoNotOptimize(comn_i8toi4(&ctx, &sf, &v, &df, &out, &len));
        benchmark::DoNotOptimize(out);
    }
    com_conv_free(&ctx);
}

void i8toi4_peer(benchmark::State &state)
{
    const auto values = sample_bigints();
    size_t i = 0;
    for (auto _ : state) {
        CS_BIGINT v = values[i++ & 1023];
        CS_INT out = v < INT32_MIN ? INT32_MIN : v > INT32_MAX ? INT32_MAX : static_cast<CS_INT>(v);
        benchmark::DoNotOptimize(out);
    }
}

BENCHMARK(i4tochar_lib)->Name("i4tochar/lib");
BENCHMARK(i4tochar_peer)->Name("i4tochar/peer");
BENCHMARK(i8toi4_lib)->Name("i8toi4/lib");
BENCHMARK(i8toi4_peer)->Name("i8toi4/peer");

} // namespace

KES_BENCH_MAIN();
