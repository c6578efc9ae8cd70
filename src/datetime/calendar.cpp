// Calendar tables, crack and make of the six storage types, comparison, range
// checks and small setters.  Integer arithmetic only.
#include "datetime/calendar.h"

#include <cstring>

#include "errors/assert.h"

using namespace kes::cal;

extern "C" {

const MONTHCNT monthdays[12] = {{31, 0},    {28, 31},   {31, 59},   {30, 90},
                                {31, 120},  {30, 151},  {31, 181},  {31, 212},
                                {30, 243},  {31, 273},  {30, 304},  {31, 334}};
const MONTHCNT lmonthdays[12] = {{31, 0},   {29, 31},   {31, 60},   {30, 91},
                                 {31, 121}, {30, 152},  {31, 182},  {31, 213},
                                 {30, 244}, {31, 274},  {30, 305},  {31, 335}};
const int week_one_offset[7] = {1, 0, -1, -2, -3, 3, 2};

} // extern "C"

namespace {

constexpr bool is_leap(int64_t year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr int64_t leap_count(int64_t year)
{
    return year < 0 ? 0 : year / 4 - year / 100 + year / 400;
}

const MONTHCNT *month_table(int64_t dateyear) { return is_leap(dateyear) ? lmonthdays : monthdays; }

// Validates year, month and day of month and adds each one's days to *acc as
// it passes, so a failing field leaves the sum of those before it.
int make_days(const CS_DATEREC *pp, int64_t *acc)
{
    if (pp->dateyear < 1 || pp->dateyear > 9999)
        return 1;
    const auto year = static_cast<uint32_t>(pp->dateyear);
    *acc += days_before_year(year);
    if (static_cast<uint32_t>(pp->datemonth) > 11)
        return 2;
    const MONTHCNT &month = month_row(year, static_cast<uint32_t>(pp->datemonth));
    *acc += month.daysum;
    if (pp->datedmonth < 1 || pp->datedmonth > month.daysinmonth)
        return 3;
    *acc += pp->datedmonth;
    return 0;
}

// Validates hour, minute and second, accumulating seconds.
int make_seconds(const CS_DATEREC *pp, uint32_t hour_max, int64_t *acc)
{
    if (static_cast<uint32_t>(pp->datehour) > hour_max)
        return 4;
    *acc += int64_t{pp->datehour} * 3600;
    if (static_cast<uint32_t>(pp->dateminute) > 59)
        return 5;
    *acc += int64_t{pp->dateminute} * 60;
    if (static_cast<uint32_t>(pp->datesecond) > 59)
        return 6;
    *acc += pp->datesecond;
    return 0;
}

// Hour, minute and second of a count of seconds since midnight.
void split_seconds(uint32_t seconds, CS_DATEREC *pp)
{
    const uint32_t minutes = seconds / 60;
    const uint32_t hours = minutes / 60;
    pp->datehour = static_cast<CS_INT>(hours);
    pp->dateminute = static_cast<CS_INT>(minutes - hours * 60);
    pp->datesecond = static_cast<CS_INT>(seconds - minutes * 60);
}

// Date fields of a day count from 0001-01-01 (dtdays + 693595).
void crack_days(int64_t days, CS_DATEREC *pp)
{
    if (days < 0) {
        // Before year 1 no leap days are counted: whole years of 365 days.
        const int64_t y = days / 365 - (days % 365 != 0);
        const int64_t doy = days - 365 * y;
        const MONTHCNT *months = month_table(y + 1);
        int m = 11;
        while (doy < months[m].daysum)
            m--;
        pp->dateyear = static_cast<CS_INT>(y + 1);
        pp->datemonth = m;
        pp->datedmonth = static_cast<CS_INT>(doy - months[m].daysum + 1);
        pp->datedyear = static_cast<CS_INT>(doy + 1);
        pp->datedweek = weekday(days - kEpochDays);
        return;
    }
    // Counted from 0000-03-01 the leap day ends each year.  Centuries, years
    // and months are then affine functions of the day count, each quotient
    // and remainder coming from one multiplication (Neri and Schneider's
    // Euclidean affine calendar functions).
    const uint64_t n1 = 4 * (static_cast<uint64_t>(days) + 306) + 3;
    const auto century = static_cast<uint32_t>(n1 / 146097);
    const auto n2 = static_cast<uint32_t>(n1 % 146097) | 3;    // 4 * day of century + 3
    const uint64_t u2 = uint64_t{2939745} * n2;
    const auto year_of_century = static_cast<uint32_t>(u2 >> 32);
    const uint32_t doy = static_cast<uint32_t>(u2) / 2939745 / 4; // from March 1
    const uint32_t n3 = 2141 * doy + 197913;
    const uint32_t month = n3 >> 16;                            // 3 is March, 14 February
    const uint32_t jan = doy > 305; // January and February close the year
    const uint32_t leap = (year_of_century & 3) == 0 && (year_of_century != 0 || (century & 3) == 0);
    pp->dateyear = static_cast<CS_INT>(100 * century + year_of_century + jan);
    pp->datemonth = static_cast<CS_INT>(month - 1 - 12 * jan);
    pp->datedmonth = static_cast<CS_INT>((n3 & 0xffff) / 2141 + 1);
    pp->datedyear = static_cast<CS_INT>(doy + 60 + leap - jan * (365 + leap));
    pp->datedweek = static_cast<CS_INT>((static_cast<uint32_t>(days) + 1) % 7);
}

// Microseconds of midnight of the date, written only on success.
int make_big_date(const CS_DATEREC *pp, uint64_t *out)
{
    int64_t days = 0;
    const int status = make_days(pp, &days);
    if (status == 0)
        *out = static_cast<uint64_t>(days - 1) * kMicrosPerDay + kBigMin;
    return status;
}

// Microseconds since midnight, written only on success.
int make_big_time(const CS_DATEREC *pp, uint64_t *out)
{
    int64_t seconds = 0;
    const int status = make_seconds(pp, 23, &seconds);
    if (status != 0)
        return status;
    const int64_t frac = pp->datesecprec == 1000000 ? int64_t{pp->datesecfrac}
                                                    : int64_t{pp->datemsecond} * 1000;
    if (frac < 0 || frac > 999999)
        return 7;
    *out = static_cast<uint64_t>(seconds * kMicrosPerSecond + frac);
    return 0;
}

template <class T> CS_INT compare(T a, T b) { return a < b ? -1 : (a > b ? 1 : 0); }

} // namespace

extern "C" {

int leapyear(int year) { return is_leap(int64_t{year} + 1) ? 1 : 0; }

int com__leapcnt(int year) { return static_cast<int>(leap_count(year)); }

void com__datecrack(CS_DATETIME *dtp, CS_DATEREC *pp) { crack_days(int64_t{dtp->dtdays} + kEpochDays, pp); }

void com__timecrack(CS_DATETIME *dtp, CS_DATEREC *pp)
{
    const auto ticks = static_cast<uint32_t>(dtp->dttime) & 0x1ffffff;
    const uint32_t seconds = ticks / kTicksPerSecond;
    split_seconds(seconds, pp);
    pp->datemsecond = static_cast<CS_INT>((ticks - seconds * kTicksPerSecond) * 10 / 3);
    pp->datesecprec = kTicksPerSecond;
    pp->datesecfrac = 0;
}

void com__bigdatecrack(CS_BIGDATETIME *bdt, CS_DATEREC *pp) { crack_days(int64_t{big_days(*bdt)} + kEpochDays, pp); }

void com__bigtimecrack(CS_BIGDATETIME *bdt, CS_DATEREC *pp)
{
    const uint64_t us = *bdt % kMicrosPerDay;
    const auto seconds = static_cast<uint32_t>(us / kMicrosPerSecond);
    split_seconds(seconds, pp);
    pp->datemsecond = 0;
    pp->datesecprec = static_cast<CS_INT>(kMicrosPerSecond);
    pp->datesecfrac = static_cast<CS_INT>(us - uint64_t{seconds} * kMicrosPerSecond);
}

int com__datemake(CS_DATETIME *dtp, CS_DATEREC *pp)
{
    int64_t days = 0;
    const int status = make_days(pp, &days);
    dtp->dtdays = static_cast<CS_INT>(status == 0 ? days - (kEpochDays + 1) : days);
    return status;
}

int com__timemake(CS_DATETIME *dtp, CS_DATEREC *pp)
{
    int64_t seconds = 0;
    int status = make_seconds(pp, 23, &seconds);
    int64_t ticks = seconds * kTicksPerSecond;
    if (status == 0) {
        const CS_INT ms = pp->datesecprec == 1000000 ? pp->datesecfrac / 1000 : pp->datemsecond;
        if (ms < 0 || ms > 999)
            status = 7;
        else // 999 ms would round to 300 ticks, the next second
            ticks += ms == 999 ? 299 : (3 * ms + 5) / 10;
    }
    dtp->dttime = static_cast<CS_INT>(ticks);
    return status;
}

int com__bigdatemake(CS_BIGDATETIME *bdt, CS_DATEREC *pp) { return make_big_date(pp, bdt); }

int com__bigtimemake(CS_BIGTIME *bt, CS_DATEREC *pp) { return make_big_time(pp, bt); }

int com__datecmp(CS_DATETIME *date1, CS_DATETIME *date2)
{
    int64_t diff = int64_t{date1->dtdays} - date2->dtdays;
    if (diff == 0)
        diff = int64_t{date1->dttime} - date2->dttime;
    return diff < 0 ? (diff < INT32_MIN ? INT32_MIN : static_cast<int>(diff))
                    : (diff > INT32_MAX ? INT32_MAX : static_cast<int>(diff));
}

int com__datetime_check_range(CS_DATETIME *dtp) { return dtp->dtdays < kMinDatetimeDays; }

int com__bigdatetime_check_range(CS_BIGDATETIME *bdt) { return *bdt < kBigMin || *bdt >= kBigEnd; }

int com__datea_check_range(CS_DATE *dp) { return *dp < kMinDays || *dp > kMaxDays; }

int com__timea_check_range(CS_TIME *tp) { return *tp < 0 || *tp >= kTicksPerDay; }

int com__bigtime_check_range(CS_BIGTIME *bt) { return *bt > kBigTimeMax; }

int com__year2digit(int year)
{
    if (year < 0 || year > 99)
        return 1;
    return year < 50 ? 2000 + year : 1900 + year;
}

void com__dtrec_cp(CS_DATEREC *source, CS_DATEREC *target, CS_INT datetype)
{
    const CS_INT secfrac = target->datesecfrac;
    const CS_INT secprec = target->datesecprec;
    *target = *source;
    if (datetype != CS_BIGDATETIME_TYPE && datetype != CS_BIGTIME_TYPE) {
        target->datesecfrac = secfrac;
        target->datesecprec = secprec;
    }
}

// ---- the exported layer: argument checks around the kernels --------------

void com_datecrack(CS_DATETIME *dtp, CS_DATEREC *pp)
{
    KES_NOT_NULL(dtp);
    KES_NOT_NULL(pp);
    com__datecrack(dtp, pp);
}

void com_timecrack(CS_DATETIME *dtp, CS_DATEREC *pp)
{
    KES_NOT_NULL(dtp);
    KES_NOT_NULL(pp);
    com__timecrack(dtp, pp);
}

void com_bigdatecrack(CS_BIGDATETIME *bdt, CS_DATEREC *pp)
{
    KES_NOT_NULL(bdt);
    KES_NOT_NULL(pp);
    com__bigdatecrack(bdt, pp);
}

void com_bigtimecrack(CS_BIGDATETIME *bdt, CS_DATEREC *pp)
{
    KES_NOT_NULL(bdt);
    KES_NOT_NULL(pp);
    com__bigtimecrack(bdt, pp);
}

CS_INT com_datemake(CS_DATETIME *dtp, CS_DATEREC *pp)
{
    KES_NOT_NULL(dtp);
    KES_NOT_NULL(pp);
    return com__datemake(dtp, pp);
}

CS_INT com_timemake(CS_DATETIME *dtp, CS_DATEREC *pp)
{
    KES_NOT_NULL(dtp);
    KES_NOT_NULL(pp);
    return com__timemake(dtp, pp);
}

CS_INT com_bigdatemake(CS_BIGDATETIME *bdt, CS_DATEREC *pp)
{
    KES_NOT_NULL(bdt);
    KES_NOT_NULL(pp);
    return com__bigdatemake(bdt, pp);
}

CS_INT com_bigtimemake(CS_BIGTIME *bt, CS_DATEREC *pp)
{
    KES_NOT_NULL(bt);
    KES_NOT_NULL(pp);
    return com__bigtimemake(bt, pp);
}

CS_INT com_bigdatetimemake(CS_BIGDATETIME *bdt, CS_DATEREC *pp)
{
    KES_NOT_NULL(bdt);
    KES_NOT_NULL(pp);
    uint64_t date, time;
    int status = make_big_date(pp, &date);
    if (status == 0)
        status = make_big_time(pp, &time);
    if (status == 0)
        *bdt = date + time;
    return status;
}

CS_INT com_datecmp(CS_DATETIME *date1, CS_DATETIME *date2)
{
    KES_NOT_NULL(date1);
    KES_NOT_NULL(date2);
    return compare(com__datecmp(date1, date2), 0);
}

CS_INT com_date4cmp(CS_DATETIME4 *date1, CS_DATETIME4 *date2)
{
    KES_NOT_NULL(date1);
    KES_NOT_NULL(date2);
    if (date1->days != date2->days)
        return compare(date1->days, date2->days);
    return compare(date1->minutes, date2->minutes);
}

CS_INT com_dateacmp(CS_DATE *date1, CS_DATE *date2)
{
    KES_NOT_NULL(date1);
    KES_NOT_NULL(date2);
    return compare(*date1, *date2);
}

CS_INT com_timeacmp(CS_TIME *time1, CS_TIME *time2)
{
    KES_NOT_NULL(time1);
    KES_NOT_NULL(time2);
    return compare(*time1, *time2);
}

CS_INT com_bigdatetimecmp(CS_BIGDATETIME *date1, CS_BIGDATETIME *date2)
{
    KES_NOT_NULL(date1);
    KES_NOT_NULL(date2);
    return compare(*date1, *date2);
}

void com_datezero(CS_DATETIME *dtp)
{
    KES_NOT_NULL(dtp);
    dtp->dtdays = 0;
    dtp->dttime = 0;
}

void com_date4zero(CS_DATETIME4 *dtp4)
{
    KES_NOT_NULL(dtp4);
    dtp4->days = 0;
    dtp4->minutes = 0;
}

void com_setdatetime(CS_DATETIME *dateptr, CS_INT dtdays, CS_INT dttime)
{
    KES_NOT_NULL(dateptr);
    dateptr->dtdays = dtdays;
    dateptr->dttime = dttime;
}

} // extern "C"
