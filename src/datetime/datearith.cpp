// Date addition and difference for CS_DATETIME and CS_BIGDATETIME, and their
// forms on server descriptors.
#include <cstring>

#include "conv/scalar_io.h"
#include "datetime/calendar.h"
#include "errors/assert.h"

using namespace kes::cal;
using kes::conv::load;
using kes::conv::store;

namespace {

// Server type bytes of the results of the descriptor forms.
constexpr CS_BYTE kSrvDate = 49;
constexpr CS_BYTE kSrvTime = 51;
constexpr CS_BYTE kSrvDatetime4 = 58;
constexpr CS_BYTE kSrvDatetime = 61;
constexpr CS_BYTE kSrvBigdatetime = 187;
constexpr CS_BYTE kSrvBigtime = 188;

// The big types count whole days from 0000-01-01; this offset turns that count
// into the Sunday-based weekday shifted so that weeks turn on Wednesdays.
constexpr int64_t kBigDayBias = 693229;
constexpr int64_t kBigWeekBias = 693967;

bool in_int32(int64_t v) { return v >= INT32_MIN && v <= INT32_MAX; }

// Moves the year (parts 0, 11) or the month (1 quarters, 2 months) of a
// cracked date and clamps the day to the new month's length.  1 when the year
// leaves 32 bits.
int shift_calendar(int part, CS_INT value, CS_DATEREC *rec)
{
    int64_t year = rec->dateyear;
    if (part == 0 || part == 11) {
        year += value;
        if (!in_int32(year))
            return 1;
    } else {
        const int64_t months = rec->datemonth + (part == 1 ? 3 * int64_t{value} : value);
        year += months / 12;
        int64_t month = months % 12;
        if (month < 0) {
            month += 12;
            year -= 1;
        }
        rec->datemonth = static_cast<CS_INT>(month);
    }
    rec->dateyear = static_cast<CS_INT>(year);
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    const int length = (leap ? lmonthdays : monthdays)[rec->datemonth].daysinmonth;
    if (rec->datedmonth > length)
        rec->datedmonth = length;
    return 0;
}

// The new dtdays, written only when it stays within 0001-01-01 to 9999-12-31.
int add_days(CS_DATETIME *to, int64_t days)
{
    const int64_t result = to->dtdays + days;
    if (result < kMinDays || result > kMaxDays)
        return 1;
    to->dtdays = static_cast<CS_INT>(result);
    return 0;
}

// Units of a day for the time parts 6 to 9 of a CS_DATETIME.
constexpr int64_t kPerDay[4] = {24, 1440, 86400, 86400000};
constexpr int64_t kTicksPer[3] = {kTicksPerHour, kTicksPerMinute, kTicksPerSecond};

// Ticks of rest units of a time part; milliseconds round half away from zero.
int64_t rest_ticks(int part, int64_t rest)
{
    if (part == 9)
        return (3 * rest + (rest < 0 ? -5 : 5)) / 10;
    return rest * kTicksPer[part - 6];
}

// d days and t ticks as a count of `unit` ticks.  When d and t point different
// ways one day is moved into t first, so that the day part is cut toward zero
// on the same side as the time part.
int64_t tick_span(int64_t d, int64_t t, int64_t unit, int64_t per_day)
{
    if (d > 0 && t < 0)
        return (t + kTicksPerDay) / unit + (d - 1) * per_day;
    if (d < 0 && t > 0)
        return (t - kTicksPerDay) / unit + (d + 1) * per_day;
    return d * per_day + t / unit;
}

// The 32-bit overflow test made before the multiplication: when d and t point
// different ways only the days count, else the time part takes its share.
bool span_overflows(int64_t d, int64_t t, int64_t t_units, int64_t per_day, int64_t crossed_limit)
{
    const int64_t ad = d < 0 ? -d : d;
    if ((d > 0 && t < 0) || (d < 0 && t > 0))
        return ad > crossed_limit;
    const int64_t at = t_units < 0 ? -t_units : t_units;
    return ad > (INT32_MAX - at) / per_day;
}

// Weeks counted by boundaries: w is the weekday of the earlier date measured
// from the day the week starts on.
int64_t week_span(int64_t d, int64_t w) { return d >= 0 ? (d + w) / 7 : (d - w) / 7; }

int iso_year(CS_DATEREC *rec, int64_t dtdays)
{
    return com__daterecpart(11, rec, 0, static_cast<int>(dtdays), CS_DATETIME_TYPE);
}

// Year, quarter or month boundaries between two cracked dates.
int64_t calendar_span(int part, const CS_DATEREC &a, const CS_DATEREC &b)
{
    const int64_t years = int64_t{b.dateyear} - a.dateyear;
    if (part == 0)
        return years;
    if (part == 1)
        return years * 4 + (b.datemonth / 3 - a.datemonth / 3);
    return years * 12 + (b.datemonth - a.datemonth);
}

} // namespace

