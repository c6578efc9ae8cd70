// The public face of the pool manager: starting a pool, its properties, the
// allocation entries that dispatch on the discipline, sub-pools and the drop.
#include <cstdint>
#include <cstring>

#include "conv/scalar_io.h"
#include "errors/assert.h"
#include "kesintl.h"
#include "runtime/mm_pool.h"

using kes::conv::load;
using kes::conv::store;
using namespace kes::mm;

namespace kes::mm {

PoolLock::PoolLock(MM_HANDLE *handle) : handle_(handle)
{
    MmPoolHead *head = handle->mmh_head;
    if (!head->mph_lock || !head->mph_unlock || (head->mph_status & MM_ST_DROPPING))
        return;
    status_ = head->mph_lock(handle, head->mph_lockarg);
    if (status_ == CS_SUCCEED) {
        unlock_ = head->mph_unlock;
        lockarg_ = head->mph_lockarg;
    }
}

void PoolLock::release_as(MM_HANDLE *handle)
{
    if (unlock_) {
        MM_UNLOCK_FUNC unlock = unlock_;
        unlock_ = nullptr;
        unlock(handle, lockarg_);
    }
}

} // namespace kes::mm

namespace {

constexpr CS_INT kMinContextVersion = 114;
constexpr size_t kHandleOffset = sizeof(MmPoolHead);
constexpr CS_INT kDefaultBlock = 4096;
// One default block with its piece header and a heap header.
constexpr CS_INT kDefaultChunk = kDefaultBlock + kPieceHeader + kHeapOverhead;
static_assert(kDefaultChunk == 4136);

void *ctx_alloc(CS_CONTEXT *ctx, size_t size)
{
    return ctx->ctxmalloc ? ctx->ctxmalloc(size) : comn_malloc(size);
}

void ctx_free(CS_CONTEXT *ctx, void *p)
{
    if (ctx->ctxfree)
        ctx->ctxfree(p);
    else
        comn_free(p);
}

// Lays fresh records with the defaults every pool starts from: buddy
// discipline, no supplier, no lock, no limit.
MM_HANDLE *lay_records(void *records, CS_INT mark)
{
    KES_ASSERT((reinterpret_cast<std::uintptr_t>(records) & 7) == 0);
    auto *head = static_cast<MmPoolHead *>(records);
    auto *handle = reinterpret_cast<MM_HANDLE *>(bytes(records) + kHandleOffset);
    std::memset(records, 0, MM_OVERHEAD);
    head->mph_status = mark;
    head->mph_chunksize = kDefaultChunk;
    head->mph_maxsize = MM_NO_LIMIT;
    handle->mmh_head = head;
    handle->mmh_type = MM_BUDDY;
    handle->mmh_blocksize = kDefaultBlock;
    handle->mmh_status = mark;
    return handle;
}

MM_HANDLE *root_of(MM_HANDLE *handle)
{
    while (handle->mmh_parent)
        handle = handle->mmh_parent;
    return handle;
}

CS_RETCODE get_property(MM_HANDLE *mmh, CS_INT property, CS_VOID *buffer, CS_INT buflen, CS_INT *outlen)
{
    MmPoolHead *head = mmh->mmh_head;
    CS_INT len = 0;
    // Integers take 4 bytes, pointers 8.
    const auto put = [&](auto value) {
        store(buffer, value);
        len = sizeof value;
    };
    switch (property) {
    case MM_PROP_TYPE: put(mmh->mmh_type); break;
    case MM_PROP_CHUNKSIZE: put(head->mph_chunksize); break;
    case MM_PROP_MAXSIZE: put(head->mph_maxsize); break;
    case MM_PROP_BLOCKSIZE: put(mmh->mmh_blocksize); break;
    case MM_PROP_SBREAK: put(head->mph_sbreak); break;
    case MM_PROP_PARAM: put(head->mph_param); break;
    case MM_PROP_UNSBREAK: put(head->mph_unsbreak); break;
    case MM_PROP_LOCK: put(head->mph_lock); break;
    case MM_PROP_LOCKARG: put(head->mph_lockarg); break;
    case MM_PROP_UNLOCK: put(head->mph_unlock); break;
    case MM_PROP_SUBPOOL: {
        // buflen carries the tag.
        MM_HANDLE *child = mmh->mmh_child;
        while (child && child->mmh_tagid != buflen)
            child = child->mmh_sibling;
        if (!child)
            if (CS_RETCODE rc = com___subpool(mmh, buflen, &child); rc != CS_SUCCEED)
                return KES_TRACE(rc);
        put(child);
        break;
    }
    default: // MM_PROP_ADDHEAP: a region cannot be read back
        com_bomb(__FILE__, __LINE__);
    }
    if (outlen)
        *outlen = len;
    return CS_SUCCEED;
}

CS_RETCODE set_property(MM_HANDLE *mmh, CS_INT property, CS_VOID *buffer, CS_INT buflen)
{
    MmPoolHead *head = mmh->mmh_head;
    const bool settled = mmh->mmh_status & MM_ST_ALLOCATED;
    switch (property) {
    case MM_PROP_TYPE: {
        if (settled)
            return KES_TRACE(CS_FAIL);
        const auto type = load<CS_INT>(buffer);
        if (type < MM_TYPE_NONE || type > MM_UNIFORM)
            return KES_TRACE(MM_EBADTYPE);
        mmh->mmh_type = type;
        return CS_SUCCEED;
    }
    case MM_PROP_BLOCKSIZE:
    case MM_PROP_CHUNKSIZE:
    case MM_PROP_MAXSIZE: {
        const auto value = load<CS_INT>(buffer);
        if (value <= 0 || (property == MM_PROP_BLOCKSIZE && settled))
            return KES_TRACE(CS_FAIL);
        CS_INT *field = property == MM_PROP_BLOCKSIZE   ? &mmh->mmh_blocksize
                        : property == MM_PROP_CHUNKSIZE ? &head->mph_chunksize
                                                        : &head->mph_maxsize;
        *field = value;
        return CS_SUCCEED;
    }
    case MM_PROP_SBREAK: head->mph_sbreak = load<MM_SBREAK_FUNC>(buffer); return CS_SUCCEED;
    case MM_PROP_PARAM: head->mph_param = load<CS_VOID *>(buffer); return CS_SUCCEED;
    case MM_PROP_UNSBREAK: head->mph_unsbreak = load<MM_UNSBREAK_FUNC>(buffer); return CS_SUCCEED;
    case MM_PROP_LOCKARG: head->mph_lockarg = load<CS_VOID *>(buffer); return CS_SUCCEED;
    case MM_PROP_UNLOCK: head->mph_unlock = load<MM_UNLOCK_FUNC>(buffer); return CS_SUCCEED;
    case MM_PROP_LOCK:
        if (head->mph_lock)
            return KES_TRACE(CS_FAIL);
        head->mph_lock = load<MM_LOCK_FUNC>(buffer);
        mmh->mmh_status |= MM_ST_LOCKSET;
        return CS_SUCCEED;
    case MM_PROP_ADDHEAP: return com___addheap(mmh, buffer, buflen, MM_HEAP_CALLER);
    default: // MM_PROP_SUBPOOL is made by reading it
        return KES_TRACE(CS_FAIL);
    }
}

} // namespace

