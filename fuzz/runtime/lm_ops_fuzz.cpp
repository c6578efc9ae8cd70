// Interprets the input as a program of list manager operations on up to four
// lists of any kind, with keys cut from the input itself, table rebuilds,
// pool resizes, walks and an allocator that fails on command.  The program
// only makes calls whose preconditions hold (the assertions are not the
// subject); after every step the list's count must match its contents.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "kescomn/debug.h"
#include "kescomn/lm.h"

namespace {

struct Input {
    const uint8_t *data;
    size_t size;
    size_t pos = 0;

    bool done() const { return pos >= size; }
    uint8_t byte() { return pos < size ? data[pos++] : 0; }
    // A key: a slice of the input, so it lives as long as the run.
    const uint8_t *key(CS_INT *len)
    {
        static const uint8_t empty = 0;
        *len = byte() % 13;
        if (size == 0 || size_t(*len) > size) {
            *len = 0;
            return &empty;
        }
        return data + byte() % (size - size_t(*len) + 1);
    }
};

struct FailingAllocator {
    long countdown = -1; // fail when it reaches 0

    static void *alloc(void *user, size_t size)
    {
        auto *self = static_cast<FailingAllocator *>(user);
        if (self->countdown >= 0 && self->countdown-- == 0)
            return nullptr;
        return std::malloc(size);
    }
    static void release(void *, void *ptr) { std::free(ptr); }
};

CS_RETCODE accept_all(CS_VOID *) { return CS_SUCCEED; }
CS_RETCODE refuse_some(CS_VOID *p) { return reinterpret_cast<uintptr_t>(p) % 3 == 0 ? 0 : CS_SUCCEED; }

constexpr CS_INT kinds[] = {LM_LIST_DLINK, LM_LIST_CHASH, LM_LIST_DHASH, LM_LIST_QUEUE, LM_LIST_STACK, 17};

CS_INT type_of(LM_HANDLE *h) { return h->hdlprop->list_type; }
CS_INT load_of(LM_HANDLE *h) { return h->hdlprop->handle_load; }
DLinkNode *cursor(LM_HANDLE *h) { return static_cast<DLinkNode *>(h->cur_ptr); }
bool hashed(LM_HANDLE *h) { return type_of(h) == LM_LIST_CHASH || type_of(h) == LM_LIST_DHASH; }

// Entries actually held, counted through the records.
CS_INT count_entries(LM_HANDLE *h)
{
    CS_INT n = 0;
    switch (type_of(h)) {
    case LM_LIST_CHASH: {
        auto *info = static_cast<CHashInfo *>(h->list_state);
        for (CS_INT s = 0; s < info->table_size; s++)
            for (DLinkNode *e = info->table[s]; e; e = e->next)
                n++;
        return n;
    }
    case LM_LIST_DHASH: {
        auto *info = static_cast<DHashInfo *>(h->list_state);
        for (CS_INT s = 0; s < info->table_size; s++)
            n += info->table[s]->state == LM_SET;
        return n;
    }
    default:
        for (DLinkNode *e = static_cast<DLinkInfo *>(h->list_state)->head; e; e = e->next)
            n++;
        return n;
    }
}

CS_INT table_size(LM_HANDLE *h)
{
    return type_of(h) == LM_LIST_DHASH ? static_cast<DHashInfo *>(h->list_state)->table_size : 0;
}

void step(Input &in, LM_CONTEXT *ctx, LM_HANDLE *(&lists)[4], FailingAllocator &alloc)
{
    uint8_t b = in.byte();
    LM_HANDLE *&h = lists[b & 3];
    int action = (b >> 2) % 14;
    if (h == nullptr && action != 12)
        action = 11;
    CS_VOID *out = nullptr;
    auto data = reinterpret_cast<CS_VOID *>(uintptr_t(in.byte()) + 1);
    CS_INT klen;
    const uint8_t *key;
    switch (action) {
    case 0: // insert
        if (type_of(h) == LM_LIST_DLINK) {
            static const CS_INT pos[] = {LM_OP_FIRST, LM_OP_LAST, LM_POS_BEFORE, LM_POS_AFTER};
            lm_list_op(h, LM_OP_INSERT, nullptr, pos[in.byte() % (cursor(h) ? 4 : 2)], data, &out);
        } else if (hashed(h)) {
            key = in.key(&klen);
            if (type_of(h) != LM_LIST_DHASH || load_of(h) < table_size(h))
                lm_list_op(h, LM_OP_INSERT, const_cast<uint8_t *>(key), klen, data, &out);
        } else {
            CS_VOID **where = &out;
            lm_list_op(h, LM_OP_INSERT, nullptr, 0, data, type_of(h) == LM_LIST_STACK ? (CS_VOID **)&where : &out);
        }
        break;
    case 1: // delete by key, or at the cursor when it holds an entry
    case 2:
        if (hashed(h) && action == 1) {
            key = in.key(&klen);
            lm_list_op(h, LM_OP_DELETE, const_cast<uint8_t *>(key), klen, nullptr, &out);
        } else if (hashed(h)) {
            if (cursor(h) && cursor(h)->state == LM_SET)
                lm_list_op(h, LM_OP_DELETE, nullptr, CS_UNUSED, nullptr, &out);
        } else if (load_of(h) > 0 && (type_of(h) != LM_LIST_DLINK || cursor(h))) {
            CS_VOID **where = &out;
            lm_list_op(h, LM_OP_DELETE, nullptr, 0, nullptr,
                       type_of(h) == LM_LIST_STACK ? (CS_VOID **)&where : &out);
        }
        break;
    case 3: // search and update by key; update at a live cursor
        if (hashed(h)) {
            key = in.key(&klen);
            lm_list_op(h, in.byte() & 1 ? LM_OP_SEARCH : LM_OP_UPDATE, const_cast<uint8_t *>(key), klen, data, &out);
        } else if (type_of(h) == LM_LIST_DLINK && cursor(h)) {
            lm_list_op(h, LM_OP_UPDATE, nullptr, 0, data, &out);
        }
        break;
    case 4: { // cursor moves
        static const CS_INT moves[] = {LM_OP_NEXT, LM_OP_PREVIOUS, LM_OP_FIRST, LM_OP_LAST, LM_OP_CURRENT};
        CS_INT m = type_of(h) == LM_LIST_DLINK ? moves[in.byte() % 5] : LM_OP_CURRENT;
        CS_VOID **where = &out;
        lm_list_op(h, m, nullptr, 0, nullptr, type_of(h) == LM_LIST_STACK ? (CS_VOID **)&where : &out);
        break;
    }
    case 5: { // rebuild: any size, refusals included
        CS_INT size = CS_INT(in.byte()) - 8;
        lm_list_prop(h, in.byte() & 1 ? LM_ACT_SET : LM_ACT_CLEAR, LM_PROP_MAX_TABLESIZE, &size, 4, nullptr);
        break;
    }
    case 6: { // pool resize
        CS_INT size = CS_INT(in.byte() % 40) - 4;
        lm_list_prop(h, in.byte() & 1 ? LM_ACT_SET : LM_ACT_CLEAR, LM_PROP_MAX_POOLSIZE, &size, 4, nullptr);
        break;
    }
    case 7: { // walks and prints
        CS_PRINT_FUNC fn = in.byte() & 1 ? accept_all : refuse_some;
        lm_list_prop(h, LM_ACT_SET, LM_PROP_PRINT_FUNC, &fn, CS_UNUSED, nullptr);
        lm_list_op(h, LM_OP_APPLY, nullptr, 0, &fn, nullptr);
        lm_list_op(h, LM_OP_PRINT_ALL, nullptr, 0, nullptr, nullptr);
        if (hashed(h)) {
            key = in.key(&klen);
            lm_list_op(h, LM_OP_PRINT_CURRENT, const_cast<uint8_t *>(key), klen, nullptr, nullptr);
        } else {
            lm_list_op(h, LM_OP_PRINT_CURRENT, nullptr, 0, nullptr, nullptr);
        }
        break;
    }
    case 8: { // name properties
        char name[16];
        CS_INT len = 0;
        lm_list_prop(h, LM_ACT_GET, LM_PROP_HANDLE_NAME, name, in.byte() % 17, &len);
        key = in.key(&klen);
        lm_property(ctx, LM_ACT_SET, LM_PROP_CUR_HANDLENAME, const_cast<uint8_t *>(key), klen, nullptr);
        lm_property(ctx, LM_ACT_GET, LM_PROP_CUR_HANDLENAME, name, in.byte() % 17, &len);
        break;
    }
    case 9: // drop, polite or forced
        if (lm_list_drop(h, in.byte() & 1 ? LM_FORCE_DROP : CS_UNUSED) == CS_SUCCEED)
            h = nullptr;
        return;
    case 10: // the allocator fails after a few more calls
        alloc.countdown = in.byte() % 24;
        break;
    case 11:
    case 12: { // (re)create with context defaults set from the input
        if (h != nullptr)
            lm_list_drop(h, LM_FORCE_DROP);
        h = nullptr;
        CS_INT size = CS_INT(in.byte() % 70) - 2, pool = CS_INT(in.byte() % 20) - 2;
        lm_property(ctx, LM_ACT_SET, LM_PROP_MAX_TABLESIZE, &size, 4, nullptr);
        lm_property(ctx, LM_ACT_SET, LM_PROP_MAX_POOLSIZE, &pool, 4, nullptr);
        key = in.key(&klen);
        lm_list_alloc(ctx, kinds[in.byte() % 6], (CS_CHAR *)key, klen, &h);
        return;
    }
    default: // context properties
        lm_property(ctx, LM_ACT_CLEAR, LM_PROP_LIST_TYPE, nullptr, CS_UNUSED, nullptr);
        break;
    }
    if (h != nullptr && count_entries(h) != load_of(h))
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static FILE *sink = std::fopen("/dev/null", "w");
    Com_fp = sink;
    FailingAllocator alloc;
    LM_CONTEXT *ctx = nullptr;
    if (lm_initlm_ex(1100, const_cast<CS_CHAR *>("fuzz"), CS_NULLTERM, &ctx, FailingAllocator::alloc,
                     FailingAllocator::release, &alloc) != CS_SUCCEED)
        return 0;
    LM_HANDLE *lists[4] = {};
    Input in{data, size};
    for (int steps = 0; !in.done() && steps < 4096; steps++)
        step(in, ctx, lists, alloc);
    alloc.countdown = -1;
    if (lm_exit(ctx, LM_FORCE_EXIT) != CS_SUCCEED)
        __builtin_trap();
    Com_fp = nullptr;
    return 0;
}
