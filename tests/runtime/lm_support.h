// Helpers of the list manager tests: an allocator that can fail on demand
// and checks that every record is wiped and stamped before it goes, and
// short forms of the operation calls.
#ifndef KESCOMN_TESTS_RUNTIME_LM_SUPPORT_H
#define KESCOMN_TESTS_RUNTIME_LM_SUPPORT_H

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>

#include "kescomn/lm.h"

namespace lmtest {

// Counts allocations, fails the one numbered fail_at (0-based), and on
// release checks that the block is zero apart from a leading state stamp
// of LM_RELEASED (records) or zero (names, tables).
struct TrackingAllocator {
    std::map<void *, size_t> live;
    long calls = 0;
    long fail_at = -1;
    long unstamped = 0;

    static void *alloc(void *user, size_t size)
    {
        auto *self = static_cast<TrackingAllocator *>(user);
        if (self->calls++ == self->fail_at)
            return nullptr;
        void *p = std::malloc(size == 0 ? 1 : size);
        std::memset(p, 0xA5, size); // no zeroing for free
        self->live[p] = size;
        return p;
    }
    static void release(void *user, void *ptr)
    {
        auto *self = static_cast<TrackingAllocator *>(user);
        auto it = self->live.find(ptr);
        if (it == self->live.end()) {
            self->unstamped += 1000; // freed twice or never ours
            return;
        }
        auto *bytes = static_cast<unsigned char *>(ptr);
        size_t from = 0;
        if (it->second >= sizeof(LM_NODE_STATE)) {
            LM_NODE_STATE s;
            std::memcpy(&s, bytes, sizeof s);
            if (s == LM_RELEASED)
                from = sizeof s;
        }
        for (size_t i = from; i < it->second; i++)
            if (bytes[i] != 0) {
                self->unstamped++;
                break;
            }
        self->live.erase(it);
        std::free(ptr);
    }
};

struct Result {
    CS_RETCODE rc;
    CS_VOID *out;
};

inline CS_VOID *d(uintptr_t id) { return reinterpret_cast<CS_VOID *>(id); }
inline uintptr_t id(CS_VOID *p) { return reinterpret_cast<uintptr_t>(p); }

// One operation; out starts at a sentinel so "untouched" is visible.
inline Result op(LM_HANDLE *h, CS_INT operation, const void *key = nullptr, CS_INT key_size = CS_UNUSED,
                 CS_VOID *data_in = nullptr)
{
    CS_VOID *out = d(0xbad);
    CS_RETCODE rc = lm_list_op(h, operation, const_cast<void *>(key), key_size, data_in, &out);
    return {rc, out};
}

// A stack operation: data_out is the address of the receiving location.
inline Result stack_op(LM_HANDLE *h, CS_INT operation, CS_VOID *data_in = nullptr)
{
    CS_VOID *out = d(0xbad);
    CS_VOID **where = &out;
    CS_RETCODE rc = lm_list_op(h, operation, nullptr, CS_UNUSED, data_in, reinterpret_cast<CS_VOID **>(&where));
    return {rc, out};
}

inline CS_INT int_prop(LM_HANDLE *h, CS_INT property)
{
    CS_INT v = -1, len = -1;
    lm_list_prop(h, LM_ACT_GET, property, &v, property == LM_PROP_LIST_TYPE || property == LM_PROP_HANDLE_LOAD
                                                   ? CS_UNUSED
                                                   : CS_INT(sizeof v),
                 &len);
    return v;
}

inline CS_RETCODE set_int(LM_HANDLE *h, CS_INT property, CS_INT value)
{
    return lm_list_prop(h, LM_ACT_SET, property, &value, sizeof value, nullptr);
}

} // namespace lmtest

#endif
