/*
** Runtime foundation beside the list manager and the pools: the thread layer
** of a single-threaded process, the drivers of table-defined state machines,
** the application global shared by the libraries of one process, and small
** byte and string tools.
*/
#ifndef KESCOMN_RUNTIME_H
#define KESCOMN_RUNTIME_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* ---- thread layer (non-threaded form) --------------------------------------
** The stack is built with one of several thread layers behind these names;
** this one serves a single-threaded process, so every operation is a
** constant.  Contexts that need real locks supply them through ctxthread. */

/* Store null in *handle; CS_SUCCEED. */
KES_API CS_RETCODE comn_create_mutex(void **mutex);
KES_API CS_RETCODE comn_create_event(void **event);
KES_API CS_RETCODE comn_create_sem(void **sem);
/* CS_SUCCEED, nothing else. */
KES_API CS_RETCODE comn_delete_mutex(void *mutex);
KES_API CS_RETCODE comn_take_mutex(void *mutex);
KES_API CS_RETCODE comn_try_mutex(void *mutex);
KES_API CS_RETCODE comn_release_mutex(void *mutex);
KES_API CS_RETCODE comn_delete_event(void *event);
KES_API CS_RETCODE comn_reset_event(void *event);
KES_API CS_RETCODE comn_signal_event(void *event);
KES_API CS_RETCODE comn_waitfor_event(void *event, CS_INT timeout);
KES_API CS_RETCODE comn_delete_sem(void *sem);
KES_API CS_RETCODE comn_release_sem(void *sem);

typedef CS_VOID *(*CS_THREAD_FUNC)(CS_VOID *);
/* Stores null in *thread and runs nothing; CS_SUCCEED. */
KES_API CS_RETCODE comn_create_thread(void **thread, CS_THREAD_FUNC func, CS_VOID *arg);
/* Runs nothing; CS_SUCCEED. */
KES_API CS_RETCODE comn_create_thread_no_alloc(void *thread, CS_THREAD_FUNC func, CS_VOID *arg);
/* Nothing. */
KES_API void comn_lock_global(void);
KES_API void comn_unlock_global(void);
KES_API void comn_yield(void);
/* The one thread's identifier: CS_UNUSED. */
KES_API CS_INT comn_threadid(void);
/* The process identifier. */
KES_API CS_INT comn_thread_id(void);
/* Stores CS_UNUSED in 4 bytes of buffer, 4 in *outlen; CS_SUCCEED. */
KES_API CS_RETCODE comn_get_tid(CS_VOID *buffer, CS_INT buflen, CS_INT *outlen);
/* Stores 0 in 4 bytes of buffer and, with an outlen, 4 in *outlen;
   CS_FAIL (nothing written) when buflen is below 4. */
KES_API CS_RETCODE comn_get_default_tid(CS_VOID *buffer, CS_INT buflen, CS_INT *outlen);
/* True when the two identifiers are equal. */
KES_API CS_BOOL comn_thread_equal(CS_INT a, CS_INT b);
/* A thread-local key is one process-wide pointer cell: create allocates it
   zeroed (CS_MEM_ERROR when memory is out), drop frees it. */
KES_API CS_RETCODE comn_create_key(void **key);
KES_API CS_RETCODE comn_drop_key(void *key);
/* The cell's content. */
KES_API CS_VOID *comn_get_threaduserdata(void *key);
/* Sets the cell; CS_SUCCEED. */
KES_API CS_RETCODE comn_set_threaduserdata(void *key, CS_VOID *value);

/* ---- state tables ----------------------------------------------------------
** Every list below ends with the byte 255, which is therefore no event. */
typedef CS_BYTE CS_EVENT;
typedef CS_BYTE CS_STATE;

#define CS_ST_END 255     /* ends an event, dependency or transition list */
#define CS_ST_NOTRANS 254 /* com_st_trans: the event has no transition */
#define CS_ST_STAY 149    /* a transition that keeps the current state */

typedef struct _cs_event_ns {
    CS_EVENT ens_event;
    CS_STATE ens_nstate;
} CS_EVENT_NS;

typedef struct _cs_depend {
    CS_EVENT dep_event;
    CS_EVENT dep_depevent;
} CS_DEPEND;

/* Names for debugging output; their layout belongs to the calling libraries. */
typedef struct _cs_strings CS_STRINGS;

typedef struct _cs_st_table {
    char *st_name;
    CS_INT st_version;
    int st_numstates;
    CS_EVENT st_init;          /* the start state */
    CS_EVENT **st_ver;         /* per state, the permitted events */
    CS_DEPEND *st_depend;      /* may be null */
    CS_EVENT_NS **st_trans;    /* per state, the transitions */
    CS_STRINGS *st_ststrings;
    CS_STRINGS *st_verstrings;
    CS_STRINGS *st_transtrings;
} CS_ST_TABLE;

typedef struct _cs_ns_table {
    char *nsname;
    CS_EVENT_NS **nstable; /* per state, the transitions */
    int nsnumevents;
    int nsnumstates;
    CS_STRINGS *nsevtstrs;
    CS_STRINGS *nsststrs;
    CS_INT nsversion;
} CS_NS_TABLE;

