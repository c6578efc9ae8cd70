// Seeded differential tests of the calendar against std::chrono's civil
// calendar.  The oracle works from day counts and durations, and models the
// library's own rules (month clamping, boundary counting of years and weeks,
// cut toward zero, the 32-bit overflow tests) from their definitions.
#include <chrono>
#include <cstdint>
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "datetime/calendar.h"

namespace {

using namespace std::chrono;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_UNDEFINED__)
constexpr int kScale = 20; // sanitizers run the same cases, fewer of them
#else
constexpr int kScale = 1;
#endif
constexpr int kCrackCases = 1000000 / kScale;
constexpr int kPairCases = 100000 / kScale;
constexpr uint64_t kSeed = 0x6b65736361;

constexpr int64_t kTicksPerDay = 25920000;
constexpr int64_t kMicrosPerDay = 86400000000LL;
const sys_days kDay0 = sys_days{year{1900} / January / 1};  // dtdays 0
const sys_days kBigDay0 = sys_days{year{0} / January / 1};  // CS_BIGDATETIME 0
constexpr int64_t kMinDays = -693595, kMaxDays = 2958463;

sys_days from_dtdays(int64_t d) { return kDay0 + days{d}; }
int64_t to_dtdays(sys_days sd) { return (sd - kDay0).count(); }

struct Civil {
    int year, month, day, yday, wday;
};

Civil civil(int64_t dtdays)
{
    const sys_days sd = from_dtdays(dtdays);
    const year_month_day ymd{sd};
    const int y = static_cast<int>(ymd.year());
    return {y, static_cast<int>(static_cast<unsigned>(ymd.month())),
            static_cast<int>(static_cast<unsigned>(ymd.day())),
            static_cast<int>((sd - sys_days{ymd.year() / January / 1}).count()) + 1,
            static_cast<int>(weekday{sd}.c_encoding())};
}

// ISO 8601: a week belongs to the year of its Thursday.
struct Iso {
    int year, week, wday;
};
Iso iso(int64_t dtdays)
{
    const sys_days sd = from_dtdays(dtdays);
    const int wday = static_cast<int>(weekday{sd}.iso_encoding());
    const sys_days thursday = sd - days{wday - 1} + days{3};
    const year y = year_month_day{thursday}.year();
    return {static_cast<int>(y), static_cast<int>((thursday - sys_days{y / January / 1}).count() / 7 + 1), wday};
}

int sunday_week_of_year(int64_t dtdays)
{
    const Civil c = civil(dtdays);
    const int jan1 = static_cast<int>(weekday{from_dtdays(dtdays - (c.yday - 1))}.c_encoding());
    return (c.yday - 1 + jan1) / 7 + 1;
}

// Index of the week (starting on `first`) holding a day; differences of it
// count the boundaries crossed.
int64_t week_index(sys_days sd, weekday first)
{
    const sys_days origin = sys_days{year{1970} / January / 1} - (weekday{sys_days{year{1970} / January / 1}} - first);
    const int64_t n = (sd - origin).count();
    return n >= 0 ? n / 7 : -((-n + 6) / 7);
}

// The calendar shift of add: months move with the day clamped to the month's
// end; the year must stay within 1 to 9999.
struct Shifted {
    bool ok;
    int64_t dtdays;
};
Shifted shift_months(int64_t dtdays, int64_t months)
{
    const year_month_day ymd{from_dtdays(dtdays)};
    const int64_t total = int64_t{static_cast<int>(ymd.year())} * 12 + (static_cast<unsigned>(ymd.month()) - 1) + months;
    const int64_t y = total >= 0 ? total / 12 : -((-total + 11) / 12);
    const int m = static_cast<int>(total - y * 12) + 1;
    if (y < 1 || y > 9999)
        return {false, 0};
    const year_month_day_last last{year{static_cast<int>(y)} / month{static_cast<unsigned>(m)} / std::chrono::last};
    const day d = ymd.day() > last.day() ? last.day() : ymd.day();
    return {true, to_dtdays(sys_days{year{static_cast<int>(y)} / month{static_cast<unsigned>(m)} / d})};
}

