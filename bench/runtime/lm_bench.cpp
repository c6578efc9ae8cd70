// Finding a key in a 10k-entry hash list (chained and open-addressing)
// beside std::unordered_map::find on the same keys.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <unordered_map>
#include <vector>

#include "kescomn/lm.h"

#include "support/ratio.h"

namespace {

constexpr int entries = 10000;

const std::vector<std::string> &keys()
{
    static const std::vector<std::string> k = [] {
        std::vector<std::string> v;
        char buf[32];
        for (int i = 0; i < entries; i++) {
            std::snprintf(buf, sizeof buf, "column_%05d", i * 7919 % 100000);
            v.emplace_back(buf);
        }
        return v;
    }();
    return k;
}

// A list of the given kind and table size holding every key.
struct Table {
    LM_CONTEXT *ctx = nullptr;
    LM_HANDLE *h = nullptr;

    Table(CS_INT kind, CS_INT size)
    {
        lm_initlm(1100, const_cast<CS_CHAR *>("bench"), CS_NULLTERM, &ctx);
        lm_property(ctx, LM_ACT_SET, LM_PROP_MAX_TABLESIZE, &size, 4, nullptr);
        lm_list_alloc(ctx, kind, const_cast<CS_CHAR *>("names"), CS_NULLTERM, &h);
        for (size_t i = 0; i < keys().size(); i++)
            lm_list_op(h, LM_OP_INSERT, const_cast<char *>(keys()[i].data()), CS_INT(keys()[i].size()),
                       reinterpret_cast<CS_VOID *>(i + 1), nullptr);
    }
    ~Table() { lm_exit(ctx, LM_FORCE_EXIT); }
};

void find_in(benchmark::State &state, CS_INT kind, CS_INT size)
{
    Table t(kind, size);
    size_t i = 0;
    for (auto _ : state) {
        const std::string &k = keys()[i++ % entries];
        CS_VOID *out = nullptr;
        lm_list_op(t.h, LM_OP_SEARCH, const_cast<char *>(k.data()), CS_INT(k.size()), nullptr, &out);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_lm_chained_find(benchmark::State &state) { find_in(state, LM_LIST_CHASH, 16411); }
void BM_lm_open_find(benchmark::State &state) { find_in(state, LM_LIST_DHASH, 16411); }

void BM_unordered_map_find(benchmark::State &state)
{
    std::unordered_map<std::string, void *> map;
    for (size_t i = 0; i < keys().size(); i++)
        map.emplace(keys()[i], reinterpret_cast<void *>(i + 1));
    size_t i = 0;
    for (auto _ : state) {
        auto it = map.find(keys()[i++ % entries]);
        benchmark::DoNotOptimize(it->second);
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(BM_lm_chained_find)->Name("find_chained/lib");
BENCHMARK(BM_lm_open_find)->Name("find_open/lib");
BENCHMARK(BM_unordered_map_find)->Name("find_chained/peer");
BENCHMARK(BM_unordered_map_find)->Name("find_open/peer");

} // namespace

KES_BENCH_MAIN();