/* True when event is among the events permitted in state. */
KES_API CS_BOOL com_st_ver(CS_ST_TABLE *table, CS_STATE state, CS_EVENT event);
/* True, with *depend_event set, when st_depend lists event; false for a
   table without dependencies. */
KES_API CS_BOOL com_st_depend(CS_ST_TABLE *table, CS_EVENT event, CS_EVENT *depend_event);
/* The next state: state itself for a CS_ST_STAY transition, CS_ST_NOTRANS
   when the event has no transition. */
KES_API CS_STATE com_st_trans(CS_ST_TABLE *table, CS_STATE state, CS_EVENT event);
/* The transition's next state as stored (CS_ST_STAY untranslated), or
   CS_ST_STAY when the event has none. */
KES_API CS_STATE com_ns_trans(CS_NS_TABLE *table, CS_STATE state, CS_EVENT event);

/* ---- application global ---------------------------------------------------- */

/* One loaded configuration file; its layout belongs to the configuration
   reader. */
typedef struct _cscfgchain CS_CFGCHAIN;
typedef struct _blksrvlibtable BlkSrvLibTable;
typedef CS_RETCODE (*CS_ACCESS_FUNC)(CS_VOID *);

/* The sub-records belong to the libraries that use them; this library sizes
   them and reads none of their contents. */
typedef struct _cs_dsglobal {
    CS_VOID *dsg_reserved[8];
} CsDsGlobal;
typedef struct _cs_netglobal {
    CS_VOID *netg_reserved[8];
} CsNetGlobal;
typedef struct _cs_asyncglobal {
    CS_VOID *asyncg_reserved[8];
} CsAsyncGlobal;
typedef struct _cs_appctxglobal {
    CS_VOID *appctxg_reserved[8];
} CsAppCtxGlobal;

#define CS_AG_SUBSCRIBERS 4
#define CS_AG_SHARED 0x1 /* flags: the process's shared record */

typedef struct _cs_appglobal {
    CS_INT ag_subscribers[CS_AG_SUBSCRIBERS];
    CS_INT ag_state;
    CS_INT ag_accesscnt;
    CsDsGlobal ag_dsglobal;
    CsNetGlobal ag_netglobal;
    CsAsyncGlobal ag_asyncglobal;
    CS_ACCESS_FUNC ag_accessfunc;
    CS_VOID *ag_platformptr;
    CS_THREAD *ag_ctxthread;
    CS_THRDRES *ag_mtx;
    CsAppCtxGlobal ag_appctxglobal;
    CS_CFGCHAIN *ag_cfgchain; /* loaded configuration files */
    BlkSrvLibTable *ag_blk_osfncs;
    CS_CONTEXT *ag_ctxglobal;
} CS_APPGLOBAL;
typedef CS_APPGLOBAL CsAppGlobal;

/* Takes a reference on the application global: with CS_AG_SHARED the
   process's shared record, otherwise a fresh zeroed one (CS_MEM_ERROR when
   memory is out).  The first user stores ctxthread; a later one leaves it
   and clears ag_cfgchain. */
KES_API CS_RETCODE com_appglobal_alloc(CsAppGlobal **global_ptr, CS_THREAD *ctxthread, CS_INT flags);
/* Drops a reference.  The last one asserts that no subscriber is left,
   drops the loaded configuration files, zeroes the record and frees it
   unless CS_AG_SHARED is set.  Dropping below zero, or CS_AG_SHARED with
   another record, is an assertion failure. */
KES_API CS_RETCODE com_appglobal_drop(CsAppGlobal *appg, CS_INT flags);

/* ---- byte and string tools ---------------------------------------------- */

/* strcmp on unsigned bytes: the difference of the first differing pair. */
KES_API int com_unsignstrcmp(const CS_CHAR *str1, const CS_CHAR *str2);
/* Compares exactly n bytes as unsigned, NUL bytes included. */
KES_API int com_unsignstrncmp(const CS_CHAR *str1, const CS_CHAR *str2, size_t n);
/* The same two through tolower. */
KES_API int com_unsignstricmp(const CS_CHAR *str1, const CS_CHAR *str2);
KES_API int com_unsignstrnicmp(const CS_CHAR *str1, const CS_CHAR *str2, size_t n);
/* Compares the common length as unsigned bytes, then the lengths: -1, 0, 1. */
KES_API int com_memhilo(const CS_VOID *p1, CS_INT len1, const CS_VOID *p2, CS_INT len2);
/* memset that the compiler may not remove, for wiping secrets; returns s. */
KES_API CS_VOID *com_secure_memset(CS_VOID *s, int c, size_t n);
/* Replaces *destp (reallocated) by a NUL-terminated copy of sourcelen bytes
   of source (CS_NULLTERM: a C string) and sets *destlenp.  CS_FAIL, target
   untouched, for null arguments or a length below 1; CS_MEM_ERROR when the
   reallocation fails. */
KES_API CS_RETCODE com_setstring(CS_CHAR **destp, CS_INT *destlenp, const CS_CHAR *source, CS_INT sourcelen);
/* dlsym on the global scope of the process. */
KES_API CS_VOID *com_dlsym(const CS_CHAR *symbol);

KES_END_DECLS

#endif /* KESCOMN_RUNTIME_H */
