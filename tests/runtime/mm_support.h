// What the pool tests share: a context pools accept, a supplier that keeps
// account of every region, property shorthands and a look at block headers.
#ifndef KESCOMN_TESTS_RUNTIME_MM_SUPPORT_H
#define KESCOMN_TESTS_RUNTIME_MM_SUPPORT_H

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>

#include "kescomn.h"

namespace kes::test::mm {

// A zeroed context of the first version pools accept.
struct PoolContext {
    CS_CONTEXT ctx;
    PoolContext()
    {
        std::memset(&ctx, 0, sizeof ctx);
        ctx.ctxversion = 114;
    }
    CS_CONTEXT *get() { return &ctx; }
};

inline CS_INT get_int(MM_HANDLE *h, CS_INT property)
{
    CS_INT value = 0, outlen = 0;
    EXPECT_EQ(comn_mmproperty(h, MM_ACT_GET, property, &value, sizeof value, &outlen), CS_SUCCEED);
    EXPECT_EQ(outlen, 4);
    return value;
}

inline CS_RETCODE set_int(MM_HANDLE *h, CS_INT property, CS_INT value)
{
    return comn_mmproperty(h, MM_ACT_SET, property, &value, sizeof value, nullptr);
}

template <class T> CS_RETCODE set_ptr(MM_HANDLE *h, CS_INT property, T value)
{
    return comn_mmproperty(h, MM_ACT_SET, property, &value, sizeof value, nullptr);
}

// The child tagged tag, made when missing (the tag travels as the buffer length).
inline MM_HANDLE *subpool(MM_HANDLE *h, CS_INT tag)
{
    MM_HANDLE *child = nullptr;
    CS_INT outlen = 0;
    EXPECT_EQ(comn_mmproperty(h, MM_ACT_GET, MM_PROP_SUBPOOL, &child, tag, &outlen), CS_SUCCEED);
    return child;
}

// The header word in front of a buddy block's data.
inline CS_UINT header_word(const void *data)
{
    CS_UINT word;
    std::memcpy(&word, static_cast<const CS_BYTE *>(data) - 8, sizeof word);
    return word;
}

// Data bytes a buddy block really holds (realloc counts its header in the
// capacity, the caller may not write it).
inline CS_UINT buddy_data_bytes(const void *data)
{
    const CS_UINT word = header_word(data);
    if (word & MM_BUDDY_OVERSIZE)
        return word & ~MM_BUDDY_OVERSIZE;
    return (1u << ((word & MM_BUDDY_INDEX_MASK) + 4)) - 8;
}

// A supplier that keeps account of the regions it gave and got back.
struct Supplier {
    std::map<void *, CS_INT> live;
    std::int64_t drawn = 0;
    int calls = 0, returned = 0;

    static CS_VOID *sbreak(MM_HANDLE *, CS_VOID *param, CS_INT size)
    {
        auto *self = static_cast<Supplier *>(param);
        void *p = std::malloc(static_cast<size_t>(size));
        if (p) {
            self->live[p] = size;
            self->drawn += size;
            self->calls++;
        }
        return p;
    }

    static void unsbreak(MM_HANDLE *, CS_VOID *param, CS_VOID *region)
    {
        auto *self = static_cast<Supplier *>(param);
        ASSERT_EQ(self->live.erase(region), 1u) << "a region the supplier never gave came back";
        self->returned++;
        std::free(region);
    }

    void attach(MM_HANDLE *h)
    {
        ASSERT_EQ(set_ptr(h, MM_PROP_SBREAK, &Supplier::sbreak), CS_SUCCEED);
        ASSERT_EQ(set_ptr(h, MM_PROP_UNSBREAK, &Supplier::unsbreak), CS_SUCCEED);
        ASSERT_EQ(set_ptr<void *>(h, MM_PROP_PARAM, this), CS_SUCCEED);
    }

    ~Supplier()
    {
        for (auto &[p, size] : live)
            std::free(p);
    }
};

// A pool on a fresh context with a counting supplier, force-dropped at the
// end with every region back.
struct Pool {
    PoolContext context;
    Supplier supplier;
    MM_HANDLE *h = nullptr;

    explicit Pool(CS_INT type = MM_BUDDY, CS_INT blocksize = 0)
    {
        EXPECT_EQ(comn_mminit(context.get(), &h), CS_SUCCEED);
        supplier.attach(h);
        if (type != MM_BUDDY) {
            EXPECT_EQ(set_int(h, MM_PROP_TYPE, type), CS_SUCCEED);
        }
        if (blocksize) {
            EXPECT_EQ(set_int(h, MM_PROP_BLOCKSIZE, blocksize), CS_SUCCEED);
        }
    }
    ~Pool()
    {
        if (h) {
            EXPECT_EQ(comn_mmdrop(h, MM_FORCE_DROP), CS_SUCCEED);
        }
        EXPECT_TRUE(supplier.live.empty()) << "regions kept after the drop";
    }
    Pool(const Pool &) = delete;
    Pool &operator=(const Pool &) = delete;

    void *alloc(CS_UINT size)
    {
        void *p = nullptr;
        EXPECT_EQ(comn_mmalloc(h, size, &p), CS_SUCCEED) << "size " << size;
        return p;
    }
};

} // namespace kes::test::mm

#endif
