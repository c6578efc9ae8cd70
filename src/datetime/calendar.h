/*
** Private names of the calendar: crack and make of the six storage types, the
** calendar tables, range checks and the kernels between the types.  The
** arithmetic that other libraries of the stack call is in kescomn/datetime.h.
*/
#ifndef KESCOMN_DATETIME_CALENDAR_H
#define KESCOMN_DATETIME_CALENDAR_H

#include "intl/date_defaults.h"
#include "kescomn/datetime.h"

#ifdef __cplusplus
#include <cstdint>

namespace kes::cal {

inline constexpr CS_INT kTicksPerDay = 25920000;
inline constexpr CS_INT kTicksPerHour = 1080000;
inline constexpr CS_INT kTicksPerMinute = 18000;
inline constexpr CS_INT kTicksPerSecond = 300;
inline constexpr CS_INT kMinutesPerDay = 1440;
inline constexpr int64_t kMicrosPerDay = 86400000000LL;
inline constexpr int64_t kMicrosPerHour = 3600000000LL;
inline constexpr int64_t kMicrosPerMinute = 60000000LL;
inline constexpr int64_t kMicrosPerSecond = 1000000LL;

// dtdays of 0001-01-01 is -kEpochDays; dtdays 0 (1900-01-01) is a Monday.
inline constexpr CS_INT kEpochDays = 693595;
inline constexpr CS_INT kMinDays = -693595;     // 0001-01-01
inline constexpr CS_INT kMaxDays = 2958463;     // 9999-12-31
inline constexpr CS_INT kMinDatetimeDays = -53690; // 1753-01-01

// CS_BIGDATETIME counts from 0000-01-01, a leap year of 366 days.
inline constexpr uint64_t kBigMin = 31622400000000ULL;     // 0001-01-01 00:00
inline constexpr uint64_t kBigEnd = 315569520000000000ULL; // 10000-01-01 00:00
inline constexpr uint64_t kBigTimeMax = 86399999999ULL;

// Sunday-based weekday (0 is Sunday) of a dtdays; 0 to 6 for any input, so
// that it can index a list of names.
constexpr int weekday(int64_t dtdays)
{
    const int64_t r = (dtdays + kEpochDays + 1) % 7;
    return static_cast<int>(r < 0 ? r + 7 : r);
}

// The dtdays of a CS_BIGDATETIME's date.
constexpr CS_INT big_days(uint64_t value)
{
    return static_cast<CS_INT>(static_cast<int64_t>((value - kBigMin) / kMicrosPerDay) - kEpochDays);
}

} // namespace kes::cal
#endif

KES_BEGIN_DECLS

/* One month of the calendar tables: its length and the days before it. */
typedef struct monthcnt {
    short daysinmonth;
    short daysum;
} MONTHCNT;

/* Months of a common year and of a leap year. */
extern const MONTHCNT monthdays[12];
extern const MONTHCNT lmonthdays[12];
/* By the weekday of January 1 (0 is Sunday): the distance from January 1 to
   the Monday of ISO week 1. */
extern const int week_one_offset[7];

KES_END_DECLS

#ifdef __cplusplus
namespace kes::cal {

// Days from 0001-01-01 to January 1 of year (1..9999).
constexpr int64_t days_before_year(uint32_t year)
{
    const uint32_t prior = year - 1, centuries = prior / 100;
    return int64_t{365} * prior + prior / 4 - centuries + centuries / 4;
}

// The calendar row of month (0..11) in year (1..9999).  A leap year is a
// multiple of 4 that is a multiple of 100 only if also of 400, which for a
// multiple of 25 means of 16; it picks the table by index, since a branch
// mispredicts on random years.
inline const MONTHCNT &month_row(uint32_t year, uint32_t month)
{
    static const MONTHCNT *const tables[2] = {monthdays, lmonthdays};
    const unsigned leap = ((year & 3) == 0) & ((year % 25 != 0) | ((year & 15) == 0));
    return tables[leap][month];
}

} // namespace kes::cal
#endif

