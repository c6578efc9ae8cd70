/*
** Scalar types, result codes, type codes and the records shared by every
** part of the library.  Usable from C and C++.
*/
#ifndef KESCOMN_TYPES_H
#define KESCOMN_TYPES_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define KES_API __attribute__((visibility("default")))
#else
#define KES_API
#endif

#ifdef __cplusplus
#define KES_BEGIN_DECLS extern "C" {
#define KES_END_DECLS }
#define KES_STATIC_ASSERT static_assert
#else
#define KES_BEGIN_DECLS
#define KES_END_DECLS
#define KES_STATIC_ASSERT _Static_assert
#endif

KES_BEGIN_DECLS

/* ---- scalars ---------------------------------------------------------- */
typedef int32_t CS_INT;
typedef uint32_t CS_UINT;
typedef int16_t CS_SMALLINT;
typedef uint16_t CS_USMALLINT;
typedef uint16_t CS_USHORT;
typedef uint8_t CS_TINYINT;
typedef uint8_t CS_BYTE;
typedef uint8_t CS_BIT;
typedef uint8_t CS_BINARY;
typedef uint8_t CS_TEXT;
typedef uint8_t CS_IMAGE;
typedef uint8_t CS_LONGCHAR;
typedef uint8_t CS_LONGBINARY;
typedef uint8_t CS_XML;
typedef char CS_CHAR;
typedef int64_t CS_BIGINT;
typedef int64_t CS_LONG;
typedef uint64_t CS_UBIGINT;
typedef uint64_t CS_BIGDATETIME;
typedef uint64_t CS_BIGTIME;
typedef float CS_REAL;
typedef double CS_FLOAT;
typedef int32_t CS_BOOL;
typedef void CS_VOID;
typedef int32_t CS_RETCODE;
typedef uint32_t CS_MSGNUM;
typedef CS_INT CS_VOIDDATA;
typedef CS_INT CS_DATE;
typedef CS_INT CS_TIME;
typedef CS_USHORT CS_UNICHAR;

/* ---- shared literals -------------------------------------------------- */
#define CS_UNUSED (-99999)
#define CS_NULLTERM (-9)
#define CS_SRC_VALUE (-2562)

/* ---- result codes ----------------------------------------------------- */
#define CS_SUCCEED 1
#define CS_FAIL 0
#define CS_MEM_ERROR (-1)
#define CS_PENDING (-2)
#define CS_QUIET (-3)
#define CS_BUSY (-4)
#define CS_INTERRUPT (-5)
#define CS_EOVERFLOW (-101)
#define CS_EUNDERFLOW (-102)
#define CS_EPRECISION (-103)
#define CS_ESCALE (-104)
#define CS_ESYNTAX (-105)
#define CS_EFORMAT (-106)
#define CS_EDOMAIN (-107)
#define CS_EDIVZERO (-108)
#define CS_TRUNCATED (-113)
#define CS_ESTYLE (-114)
#define CS_EBADXLT (-115)
#define CS_ENOXLT (-116)
#define CS_EREPLACED (-117)
#define CS_CANCELED (-202)
#define CS_ROW_FAIL (-203)
#define CS_END_DATA (-204)
#define CS_END_RESULTS (-205)
#define CS_END_ITEM (-206)
#define CS_NOMSG (-207)
#define CS_TIMED_OUT (-208)
#define CS_PASSTHRU_EOM (-210)
#define CS_PASSTHRU_MORE (-211)
#define CS_TRYING (-213)
#define CS_EINTLFILE (-301)
#define CS_EOPENFILE (-414)

