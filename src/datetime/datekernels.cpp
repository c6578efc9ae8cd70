// Kernels between the six date types, on which the date conversions rest.
#include "datetime/calendar.h"

using namespace kes::cal;

namespace {

constexpr int64_t kDate4MaxDays = 65535;

// Stores a day and minute count as CS_DATETIME4, carrying a full day of
// minutes; 1 when the day does not fit.
int store_date4(int64_t days, int64_t minutes, CS_DATETIME4 *dtp4)
{
    if (days < 0 || days > kDate4MaxDays)
        return 1;
    if (minutes >= kMinutesPerDay) {
        minutes -= kMinutesPerDay;
        if (++days > kDate4MaxDays)
            return 1;
    }
    dtp4->days = static_cast<CS_USHORT>(days);
    dtp4->minutes = static_cast<CS_USHORT>(minutes);
    return 0;
}

uint64_t big_from_days(int64_t dtdays) { return kBigMin + static_cast<uint64_t>(dtdays + kEpochDays) * kMicrosPerDay; }

// Ticks of a microsecond time of day: whole milliseconds, the last one of the
// day held below midnight; CS_TRUNCATED when microseconds are dropped.
CS_RETCODE micros_to_ticks(uint64_t micros, CS_TIME *tp)
{
    const int64_t ms = static_cast<int64_t>(micros % kMicrosPerDay / 1000);
    *tp = static_cast<CS_TIME>(ms == 86399999 ? kTicksPerDay - 1 : (3 * ms + 5) / 10);
    return micros % 1000 == 0 ? CS_SUCCEED : CS_TRUNCATED;
}

// Make of a cracked record into a CS_DATETIME, graded for the conversions.
CS_RETCODE make_datetime(CS_DATEREC *rec, CS_DATETIME *dtp)
{
    if (com__datemake(dtp, rec) != 0 || com__timemake(dtp, rec) != 0)
        return CS_EOVERFLOW;
    if (com__datetime_check_range(dtp))
        return CS_EUNDERFLOW;
    return rec->datesecfrac % 1000 != 0 ? CS_TRUNCATED : CS_SUCCEED;
}

} // namespace

extern "C" {

int com__dttodate4(CS_DATETIME *dtp, CS_DATETIME4 *dtp4)
{
    // Half a minute of ticks rounds up.
    return store_date4(dtp->dtdays, (int64_t{dtp->dttime} + kTicksPerMinute / 2) / kTicksPerMinute, dtp4);
}

int com__bigdttodate4(CS_BIGDATETIME *bdt, CS_DATETIME4 *dtp4)
{
    const uint64_t micros = *bdt % kMicrosPerDay;
    int64_t minutes = static_cast<int64_t>(micros / kMicrosPerMinute);
    const int64_t seconds = static_cast<int64_t>(micros / kMicrosPerSecond % 60) +
                            (micros % kMicrosPerSecond >= 500000 ? 1 : 0);
    if (seconds > 29)
        minutes++;
    return store_date4(big_days(*bdt), minutes, dtp4);
}

void com__date4todt(CS_DATETIME4 *dtp4, CS_DATETIME *dtp)
{
    dtp->dtdays = dtp4->days;
    dtp->dttime = dtp4->minutes * kTicksPerMinute;
}

void com__date4tobigdatetime(CS_DATETIME4 *dtp4, CS_BIGDATETIME *bdt)
{
    *bdt = big_from_days(dtp4->days) + dtp4->minutes * static_cast<uint64_t>(kMicrosPerMinute);
}

void com__date4tobigtime(CS_DATETIME4 *dtp4, CS_BIGTIME *bt)
{
    *bt = dtp4->minutes * static_cast<uint64_t>(kMicrosPerMinute);
}

void com__datetodatea(CS_DATETIME *dtp, CS_DATE *dp) { *dp = dtp->dtdays; }

void com__datetotimea(CS_DATETIME *dtp, CS_TIME *tp) { *tp = dtp->dttime; }

int com__datetobigdatetime(CS_DATETIME *dtp, CS_BIGDATETIME *bdt)
{
    CS_DATEREC rec;
    com__datecrack(dtp, &rec);
    com__timecrack(dtp, &rec);
    return com_bigdatetimemake(bdt, &rec);
}

int com__datetobigtime(CS_DATETIME *dtp, CS_BIGTIME *bt)
{
    CS_DATEREC rec;
    com__timecrack(dtp, &rec);
    return com__bigtimemake(bt, &rec);
}

void com__bigdatetimetodatea(CS_BIGDATETIME *bdt, CS_DATE *dp) { *dp = big_days(*bdt); }

void com__bigdatetimetobigtime(CS_BIGDATETIME *bdt, CS_BIGTIME *bt) { *bt = *bdt % kMicrosPerDay; }

CS_RETCODE com__bigdatetimetodate(CS_BIGDATETIME *bdt, CS_DATETIME *dtp)
{
    CS_DATEREC rec;
    com__bigdatecrack(bdt, &rec);
    com__bigtimecrack(bdt, &rec);
    return make_datetime(&rec, dtp);
}

CS_RETCODE com__bigdatetimetotimea(CS_BIGDATETIME *bdt, CS_TIME *tp) { return micros_to_ticks(*bdt, tp); }

CS_RETCODE com__bigtimetotimea(CS_BIGTIME *bt, CS_TIME *tp) { return micros_to_ticks(*bt, tp); }

CS_RETCODE com__bigtimetodate(CS_BIGTIME *bt, CS_DATETIME *dtp)
{
    CS_DATEREC rec;
    CS_DATETIME day0{0, 0};
    com__datecrack(&day0, &rec);
    com__bigtimecrack(bt, &rec);
    return make_datetime(&rec, dtp);
}

int com__dateatodate(CS_DATE *dp, CS_DATETIME *dtp)
{
    dtp->dttime = 0;
    if (*dp < kMinDatetimeDays || *dp > kMaxDays) {
        dtp->dtdays = 0;
        return 1;
    }
    dtp->dtdays = *dp;
    return 0;
}

int com__dateatobigdatetime(CS_DATE *dp, CS_BIGDATETIME *bdt)
{
    if (com__datea_check_range(dp)) {
        *bdt = 0;
        return 1;
    }
    *bdt = big_from_days(*dp);
    return 0;
}

void com__timeatodate(CS_TIME *tp, CS_DATETIME *dtp)
{
    dtp->dtdays = 0;
    dtp->dttime = *tp;
}

void com__timeatobigtime(CS_TIME *tp, CS_BIGTIME *bt)
{
    *bt = static_cast<uint64_t>(int64_t{*tp} * 10 / 3 * 1000);
}

void com__timeatobigdatetime(CS_TIME *tp, CS_BIGDATETIME *bdt)
{
    com__timeatobigtime(tp, bdt);
    *bdt += kBigMin;
}

} // extern "C"
