/*
** The list manager: named lists of five kinds (doubly linked list, queue,
** stack, chained hash table, open-addressing hash table) owned by a context
** and driven through one numbered operation entry point.  The manager never
** copies keys or data: a list stores the caller's pointers, so keys must
** outlive their entries.  No locks: a context belongs to one thread at a time.
*/
#ifndef KESCOMN_LM_H
#define KESCOMN_LM_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* The manager's own result code, beside CS_SUCCEED, CS_FAIL, CS_MEM_ERROR. */
#define LM_NOT_FOUND 34

/* Stamped on every record so that stale or double use is caught. */
typedef enum {
    LM_ALLOCATED = 11,     /* obtained, not yet filled in */
    LM_RELEASED = 12,      /* released: any use is a fatal internal error */
    LM_INITIALIZED = 13,   /* ready; for a node, holding no entry */
    LM_UNINITIALIZED = 14, /* node back in the free pool */
    LM_INSERTED = 15,      /* list node holding an entry */
    LM_SET = 16,           /* hash node holding an entry */
    LM_UNSET = 17          /* open-addressing slot whose entry was deleted */
} LM_NODE_STATE;

/* List kinds; callers pass the numbers, so they are fixed.  15 and 17 are
   reserved. */
#define LM_LIST_DLINK 13
#define LM_LIST_CHASH 14
#define LM_LIST_DHASH 16
#define LM_LIST_QUEUE 18
#define LM_LIST_STACK 19

/* Operations of lm_list_op. */
#define LM_OP_INSERT 20
#define LM_OP_DELETE 21
#define LM_OP_SEARCH 22
#define LM_OP_UPDATE 23
#define LM_OP_NEXT 24
#define LM_OP_PREVIOUS 25
#define LM_OP_CURRENT 26
#define LM_OP_FIRST 27
#define LM_OP_LAST 28
#define LM_OP_PRINT_CURRENT 29
#define LM_OP_PRINT_ALL 30
#define LM_OP_APPLY 31

/* Insert positions of a doubly linked list (in key_size), beside LM_OP_FIRST
   and LM_OP_LAST. */
#define LM_POS_BEFORE 32
#define LM_POS_AFTER 33

/* Property actions. */
#define LM_ACT_GET 33
#define LM_ACT_SET 34
#define LM_ACT_CLEAR 35

/* Forced release options. */
#define LM_FORCE_DROP 35
#define LM_FORCE_EXIT 36

/* Property numbers: 1-3 on both levels, 4-7 on a context, 8-12 on a list. */
#define LM_PROP_LIST_TYPE 1
#define LM_PROP_MAX_TABLESIZE 2
#define LM_PROP_MAX_POOLSIZE 3
#define LM_PROP_VERSION 4
#define LM_PROP_CONTEXT_LOAD 5
#define LM_PROP_CUR_HANDLENAME 6
#define LM_PROP_CUR_HANDLEADDR 7
#define LM_PROP_HANDLE_LOAD 8
#define LM_PROP_CONTEXT_ADDR 9
#define LM_PROP_HANDLE_NAME 10
#define LM_PROP_PRINT_FUNC 11
#define LM_PROP_COMP_FUNC 12

typedef void *(*LM_ALLOCATOR)(void *user, size_t size);
typedef void (*LM_RELEASER)(void *user, void *ptr);
typedef CS_RETCODE (*CS_PRINT_FUNC)(CS_VOID *);
typedef CS_RETCODE (*CS_COMPARE_FUNC)(CS_VOID *, CS_VOID *, CS_INT);
typedef CS_RETCODE (*CS_KEY_HASH_FUNC)(CS_CHAR *key, CS_INT key_size, CS_INT range, CS_UINT *hash_key);

struct _lmhandle;

/* One entry of a linked list or hash chain, or one open-addressing slot. */
typedef struct _dlinknode {
    LM_NODE_STATE state;
    CS_VOID *key;
    CS_INT key_size;
    CS_VOID *data;
    struct _dlinknode *previous;
    struct _dlinknode *next;
} DLinkNode;

/* State of a doubly linked list, queue or stack. */
typedef struct _dlinkinfo {
    LM_NODE_STATE state;
    DLinkNode *head;
    DLinkNode *tail;
} DLinkInfo;

/* State of a chained hash table: table_size chain heads. */
typedef struct _chashinfo {
    LM_NODE_STATE state;
    DLinkNode **table;
    CS_INT table_size;
    CS_KEY_HASH_FUNC home_addr_hfunc;
} CHashInfo;

/* State of an open-addressing table: every slot holds a permanent node. */
typedef struct _dhashinfo {
    LM_NODE_STATE state;
    DLinkNode **table;
    CS_INT table_size;
    CS_KEY_HASH_FUNC home_addr_hfunc;
    CS_KEY_HASH_FUNC incr_hfunc;
} DHashInfo;

typedef struct _lmcxtprop {
    LM_NODE_STATE state;
    CS_INT list_type;       /* kind of a list allocated with CS_UNUSED */
    CS_INT max_tablesize;   /* slots of a new hash table */
    CS_INT max_poolsize;    /* nodes a new list keeps in reserve */
    CS_INT version;
    CS_INT context_load;    /* live handles */
    CS_CHAR *cur_handlename; /* borrowed from cur_handleaddr */
    struct _lmhandle *cur_handleaddr;
} LM_CXTPROP;

