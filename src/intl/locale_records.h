/*
** Layouts of the locale handle, the shared locale cache, the character set
** description and a language's date conventions, as far as the character
** attributes and the date queries walk them.  The components that other
** parts load stay incomplete types here.
*/
#ifndef KESCOMN_INTL_LOCALE_RECORDS_H
#define KESCOMN_INTL_LOCALE_RECORDS_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

typedef struct _cssortdesc CsSortDesc;
typedef struct _csmessage CS_MESSAGE;
typedef struct _csdateinfo CS_DATEINFO;
typedef struct _csnuminfo CS_NUMINFO;
typedef struct _csmoninfo CS_MONINFO;
typedef struct _csoid CsOID;
typedef struct _csconvconfig CsConvConfig;

/* A language's date conventions, shared by every cache of the language; a
   copy carries a per-locale conversion style.  Names are NUL-terminated and
   stored with their lengths. */
struct _csdateinfo {
    CsOID *id; /* the language; the key of the list */
    CS_INT is12hour;
    CS_BYTE *amindict;
    CS_INT amindict_len;
    CS_BYTE *pmindict;
    CS_INT pmindict_len;
    CS_BYTE *months[12];
    CS_INT mon_len[12];
    CS_BYTE *shortmonths[12];
    CS_INT shrtmon_len[12];
    CS_BYTE *days[7]; /* days[0] is the locale's first day of the week */
    CS_INT day_len[7];
    CS_BYTE *shortdays[7];
    CS_INT shrtday_len[7];
    CS_INT firstday; /* 1 to 7 */
    CS_BYTE *datefmt;
    CS_INT datefmt_len;
    CS_BYTE *timefmt;
    CS_INT timefmt_len;
    CS_BYTE *longdtfmt;
    CS_INT longdtfmt_len;
    CS_BYTE *shrtdtfmt;
    CS_INT shrtdtfmt_len;
    CS_BYTE *era;
    CS_INT era_len;
    CS_BYTE *era_t_fmt;
    CS_INT era_t_fmt_len;
    CS_BYTE *era_d_fmt;
    CS_INT era_d_fmt_len;
    CS_BYTE *era_dt_fmt;
    CS_INT era_dt_fmt_len;
    CS_INT secprec;
    CS_CHAR dateorder[4]; /* "mdy", "dmy", ...; kept as read even when unknown */
    CS_INT convertfmt;    /* date style of conversions to text */
    CS_BOOL fmt_reset;    /* 1 once a caller has set convertfmt */
    int locdateorder_id;
    struct _csdateinfo *next;
};

/* One pointer per category, each a CsLocCache (possibly all the same). */
struct _cs_locale {
    CS_VOID *collateptr;
    CS_VOID *ctypeptr;
    CS_VOID *messageptr;
    CS_VOID *monetaryptr;
    CS_VOID *numericptr;
    CS_VOID *timeptr;
    CS_VOID *ctxptr; /* the owning CS_CONTEXT */
    struct _cs_locale *next;
};

/* A loaded character set: its attributes and what hangs off it. */
typedef struct _cschardesc {
    CsOID *oid;
    CHAR_ATTRIB *char_attrib;
    CsSortDesc *sort_order;
    CsConvConfig *conv_config;
    struct _cschardesc *charnext;
} CsCharDesc;

/* Everything a named locale stands for; shared between handles. */
typedef struct _csloccache {
    CS_CHAR *locname;
    CS_INT locnamelen;
    CS_CHAR *charname;
    CS_INT charnamelen;
    CsCharDesc *locchardesc;
    CS_CHAR *sortname;
    CS_INT sortnamelen;
    CsSortDesc *locsortorder;
    CS_CHAR *langname;
    CS_INT langnamelen;
    CS_MESSAGE *locmessage;
    CS_CHAR *datename;
    CS_INT datenamelen;
    CS_DATEINFO *locdateinfo;
    CS_CHAR *numname;
    CS_INT numnamelen;
    CS_NUMINFO *locnuminfo;
    CS_CHAR *monname;
    CS_INT monnamelen;
    CS_MONINFO *locmoninfo;
    struct _csloccache *locnext;
} CsLocCache;

KES_END_DECLS

#endif