extern "C" {

int com__datediff(int part, CS_DATETIME *from, CS_DATETIME *to, CS_INT *diff)
{
    KES_NOT_NULL(from);
    KES_NOT_NULL(to);
    KES_NOT_NULL(diff);
    const int64_t d = int64_t{to->dtdays} - from->dtdays;
    const int64_t t = int64_t{to->dttime} - from->dttime;
    int64_t result;
    switch (part) {
    case 0: case 1: case 2: case 11: {
        CS_DATEREC a, b;
        com__datecrack(from, &a);
        com__datecrack(to, &b);
        result = part == 11 ? int64_t{iso_year(&b, to->dtdays)} - iso_year(&a, from->dtdays)
                            : calendar_span(part, a, b);
        break;
    }
    case 3: case 13:
        result = d / 7;
        break;
    case 4: case 5:
        result = d;
        break;
    case 6: // whole hours fit a day, so moving a day never changes the cut
        result = tick_span(d, t, kTicksPerHour, 24);
        break;
    case 7:
        if (span_overflows(d, t, t / kTicksPerMinute, kMinutesPerDay, 1491308))
            return 1;
        result = tick_span(d, t, kTicksPerMinute, kMinutesPerDay);
        break;
    case 8:
        if (span_overflows(d, t, t / kTicksPerSecond, 86400, 24855))
            return 1;
        result = tick_span(d, t, kTicksPerSecond, 86400);
        break;
    case 9:
        if (span_overflows(d, t, t * 10 / 3, 86400000, 24))
            return 1;
        result = d * 86400000 + t * 10 / 3;
        break;
    case 10: case 12:
        result = week_span(d, weekday(d >= 0 ? from->dtdays : to->dtdays));
        break;
    default:
        return 0;
    }
    *diff = static_cast<CS_INT>(result);
    return 0;
}

int com__bigdatediff(int part, CS_BIGDATETIME *from, CS_BIGDATETIME *to, CS_BIGINT *diff)
{
    KES_NOT_NULL(from);
    KES_NOT_NULL(to);
    KES_NOT_NULL(diff);
    const int64_t from_days = static_cast<int64_t>(*from / kMicrosPerDay) - kBigDayBias;
    const int64_t to_days = static_cast<int64_t>(*to / kMicrosPerDay) - kBigDayBias;
    const int64_t days = to_days - from_days;
    const auto micros = static_cast<int64_t>(*to - *from);
    switch (part) {
    case 0: case 1: case 2: {
        CS_DATEREC a, b;
        com__bigdatecrack(from, &a);
        com__bigdatecrack(to, &b);
        *diff = calendar_span(part, a, b);
        break;
    }
    case 11:
        *diff = int64_t{com__bigdatepart(11, to, 0)} - com__bigdatepart(11, from, 0);
        break;
    case 3: case 13:
        *diff = days / 7;
        break;
    case 4: case 5:
        *diff = days;
        break;
    case 6:
        *diff = micros / kMicrosPerHour;
        break;
    case 7:
        *diff = micros / kMicrosPerMinute;
        break;
    case 8:
        *diff = micros / kMicrosPerSecond;
        break;
    case 9:
        *diff = micros / 1000;
        break;
    case 10: case 12: {
        const int64_t w = ((days >= 0 ? from_days : to_days) + kBigWeekBias) % 7;
        *diff = week_span(days, w < 0 ? w + 7 : w);
        break;
    }
    case 14:
        *diff = micros;
        break;
    default:
        break;
    }
    return 0;
}

int com__date_add(int part, CS_INT value, CS_DATETIME *to)
{
    KES_NOT_NULL(to);
    switch (part) {
    case 0: case 11: case 1: case 2: {
        CS_DATEREC rec;
        com__datecrack(to, &rec);
        if (shift_calendar(part, value, &rec) != 0)
            return 1;
        return com__datemake(to, &rec);
    }
    case 3: case 4: case 5: case 13:
        return add_days(to, value);
    case 10: case 12:
        return add_days(to, 7 * int64_t{value});
    case 6: case 7: case 8: case 9: {
        if (to->dttime >= kTicksPerDay)
            return 1;
        const int64_t per_day = kPerDay[part - 6];
        int64_t days = value / per_day;
        int64_t time = to->dttime + rest_ticks(part, value % per_day);
        if (time >= kTicksPerDay) {
            time -= kTicksPerDay;
            days++;
        } else if (time < 0) {
            time += kTicksPerDay;
            days--;
        }
        to->dttime = static_cast<CS_INT>(time);
        return add_days(to, days);
    }
    default:
        KES_ASSERT(!"date part code");
        return CS_EOVERFLOW;
    }
}

int com__bigdate_add(int part, CS_INT value, CS_BIGDATETIME *to, CS_BYTE type)
{
    KES_NOT_NULL(to);
    int64_t unit;
    switch (part) {
    case 0: case 11: case 1: case 2: {
        CS_DATEREC rec;
        com__bigdatecrack(to, &rec);
        com__bigtimecrack(to, &rec);
        if (shift_calendar(part, value, &rec) != 0)
            return 1;
        return com_bigdatetimemake(to, &rec);
    }
    case 3: case 4: case 5: case 13: unit = kMicrosPerDay; break;
    case 10: case 12: unit = 7 * kMicrosPerDay; break;
    case 6: unit = kMicrosPerHour; break;
    case 7: unit = kMicrosPerMinute; break;
    case 8: unit = kMicrosPerSecond; break;
    case 9: unit = 1000; break;
    case 14: unit = 1; break;
    default:
        KES_ASSERT(!"date part code");
        return CS_EOVERFLOW;
    }
    // A week of microseconds times a 32-bit count needs more than 64 bits.
    const __int128 result = static_cast<__int128>(*to) + static_cast<__int128>(value) * unit;
    if (type == kSrvBigdatetime && (result < static_cast<__int128>(kBigMin) || result >= static_cast<__int128>(kBigEnd)))
        return 1;
    if (type == kSrvBigtime && (result < 0 || result > static_cast<__int128>(kBigTimeMax)))
        return 1;
    *to = static_cast<uint64_t>(result);
    return 0;
}

int com__dateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result)
{
    KES_NOT_NULL(src);
    KES_NOT_NULL(result);
    KES_NOT_NULL(src->value);
    KES_NOT_NULL(result->value);
    CS_DATETIME dt{0, 0};
    if (src->len == 8)
        dt = load<CS_DATETIME>(src->value);
    else if (src->len == 4)
        (result->type == kSrvTime ? dt.dttime : dt.dtdays) = load<CS_INT>(src->value);
    else
        return 1;
    if (com__date_add(part, value, &dt) != 0)
        return 1;

    switch (result->type) {
    case kSrvDatetime:
        if (result->maxlen != 8 || com__datetime_check_range(&dt))
            return 1;
        store(result->value, dt);
        result->len = 8;
        return 0;
    case kSrvDate:
    case kSrvTime:
        if (result->maxlen != 4)
            return 1;
        store(result->value, result->type == kSrvDate ? dt.dtdays : dt.dttime);
        result->len = 4;
        return 0;
    case kSrvDatetime4: {
        CS_DATETIME4 d4;
        if (result->maxlen != 4 || com__dttodate4(&dt, &d4) != 0)
            return 1;
        store(result->value, d4);
        result->len = 4;
        return 0;
    }
    default:
        return 1;
    }
}