class Oracle : public ::testing::Test {
protected:
    std::mt19937_64 rng{kSeed};
    int64_t uniform(int64_t lo, int64_t hi) { return std::uniform_int_distribution<int64_t>(lo, hi)(rng); }
    CS_DATETIME random_datetime()
    {
        return {static_cast<CS_INT>(uniform(kMinDays, kMaxDays)), static_cast<CS_INT>(uniform(0, kTicksPerDay - 1))};
    }
    // Mostly near each other, so that the short units are exercised too.
    CS_DATETIME near(const CS_DATETIME &a)
    {
        const int64_t span = uniform(0, 3) == 0 ? kMaxDays - kMinDays : uniform(0, 1) ? 40 : 2;
        const int64_t d = std::clamp<int64_t>(a.dtdays + uniform(-span, span), kMinDays, kMaxDays);
        return {static_cast<CS_INT>(d), static_cast<CS_INT>(uniform(0, kTicksPerDay - 1))};
    }
};

// Every day of the valid range (every kScale-th under sanitizers).
TEST_F(Oracle, EveryDayCracksAndMakesBack)
{
    sys_days sd = from_dtdays(kMinDays);
    for (int64_t d = kMinDays; d <= kMaxDays; d += kScale, sd += days{kScale}) {
        CS_DATETIME dt{static_cast<CS_INT>(d), 0};
        CS_DATEREC rec{};
        com__datecrack(&dt, &rec);
        const year_month_day ymd{sd};
        ASSERT_EQ(rec.dateyear, static_cast<int>(ymd.year())) << d;
        ASSERT_EQ(rec.datemonth + 1, static_cast<int>(static_cast<unsigned>(ymd.month()))) << d;
        ASSERT_EQ(rec.datedmonth, static_cast<int>(static_cast<unsigned>(ymd.day()))) << d;
        ASSERT_EQ(rec.datedyear, (sd - sys_days{ymd.year() / January / 1}).count() + 1) << d;
        ASSERT_EQ(rec.datedweek, static_cast<int>(weekday{sd}.c_encoding())) << d;
        CS_DATETIME made{};
        ASSERT_EQ(com__datemake(&made, &rec), 0) << d;
        ASSERT_EQ(made.dtdays, d);
    }
}

TEST_F(Oracle, DatetimeCrackAndMakeRoundTrip)
{
    for (int i = 0; i < kCrackCases; i++) {
        CS_DATETIME dt = random_datetime();
        CS_DATEREC rec{};
        com__datecrack(&dt, &rec);
        com__timecrack(&dt, &rec);
        const Civil c = civil(dt.dtdays);
        const hh_mm_ss<duration<int64_t, std::ratio<1, 300>>> hms{duration<int64_t, std::ratio<1, 300>>{dt.dttime}};
        const int64_t ms = duration_cast<milliseconds>(hms.subseconds()).count();
        ASSERT_EQ(rec.dateyear, c.year) << dt.dtdays;
        ASSERT_EQ(rec.datemonth, c.month - 1) << dt.dtdays;
        ASSERT_EQ(rec.datedmonth, c.day) << dt.dtdays;
        ASSERT_EQ(rec.datedyear, c.yday) << dt.dtdays;
        ASSERT_EQ(rec.datedweek, c.wday) << dt.dtdays;
        ASSERT_EQ(rec.datehour, hms.hours().count()) << dt.dttime;
        ASSERT_EQ(rec.dateminute, hms.minutes().count()) << dt.dttime;
        ASSERT_EQ(rec.datesecond, hms.seconds().count()) << dt.dttime;
        ASSERT_EQ(rec.datemsecond, ms) << dt.dttime;

        // Make inverts crack for the date and for every tick but the
        // rounding ones: a tick gives its millisecond, which makes a tick
        // again, never the next second.
        CS_DATETIME made{-1, -1};
        ASSERT_EQ(com__datemake(&made, &rec), 0);
        ASSERT_EQ(com__timemake(&made, &rec), 0);
        ASSERT_EQ(made.dtdays, dt.dtdays);
        ASSERT_EQ(made.dttime, dt.dttime) << "ms " << ms;
    }
}

