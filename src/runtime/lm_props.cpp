// Properties of list manager contexts and lists, with the table rebuild and
// pool resize that setting them starts.
#include <cstring>
#include <span>

#include "conv/scalar_io.h"
#include "runtime/lm_impl.h"

namespace {

using kes::conv::load;
using kes::conv::store;

enum class Access { fixed, get_only, any };

struct Row {
    CS_INT property;
    Access access;
};

constexpr Row handle_rows[] = {
    {LM_PROP_LIST_TYPE, Access::fixed},    {LM_PROP_MAX_TABLESIZE, Access::any},
    {LM_PROP_MAX_POOLSIZE, Access::any},   {LM_PROP_HANDLE_LOAD, Access::fixed},
    {LM_PROP_CONTEXT_ADDR, Access::fixed}, {LM_PROP_HANDLE_NAME, Access::get_only},
    {LM_PROP_PRINT_FUNC, Access::any},     {LM_PROP_COMP_FUNC, Access::any},
};

constexpr Row context_rows[] = {
    {LM_PROP_LIST_TYPE, Access::any},      {LM_PROP_MAX_TABLESIZE, Access::any},
    {LM_PROP_MAX_POOLSIZE, Access::any},   {LM_PROP_VERSION, Access::fixed},
    {LM_PROP_CONTEXT_LOAD, Access::fixed}, {LM_PROP_CUR_HANDLENAME, Access::any},
    {LM_PROP_CUR_HANDLEADDR, Access::fixed},
};

// A property outside the rows, an unknown action, or an action the row does
// not take is a programming error, not a result.
void check_access(std::span<const Row> rows, CS_INT action, CS_INT property, CS_INT buflen)
{
    KES_ASSERT(action == LM_ACT_GET || action == LM_ACT_SET || action == LM_ACT_CLEAR);
    const Row *row = nullptr;
    for (const Row &r : rows)
        if (r.property == property)
            row = &r;
    KES_ASSERT(row != nullptr);
    if (row->access != Access::any)
        KES_ASSERT(action == LM_ACT_GET);
    if (row->access == Access::fixed)
        KES_ASSERT(buflen == CS_UNUSED);
}

// Reports a fixed-size value: CS_UNUSED or a large enough buflen.
template <class T> CS_RETCODE put_value(T value, CS_VOID *buffer, CS_INT buflen, CS_INT *outlen)
{
    constexpr auto size = static_cast<CS_INT>(sizeof(T));
    if (outlen != nullptr)
        *outlen = size;
    if (buflen != CS_UNUSED && buflen < size)
        return KES_TRACE(CS_FAIL);
    KES_NOT_NULL(buffer);
    store<T>(buffer, value);
    return CS_SUCCEED;
}

template <class T> T take_value(const CS_VOID *buffer)
{
    KES_NOT_NULL(buffer);
    return load<T>(buffer);
}

// A function property travels as the pointer value itself in the buffer.
template <class F> CS_RETCODE function_prop(F *slot, CS_INT action, CS_VOID *buffer, CS_INT buflen, CS_INT *outlen)
{
    switch (action) {
    case LM_ACT_GET:
        return put_value<F>(*slot, buffer, buflen, outlen);
    case LM_ACT_SET:
        *slot = take_value<F>(buffer);
        return CS_SUCCEED;
    default:
        *slot = nullptr;
        return CS_SUCCEED;
    }
}

CS_RETCODE reinsert(LM_HANDLE *h, CS_INT type, CS_VOID *old_state)
{
    if (type == LM_LIST_DHASH) {
        auto *info = static_cast<DHashInfo *>(old_state);
        for (CS_INT s = 0; s < info->table_size; s++) {
            DLinkNode *n = info->table[s];
            if (n->state != LM_SET)
                continue;
            CS_RETCODE rc = lm_list_op(h, LM_OP_INSERT, n->key, n->key_size, n->data, nullptr);
            if (rc != CS_SUCCEED)
                return rc;
        }
        return CS_SUCCEED;
    }
    // Every node of a chain re-inserts the chain's head entry: a chain of n
    // entries becomes n copies of its head.  Callers that rebuild keep
    // chains of one; the behaviour is kept because the table's users
    // depend on its loads and walks staying as they are.
    auto *info = static_cast<CHashInfo *>(old_state);
    for (CS_INT s = 0; s < info->table_size; s++) {
        DLinkNode *head = info->table[s];
        for (DLinkNode *n = head; n != nullptr; n = n->next) {
            CS_RETCODE rc = lm_list_op(h, LM_OP_INSERT, head->key, head->key_size, head->data, nullptr);
            if (rc != CS_SUCCEED)
                return rc;
        }
    }
    return CS_SUCCEED;
}

// Rebuilds a hash table with size slots; on failure the list is as it was.
CS_RETCODE rebuild(LM_HANDLE *h, CS_INT size)
{
    LM_HDLPROP *prop = h->hdlprop;
    CS_INT type = prop->list_type;
    if (size < kes::lm::min_table_size(type))
        return KES_TRACE(CS_FAIL);
    if (type == LM_LIST_DHASH && prop->handle_load > size)
        return KES_TRACE(CS_FAIL);

    CS_VOID *old_state = h->list_state;
    CS_VOID *old_cur = h->cur_ptr;
    CS_INT old_load = prop->handle_load;
    CS_INT old_size = prop->max_tablesize;
    prop->max_tablesize = size;
    CS_RETCODE rc = type == LM_LIST_DHASH ? lm__api_dhash_init(h) : lm__api_chash_init(h);
    if (rc != CS_SUCCEED) {
        prop->max_tablesize = old_size;
        return rc;
    }
    prop->handle_load = 0;
    h->cur_ptr = nullptr;
    rc = reinsert(h, type, old_state);
    if (rc == CS_SUCCEED) {
        KES_ASSERT(prop->handle_load == old_load);
        lm__api_list_state_drop(h, type, old_state);
        return CS_SUCCEED;
    }
    lm__api_list_state_drop(h, type, h->list_state);
    h->list_state = old_state;
    h->cur_ptr = old_cur;
    prop->handle_load = old_load;
    prop->max_tablesize = old_size;
    return rc;
}

CS_RETCODE resize_pool(LM_HANDLE *h, CS_INT size)
{
    if (size < 0)
        return KES_TRACE(CS_FAIL);
    CS_RETCODE rc = lm__api_dlink_mpool_resize(h, h->hdlprop->max_poolsize, size);
    if (rc == CS_SUCCEED)
        h->hdlprop->max_poolsize = size;
    return rc;
}

// An integer property with a default (clear) value.
CS_RETCODE int_prop(CS_INT *slot, CS_INT fallback, CS_INT action, CS_VOID *buffer, CS_INT buflen, CS_INT *outlen)
{
    switch (action) {
    case LM_ACT_GET:
        return put_value<CS_INT>(*slot, buffer, buflen, outlen);
    case LM_ACT_SET:
        *slot = take_value<CS_INT>(buffer);
        return CS_SUCCEED;
    default:
        *slot = fallback;
        return CS_SUCCEED;
    }
}

// Makes current the first list whose name starts with the n bytes given.
CS_RETCODE select_handle(LM_CONTEXT *c, const CS_VOID *name, CS_INT n)
{
    if (n == CS_NULLTERM) {
        KES_NOT_NULL(name);
        n = static_cast<CS_INT>(std::strlen(static_cast<const CS_CHAR *>(name)));
    }
    if (n < 0)
        return KES_TRACE(CS_FAIL);
    if (n > 0)
        KES_NOT_NULL(name);
    for (LM_HANDLE *h = c->first_handle; h != nullptr; h = h->next) {
        const LM_HDLPROP *p = h->hdlprop;
        if (p->length >= n && (n == 0 || std::memcmp(p->handle_name, name, static_cast<size_t>(n)) == 0)) {
            kes::lm::make_current(c, h);
            return CS_SUCCEED;
        }
    }
    return KES_TRACE(CS_FAIL);
}

} // namespace

