// Seeded differential tests of the calendar against std::chrono's civil
// calendar.  The oracle works from day counts and durations, and models the
// library's own rules (month clamping, boundary counting of years and weeks,
// cut toward zero, the 32-bit overflow tests) from their definitions.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "datetime/calendar.h"

namespace {

using namespace std::chrono;
using kes::cal::kBigEnd;
using kes::cal::kBigMin;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_UNDEFINED__)
constexpr int kScale = 20; // sanitizers run the same cases, fewer of them
#else
constexpr int kScale = 1;
#endif
constexpr int kCases = 250000 / kScale;
constexpr int kPairCases = 100000 / kScale;

constexpr int64_t kTicksPerDay = 25920000;
constexpr int64_t kMicrosPerDay = 86400000000LL;
constexpr int64_t kMinDays = -693595, kMaxDays = 2958463;
const sys_days kDay0 = sys_days{year{1900} / January / 1}; // dtdays 0
const sys_days kBigDay0 = sys_days{year{0} / January / 1}; // CS_BIGDATETIME 0

sys_days from_dtdays(int64_t d) { return kDay0 + days{d}; }
int64_t to_dtdays(sys_days sd) { return (sd - kDay0).count(); }
sys_days big_day(uint64_t v) { return kBigDay0 + days{static_cast<int64_t>(v / kMicrosPerDay)}; }
std::string show(const CS_DATETIME &dt) { return std::to_string(dt.dtdays) + "/" + std::to_string(dt.dttime); }
uint64_t big_of(sys_days sd) { return static_cast<uint64_t>((sd - kBigDay0).count()) * kMicrosPerDay; }

struct Civil { int year, month, day, yday, wday; };
Civil civil(sys_days sd)
{
    const year_month_day ymd{sd};
    return {static_cast<int>(ymd.year()), static_cast<int>(static_cast<unsigned>(ymd.month())),
            static_cast<int>(static_cast<unsigned>(ymd.day())),
            static_cast<int>((sd - sys_days{ymd.year() / January / 1}).count()) + 1,
            static_cast<int>(weekday{sd}.c_encoding())};
}

// ISO 8601: a week belongs to the year of its Thursday.
struct Iso { int year, week, wday; };
Iso iso(sys_days sd)
{
    const int wday = static_cast<int>(weekday{sd}.iso_encoding());
    const sys_days thursday = sd - days{wday - 1} + days{3};
    const year y = year_month_day{thursday}.year();
    return {static_cast<int>(y), static_cast<int>((thursday - sys_days{y / January / 1}).count() / 7 + 1), wday};
}

// Index of the week (starting on `first`) holding a day; differences of it
// count the boundaries crossed.
int64_t week_index(sys_days sd, weekday first)
{
    const sys_days epoch = sys_days{year{1970} / January / 1};
    const int64_t n = (sd - (epoch - (weekday{epoch} - first))).count();
    return n >= 0 ? n / 7 : -((-n + 6) / 7);
}

// Months move with the day clamped to the month's end; the year must stay
// within 1 to 9999.
std::optional<sys_days> shift_months(sys_days sd, int64_t months)
{
    const year_month_day ymd{sd};
    const int64_t total = int64_t{static_cast<int>(ymd.year())} * 12 + (static_cast<unsigned>(ymd.month()) - 1) + months;
    const int64_t y = total >= 0 ? total / 12 : -((-total + 11) / 12);
    if (y < 1 || y > 9999)
        return std::nullopt;
    const year_month ym = year{static_cast<int>(y)} / month{static_cast<unsigned>(total - y * 12) + 1};
    const day last = year_month_day_last{ym / std::chrono::last}.day();
    return sys_days{ym / std::min(ymd.day(), last)};
}
int64_t months_of(int part, int64_t value) { return part == 1 ? 3 * value : (part == 2 ? value : 12 * value); }