KES_BEGIN_DECLS

/* 1 when year + 1 is a leap year: the argument counts years from 0, so callers
   pass dateyear - 1. */
int leapyear(int year);
/* Leap days in the years 1 to year; 0 for a negative year. */
int com__leapcnt(int year);

/* Date fields (year, month, day of month, day of year, weekday) of a dtdays.
   Writes no other field and validates nothing. */
void com__datecrack(CS_DATETIME *dtp, CS_DATEREC *pp);
/* Time fields of the low 25 bits of dttime; datesecprec 300, datesecfrac 0. */
void com__timecrack(CS_DATETIME *dtp, CS_DATEREC *pp);
/* Date fields of a CS_BIGDATETIME. */
void com__bigdatecrack(CS_BIGDATETIME *bdt, CS_DATEREC *pp);
/* Time fields of a microsecond time (the value modulo one day); datemsecond 0,
   datesecprec 1000000, datesecfrac the microseconds. */
void com__bigtimecrack(CS_BIGDATETIME *bdt, CS_DATEREC *pp);

/* dtdays from year, month and day of month.  0, or 1 year, 2 month, 3 day out
   of range; dtdays is built up as the fields pass, so a failure leaves a
   partial value there. */
int com__datemake(CS_DATETIME *dtp, CS_DATEREC *pp);
/* dttime from hour, minute, second and milliseconds (datesecfrac / 1000 when
   datesecprec is 1000000).  0, or 4 hour, 5 minute, 6 second, 7 millisecond
   out of range; partial like com__datemake.  Milliseconds never round up into
   the next second. */
int com__timemake(CS_DATETIME *dtp, CS_DATEREC *pp);
/* Midnight of the date as a CS_BIGDATETIME; statuses of com__datemake.  The
   value is written only on success. */
int com__bigdatemake(CS_BIGDATETIME *bdt, CS_DATEREC *pp);
/* Microseconds since midnight; statuses of com__timemake.  The fraction is
   datesecfrac at precision 1000000, else datemsecond * 1000.  Written only on
   success. */
int com__bigtimemake(CS_BIGTIME *bt, CS_DATEREC *pp);

/* The kernels behind the checked entries of kescomn/datetime.h (com_datepart
   and the like), with the same contracts. */
int com__datepart(int part, CS_DATETIME *to, int firstday);
int com__bigdatepart(int part, CS_BIGDATETIME *bdt, int firstday);
int com__datename(int part, CS_DATETIME *date, char *cp, char **months, char **days);
int com__bigdatename(int part, CS_BIGDATETIME *bdt, char *cp, char **months, char **days);
int com__datediff(int part, CS_DATETIME *from, CS_DATETIME *to, CS_INT *diff);
int com__bigdatediff(int part, CS_BIGDATETIME *from, CS_BIGDATETIME *to, CS_BIGINT *diff);
int com__date_add(int part, CS_INT value, CS_DATETIME *to);
int com__bigdate_add(int part, CS_INT value, CS_BIGDATETIME *to, CS_BYTE type);
int com__dateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result);
int com__bigdateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result);
int com__valid_datetime(__CONSTANT *src, CS_BYTE *cast_buf);

/* part (0 to 14) of a cracked record.  dayselapsed is the dtdays of the date,
   odatetype 12 or 35 says where milli- and microseconds come from.  A bad
   part is an assertion failure, then -101. */
int com__daterecpart(int part, CS_DATEREC *t, int firstday, int dayselapsed, CS_INT odatetype);

/* Name or number of a part into cp, at most 30 bytes, unterminated; the length
   written.  value is the part's value, dayselapsed the dtdays that names the
   weekday.  0 for a null name list, a part outside 0 to 14 or a month outside
   1 to 12. */
int com__datenameval(int part, char *cp, char **months, char **days, int value, int dayselapsed);

