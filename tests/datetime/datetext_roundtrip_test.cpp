// Every style that keeps enough of a value to read it back does so: random
// values of each of the six date types are formatted, parsed again and
// compared to the original cut to the precision the style keeps.
#include <cstring>
#include <random>
#include <string>

#include "datetime/calendar.h"
#include "kescomn/datetext.h"
#include "support/context.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_UNDEFINED__)
constexpr int kRounds = 50000;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(undefined_behavior_sanitizer)
constexpr int kRounds = 50000;
#else
constexpr int kRounds = 1000000;
#endif
#else
constexpr int kRounds = 1000000;
#endif

// What a style keeps of the time of day, and whether it shows a date.
enum class Keep { date, minute, second, milli, micro };

struct Style {
    int style;
    int order;      // the order that reads the style's numeric date back
    bool two_digit; // the year has two digits: only 1950 to 2049 come back
    bool time_only; // no date in the text
    Keep keep;
};

const Style kStyles[] = {
    // named months
    {0, 1, false, false, Keep::minute},   {100, 1, false, false, Keep::minute},
    {9, 1, false, false, Keep::milli},    {109, 1, false, false, Keep::milli},
    {16, 1, false, false, Keep::second},  {116, 1, false, false, Keep::second},
    {138, 1, false, false, Keep::micro},  {139, 1, false, false, Keep::micro},
    {106, 1, false, false, Keep::date},   {107, 1, false, false, Keep::date},
    {38, 1, true, false, Keep::micro},    {39, 1, true, false, Keep::micro},
    {6, 1, true, false, Keep::date},      {7, 1, true, false, Keep::date},
    // numeric dates, four-digit years
    {101, 1, false, false, Keep::date},   {102, 3, false, false, Keep::date},
    {103, 2, false, false, Keep::date},   {104, 2, false, false, Keep::date},
    {105, 2, false, false, Keep::date},   {110, 1, false, false, Keep::date},
    {111, 3, false, false, Keep::date},   {112, 1, false, false, Keep::date},
    {113, 4, false, false, Keep::date},   {114, 5, false, false, Keep::date},
    {115, 6, false, false, Keep::date},   {121, 2, false, false, Keep::second},
    {122, 1, false, false, Keep::minute}, {140, 6, false, false, Keep::micro},
    {23, 1, false, false, Keep::second},
    // numeric dates, two-digit years
    {1, 1, true, false, Keep::date},      {2, 3, true, false, Keep::date},
    {3, 2, true, false, Keep::date},      {4, 2, true, false, Keep::date},
    {5, 2, true, false, Keep::date},      {10, 1, true, false, Keep::date},
    {11, 3, true, false, Keep::date},     {12, 1, true, false, Keep::date},
    {13, 4, true, false, Keep::date},     {14, 5, true, false, Keep::date},
    {15, 6, true, false, Keep::date},     {21, 3, true, false, Keep::second},
    {22, 3, true, false, Keep::minute},   {40, 3, true, false, Keep::micro},
    // times alone
    {8, 1, false, true, Keep::second},    {108, 1, false, true, Keep::second},
    {17, 1, false, true, Keep::minute},   {117, 1, false, true, Keep::minute},
    {18, 1, false, true, Keep::minute},   {118, 1, false, true, Keep::minute},
    {19, 1, false, true, Keep::milli},    {20, 1, false, true, Keep::milli},
    {36, 1, false, true, Keep::micro},    {136, 1, false, true, Keep::micro},
    {37, 1, false, true, Keep::micro},    {137, 1, false, true, Keep::micro},
};

constexpr int64_t kMicrosPerDay = 86400000000LL;

// A type's values as days (dtdays) and a time of day in the type's unit.
struct Type {
    CS_INT code;
    const char *name;
    int64_t per_day;   // units of the time of day: 25920000 ticks, microseconds, 1440 minutes, 1 for none
    int min_days, max_days;
    bool has_date, has_time;
};

const Type kTypes[] = {
    {CS_DATETIME_TYPE, "datetime", 25920000, -53690, 2958463, true, true},
    {CS_BIGDATETIME_TYPE, "bigdatetime", kMicrosPerDay, -693595, 2958463, true, true},
    {CS_DATETIME4_TYPE, "datetime4", 1440, 0, 65535, true, true},
    {CS_DATE_TYPE, "date", 1, -693595, 2958463, true, false},
    {CS_TIME_TYPE, "time", 25920000, 0, 0, false, true},
    {CS_BIGTIME_TYPE, "bigtime", kMicrosPerDay, 0, 0, false, true},
};

struct Value {
    int64_t days, tod;
    bool operator==(const Value &) const = default;
};

union Storage {
    CS_DATETIME dt;
    CS_DATETIME4 dt4;
    CS_DATE date;
    CS_TIME time;
    CS_BIGDATETIME big;
    CS_BIGTIME bigtime;
};