/* ---- the forty type codes ----------------------------------------------
** The bare names (CS_CHAR, CS_INT, ...) are the storage types above, so the
** codes carry a _TYPE suffix.  The code indexes every per-type table.
*/
enum {
    CS_CHAR_TYPE = 0,
    CS_BINARY_TYPE = 1,
    CS_LONGCHAR_TYPE = 2,
    CS_LONGBINARY_TYPE = 3,
    CS_TEXT_TYPE = 4,
    CS_IMAGE_TYPE = 5,
    CS_TINYINT_TYPE = 6,
    CS_SMALLINT_TYPE = 7,
    CS_INT_TYPE = 8,
    CS_REAL_TYPE = 9,
    CS_FLOAT_TYPE = 10,
    CS_BIT_TYPE = 11,
    CS_DATETIME_TYPE = 12,
    CS_DATETIME4_TYPE = 13,
    CS_MONEY_TYPE = 14,
    CS_MONEY4_TYPE = 15,
    CS_NUMERIC_TYPE = 16,
    CS_DECIMAL_TYPE = 17,
    CS_VARCHAR_TYPE = 18,
    CS_VARBINARY_TYPE = 19,
    CS_LONG_TYPE = 20,
    CS_SENSITIVITY_TYPE = 21,
    CS_BOUNDARY_TYPE = 22,
    CS_VOID_TYPE = 23,
    CS_USHORT_TYPE = 24,
    CS_UNICHAR_TYPE = 25,
    CS_BLOB_TYPE = 26,
    CS_DATE_TYPE = 27,
    CS_TIME_TYPE = 28,
    CS_UNITEXT_TYPE = 29,
    CS_BIGINT_TYPE = 30,
    CS_USMALLINT_TYPE = 31,
    CS_UINT_TYPE = 32,
    CS_UBIGINT_TYPE = 33,
    CS_XML_TYPE = 34,
    CS_BIGDATETIME_TYPE = 35,
    CS_BIGTIME_TYPE = 36,
    CS_TEXTLOCATOR_TYPE = 37,
    CS_IMAGELOCATOR_TYPE = 38,
    CS_UNITEXTLOCATOR_TYPE = 39,
    CS_MAX_TYPE = 40 /* side of the conversion matrix; codes above are user types */
};

/* ---- format bits of a destination --------------------------------------- */
#define CS_FMT_NULLTERM 0x1   /* end the text with a NUL */
#define CS_FMT_PADNULL 0x2    /* fill the rest of the capacity with NULs */
#define CS_FMT_PADBLANK 0x4   /* fill the rest with blanks */
#define CS_FMT_JUSTIFY_RT 0x8 /* right-justify (server layer) */
#define CS_FMT_SAFESTR 0x20   /* double each single quote */
#define CS_FMT_NOVALIDATE 0x40 /* skip the validity test of Unicode text */

/* ---- value storage ---------------------------------------------------- */
#define CS_MAX_NUMLEN 33
#define CS_MAX_PREC 77
#define CS_MAX_SCALE 77
#define CS_MIN_PREC 1
#define CS_MAX_CHAR 256
#define CS_MAX_NAME 256

typedef struct _cs_numeric {
    CS_BYTE precision;
    CS_BYTE scale;
    CS_BYTE array[CS_MAX_NUMLEN];
} CS_NUMERIC;
typedef CS_NUMERIC CS_DECIMAL;

/* High half first, then the low half: not a native 64-bit integer. */
typedef struct _cs_money {
    CS_INT mnyhigh;
    CS_UINT mnylow;
} CS_MONEY;

typedef struct _cs_money4 {
    CS_INT mny4;
} CS_MONEY4;

typedef struct _cs_datetime {
    CS_INT dtdays;
    CS_INT dttime;
} CS_DATETIME;

typedef struct _cs_datetime4 {
    CS_USHORT days;
    CS_USHORT minutes;
} CS_DATETIME4;

typedef struct _cs_daterec {
    CS_INT dateyear;
    CS_INT datemonth;
    CS_INT datedmonth;
    CS_INT datedyear;
    CS_INT datedweek;
    CS_INT datehour;
    CS_INT dateminute;
    CS_INT datesecond;
    CS_INT datemsecond;
    CS_INT datetzone;
    CS_INT datesecfrac;
    CS_INT datesecprec;
} CS_DATEREC;

typedef struct _cs_varchar {
    CS_SMALLINT len;
    CS_CHAR str[CS_MAX_CHAR];
} CS_VARCHAR;

typedef struct _cs_varybin {
    CS_SMALLINT len;
    CS_BYTE array[CS_MAX_CHAR];
} CS_VARBINARY;

typedef struct _csblobchunk {
    struct _csblobchunk *pnext;
    CS_INT len;
    CS_VOID *data;
} CsBlobChunk;

typedef struct _cs_locator {
    CS_INT locatortag; /* -779 in an initialised record */
    CS_INT locatortype;
    CS_USMALLINT locatorlen;
    CS_BYTE *locator;
    CS_INT prefetchlen;
    CsBlobChunk *prefetchdata;
    CS_BIGINT totalloblen;
} CS_LOCATOR;
#define CS_LOCATOR_TAG (-779)

/* ---- character set description ----------------------------------------- */
typedef struct char_map {
    CS_BYTE char_upper;
    CS_BYTE char_lower;
    CS_BYTE char_lex;
    CS_BYTE char_type;
} CHAR_MAP;

typedef struct cs_type_map {
    CHAR_MAP chmap[256];
} CS_TYPE_MAP;

typedef struct cs_norm_map {
    CS_BYTE norm[256];
} CS_NORM_MAP;

typedef struct cs_soundex {
    CS_BYTE sound[256];
} CS_SOUNDEX;