class Oracle : public ::testing::Test {
protected:
    std::mt19937_64 rng{0x6b65736361};
    int64_t uniform(int64_t lo, int64_t hi) { return std::uniform_int_distribution<int64_t>(lo, hi)(rng); }
    // The first cases are the corners of the range, the rest random.
    CS_DATETIME random_datetime(int i)
    {
        if (i < 4)
            return {static_cast<CS_INT>(i < 2 ? kMinDays : kMaxDays), static_cast<CS_INT>(i % 2 ? kTicksPerDay - 1 : 0)};
        return {static_cast<CS_INT>(uniform(kMinDays, kMaxDays)), static_cast<CS_INT>(uniform(0, kTicksPerDay - 1))};
    }
    uint64_t random_big(int i) { return i < 2 ? (i ? kBigEnd - 1 : kBigMin) : uniform(kBigMin, kBigEnd - 1); }
    // Mostly near each other, so that the short units are exercised too.
    CS_DATETIME near(const CS_DATETIME &a)
    {
        const int64_t span = uniform(0, 3) == 0 ? kMaxDays - kMinDays : uniform(0, 1) ? 40 : 2;
        const int64_t d = std::clamp<int64_t>(a.dtdays + uniform(-span, span), kMinDays, kMaxDays);
        return {static_cast<CS_INT>(d), static_cast<CS_INT>(uniform(0, kTicksPerDay - 1))};
    }
};

// All fields of a record, for the message of a failed comparison.
std::string fields(const CS_DATEREC &r)
{
    char buf[128];
    std::snprintf(buf, sizeof buf, "%d-%d-%d yday %d wday %d %d:%d:%d ms %d tz %d frac %d/%d", r.dateyear,
                  r.datemonth, r.datedmonth, r.datedyear, r.datedweek, r.datehour, r.dateminute, r.datesecond,
                  r.datemsecond, r.datetzone, r.datesecfrac, r.datesecprec);
    return buf;
}

// Every day of the valid range (every kScale-th under sanitizers), each with a
// random time, as CS_DATETIME and as CS_BIGDATETIME: crack matches the civil
// calendar and make inverts it, also for the ticks whose milliseconds round
// (a tick never makes the next second).  The corners come first and last.
TEST_F(Oracle, EveryDayCracksAndMakesBack)
{
    using Ticks = duration<int64_t, std::ratio<1, 300>>;
    sys_days sd = from_dtdays(kMinDays);
    for (int64_t d = kMinDays; d <= kMaxDays; d += kScale, sd += days{kScale}) {
        const bool first = d == kMinDays, last = d + kScale > kMaxDays;
        CS_DATETIME dt{static_cast<CS_INT>(d), static_cast<CS_INT>(first  ? 0
                                                                   : last ? kTicksPerDay - 1
                                                                          : uniform(0, kTicksPerDay - 1))};
        const int64_t us = first ? 0 : last ? kMicrosPerDay - 1 : uniform(0, kMicrosPerDay - 1);
        const hh_mm_ss<Ticks> t{Ticks{dt.dttime}};
        const hh_mm_ss<microseconds> u{microseconds{us}};
        const Civil c = civil(sd);
        const CS_DATEREC want{c.year, c.month - 1, c.day, c.yday, c.wday, static_cast<CS_INT>(t.hours().count()),
                              static_cast<CS_INT>(t.minutes().count()), static_cast<CS_INT>(t.seconds().count()),
                              static_cast<CS_INT>(duration_cast<milliseconds>(t.subseconds()).count()), 0, 0, 300};
        const CS_DATEREC big_want{c.year, c.month - 1, c.day, c.yday, c.wday, static_cast<CS_INT>(u.hours().count()),
                                  static_cast<CS_INT>(u.minutes().count()), static_cast<CS_INT>(u.seconds().count()), 0,
                                  0, static_cast<CS_INT>(u.subseconds().count()), 1000000};
        CS_DATEREC rec{}, big_rec{};
        com__datecrack(&dt, &rec);
        com__timecrack(&dt, &rec);
        ASSERT_EQ(std::memcmp(&rec, &want, sizeof rec), 0) << show(dt) << ": " << fields(rec) << ", want " << fields(want);
        CS_BIGDATETIME big = big_of(sd) + static_cast<uint64_t>(us);
        com__bigdatecrack(&big, &big_rec);
        com__bigtimecrack(&big, &big_rec);
        ASSERT_EQ(std::memcmp(&big_rec, &big_want, sizeof rec), 0) << big << ": " << fields(big_rec) << ", want "
                                                                    << fields(big_want);

        CS_DATETIME made{-1, -1};
        ASSERT_EQ(com__datemake(&made, &rec), 0) << show(dt);
        ASSERT_EQ(com__timemake(&made, &rec), 0) << show(dt);
        ASSERT_TRUE(made.dtdays == dt.dtdays && made.dttime == dt.dttime) << show(made) << ", want " << show(dt);
        CS_BIGDATETIME big_made = 0;
        ASSERT_EQ(com_bigdatetimemake(&big_made, &big_rec), 0) << big;
        ASSERT_EQ(big_made, big);
    }
}

