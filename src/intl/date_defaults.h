/*
** The built-in date conventions: English month and day names, the AM/PM
** marks, the first day of the week and the "mdy" date order.  They serve
** wherever no locale data applies, and the date text code reads them before
** any locale is loaded.  The date code takes name lists as char ** (a
** locale's names live in writable storage); nothing writes through these.
*/
#ifndef KESCOMN_INTL_DATE_DEFAULTS_H
#define KESCOMN_INTL_DATE_DEFAULTS_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

extern CS_CHAR *const Com__Months[12];     /* "January" to "December" */
extern CS_CHAR *const Com__Shortmonths[12]; /* "Jan" to "Dec" */
extern CS_CHAR *const Com__WeekDay[7];     /* "Sunday" to "Saturday" */
extern CS_CHAR *const Com__Days[7];        /* "Sun" to "Sat" */
extern CS_CHAR *const Com__ampm[2];        /* "AM", "PM" */
extern const CS_INT Com__Firstday;         /* 7: weeks start on Sunday */
extern const CS_CHAR Com__date_order[4];   /* "mdy" */
extern const int Com__date_order_id;       /* 1, the id of "mdy" */

/* The tables and values above. */
CS_CHAR **com__get_months(void);
CS_CHAR **com__get_shortmonths(void);
CS_CHAR **com__get_weekdays(void);
CS_CHAR **com__get_days(void);
CS_CHAR **com__get_ampm(void);
CS_INT com__get_firstday(void);
CS_CHAR *com__get_date_order(void);
int com__get_date_order_id(void);

/* The id of a date order text: "mdy" 1, "dmy" 2, "ymd" 3, "ydm" 4, "myd" 5,
   "dym" 6; any other text, or none, is 1. */
int com__get_dateorder_id(const CS_CHAR *text);
/* The default conversion style of a date order id: 0, 3, 11, 13, 14, 15 for
   ids 1 to 6.  Any other id is a broken invariant (com_bomb). */
int com__map_dateorder_id_to_fmt(int id);

KES_END_DECLS

#ifdef __cplusplus
#include <cstddef>

namespace kes::intl {

// A built-in table as the date code's char ** (see above).
template <std::size_t N>
constexpr CS_CHAR **names(CS_CHAR *const (&table)[N])
{
    return const_cast<CS_CHAR **>(table);
}

} // namespace kes::intl
#endif

#endif