Storage store(const Type &t, Value v)
{
    Storage s{};
    switch (t.code) {
    case CS_DATETIME_TYPE: s.dt = {static_cast<CS_INT>(v.days), static_cast<CS_INT>(v.tod)}; break;
    case CS_DATETIME4_TYPE: s.dt4 = {static_cast<CS_USHORT>(v.days), static_cast<CS_USHORT>(v.tod)}; break;
    case CS_DATE_TYPE: s.date = static_cast<CS_INT>(v.days); break;
    case CS_TIME_TYPE: s.time = static_cast<CS_INT>(v.tod); break;
    case CS_BIGDATETIME_TYPE:
        s.big = static_cast<CS_BIGDATETIME>(31622400000000LL + (v.days + 693595) * kMicrosPerDay + v.tod);
        break;
    default: s.bigtime = static_cast<CS_BIGTIME>(v.tod); break;
    }
    return s;
}

Value load(const Type &t, const Storage &s)
{
    switch (t.code) {
    case CS_DATETIME_TYPE: return {s.dt.dtdays, s.dt.dttime};
    case CS_DATETIME4_TYPE: return {s.dt4.days, s.dt4.minutes};
    case CS_DATE_TYPE: return {s.date, 0};
    case CS_TIME_TYPE: return {0, s.time};
    case CS_BIGDATETIME_TYPE: {
        const int64_t since = static_cast<int64_t>(s.big) - 31622400000000LL;
        return {since / kMicrosPerDay - 693595, since % kMicrosPerDay};
    }
    default: return {0, static_cast<int64_t>(s.bigtime)};
    }
}

// The time of day as the style keeps it, in the type's unit.
int64_t kept_time(const Type &t, Keep keep, int64_t tod)
{
    if (keep == Keep::date)
        return 0;
    if (t.per_day <= 1440) // whole minutes, or no time at all
        return tod;
    const int64_t per_minute = t.per_day / 1440;
    const int64_t per_second = t.per_day / 86400;
    switch (keep) {
    case Keep::date: return 0;
    case Keep::minute: return tod / per_minute * per_minute;
    case Keep::second: return tod / per_second * per_second;
    case Keep::milli:
        // Microseconds round to milliseconds without a carry into the second.
        if (t.per_day == kMicrosPerDay)
            return tod / 1000000 * 1000000 + (tod % 1000000 + 500) / 1000 % 1000 * 1000;
        return tod;
    case Keep::micro: return tod;
    }
    return tod;
}

// dtdays of January 1 of a year.
int jan1(int year)
{
    CS_DATEREC r{};
    r.dateyear = year;
    r.datedmonth = 1;
    CS_DATETIME dt{};
    EXPECT_EQ(com_datemake(&dt, &r), 0);
    return dt.dtdays;
}

// Whether the style's text of this type reads back as the same value: times
// alone carry no date for CS_DATE, date-only styles show nothing of a time,
// and the base date of a CS_BIGTIME (year 1) survives only four zero-filled
// year digits.
bool applies(const Type &t, const Style &s)
{
    if (!t.has_time && s.time_only)
        return false;
    if (!t.has_date && s.keep == Keep::date)
        return false;
    if (t.code == CS_BIGTIME_TYPE && !s.time_only && (s.two_digit || s.style == 100 || s.style == 109))
        return false;
    return true;
}

TEST(DateRoundTrip, EveryStyleEveryType)
{
    std::mt19937_64 rng(0x5eed);
    const int lo2 = jan1(1950), hi2 = jan1(2050) - 1;
    int checked = 0;
    for (int i = 0; i < kRounds; i++) {
        const Type &t = kTypes[i % std::size(kTypes)];
        const Style &s = kStyles[(i / std::size(kTypes)) % std::size(kStyles)];
        if (!applies(t, s))
            continue;
        int lo = t.min_days, hi = t.max_days;
        if (s.two_digit && t.has_date) {
            lo = std::max(lo, lo2);
            hi = std::min(hi, hi2);
        }
        const Value v{std::uniform_int_distribution<int64_t>(lo, hi)(rng),
                t.has_time ? std::uniform_int_distribution<int64_t>(0, t.per_day - 1)(rng) : 0};
        Storage in = store(t, v);
        char text[64];
        const CS_INT n = comn_date_format(t.code, &in, s.style, nullptr, text, sizeof text);
        ASSERT_GT(n, 0) << t.name << " style " << s.style;

        Storage out{};
        const CS_INT rc =
            comn_date_parse(t.code, text, n, 0, s.order, nullptr, nullptr, nullptr, &out, nullptr);
        Value want{s.time_only || s.keep == Keep::date ? 0 : v.days, kept_time(t, s.keep, v.tod)};
        if (s.keep == Keep::date)
            want.days = v.days;
        if (s.time_only)
            want.days = t.code == CS_BIGDATETIME_TYPE ? -693595 : 0;
        if (!t.has_date)
            want.days = 0;
        if (!t.has_time)
            want.tod = 0;
        const Value got = load(t, out);
        ASSERT_EQ(rc, 0) << t.name << " style " << s.style << " '" << std::string(text, n) << "'";
        ASSERT_TRUE(got == want) << t.name << " style " << s.style << " '" << std::string(text, n) << "': days "
                                 << got.days << " time " << got.tod << ", want " << want.days << " " << want.tod;
        checked++;
    }
    EXPECT_GT(checked, kRounds / 2);
}

} // namespace
