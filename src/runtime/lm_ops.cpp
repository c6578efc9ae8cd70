// lm_list_op: the operations of the five list kinds.  Queue and stack are
// views of the doubly linked list; the two hash kinds share their key-or-
// cursor targeting and their reporting of the cursor's data.
#include <cstring>

#include "runtime/lm_impl.h"

namespace {

DLinkNode *as_node(CS_VOID *p) { return static_cast<DLinkNode *>(p); }

// The function of a print or apply walk: apply takes it from the location
// data_in points at.
CS_PRINT_FUNC walk_function(const LM_HANDLE *h, CS_INT op, const CS_VOID *data_in)
{
    if (op != LM_OP_APPLY)
        return h->hdlprop->print_func;
    CS_PRINT_FUNC fn = nullptr;
    if (data_in != nullptr)
        std::memcpy(&fn, data_in, sizeof fn);
    return fn;
}

bool keys_equal(const DLinkNode *n, const CS_VOID *key, CS_INT key_size)
{
    return key_size == 0 || std::memcmp(n->key, key, static_cast<size_t>(key_size)) == 0;
}

// ---- doubly linked list -------------------------------------------------

void link_node(DLinkInfo *info, DLinkNode *cur, DLinkNode *node, CS_INT position)
{
    if (info->head == nullptr) {
        info->head = info->tail = node;
        return;
    }
    switch (position) {
    case LM_OP_FIRST:
        node->next = info->head;
        info->head->previous = node;
        info->head = node;
        return;
    case LM_OP_LAST:
        node->previous = info->tail;
        info->tail->next = node;
        info->tail = node;
        return;
    case LM_POS_BEFORE:
        node->next = cur;
        node->previous = cur->previous;
        if (cur->previous != nullptr)
            cur->previous->next = node;
        else
            info->head = node;
        cur->previous = node;
        return;
    case LM_POS_AFTER:
        node->previous = cur;
        node->next = cur->next;
        if (cur->next != nullptr)
            cur->next->previous = node;
        else
            info->tail = node;
        cur->next = node;
        return;
    }
}

// Unlinks node and returns the new cursor: the new head after deleting the
// head, otherwise the node before it, so a forward walk that deletes steps
// back one node.
DLinkNode *unlink_node(DLinkInfo *info, DLinkNode *node)
{
    DLinkNode *prev = node->previous;
    DLinkNode *next = node->next;
    if (prev != nullptr)
        prev->next = next;
    else
        info->head = next;
    if (next != nullptr)
        next->previous = prev;
    else
        info->tail = prev;
    return prev == nullptr ? next : prev;
}

// key, when given, holds a caller-owned cursor (a DLinkNode *) used instead
// of the handle's; key_size is the insert position.
CS_RETCODE dlink_op(LM_HANDLE *h, CS_INT op, CS_VOID *key, CS_INT key_size, CS_VOID *data_in, CS_VOID **data_out)
{
    auto *info = static_cast<DLinkInfo *>(h->list_state);
    KES_ASSERT(info->state == LM_INITIALIZED);
    auto **held = static_cast<DLinkNode **>(key);
    DLinkNode *cur = held != nullptr && *held != nullptr ? *held : as_node(h->cur_ptr);
    KES_ASSERT(cur == nullptr || cur->state == LM_INSERTED);

    CS_RETCODE rc = CS_SUCCEED;
    switch (op) {
    case LM_OP_INSERT: {
        if (info->head != nullptr) {
            KES_ASSERT(key_size == LM_OP_FIRST || key_size == LM_OP_LAST || key_size == LM_POS_BEFORE ||
                       key_size == LM_POS_AFTER);
            KES_ASSERT(cur != nullptr || key_size == LM_OP_FIRST || key_size == LM_OP_LAST);
        }
        DLinkNode *node = lm__get_dlinknode(h);
        if (node == nullptr)
            return KES_TRACE(CS_MEM_ERROR);
        node->key = nullptr;
        node->key_size = 0;
        node->data = data_in;
        node->previous = node->next = nullptr;
        link_node(info, cur, node, key_size);
        node->state = LM_INSERTED;
        h->hdlprop->handle_load++;
        cur = node;
        break;
    }
    case LM_OP_DELETE: {
        KES_ASSERT(cur != nullptr && info->head != nullptr);
        DLinkNode *gone = cur;
        cur = unlink_node(info, gone);
        h->hdlprop->handle_load--;
        lm__free_dlinknode(h, gone);
        break;
    }
    case LM_OP_UPDATE:
        KES_ASSERT(cur != nullptr);
        cur->data = data_in;
        break;
    case LM_OP_NEXT:
    case LM_OP_PREVIOUS: {
        DLinkNode *to = cur == nullptr ? nullptr : op == LM_OP_NEXT ? cur->next : cur->previous;
        if (to == nullptr)
            return KES_TRACE(CS_FAIL);
        cur = to;
        break;
    }
    case LM_OP_CURRENT:
        break;
    case LM_OP_FIRST:
        cur = info->head;
        break;
    case LM_OP_LAST:
        cur = info->tail;
        break;
    case LM_OP_PRINT_CURRENT:
        if (h->hdlprop->print_func == nullptr)
            return KES_TRACE(CS_FAIL);
        if (h->hdlprop->print_func(cur != nullptr ? cur->data : nullptr) == 0)
            rc = CS_FAIL;
        break;
    case LM_OP_PRINT_ALL:
    case LM_OP_APPLY: {
        CS_PRINT_FUNC fn = walk_function(h, op, data_in);
        if (fn == nullptr)
            return KES_TRACE(CS_FAIL);
        for (DLinkNode *n = info->head; n != nullptr; n = n->next)
            if (fn(n->data) == 0) {
                rc = CS_FAIL;
                break;
            }
        break;
    }
    default:
        KES_ASSERT(false);
    }
    if (held != nullptr)
        *held = cur;
    else
        h->cur_ptr = cur;
    if (data_out != nullptr)
        *data_out = cur != nullptr ? cur->data : nullptr;
    return rc == CS_SUCCEED ? rc : KES_TRACE(rc);
}

// Removes the head of a queue or stack; the head's successor must become
// the cursor.
CS_RETCODE delete_first(LM_HANDLE *h, CS_VOID **data_out)
{
    auto *info = static_cast<DLinkInfo *>(h->list_state);
    KES_ASSERT(info->head != nullptr);
    h->cur_ptr = info->head;
    DLinkNode *next = info->head->next;
    CS_RETCODE rc = dlink_op(h, LM_OP_DELETE, nullptr, CS_UNUSED, nullptr, data_out);
    KES_ASSERT(h->cur_ptr == next);
    return rc;
}

CS_RETCODE queue_op(LM_HANDLE *h, CS_INT op, CS_VOID *data_in, CS_VOID **data_out)
{
    switch (op) {
    case LM_OP_INSERT:
        return dlink_op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, data_in, data_out);
    case LM_OP_DELETE:
        return delete_first(h, data_out);
    case LM_OP_CURRENT:
        return dlink_op(h, LM_OP_FIRST, nullptr, CS_UNUSED, data_in, data_out);
    case LM_OP_PRINT_CURRENT:
    case LM_OP_PRINT_ALL:
    case LM_OP_APPLY:
        return dlink_op(h, op, nullptr, CS_UNUSED, data_in, data_out);
    default:
        KES_ASSERT(false);
        return CS_FAIL;
    }
}

