/*
** Calendar records and arithmetic of the six date and time types: crack to
** and make from CS_DATEREC, parts, names, addition, difference, comparison.
** The calendar is the proleptic Gregorian one, without time zones.
**
** Date part codes (add, difference, part, name): 0 year, 1 quarter, 2 month,
** 3 weekday (1 is the day given by firstday), 4 day of month, 5 day of year,
** 6 hour, 7 minute, 8 second, 9 millisecond, 10 Sunday-based week of the
** year, 11 ISO year, 12 ISO week, 13 ISO weekday (1 is Monday),
** 14 microsecond.
*/
#ifndef KESCOMN_DATETIME_H
#define KESCOMN_DATETIME_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* ---- crack and make --------------------------------------------------- */

/* Date fields of a CS_DATETIME into pp; other fields keep their contents.
   Nothing is validated. */
KES_API void com_datecrack(CS_DATETIME *dtp, CS_DATEREC *pp);
/* Time fields (datesecprec 300); other fields keep their contents. */
KES_API void com_timecrack(CS_DATETIME *dtp, CS_DATEREC *pp);
/* Date fields of a CS_BIGDATETIME. */
KES_API void com_bigdatecrack(CS_BIGDATETIME *bdt, CS_DATEREC *pp);
/* Time fields of a microsecond value (datesecprec 1000000, datesecfrac the
   microseconds); the value is taken modulo one day. */
KES_API void com_bigtimecrack(CS_BIGDATETIME *bdt, CS_DATEREC *pp);

/* dtdays from the date fields: 0, or 1 year, 2 month, 3 day out of range, with
   a partial dtdays left behind. */
KES_API CS_INT com_datemake(CS_DATETIME *dtp, CS_DATEREC *pp);
/* dttime from the time fields: 0, or 4 hour, 5 minute, 6 second,
   7 millisecond out of range. */
KES_API CS_INT com_timemake(CS_DATETIME *dtp, CS_DATEREC *pp);
/* Midnight of the date in microseconds; statuses as com_datemake. */
KES_API CS_INT com_bigdatemake(CS_BIGDATETIME *bdt, CS_DATEREC *pp);
/* Microseconds since midnight; statuses as com_timemake (fraction below
   1000000). */
KES_API CS_INT com_bigtimemake(CS_BIGTIME *bt, CS_DATEREC *pp);
/* Date and time together; the first non-zero status, nothing written then. */
KES_API CS_INT com_bigdatetimemake(CS_BIGDATETIME *bdt, CS_DATEREC *pp);

/* ---- parts and names ---------------------------------------------------- */

/* The part of a CS_DATETIME; a bad part is an assertion failure. */
KES_API int com_datepart(int part, CS_DATETIME *to, int firstday);
/* The part of a CS_BIGDATETIME. */
KES_API int com_bigdatepart(int part, CS_BIGDATETIME *bdt, int firstday);

/* The text of a part into cp (at most 30 bytes, no terminator): numbers in a
   field of 4 (microseconds 6, "*" when wider), month and weekday names from
   the lists.  The length; 0 for a null list or a part outside 0 to 14.  Part
   13 always names days[1]. */
KES_API int com_datename(int part, CS_DATETIME *date, char *cp, char **months, char **days);
KES_API int com_bigdatename(int part, CS_BIGDATETIME *bdt, char *cp, char **months, char **days);

/* ---- arithmetic ------------------------------------------------------------
** The checked entries of the kernels the server library calls.
*/

/* to - from in units of part (0 to 13; other parts leave *diff alone):
   boundaries crossed for years, quarters, months and Sunday weeks (10, 12),
   cut toward zero for the others.  1, with *diff untouched, when minutes,
   seconds or milliseconds overflow 32 bits; else 0. */
KES_API int com_datediff(int part, CS_DATETIME *from, CS_DATETIME *to, CS_INT *diff);
/* The same for CS_BIGDATETIME, parts 0 to 14, 64-bit; its week boundary is
   Wednesday.  Always 0. */
KES_API int com_bigdatediff(int part, CS_BIGDATETIME *from, CS_BIGDATETIME *to, CS_BIGINT *diff);

/* Adds value units of part (0 to 13) to *to.  Months and years keep the day,
   clamped to the month's end.  0, a status of com_datemake, or 1 when the
   result leaves the range; a bad part is an assertion failure, then -101. */
KES_API int com_date_add(int part, CS_INT value, CS_DATETIME *to);
/* The same on a CS_BIGDATETIME with parts 0 to 14; type 187 (bigdatetime) or
   188 (bigtime) says which range the result must stay in. */
KES_API int com_bigdate_add(int part, CS_INT value, CS_BIGDATETIME *to, CS_BYTE type);

/* Addition on server descriptors: a 4- or 8-byte datetime-family source, a
   result of server type 61, 49, 51 or 58.  0, or 1 for anything that fails. */
KES_API int com_dateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result);
/* The same for an 8-byte big source and a result of type 187 or 188. */
KES_API int com_bigdateadd_both(int part, CS_INT value, __CONSTANT *src, __CONSTANT *result);
/* 1 when the (4- or 8-byte) datetime of src has a valid date and time, else 0. */
KES_API int com_valid_datetime(__CONSTANT *src, CS_BYTE *cast_buf);

/* ---- comparison and setters ----------------------------------------------- */

/* -1, 0 or 1 as the first value is before, equal to or after the second. */
KES_API CS_INT com_datecmp(CS_DATETIME *date1, CS_DATETIME *date2);
KES_API CS_INT com_date4cmp(CS_DATETIME4 *date1, CS_DATETIME4 *date2);
KES_API CS_INT com_dateacmp(CS_DATE *date1, CS_DATE *date2);
KES_API CS_INT com_timeacmp(CS_TIME *time1, CS_TIME *time2);
KES_API CS_INT com_bigdatetimecmp(CS_BIGDATETIME *date1, CS_BIGDATETIME *date2);

/* 1900-01-01 00:00. */
KES_API void com_datezero(CS_DATETIME *dtp);
KES_API void com_date4zero(CS_DATETIME4 *dtp4);
KES_API void com_setdatetime(CS_DATETIME *dateptr, CS_INT dtdays, CS_INT dttime);

KES_END_DECLS

#endif /* KESCOMN_DATETIME_H */