CS_RETCODE lm_list_prop(LM_HANDLE *handle, CS_INT action, CS_INT property, CS_VOID *buffer, CS_INT buflen,
                        CS_INT *outlen)
{
    if (handle == nullptr)
        return KES_TRACE(CS_FAIL);
    if (outlen != nullptr)
        *outlen = 0;
    kes::lm::check_handle(handle);
    check_access(handle_rows, action, property, buflen);
    LM_HDLPROP *prop = handle->hdlprop;
    switch (property) {
    case LM_PROP_LIST_TYPE:
        return put_value<CS_INT>(prop->list_type, buffer, buflen, outlen);
    case LM_PROP_MAX_TABLESIZE:
        if (prop->list_type != LM_LIST_CHASH && prop->list_type != LM_LIST_DHASH)
            return KES_TRACE(CS_FAIL);
        if (action == LM_ACT_GET)
            return put_value<CS_INT>(prop->max_tablesize, buffer, buflen, outlen);
        return rebuild(handle, action == LM_ACT_SET ? take_value<CS_INT>(buffer)
                                                    : prop->context->cxtprop->max_tablesize);
    case LM_PROP_MAX_POOLSIZE:
        if (action == LM_ACT_GET)
            return put_value<CS_INT>(prop->max_poolsize, buffer, buflen, outlen);
        return resize_pool(handle, action == LM_ACT_SET ? take_value<CS_INT>(buffer)
                                                        : prop->context->cxtprop->max_poolsize);
    case LM_PROP_HANDLE_LOAD:
        return put_value<CS_INT>(prop->handle_load, buffer, buflen, outlen);
    case LM_PROP_CONTEXT_ADDR:
        return put_value<LM_CONTEXT *>(prop->context, buffer, buflen, outlen);
    case LM_PROP_HANDLE_NAME:
        return lm__api_cp_bytes(prop->handle_name, prop->length, 1, buffer, buflen, outlen);
    case LM_PROP_PRINT_FUNC:
        return function_prop(&prop->print_func, action, buffer, buflen, outlen);
    default: // LM_PROP_COMP_FUNC; check_access admitted nothing else
        return function_prop(&prop->comp_func, action, buffer, buflen, outlen);
    }
}

