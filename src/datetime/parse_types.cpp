// The grammar's record made into each of the six storage types, with the
// base date of a lone time and the range of each type; the fixed forms in
// front of the grammar.
#include "datetime/calendar.h"
#include "datetime/parse.h"
#include "datetime/parse_fast.h"

using namespace kes::cal;
using kes::datetext::Route;

namespace {

constexpr int kNoDate = 99;
constexpr int kBadValue = 1;

// The fixed forms, where they apply: read_fixed's result.
[[gnu::always_inline]] inline int read_fixed_form(CS_DATEREC *parts, char *origcp, int origlen, int partonly,
                                                  int style, int order, CHAR_ATTRIB *chatr, CS_INT dt_type,
                                                  CS_BOOL *truncated)
{
    if (!kes::datetext::fixed_forms_apply(chatr))
        return kes::datetext::kNotFixed;
    CS_BOOL ignored;
    CS_BOOL *lost = truncated != nullptr ? truncated : &ignored;
    *lost = 0;
    return kes::datetext::read_fixed(parts, origcp, origlen, partonly, style, order, dt_type, lost);
}

// Every reader below is stamped out for both routes to the record: the
// exported ones try the fixed forms first and make in-range records in line,
// the others are the grammar and the make operations alone, which those must
// agree with.
template <Route R>
int read_record(CS_DATEREC *parts, char *origcp, int origlen, int partonly, int style, int order, char **mths,
                char **shortmths, CHAR_ATTRIB *chatr, CS_INT dt_type, CS_BOOL *truncated)
{
    if (R == Route::fixed_first) {
        const int rc = read_fixed_form(parts, origcp, origlen, partonly, style, order, chatr, dt_type, truncated);
        if (rc != kes::datetext::kNotFixed)
            return rc;
    }
    return kes::datetext::daterec_by_grammar(parts, origcp, origlen, partonly, style, order, mths, shortmths, chatr,
                                             dt_type, truncated);
}

template <Route R>
int datetime_of(CS_DATETIME *dtp, char *origcp, int origlen, int partonly, int style, int order, char **mths,
                char **shortmths, CHAR_ATTRIB *chatr, CS_BOOL *truncated)
{
    dtp->dtdays = 0;
    dtp->dttime = 0;
    CS_DATEREC parts{}, fixed{};
    // A fixed form goes on to the in-line value in a record of its own, which
    // need never reach memory; only a value out of range takes the grammar's
    // road to the make operations.
    int rc = R == Route::fixed_first ? read_fixed_form(&fixed, origcp, origlen, partonly, style, order, chatr,
                                                       CS_DATETIME_TYPE, truncated)
                                     : kes::datetext::kNotFixed;
    if (rc == kes::datetext::kFixedDate) {
        if (kes::datetext::datetime_in_range(fixed, dtp))
            return 0;
        parts = fixed;
    } else if (rc == kes::datetext::kFixedTime) {
        if (kes::datetext::ticks_in_range(fixed, &dtp->dttime))
            return 0;
        parts = fixed;
    } else {
        rc = kes::datetext::daterec_by_grammar(&parts, origcp, origlen, partonly, style, order, mths, shortmths,
                                               chatr, CS_DATETIME_TYPE, truncated);
        if (rc != 0 && rc != kNoDate)
            return rc;
    }
    if (com__timemake(dtp, &parts) != 0)
        return kBadValue;
    return rc == kNoDate ? 0 : com__datemake(dtp, &parts);
}

template <Route R>
int bigdatetime_of(CS_BIGDATETIME *bdt, char *origcp, int origlen, int partonly, int style, int order,
                   char **mths, char **shortmths, CHAR_ATTRIB *chatr)
{
    *bdt = 0;
    CS_DATEREC parts{}, fixed{};
    CS_BOOL truncated;
    int rc = R == Route::fixed_first ? read_fixed_form(&fixed, origcp, origlen, partonly, style, order, chatr,
                                                       CS_BIGDATETIME_TYPE, &truncated)
                                     : kes::datetext::kNotFixed;
    CS_BIGTIME micros;
    if (rc == kes::datetext::kFixedDate) {
        if (kes::datetext::bigdatetime_in_range(fixed, bdt))
            return 0;
        parts = fixed;
    } else if (rc == kes::datetext::kFixedTime) {
        if (kes::datetext::micros_in_range(fixed, &micros)) {
            *bdt = micros + kBigMin; // a lone time falls on 0001-01-01
            return 0;
        }
        parts = fixed;
    } else {
        rc = kes::datetext::daterec_by_grammar(&parts, origcp, origlen, partonly, style, order, mths, shortmths,
                                               chatr, CS_BIGDATETIME_TYPE, &truncated);
        if (rc != 0 && rc != kNoDate)
            return rc;
    }
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

template <Route R>
int datetime_text(CS_DATETIME *dtp, char *origcp, int origlen, int style, int order, char **mths, char **shortmths,
                  CHAR_ATTRIB *chatr, CS_BOOL *truncated)
{
    const int rc = datetime_of<R>(dtp, origcp, origlen, 0, style, order, mths, shortmths, chatr, truncated);
    if (rc == 0 && com__datetime_check_range(dtp))
        return kBadValue;
    return rc;
}

template <Route R>
int bigdatetime_text(CS_BIGDATETIME *bdt, char *origcp, int origlen, int style, int order, char **mths,
                     char **shortmths, CHAR_ATTRIB *chatr)
{
    const int rc = bigdatetime_of<R>(bdt, origcp, origlen, 0, style, order, mths, shortmths, chatr);
    if (rc == 0 && com__bigdatetime_check_range(bdt))
        return kBadValue;
    return rc;
}

template <Route R>
int date4_text(CS_DATETIME4 *dtp4, char *origcp, int origlen, int style, int order, char **mths, char **shortmths,
               CHAR_ATTRIB *chatr)
{
    dtp4->days = 0;
    dtp4->minutes = 0;
    CS_DATETIME dt;
    CS_BOOL truncated;
    const int rc = datetime_of<R>(&dt, origcp, origlen, 0, style, order, mths, shortmths, chatr, &truncated);
    if (rc != 0)
        return rc;
    return com__dttodate4(&dt, dtp4) != 0 ? kBadValue : 0;
}

template <Route R>
int datea_text(CS_DATE *dp, char *origcp, int origlen, int style, int order, char **mths, char **shortmths,
               CHAR_ATTRIB *chatr)
{
    *dp = 0;
    CS_DATETIME dt;
    CS_BOOL truncated;
    const int rc = datetime_of<R>(&dt, origcp, origlen, 1, style, order, mths, shortmths, chatr, &truncated);
    if (rc == 0)
        *dp = dt.dtdays;
    return rc;
}

template <Route R>
int timea_text(CS_TIME *tp, char *origcp, int origlen, int style, int order, char **mths, char **shortmths,
               CHAR_ATTRIB *chatr, CS_BOOL *truncated)
{
    *tp = 0;
    CS_DATETIME dt;
    const int rc = datetime_of<R>(&dt, origcp, origlen, 2, style, order, mths, shortmths, chatr, truncated);
    if (rc == 0)
        *tp = dt.dttime;
    return rc;
}

template <Route R>
int bigtime_text(CS_BIGTIME *bt, char *origcp, int origlen, int style, int order, char **mths, char **shortmths,
                 CHAR_ATTRIB *chatr)
{
    *bt = 0;
    CS_BIGDATETIME bdt;
    const int rc = bigdatetime_of<R>(&bdt, origcp, origlen, 2, style, order, mths, shortmths, chatr);
    if (rc == 0)
        *bt = bdt - kBigMin;
    return rc;
}

template <Route R>
int time_text(CS_DATETIME *dtp, char *origcp, int origlen, int style, CHAR_ATTRIB *chatr, CS_BOOL *truncated)
{
    return datetime_of<R>(dtp, origcp, origlen, 3, style, 0, nullptr, nullptr, chatr, truncated);
}

template <Route R> constexpr kes::datetext::Readers kReaders{
    read_record<R>, datetime_of<R>, bigdatetime_of<R>, datetime_text<R>, bigdatetime_text<R>,
    date4_text<R>,  datea_text<R>,  timea_text<R>,     bigtime_text<R>,  time_text<R>,
};

} // namespace

const kes::datetext::Readers &kes::datetext::readers(Route route)
{
    return route == Route::fixed_first ? kReaders<Route::fixed_first> : kReaders<Route::grammar_only>;
}

extern "C" {

int xdaterecfromchar(CS_DATEREC *parts, char *origcp, int origlen, int partonly, int style, int order,
                     char **mths, char **shortmths, CHAR_ATTRIB *chatr, CS_INT dt_type, CS_BOOL *truncated)
{
    return read_record<Route::fixed_first>(parts, origcp, origlen, partonly, style, order, mths, shortmths, chatr,
                                           dt_type, truncated);
}

int xdatefromchar(CS_DATETIME *dtp, char *origcp, int origlen, int partonly, int style, int order,
                  char **mths, char **shortmths, CHAR_ATTRIB *chatr, CS_BOOL *truncated)
{
    return datetime_of<Route::fixed_first>(dtp, origcp, origlen, partonly, style, order, mths, shortmths, chatr,
                                           truncated);
}

int xbigdatetimefromchar(CS_BIGDATETIME *bdt, char *origcp, int origlen, int partonly, int style, int order,
                         char **mths, char **shortmths, CHAR_ATTRIB *chatr)
{
    return bigdatetime_of<Route::fixed_first>(bdt, origcp, origlen, partonly, style, order, mths, shortmths, chatr);
}

int com__datefromchar_mb(CS_DATETIME *dtp, char *origcp, int origlen, int style, int order, char **mths,
                         char **shortmths, CHAR_ATTRIB *chatr, CS_BOOL *truncated)
{
    return datetime_text<Route::fixed_first>(dtp, origcp, origlen, style, order, mths, shortmths, chatr, truncated);
}

int com__bigdatetimefromchar_mb(CS_BIGDATETIME *bdt, char *origcp, int origlen, int style, int order,
                                char **mths, char **shortmths, CHAR_ATTRIB *chatr)
{
    return bigdatetime_text<Route::fixed_first>(bdt, origcp, origlen, style, order, mths, shortmths, chatr);
}

int com__date4fromchar_mb(CS_DATETIME4 *dtp4, char *origcp, int origlen, int style, int order, char **mths,
                          char **shortmths, CHAR_ATTRIB *chatr)
{
    return date4_text<Route::fixed_first>(dtp4, origcp, origlen, style, order, mths, shortmths, chatr);
}

int com__dateafromchar_mb(CS_DATE *dp, char *origcp, int origlen, int style, int order, char **mths,
                          char **shortmths, CHAR_ATTRIB *chatr)
{
    return datea_text<Route::fixed_first>(dp, origcp, origlen, style, order, mths, shortmths, chatr);
}

int com__timeafromchar_mb(CS_TIME *tp, char *origcp, int origlen, int style, int order, char **mths,
                          char **shortmths, CHAR_ATTRIB *chatr, CS_BOOL *truncated)
{
    return timea_text<Route::fixed_first>(tp, origcp, origlen, style, order, mths, shortmths, chatr, truncated);
}

int com__bigtimefromchar_mb(CS_BIGTIME *bt, char *origcp, int origlen, int style, int order, char **mths,
                            char **shortmths, CHAR_ATTRIB *chatr)
{
    return bigtime_text<Route::fixed_first>(bt, origcp, origlen, style, order, mths, shortmths, chatr);
}

int com__timefromchar_mb(CS_DATETIME *dtp, char *origcp, int origlen, int style, CHAR_ATTRIB *chatr,
                         CS_BOOL *truncated)
{
    return time_text<Route::fixed_first>(dtp, origcp, origlen, style, chatr, truncated);
}

} // extern "C"
