// Every style that keeps enough of a value to read it back does so: random
// values of each of the six date types are formatted, parsed again and
// compared with the original cut to the precision the style keeps.
#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>

#include "kescomn/datetext.h"
#include "support/context.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_UNDEFINED__)
constexpr int kRounds = 50000;
#else
constexpr int kRounds = 1000000;
#endif

struct Style {
    int style, order; // the order that reads the style's numeric date back
    char keep;        // d date only; m, s, f, u the time to the minute, second, milli-, microsecond;
                      // upper case M S F U: a time alone
    bool two_digit;   // only 1950 to 2049 come back
};

const Style kStyles[] = {
    {0, 1, 'm', 0},   {100, 1, 'm', 0}, {9, 1, 'f', 0},   {109, 1, 'f', 0}, {16, 1, 's', 0},  {116, 1, 's', 0},
    {138, 1, 'u', 0}, {139, 1, 'u', 0}, {106, 1, 'd', 0}, {107, 1, 'd', 0}, {38, 1, 'u', 1},  {39, 1, 'u', 1},
    {6, 1, 'd', 1},   {7, 1, 'd', 1},   {101, 1, 'd', 0}, {102, 3, 'd', 0}, {103, 2, 'd', 0}, {104, 2, 'd', 0},
    {105, 2, 'd', 0}, {110, 1, 'd', 0}, {111, 3, 'd', 0}, {112, 1, 'd', 0}, {113, 4, 'd', 0}, {114, 5, 'd', 0},
    {115, 6, 'd', 0}, {121, 2, 's', 0}, {122, 1, 'm', 0}, {140, 6, 'u', 0}, {23, 1, 's', 0},  {1, 1, 'd', 1},
    {2, 3, 'd', 1},   {3, 2, 'd', 1},   {4, 2, 'd', 1},   {5, 2, 'd', 1},   {10, 1, 'd', 1},  {11, 3, 'd', 1},
    {12, 1, 'd', 1},  {13, 4, 'd', 1},  {14, 5, 'd', 1},  {15, 6, 'd', 1},  {21, 3, 's', 1},  {22, 3, 'm', 1},
    {40, 3, 'u', 1},  {8, 1, 'S', 0},   {108, 1, 'S', 0}, {17, 1, 'M', 0},  {117, 1, 'M', 0}, {18, 1, 'M', 0},
    {118, 1, 'M', 0}, {19, 1, 'F', 0},  {20, 1, 'F', 0},  {36, 1, 'U', 0},  {136, 1, 'U', 0}, {37, 1, 'U', 0},
    {137, 1, 'U', 0},
};

constexpr int64_t kMicrosPerDay = 86400000000LL;
constexpr int64_t kBigMin = 31622400000000LL; // 0001-01-01 on the big scale
constexpr int kDay1 = -693595;                // 0001-01-01 in days from 1900-01-01

struct Type {
    CS_INT code;
    const char *name;
    int64_t per_day; // units of the time of day: ticks, microseconds, minutes, or 1 for none
    int min_days, max_days;
    bool has_date, has_time;
};

const Type kTypes[] = {
    {CS_DATETIME_TYPE, "datetime", 25920000, -53690, 2958463, true, true},
    {CS_BIGDATETIME_TYPE, "bigdatetime", kMicrosPerDay, kDay1, 2958463, true, true},
    {CS_DATETIME4_TYPE, "datetime4", 1440, 0, 65535, true, true},
    {CS_DATE_TYPE, "date", 1, kDay1, 2958463, true, false},
    {CS_TIME_TYPE, "time", 25920000, 0, 0, false, true},
    {CS_BIGTIME_TYPE, "bigtime", kMicrosPerDay, 0, 0, false, true},
};

// A value of any type: days from 1900-01-01 and a time of day in the type's unit.
union Storage {
    CS_DATETIME dt;
    CS_DATETIME4 dt4;
    CS_DATE date;
    CS_TIME time;
    CS_BIGDATETIME big;
    CS_BIGTIME bigtime;
};

