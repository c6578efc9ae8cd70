// Date text beside the C library: the formatter against strftime on the same
// fields, the reader against strptime on the same text.  The library side of
// the storage cases also cracks or makes the stored value; the peer side is
// handed or gives back broken-down fields only.
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "datetime/calendar.h"
#include "datetime/format.h"
#include "datetime/parse.h"
#include "support/ratio.h"

namespace {

constexpr size_t kSamples = 1024;

std::vector<CS_DATETIME> sample_datetimes()
{
    std::mt19937 rng(9);
    std::uniform_int_distribution<CS_INT> days(-53690, 2958463), ticks(0, 25919999);
    std::vector<CS_DATETIME> v(kSamples);
    for (CS_DATETIME &dt : v)
        dt = {days(rng), ticks(rng)};
    return v;
}

CS_DATEREC crack(CS_DATETIME dt)
{
    CS_DATEREC r{};
    com_datecrack(&dt, &r);
    com_timecrack(&dt, &r);
    r.datesecprec = 300;
    return r;
}

struct tm to_tm(const CS_DATEREC &r)
{
    struct tm tm {};
    tm.tm_year = r.dateyear - 1900;
    tm.tm_mon = r.datemonth;
    tm.tm_mday = r.datedmonth;
    tm.tm_hour = r.datehour;
    tm.tm_min = r.dateminute;
    tm.tm_sec = r.datesecond;
    return tm;
}

// ---- formatting ----------------------------------------------------------------

void format_datetime_lib(benchmark::State &state, int style)
{
    const auto values = sample_datetimes();
    char **months = com__get_shortmonths();
    char out[64];
    size_t i = 0;
    for (auto _ : state) {
        CS_DATETIME dt = values[i++ % kSamples];
        benchmark::DoNotOptimize(com__datetochar(&dt, out, sizeof out, style, months));
        benchmark::ClobberMemory();
    }
}

void format_rec_lib(benchmark::State &state, int style)
{
    std::vector<CS_DATEREC> recs;
    for (const CS_DATETIME &dt : sample_datetimes())
        recs.push_back(crack(dt));
    char **months = com__get_shortmonths();
    char out[64];
    size_t i = 0;
    for (auto _ : state) {
        CS_DATEREC &r = recs[i++ % kSamples];
        benchmark::DoNotOptimize(com__daterectochar(&r, out, sizeof out, style, months, 300));
        benchmark::ClobberMemory();
    }
}

// Style 9/109 is "Mar  5 2008  3:07:09:123PM"; strftime has no milliseconds,
// so the peer writes the rest of the same fields.
void format_peer(benchmark::State &state, const char *layout)
{
    std::vector<struct tm> tms;
    for (const CS_DATETIME &dt : sample_datetimes())
        tms.push_back(to_tm(crack(dt)));
    char out[64];
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(strftime(out, sizeof out, layout, &tms[i++ % kSamples]));
        benchmark::ClobberMemory();
    }
}

void style9_lib(benchmark::State &s) { format_datetime_lib(s, 9); }
void style9_peer(benchmark::State &s) { format_peer(s, "%b %e %Y %l:%M:%S%p"); }
void style109_rec_lib(benchmark::State &s) { format_rec_lib(s, 109); }
void style109_rec_peer(benchmark::State &s) { format_peer(s, "%b %e %Y %l:%M:%S%p"); }
void style23_lib(benchmark::State &s) { format_datetime_lib(s, 23); }
void style23_peer(benchmark::State &s) { format_peer(s, "%Y-%m-%dT%H:%M:%S"); }

BENCHMARK(style9_lib)->Name("format_style9/lib");
BENCHMARK(style9_peer)->Name("format_style9/peer");
BENCHMARK(style109_rec_lib)->Name("format_rec_style109/lib");
BENCHMARK(style109_rec_peer)->Name("format_rec_style109/peer");
BENCHMARK(style23_lib)->Name("format_style23/lib");
BENCHMARK(style23_peer)->Name("format_style23/peer");

// ---- parsing -------------------------------------------------------------------

