// A locale's month names and date format as the date code asks for them,
// beside the C library's nl_langinfo answering the same questions.
#include <benchmark/benchmark.h>

#include <langinfo.h>

#include <cstdio>

#include "intl/locale_records.h"
#include "kescomn/intl_date.h"

#include "support/ratio.h"

namespace {

// A context whose locale's time data is loaded, as after set-up.
struct LoadedContext {
    CS_BYTE names[12][4]{};
    CS_DATEINFO info{};
    CsLocCache cache{};
    CS_LOCALE locale{};
    CS_CONTEXT context{};
    CS_DATAFMT fmt{};

    LoadedContext()
    {
        for (int i = 0; i < 12; i++) {
            std::snprintf(reinterpret_cast<char *>(names[i]), sizeof names[i], "M%02d", i);
            info.shortmonths[i] = names[i];
        }
        info.convertfmt = 103;
        cache.locdateinfo = &info;
        locale.timeptr = &cache;
        context.ctxlocale = &locale;
    }
};

void BM_MonthNamesLib(benchmark::State &state)
{
    LoadedContext loaded;
    for (auto _ : state)
        for (int m = 0; m < 12; m++)
            benchmark::DoNotOptimize(com_intl_shortmonths(&loaded.context, &loaded.fmt)[m][0]);
    state.SetItemsProcessed(state.iterations() * 12);
}

void BM_MonthNamesPeer(benchmark::State &state)
{
    for (auto _ : state)
        for (int m = 0; m < 12; m++)
            benchmark::DoNotOptimize(nl_langinfo(static_cast<nl_item>(ABMON_1 + m))[0]);
    state.SetItemsProcessed(state.iterations() * 12);
}

void BM_DateFormatLib(benchmark::State &state)
{
    LoadedContext loaded;
    for (auto _ : state)
        benchmark::DoNotOptimize(comn_get_datetochar_fmt(&loaded.context, &loaded.fmt));
    state.SetItemsProcessed(state.iterations());
}

void BM_DateFormatPeer(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(nl_langinfo(D_FMT)[0]);
    state.SetItemsProcessed(state.iterations());
}

} // namespace

BENCHMARK(BM_MonthNamesLib)->Name("locale_short_month_names/lib");
BENCHMARK(BM_MonthNamesPeer)->Name("locale_short_month_names/peer");
BENCHMARK(BM_DateFormatLib)->Name("locale_date_format/lib");
BENCHMARK(BM_DateFormatPeer)->Name("locale_date_format/peer");

KES_BENCH_MAIN();