Storage store(const Type &t, int64_t days, int64_t tod)
{
    Storage s{};
    switch (t.code) {
    case CS_DATETIME_TYPE: s.dt = {static_cast<CS_INT>(days), static_cast<CS_INT>(tod)}; break;
    case CS_DATETIME4_TYPE: s.dt4 = {static_cast<CS_USHORT>(days), static_cast<CS_USHORT>(tod)}; break;
    case CS_DATE_TYPE: s.date = static_cast<CS_INT>(days); break;
    case CS_TIME_TYPE: s.time = static_cast<CS_INT>(tod); break;
    case CS_BIGDATETIME_TYPE:
        s.big = static_cast<CS_BIGDATETIME>(kBigMin + (days - kDay1) * kMicrosPerDay + tod);
        break;
    default: s.bigtime = static_cast<CS_BIGTIME>(tod); break;
    }
    return s;
}

// The time of day as the style keeps it, in the type's unit.
int64_t kept_time(const Type &t, char keep, int64_t tod)
{
    keep = static_cast<char>(std::tolower(keep));
    if (keep == 'd' || !t.has_time)
        return 0;
    if (t.per_day == 1440 || keep == 'u' || (keep == 'f' && t.per_day != kMicrosPerDay))
        return tod; // whole minutes, or all the type holds
    const int64_t unit = t.per_day / (keep == 'm' ? 1440 : 86400);
    if (keep != 'f')
        return tod / unit * unit;
    // Microseconds round to milliseconds without a carry into the second.
    return tod / 1000000 * 1000000 + (tod % 1000000 + 500) / 1000 % 1000 * 1000;
}

// Whether the style's text of this type reads back: a time alone carries no
// date for CS_DATE, a date alone no time for the time types, and the year 1
// of a CS_BIGTIME survives only four zero-filled digits.
bool applies(const Type &t, const Style &s)
{
    const bool time_only = std::isupper(s.keep);
    if ((!t.has_time && time_only) || (!t.has_date && s.keep == 'd'))
        return false;
    return !(t.code == CS_BIGTIME_TYPE && !time_only && (s.two_digit || s.style == 100 || s.style == 109));
}

TEST(DateRoundTrip, EveryStyleEveryType)
{
    using namespace std::chrono;
    // The two-digit years by the standard library's calendar, not the library's.
    const sys_days base{1900y / January / 1};
    const int lo2 = (sys_days{1950y / January / 1} - base).count();
    const int hi2 = (sys_days{2049y / December / 31} - base).count();
    std::mt19937_64 rng(0x5eed);
    int checked = 0;
    for (int i = 0; i < kRounds; i++) {
        const Type &t = kTypes[i % std::size(kTypes)];
        const Style &s = kStyles[(i / std::size(kTypes)) % std::size(kStyles)];
        if (!applies(t, s))
            continue;
        const bool two = s.two_digit && t.has_date;
        const int64_t days = std::uniform_int_distribution<int64_t>(two ? std::max(t.min_days, lo2) : t.min_days,
                                                                    two ? std::min(t.max_days, hi2) : t.max_days)(rng);
        const int64_t tod = t.has_time ? std::uniform_int_distribution<int64_t>(0, t.per_day - 1)(rng) : 0;
        Storage in = store(t, days, tod), out{};
        char text[64];
        const CS_INT n = comn_date_format(t.code, &in, s.style, nullptr, text, sizeof text);
        ASSERT_GT(n, 0) << t.name << " style " << s.style;
        const CS_INT rc = comn_date_parse(t.code, text, n, 0, s.order, nullptr, nullptr, nullptr, &out, nullptr);
        // A time alone falls on the type's base date.
        const int64_t day0 = t.code == CS_BIGDATETIME_TYPE ? kDay1 : 0;
        const Storage want = store(t, std::isupper(s.keep) ? day0 : days, kept_time(t, s.keep, tod));
        ASSERT_EQ(rc, 0) << t.name << " style " << s.style << " '" << std::string(text, n) << "'";
        ASSERT_EQ(std::memcmp(&out, &want, sizeof out), 0)
            << t.name << " style " << s.style << " '" << std::string(text, n) << "': got "
            << kes::test::hex(&out, sizeof out) << ", want " << kes::test::hex(&want, sizeof want);
        checked++;
    }
    EXPECT_GT(checked, kRounds / 2);
}

} // namespace