TEST_F(Oracle, BigdatetimeCrackAndMakeRoundTrip)
{
    for (int i = 0; i < kCrackCases; i++) {
        const auto v = static_cast<uint64_t>(uniform(kes::cal::kBigMin, kes::cal::kBigEnd - 1));
        CS_BIGDATETIME bdt = v;
        CS_DATEREC rec{};
        com__bigdatecrack(&bdt, &rec);
        com__bigtimecrack(&bdt, &rec);
        const sys_days sd = kBigDay0 + days{static_cast<int64_t>(v / kMicrosPerDay)};
        const year_month_day ymd{sd};
        const hh_mm_ss<microseconds> hms{microseconds{static_cast<int64_t>(v % kMicrosPerDay)}};
        ASSERT_EQ(rec.dateyear, static_cast<int>(ymd.year())) << v;
        ASSERT_EQ(rec.datemonth + 1, static_cast<int>(static_cast<unsigned>(ymd.month()))) << v;
        ASSERT_EQ(rec.datedmonth, static_cast<int>(static_cast<unsigned>(ymd.day()))) << v;
        ASSERT_EQ(rec.datedweek, static_cast<int>(weekday{sd}.c_encoding())) << v;
        ASSERT_EQ(rec.datehour, hms.hours().count()) << v;
        ASSERT_EQ(rec.dateminute, hms.minutes().count()) << v;
        ASSERT_EQ(rec.datesecond, hms.seconds().count()) << v;
        ASSERT_EQ(rec.datesecfrac, hms.subseconds().count()) << v;
        ASSERT_EQ(rec.datesecprec, 1000000);
        ASSERT_EQ(rec.datemsecond, 0);

        CS_BIGDATETIME made = 0;
        ASSERT_EQ(com_bigdatetimemake(&made, &rec), 0);
        ASSERT_EQ(made, v);
    }
}

TEST_F(Oracle, SmallTypesRoundTripThroughTheirKernels)
{
    for (int i = 0; i < kCrackCases / 4; i++) {
        // CS_DATE and CS_BIGTIME through the same crack and make.
        const auto date = static_cast<CS_DATE>(uniform(kMinDays, kMaxDays));
        CS_BIGDATETIME big = 0;
        ASSERT_EQ(com__dateatobigdatetime(const_cast<CS_DATE *>(&date), &big), 0);
        ASSERT_EQ(big, static_cast<uint64_t>((from_dtdays(date) - kBigDay0).count()) * kMicrosPerDay);
        CS_DATE back = 0;
        com__bigdatetimetodatea(&big, &back);
        ASSERT_EQ(back, date);

        const auto us = static_cast<uint64_t>(uniform(0, kMicrosPerDay - 1));
        CS_BIGTIME bt = us;
        CS_DATEREC rec{};
        com__bigtimecrack(&bt, &rec);
        CS_BIGTIME made = 0;
        ASSERT_EQ(com__bigtimemake(&made, &rec), 0);
        ASSERT_EQ(made, us);

        // CS_DATETIME4: minutes survive the widening and the way back.
        CS_DATETIME4 d4{static_cast<CS_USHORT>(uniform(0, 65535)), static_cast<CS_USHORT>(uniform(0, 1439))};
        CS_DATETIME wide;
        com__date4todt(&d4, &wide);
        CS_DATETIME4 again{};
        ASSERT_EQ(com__dttodate4(&wide, &again), 0);
        ASSERT_EQ(again.days, d4.days);
        ASSERT_EQ(again.minutes, d4.minutes);
    }
}