// A stack's data_out is the address of the location that receives the data.
CS_RETCODE stack_op(LM_HANDLE *h, CS_INT op, CS_VOID *data_in, CS_VOID **data_out)
{
    CS_VOID **out = nullptr;
    if (data_out != nullptr)
        std::memcpy(&out, data_out, sizeof out);
    switch (op) {
    case LM_OP_INSERT:
        return dlink_op(h, LM_OP_INSERT, nullptr, LM_OP_FIRST, data_in, out);
    case LM_OP_DELETE:
        return delete_first(h, out);
    case LM_OP_CURRENT:
    case LM_OP_PRINT_CURRENT:
    case LM_OP_PRINT_ALL:
    case LM_OP_APPLY:
        return dlink_op(h, op, nullptr, CS_UNUSED, data_in, out);
    default:
        KES_ASSERT(false);
        return CS_FAIL;
    }
}

// ---- hash tables ----------------------------------------------------------

CS_UINT home_slot(const CHashInfo *info, const CS_VOID *key, CS_INT key_size)
{
    CS_UINT slot;
    info->home_addr_hfunc(static_cast<CS_CHAR *>(const_cast<CS_VOID *>(key)), key_size, info->table_size, &slot);
    return slot;
}

DLinkNode *chash_search(LM_HANDLE *h, CS_VOID *key, CS_INT key_size)
{
    auto *info = static_cast<CHashInfo *>(h->list_state);
    for (DLinkNode *n = info->table[home_slot(info, key, key_size)]; n != nullptr; n = n->next)
        if (n->key_size == key_size && keys_equal(n, key, key_size)) {
            h->cur_ptr = n;
            return n;
        }
    return nullptr;
}