int com__bigdateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result)
{
    KES_NOT_NULL(src);
    KES_NOT_NULL(result);
    KES_NOT_NULL(src->value);
    KES_NOT_NULL(result->value);
    if (src->len != 8)
        return 1;
    auto v = load<CS_BIGDATETIME>(src->value);
    if (com__bigdate_add(part, value, &v, src->type) != 0 || result->maxlen != 8)
        return 1;
    if (result->type == kSrvBigdatetime)
        store(result->value, v);
    else if (result->type == kSrvBigtime)
        store(result->value, static_cast<CS_BIGTIME>(v % kMicrosPerDay));
    else
        return 1;
    result->len = 8;
    return 0;
}

int com__valid_datetime(__CONSTANT *src, CS_BYTE *cast_buf)
{
    KES_NOT_NULL(src);
    KES_NOT_NULL(src->value);
    CS_DATETIME dt;
    if (src->len == 4) {
        auto d4 = load<CS_DATETIME4>(src->value);
        com__date4todt(&d4, &dt);
    } else {
        dt = load<CS_DATETIME>(src->value);
    }
    // A crack and make of the date, and the time's range, decide.
    CS_DATETIME by_year = dt;
    CS_DATETIME by_minute = dt;
    return com__date_add(0, 0, &by_year) == 0 && com__date_add(7, 0, &by_minute) == 0;
}

// ---- the checked entries: every kernel above asserts its pointers --------

int com_datediff(int part, CS_DATETIME *from, CS_DATETIME *to, CS_INT *diff)
{
    return com__datediff(part, from, to, diff);
}

int com_bigdatediff(int part, CS_BIGDATETIME *from, CS_BIGDATETIME *to, CS_BIGINT *diff)
{
    return com__bigdatediff(part, from, to, diff);
}

int com_date_add(int part, CS_INT value, CS_DATETIME *to) { return com__date_add(part, value, to); }

int com_bigdate_add(int part, CS_INT value, CS_BIGDATETIME *to, CS_BYTE type)
{
    return com__bigdate_add(part, value, to, type);
}

int com_dateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result)
{
    return com__dateadd_both(part, value, src, result);
}

int com_bigdateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result)
{
    return com__bigdateadd_both(part, value, src, result);
}

int com_valid_datetime(__CONSTANT *src, CS_BYTE *cast_buf) { return com__valid_datetime(src, cast_buf); }

} // extern "C"
