/*
** Private layers of the memory pool manager: heaps and their supply, blocks
** of a handle, the three disciplines and the lock.  Every function takes the
** handle first and runs under the pool's lock (taken by the public entry).
*/
#ifndef KESCOMN_RUNTIME_MM_POOL_H
#define KESCOMN_RUNTIME_MM_POOL_H

#include <cstddef>
#include <cstdint>

#include "kescomn/mm.h"

namespace kes::mm {

// Bytes in front of every heap piece (its size word) and of every handle
// block (its chain link); the buddy header word and its spare take as many.
inline constexpr CS_UINT kPieceHeader = 8;
// The heap header and the first piece header: region size less this is the
// size of a fresh region's only free piece.
inline constexpr CS_UINT kHeapOverhead = sizeof(MmHeap) + kPieceHeader;
// An allocate-only block: heap-shaped header plus its free record.
inline constexpr CS_UINT kAllocOnlyHeader = sizeof(MmHeap) + sizeof(MmList);
// Largest request any layer accepts, so that size arithmetic stays inside
// CS_INT region sizes.
inline constexpr CS_UINT kMaxRequest = 0x7fffff00u;

inline constexpr CS_UINT round8(CS_UINT n) { return (n + 7u) & ~7u; }

inline CS_BYTE *bytes(void *p) { return static_cast<CS_BYTE *>(p); }

// The link of the heap list that leads to the heap holding address, or null
// when no heap holds it.
MmHeap **find_heap(MmPoolHead *head, const void *address);

// The pool's lock for one public operation: taken when lock and unlock are
// both set and the pool is not being dropped, released on scope exit with
// the functions in force when it was taken.
class PoolLock {
public:
    explicit PoolLock(MM_HANDLE *handle);
    ~PoolLock() { release_as(handle_); }
    PoolLock(const PoolLock &) = delete;
    PoolLock &operator=(const PoolLock &) = delete;

    // CS_SUCCEED, or what the lock function answered.
    CS_RETCODE status() const { return status_; }
    // Unlocks now, naming handle to the unlock function: the locking handle
    // may already be memory of the pool that went back.
    void release_as(MM_HANDLE *handle);

private:
    MM_HANDLE *handle_;
    MM_UNLOCK_FUNC unlock_ = nullptr;
    CS_VOID *lockarg_ = nullptr;
    CS_RETCODE status_ = CS_SUCCEED;
};

} // namespace kes::mm

extern "C" {

// First fit of size bytes (rounded to 8) over the heaps, drawing a new region
// when nothing fits.  CS_MEM_ERROR when no region can be had.
CS_RETCODE com___getheap(MM_HANDLE *handle, CS_UINT size, CS_VOID **piece);
// Returns a piece to its heap; a heap of the supplier that is whole again
// goes back to it.  An address in no heap is an assertion.
CS_RETCODE com___putheap(MM_HANDLE *handle, CS_VOID *piece);
// Installs a region as a heap at the front of the list and counts it in
// mph_totalsize.  Below 17 bytes is an assertion; too small to hold one
// piece is CS_FAIL.
CS_RETCODE com___addheap(MM_HANDLE *handle, CS_VOID *buffer, CS_INT buflen, CS_INT status);
// Puts a free piece back in address order, merging with touching neighbours.
// A piece that is already free is an assertion.
void com___insert_block(MM_HANDLE *handle, MmHeap *heap, MmList *ml);
// A piece of size bytes chained on the handle's mmh_blocks.
CS_RETCODE com___getblock(MM_HANDLE *handle, CS_UINT size, CS_VOID **block);
// Unchains a block of the handle and returns it to the heaps; one not on the
// chain is an assertion.
CS_RETCODE com___putblock(MM_HANDLE *handle, CS_VOID *block);
// A new region of size bytes from the supplier, within the limit.
CS_RETCODE com___sbreak(MM_HANDLE *handle, CS_INT size);
// Unlinks the heap at *link and hands its region back to the supplier;
// CS_FAIL, the heap kept, without an unsbreak function.
CS_RETCODE com___unsbreak(MM_HANDLE *handle, MmHeap **link);
// The default supplier and lock: the context's allocator and thread table.
CS_VOID *com___sbreak_ctx(MM_HANDLE *handle, CS_VOID *param, CS_INT size);
void com___unsbreak_ctx(MM_HANDLE *handle, CS_VOID *param, CS_VOID *region);
CS_RETCODE com___lock_ctx(MM_HANDLE *handle, CS_VOID *lockarg);
CS_RETCODE com___unlock_ctx(MM_HANDLE *handle, CS_VOID *lockarg);

// Takes the whole pool of handle down: regions to the supplier, the lock
// released, the mutex deleted, the records freed.
CS_RETCODE com___remove_pool(MM_HANDLE *handle, kes::mm::PoolLock &lock);
// Gives a childless sub-pool's blocks and handle back to the shared heaps,
// then releases the lock.
CS_RETCODE com___remove_subpool(MM_HANDLE *handle, kes::mm::PoolLock &lock);
// A new child of handle tagged tagid, in the shared heaps.
CS_RETCODE com___subpool(MM_HANDLE *handle, CS_INT tagid, MM_HANDLE **subpool);

// Buddy discipline.
CS_RETCODE com___buddy_split(MM_HANDLE *handle, CS_INT sizeindex);
CS_RETCODE com___buddy_compact(MM_HANDLE *handle, CS_INT size_index);
CS_RETCODE com___buddy_malloc(MM_HANDLE *handle, CS_UINT size, CS_VOID **buffer);
CS_RETCODE com___buddy_free(MM_HANDLE *handle, CS_VOID *buffer);
CS_RETCODE com___buddy_realloc(MM_HANDLE *handle, CS_UINT size, CS_VOID **buffer);

// Uniform and allocate-only disciplines.
CS_RETCODE com___uniform_malloc(MM_HANDLE *handle, CS_UINT size, CS_VOID **buffer);
CS_RETCODE com___uniform_free(MM_HANDLE *handle, CS_VOID *buffer);
CS_RETCODE com___alloconly_malloc(MM_HANDLE *handle, CS_UINT size, CS_VOID **buffer);

} // extern "C"

#endif