TEST_F(Oracle, SmallTypesRoundTripThroughTheirKernels)
{
    for (int i = 0; i < kCases; i++) {
        auto date = static_cast<CS_DATE>(uniform(kMinDays, kMaxDays));
        CS_BIGDATETIME big = 0;
        ASSERT_EQ(com__dateatobigdatetime(&date, &big), 0);
        ASSERT_EQ(big, big_of(from_dtdays(date)));
        CS_DATE back = 0;
        com__bigdatetimetodatea(&big, &back);
        ASSERT_EQ(back, date);

        // CS_DATETIME4: minutes survive the widening and the way back.
        CS_DATETIME4 d4{static_cast<CS_USHORT>(uniform(0, 65535)), static_cast<CS_USHORT>(uniform(0, 1439))}, again{};
        CS_DATETIME wide;
        com__date4todt(&d4, &wide);
        ASSERT_EQ(com__dttodate4(&wide, &again), 0);
        ASSERT_EQ(again.days, d4.days);
        ASSERT_EQ(again.minutes, d4.minutes);
    }
}

TEST_F(Oracle, EveryPartOfRandomDates)
{
    for (int i = 0; i < kCases; i++) {
        CS_DATETIME dt = random_datetime(i);
        const sys_days sd = from_dtdays(dt.dtdays);
        const Civil c = civil(sd);
        const Iso is = iso(sd);
        const sys_days jan1 = sd - days{c.yday - 1};
        const int sunday_week = (c.yday - 1 + static_cast<int>(weekday{jan1}.c_encoding())) / 7 + 1;
        CS_DATEREC rec{};
        com__timecrack(&dt, &rec); // the time fields are checked by the round trip above
        const int firstday = static_cast<int>(uniform(0, 6));
        const int expected[15] = {c.year, (c.month - 1) / 3 + 1, c.month, (c.wday - firstday + 7) % 7 + 1, c.day,
                                  c.yday, rec.datehour, rec.dateminute, rec.datesecond, rec.datemsecond,
                                  sunday_week, is.year, is.week, is.wday, 0};
        for (int part = 0; part < 15; part++)
            ASSERT_EQ(com__datepart(part, &dt, firstday), expected[part])
                << "part " << part << " dtdays " << dt.dtdays << " firstday " << firstday;

        // The big type agrees on the calendar parts and has real microseconds.
        CS_BIGDATETIME big = 0;
        ASSERT_EQ(com__datetobigdatetime(&dt, &big), 0);
        big += static_cast<uint64_t>(uniform(0, 999));
        for (int part : {0, 1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 12, 13})
            ASSERT_EQ(com__bigdatepart(part, &big, firstday), expected[part]) << "big part " << part;
        ASSERT_EQ(com__bigdatepart(14, &big, 0), static_cast<int>(big % 1000000));
        ASSERT_EQ(com__bigdatepart(9, &big, 0), static_cast<int>(big % 1000000 / 1000));
    }
}

