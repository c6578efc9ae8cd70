// The two simple disciplines: uniform pools of one node size, and
// allocate-only pools that move a cursor through their blocks and free
// nothing before the drop.
#include <algorithm>

#include "errors/assert.h"
#include "runtime/mm_pool.h"

using namespace kes::mm;

extern "C" {

CS_RETCODE com___uniform_malloc(MM_HANDLE *handle, CS_UINT size, CS_VOID **buffer)
{
    MmUniformPool &pool = handle->mmh_pool.uniform;
    if (!(handle->mmh_status & MM_ST_ALLOCATED)) {
        // The first request fixes the node size for good, and the block
        // size becomes a whole number of nodes.
        if (size > kMaxRequest - 2 * kPieceHeader)
            return KES_TRACE(CS_MEM_ERROR);
        pool.uniform_size = static_cast<CS_INT>(size);
        pool.node_size = static_cast<CS_INT>(std::max(round8(size), kPieceHeader) + kPieceHeader);
        pool.free = nullptr;
        const CS_INT blocksize = handle->mmh_blocksize;
        handle->mmh_blocksize =
            blocksize < pool.node_size ? pool.node_size : blocksize - blocksize % pool.node_size;
    } else if (size != static_cast<CS_UINT>(pool.uniform_size)) {
        return KES_TRACE(CS_FAIL);
    }

    if (!pool.free) {
        CS_VOID *block = nullptr;
        const auto blocksize = static_cast<CS_UINT>(handle->mmh_blocksize);
        if (CS_RETCODE rc = com___getblock(handle, blocksize, &block); rc != CS_SUCCEED)
            return KES_TRACE(rc);
        const auto node_size = static_cast<CS_UINT>(pool.node_size);
        MmList *next = nullptr;
        // Cut from the end so that the chain runs in address order.
        for (CS_UINT i = blocksize / node_size; i-- > 0;) {
            auto *node = reinterpret_cast<MmList *>(bytes(block) + i * node_size);
            node->size = node_size;
            node->link = next;
            next = node;
        }
        pool.free = next;
    }
    MmList *node = pool.free;
    pool.free = node->link;
    *buffer = bytes(node) + kPieceHeader;
    return CS_SUCCEED;
}

CS_RETCODE com___uniform_free(MM_HANDLE *handle, CS_VOID *buffer)
{
    MmUniformPool &pool = handle->mmh_pool.uniform;
    auto *node = reinterpret_cast<MmList *>(bytes(buffer) - kPieceHeader);
    node->link = pool.free;
    pool.free = node;
    return CS_SUCCEED;
}

CS_RETCODE com___alloconly_malloc(MM_HANDLE *handle, CS_UINT size, CS_VOID **buffer)
{
    MmAllocOnlyPool &pool = handle->mmh_pool.alloconly;
    if (!(handle->mmh_status & MM_ST_ALLOCATED))
        pool.free = nullptr;
    if (size > kMaxRequest - kAllocOnlyHeader)
        return KES_TRACE(CS_MEM_ERROR);
    const CS_UINT want = round8(size);

    MmHeap *block = pool.free;
    while (block && block->free->size < want)
        block = block->next;
    if (!block) {
        const CS_UINT blocksize = std::max(want + kAllocOnlyHeader, static_cast<CS_UINT>(handle->mmh_blocksize));
        CS_VOID *raw = nullptr;
        if (CS_RETCODE rc = com___getblock(handle, blocksize, &raw); rc != CS_SUCCEED)
            return KES_TRACE(rc);
        block = static_cast<MmHeap *>(raw);
        block->size = static_cast<CS_INT>(blocksize);
        block->status = 0;
        block->free = reinterpret_cast<MmList *>(block->buffer);
        block->free->size = blocksize - kAllocOnlyHeader;
        block->free->link = reinterpret_cast<MmList *>(bytes(raw) + kAllocOnlyHeader);
        block->next = pool.free;
        pool.free = block;
    }
    MmList *cursor = block->free;
    *buffer = cursor->link;
    cursor->link = reinterpret_cast<MmList *>(bytes(cursor->link) + want);
    cursor->size -= want;
    return CS_SUCCEED;
}

} // extern "C"
