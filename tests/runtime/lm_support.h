// Helpers of the list manager tests: an allocator that fails on demand and
// checks that every block is wiped (and a record stamped) before it goes,
// and short forms of the calls.
#ifndef KESCOMN_TESTS_RUNTIME_LM_SUPPORT_H
#define KESCOMN_TESTS_RUNTIME_LM_SUPPORT_H

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <ostream>

#include "kescomn/lm.h"

namespace lmtest {

// Fails allocation number fail_at (0-based).  A released block must be zero
// apart from a leading LM_RELEASED stamp; unstamped counts those that are
// not (and 1000 for a block freed twice or never handed out).
struct TrackingAllocator {
    std::map<void *, size_t> live;
    long calls = 0, fail_at = -1, unstamped = 0;

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
            self->unstamped += 1000;
            return;
        }
        const auto *bytes = static_cast<unsigned char *>(ptr);
        LM_NODE_STATE stamp{};
        if (it->second >= sizeof stamp)
            std::memcpy(&stamp, bytes, sizeof stamp);
        for (size_t i = stamp == LM_RELEASED ? sizeof stamp : 0; i < it->second; i++)
            if (bytes[i] != 0) {
                self->unstamped++;
                break;
            }
        self->live.erase(it);
        std::free(ptr);
    }
};

inline CS_VOID *d(uintptr_t id) { return reinterpret_cast<CS_VOID *>(id); }
inline uintptr_t id(const CS_VOID *p) { return reinterpret_cast<uintptr_t>(p); }

// The outcome of one operation; out starts at 0xbad so "untouched" shows.
struct Result {
    CS_RETCODE rc;
    uintptr_t out;
    bool operator==(const Result &) const = default;
};
inline std::ostream &operator<<(std::ostream &o, const Result &r) { return o << "{rc " << r.rc << ", out " << r.out << '}'; }

inline Result op(LM_HANDLE *h, CS_INT operation, const void *key = nullptr, CS_INT key_size = CS_UNUSED,
                 uintptr_t data_in = 0)
{
    CS_VOID *out = d(0xbad);
    CS_RETCODE rc = lm_list_op(h, operation, const_cast<void *>(key), key_size, d(data_in), &out);
    return {rc, id(out)};
}

// A stack's data_out is the address of the receiving location.
inline Result stack_op(LM_HANDLE *h, CS_INT operation, uintptr_t data_in = 0)
{
    CS_VOID *out = d(0xbad), **where = &out;
    CS_RETCODE rc = lm_list_op(h, operation, nullptr, CS_UNUSED, d(data_in), reinterpret_cast<CS_VOID **>(&where));
    return {rc, id(out)};
}

inline CS_INT get_int(LM_HANDLE *h, CS_INT property)
{
    CS_INT v = -1;
    const bool fixed = property == LM_PROP_LIST_TYPE || property == LM_PROP_HANDLE_LOAD;
    lm_list_prop(h, LM_ACT_GET, property, &v, fixed ? CS_UNUSED : CS_INT(sizeof v), nullptr);
    return v;
}

inline CS_RETCODE set_int(LM_HANDLE *h, CS_INT property, CS_INT value)
{
    return lm_list_prop(h, LM_ACT_SET, property, &value, sizeof value, nullptr);
}

} // namespace lmtest

#endif
