// Small-block allocation from buddy and uniform pools beside the C library's
// malloc/free (and calloc, since pool memory comes cleared): one block at a
// time, and batches of 256 allocated then freed.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "kescomn.h"

#include "support/ratio.h"

namespace {

constexpr CS_UINT kSmall = 32;
constexpr int kBatch = 256;

// A pool on a zeroed context, dropped at the end of the benchmark.
class BenchPool {
public:
    explicit BenchPool(CS_INT type)
    {
        std::memset(&ctx_, 0, sizeof ctx_);
        ctx_.ctxversion = 114;
        comn_mminit(&ctx_, &h_);
        comn_mmproperty(h_, MM_ACT_SET, MM_PROP_TYPE, &type, sizeof type, nullptr);
    }
    ~BenchPool() { comn_mmdrop(h_, MM_FORCE_DROP); }
    MM_HANDLE *get() { return h_; }

private:
    CS_CONTEXT ctx_;
    MM_HANDLE *h_ = nullptr;
};

void pool_single(benchmark::State &state, CS_INT type)
{
    BenchPool pool(type);
    void *p = nullptr;
    for (auto _ : state) {
        comn_mmalloc(pool.get(), kSmall, &p);
        benchmark::DoNotOptimize(p);
        comn_mmfree(pool.get(), p);
    }
}

void pool_batch(benchmark::State &state, CS_INT type)
{
    BenchPool pool(type);
    std::vector<void *> blocks(kBatch);
    for (auto _ : state) {
        for (void *&p : blocks)
            comn_mmalloc(pool.get(), kSmall, &p);
        benchmark::DoNotOptimize(blocks.data());
        for (void *p : blocks)
            comn_mmfree(pool.get(), p);
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
}

template <void *(*Alloc)(size_t)> void libc_single(benchmark::State &state)
{
    for (auto _ : state) {
        void *p = Alloc(kSmall);
        benchmark::DoNotOptimize(p);
        std::free(p);
    }
}

template <void *(*Alloc)(size_t)> void libc_batch(benchmark::State &state)
{
    std::vector<void *> blocks(kBatch);
    for (auto _ : state) {
        for (void *&p : blocks)
            p = Alloc(kSmall);
        benchmark::DoNotOptimize(blocks.data());
        for (void *p : blocks)
            std::free(p);
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
}

void *plain_malloc(size_t n) { return std::malloc(n); }
void *zeroed_calloc(size_t n) { return std::calloc(1, n); }

void BM_Single_Buddy(benchmark::State &state) { pool_single(state, MM_BUDDY); }
void BM_Single_Uniform(benchmark::State &state) { pool_single(state, MM_UNIFORM); }
void BM_Batch_Buddy(benchmark::State &state) { pool_batch(state, MM_BUDDY); }
void BM_Batch_Uniform(benchmark::State &state) { pool_batch(state, MM_UNIFORM); }

BENCHMARK(BM_Single_Buddy)->Name("single_buddy/lib");
BENCHMARK(BM_Single_Uniform)->Name("single_uniform/lib");
BENCHMARK_TEMPLATE(libc_single, plain_malloc)->Name("single_buddy/peer");
BENCHMARK_TEMPLATE(libc_single, plain_malloc)->Name("single_uniform/peer");
BENCHMARK_TEMPLATE(libc_single, zeroed_calloc)->Name("single_calloc");
BENCHMARK(BM_Batch_Buddy)->Name("batch_buddy/lib");
BENCHMARK(BM_Batch_Uniform)->Name("batch_uniform/lib");
BENCHMARK_TEMPLATE(libc_batch, plain_malloc)->Name("batch_buddy/peer");
BENCHMARK_TEMPLATE(libc_batch, plain_malloc)->Name("batch_uniform/peer");
BENCHMARK_TEMPLATE(libc_batch, zeroed_calloc)->Name("batch_calloc");

} // namespace

KES_BENCH_MAIN();