typedef struct _lmcontext {
    LM_NODE_STATE state;
    CS_CHAR *context_name; /* owned copy */
    CS_INT length;
    CS_BOOL lmchkparam;    /* 1: lm_list_alloc_ex refuses a null context or name */
    LM_CXTPROP *cxtprop;
    struct _lmhandle *first_handle; /* newest first */
    LM_ALLOCATOR lmmalloc;
    LM_RELEASER lmfree;
    void *lmuser;
} LM_CONTEXT;

typedef struct _lmhdlprop {
    LM_NODE_STATE state;
    CS_INT list_type;
    CS_INT max_tablesize;
    CS_INT max_poolsize;
    CS_INT handle_load; /* entries */
    LM_CONTEXT *context;
    CS_CHAR *handle_name; /* owned copy */
    CS_INT length;
    CS_PRINT_FUNC print_func;
    CS_COMPARE_FUNC comp_func; /* kept for callers; no operation calls it */
} LM_HDLPROP;

typedef struct _lmhandle {
    LM_NODE_STATE state;
    LM_HDLPROP *hdlprop;
    CS_VOID *list_state;     /* DLinkInfo, CHashInfo or DHashInfo */
    DLinkNode *free_DLN_list; /* node pool, linked through next */
    CS_INT free_nodes;
    CS_VOID *cur_ptr;        /* the cursor, a DLinkNode * */
    struct _lmhandle *next;
    LM_ALLOCATOR lmhmalloc;
    LM_RELEASER lmhfree;
    void *lmhuser;
} LM_HANDLE;

/* lm_initlm_ex with the stack's allocator (comn_malloc / comn_free). */
KES_API CS_RETCODE lm_initlm(CS_INT version, CS_CHAR *context_name, CS_INT length, LM_CONTEXT **context_ptr);

/* Creates a context in *context_ptr.  version below 1100 is an assertion
   failure; length CS_NULLTERM stores the name with its NUL.  Defaults: list
   kind 13, table size 10, pool size 0.  CS_MEM_ERROR leaves nothing behind. */
KES_API CS_RETCODE lm_initlm_ex(CS_INT version, CS_CHAR *context_name, CS_INT length, LM_CONTEXT **context_ptr,
                                LM_ALLOCATOR lm_alloc, LM_RELEASER lm_free, void *userctx);

/* Ends a context.  CS_UNUSED refuses (CS_FAIL) while lists remain;
   LM_FORCE_EXIT drops them all first, stopping at the first failure. */
KES_API CS_RETCODE lm_exit(LM_CONTEXT *context, CS_INT option);

/* lm_list_alloc_ex with the context's allocator. */
KES_API CS_RETCODE lm_list_alloc(LM_CONTEXT *context, CS_INT list_type, CS_CHAR *handle_name, CS_INT length,
                                 LM_HANDLE **handle_ptr);

/* Creates a list of list_type (CS_UNUSED: the context's default) in
   *handle_ptr; it becomes the context's current list.  A hash table gets
   the context's table size (an open-addressing one needs at least 2 slots,
   a chained one 1); every kind but the open-addressing one fills a node pool
   of the context's pool size.  Kind 15 is an assertion failure, other
   unknown kinds give CS_FAIL. */
KES_API CS_RETCODE lm_list_alloc_ex(LM_CONTEXT *context, CS_INT list_type, CS_CHAR *handle_name, CS_INT length,
                                    LM_HANDLE **handle_ptr, LM_ALLOCATOR lm_alloc, LM_RELEASER lm_free,
                                    void *userctx);

/* Releases a list and its nodes (not the caller's keys and data).  CS_UNUSED
   refuses (CS_FAIL) a list that holds entries; LM_FORCE_DROP does not. */
KES_API CS_RETCODE lm_list_drop(LM_HANDLE *handle, CS_INT option);

/* Performs operation on the list; which operations a kind admits, and what
   key, key_size, data_in and data_out mean for it, is the manager's table of
   operations.  An operation a kind does not admit is an assertion failure.
   A missing key gives LM_NOT_FOUND; the end of a walk and a missing print or
   apply function give CS_FAIL. */
KES_API CS_RETCODE lm_list_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                              CS_VOID *data_in, CS_VOID **data_out);

/* Gets, sets or clears a list property (LM_PROP_*).  *outlen, when given, is
   set to 0 first, then to the bytes the value takes. */
KES_API CS_RETCODE lm_list_prop(LM_HANDLE *handle, CS_INT action, CS_INT property, CS_VOID *buffer,
                                CS_INT buflen, CS_INT *outlen);

/* Gets, sets or clears a context property (LM_PROP_*), as lm_list_prop. */
KES_API CS_RETCODE lm_property(LM_CONTEXT *context, CS_INT action, CS_INT property, CS_VOID *buffer,
                               CS_INT buflen, CS_INT *outlen);

KES_END_DECLS

#endif /* KESCOMN_LM_H */
