// The buddy discipline: blocks of 2^(k+4) bytes cut from big blocks of the
// handle, one free list per size.  Freeing never merges; merging waits for a
// shortage (com___buddy_compact), so allocation and free are list operations.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "errors/assert.h"
#include "runtime/mm_pool.h"

using namespace kes::mm;

namespace {

constexpr CS_INT kMaxIndex = MM_BUDDY_LISTS - 1;
constexpr CS_UINT kMinRequest = 12;

MmDList *const kUnusable = reinterpret_cast<MmDList *>(std::intptr_t{-1});

constexpr CS_UINT block_bytes(CS_INT index) { return 1u << (index + 4); }

// The index of the smallest block whose data hold n bytes.
constexpr CS_INT size_index(CS_UINT n)
{
    const std::uint64_t m = std::max(n, kMinRequest);
    return static_cast<CS_INT>(std::bit_width(m + 7)) - 1 - 3;
}
static_assert(size_index(0) == 1 && size_index(24) == 1 && size_index(25) == 2);
static_assert(size_index(4088) == 8 && size_index(4089) == 9);

constexpr CS_UINT index_of(CS_UINT word) { return word & MM_BUDDY_INDEX_MASK; }

// The offset marker: bits 2 to 18 of the big block's address.
CS_UINT marker_of(const void *big)
{
    return static_cast<CS_UINT>((reinterpret_cast<std::uintptr_t>(big) >> 2) << 4) & MM_BUDDY_MARK_MASK;
}

MmDList *as_block(void *p) { return static_cast<MmDList *>(p); }

void push_front(MmBuddyPool &pool, CS_INT index, MmDList *b)
{
    b->prev = nullptr;
    b->next = pool.free[index];
    if (b->next)
        b->next->prev = b;
    pool.free[index] = b;
}

void unlink(MmBuddyPool &pool, CS_INT index, MmDList *b)
{
    if (b->prev)
        b->prev->next = b->next;
    else
        pool.free[index] = b->next;
    if (b->next)
        b->next->prev = b->prev;
}

// Offset of block b within its big block.  The marker keeps 19 bits of
// address, enough for every level but the halves of a 2^20-byte big block;
// those are placed by the handle's block chain instead.
std::uintptr_t offset_in_big(const MM_HANDLE *handle, const MmDList *b, CS_INT level)
{
    const auto addr = reinterpret_cast<std::uintptr_t>(b);
    if (level + 4 < 19) {
        const std::uintptr_t mark = (b->size & MM_BUDDY_MARK_MASK) >> 4;
        return (((addr >> 2) - mark) & 0x1ffff) << 2;
    }
    const std::uintptr_t big_bytes = block_bytes(handle->mmh_pool.buddy.bpmax);
    for (const MmBlock *blk = handle->mmh_blocks; blk; blk = blk->next) {
        const auto start = reinterpret_cast<std::uintptr_t>(blk->block);
        if (addr >= start && addr < start + big_bytes)
            return addr - start;
    }
    com_bomb(__FILE__, __LINE__);
}

// Fixes the free lists on the first allocation: the big block becomes the
// largest power of two within mmh_blocksize, plus room for one header.
void settle(MM_HANDLE *handle)
{
    MmBuddyPool &pool = handle->mmh_pool.buddy;
    const CS_UINT usable = handle->mmh_blocksize > 8 ? static_cast<CS_UINT>(handle->mmh_blocksize) - 8 : 0;
    pool.bpmax = std::min(size_index(usable), kMaxIndex);
    handle->mmh_blocksize = static_cast<CS_INT>(block_bytes(pool.bpmax) + kPieceHeader);
    for (CS_INT k = 0; k < MM_BUDDY_LISTS; k++)
        pool.free[k] = k <= pool.bpmax ? nullptr : kUnusable;
}

CS_RETCODE new_big_block(MM_HANDLE *handle)
{
    MmBuddyPool &pool = handle->mmh_pool.buddy;
    CS_VOID *big = nullptr;
    if (CS_RETCODE rc = com___getblock(handle, static_cast<CS_UINT>(handle->mmh_blocksize), &big);
        rc != CS_SUCCEED)
        return KES_TRACE(rc);
    MmDList *b = as_block(big);
    b->size = MM_BUDDY_FREE | marker_of(big) | static_cast<CS_UINT>(pool.bpmax);
    push_front(pool, pool.bpmax, b);
    return CS_SUCCEED;
}

} // namespace

