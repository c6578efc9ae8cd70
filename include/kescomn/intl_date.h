/*
** A locale's date conventions: month and day names, the first day of the
** week, the date order and the style of dates converted to text.
**
** Which locale: the one given (or dfmt->locale), else the context's
** ctxlocale; its time category decides.  Where none applies, or the time
** data of the locale has not been loaded, the built-in English conventions
** answer: weeks from Sunday (first day 7), order "mdy" (id 1), 12-hour clock.
** Date order ids: 1 mdy, 2 dmy, 3 ymd, 4 ydm, 5 myd, 6 dym.
** context may be null everywhere.  Returned names belong to the locale (or
** the library) and must not be written.
*/
#ifndef KESCOMN_INTL_DATE_H
#define KESCOMN_INTL_DATE_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* The 12 month names, January first. */
KES_API CS_CHAR **com_intl_months(CsContext *context, CS_DATAFMT *dfmt);
/* The 12 short month names. */
KES_API CS_CHAR **com_intl_shortmonths(CsContext *context, CS_DATAFMT *dfmt);
/* The 7 day names, the first day of the week first (the built-in ones are
   "Sun" to "Sat"). */
KES_API CS_CHAR **com_intl_days(CsContext *context, CS_DATAFMT *dfmt);
/* The first day of the week, 1 to 7. */
KES_API CS_INT com_intl_firstday(CsContext *context, CS_DATAFMT *dfmt);
/* The date order text, NUL-terminated, as the locale gives it ("mdy"). */
KES_API CS_CHAR *com_intl_dateorder(CsContext *context, CS_DATAFMT *dfmt);
/* The date order id; an order text the library does not know counts as 1. */
KES_API int com_intl_dateorder_id(CsContext *context, CS_DATAFMT *dfmt);
/* Whether times show on a 12-hour clock. */
KES_API CS_BOOL com_intl_is12hour(CsContext *context, CS_DATAFMT *dfmt);

/* Weekday orig_day, counted from week start orig_firstday, renumbered from
   week start dest_firstday (days and starts 1 to 7): 1 to 6, and 0 for the
   seventh day of the new week. */
KES_API CS_INT com_intl_convt_firstday(CS_INT orig_firstday, CS_INT orig_day, CS_INT dest_firstday);

/* The style of the locale's dates converted to text (null locale: the
   context's); without one the style of the built-in order, 0. */
KES_API CS_INT comn_intl_get_dtfmt(CS_CONTEXT *context, CS_LOCALE *locale);
/* The date order id of the locale (null: the context's); without one 1. */
KES_API CS_INT comn_dtloc_format(CS_CONTEXT *context, CS_LOCALE *locale);
/* The date style of the locale (null: the context's); without one 1, the
   built-in order id, not a style. */
KES_API CS_INT comn_dtloc_format_fmt(CS_CONTEXT *context, CS_LOCALE *locale);
/* The date style of fmt->locale (null: the context's) when it is one a date
   can be converted to text with (1 to 23, 36 to 40, 100 to 118, 121, 122,
   136 to 140); 0 for any other. */
KES_API CS_INT comn_get_datetochar_fmt(CS_CONTEXT *context, CS_DATAFMT *fmt);

KES_END_DECLS

#endif /* KESCOMN_INTL_DATE_H */
