/*
** Private pieces of the list manager shared by its files: the key hash, the
** node supply and pool, record release, and the per-kind table builders.
*/
#ifndef KESCOMN_RUNTIME_LM_IMPL_H
#define KESCOMN_RUNTIME_LM_IMPL_H

#include <cstring>

#include "errors/assert.h"
#include "kescomn/lm.h"

/* Folds key_size bytes of key into 32 bits (0 for an empty key). */
CS_RETCODE lm___api_key_to_uint(CS_CHAR *key, CS_INT key_size, CS_UINT *value);
/* The home slot: the folded key modulo range; CS_FAIL and 0 for range <= 0. */
CS_RETCODE lm__api_key_to_hash(CS_CHAR *key, CS_INT key_size, CS_INT range, CS_UINT *hash_key);
/* The second hash, in 1..range-1: (value * 7) % (range - 1) + 1; CS_FAIL and
   0 for range <= 0, an assertion failure for range 1. */
CS_RETCODE lm__api_key_to_hash2(CS_CHAR *key, CS_INT key_size, CS_INT range, CS_UINT *hash_key);

/* A node from the pool, else a fresh zeroed one; null when memory is out. */
DLinkNode *lm__get_dlinknode(LM_HANDLE *handle);
/* Back to the pool while it is below max_poolsize, else released. */
void lm__free_dlinknode(LM_HANDLE *handle, DLinkNode *node);
/* Fills the pool with count nodes; on failure frees the whole pool. */
CS_RETCODE lm__api_dlink_mpool_init(LM_HANDLE *handle, CS_INT count);
/* Frees every node of the pool. */
void lm__api_dlink_mpool_drop(LM_HANDLE *handle);
/* Grows or shrinks the pool from old_size to new_size nodes; on failure the
   pool is as it was. */
CS_RETCODE lm__api_dlink_mpool_resize(LM_HANDLE *handle, CS_INT old_size, CS_INT new_size);

/* Builds an empty table of max_tablesize slots as the handle's list state
   (the previous state is not touched: the caller keeps it). */
CS_RETCODE lm__api_chash_init(LM_HANDLE *handle);
CS_RETCODE lm__api_dhash_init(LM_HANDLE *handle);
/* Releases a list state and every node hanging on it, not through the pool. */
void lm__api_list_state_drop(LM_HANDLE *handle, CS_INT list_type, CS_VOID *list_state);

/* Copies srclen bytes (CS_NULLTERM: up to the NUL) plus a NUL when null_term
   is 1, if they fit in destlen; *outlen gets the bytes needed either way.
   Always CS_SUCCEED: a short buffer shows only in *outlen. */
CS_RETCODE lm__api_cp_bytes(const CS_CHAR *src, CS_INT srclen, CS_BOOL null_term, CS_VOID *dest, CS_INT destlen,
                            CS_INT *outlen);

namespace kes::lm {

// The allocator of a context or of a list.
struct Allocator {
    LM_ALLOCATOR alloc;
    LM_RELEASER release;
    void *user;

    template <class T> T *zeroed(size_t count = 1) const
    {
        void *p = alloc(user, sizeof(T) * count);
        if (p != nullptr)
            std::memset(p, 0, sizeof(T) * count);
        return static_cast<T *>(p);
    }
    // Zeroes and stamps a record before it goes, so that a stale pointer
    // meets LM_RELEASED rather than plausible contents.
    template <class T> void release_record(T *rec) const
    {
        if (rec == nullptr)
            return;
        std::memset(static_cast<void *>(rec), 0, sizeof(T));
        rec->state = LM_RELEASED;
        release(user, rec);
    }
    // Releases a raw block (a table, a name) after zeroing its count bytes.
    void release_block(void *block, size_t bytes) const
    {
        if (block == nullptr)
            return;
        std::memset(block, 0, bytes);
        release(user, block);
    }
};

inline Allocator allocator_of(const LM_HANDLE *h) { return {h->lmhmalloc, h->lmhfree, h->lmhuser}; }
inline Allocator allocator_of(const LM_CONTEXT *c) { return {c->lmmalloc, c->lmfree, c->lmuser}; }

// A handle every entry point may work on: not released, all records present.
inline void check_handle(const LM_HANDLE *h)
{
    KES_ASSERT(h->state == LM_INITIALIZED);
    KES_ASSERT(h->hdlprop != nullptr && h->hdlprop->state == LM_INITIALIZED);
    KES_ASSERT(h->list_state != nullptr);
}

inline void check_context(const LM_CONTEXT *c)
{
    KES_ASSERT(c->state == LM_INITIALIZED);
    KES_ASSERT(c->cxtprop != nullptr && c->cxtprop->state == LM_INITIALIZED);
}

// The smallest table a hash kind can address: the open-addressing second
// hash divides by size - 1.
inline CS_INT min_table_size(CS_INT list_type) { return list_type == LM_LIST_DHASH ? 2 : 1; }

// Makes handle (or none) the context's current list.
inline void make_current(LM_CONTEXT *c, LM_HANDLE *h)
{
    c->cxtprop->cur_handleaddr = h;
    c->cxtprop->cur_handlename = h != nullptr ? h->hdlprop->handle_name : nullptr;
}

} // namespace kes::lm

#endif /* KESCOMN_RUNTIME_LM_IMPL_H */
