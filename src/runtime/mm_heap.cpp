// Heaps of a pool: regions drawn from the supplier or handed in by the
// caller, cut first fit into pieces, and the blocks each handle chains from
// them.  Only requests of block size reach this level, so the linear walks
// of the free lists stay short.
#include <algorithm>
#include <cstdint>

#include "errors/assert.h"
#include "kesintl.h"
#include "runtime/mm_pool.h"

namespace kes::mm {

MmHeap **find_heap(MmPoolHead *head, const void *address)
{
    const auto *a = static_cast<const CS_BYTE *>(address);
    for (MmHeap **link = &head->mph_heap; *link; link = &(*link)->next) {
        const auto *base = reinterpret_cast<const CS_BYTE *>(*link);
        if (a > base && a < base + (*link)->size)
            return link;
    }
    return nullptr;
}

} // namespace kes::mm

using namespace kes::mm;

namespace {

MmList *node_after(MmList *ml) { return reinterpret_cast<MmList *>(bytes(ml) + kPieceHeader + ml->size); }

} // namespace

extern "C" {

CS_RETCODE com___getheap(MM_HANDLE *handle, CS_UINT size, CS_VOID **piece)
{
    if (size > kMaxRequest)
        return KES_TRACE(CS_MEM_ERROR);
    const CS_UINT want = std::max<CS_UINT>(round8(size), kPieceHeader);
    MmPoolHead *head = handle->mmh_head;
    for (int attempt = 0; attempt < 2; attempt++) {
        for (MmHeap *heap = head->mph_heap; heap; heap = heap->next) {
            if (static_cast<CS_UINT>(heap->size) < want)
                continue;
            for (MmList **prev = &heap->free; *prev; prev = &(*prev)->link) {
                MmList *node = *prev;
                if (node->size < want)
                    continue;
                // A remainder must hold a header and the 8 bytes of a link;
                // anything less stays with the piece.
                if (node->size >= want + kPieceHeader + 8) {
                    auto *rest = reinterpret_cast<MmList *>(bytes(node) + kPieceHeader + want);
                    rest->size = node->size - want - kPieceHeader;
                    rest->link = node->link;
                    *prev = rest;
                    node->size = want;
                } else {
                    *prev = node->link;
                }
                *piece = bytes(node) + kPieceHeader;
                return CS_SUCCEED;
            }
        }
        if (attempt == 0) {
            const CS_UINT region = round8(std::max<CS_UINT>(want + kHeapOverhead,
                                                            static_cast<CS_UINT>(head->mph_chunksize)));
            if (region > static_cast<CS_UINT>(INT32_MAX) - 7 ||
                com___sbreak(handle, static_cast<CS_INT>(region)) != CS_SUCCEED)
                break;
        }
    }
    return KES_TRACE(CS_MEM_ERROR);
}

CS_RETCODE com___putheap(MM_HANDLE *handle, CS_VOID *piece)
{
    MmHeap **link = find_heap(handle->mmh_head, piece);
    KES_ASSERT(link != nullptr);
    MmHeap *heap = *link;
    com___insert_block(handle, heap, reinterpret_cast<MmList *>(bytes(piece) - kPieceHeader));
    const MmList *only = heap->free;
    if (heap->status == MM_HEAP_SBREAK && only->link == nullptr &&
        only->size == static_cast<CS_UINT>(heap->size) - kHeapOverhead)
        com___unsbreak(handle, link); // without an unsbreak the region simply stays
    return CS_SUCCEED;
}

CS_RETCODE com___addheap(MM_HANDLE *handle, CS_VOID *buffer, CS_INT buflen, CS_INT status)
{
    KES_ASSERT(buflen >= 17);
    // Caller regions may start anywhere; pieces must stay 8-byte aligned.
    const auto start = reinterpret_cast<std::uintptr_t>(buffer);
    const std::uintptr_t skip = (8 - (start & 7)) & 7;
    if (static_cast<std::uintptr_t>(buflen) < skip + kHeapOverhead + 8)
        return KES_TRACE(CS_FAIL);
    const CS_UINT len = (static_cast<CS_UINT>(buflen) - static_cast<CS_UINT>(skip)) & ~7u;

    auto *heap = reinterpret_cast<MmHeap *>(bytes(buffer) + skip);
    heap->size = static_cast<CS_INT>(len);
    heap->status = status;
    heap->free = reinterpret_cast<MmList *>(heap->buffer);
    heap->free->size = len - kHeapOverhead;
    heap->free->link = nullptr;

    MmPoolHead *head = handle->mmh_head;
    heap->next = head->mph_heap;
    head->mph_heap = heap;
    const std::int64_t total = std::int64_t{head->mph_totalsize} + buflen;
    head->mph_totalsize = static_cast<CS_INT>(std::min<std::int64_t>(total, INT32_MAX));
    return CS_SUCCEED;
}

void com___insert_block(MM_HANDLE *handle, MmHeap *heap, MmList *ml)
{
    MmList *left = nullptr;
    MmList *right = heap->free;
    while (right && right < ml) {
        left = right;
        right = right->link;
    }
    KES_ASSERT(right != ml);
    // Overlap with a free neighbour means the piece is already free.
    KES_ASSERT(left == nullptr || node_after(left) <= ml);
    KES_ASSERT(right == nullptr || node_after(ml) <= right);

    ml->link = right;
    if (right && node_after(ml) == right) {
        ml->size += right->size + kPieceHeader;
        ml->link = right->link;
    }
    if (left && node_after(left) == ml) {
        left->size += ml->size + kPieceHeader;
        left->link = ml->link;
    } else if (left) {
        left->link = ml;
    } else {
        heap->free = ml;
    }
}

CS_RETCODE com___getblock(MM_HANDLE *handle, CS_UINT size, CS_VOID **block)
{
    if (size > kMaxRequest)
        return KES_TRACE(CS_MEM_ERROR);
    CS_VOID *piece = nullptr;
    if (CS_RETCODE rc = com___getheap(handle, size + sizeof(MmBlock), &piece); rc != CS_SUCCEED)
        return KES_TRACE(rc);
    auto *b = static_cast<MmBlock *>(piece);
    b->next = handle->mmh_blocks;
    handle->mmh_blocks = b;
    *block = b->block;
    return CS_SUCCEED;
}

CS_RETCODE com___putblock(MM_HANDLE *handle, CS_VOID *block)
{
    auto *b = reinterpret_cast<MmBlock *>(bytes(block) - sizeof(MmBlock));
    MmBlock **link = &handle->mmh_blocks;
    while (*link && *link != b)
        link = &(*link)->next;
    KES_ASSERT(*link != nullptr);
    *link = b->next;
    return com___putheap(handle, b);
}

CS_RETCODE com___sbreak(MM_HANDLE *handle, CS_INT size)
{
    MmPoolHead *head = handle->mmh_head;
    if (!head->mph_sbreak)
        return KES_TRACE(CS_FAIL);
    if (head->mph_maxsize != MM_NO_LIMIT &&
        std::int64_t{head->mph_totalsize} + size > std::int64_t{head->mph_maxsize})
        return KES_TRACE(CS_FAIL);
    CS_VOID *region = head->mph_sbreak(handle, head->mph_param, size);
    if (!region)
        return KES_TRACE(CS_FAIL);
    // The region goes back by the address of its heap header.
    KES_ASSERT((reinterpret_cast<std::uintptr_t>(region) & 7) == 0);
    return com___addheap(handle, region, size, MM_HEAP_SBREAK);
}

CS_RETCODE com___unsbreak(MM_HANDLE *handle, MmHeap **link)
{
    MmPoolHead *head = handle->mmh_head;
    if (!head->mph_unsbreak)
        return KES_TRACE(CS_FAIL);
    MmHeap *heap = *link;
    *link = heap->next;
    head->mph_unsbreak(handle, head->mph_param, heap);
    return CS_SUCCEED;
}

CS_VOID *com___sbreak_ctx(MM_HANDLE *handle, CS_VOID *param, CS_INT size)
{
    auto *ctx = static_cast<CS_CONTEXT *>(param);
    CS_MALLOC_FUNC alloc = ctx && ctx->ctxmalloc ? ctx->ctxmalloc : comn_malloc;
    return alloc(static_cast<size_t>(size));
}

void com___unsbreak_ctx(MM_HANDLE *handle, CS_VOID *param, CS_VOID *region)
{
    auto *ctx = static_cast<CS_CONTEXT *>(param);
    CS_MFREE_FUNC release = ctx && ctx->ctxfree ? ctx->ctxfree : comn_free;
    release(region);
}

// A missing function of the thread table counts as success.
CS_RETCODE com___lock_ctx(MM_HANDLE *handle, CS_VOID *lockarg)
{
    const CS_CONTEXT *ctx = handle->mmh_head->mph_ctx;
    const CS_THREAD *thread = ctx ? ctx->ctxthread : nullptr;
    if (thread && thread->take_mutex_fn)
        return thread->take_mutex_fn(static_cast<CS_THRDRES *>(lockarg));
    return CS_SUCCEED;
}

CS_RETCODE com___unlock_ctx(MM_HANDLE *handle, CS_VOID *lockarg)
{
    const CS_CONTEXT *ctx = handle->mmh_head->mph_ctx;
    const CS_THREAD *thread = ctx ? ctx->ctxthread : nullptr;
    if (thread && thread->release_mutex_fn)
        return thread->release_mutex_fn(static_cast<CS_THRDRES *>(lockarg));
    return CS_SUCCEED;
}

} // extern "C"