extern "C" {

CS_RETCODE com___subpool(MM_HANDLE *handle, CS_INT tagid, MM_HANDLE **subpool)
{
    CS_VOID *piece = nullptr;
    if (CS_RETCODE rc = com___getheap(handle, sizeof(MM_HANDLE), &piece); rc != CS_SUCCEED)
        return KES_TRACE(rc);
    auto *child = static_cast<MM_HANDLE *>(piece);
    std::memset(child, 0, sizeof *child);
    child->mmh_head = handle->mmh_head;
    child->mmh_type = handle->mmh_type;
    child->mmh_blocksize = handle->mmh_blocksize;
    child->mmh_status = MM_ST_CTXMEM;
    child->mmh_tagid = tagid;
    child->mmh_parent = handle;
    child->mmh_sibling = handle->mmh_child;
    handle->mmh_child = child;
    *subpool = child;
    return CS_SUCCEED;
}

CS_RETCODE com___remove_subpool(MM_HANDLE *handle, PoolLock &lock)
{
    KES_ASSERT(handle->mmh_child == nullptr);
    MM_HANDLE *parent = handle->mmh_parent;
    MM_HANDLE **link = &parent->mmh_child;
    while (*link != handle)
        link = &(*link)->mmh_sibling;
    *link = handle->mmh_sibling;
    while (MmBlock *b = handle->mmh_blocks) {
        handle->mmh_blocks = b->next;
        com___putheap(handle, b);
    }
    // The handle's own memory goes back last, named through the parent: the
    // free piece's link overwrites its first field.
    com___putheap(parent, handle);
    lock.release_as(parent);
    return CS_SUCCEED;
}

CS_RETCODE com___remove_pool(MM_HANDLE *handle, PoolLock &lock)
{
    // Sub-pool handles live in the heaps about to go, so everything is done
    // in the name of the root, whose records lie outside them.
    MM_HANDLE *root = root_of(handle);
    MmPoolHead *head = root->mmh_head;
    head->mph_status |= MM_ST_DROPPING;
    for (MmHeap **link = &head->mph_heap; *link;) {
        if ((*link)->status == MM_HEAP_SBREAK && com___unsbreak(root, link) == CS_SUCCEED)
            continue;
        link = &(*link)->next;
    }
    lock.release_as(root);
    CS_CONTEXT *ctx = head->mph_ctx;
    if ((head->mph_status & MM_ST_OWNMUTEX) && ctx && ctx->ctxthread && ctx->ctxthread->delete_mutex_fn)
        ctx->ctxthread->delete_mutex_fn(static_cast<CS_THRDRES *>(head->mph_lockarg));
    // Records of comn_mmmanage are marked for the context too, but lie in
    // the caller's buffer: with no context there is nothing to free.
    if ((root->mmh_status & MM_ST_CTXMEM) && ctx)
        ctx_free(ctx, head);
    return CS_SUCCEED;
}

CS_RETCODE comn_mminit(CS_CONTEXT *ctx, MM_HANDLE **mmh)
{
    KES_NOT_NULL(ctx);
    KES_NOT_NULL(mmh);
    KES_ASSERT(ctx->ctxversion >= kMinContextVersion);

    const bool caller_memory = *mmh != nullptr;
    void *records = caller_memory ? static_cast<void *>(*mmh) : ctx_alloc(ctx, MM_OVERHEAD);
    if (!records)
        return KES_TRACE(CS_FAIL);
    MM_HANDLE *handle = lay_records(records, caller_memory ? MM_ST_CALLERMEM : MM_ST_CTXMEM);
    MmPoolHead *head = handle->mmh_head;

    if (const CS_THREAD *thread = ctx->ctxthread) {
        if (thread->create_mutex_fn) {
            CS_THRDRES *mutex = nullptr;
            if (CS_RETCODE rc = thread->create_mutex_fn(&mutex); rc != CS_SUCCEED) {
                if (!caller_memory)
                    ctx_free(ctx, records);
                return KES_TRACE(rc);
            }
            head->mph_lockarg = mutex;
            head->mph_status |= MM_ST_OWNMUTEX;
        }
        head->mph_lock = com___lock_ctx;
        head->mph_unlock = com___unlock_ctx;
    }
    head->mph_sbreak = com___sbreak_ctx;
    head->mph_unsbreak = com___unsbreak_ctx;
    head->mph_param = ctx;
    head->mph_ctx = ctx;
    *mmh = handle;
    return CS_SUCCEED;
}

CS_RETCODE comn_mmmanage(CS_VOID *buffer, CS_UINT buflen, MM_HANDLE **mmh)
{
    KES_NOT_NULL(buffer);
    KES_NOT_NULL(mmh);
    CS_BYTE *region = bytes(buffer);
    CS_UINT region_len = buflen;
    MM_HANDLE *handle;
    if (*mmh) {
        handle = lay_records(*mmh, MM_ST_CALLERMEM);
    } else {
        // The records take MM_OVERHEAD bytes; a smaller buffer, however
        // close, could never hold a region.
        if (buflen < MM_OVERHEAD)
            return KES_TRACE(CS_FAIL);
        handle = lay_records(buffer, MM_ST_CTXMEM);
        region += MM_OVERHEAD;
        region_len -= MM_OVERHEAD;
    }
    // Regions are CS_INT-sized; a larger buffer is used up to that bound, and
    // a remainder too small for one piece is left unused.
    const CS_INT len = static_cast<CS_INT>(region_len > INT32_MAX ? INT32_MAX : region_len);
    if (len >= static_cast<CS_INT>(kHeapOverhead + 8))
        com___addheap(handle, region, len, MM_HEAP_CALLER);
    *mmh = handle;
    return CS_SUCCEED;
}

CS_RETCODE comn_mmproperty(MM_HANDLE *mmh, CS_INT action, CS_INT property, CS_VOID *buffer, CS_INT buflen,
                           CS_INT *outlen)
{
    KES_NOT_NULL(mmh);
    KES_ASSERT(action == MM_ACT_GET || action == MM_ACT_SET || action == MM_ACT_CLEAR);
    KES_ASSERT(property >= MM_PROP_TYPE && property <= MM_PROP_BLOCKSIZE);
    KES_ASSERT(action != MM_ACT_CLEAR || (property >= MM_PROP_LOCK && property <= MM_PROP_UNLOCK));
    if (action != MM_ACT_CLEAR)
        KES_NOT_NULL(buffer);

    if (property == MM_PROP_OVERHEAD) {
        // A constant: answered without the lock.
        if (action != MM_ACT_GET)
            return KES_TRACE(CS_FAIL);
        store<CS_INT>(buffer, MM_OVERHEAD);
        if (outlen)
            *outlen = 4;
        return CS_SUCCEED;
    }

    PoolLock lock(mmh);
    if (lock.status() != CS_SUCCEED)
        return KES_TRACE(lock.status());
    if (action == MM_ACT_GET)
        return get_property(mmh, property, buffer, buflen, outlen);
    if (action == MM_ACT_SET)
        return set_property(mmh, property, buffer, buflen);

    // Clear: the lock trio goes at once, and the lock in force is released
    // by the unlock it came with.
    MmPoolHead *head = mmh->mmh_head;
    head->mph_lock = nullptr;
    head->mph_unlock = nullptr;
    head->mph_lockarg = nullptr;
    mmh->mmh_status &= ~MM_ST_LOCKSET;
    lock.release_as(mmh);
    return CS_SUCCEED;
}

CS_RETCODE comn_mmalloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer)
{
    KES_NOT_NULL(mmh);
    KES_NOT_NULL(buffer);
    *buffer = nullptr;
    PoolLock lock(mmh);
    if (lock.status() != CS_SUCCEED)
        return KES_TRACE(lock.status());

    const CS_INT blocksize = mmh->mmh_blocksize;
    CS_RETCODE rc;
    switch (mmh->mmh_type) {
    case MM_BUDDY: rc = com___buddy_malloc(mmh, size, buffer); break;
    case MM_UNIFORM: rc = com___uniform_malloc(mmh, size, buffer); break;
    case MM_ALLOCONLY: rc = com___alloconly_malloc(mmh, size, buffer); break;
    default: com_bomb(__FILE__, __LINE__);
    }
    if (rc == CS_SUCCEED)
        mmh->mmh_status |= MM_ST_ALLOCATED;
    else if (!(mmh->mmh_status & MM_ST_ALLOCATED))
        mmh->mmh_blocksize = blocksize; // an unsettled pool stays unsettled
    lock.release_as(mmh);

    if (rc != CS_SUCCEED) {
        *buffer = nullptr;
        return KES_TRACE(rc);
    }
    std::memset(*buffer, 0, size);
    return CS_SUCCEED;
}