typedef struct char_attrib {
    CS_SMALLINT cs_status;
    CS_BYTE cs_class;
    CS_BYTE cs_id;
    CS_SMALLINT cs_namelen;
    CS_BYTE cs_name[30];
    CS_BYTE cs_maxcharlen;
    CS_BYTE cs_ncharsize;
    CS_BYTE cs_nnorm;
    CS_BYTE cs_ntype;
    CS_BYTE cs_nsoundex;
    CS_BYTE spare[3];
    CS_BYTE *cs_width_map;
    CS_NORM_MAP *cs_norm_map;
    CS_TYPE_MAP *cs_type_map;
    CS_SOUNDEX *cs_soundex;
} CS_ATTRIB;
typedef CS_ATTRIB CHAR_ATTRIB;

/* ---- records owned by later subsystems (layouts completed there) -------- */
typedef struct _cs_locale CS_LOCALE;
typedef struct _cs_ctx_globals CsCtxGlobals;
typedef struct _cs_config CsConfig;
typedef struct _cs_thrdres CS_THRDRES;

typedef CS_RETCODE (*CS_THRDC_FUNC)(CS_THRDRES **);
typedef CS_RETCODE (*CS_THRDM_FUNC)(CS_THRDRES *);
typedef CS_RETCODE (*CS_THRDE_FUNC)(CS_THRDRES *);
typedef CS_RETCODE (*CS_THRDW_FUNC)(CS_THRDRES *, CS_INT);
typedef CS_RETCODE (*CS_THRDID_FUNC)(CS_VOID *, CS_INT, CS_INT *);

/* The caller's table of thread operations. */
typedef struct _cs_thread {
    CS_THRDC_FUNC create_mutex_fn;
    CS_THRDM_FUNC delete_mutex_fn;
    CS_THRDM_FUNC take_mutex_fn;
    CS_THRDM_FUNC release_mutex_fn;
    CS_THRDC_FUNC create_event_fn;
    CS_THRDE_FUNC delete_event_fn;
    CS_THRDE_FUNC signal_event_fn;
    CS_THRDE_FUNC reset_event_fn;
    CS_THRDW_FUNC waitfor_event_fn;
    CS_THRDID_FUNC thread_id_fn;
} CS_THREAD;

typedef struct _cs_context CS_CONTEXT;
typedef struct _cs_context CsContext; /* the name the locale interfaces use */
typedef struct _cs_datafmt CS_DATAFMT;

typedef CS_VOID *(*CS_MALLOC_FUNC)(size_t);
typedef void (*CS_MFREE_FUNC)(CS_VOID *);

/* A composed message as delivered to ctxerrfunc. */
typedef struct _cs_clientmsg {
    CS_INT severity;
    CS_MSGNUM msgnumber;
    CS_CHAR msgstring[1024];
    CS_INT msgstringlen;
    CS_INT osnumber;
    CS_CHAR osstring[1024];
    CS_INT osstringlen;
    CS_INT status;
    CS_BYTE sqlstate[8];
    CS_INT sqlstatelen;
} CS_CLIENTMSG;

typedef CS_RETCODE (*CS_CTXERR_FUNC)(CS_CONTEXT *, CS_CLIENTMSG *);

/* ---- description of one value ----------------------------------------- */
struct _cs_datafmt {
    CS_CHAR name[CS_MAX_NAME];
    CS_INT namelen;
    CS_INT datatype;
    CS_INT format;
    CS_INT maxlength;
    CS_INT scale;
    CS_INT precision;
    CS_INT status;
    CS_INT count;
    CS_INT usertype;
    CS_LOCALE *locale;
};

/* The shape of every cell of the conversion matrix. */
typedef CS_RETCODE (*CS_CONV_FUNC)(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                   CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);

/* A context's private copy of the matrix, row-major, cvtdim by cvtdim. */
typedef struct _cs_convert_tbl {
    CS_CONV_FUNC *cvttbl;
    int cvtdim;
} CsConvertTbl;

/* One user conversion; see com_conv_install for the two-level list. */
typedef struct _cs_usr_cvt_func {
    CS_INT srctype;
    CS_INT desttype;
    CS_CONV_FUNC cvtfunc;
    struct _cs_usr_cvt_func *nextdest;
    struct _cs_usr_cvt_func *nextsrc;
} CsUsrCvtFunc;

/* One type's null value. */
typedef struct _cs_def_val {
    CS_VOID *dventity;
    CS_INT dvsize;
    CS_INT dvpadtype;
} CsDefVal;

typedef struct _cs_null_tbl {
    CsDefVal *nullvals;
    int nulldim;
} CsNullTbl;

typedef struct _cs_usr_null {
    CS_INT dttype;
    CS_VOID *dventity;
    CS_INT dvsize;
    struct _cs_usr_null *nextnull;
} CsUsrNull;

