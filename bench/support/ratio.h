/*
** Benchmarks run the library beside its natural peer in one process.  A run
** named ".../lib" pairs with the same name ending in ".../peer"; after the
** usual table, each pair's time ratio (library / peer) is printed, so a value
** below 1 means the library is faster.
*/
#ifndef KESCOMN_BENCH_RATIO_H
#define KESCOMN_BENCH_RATIO_H

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace kes::bench {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        benchmark::ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type != Run::RT_Iteration || run.iterations == 0)
                continue;
            std::string name = run.benchmark_name();
            for (const char *side : {"/lib", "/peer"}) {
                const auto at = name.find(side);
                if (at == std::string::npos)
                    continue;
                std::string key = name.substr(0, at) + name.substr(at + std::string(side).size());
                double ns = run.GetAdjustedRealTime();
                (side[1] == 'l' ? lib_ : peer_)[key] = ns;
            }
        }
    }

    void Finalize() override
    {
        benchmark::ConsoleReporter::Finalize();
        if (lib_.empty())
            return;
        std::printf("\n%-48s %12s %12s %8s\n", "pair", "library", "peer", "ratio");
        for (const auto &[key, lib] : lib_) {
            auto peer = peer_.find(key);
            if (peer == peer_.end() || peer->second <= 0)
                continue;
            std::printf("%-48s %10.1fns %10.1fns %8.2f\n", key.c_str(), lib, peer->second, lib / peer->second);
        }
    }

private:
    std::map<std::string, double> lib_, peer_;
};

} // namespace kes::bench

// The main of every benchmark executable: the usual flags, plus the ratio table.
#define KES_BENCH_MAIN()                                                  \
    int main(int argc, char **argv)                                       \
    {                                                                     \
        benchmark::Initialize(&argc, argv);                               \
        kes::bench::RatioReporter reporter;                               \
        benchmark::RunSpecifiedBenchmarks(&reporter);                     \
        benchmark::Shutdown();                                            \
        return 0;                                                         \
    }

#endif
