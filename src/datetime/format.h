/*
** Private names of the date and time text writer.  A style number selects a
** layout; styles above 100 are the four-digit-year twins of those with two.
** Results of the formatters: the length written when the whole text fit, 0
** when it was cut (the part that fits is in buf), -1 for an unknown style,
** -2 for a style with month names and no list.  No NUL is written; a len
** below 0 means no limit.
*/
#ifndef KESCOMN_DATETIME_FORMAT_H
#define KESCOMN_DATETIME_FORMAT_H

#include "intl/date_defaults.h"
#include "kescomn/types.h"

KES_BEGIN_DECLS

/* The low digits of a non-negative value right-aligned in a field of |len|,
   filled with "0" for a negative len and blanks for a positive one; then
   padchar when it is not 0.  The bytes written. */
int com__cpint(char *cp, int value, char padchar, int len);
/* str up to its NUL or maxlen bytes, then padchar when it is not 0; no fill.
   The bytes written. */
int com__cpchar(char *cp, char *str, char padchar, int maxlen);
/* Decimal text of val; a single "*" when len is above 0 and the text is
   longer.  The bytes written. */
int com__itochar(CS_INT val, char *buf, int len);

/* A cracked record in a style.  secprec 1000000 takes the fraction from
   datesecfrac, any other from datemsecond; milliseconds are rounded from
   microseconds without carrying into the second. */
int com__daterectochar(CS_DATEREC *trparts, char *buf, int len, int style, char **shortmths, CS_INT secprec);
/* The same for a time of day: the date-only styles give an empty text (a NUL,
   result 1), styles 0 and 9 show the time alone, and the year of styles 100
   and 109 is blank-filled. */
int com__timerectochar(CS_DATEREC *trparts, char *buf, int len, int style, char **shortmths, CS_INT secprec);

/* The storage types in a style, through the two functions above. */
int com__datetochar(CS_DATETIME *dtp, char *buf, int len, int style, char **shortmths);
int com__date4tochar(CS_DATETIME4 *dtp4, char *buf, int len, int style, char **shortmths);
int com__bigdatetimetochar(CS_BIGDATETIME *bdt, char *buf, int len, int style, char **shortmths);
/* A date at midnight; styles 0 and 9 show the date alone. */
int com__dateatochar(CS_DATE *dp, char *buf, int len, int style, char **shortmths);
/* A time of day on 1900-01-01. */
int com__timeatochar(CS_TIME *tp, char *buf, int len, int style, char **shortmths);
/* A microsecond time of day on 0001-01-01. */
int com__bigtimetochar(CS_BIGTIME *bt, char *buf, int len, int style, char **shortmths);

KES_END_DECLS

#endif
