/*
** Date and time as text: the legacy formatters, the wall clock as text, and one
** entry each way for every date type.
**
** Styles (four-digit-year twins are the number plus 100):
**   0 "Mar  5 2008  3:07PM"   1 mm/dd/yy   2 yy.mm.dd   3 dd/mm/yy
**   4 dd.mm.yy   5 dd-mm-yy   6 dd mon yy   7 mon dd, yy   8 hh:mm:ss
**   9 "Mar  5 2008  3:07:09:123PM"   10 mm-dd-yy   11 yy/mm/dd   12 yymmdd
**   13 yy/dd/mm   14 mm/yy/dd   15 dd/yy/mm   16 mon dd yyyy hh:mm:ss
**   17 h:mmAM   18 hh:mm   19 h:mm:ss:mmmAM   20 hh:mm:ss:mmm
**   21 yy/mm/dd hh:mm:ss   22 yy/mm/dd h:mmAM   23 yyyy-mm-ddThh:mm:ss
**   36 h:mm:ss.ffffffAM   37 hh:mm:ss.ffffff   38/39 named month with
**   microseconds, 12/24 hours   40 yy-mm-dd hh:mm:ss.ffffff
** Date orders: 1 mdy, 2 dmy, 3 ymd, 4 ydm, 5 myd, 6 dym.
*/
#ifndef KESCOMN_DATETEXT_H
#define KESCOMN_DATETEXT_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* A CS_DATETIME (srclen bytes at src) in style 9 into dest (destlen bytes, -1
   or less for no limit, no NUL).  shortmonths may be null for the English
   names.  The length; 0 for a null src or a srclen of 0; -1 when the text
   was cut or cannot be made. */
KES_API CS_INT com_date2char(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, char **shortmonths);
/* The same in any style. */
KES_API CS_INT com_date2char_ex(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, char **shortmonths,
                                CS_INT style);

/* A CS_DATETIME or CS_DATETIME4 in a style into buf (len bytes, below 0 for
   no limit, no NUL).  The length when all of it fit, 0 when it was cut, -1
   for an unknown style, -2 for a named-month style with a null list. */
KES_API int com_cvtdatetochar(CS_DATETIME *dtp, char *buf, int len, int style, char **shortmths);
KES_API int com_cvtdate4tochar(CS_DATETIME4 *dtp4, char *buf, int len, int style, char **shortmths);

/* The local wall clock.  With a buffer: "mm/dd/yy hh:mm:ss" with the date in
   the date order format (2 to 6; anything else is mdy) and, when is12hour is
   1, a 12-hour hour and " AM"/" PM" (midnight shows as 00 AM).  *outlen, when
   given, gets the length the text needs plus 2; CS_FAIL when buflen is less.
   drec, when given, always gets the broken-down time (month from 0). */
KES_API CS_RETCODE comn_time(CS_INT format, CS_BOOL is12hour, CS_CHAR *buffer, CS_INT buflen, CS_INT *outlen,
                             CS_DATEREC *drec);

/* Text to a date type: datatype CS_DATETIME_TYPE, CS_DATETIME4_TYPE,
   CS_DATE_TYPE, CS_TIME_TYPE, CS_BIGDATETIME_TYPE or CS_BIGTIME_TYPE, stored at
   dest.  style picks the year rules of numeric dates (0 tolerant), order the
   field order; months and shortmonths (12 names each) may be null for the
   English names, chatr for ISO 8859-1, and truncated (set when a fraction
   lost digits).
   0 on success; -1 syntax; -2 tokens left over; 1 a value out of range; 2 bad
   month; 3 bad day; 4 to 7 bad hour, minute, second, fraction; 9 hour and
   AM/PM contradict; 99 never; -107 (CS_EDOMAIN) for another datatype. */
KES_API CS_INT comn_date_parse(CS_INT datatype, CS_CHAR *text, CS_INT textlen, CS_INT style, CS_INT order,
                               CS_CHAR **months, CS_CHAR **shortmonths, CS_ATTRIB *chatr, CS_VOID *dest,
                               CS_BOOL *truncated);

/* A value of a date type (as for comn_date_parse) in a style into buf (buflen
   bytes, below 0 for no limit, no NUL); shortmonths may be null for the
   English names.  Results as com_cvtdatetochar; -107 for another datatype. */
KES_API CS_INT comn_date_format(CS_INT datatype, CS_VOID *src, CS_INT style, CS_CHAR **shortmonths,
                                CS_CHAR *buf, CS_INT buflen);

KES_END_DECLS

#endif /* KESCOMN_DATETEXT_H */
