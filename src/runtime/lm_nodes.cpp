// Node supply of the list manager: the per-list pool, the table builders and
// the release of a list's state.
#include <cstring>

#include "runtime/lm_impl.h"

using kes::lm::allocator_of;

DLinkNode *lm__get_dlinknode(LM_HANDLE *handle)
{
    if (handle->free_nodes > 0) {
        DLinkNode *node = handle->free_DLN_list;
        KES_ASSERT(node != nullptr && node->state == LM_UNINITIALIZED);
        handle->free_DLN_list = node->next;
        handle->free_nodes--;
        node->previous = node->next = nullptr;
        return node;
    }
    DLinkNode *node = allocator_of(handle).zeroed<DLinkNode>();
    if (node != nullptr)
        node->state = LM_ALLOCATED;
    return node;
}

void lm__free_dlinknode(LM_HANDLE *handle, DLinkNode *node)
{
    if (handle->free_nodes < handle->hdlprop->max_poolsize) {
        // Key and data stay: nothing reads a pooled node's entry.
        node->state = LM_UNINITIALIZED;
        node->previous = nullptr;
        node->next = handle->free_DLN_list;
        handle->free_DLN_list = node;
        handle->free_nodes++;
        return;
    }
    allocator_of(handle).release_record(node);
}

namespace {

// Allocates count pool nodes as a chain; null (having freed what it made)
// when memory runs out.
DLinkNode *make_pool_chain(LM_HANDLE *handle, CS_INT count, DLinkNode **last)
{
    auto a = allocator_of(handle);
    DLinkNode *chain = nullptr;
    *last = nullptr;
    for (CS_INT i = 0; i < count; i++) {
        DLinkNode *node = a.zeroed<DLinkNode>();
        if (node == nullptr) {
            while (chain != nullptr) {
                DLinkNode *next = chain->next;
                a.release_record(chain);
                chain = next;
            }
            return nullptr;
        }
        node->state = LM_UNINITIALIZED;
        node->next = chain;
        if (chain == nullptr)
            *last = node;
        chain = node;
    }
    return chain;
}

} // namespace

CS_RETCODE lm__api_dlink_mpool_init(LM_HANDLE *handle, CS_INT count)
{
    return lm__api_dlink_mpool_resize(handle, 0, count);
}

void lm__api_dlink_mpool_drop(LM_HANDLE *handle)
{
    auto a = allocator_of(handle);
    while (handle->free_DLN_list != nullptr) {
        DLinkNode *next = handle->free_DLN_list->next;
        a.release_record(handle->free_DLN_list);
        handle->free_DLN_list = next;
    }
    handle->free_nodes = 0;
}

CS_RETCODE lm__api_dlink_mpool_resize(LM_HANDLE *handle, CS_INT old_size, CS_INT new_size)
{
    if (new_size > old_size) {
        // Growth adds the difference whatever the pool holds now: nodes in
        // use come back to it up to the new limit.
        DLinkNode *last;
        DLinkNode *chain = make_pool_chain(handle, new_size - old_size, &last);
        if (chain == nullptr)
            return KES_TRACE(CS_MEM_ERROR);
        last->next = handle->free_DLN_list;
        handle->free_DLN_list = chain;
        handle->free_nodes += new_size - old_size;
        return CS_SUCCEED;
    }
    auto a = allocator_of(handle);
    for (CS_INT n = old_size - new_size; n > 0 && handle->free_DLN_list != nullptr; n--) {
        DLinkNode *next = handle->free_DLN_list->next;
        a.release_record(handle->free_DLN_list);
        handle->free_DLN_list = next;
        handle->free_nodes--;
    }
    return CS_SUCCEED;
}

namespace {

// The header record and the empty slot array both hash kinds start from,
// sized by the handle's table-size property.
template <class Info> CS_RETCODE new_hash_info(LM_HANDLE *handle, CS_INT kind, Info **out)
{
    auto a = allocator_of(handle);
    const CS_INT size = handle->hdlprop->max_tablesize;
    if (size < kes::lm::min_table_size(kind))
        return KES_TRACE(CS_FAIL);
    auto *info = a.zeroed<Info>();
    if (info == nullptr)
        return KES_TRACE(CS_MEM_ERROR);
    info->table = a.zeroed<DLinkNode *>(static_cast<size_t>(size));
    if (info->table == nullptr) {
        a.release_record(info);
        return KES_TRACE(CS_MEM_ERROR);
    }
    info->table_size = size;
    *out = info;
    return CS_SUCCEED;
}

} // namespace

