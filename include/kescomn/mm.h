/*
** The memory pool manager.  A pool draws large regions ("heaps") from a
** supplier, by default the context's allocator, and hands out memory by one
** of three disciplines: buddy blocks, fixed-size nodes or allocate-only.
** Sub-pools share their parent's heaps under a tag.  One lock per pool,
** shared with its sub-pools, guards every operation when lock functions are
** set.  The records are public because a pool may live in caller memory:
** MM_OVERHEAD bytes hold the head (offset 0) and the handle (offset 88).
*/
#ifndef KESCOMN_MM_H
#define KESCOMN_MM_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* A bad value for a pool's type. */
#define MM_EBADTYPE (-214)

/* Disciplines (mmh_type).  MM_TYPE_NONE may be set but not allocated from. */
#define MM_TYPE_NONE 2235
#define MM_BUDDY 2236
#define MM_ALLOCONLY 2237
#define MM_UNIFORM 2238

/* Actions of comn_mmproperty. */
#define MM_ACT_GET 33
#define MM_ACT_SET 34
#define MM_ACT_CLEAR 35

/* Properties of comn_mmproperty. */
#define MM_PROP_TYPE 1235
#define MM_PROP_SBREAK 1236
#define MM_PROP_PARAM 1237
#define MM_PROP_UNSBREAK 1238
#define MM_PROP_LOCK 1239
#define MM_PROP_LOCKARG 1240
#define MM_PROP_UNLOCK 1241
#define MM_PROP_CHUNKSIZE 1242
#define MM_PROP_MAXSIZE 1243
#define MM_PROP_ADDHEAP 1244
#define MM_PROP_OVERHEAD 1245
#define MM_PROP_SUBPOOL 1246
#define MM_PROP_BLOCKSIZE 1247

/* Option of comn_mmdrop beside CS_UNUSED: take the whole pool down. */
#define MM_FORCE_DROP 300

/* mph_maxsize when there is no limit. */
#define MM_NO_LIMIT (-9999)
/* Bytes of caller memory that comn_mmmanage keeps for head and handle. */
#define MM_OVERHEAD 288

/* Status bits of a handle (mmh_status) and of a head (mph_status). */
#define MM_ST_CTXMEM 0x1     /* the record goes back to the context */
#define MM_ST_CALLERMEM 0x2  /* the record lies in caller memory */
#define MM_ST_ALLOCATED 0x8  /* handle: the first allocation was made */
#define MM_ST_LOCKSET 0x10   /* handle: lock functions set by property */
#define MM_ST_OWNMUTEX 0x10  /* head: the pool created its mutex */
#define MM_ST_DROPPING 0x20  /* head: being dropped, nothing locks */

/* Heap status: from the supplier, or handed in by the caller. */
#define MM_HEAP_SBREAK 1
#define MM_HEAP_CALLER 2

/* Header word of a buddy block.  The offset marker (bits 4-20) holds bits
   2-18 of the address of the big block; blocks are 8-byte aligned, so its
   lowest bit is always clear and serves as the fifth bit of size index 16. */
#define MM_BUDDY_OVERSIZE 0x80000000u /* low 31 bits: the requested size */
#define MM_BUDDY_FREE 0x40000000u
#define MM_BUDDY_MARK_MASK 0x001fffe0u
#define MM_BUDDY_INDEX_MASK 0x0000001fu
#define MM_BUDDY_LISTS 17

typedef struct _mmhandle MM_HANDLE;

/* The supplier: a new region of size bytes, or null. */
typedef CS_VOID *(*MM_SBREAK_FUNC)(MM_HANDLE *handle, CS_VOID *param, CS_INT size);
/* Takes back a region the supplier gave. */
typedef void (*MM_UNSBREAK_FUNC)(MM_HANDLE *handle, CS_VOID *param, CS_VOID *region);
/* Lock and unlock of the pool; anything but CS_SUCCEED ends the operation. */
typedef CS_RETCODE (*MM_LOCK_FUNC)(MM_HANDLE *handle, CS_VOID *lockarg);
typedef CS_RETCODE (*MM_UNLOCK_FUNC)(MM_HANDLE *handle, CS_VOID *lockarg);

/* A free piece of a heap.  size counts the data; link is the first 8 bytes
   of the data, so a piece holds at least 8. */
typedef struct _mmlist {
    CS_UINT size;
    CS_UINT spare;
    struct _mmlist *link;
} MmList;

/* The start of every region (24 bytes), followed by its pieces. */
typedef struct _mmheap {
    CS_INT size;   /* the whole region */
    CS_INT status; /* MM_HEAP_SBREAK or MM_HEAP_CALLER */
    struct _mmheap *next;
    MmList *free;  /* by address */
    CS_BYTE buffer[];
} MmHeap;

/* A piece taken for one handle, chained on its mmh_blocks. */
typedef struct _mmblock {
    struct _mmblock *next;
    CS_BYTE block[];
} MmBlock;

/* A free buddy block; size is the header word. */
typedef struct _mmdlist {
    CS_UINT size;
    CS_UINT spare;
    struct _mmdlist *next;
    struct _mmdlist *prev;
} MmDList;

/* Index k of free holds blocks of 2^(k+4) bytes, header included; lists
   above bpmax hold (MmDList *)-1. */
typedef struct _mm_buddy_pool {
    CS_INT bpmax;
    MmDList *free[MM_BUDDY_LISTS];
} MmBuddyPool;