// The first probe of the open-addressing table; probing then steps by one.
CS_UINT dhash_start(const DHashInfo *info, CS_VOID *key, CS_INT key_size)
{
    CS_UINT a, b;
    info->home_addr_hfunc(static_cast<CS_CHAR *>(key), key_size, info->table_size, &a);
    info->incr_hfunc(static_cast<CS_CHAR *>(key), key_size, info->table_size, &b);
    return (a + b) % static_cast<CS_UINT>(info->table_size);
}

// Visits every slot, empty ones included.  A stored key matches when its
// first key_size bytes do, so a shorter given key finds a longer stored
// one; a stored key shorter than key_size never matches (its bytes end).
DLinkNode *dhash_search(LM_HANDLE *h, CS_VOID *key, CS_INT key_size)
{
    auto *info = static_cast<DHashInfo *>(h->list_state);
    auto size = static_cast<CS_UINT>(info->table_size);
    CS_UINT start = dhash_start(info, key, key_size);
    for (CS_UINT i = 0; i < size; i++) {
        DLinkNode *n = info->table[(start + i) % size];
        if (n->state == LM_SET && n->key_size >= key_size && keys_equal(n, key, key_size)) {
            h->cur_ptr = n;
            return n;
        }
    }
    return nullptr;
}

using SearchFn = DLinkNode *(*)(LM_HANDLE *, CS_VOID *, CS_INT);

// The entry a delete, update or print works on: found by key when one is
// given, otherwise the cursor (possibly null).
struct Target {
    DLinkNode *node;
    bool missed;
};

Target hash_target(LM_HANDLE *h, SearchFn search, CS_VOID *key, CS_INT key_size)
{
    if (key != nullptr && key_size != CS_UNUSED) {
        DLinkNode *n = search(h, key, key_size);
        return {n, n == nullptr};
    }
    return {as_node(h->cur_ptr), false};
}

void chash_insert(LM_HANDLE *h, DLinkNode *node)
{
    auto *info = static_cast<CHashInfo *>(h->list_state);
    DLinkNode **chain = &info->table[home_slot(info, node->key, node->key_size)];
    node->previous = nullptr;
    node->next = *chain;
    if (*chain != nullptr)
        (*chain)->previous = node;
    *chain = node;
}

// The home slot of a chain head is recomputed from its own key, so deleting
// at the cursor is safe even when the cursor heads its chain.
void chash_unlink(LM_HANDLE *h, DLinkNode *n)
{
    auto *info = static_cast<CHashInfo *>(h->list_state);
    if (n->previous != nullptr) {
        n->previous->next = n->next;
    } else {
        DLinkNode **chain = &info->table[home_slot(info, n->key, n->key_size)];
        KES_ASSERT(*chain == n);
        *chain = n->next;
    }
    if (n->next != nullptr)
        n->next->previous = n->previous;
    h->cur_ptr = n->previous != nullptr ? n->previous : n->next;
}

