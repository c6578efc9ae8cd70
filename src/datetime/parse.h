/*
** Private names of the date and time text reader: one tolerant grammar for
** all six storage types.  The text is cut into at most 20 tokens; the time is
** found from its colons, the date from what is left, and every token taken is
** marked as used, so that anything left over can be refused.
**
** Results of the grammar (xdaterecfromchar): 0 a date was found; 99 only a
** time, or nothing; -1 syntax; -2 tokens left over; 1 year not representable;
** 9 hour and AM/PM contradict each other.  The storage functions pass these on
** and add the statuses of the calendar's make operations (1 to 7).
**
** Date orders: 1 mdy, 2 dmy, 3 ymd, 4 ydm, 5 myd, 6 dym.
** partonly: 0 date and time, nothing may remain; 1 and 2 left-over tokens are
** tolerated; 3 only the time is read, nothing may remain.
** Month lists hold 12 entries; they and chatr may be null (no names known,
** ISO 8859-1 respectively).
*/
#ifndef KESCOMN_DATETIME_PARSE_H
#define KESCOMN_DATETIME_PARSE_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* Token kinds. */
#define DC_NUMBER 0      /* 1 to 3 digits */
#define DC_NUMBER4 1     /* 4 digits */
#define DC_COLON 2
#define DC_AMPM 3        /* value 0 AM, 1 PM */
#define DC_MONTH 4       /* value 0 to 11 */
#define DC_COMMA 5
#define DC_SEPARATOR 6   /* "/" or "-" (value 0), "." (value -1) */
#define DC_END 7
#define DC_ERROR 8
#define DC_USED 9
#define DC_PACKED 10     /* 6 or 8 digits */
#define DC_T 11
#define DC_NUMBER5 12    /* 5 digits */

/* Tokens of one text, the end token included. */
#define DC_MAXTOKENS 21

/* One token. */
struct com__datecrack {
    int dctoken;   /* kind */
    int dclength;  /* digits of a number */
    CS_INT dcvalue;
};

/* Reads the token at *cpp (with *lenp bytes left), stores it in dc, moves
   both past it and returns its kind. */
int datetoken(char **cpp, int *lenp, struct com__datecrack *dc, char **mths, char **shortmths,
              CHAR_ATTRIB *chatr);

/* Index of the entry of list (cnt entries) equal to the len bytes at cp once
   both are normalised by chatr's maps (so case-blind with the built-in set);
   -1 when none is or the text is over 30 bytes. */
int datelookup(char *cp, int len, char **list, int cnt, CHAR_ATTRIB *chatr);

/* Index of the first token of kind token, or for token -k of the first token
   of another kind than k; -1 once the end token is reached. */
int findtoken(struct com__datecrack *dc, int token);

/* Applies AM (pmflag 0) or PM (1) to datehour: 0, or 1 when they contradict
   (0 PM, or above 12 AM). */
int com__amcheck(CS_DATEREC *pp, int pmflag);

/* The grammar: fills the date and time fields of parts.  dt_type 35 or 36
   keeps microseconds in datesecfrac; any other type keeps milliseconds and
   sets *truncated when a fraction loses digits.  Results above.  The fixed
   forms of parse_fast.h are read from their bytes first, to the same end. */
int xdaterecfromchar(CS_DATEREC *parts, char *origcp, int origlen, int partonly, int style, int order,
                     char **mths, char **shortmths, CHAR_ATTRIB *chatr, CS_INT dt_type,
                     CS_BOOL *truncated);

/* The grammar into a CS_DATETIME (a lone time falls on 1900-01-01): 0, a
   grammar result, 1 for a bad time, or the status of com__datemake. */
int xdatefromchar(CS_DATETIME *dtp, char *origcp, int origlen, int partonly, int style, int order,
                  char **mths, char **shortmths, CHAR_ATTRIB *chatr, CS_BOOL *truncated);

/* The same into a CS_BIGDATETIME (a lone time falls on 0001-01-01); the
   statuses of the big make operations are passed on. */
int xbigdatetimefromchar(CS_BIGDATETIME *bdt, char *origcp, int origlen, int partonly, int style,
                         int order, char **mths, char **shortmths, CHAR_ATTRIB *chatr);

/* Text to each storage type.  The destination is cleared first and may hold a
   partial value after a failure.  0 on success, else a status as above. */
/* Date and time; a date before 1753-01-01 is 1. */
int com__datefromchar_mb(CS_DATETIME *dtp, char *origcp, int origlen, int style, int order, char **mths,
                         char **shortmths, CHAR_ATTRIB *chatr, CS_BOOL *truncated);
int com__bigdatetimefromchar_mb(CS_BIGDATETIME *bdt, char *origcp, int origlen, int style, int order,
                                char **mths, char **shortmths, CHAR_ATTRIB *chatr);
/* Minutes rounded as com__dttodate4 does; 1 outside the type's range. */
int com__date4fromchar_mb(CS_DATETIME4 *dtp4, char *origcp, int origlen, int style, int order, char **mths,
                          char **shortmths, CHAR_ATTRIB *chatr);
/* The date of the text; left-over tokens are tolerated. */
int com__dateafromchar_mb(CS_DATE *dp, char *origcp, int origlen, int style, int order, char **mths,
                          char **shortmths, CHAR_ATTRIB *chatr);
/* The time of day of the text; left-over tokens are tolerated. */
int com__timeafromchar_mb(CS_TIME *tp, char *origcp, int origlen, int style, int order, char **mths,
                          char **shortmths, CHAR_ATTRIB *chatr, CS_BOOL *truncated);
/* Microseconds of the text from 0001-01-01, so only a lone time gives a time
   of day. */
int com__bigtimefromchar_mb(CS_BIGTIME *bt, char *origcp, int origlen, int style, int order, char **mths,
                            char **shortmths, CHAR_ATTRIB *chatr);
/* Only the time of the text, on 1900-01-01; no month names, no order. */
int com__timefromchar_mb(CS_DATETIME *dtp, char *origcp, int origlen, int style, CHAR_ATTRIB *chatr,
                         CS_BOOL *truncated);

KES_END_DECLS

#ifdef __cplusplus
namespace kes::datetext {

/* xdaterecfromchar without the fixed forms of parse_fast.h in front: the
   grammar alone, the reference that the fixed forms must agree with. */
int daterec_by_grammar(CS_DATEREC *parts, char *origcp, int origlen, int partonly, int style, int order,
                       char **mths, char **shortmths, CHAR_ATTRIB *chatr, CS_INT dt_type, CS_BOOL *truncated);

/* The two routes from text to record: the fixed forms, then the grammar for
   what they leave (the exported readers), or the grammar alone. */
enum class Route { fixed_first, grammar_only };

/* Every reader of this header, taking its record by one route; each member
   has the contract of the function it is named after.  The grammar-only set
   is the reference that checks of the fixed forms compare with. */
struct Readers {
    decltype(&xdaterecfromchar) daterec;
    decltype(&xdatefromchar) datetime;
    decltype(&xbigdatetimefromchar) bigdatetime;
    decltype(&com__datefromchar_mb) datefromchar;
    decltype(&com__bigdatetimefromchar_mb) bigdatetimefromchar;
    decltype(&com__date4fromchar_mb) date4fromchar;
    decltype(&com__dateafromchar_mb) dateafromchar;
    decltype(&com__timeafromchar_mb) timeafromchar;
    decltype(&com__bigtimefromchar_mb) bigtimefromchar;
    decltype(&com__timefromchar_mb) timefromchar;
};
const Readers &readers(Route route);

} // namespace kes::datetext
#endif

#endif