typedef struct _mm_uniform_pool {
    CS_INT uniform_size; /* the one request size */
    CS_INT node_size;    /* rounded size plus the 8-byte size word */
    MmList *free;
} MmUniformPool;

/* Blocks shaped as heap headers whose free record holds the bytes left
   (size) and the next free byte (link). */
typedef struct _mm_alloconly_pool {
    MmHeap *free;
} MmAllocOnlyPool;

/* What a pool shares with its sub-pools. */
typedef struct _mmpoolhead {
    MM_SBREAK_FUNC mph_sbreak;
    MM_UNSBREAK_FUNC mph_unsbreak;
    CS_VOID *mph_param;
    MM_LOCK_FUNC mph_lock;
    MM_UNLOCK_FUNC mph_unlock;
    CS_VOID *mph_lockarg;
    CS_INT mph_chunksize; /* smallest region asked for */
    CS_INT mph_totalsize; /* bytes ever added; never lowered */
    CS_INT mph_maxsize;   /* limit of mph_totalsize, or MM_NO_LIMIT */
    MmHeap *mph_heap;     /* newest first */
    CS_CONTEXT *mph_ctx;  /* null for a pool over caller memory */
    CS_INT mph_status;
} MmPoolHead;

/* One pool or sub-pool. */
struct _mmhandle {
    MmPoolHead *mmh_head;
    CS_INT mmh_type;
    CS_INT mmh_blocksize;
    CS_INT mmh_status;
    CS_INT mmh_tagid;
    MmBlock *mmh_blocks;
    struct _mmhandle *mmh_parent;
    struct _mmhandle *mmh_child;
    struct _mmhandle *mmh_sibling;
    union {
        MmBuddyPool buddy;
        MmUniformPool uniform;
        MmAllocOnlyPool alloconly;
    } mmh_pool;
};

KES_STATIC_ASSERT(sizeof(MmPoolHead) == 88, "the handle follows the head at 88");
KES_STATIC_ASSERT(sizeof(MM_HANDLE) + 88 == MM_OVERHEAD, "head and handle fill MM_OVERHEAD");
KES_STATIC_ASSERT(sizeof(MmHeap) == 24, "heap header is 24 bytes");

/* Starts a pool on ctx (ctxversion 114 or above, else an assertion).  A
   non-null *mmh is caller memory of MM_OVERHEAD bytes for the records;
   otherwise they come from the context's allocator.  With ctxthread the pool
   makes its own mutex and locks through the context's thread table.  Buddy
   discipline, block size 4096, chunk size 4136, no limit.  CS_FAIL when the
   records cannot be had; a mutex failure is returned as it came. */
KES_API CS_RETCODE comn_mminit(CS_CONTEXT *ctx, MM_HANDLE **mmh);

/* A pool inside buffer, with no supplier and no lock.  With *mmh null the
   records take the first MM_OVERHEAD bytes (buflen below that is CS_FAIL) and
   the rest is the pool's region; with *mmh given (MM_OVERHEAD bytes of
   caller memory) all of buffer is the region. */
KES_API CS_RETCODE comn_mmmanage(CS_VOID *buffer, CS_UINT buflen, MM_HANDLE **mmh);

/* Gets (value copied into buffer, its size into *outlen when given), sets
   (value read from buffer) or clears a property.  MM_PROP_ADDHEAP sets a
   region of buflen bytes at buffer; MM_PROP_SUBPOOL gets the child tagged
   buflen, made if missing.  Type and block size change only before the first
   allocation (CS_FAIL after); a type outside 2235-2238 is MM_EBADTYPE; a lock
   is set only when none is (else CS_FAIL); chunk size, limit and block size
   must be above 0.  Clear applies to the lock trio only and clears all three,
   calling the old unlock.  Unknown actions or properties are assertions. */
KES_API CS_RETCODE comn_mmproperty(MM_HANDLE *mmh, CS_INT action, CS_INT property, CS_VOID *buffer,
                                   CS_INT buflen, CS_INT *outlen);

/* size cleared bytes in *buffer (null on failure).  CS_MEM_ERROR when no
   memory can be had within the limit; CS_FAIL for a uniform pool asked for
   another size than its first request. */
KES_API CS_RETCODE comn_mmalloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer);

/* Buddy pools only (CS_FAIL otherwise).  A block whose capacity, its 8-byte
   header counted in, reaches size stays where it is; otherwise *buffer moves
   to a new block with the old contents, the added part not cleared.  On
   failure *buffer is unchanged and still valid. */
KES_API CS_RETCODE comn_mmrealloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer);

/* Gives buf back to its pool.  CS_FAIL for an allocate-only pool, which
   frees only at the drop.  Freeing before any allocation, an address outside
   the pool's heaps or a double buddy free is an assertion. */
KES_API CS_RETCODE comn_mmfree(MM_HANDLE *mmh, CS_VOID *buf);

/* Not available in this build: an assertion. */
KES_API CS_RETCODE comn_mmdiag(MM_HANDLE *mmh);

/* Drops a pool (option CS_UNUSED or MM_FORCE_DROP; other values are
   assertions).  Unforced: CS_BUSY while sub-pools remain; a sub-pool gives
   its memory back to the shared heaps.  Forced, or for a root pool, the whole
   pool goes with every sub-pool, and its regions go back to the supplier. */
KES_API CS_RETCODE comn_mmdrop(MM_HANDLE *mmh, CS_INT option);

KES_END_DECLS

#endif /* KESCOMN_MM_H */
