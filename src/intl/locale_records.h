/*
** Layouts of the locale handle, the shared locale cache and the character
** set description, as far as the character attributes walk them.  The
** components that other parts load stay incomplete types here.
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