CS_RETCODE comn_mmrealloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer)
{
    KES_NOT_NULL(mmh);
    KES_NOT_NULL(buffer);
    KES_NOT_NULL(*buffer);
    if (mmh->mmh_type != MM_BUDDY)
        return KES_TRACE(CS_FAIL);
    PoolLock lock(mmh);
    if (lock.status() != CS_SUCCEED)
        return KES_TRACE(lock.status());
    KES_ASSERT(mmh->mmh_status & MM_ST_ALLOCATED);
    KES_ASSERT(find_heap(mmh->mmh_head, *buffer) != nullptr);
    return com___buddy_realloc(mmh, size, buffer);
}

CS_RETCODE comn_mmfree(MM_HANDLE *mmh, CS_VOID *buf)
{
    KES_NOT_NULL(mmh);
    KES_NOT_NULL(buf);
    PoolLock lock(mmh);
    KES_ASSERT(lock.status() == CS_SUCCEED);
    KES_ASSERT(mmh->mmh_status & MM_ST_ALLOCATED);
    KES_ASSERT(find_heap(mmh->mmh_head, buf) != nullptr);
    switch (mmh->mmh_type) {
    case MM_BUDDY: return com___buddy_free(mmh, buf);
    case MM_UNIFORM: return com___uniform_free(mmh, buf);
    case MM_ALLOCONLY: return KES_TRACE(CS_FAIL);
    default: com_bomb(__FILE__, __LINE__);
    }
}

CS_RETCODE comn_mmdiag(MM_HANDLE *mmh)
{
    KES_NOT_NULL(mmh);
    com_bomb(__FILE__, __LINE__);
}

CS_RETCODE comn_mmdrop(MM_HANDLE *mmh, CS_INT option)
{
    KES_NOT_NULL(mmh);
    KES_ASSERT(option == MM_FORCE_DROP || option == CS_UNUSED);
    KES_ASSERT(mmh->mmh_status & (MM_ST_CTXMEM | MM_ST_CALLERMEM));
    PoolLock lock(mmh);
    if (lock.status() != CS_SUCCEED)
        return KES_TRACE(lock.status());
    if (option == CS_UNUSED && mmh->mmh_child)
        return KES_TRACE(CS_BUSY);
    if (option == CS_UNUSED && mmh->mmh_parent)
        return com___remove_subpool(mmh, lock);
    return com___remove_pool(mmh, lock);
}

} // extern "C"