DLinkNode *dhash_take_slot(LM_HANDLE *h, CS_VOID *key, CS_INT key_size)
{
    auto *info = static_cast<DHashInfo *>(h->list_state);
    auto size = static_cast<CS_UINT>(info->table_size);
    CS_UINT start = dhash_start(info, key, key_size);
    for (CS_UINT i = 0; i < size; i++) {
        DLinkNode *n = info->table[(start + i) % size];
        if (n->state != LM_SET)
            return n;
    }
    // The table never grows by itself: its owner sizes it.
    KES_ASSERT(false);
    return nullptr;
}

CS_RETCODE print_text(const char *text)
{
    comn_debug_print("%s", text);
    return CS_SUCCEED;
}

// Print-all of a chained table: keys then data, chain by chain; a 0 from the
// function ends the whole walk.
CS_RETCODE chash_walk(LM_HANDLE *h, CS_INT op, CS_PRINT_FUNC fn)
{
    auto *info = static_cast<CHashInfo *>(h->list_state);
    for (CS_INT s = 0; s < info->table_size; s++) {
        DLinkNode *chain = info->table[s];
        if (op == LM_OP_APPLY) {
            for (DLinkNode *n = chain; n != nullptr; n = n->next)
                if (fn(n->data) == 0)
                    return CS_FAIL;
            continue;
        }
        if (chain == nullptr) {
            print_text("\n***Chain empty***\n");
            continue;
        }
        print_text("\nKeys:\n");
        for (DLinkNode *n = chain; n != nullptr; n = n->next)
            if (fn(n->key) == 0)
                return CS_FAIL;
        print_text("\nData:\n");
        for (DLinkNode *n = chain; n != nullptr; n = n->next)
            if (fn(n->data) == 0)
                return CS_FAIL;
        print_text("\n");
    }
    return CS_SUCCEED;
}

// One pass over every slot of an open-addressing table; a 0 ends the pass.
CS_RETCODE dhash_pass(const DHashInfo *info, CS_PRINT_FUNC fn, bool keys)
{
    for (CS_INT s = 0; s < info->table_size; s++)
        if (fn(keys ? info->table[s]->key : info->table[s]->data) == 0)
            return CS_FAIL;
    return CS_SUCCEED;
}

CS_RETCODE dhash_walk(LM_HANDLE *h, CS_INT op, CS_PRINT_FUNC fn)
{
    auto *info = static_cast<DHashInfo *>(h->list_state);
    if (op == LM_OP_APPLY)
        return dhash_pass(info, fn, false);
    print_text("Keys:\n");
    CS_RETCODE keys = dhash_pass(info, fn, true);
    print_text("\nData:\n");
    CS_RETCODE data = dhash_pass(info, fn, false);
    print_text("\n");
    return keys == CS_SUCCEED ? data : keys;
}

