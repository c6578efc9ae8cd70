// Crack and make of CS_DATETIME and CS_BIGDATETIME beside std::chrono's civil
// conversions of the same values (days to year/month/day and weekday, time
// to hours/minutes/seconds/fraction, and back).
#include <benchmark/benchmark.h>

#include <chrono>
#include <random>
#include <vector>

#include "datetime/calendar.h"

#include "support/ratio.h"

namespace {

using namespace std::chrono;
using Ticks = duration<int64_t, std::ratio<1, 300>>;

constexpr size_t kValues = 4096;
const sys_days kDay0 = sys_days{year{1900} / January / 1};
const sys_days kBigDay0 = sys_days{year{0} / January / 1};

const std::vector<CS_DATETIME> &datetimes()
{
    static const std::vector<CS_DATETIME> values = [] {
        std::mt19937_64 rng(42);
        std::uniform_int_distribution<CS_INT> day(kes::cal::kMinDays, kes::cal::kMaxDays);
        std::uniform_int_distribution<CS_INT> tick(0, kes::cal::kTicksPerDay - 1);
        std::vector<CS_DATETIME> v(kValues);
        for (CS_DATETIME &dt : v)
            dt = {day(rng), tick(rng)};
        return v;
    }();
    return values;
}

const std::vector<CS_BIGDATETIME> &bigdatetimes()
{
    static const std::vector<CS_BIGDATETIME> values = [] {
        std::mt19937_64 rng(43);
        std::uniform_int_distribution<uint64_t> us(kes::cal::kBigMin, kes::cal::kBigEnd - 1);
        std::vector<CS_BIGDATETIME> v(kValues);
        for (CS_BIGDATETIME &b : v)
            b = us(rng);
        return v;
    }();
    return values;
}

void BM_DatetimeCrackMake(benchmark::State &state)
{
    const auto &values = datetimes();
    for (auto _ : state) {
        for (CS_DATETIME dt : values) {
            CS_DATEREC rec;
            com__datecrack(&dt, &rec);
            com__timecrack(&dt, &rec);
            CS_DATETIME back;
            com__datemake(&back, &rec);
            com__timemake(&back, &rec);
            benchmark::DoNotOptimize(back);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
}

void BM_DatetimeChronoCivil(benchmark::State &state)
{
    const auto &values = datetimes();
    for (auto _ : state) {
        for (CS_DATETIME dt : values) {
            const sys_days sd = kDay0 + days{dt.dtdays};
            const year_month_day ymd{sd};
            const weekday wd{sd};
            const hh_mm_ss<Ticks> hms{Ticks{dt.dttime}};
            benchmark::DoNotOptimize(wd);
            const sys_days again{ymd};
            const auto ticks = duration_cast<Ticks>(hms.hours() + hms.minutes() + hms.seconds() + hms.subseconds());
            CS_DATETIME back{static_cast<CS_INT>((again - kDay0).count()), static_cast<CS_INT>(ticks.count())};
            benchmark::DoNotOptimize(back);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
}

void BM_BigdatetimeCrackMake(benchmark::State &state)
{
    const auto &values = bigdatetimes();
    for (auto _ : state) {
        for (CS_BIGDATETIME v : values) {
            CS_DATEREC rec;
            com__bigdatecrack(&v, &rec);
            com__bigtimecrack(&v, &rec);
            CS_BIGDATETIME back;
            com_bigdatetimemake(&back, &rec);
            benchmark::DoNotOptimize(back);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
}

void BM_BigdatetimeChronoCivil(benchmark::State &state)
{
    const auto &values = bigdatetimes();
    for (auto _ : state) {
        for (CS_BIGDATETIME v : values) {
            const microseconds us{static_cast<int64_t>(v)};
            const sys_days sd = kBigDay0 + floor<days>(us);
            const year_month_day ymd{sd};
            const weekday wd{sd};
            const hh_mm_ss<microseconds> hms{us - floor<days>(us)};
            benchmark::DoNotOptimize(wd);
            const microseconds time = hms.hours() + hms.minutes() + hms.seconds() + hms.subseconds();
            const auto back = static_cast<uint64_t>((sys_days{ymd} - kBigDay0 + time).count());
            benchmark::DoNotOptimize(back);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
}

BENCHMARK(BM_DatetimeCrackMake)->Name("datetime_crack_make/lib");
BENCHMARK(BM_DatetimeChronoCivil)->Name("datetime_crack_make/peer");
BENCHMARK(BM_BigdatetimeCrackMake)->Name("bigdatetime_crack_make/lib");
BENCHMARK(BM_BigdatetimeChronoCivil)->Name("bigdatetime_crack_make/peer");

} // namespace

KES_BENCH_MAIN();
