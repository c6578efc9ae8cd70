// The exported face of date text: legacy formatters, the wall clock, and one
// entry each way that picks the storage type's reader or writer.
#include "kescomn/datetext.h"

#include <cstdio>
#include <cstring>
#include <ctime>

#include "conv/scalar_io.h"
#include "datetime/calendar.h"
#include "datetime/format.h"
#include "datetime/parse.h"
#include "errors/assert.h"

namespace {

CS_INT date2char(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, char **shortmonths, CS_INT style)
{
    if (src == nullptr || srclen == 0)
        return 0;
    KES_NOT_NULL(dest);
    // The caller's bytes need not be aligned for a CS_DATETIME.
    CS_DATETIME dt = kes::conv::load<CS_DATETIME>(src);
    if (shortmonths == nullptr)
        shortmonths = com__get_shortmonths();
    const int n = com__datetochar(&dt, reinterpret_cast<char *>(dest), destlen, style, shortmonths);
    return n <= 0 ? -1 : n;
}

} // namespace

extern "C" {

CS_INT com_date2char(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, char **shortmonths)
{
    return date2char(src, srclen, dest, destlen, shortmonths, 9);
}

CS_INT com_date2char_ex(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, char **shortmonths,
                        CS_INT style)
{
    return date2char(src, srclen, dest, destlen, shortmonths, style);
}

int com_cvtdatetochar(CS_DATETIME *dtp, char *buf, int len, int style, char **shortmths)
{
    KES_NOT_NULL(dtp);
    KES_NOT_NULL(buf);
    return com__datetochar(dtp, buf, len, style, shortmths);
}

int com_cvtdate4tochar(CS_DATETIME4 *dtp4, char *buf, int len, int style, char **shortmths)
{
    KES_NOT_NULL(dtp4);
    KES_NOT_NULL(buf);
    return com__date4tochar(dtp4, buf, len, style, shortmths);
}

CS_RETCODE comn_time(CS_INT format, CS_BOOL is12hour, CS_CHAR *buffer, CS_INT buflen, CS_INT *outlen,
                     CS_DATEREC *drec)
{
    const time_t now = time(nullptr);
    struct tm tm;
    localtime_r(&now, &tm);
    if (buffer != nullptr) {
        const int yy = tm.tm_year % 100, mm = tm.tm_mon + 1, dd = tm.tm_mday;
        int a = mm, b = dd, c = yy;
        switch (format) {
        case 2: a = dd; b = mm; c = yy; break;
        case 3: a = yy; b = mm; c = dd; break;
        case 4: a = yy; b = dd; c = mm; break;
        case 5: a = mm; b = yy; c = dd; break;
        case 6: a = dd; b = yy; c = mm; break;
        default: break;
        }
        char date[32], clock[32];
        const int datelen = std::snprintf(date, sizeof date, "%02d/%02d/%02d", a, b, c);
        int clocklen;
        if (is12hour == 1)
            clocklen = std::snprintf(clock, sizeof clock, "%02d:%02d:%02d %s",
                                     tm.tm_hour > 12 ? tm.tm_hour - 12 : tm.tm_hour, tm.tm_min, tm.tm_sec,
                                     tm.tm_hour < 12 ? "AM" : "PM");
        else
            clocklen = std::snprintf(clock, sizeof clock, "%02d:%02d:%02d", tm.tm_hour, tm.tm_min, tm.tm_sec);
        const CS_INT needed = datelen + clocklen + 2;
        if (outlen != nullptr)
            *outlen = needed;
        if (buflen < needed)
            return KES_TRACE(CS_FAIL);
        std::snprintf(buffer, static_cast<size_t>(buflen), "%s %s", date, clock);
    }
    if (drec != nullptr) {
        drec->dateyear = tm.tm_year + 1900;
        drec->datemonth = tm.tm_mon;
        drec->datedmonth = tm.tm_mday;
        drec->datedyear = tm.tm_yday + 1;
        drec->datedweek = tm.tm_wday;
        drec->datehour = tm.tm_hour;
        drec->dateminute = tm.tm_min;
        drec->datesecond = tm.tm_sec;
    }
    return KES_TRACE(CS_SUCCEED);
}

CS_INT comn_date_parse(CS_INT datatype, CS_CHAR *text, CS_INT textlen, CS_INT style, CS_INT order,
                       CS_CHAR **months, CS_CHAR **shortmonths, CS_ATTRIB *chatr, CS_VOID *dest,
                       CS_BOOL *truncated)
{
    KES_NOT_NULL(dest);
    KES_ASSERT(text != nullptr || textlen == 0);
    if (months == nullptr)
        months = com__get_months();
    if (shortmonths == nullptr)
        shortmonths = com__get_shortmonths();
    CS_BOOL lost = 0;
    CS_INT rc;
    switch (datatype) {
    case CS_DATETIME_TYPE:
        rc = com__datefromchar_mb(static_cast<CS_DATETIME *>(dest), text, textlen, style, order, months,
                                  shortmonths, chatr, &lost);
        break;
    case CS_DATETIME4_TYPE:
        rc = com__date4fromchar_mb(static_cast<CS_DATETIME4 *>(dest), text, textlen, style, order, months,
                                   shortmonths, chatr);
        break;
    case CS_DATE_TYPE:
        rc = com__dateafromchar_mb(static_cast<CS_DATE *>(dest), text, textlen, style, order, months,
                                   shortmonths, chatr);
        break;
    case CS_TIME_TYPE:
        rc = com__timeafromchar_mb(static_cast<CS_TIME *>(dest), text, textlen, style, order, months,
                                   shortmonths, chatr, &lost);
        break;
    case CS_BIGDATETIME_TYPE:
        rc = com__bigdatetimefromchar_mb(static_cast<CS_BIGDATETIME *>(dest), text, textlen, style, order,
                                         months, shortmonths, chatr);
        break;
    case CS_BIGTIME_TYPE:
        rc = com__bigtimefromchar_mb(static_cast<CS_BIGTIME *>(dest), text, textlen, style, order, months,
                                     shortmonths, chatr);
        break;
    default:
        return KES_TRACE(CS_EDOMAIN);
    }
    if (truncated != nullptr)
        *truncated = lost;
    return rc;
}

CS_INT comn_date_format(CS_INT datatype, CS_VOID *src, CS_INT style, CS_CHAR **shortmonths, CS_CHAR *buf,
                        CS_INT buflen)
{
    KES_NOT_NULL(src);
    KES_NOT_NULL(buf);
    if (shortmonths == nullptr)
        shortmonths = com__get_shortmonths();
    switch (datatype) {
    case CS_DATETIME_TYPE:
        return com__datetochar(static_cast<CS_DATETIME *>(src), buf, buflen, style, shortmonths);
    case CS_DATETIME4_TYPE:
        return com__date4tochar(static_cast<CS_DATETIME4 *>(src), buf, buflen, style, shortmonths);
    case CS_DATE_TYPE:
        return com__dateatochar(static_cast<CS_DATE *>(src), buf, buflen, style, shortmonths);
    case CS_TIME_TYPE:
        return com__timeatochar(static_cast<CS_TIME *>(src), buf, buflen, style, shortmonths);
    case CS_BIGDATETIME_TYPE:
        return com__bigdatetimetochar(static_cast<CS_BIGDATETIME *>(src), buf, buflen, style, shortmonths);
    case CS_BIGTIME_TYPE:
        return com__bigtimetochar(static_cast<CS_BIGTIME *>(src), buf, buflen, style, shortmonths);
    default:
        return KES_TRACE(CS_EDOMAIN);
    }
}

} // extern "C"