template <CS_INT Kind>
CS_RETCODE hash_op_body(LM_HANDLE *h, CS_INT op, CS_VOID *key, CS_INT key_size, CS_VOID *data_in)
{
    constexpr bool chained = Kind == LM_LIST_CHASH;
    constexpr SearchFn search = chained ? chash_search : dhash_search;
    // Both table records start with their state.
    KES_ASSERT(*static_cast<const LM_NODE_STATE *>(h->list_state) == LM_INITIALIZED);
    switch (op) {
    case LM_OP_INSERT: {
        DLinkNode *node = chained ? lm__get_dlinknode(h) : dhash_take_slot(h, key, key_size);
        if (node == nullptr)
            return KES_TRACE(CS_MEM_ERROR);
        node->key = key;
        node->key_size = key_size;
        node->data = data_in;
        node->previous = node->next = nullptr;
        if constexpr (chained)
            chash_insert(h, node);
        node->state = LM_SET;
        h->cur_ptr = node;
        h->hdlprop->handle_load++;
        return CS_SUCCEED;
    }
    case LM_OP_SEARCH:
        return search(h, key, key_size) != nullptr ? CS_SUCCEED : KES_TRACE(LM_NOT_FOUND);
    case LM_OP_DELETE:
    case LM_OP_UPDATE: {
        Target t = hash_target(h, search, key, key_size);
        if (t.missed)
            return KES_TRACE(LM_NOT_FOUND);
        KES_ASSERT(t.node != nullptr && t.node->state == LM_SET);
        if (op == LM_OP_UPDATE) {
            t.node->data = data_in;
            return CS_SUCCEED;
        }
        h->hdlprop->handle_load--;
        if constexpr (chained) {
            chash_unlink(h, t.node);
            lm__free_dlinknode(h, t.node);
        } else {
            // The slot stays as a tombstone under the cursor.
            t.node->key = nullptr;
            t.node->key_size = 0;
            t.node->data = nullptr;
            t.node->state = LM_UNSET;
        }
        return CS_SUCCEED;
    }
    case LM_OP_CURRENT:
        return CS_SUCCEED;
    case LM_OP_PRINT_CURRENT: {
        CS_PRINT_FUNC fn = h->hdlprop->print_func;
        if (fn == nullptr)
            return KES_TRACE(CS_FAIL);
        Target t = hash_target(h, search, key, key_size);
        if (t.missed)
            return KES_TRACE(LM_NOT_FOUND);
        if (chained && t.node == nullptr)
            return print_text("\nNULL\n");
        return fn(t.node != nullptr ? t.node->data : nullptr) == 0 ? KES_TRACE(CS_FAIL) : CS_SUCCEED;
    }
    case LM_OP_PRINT_ALL:
    case LM_OP_APPLY: {
        CS_PRINT_FUNC fn = walk_function(h, op, data_in);
        if (fn == nullptr)
            return KES_TRACE(CS_FAIL);
        CS_RETCODE rc = chained ? chash_walk(h, op, fn) : dhash_walk(h, op, fn);
        return rc == CS_SUCCEED ? rc : KES_TRACE(rc);
    }
    default:
        KES_ASSERT(false);
        return CS_FAIL;
    }
}

// Whatever the outcome, data_out reports the data under the cursor.
template <CS_INT Kind>
CS_RETCODE hash_op(LM_HANDLE *h, CS_INT op, CS_VOID *key, CS_INT key_size, CS_VOID *data_in, CS_VOID **data_out)
{
    CS_RETCODE rc = hash_op_body<Kind>(h, op, key, key_size, data_in);
    if (data_out != nullptr) {
        DLinkNode *cur = as_node(h->cur_ptr);
        *data_out = cur != nullptr ? cur->data : nullptr;
    }
    return rc;
}

} // namespace

CS_RETCODE lm_list_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size, CS_VOID *data_in,
                      CS_VOID **data_out)
{
    if (handle == nullptr)
        return KES_TRACE(CS_FAIL);
    kes::lm::check_handle(handle);
    switch (handle->hdlprop->list_type) {
    case LM_LIST_DLINK:
        return dlink_op(handle, operation, key, key_size, data_in, data_out);
    case LM_LIST_QUEUE:
        return queue_op(handle, operation, data_in, data_out);
    case LM_LIST_STACK:
        return stack_op(handle, operation, data_in, data_out);
    case LM_LIST_CHASH:
        return hash_op<LM_LIST_CHASH>(handle, operation, key, key_size, data_in, data_out);
    case LM_LIST_DHASH:
        return hash_op<LM_LIST_DHASH>(handle, operation, key, key_size, data_in, data_out);
    default:
        KES_ASSERT(false);
        return CS_FAIL;
    }
}