std::vector<std::string> sample_texts(int style)
{
    std::vector<std::string> texts;
    char buf[64];
    for (CS_DATETIME dt : sample_datetimes()) {
        const int n = com__datetochar(&dt, buf, sizeof buf, style, com__get_shortmonths());
        texts.emplace_back(buf, static_cast<size_t>(n));
    }
    return texts;
}

void parse_lib(benchmark::State &state, int style)
{
    const auto texts = sample_texts(style);
    char **shorts = com__get_shortmonths();
    size_t i = 0;
    for (auto _ : state) {
        const std::string &t = texts[i++ % kSamples];
        CS_DATETIME dt;
        CS_BOOL truncated;
        benchmark::DoNotOptimize(com__datefromchar_mb(&dt, const_cast<char *>(t.data()), static_cast<int>(t.size()),
                                                      0, 1, com__get_months(), shorts, nullptr, &truncated));
        benchmark::DoNotOptimize(dt);
    }
}

void parse_rec_lib(benchmark::State &state, int style)
{
    const auto texts = sample_texts(style);
    char **shorts = com__get_shortmonths();
    size_t i = 0;
    for (auto _ : state) {
        const std::string &t = texts[i++ % kSamples];
        CS_DATEREC r;
        CS_BOOL truncated;
        benchmark::DoNotOptimize(xdaterecfromchar(&r, const_cast<char *>(t.data()), static_cast<int>(t.size()), 0,
                                                  0, 1, com__get_months(), shorts, nullptr, CS_DATETIME_TYPE,
                                                  &truncated));
        benchmark::DoNotOptimize(r);
    }
}

void parse_peer(benchmark::State &state, int style, const char *layout)
{
    const auto texts = sample_texts(style);
    size_t i = 0;
    for (auto _ : state) {
        struct tm tm;
        benchmark::DoNotOptimize(strptime(texts[i++ % kSamples].c_str(), layout, &tm));
        benchmark::DoNotOptimize(tm);
    }
}

// The time of day alone (style 108, "hh:mm:ss") into a CS_TIME.
void time_lib(benchmark::State &state)
{
    const auto texts = sample_texts(108);
    size_t i = 0;
    for (auto _ : state) {
        const std::string &t = texts[i++ % kSamples];
        CS_TIME tm;
        CS_BOOL truncated;
        benchmark::DoNotOptimize(com__timeafromchar_mb(&tm, const_cast<char *>(t.data()), static_cast<int>(t.size()),
                                                       0, 1, com__get_months(), com__get_shortmonths(),
                                                       nullptr, &truncated));
        benchmark::DoNotOptimize(tm);
    }
}

void iso_lib(benchmark::State &s) { parse_lib(s, 23); }
void iso_rec_lib(benchmark::State &s) { parse_rec_lib(s, 23); }
void iso_peer(benchmark::State &s) { parse_peer(s, 23, "%Y-%m-%dT%H:%M:%S"); }
void numeric_lib(benchmark::State &s) { parse_lib(s, 121); }
void numeric_peer(benchmark::State &s) { parse_peer(s, 121, "%Y/%m/%d %H:%M:%S"); }
void time_peer(benchmark::State &s) { parse_peer(s, 108, "%H:%M:%S"); }
void named_lib(benchmark::State &s) { parse_lib(s, 100); }
void named_peer(benchmark::State &s) { parse_peer(s, 100, "%b %d %Y %I:%M%p"); }

BENCHMARK(iso_lib)->Name("parse_iso/lib");
BENCHMARK(iso_peer)->Name("parse_iso/peer");
BENCHMARK(iso_rec_lib)->Name("parse_rec_iso/lib");
BENCHMARK(iso_peer)->Name("parse_rec_iso/peer");
BENCHMARK(numeric_lib)->Name("parse_ymd/lib");
BENCHMARK(numeric_peer)->Name("parse_ymd/peer");
BENCHMARK(time_lib)->Name("parse_time/lib");
BENCHMARK(time_peer)->Name("parse_time/peer");
BENCHMARK(named_lib)->Name("parse_named/lib");
BENCHMARK(named_peer)->Name("parse_named/peer");

} // namespace

KES_BENCH_MAIN();