extern "C" {

CS_RETCODE com___buddy_split(MM_HANDLE *handle, CS_INT sizeindex)
{
    MmBuddyPool &pool = handle->mmh_pool.buddy;
    if (sizeindex >= pool.bpmax)
        return KES_TRACE(CS_FAIL);
    if (!pool.free[sizeindex + 1] && com___buddy_split(handle, sizeindex + 1) != CS_SUCCEED)
        return KES_TRACE(CS_FAIL);
    MmDList *first = pool.free[sizeindex + 1];
    unlink(pool, sizeindex + 1, first);
    MmDList *second = as_block(bytes(first) + block_bytes(sizeindex));
    first->size = (first->size & ~MM_BUDDY_INDEX_MASK) | static_cast<CS_UINT>(sizeindex);
    second->size = first->size;
    push_front(pool, sizeindex, second);
    push_front(pool, sizeindex, first);
    return CS_SUCCEED;
}

CS_RETCODE com___buddy_compact(MM_HANDLE *handle, CS_INT size_index)
{
    MmBuddyPool &pool = handle->mmh_pool.buddy;
    bool merged = false;
    for (CS_INT level = 0; level < size_index; level++) {
        merged = false;
        const CS_UINT bytes_here = block_bytes(level);
        for (MmDList *b = pool.free[level]; b;) {
            MmDList *next = b->next;
            const bool upper = (offset_in_big(handle, b, level) / bytes_here) & 1;
            MmDList *buddy = as_block(upper ? bytes(b) - bytes_here : bytes(b) + bytes_here);
            const CS_UINT word = b->size;
            const CS_UINT other = buddy->size;
            // Same big block, and never a buddy larger than the block itself:
            // anything else is a corrupted header.  A smaller index means the
            // buddy is split, which is normal.
            KES_ASSERT(((word ^ other) & ~(MM_BUDDY_FREE | MM_BUDDY_INDEX_MASK)) == 0);
            KES_ASSERT(index_of(other) <= static_cast<CS_UINT>(level));
            if (word == other) {
                if (next == buddy)
                    next = buddy->next;
                unlink(pool, level, b);
                unlink(pool, level, buddy);
                MmDList *lower = std::min(b, buddy);
                lower->size = (word & ~MM_BUDDY_INDEX_MASK) | static_cast<CS_UINT>(level + 1);
                push_front(pool, level + 1, lower);
                merged = true;
            }
            b = next;
        }
    }
    return merged ? CS_SUCCEED : KES_TRACE(CS_FAIL);
}

CS_RETCODE com___buddy_malloc(MM_HANDLE *handle, CS_UINT size, CS_VOID **buffer)
{
    MmBuddyPool &pool = handle->mmh_pool.buddy;
    if (!(handle->mmh_status & MM_ST_ALLOCATED))
        settle(handle);
    const CS_INT index = size_index(size);
    if (index > pool.bpmax) {
        if (size > kMaxRequest - 2 * kPieceHeader)
            return KES_TRACE(CS_MEM_ERROR);
        CS_VOID *block = nullptr;
        if (CS_RETCODE rc = com___getblock(handle, size + kPieceHeader, &block); rc != CS_SUCCEED)
            return KES_TRACE(rc);
        as_block(block)->size = MM_BUDDY_OVERSIZE | size;
        *buffer = bytes(block) + kPieceHeader;
        return CS_SUCCEED;
    }
    if (!pool.free[index] && com___buddy_split(handle, index) != CS_SUCCEED &&
        com___buddy_compact(handle, index) != CS_SUCCEED) {
        if (CS_RETCODE rc = new_big_block(handle); rc != CS_SUCCEED)
            return KES_TRACE(rc);
        if (index < pool.bpmax)
            KES_ASSERT(com___buddy_split(handle, index) == CS_SUCCEED);
    }
    MmDList *b = pool.free[index];
    unlink(pool, index, b);
    b->size &= ~MM_BUDDY_FREE;
    *buffer = bytes(b) + kPieceHeader;
    return CS_SUCCEED;
}

CS_RETCODE com___buddy_free(MM_HANDLE *handle, CS_VOID *buffer)
{
    MmBuddyPool &pool = handle->mmh_pool.buddy;
    MmDList *b = as_block(bytes(buffer) - kPieceHeader);
    if (b->size & MM_BUDDY_OVERSIZE) {
        b->size &= ~MM_BUDDY_OVERSIZE;
        return com___putblock(handle, b);
    }
    KES_ASSERT(!(b->size & MM_BUDDY_FREE));
    const CS_INT index = static_cast<CS_INT>(index_of(b->size));
    KES_ASSERT(index <= pool.bpmax);
    b->size |= MM_BUDDY_FREE;
    push_front(pool, index, b);
    return CS_SUCCEED;
}

CS_RETCODE com___buddy_realloc(MM_HANDLE *handle, CS_UINT size, CS_VOID **buffer)
{
    const MmDList *b = as_block(bytes(*buffer) - kPieceHeader);
    const CS_UINT word = b->size;
    KES_ASSERT(!(word & MM_BUDDY_FREE) || (word & MM_BUDDY_OVERSIZE));
    // The capacity of a pooled block counts its header in, so a request of up
    // to 8 bytes past its data still stays put.
    const bool oversize = word & MM_BUDDY_OVERSIZE;
    const CS_UINT capacity = oversize ? word & ~MM_BUDDY_OVERSIZE : block_bytes(index_of(word));
    if (capacity >= size)
        return CS_SUCCEED;
    CS_VOID *moved = nullptr;
    if (CS_RETCODE rc = com___buddy_malloc(handle, size, &moved); rc != CS_SUCCEED)
        return KES_TRACE(rc);
    std::memcpy(moved, *buffer, oversize ? capacity : capacity - kPieceHeader);
    com___buddy_free(handle, *buffer);
    *buffer = moved;
    return CS_SUCCEED;
}

} // extern "C"
