// Text scanners and hexadecimal text beside their natural peers: comn_chartoi4
// against std::from_chars, comn_chartoflt8 against strtod, comn_bintochar of
// 1 KiB against a plain table-driven hex loop.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "kescomn.h"

#include "support/ratio.h"

namespace {

constexpr size_t kTexts = 1024;

std::vector<std::string> int_texts()
{
    std::mt19937 rng(42);
    std::vector<std::string> texts;
    for (size_t i = 0; i < kTexts; i++)
        texts.push_back(std::to_string(static_cast<int32_t>(rng())));
    return texts;
}

std::vector<std::string> float_texts()
{
    std::mt19937_64 rng(42);
    std::uniform_real_distribution<double> dist(-1e6, 1e6);
    std::vector<std::string> texts;
    char buf[64];
    for (size_t i = 0; i < kTexts; i++) {
        std::snprintf(buf, sizeof buf, "%.17g", dist(rng));
        texts.push_back(buf);
    }
    return texts;
}

void BM_comn_chartoi4(benchmark::State &state)
{
    const std::vector<std::string> texts = int_texts();
    CS_CONTEXT context{};
    CS_DATAFMT srcfmt{}, destfmt{};
    srcfmt.datatype = CS_CHAR_TYPE;
    destfmt.datatype = CS_INT_TYPE;
    size_t i = 0;
    for (auto _ : state) {
        const std::string &t = texts[i++ % kTexts];
        srcfmt.maxlength = static_cast<CS_INT>(t.size());
        CS_INT value, destlen;
        benchmark::DoNotOptimize(comn_chartoi4(&context, &srcfmt, const_cast<char *>(t.data()), &destfmt, &value, &destlen));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(BM_comn_chartoi4)->Name("chartoi4/lib");

void BM_from_chars_i32(benchmark::State &state)
{
    const std::vector<std::string> texts = int_texts();
    size_t i = 0;
    for (auto _ : state) {
        const std::string &t = texts[i++ % kTexts];
        int32_t value = 0;
        benchmark::DoNotOptimize(std::from_chars(t.data(), t.data() + t.size(), value));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(BM_from_chars_i32)->Name("chartoi4/peer");

void BM_comn_chartoflt8(benchmark::State &state)
{
    const std::vector<std::string> texts = float_texts();
    CS_CONTEXT context{};
    CS_DATAFMT srcfmt{}, destfmt{};
    srcfmt.datatype = CS_CHAR_TYPE;
    destfmt.datatype = CS_FLOAT_TYPE;
    size_t i = 0;
    for (auto _ : state) {
        const std::string &t = texts[i++ % kTexts];
        srcfmt.maxlength = static_cast<CS_INT>(t.size());
        CS_FLOAT value;
        CS_INT destlen;
        benchmark::DoNotOptimize(comn_chartoflt8(&context, &srcfmt, const_cast<char *>(t.data()), &destfmt, &value, &destlen));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(BM_comn_chartoflt8)->Name("chartoflt8/lib");

void BM_strtod(benchmark::State &state)
{
    const std::vector<std::string> texts = float_texts();
    size_t i = 0;
    for (auto _ : state) {
        const std::string &t = texts[i++ % kTexts];
        char *end;
        benchmark::DoNotOptimize(std::strtod(t.c_str(), &end));
        benchmark::DoNotOptimize(end);
    }
}
BENCHMARK(BM_strtod)->Name("chartoflt8/peer");

// The reader the library prefers for plain decimal text.
void BM_from_chars_f64(benchmark::State &state)
{
    const std::vector<std::string> texts = float_texts();
    size_t i = 0;
    for (auto _ : state) {
        const std::string &t = texts[i++ % kTexts];
        double value = 0;
        benchmark::DoNotOptimize(std::from_chars(t.data(), t.data() + t.size(), value));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(BM_from_chars_f64)->Name("chartoflt8_vs_from_chars/peer");

constexpr CS_INT kKiB = 1024;

std::vector<CS_BYTE> kib_of_bytes()
{
    std::vector<CS_BYTE> bytes(kKiB);
    std::mt19937 rng(7);
    for (CS_BYTE &b : bytes)
        b = static_cast<CS_BYTE>(rng());
    return bytes;
}

void BM_comn_bintochar_1KiB(benchmark::State &state)
{
    std::vector<CS_BYTE> bytes = kib_of_bytes();
    std::vector<char> text(2 * kKiB);
    CS_CONTEXT context{};
    CS_DATAFMT srcfmt{}, destfmt{};
    srcfmt.datatype = CS_BINARY_TYPE;
    srcfmt.maxlength = kKiB;
    destfmt.datatype = CS_CHAR_TYPE;
    destfmt.maxlength = 2 * kKiB;
    for (auto _ : state) {
        CS_INT destlen;
        benchmark::DoNotOptimize(comn_bintochar(&context, &srcfmt, bytes.data(), &destfmt, text.data(), &destlen));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kKiB);
}
BENCHMARK(BM_comn_bintochar_1KiB)->Name("bintochar_1KiB/lib");

void BM_table_hex_loop_1KiB(benchmark::State &state)
{
    std::vector<CS_BYTE> bytes = kib_of_bytes();
    std::vector<char> text(2 * kKiB);
    static const char digits[] = "0123456789abcdef";
    for (auto _ : state) {
        for (size_t i = 0; i < bytes.size(); i++) {
            text[2 * i] = digits[bytes[i] >> 4];
            text[2 * i + 1] = digits[bytes[i] & 15];
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kKiB);
}
BENCHMARK(BM_table_hex_loop_1KiB)->Name("bintochar_1KiB/peer");

} // namespace

KES_BENCH_MAIN();
