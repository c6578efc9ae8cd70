// The grammar's record made into each of the six storage types, with the
// base date of a lone time and the range of each type.
#include "datetime/calendar.h"
#include "datetime/parse.h"

using namespace kes::cal;

namespace {

constexpr int kNoDate = 99;
constexpr int kBadValue = 1;

} // namespace

extern "C" {

int xdatefromchar(CS_DATETIME *dtp, char *origcp, int origlen, int partonly, int style, int order,
                  char **mths, char **shortmths, CHAR_ATTRIB *chatr, CS_BOOL *truncated)
{
    dtp->dtdays = 0;
    dtp->dttime = 0;
    CS_DATEREC parts{};
    const int rc = xdaterecfromchar(&parts, origcp, origlen, partonly, style, order, mths, shortmths, chatr,
                                    CS_DATETIME_TYPE, truncated);
    if (rc != 0 && rc != kNoDate)
        return rc;
    if (com__timemake(dtp, &parts) != 0)
        return kBadValue;
    return rc == kNoDate ? 0 : com__datemake(dtp, &parts);
}

int xbigdatetimefromchar(CS_BIGDATETIME *bdt, char *origcp, int origlen, int partonly, int style, int order,
                         char **mths, char **shortmths, CHAR_ATTRIB *chatr)
{
    *bdt = 0;
    CS_DATEREC parts{};
    CS_BOOL truncated;
    const int rc = xdaterecfromchar(&parts, origcp, origlen, partonly, style, order, mths, shortmths, chatr,
                                    CS_BIGDATETIME_TYPE, &truncated);
    if (rc != 0 && rc != kNoDate)
        return rc;
    CS_BIGTIME time = 0;
    const int timestatus = com__bigtimemake(&time, &parts);
    if (rc == kNoDate) {
        if (timestatus != 0)
            return kBadValue;
        *bdt = time + kBigMin;
        return 0;
    }
    if (timestatus != 0)
        return timestatus;
    CS_BIGDATETIME date = 0;
    const int datestatus = com__bigdatemake(&date, &parts);
    if (datestatus != 0)
        return datestatus;
    *bdt = date + time;
    return 0;
}

int com__datefromchar_mb(CS_DATETIME *dtp, char *origcp, int origlen, int style, int order, char **mths,
                         char **shortmths, CHAR_ATTRIB *chatr, CS_BOOL *truncated)
{
    const int rc = xdatefromchar(dtp, origcp, origlen, 0, style, order, mths, shortmths, chatr, truncated);
    if (rc == 0 && com__datetime_check_range(dtp))
        return kBadValue;
    return rc;
}

int com__bigdatetimefromchar_mb(CS_BIGDATETIME *bdt, char *origcp, int origlen, int style, int order,
                                char **mths, char **shortmths, CHAR_ATTRIB *chatr)
{
    const int rc = xbigdatetimefromchar(bdt, origcp, origlen, 0, style, order, mths, shortmths, chatr);
    if (rc == 0 && com__bigdatetime_check_range(bdt))
        return kBadValue;
    return rc;
}

int com__date4fromchar_mb(CS_DATETIME4 *dtp4, char *origcp, int origlen, int style, int order, char **mths,
                          char **shortmths, CHAR_ATTRIB *chatr)
{
    dtp4->days = 0;
    dtp4->minutes = 0;
    CS_DATETIME dt;
    CS_BOOL truncated;
    const int rc = xdatefromchar(&dt, origcp, origlen, 0, style, order, mths, shortmths, chatr, &truncated);
    if (rc != 0)
        return rc;
    return com__dttodate4(&dt, dtp4) != 0 ? kBadValue : 0;
}

int com__dateafromchar_mb(CS_DATE *dp, char *origcp, int origlen, int style, int order, char **mths,
                          char **shortmths, CHAR_ATTRIB *chatr)
{
    *dp = 0;
    CS_DATETIME dt;
    CS_BOOL truncated;
    const int rc = xdatefromchar(&dt, origcp, origlen, 1, style, order, mths, shortmths, chatr, &truncated);
    if (rc == 0)
        *dp = dt.dtdays;
    return rc;
}

int com__timeafromchar_mb(CS_TIME *tp, char *origcp, int origlen, int style, int order, char **mths,
                          char **shortmths, CHAR_ATTRIB *chatr, CS_BOOL *truncated)
{
    *tp = 0;
    CS_DATETIME dt;
    const int rc = xdatefromchar(&dt, origcp, origlen, 2, style, order, mths, shortmths, chatr, truncated);
    if (rc == 0)
        *tp = dt.dttime;
    return rc;
}

int com__bigtimefromchar_mb(CS_BIGTIME *bt, char *origcp, int origlen, int style, int order, char **mths,
                            char **shortmths, CHAR_ATTRIB *chatr)
{
    *bt = 0;
    CS_BIGDATETIME bdt;
    const int rc = xbigdatetimefromchar(&bdt, origcp, origlen, 2, style, order, mths, shortmths, chatr);
    if (rc == 0)
        *bt = bdt - kBigMin;
    return rc;
}

int com__timefromchar_mb(CS_DATETIME *dtp, char *origcp, int origlen, int style, CHAR_ATTRIB *chatr,
                         CS_BOOL *truncated)
{
    return xdatefromchar(dtp, origcp, origlen, 3, style, 0, nullptr, nullptr, chatr, truncated);
}

} // extern "C"
