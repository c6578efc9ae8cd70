// Life of list manager contexts and lists: creation, release, forced release.
#include <cstring>

#include "kesintl.h"
#include "runtime/lm_impl.h"

using kes::lm::Allocator;
using kes::lm::allocator_of;

namespace {

constexpr CS_INT oldest_version = 1100;

void *comn_alloc_adapter(void *, size_t size) { return comn_malloc(size); }
void comn_free_adapter(void *, void *ptr) { comn_free(ptr); }

// Copies a name into a fresh block of the owner's allocator.  CS_NULLTERM
// keeps the NUL as part of the name; a copy always carries one more NUL
// beyond length so that it reads as a C string.  A null name is no name.
CS_RETCODE copy_name(const Allocator &a, const CS_CHAR *name, CS_INT length, CS_CHAR **out, CS_INT *outlen)
{
    *out = nullptr;
    *outlen = 0;
    if (name == nullptr)
        return CS_SUCCEED;
    if (length == CS_NULLTERM)
        length = static_cast<CS_INT>(std::strlen(name)) + 1;
    if (length < 0)
        return KES_TRACE(CS_FAIL);
    auto *copy = static_cast<CS_CHAR *>(a.alloc(a.user, static_cast<size_t>(length) + 1));
    if (copy == nullptr)
        return KES_TRACE(CS_MEM_ERROR);
    std::memcpy(copy, name, static_cast<size_t>(length));
    copy[length] = '\0';
    *out = copy;
    *outlen = length;
    return CS_SUCCEED;
}

void release_name(const Allocator &a, CS_CHAR *name, CS_INT length)
{
    a.release_block(name, static_cast<size_t>(length) + 1);
}

// Undoes a partial context start.
void lm___api_init_fail(const Allocator &a, LM_CONTEXT *context)
{
    release_name(a, context->context_name, context->length);
    a.release_record(context->cxtprop);
    a.release_record(context);
}

// Undoes a partial or complete list: state, pool, name, properties, handle.
void release_handle(LM_HANDLE *handle)
{
    auto a = allocator_of(handle);
    if (LM_HDLPROP *prop = handle->hdlprop) {
        lm__api_list_state_drop(handle, prop->list_type, handle->list_state);
        lm__api_dlink_mpool_drop(handle);
        release_name(a, prop->handle_name, prop->length);
        a.release_record(prop);
    }
    a.release_record(handle);
}

// Builds the kind's state (and pool) for a handle whose properties are set.
CS_RETCODE build_list_state(LM_HANDLE *handle)
{
    LM_HDLPROP *prop = handle->hdlprop;
    switch (prop->list_type) {
    case LM_LIST_DLINK:
    case LM_LIST_QUEUE:
    case LM_LIST_STACK: {
        auto *info = allocator_of(handle).zeroed<DLinkInfo>();
        if (info == nullptr)
            return KES_TRACE(CS_MEM_ERROR);
        info->state = LM_INITIALIZED;
        handle->list_state = info;
        return prop->max_poolsize > 0 ? lm__api_dlink_mpool_init(handle, prop->max_poolsize) : CS_SUCCEED;
    }
    case LM_LIST_CHASH: {
        CS_RETCODE rc = lm__api_chash_init(handle);
        if (rc != CS_SUCCEED || prop->max_poolsize < 1)
            return rc;
        return lm__api_dlink_mpool_init(handle, prop->max_poolsize);
    }
    case LM_LIST_DHASH:
        return lm__api_dhash_init(handle);
    default:
        // Kind 15 is reserved and its use a programming error; anything else
        // (17 included) is simply not a kind.
        KES_ASSERT(prop->list_type != 15);
        return KES_TRACE(CS_FAIL);
    }
}

} // namespace

CS_RETCODE lm_initlm(CS_INT version, CS_CHAR *context_name, CS_INT length, LM_CONTEXT **context_ptr)
{
    return lm_initlm_ex(version, context_name, length, context_ptr, comn_alloc_adapter, comn_free_adapter, nullptr);
}

CS_RETCODE lm_initlm_ex(CS_INT version, CS_CHAR *context_name, CS_INT length, LM_CONTEXT **context_ptr,
                        LM_ALLOCATOR lm_alloc, LM_RELEASER lm_free, void *userctx)
{
    KES_NOT_NULL(context_ptr);
    KES_NOT_NULL(lm_alloc);
    KES_NOT_NULL(lm_free);
    KES_ASSERT(version >= oldest_version);

    Allocator a{lm_alloc, lm_free, userctx};
    auto *context = a.zeroed<LM_CONTEXT>();
    if (context == nullptr)
        return KES_TRACE(CS_MEM_ERROR);
    context->state = LM_ALLOCATED;
    context->cxtprop = a.zeroed<LM_CXTPROP>();
    if (context->cxtprop == nullptr) {
        lm___api_init_fail(a, context);
        return KES_TRACE(CS_MEM_ERROR);
    }
    context->cxtprop->state = LM_ALLOCATED;
    CS_RETCODE rc = copy_name(a, context_name, length, &context->context_name, &context->length);
    if (rc != CS_SUCCEED) {
        lm___api_init_fail(a, context);
        return rc;
    }
    context->lmmalloc = lm_alloc;
    context->lmfree = lm_free;
    context->lmuser = userctx;
    context->lmchkparam = 0;
    context->first_handle = nullptr;
    LM_CXTPROP *prop = context->cxtprop;
    prop->list_type = LM_LIST_DLINK;
    prop->max_tablesize = 10;
    prop->max_poolsize = 0;
    prop->version = version;
    prop->state = LM_INITIALIZED;
    context->state = LM_INITIALIZED;
    *context_ptr = context;
    return CS_SUCCEED;
}