CS_RETCODE lm__api_chash_init(LM_HANDLE *handle)
{
    CHashInfo *info = nullptr;
    if (CS_RETCODE rc = new_hash_info(handle, LM_LIST_CHASH, &info); rc != CS_SUCCEED)
        return rc;
    info->home_addr_hfunc = lm__api_key_to_hash;
    info->state = LM_INITIALIZED;
    handle->list_state = info;
    return CS_SUCCEED;
}

CS_RETCODE lm__api_dhash_init(LM_HANDLE *handle)
{
    DHashInfo *info = nullptr;
    if (CS_RETCODE rc = new_hash_info(handle, LM_LIST_DHASH, &info); rc != CS_SUCCEED)
        return rc;
    auto a = allocator_of(handle);
    const CS_INT size = info->table_size;
    for (CS_INT i = 0; i < size; i++) {
        DLinkNode *node = a.zeroed<DLinkNode>();
        if (node == nullptr) {
            lm__api_list_state_drop(handle, LM_LIST_DHASH, info);
            return KES_TRACE(CS_MEM_ERROR);
        }
        node->state = LM_INITIALIZED;
        info->table[i] = node;
    }
    info->home_addr_hfunc = lm__api_key_to_hash;
    info->incr_hfunc = lm__api_key_to_hash2;
    info->state = LM_INITIALIZED;
    handle->list_state = info;
    return CS_SUCCEED;
}

namespace {

void release_chain(const kes::lm::Allocator &a, DLinkNode *node)
{
    while (node != nullptr) {
        DLinkNode *next = node->next;
        a.release_record(node);
        node = next;
    }
}

} // namespace

void lm__api_list_state_drop(LM_HANDLE *handle, CS_INT list_type, CS_VOID *list_state)
{
    if (list_state == nullptr)
        return;
    auto a = allocator_of(handle);
    switch (list_type) {
    case LM_LIST_DLINK:
    case LM_LIST_QUEUE:
    case LM_LIST_STACK: {
        auto *info = static_cast<DLinkInfo *>(list_state);
        release_chain(a, info->head);
        a.release_record(info);
        return;
    }
    case LM_LIST_CHASH: {
        auto *info = static_cast<CHashInfo *>(list_state);
        for (CS_INT i = 0; i < info->table_size; i++)
            release_chain(a, info->table[i]);
        a.release_block(info->table, sizeof(DLinkNode *) * static_cast<size_t>(info->table_size));
        a.release_record(info);
        return;
    }
    case LM_LIST_DHASH: {
        // Also undoes a partial build: slots not yet made are null.
        auto *info = static_cast<DHashInfo *>(list_state);
        for (CS_INT i = 0; i < info->table_size; i++)
            a.release_record(info->table[i]);
        a.release_block(info->table, sizeof(DLinkNode *) * static_cast<size_t>(info->table_size));
        a.release_record(info);
        return;
    }
    default:
        KES_ASSERT(false);
    }
}

CS_RETCODE lm__api_cp_bytes(const CS_CHAR *src, CS_INT srclen, CS_BOOL null_term, CS_VOID *dest, CS_INT destlen,
                            CS_INT *outlen)
{
    if (srclen == CS_NULLTERM)
        srclen = src != nullptr ? static_cast<CS_INT>(std::strlen(src)) : 0;
    KES_ASSERT(srclen >= 0);
    CS_INT needed = srclen + (null_term == 1 ? 1 : 0);
    if (outlen != nullptr)
        *outlen = needed;
    if (needed <= destlen) {
        KES_NOT_NULL(dest);
        if (srclen > 0)
            std::memcpy(dest, src, static_cast<size_t>(srclen));
        if (null_term == 1)
            static_cast<CS_CHAR *>(dest)[srclen] = '\0';
    }
    return CS_SUCCEED;
}