TEST_F(Oracle, EveryPartOfRandomDates)
{
    for (int i = 0; i < kCrackCases / 4; i++) {
        CS_DATETIME dt = random_datetime();
        const Civil c = civil(dt.dtdays);
        const Iso is = iso(dt.dtdays);
        CS_DATEREC rec{};
        com__timecrack(&dt, &rec);
        const int firstday = static_cast<int>(uniform(0, 6));
        const int expected[15] = {c.year, (c.month - 1) / 3 + 1, c.month, (c.wday - firstday + 7) % 7 + 1,
                                  c.day,  c.yday, rec.datehour, rec.dateminute, rec.datesecond,
                                  rec.datemsecond, sunday_week_of_year(dt.dtdays), is.year, is.week, is.wday, 0};
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

// The expected sum of an addition to a CS_DATETIME, from durations.
struct AddResult {
    int status;
    CS_DATETIME dt;
};

AddResult oracle_add(int part, int64_t value, CS_DATETIME dt)
{
    switch (part) {
    case 0: case 11: case 1: case 2: {
        const Shifted s = shift_months(dt.dtdays, part == 1 ? 3 * value : (part == 2 ? value : 12 * value));
        return s.ok ? AddResult{0, {static_cast<CS_INT>(s.dtdays), dt.dttime}} : AddResult{1, dt};
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
        const CS_DATETIME moved{static_cast<CS_INT>(d), static_cast<CS_INT>(total - d * kTicksPerDay)};
        if (d < kMinDays || d > kMaxDays)
            return {1, {dt.dtdays, moved.dttime}}; // the time is already written
        return {0, moved};
    }
    }
}

TEST_F(Oracle, AddEveryPartToRandomDates)
{
    for (int i = 0; i < kPairCases; i++) {
        for (int part = 0; part <= 13; part++) {
            const CS_DATETIME start = random_datetime();
            int64_t value;
            switch (uniform(0, 3)) {
            case 0: value = uniform(-3, 3); break;
            case 1: value = uniform(-100000, 100000); break;
            case 2: value = uniform(-3000000, 3000000); break;
            default: value = uniform(INT32_MIN, INT32_MAX); break;
            }
            CS_DATETIME dt = start;
            const int status = com__date_add(part, static_cast<CS_INT>(value), &dt);
            const AddResult want = oracle_add(part, value, start);
            ASSERT_EQ(status, want.status) << "part " << part << " value " << value << " from " << start.dtdays
                                           << "/" << start.dttime;
            if (status == 0 || (part >= 3 && part != 11)) {
                ASSERT_EQ(dt.dtdays, want.dt.dtdays) << "part " << part << " value " << value;
                ASSERT_EQ(dt.dttime, want.dt.dttime) << "part " << part << " value " << value;
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
            const auto v = static_cast<uint64_t>(uniform(kes::cal::kBigMin, kes::cal::kBigEnd - 1));
            const int64_t value = uniform(0, 1) ? uniform(-5000, 5000) : uniform(INT32_MIN, INT32_MAX);
            CS_BIGDATETIME bdt = v;
            const int status = com__bigdate_add(part, static_cast<CS_INT>(value), &bdt, 187);
            const int64_t dayno = static_cast<int64_t>(v / kMicrosPerDay);
            const uint64_t time = v % kMicrosPerDay;
            int want_status;
            uint64_t want = v;
            if (unit[part] == 0) {
                const int64_t dtdays = to_dtdays(kBigDay0 + days{dayno});
                const Shifted s = shift_months(dtdays, part == 1 ? 3 * value : (part == 2 ? value : 12 * value));
                want_status = s.ok ? 0 : 1;
                if (s.ok)
                    want = static_cast<uint64_t>((from_dtdays(s.dtdays) - kBigDay0).count()) * kMicrosPerDay + time;
            } else {
                const __int128 sum = static_cast<__int128>(v) + static_cast<__int128>(value) * unit[part];
                want_status = sum < kes::cal::kBigMin || sum >= kes::cal::kBigEnd ? 1 : 0;
                if (want_status == 0)
                    want = static_cast<uint64_t>(sum);
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
    const bool crossed = (d > 0 && t < 0) || (d < 0 && t > 0);
    auto fits = [](int64_t v) { return v >= -INT32_MAX && v <= INT32_MAX; };
    const Civil ca = civil(a.dtdays), cb = civil(b.dtdays);
    switch (part) {
    case 0: return cb.year - ca.year;
    case 1: return (cb.year * 4 + (cb.month - 1) / 3) - (ca.year * 4 + (ca.month - 1) / 3);
    case 2: return (cb.year * 12 + cb.month) - (ca.year * 12 + ca.month);
    case 3: case 13: return d / 7;
    case 4: case 5: return d;
    case 6: return total / 1080000;
    case 7: {
        // Mixed signs are tested on the days alone; otherwise the exact count must fit.
        if (crossed ? std::abs(d) > 1491308 : !fits(total / 18000))
            return std::nullopt;
        return total / 18000;
    }
    case 8:
        if (crossed ? std::abs(d) > 24855 : !fits(total / 300))
            return std::nullopt;
        return total / 300;
    case 9: {
        // Days and ticks are converted apart: the ticks' milliseconds are cut
        // on their own side.
        const int64_t ms = d * 86400000 + t * 10 / 3;
        if (crossed ? std::abs(d) > 24 : !fits(ms))
            return std::nullopt;
        return ms;
    }
    case 10: case 12:
        return week_index(from_dtdays(b.dtdays), Sunday) - week_index(from_dtdays(a.dtdays), Sunday);
    case 11: return iso(b.dtdays).year - iso(a.dtdays).year;
    default: return std::nullopt;
    }
}

TEST_F(Oracle, DiffEveryPartOfRandomPairs)
{
    for (int i = 0; i < kPairCases; i++) {
        const CS_DATETIME a = random_datetime();
        const CS_DATETIME b = near(a);
        for (int part = 0; part <= 13; part++) {
            CS_INT diff = 0x5a5a5a5a;
            const int status = com__datediff(part, const_cast<CS_DATETIME *>(&a), const_cast<CS_DATETIME *>(&b), &diff);
            const std::optional<int64_t> want = oracle_diff(part, a, b);
            const std::string where = "part " + std::to_string(part) + " " + std::to_string(a.dtdays) + "/" +
                                      std::to_string(a.dttime) + " to " + std::to_string(b.dtdays) + "/" +
                                      std::to_string(b.dttime);
            if (!want) {
                ASSERT_EQ(status, 1) << where;
                ASSERT_EQ(diff, 0x5a5a5a5a) << where;
            } else {
                ASSERT_EQ(status, 0) << where;
                ASSERT_EQ(diff, *want) << where;
            }
        }
    }
}

TEST_F(Oracle, BigDiffEveryPartOfRandomPairs)
{
    for (int i = 0; i < kPairCases; i++) {
        const auto a = static_cast<uint64_t>(uniform(kes::cal::kBigMin, kes::cal::kBigEnd - 1));
        const int64_t span = uniform(0, 1) ? 1000 * kMicrosPerDay : kes::cal::kBigEnd;
        const auto b = static_cast<uint64_t>(std::clamp<int64_t>(static_cast<int64_t>(a) + uniform(-span, span),
                                                                  kes::cal::kBigMin, kes::cal::kBigEnd - 1));
        const sys_days da = kBigDay0 + days{static_cast<int64_t>(a / kMicrosPerDay)};
        const sys_days db = kBigDay0 + days{static_cast<int64_t>(b / kMicrosPerDay)};
        const year_month_day ya{da}, yb{db};
        const int64_t years = static_cast<int>(yb.year()) - static_cast<int>(ya.year());
        const int64_t ma = static_cast<unsigned>(ya.month()) - 1, mb = static_cast<unsigned>(yb.month()) - 1;
        const int64_t d = (db - da).count();
        const int64_t us = static_cast<int64_t>(b) - static_cast<int64_t>(a);
        const int64_t weeks = week_index(db, Wednesday) - week_index(da, Wednesday);
        const int64_t want[15] = {years,       years * 4 + mb / 3 - ma / 3, years * 12 + mb - ma, d / 7, d, d,
                                  us / 3600000000LL, us / 60000000LL, us / 1000000, us / 1000, weeks,
                                  iso(to_dtdays(db)).year - iso(to_dtdays(da)).year, weeks, d / 7, us};
        for (int part = 0; part <= 14; part++) {
            CS_BIGINT diff = -77;
            CS_BIGDATETIME from = a, to = b;
            ASSERT_EQ(com__bigdatediff(part, &from, &to, &diff), 0);
            ASSERT_EQ(diff, want[part]) << "part " << part << " " << a << " to " << b;
        }
    }
}

} // namespace