// The expected status and value of an addition to a CS_DATETIME.
struct AddResult { int status; CS_DATETIME dt; };
AddResult oracle_add(int part, int64_t value, CS_DATETIME dt)
{
    switch (part) {
    case 0: case 11: case 1: case 2: {
        const auto s = shift_months(from_dtdays(dt.dtdays), months_of(part, value));
        return s ? AddResult{0, {static_cast<CS_INT>(to_dtdays(*s)), dt.dttime}} : AddResult{1, dt};
    }
    case 3: case 4: case 5: case 13: case 10: case 12: {
        const int64_t d = dt.dtdays + value * (part == 10 || part == 12 ? 7 : 1);
        return d < kMinDays || d > kMaxDays ? AddResult{1, dt} : AddResult{0, {static_cast<CS_INT>(d), dt.dttime}};
    }
    default: {
        // Milliseconds become ticks rounded half away from zero.
        constexpr int64_t ticks_per[] = {1080000, 18000, 300};
        const int64_t delta = part == 9 ? (3 * value + (value < 0 ? -5 : 5)) / 10 : value * ticks_per[part - 6];
        const int64_t total = dt.dtdays * kTicksPerDay + dt.dttime + delta;
        const int64_t d = total >= 0 ? total / kTicksPerDay : -((-total + kTicksPerDay - 1) / kTicksPerDay);
        const CS_INT time = static_cast<CS_INT>(total - d * kTicksPerDay);
        if (d < kMinDays || d > kMaxDays)
            return {1, {dt.dtdays, time}}; // the time is already written
        return {0, {static_cast<CS_INT>(d), time}};
    }
    }
}

TEST_F(Oracle, AddEveryPartToRandomDates)
{
    for (int i = 0; i < kPairCases; i++) {
        for (int part = 0; part <= 13; part++) {
            const CS_DATETIME start = random_datetime(i);
            const int64_t ranges[] = {3, 100000, 3000000, INT32_MAX};
            const int64_t r = ranges[uniform(0, 3)];
            const int64_t value = uniform(r == INT32_MAX ? INT32_MIN : -r, r);
            CS_DATETIME dt = start;
            const int status = com__date_add(part, static_cast<CS_INT>(value), &dt);
            const AddResult want = oracle_add(part, value, start);
            ASSERT_EQ(status, want.status) << "part " << part << " value " << value << " from " << show(start);
            if (status == 0 || (part >= 3 && part != 11)) { // a failed make leaves a partial value
                ASSERT_TRUE(dt.dtdays == want.dt.dtdays && dt.dttime == want.dt.dttime)
                    << show(dt) << ", want " << show(want.dt) << "; part " << part << " value " << value;
            }
        }
    }
}

TEST_F(Oracle, BigAddEveryPartToRandomDates)
{
    constexpr int64_t unit[15] = {0, 0, 0, kMicrosPerDay, kMicrosPerDay, kMicrosPerDay, 3600000000LL, 60000000LL,
                                  1000000LL, 1000LL, 7 * kMicrosPerDay, 0, 7 * kMicrosPerDay, kMicrosPerDay, 1};
    for (int i = 0; i < kPairCases; i++) {
        for (int part = 0; part <= 14; part++) {
            const uint64_t v = random_big(i);
            const int64_t value = uniform(0, 1) ? uniform(-5000, 5000) : uniform(INT32_MIN, INT32_MAX);
            CS_BIGDATETIME bdt = v;
            const int status = com__bigdate_add(part, static_cast<CS_INT>(value), &bdt, 187);
            int want_status = 1;
            uint64_t want = v;
            if (unit[part] == 0) {
                if (const auto s = shift_months(big_day(v), months_of(part, value))) {
                    want_status = 0;
                    want = big_of(*s) + v % kMicrosPerDay;
                }
            } else {
                const __int128 sum = static_cast<__int128>(v) + static_cast<__int128>(value) * unit[part];
                if (sum >= kBigMin && sum < kBigEnd) {
                    want_status = 0;
                    want = static_cast<uint64_t>(sum);
                }
            }
            ASSERT_EQ(status, want_status) << "part " << part << " value " << value << " from " << v;
            ASSERT_EQ(bdt, want) << "part " << part << " value " << value << " from " << v;
        }
    }
}