CS_RETCODE lm_property(LM_CONTEXT *context, CS_INT action, CS_INT property, CS_VOID *buffer, CS_INT buflen,
                       CS_INT *outlen)
{
    if (context == nullptr)
        return KES_TRACE(CS_FAIL);
    if (outlen != nullptr)
        *outlen = 0;
    kes::lm::check_context(context);
    check_access(context_rows, action, property, buflen);
    LM_CXTPROP *prop = context->cxtprop;
    switch (property) {
    case LM_PROP_LIST_TYPE:
        return int_prop(&prop->list_type, LM_LIST_DLINK, action, buffer, buflen, outlen);
    case LM_PROP_MAX_TABLESIZE:
        return int_prop(&prop->max_tablesize, 10, action, buffer, buflen, outlen);
    case LM_PROP_MAX_POOLSIZE:
        return int_prop(&prop->max_poolsize, 0, action, buffer, buflen, outlen);
    case LM_PROP_VERSION:
        return put_value<CS_INT>(prop->version, buffer, buflen, outlen);
    case LM_PROP_CONTEXT_LOAD:
        return put_value<CS_INT>(prop->context_load, buffer, buflen, outlen);
    case LM_PROP_CUR_HANDLENAME:
        if (action == LM_ACT_SET)
            return select_handle(context, buffer, buflen);
        if (action == LM_ACT_CLEAR) {
            kes::lm::make_current(context, context->first_handle);
            return CS_SUCCEED;
        }
        return lm__api_cp_bytes(prop->cur_handlename,
                                prop->cur_handleaddr != nullptr ? prop->cur_handleaddr->hdlprop->length : 0, 1,
                                buffer, buflen, outlen);
    default: // LM_PROP_CUR_HANDLEADDR
        KES_ASSERT(prop->cur_handleaddr != nullptr);
        return put_value<LM_HANDLE *>(prop->cur_handleaddr, buffer, buflen, outlen);
    }
}