CS_RETCODE lm_exit(LM_CONTEXT *context, CS_INT option)
{
    if (context == nullptr)
        return KES_TRACE(CS_FAIL);
    kes::lm::check_context(context);
    if (option == CS_UNUSED) {
        if (context->cxtprop->context_load != 0)
            return KES_TRACE(CS_FAIL);
    } else {
        KES_ASSERT(option == LM_FORCE_EXIT);
        while (context->first_handle != nullptr) {
            CS_RETCODE rc = lm_list_drop(context->first_handle, LM_FORCE_DROP);
            if (rc != CS_SUCCEED)
                return KES_TRACE(rc);
        }
    }
    KES_ASSERT(context->cxtprop->context_load == 0);
    lm___api_init_fail(allocator_of(context), context);
    return CS_SUCCEED;
}

CS_RETCODE lm_list_alloc(LM_CONTEXT *context, CS_INT list_type, CS_CHAR *handle_name, CS_INT length,
                         LM_HANDLE **handle_ptr)
{
    if (context == nullptr)
        return KES_TRACE(CS_FAIL);
    kes::lm::check_context(context);
    return lm_list_alloc_ex(context, list_type, handle_name, length, handle_ptr, context->lmmalloc, context->lmfree,
                            context->lmuser);
}

CS_RETCODE lm_list_alloc_ex(LM_CONTEXT *context, CS_INT list_type, CS_CHAR *handle_name, CS_INT length,
                            LM_HANDLE **handle_ptr, LM_ALLOCATOR lm_alloc, LM_RELEASER lm_free, void *userctx)
{
    if (context == nullptr)
        return KES_TRACE(CS_FAIL);
    kes::lm::check_context(context);
    if (context->lmchkparam == 1 && handle_name == nullptr)
        return KES_TRACE(CS_FAIL);
    KES_NOT_NULL(handle_ptr);
    KES_NOT_NULL(lm_alloc);
    KES_NOT_NULL(lm_free);
    LM_CXTPROP *cxtprop = context->cxtprop;
    if (list_type == CS_UNUSED)
        list_type = cxtprop->list_type;

    Allocator a{lm_alloc, lm_free, userctx};
    auto *handle = a.zeroed<LM_HANDLE>();
    if (handle == nullptr)
        return KES_TRACE(CS_MEM_ERROR);
    handle->state = LM_ALLOCATED;
    handle->lmhmalloc = lm_alloc;
    handle->lmhfree = lm_free;
    handle->lmhuser = userctx;
    auto *prop = a.zeroed<LM_HDLPROP>();
    if (prop == nullptr) {
        release_handle(handle);
        return KES_TRACE(CS_MEM_ERROR);
    }
    handle->hdlprop = prop;
    prop->state = LM_ALLOCATED;
    prop->list_type = list_type;
    prop->max_tablesize = cxtprop->max_tablesize;
    // The open-addressing table owns a node per slot and never takes from
    // a pool.
    prop->max_poolsize = list_type == LM_LIST_DHASH ? 0 : cxtprop->max_poolsize;
    prop->handle_load = 0;
    prop->context = context;
    CS_RETCODE rc = copy_name(a, handle_name, length, &prop->handle_name, &prop->length);
    if (rc == CS_SUCCEED)
        rc = build_list_state(handle);
    if (rc != CS_SUCCEED) {
        release_handle(handle);
        return rc;
    }
    prop->state = LM_INITIALIZED;
    handle->state = LM_INITIALIZED;
    handle->next = context->first_handle;
    context->first_handle = handle;
    kes::lm::make_current(context, handle);
    cxtprop->context_load++;
    *handle_ptr = handle;
    return CS_SUCCEED;
}

CS_RETCODE lm_list_drop(LM_HANDLE *handle, CS_INT option)
{
    if (handle == nullptr)
        return KES_TRACE(CS_FAIL);
    kes::lm::check_handle(handle);
    LM_CONTEXT *context = handle->hdlprop->context;
    KES_ASSERT(context != nullptr);
    kes::lm::check_context(context);
    if (option == CS_UNUSED) {
        if (handle->hdlprop->handle_load != 0)
            return KES_TRACE(CS_FAIL);
    } else {
        KES_ASSERT(option == LM_FORCE_DROP);
    }

    LM_HANDLE **link = &context->first_handle;
    while (*link != nullptr && *link != handle)
        link = &(*link)->next;
    KES_ASSERT(*link == handle);
    *link = handle->next;
    context->cxtprop->context_load--;
    if (context->cxtprop->cur_handleaddr == handle)
        kes::lm::make_current(context, context->first_handle);
    release_handle(handle);
    return CS_SUCCEED;
}