// The expected difference of two CS_DATETIME values, or nullopt on overflow.
std::optional<int64_t> oracle_diff(int part, const CS_DATETIME &a, const CS_DATETIME &b)
{
    const int64_t d = int64_t{b.dtdays} - a.dtdays;
    const int64_t t = int64_t{b.dttime} - a.dttime;
    const int64_t total = d * kTicksPerDay + t; // exact elapsed ticks
    // Mixed signs are tested on the days alone; otherwise the exact count must fit.
    const bool crossed = (d > 0 && t < 0) || (d < 0 && t > 0);
    auto checked = [&](int64_t v, int64_t crossed_limit) -> std::optional<int64_t> {
        if (crossed ? std::abs(d) > crossed_limit : (v < -INT32_MAX || v > INT32_MAX))
            return std::nullopt;
        return v;
    };
    const sys_days da = from_dtdays(a.dtdays), db = from_dtdays(b.dtdays);
    const Civil ca = civil(da), cb = civil(db);
    switch (part) {
    case 0: return cb.year - ca.year;
    case 1: return (cb.year * 4 + (cb.month - 1) / 3) - (ca.year * 4 + (ca.month - 1) / 3);
    case 2: return (cb.year * 12 + cb.month) - (ca.year * 12 + ca.month);
    case 3: case 13: return d / 7;
    case 4: case 5: return d;
    case 6: return total / 1080000;
    case 7: return checked(total / 18000, 1491308);
    case 8: return checked(total / 300, 24855);
    // Days and ticks are converted apart: the ticks' milliseconds are cut on
    // their own side.
    case 9: return checked(d * 86400000 + t * 10 / 3, 24);
    case 10: case 12: return week_index(db, Sunday) - week_index(da, Sunday);
    case 11: return iso(db).year - iso(da).year;
    default: return std::nullopt;
    }
}

TEST_F(Oracle, DiffEveryPartOfRandomPairs)
{
    for (int i = 0; i < kPairCases; i++) {
        const CS_DATETIME a = random_datetime(i);
        const CS_DATETIME b = i < 4 ? random_datetime(3 - i) : near(a);
        for (int part = 0; part <= 13; part++) {
            CS_INT diff = 0x5a5a5a5a;
            CS_DATETIME from = a, to = b;
            const int status = com__datediff(part, &from, &to, &diff);
            const std::optional<int64_t> want = oracle_diff(part, a, b);
            ASSERT_EQ(status, want ? 0 : 1) << "part " << part << " " << show(a) << " to " << show(b);
            ASSERT_EQ(diff, want ? *want : 0x5a5a5a5a) << "part " << part << " " << show(a) << " to " << show(b);
        }
    }
}

TEST_F(Oracle, BigDiffEveryPartOfRandomPairs)
{
    for (int i = 0; i < kPairCases; i++) {
        const uint64_t a = random_big(i);
        const int64_t span = uniform(0, 1) ? 1000 * kMicrosPerDay : static_cast<int64_t>(kBigEnd);
        const auto b = static_cast<uint64_t>(
            std::clamp<int64_t>(static_cast<int64_t>(a) + uniform(-span, span), kBigMin, kBigEnd - 1));
        const sys_days da = big_day(a), db = big_day(b);
        const Civil ca = civil(da), cb = civil(db);
        const int64_t years = cb.year - ca.year;
        const int64_t ma = ca.month - 1, mb = cb.month - 1;
        const int64_t d = (db - da).count();
        const int64_t us = static_cast<int64_t>(b) - static_cast<int64_t>(a);
        // The big type's weeks turn on Wednesday.
        const int64_t weeks = week_index(db, Wednesday) - week_index(da, Wednesday);
        const int64_t want[15] = {years,      years * 4 + mb / 3 - ma / 3, years * 12 + mb - ma, d / 7, d, d,
                                  us / 3600000000LL, us / 60000000LL, us / 1000000, us / 1000, weeks,
                                  iso(db).year - iso(da).year, weeks, d / 7, us};
        for (int part = 0; part <= 14; part++) {
            CS_BIGINT diff = -77;
            CS_BIGDATETIME from = a, to = b;
            ASSERT_EQ(com__bigdatediff(part, &from, &to, &diff), 0);
            ASSERT_EQ(diff, want[part]) << "part " << part << " " << a << " to " << b;
        }
    }
}

} // namespace