/* Sign of date1 - date2 by days, then ticks (clamped into int). */
int com__datecmp(CS_DATETIME *date1, CS_DATETIME *date2);

/* Range checks: 1 when out of range, else 0. */
int com__datetime_check_range(CS_DATETIME *dtp);   /* only below 1753-01-01 */
int com__bigdatetime_check_range(CS_BIGDATETIME *bdt);
int com__datea_check_range(CS_DATE *dp);
int com__timea_check_range(CS_TIME *tp);
int com__bigtime_check_range(CS_BIGTIME *bt);

/* A two-digit year 0 to 99 with the pivot 50 (0-49 are 20xx); 1 otherwise. */
int com__year2digit(int year);

/* Copies the date and time fields; datesecfrac and datesecprec only when
   datetype is 35 or 36. */
void com__dtrec_cp(CS_DATEREC *source, CS_DATEREC *target, CS_INT datetype);

/* ---- kernels between the types ------------------------------------------ */

/* To CS_DATETIME4, minutes rounded to nearest (30 s up).  1 when the day is
   outside 0 to 65535, before or after the carry; nothing written then. */
int com__dttodate4(CS_DATETIME *dtp, CS_DATETIME4 *dtp4);
/* The same from a CS_BIGDATETIME; 29.5 s already rounds up. */
int com__bigdttodate4(CS_BIGDATETIME *bdt, CS_DATETIME4 *dtp4);
void com__date4todt(CS_DATETIME4 *dtp4, CS_DATETIME *dtp);
void com__date4tobigdatetime(CS_DATETIME4 *dtp4, CS_BIGDATETIME *bdt);
void com__date4tobigtime(CS_DATETIME4 *dtp4, CS_BIGTIME *bt);
void com__datetodatea(CS_DATETIME *dtp, CS_DATE *dp);
void com__datetotimea(CS_DATETIME *dtp, CS_TIME *tp);
/* Crack and make; the status of the make. */
int com__datetobigdatetime(CS_DATETIME *dtp, CS_BIGDATETIME *bdt);
int com__datetobigtime(CS_DATETIME *dtp, CS_BIGTIME *bt);
void com__bigdatetimetodatea(CS_BIGDATETIME *bdt, CS_DATE *dp);
void com__bigdatetimetobigtime(CS_BIGDATETIME *bdt, CS_BIGTIME *bt);
/* CS_EOVERFLOW when make fails, CS_EUNDERFLOW before 1753-01-01, CS_TRUNCATED
   when microseconds are lost, else CS_SUCCEED. */
CS_RETCODE com__bigdatetimetodate(CS_BIGDATETIME *bdt, CS_DATETIME *dtp);
/* Ticks of the time of day; CS_TRUNCATED when microseconds are lost. */
CS_RETCODE com__bigdatetimetotimea(CS_BIGDATETIME *bdt, CS_TIME *tp);
CS_RETCODE com__bigtimetotimea(CS_BIGTIME *bt, CS_TIME *tp);
/* As com__bigdatetimetodate on day 0. */
CS_RETCODE com__bigtimetodate(CS_BIGTIME *bt, CS_DATETIME *dtp);
/* Time 0; a date outside the CS_DATETIME range clears dtdays and returns 1. */
int com__dateatodate(CS_DATE *dp, CS_DATETIME *dtp);
/* Midnight; a date out of range clears the value and returns 1. */
int com__dateatobigdatetime(CS_DATE *dp, CS_BIGDATETIME *bdt);
void com__timeatodate(CS_TIME *tp, CS_DATETIME *dtp);
/* Whole milliseconds of the ticks, on 0001-01-01 for the former. */
void com__timeatobigdatetime(CS_TIME *tp, CS_BIGDATETIME *bdt);
void com__timeatobigtime(CS_TIME *tp, CS_BIGTIME *bt);

KES_END_DECLS


#endif