/* ---- the context every caller allocates -------------------------------- */
struct _cs_context {
    CS_INT ctxtag;
    CS_INT ctxstatus;
    CS_INT ctxversion;
    CS_LOCALE *ctxlocale;
    CS_LOCALE *ctxdeflocale;
    CsCtxGlobals *ctxglobals;
    CsConvertTbl ctxcvttbl;
    CsUsrCvtFunc *ctxusrcvttbl;
    CsNullTbl ctxnulls;
    CsUsrNull *ctxusrnulls;
    CS_THREAD *ctxthread;
    int ctxintlerr;
    CS_VOID *ctxctctx;
    CS_VOID *ctxnetwork;
    CS_VOID *ctxdsctx;
    CS_VOID *ctxssctx;
    CS_VOID *ctxsrvlib;
    CS_VOID *ctxcsctx;
    CS_THRDRES *ctxmtx;
    CS_VOID *usercharconv;
    CsConfig *ctxconfig;
    CS_MALLOC_FUNC ctxmalloc;
    CS_MFREE_FUNC ctxfree;
    CS_CTXERR_FUNC ctxerrfunc;
    CS_VOID *ctxcomerrhan;
    CS_VOID *ctxvslfactory;
};

/* ---- the server layer's records ------------------------------------------ */
typedef struct __sqlxtype {
    CS_INT xtypeid;
    CS_SMALLINT xdbid;
    CS_SMALLINT xstatus;
} __SQLXTYPE;

typedef struct constant {
    CS_INT len;      /* bytes present; written for a destination */
    CS_BYTE type;    /* server type byte */
    CS_BYTE rsrvdpad[3];
    CS_INT maxlen;   /* capacity */
    CS_BYTE prec;
    CS_BYTE scale;
    CS_BYTE newtype;
    CS_BYTE conomnistat;
    short cvarno;
    short constat;
    CS_BYTE constat2;
    CS_BYTE constat3;
    CS_BYTE conspare[2];
    void *locale;
    CS_BYTE *value;
    __SQLXTYPE xtype;
    void *jobj;
    CS_INT constat6;
    CS_INT constat7;
} __CONSTANT;

typedef struct _castcontext {
    CsConvertTbl ctxcvttbl;
    CS_INT format;
    CS_INT style;
    CS_INT flags; /* bit 1: text to numeric drops digits past the scale silently */
    CS_CHAR **months;
    CS_CHAR **shrtmonths;
    CS_INT dateorder;
    CHAR_ATTRIB *char_attrib;
    CS_CONV_FUNC cfn;
} CAST_CONTEXT;

/* Declares a conversion of the context layer (CS_CONV_FUNC shape) and of the
   server layer. */
#define KES_COMN_CONV(name)                                                           \
    KES_API CS_RETCODE name(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, \
                            CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)
#define KES_COMNB_CONV(name) \
    KES_API CS_RETCODE name(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)

/* Storage sizes are part of the wire and file formats. */
KES_STATIC_ASSERT(sizeof(CS_NUMERIC) == 35, "CS_NUMERIC is 35 bytes");
KES_STATIC_ASSERT(sizeof(CS_VARCHAR) == 258, "CS_VARCHAR is 258 bytes");
KES_STATIC_ASSERT(sizeof(CS_VARBINARY) == 258, "CS_VARBINARY is 258 bytes");
KES_STATIC_ASSERT(sizeof(CS_MONEY) == 8, "CS_MONEY is 8 bytes");
KES_STATIC_ASSERT(sizeof(CS_MONEY4) == 4, "CS_MONEY4 is 4 bytes");
KES_STATIC_ASSERT(sizeof(CS_DATETIME) == 8, "CS_DATETIME is 8 bytes");
KES_STATIC_ASSERT(sizeof(CS_DATETIME4) == 4, "CS_DATETIME4 is 4 bytes");
KES_STATIC_ASSERT(sizeof(CS_DATEREC) == 48, "CS_DATEREC is 12 CS_INT");
KES_STATIC_ASSERT(sizeof(CS_LOCATOR) == 48, "CS_LOCATOR is 48 bytes");
KES_STATIC_ASSERT(sizeof(CHAR_MAP) == 4, "CHAR_MAP is 4 bytes");
KES_STATIC_ASSERT(sizeof(CS_TYPE_MAP) == 1024, "one type map plane is 1024 bytes");
KES_STATIC_ASSERT(sizeof(CS_DATAFMT) == 256 + 9 * 4 + 4 + 8, "CS_DATAFMT layout");

KES_END_DECLS

#endif /* KESCOMN_TYPES_H */
