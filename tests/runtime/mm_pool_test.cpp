// Pool manager: layouts, size classes, the three disciplines, properties,
// limits, pools over caller memory, sub-pools, the lock and the assertions.
#include <array>
#include <cstddef>
#include <vector>

#include "runtime/mm_support.h"
#include "support/context.h"

using namespace kes::test::mm;

namespace {

TEST(MmLayout, RecordsMatchTheCallerMemoryContract)
{
    EXPECT_EQ(sizeof(MmPoolHead), 88u);
    EXPECT_EQ(sizeof(MM_HANDLE), 200u);
    EXPECT_EQ(offsetof(MmHeap, buffer), 24u);
    EXPECT_EQ(offsetof(MmList, link), 8u);
    EXPECT_EQ(offsetof(MmPoolHead, mph_chunksize), 48u);
    EXPECT_EQ(offsetof(MM_HANDLE, mmh_pool), 56u);
}

TEST(MmInit, Defaults)
{
    Pool pool;
    struct Case {
        CS_INT property;
        CS_INT expected;
    };
    for (const Case &c : {Case{MM_PROP_TYPE, MM_BUDDY}, Case{MM_PROP_BLOCKSIZE, 4096}, Case{MM_PROP_CHUNKSIZE, 4136},
                          Case{MM_PROP_MAXSIZE, MM_NO_LIMIT}, Case{MM_PROP_OVERHEAD, MM_OVERHEAD}})
        EXPECT_EQ(get_int(pool.h, c.property), c.expected) << c.property;
    EXPECT_EQ(pool.h->mmh_head->mph_totalsize, 0);
    EXPECT_EQ(pool.h->mmh_head->mph_ctx, pool.context.get());
    EXPECT_EQ(get_ptr<MM_LOCK_FUNC>(pool.h, MM_PROP_LOCK), nullptr) << "no ctxthread, no lock";
}

TEST(MmInit, RecordsInCallerMemoryAreLaidAtZeroAndEightyEight)
{
    PoolContext context;
    alignas(8) std::array<CS_BYTE, MM_OVERHEAD> records{};
    MM_HANDLE *h = reinterpret_cast<MM_HANDLE *>(records.data());
    ASSERT_EQ(comn_mminit(context.get(), &h), CS_SUCCEED);
    EXPECT_EQ(reinterpret_cast<CS_BYTE *>(h), records.data() + 88);
    EXPECT_EQ(static_cast<void *>(h->mmh_head), records.data());
    EXPECT_EQ(h->mmh_status & 3, MM_ST_CALLERMEM);
    void *p = nullptr;
    ASSERT_EQ(comn_mmalloc(h, 100, &p), CS_SUCCEED);
    EXPECT_EQ(comn_mmdrop(h, CS_UNUSED), CS_SUCCEED); // regions go back, records stay
}

TEST(MmInit, ContextAllocatorFailureIsFail)
{
    PoolContext context;
    context.ctx.ctxmalloc = [](size_t) -> CS_VOID * { return nullptr; };
    MM_HANDLE *h = nullptr;
    EXPECT_EQ(comn_mminit(context.get(), &h), CS_FAIL);
    EXPECT_EQ(h, nullptr);
}

// ---- buddy --------------------------------------------------------------

TEST(MmBuddy, SizeIndexOfRequests)
{
    struct Case {
        CS_UINT request;
        CS_UINT index;
    };
    // floor(log2(n + 7)) - 3, with n raised to 12.
    for (const Case &c : {Case{0, 1}, Case{1, 1}, Case{12, 1}, Case{24, 1}, Case{25, 2}, Case{56, 2}, Case{57, 3},
                          Case{120, 3}, Case{121, 4}, Case{2040, 7}, Case{2041, 8}, Case{4088, 8}}) {
        Pool pool;
        void *p = pool.alloc(c.request);
        const CS_UINT word = header_word(p);
        EXPECT_EQ(word & MM_BUDDY_INDEX_MASK, c.index) << "request " << c.request;
        EXPECT_EQ(word & (MM_BUDDY_FREE | MM_BUDDY_OVERSIZE), 0u) << "request " << c.request;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % 8, 0u);
    }
}

TEST(MmBuddy, OneByteBeyondTheBigBlockIsOversize)
{
    Pool pool;
    void *p = pool.alloc(4089);
    EXPECT_EQ(header_word(p), MM_BUDDY_OVERSIZE | 4089u);
    EXPECT_EQ(comn_mmfree(pool.h, p), CS_SUCCEED);
}

TEST(MmBuddy, FirstAllocationSettlesBlockSize)
{
    struct Case {
        CS_INT blocksize;
        CS_INT bpmax;
        CS_INT settled;
    };
    // The big block is the smallest whose data hold mmh_blocksize less 8.
    for (const Case &c : {Case{4096, 8, 4104}, Case{4097, 9, 8200}, Case{1, 1, 40}, Case{32, 1, 40},
                          Case{33, 2, 72}, Case{(1 << 20) + 8, 16, (1 << 20) + 8},
                          Case{1 << 24, 16, (1 << 20) + 8}}) {
        Pool pool(MM_BUDDY, c.blocksize);
        pool.alloc(16);
        EXPECT_EQ(pool.h->mmh_pool.buddy.bpmax, c.bpmax) << c.blocksize;
        EXPECT_EQ(get_int(pool.h, MM_PROP_BLOCKSIZE), c.settled) << c.blocksize;
        for (int k = c.bpmax + 1; k < MM_BUDDY_LISTS; k++)
            EXPECT_EQ(reinterpret_cast<std::intptr_t>(pool.h->mmh_pool.buddy.free[k]), -1) << k;
    }
}

TEST(MmBuddy, ZeroBytesGiveAThirtyTwoByteBlockSplitDownFromTheBigOne)
{
    Pool pool;
    CS_BYTE *p = static_cast<CS_BYTE *>(pool.alloc(0));
    const MmBuddyPool &bp = pool.h->mmh_pool.buddy;
    // One free buddy at every level from 32 bytes up to half the big block.
    for (int k = 1; k < bp.bpmax; k++) {
        ASSERT_NE(bp.free[k], nullptr) << k;
        EXPECT_EQ(bp.free[k]->next, nullptr) << k;
        EXPECT_EQ(reinterpret_cast<CS_BYTE *>(bp.free[k]), p - 8 + (1 << (k + 4))) << k;
        EXPECT_EQ(bp.free[k]->size, (header_word(p) & ~MM_BUDDY_INDEX_MASK) | MM_BUDDY_FREE | k) << k;
    }
    EXPECT_EQ(bp.free[bp.bpmax], nullptr);
}

TEST(MmBuddy, FreeDoesNotMergeButAShortageCompacts)
{
    Pool pool;
    std::vector<void *> small;
    for (int i = 0; i < 4096 / 32; i++)
        small.push_back(pool.alloc(24));
    const CS_INT total = pool.h->mmh_head->mph_totalsize;
    for (void *p : small)
        ASSERT_EQ(comn_mmfree(pool.h, p), CS_SUCCEED);
    EXPECT_EQ(pool.h->mmh_pool.buddy.free[pool.h->mmh_pool.buddy.bpmax], nullptr) << "merged at free";
    // A whole big block can only come from merging the 128 small ones.
    void *big = pool.alloc(4088);
    EXPECT_EQ(big, small.front());
    EXPECT_EQ(pool.h->mmh_head->mph_totalsize, total) << "a new region was drawn instead";
}

TEST(MmBuddy, CompactionMergesTheHalvesOfAMegabyteBlock)
{
    // The offset marker keeps 19 address bits: the two 512 KiB halves of the
    // largest big block differ only above them.
    Pool pool(MM_BUDDY, 1 << 24);
    const CS_UINT half = (1u << 19) - 8;
    void *low = pool.alloc(half);
    void *high = pool.alloc(half);
    ASSERT_EQ(static_cast<CS_BYTE *>(high) - static_cast<CS_BYTE *>(low), 1 << 19);
    ASSERT_EQ(comn_mmfree(pool.h, high), CS_SUCCEED);
    ASSERT_EQ(comn_mmfree(pool.h, low), CS_SUCCEED);
    const int calls = pool.supplier.calls;
    EXPECT_EQ(pool.alloc((1u << 20) - 8), low);
    EXPECT_EQ(pool.supplier.calls, calls);
    EXPECT_EQ(header_word(low) & MM_BUDDY_INDEX_MASK, 16u);
}

TEST(MmBuddy, CompactionLeavesAllocatedBuddiesAlone)
{
    Pool pool;
    void *a = pool.alloc(24);
    void *b = pool.alloc(24); // a's buddy
    void *c = pool.alloc(24);
    ASSERT_EQ(comn_mmfree(pool.h, a), CS_SUCCEED);
    ASSERT_EQ(comn_mmfree(pool.h, c), CS_SUCCEED);
    // Every level is now taken or split; a 2048-byte request needs a new big
    // block after compaction finds nothing to merge at 1024.
    const int calls = pool.supplier.calls;
    void *d = pool.alloc(2040);
    void *e = pool.alloc(2040);
    void *f = pool.alloc(2040);
    EXPECT_GT(pool.supplier.calls, calls);
    for (void *p : {b, d, e, f})
        EXPECT_EQ(header_word(p) & MM_BUDDY_FREE, 0u);
}

TEST(MmBuddy, ReallocCountsTheHeaderInItsCapacity)
{
    struct Case {
        CS_UINT first;
        CS_UINT second;
        bool moves;
    };
    for (const Case &c : {Case{24, 30, false}, Case{24, 32, false}, Case{24, 33, true}, Case{100, 10, false},
                          Case{120, 128, false}, Case{120, 129, true}, Case{5000, 5000, false},
                          Case{5000, 4000, false}, Case{5000, 5001, true}, Case{100, 9000, true}}) {
        Pool pool;
        auto *p = static_cast<CS_BYTE *>(pool.alloc(c.first));
        const CS_UINT keep = std::min(c.first, buddy_data_bytes(p));
        for (CS_UINT i = 0; i < keep; i++)
            p[i] = static_cast<CS_BYTE>(i * 7 + 1);
        void *q = p;
        ASSERT_EQ(comn_mmrealloc(pool.h, c.second, &q), CS_SUCCEED);
        EXPECT_EQ(q != p, c.moves) << c.first << " -> " << c.second;
        auto *r = static_cast<CS_BYTE *>(q);
        for (CS_UINT i = 0; i < keep; i++)
            ASSERT_EQ(r[i], static_cast<CS_BYTE>(i * 7 + 1)) << c.first << " -> " << c.second << " at " << i;
        if (c.moves) {
            EXPECT_GE(buddy_data_bytes(q), c.second);
        }
    }
}

TEST(MmBuddy, ReallocOfOtherDisciplinesFails)
{
    for (CS_INT type : {MM_UNIFORM, MM_ALLOCONLY}) {
        Pool pool(type);
        void *p = pool.alloc(16);
        EXPECT_EQ(comn_mmrealloc(pool.h, 8, &p), CS_FAIL) << type;
    }
}

TEST(MmBuddy, MemoryIsClearedEvenWhenReused)
{
    Pool pool;
    auto *p = static_cast<CS_BYTE *>(pool.alloc(100));
    std::memset(p, 0xAB, 100);
    ASSERT_EQ(comn_mmfree(pool.h, p), CS_SUCCEED);
    auto *q = static_cast<CS_BYTE *>(pool.alloc(100));
    ASSERT_EQ(q, p);
    for (int i = 0; i < 100; i++)
        ASSERT_EQ(q[i], 0) << i;
}

TEST(MmBuddy, BuddyBlocksKeepTheirRegionUntilTheDrop)
{
    Pool pool;
    void *p = pool.alloc(64);
    ASSERT_EQ(comn_mmfree(pool.h, p), CS_SUCCEED);
    EXPECT_EQ(pool.supplier.returned, 0);
    EXPECT_EQ(pool.supplier.live.size(), 1u);
}

// ---- uniform -------------------------------------------------------------

TEST(MmUniform, FirstRequestFixesTheNodeSize)
{
    Pool pool(MM_UNIFORM);
    auto *a = static_cast<CS_BYTE *>(pool.alloc(10));
    auto *b = static_cast<CS_BYTE *>(pool.alloc(10));
    EXPECT_EQ(pool.h->mmh_pool.uniform.uniform_size, 10);
    EXPECT_EQ(pool.h->mmh_pool.uniform.node_size, 24);
    EXPECT_EQ(b - a, 24) << "nodes are chained in address order";
    EXPECT_EQ(get_int(pool.h, MM_PROP_BLOCKSIZE), 4096 - 4096 % 24);
    void *c = nullptr;
    EXPECT_EQ(comn_mmalloc(pool.h, 11, &c), CS_FAIL);
    EXPECT_EQ(c, nullptr);
    EXPECT_EQ(comn_mmalloc(pool.h, 9, &c), CS_FAIL);
    EXPECT_EQ(comn_mmalloc(pool.h, 10, &c), CS_SUCCEED);
}

TEST(MmUniform, NodeSizesAndBlockSizes)
{
    struct Case {
        CS_UINT request;
        CS_INT blocksize;
        CS_INT node;
        CS_INT settled;
    };
    for (const Case &c : {Case{0, 4096, 16, 4096}, Case{8, 4096, 16, 4096}, Case{9, 4096, 24, 4080},
                          Case{100, 10, 112, 112}, Case{100, 112, 112, 112}, Case{100, 223, 112, 112},
                          Case{5000, 4096, 5008, 5008}}) {
        Pool pool(MM_UNIFORM, c.blocksize);
        std::vector<CS_BYTE *> nodes;
        // Two blocks' worth, so the second block is cut too.
        const int per_block = c.settled / c.node;
        for (int i = 0; i < 2 * per_block; i++)
            nodes.push_back(static_cast<CS_BYTE *>(pool.alloc(c.request)));
        EXPECT_EQ(pool.h->mmh_pool.uniform.node_size, c.node) << c.request;
        EXPECT_EQ(get_int(pool.h, MM_PROP_BLOCKSIZE), c.settled) << c.request;
        for (int i = 1; i < per_block; i++)
            EXPECT_EQ(nodes[i] - nodes[i - 1], c.node) << c.request << " node " << i;
        for (CS_BYTE *p : nodes)
            ASSERT_EQ(comn_mmfree(pool.h, p), CS_SUCCEED);
        // Freed nodes come back last in, first out.
        EXPECT_EQ(pool.alloc(c.request), nodes.back());
    }
}

// ---- allocate-only --------------------------------------------------------

TEST(MmAllocOnly, CursorMovesByRoundedRequests)
{
    Pool pool(MM_ALLOCONLY);
    auto *a = static_cast<CS_BYTE *>(pool.alloc(1));
    auto *b = static_cast<CS_BYTE *>(pool.alloc(9));
    auto *c = static_cast<CS_BYTE *>(pool.alloc(16));
    EXPECT_EQ(b - a, 8);
    EXPECT_EQ(c - b, 16);
    EXPECT_EQ(comn_mmfree(pool.h, a), CS_FAIL);
    // First fit: a large request takes its own block, small ones go on in
    // the first block that still has room.
    auto *big = static_cast<CS_BYTE *>(pool.alloc(10000));
    auto *d = static_cast<CS_BYTE *>(pool.alloc(8));
    EXPECT_FALSE(big >= a && big < a + 4096);
    EXPECT_EQ(d, c + 16);
    const MmHeap *front = pool.h->mmh_pool.alloconly.free;
    EXPECT_EQ(front->size, 10000 + 40);
    EXPECT_EQ(front->free->size, 0u);
}

TEST(MmAllocOnly, BlockRemainderIsBlockSizeLessForty)
{
    Pool pool(MM_ALLOCONLY, 1000);
    pool.alloc(100);
    const MmHeap *block = pool.h->mmh_pool.alloconly.free;
    EXPECT_EQ(block->size, 1000);
    EXPECT_EQ(block->free->size, 1000u - 40 - 104);
}

// ---- properties -----------------------------------------------------------

TEST(MmProperty, SetRules)
{
    struct Case {
        const char *what;
        CS_INT property;
        CS_INT value;
        bool after_alloc;
        CS_RETCODE expected;
    };
    const Case cases[] = {
        {"type before", MM_PROP_TYPE, MM_UNIFORM, false, CS_SUCCEED},
        {"type none", MM_PROP_TYPE, MM_TYPE_NONE, false, CS_SUCCEED},
        {"type below", MM_PROP_TYPE, 2234, false, MM_EBADTYPE},
        {"type above", MM_PROP_TYPE, 2239, false, MM_EBADTYPE},
        {"type after", MM_PROP_TYPE, MM_UNIFORM, true, CS_FAIL},
        {"type bad after", MM_PROP_TYPE, 1, true, CS_FAIL},
        {"blocksize", MM_PROP_BLOCKSIZE, 100, false, CS_SUCCEED},
        {"blocksize 0", MM_PROP_BLOCKSIZE, 0, false, CS_FAIL},
        {"blocksize after", MM_PROP_BLOCKSIZE, 100, true, CS_FAIL},
        {"chunksize 1", MM_PROP_CHUNKSIZE, 1, true, CS_SUCCEED},
        {"chunksize 0", MM_PROP_CHUNKSIZE, 0, false, CS_FAIL},
        {"maxsize", MM_PROP_MAXSIZE, 1, true, CS_SUCCEED},
        {"maxsize none", MM_PROP_MAXSIZE, MM_NO_LIMIT, false, CS_FAIL},
        {"overhead", MM_PROP_OVERHEAD, 1, false, CS_FAIL},
        {"subpool", MM_PROP_SUBPOOL, 1, false, CS_FAIL},
    };
    for (const Case &c : cases) {
        Pool pool;
        if (c.after_alloc)
            pool.alloc(8);
        EXPECT_EQ(set_int(pool.h, c.property, c.value), c.expected) << c.what;
        if (c.expected == CS_SUCCEED) {
            EXPECT_EQ(get_int(pool.h, c.property), c.value) << c.what;
        }
    }
}

TEST(MmProperty, PointersRoundTrip)
{
    Pool pool;
    int marker = 0;
    EXPECT_EQ(get_ptr<MM_SBREAK_FUNC>(pool.h, MM_PROP_SBREAK), &Supplier::sbreak);
    EXPECT_EQ(get_ptr<MM_UNSBREAK_FUNC>(pool.h, MM_PROP_UNSBREAK), &Supplier::unsbreak);
    EXPECT_EQ(get_ptr<void *>(pool.h, MM_PROP_PARAM), &pool.supplier);
    ASSERT_EQ(set_ptr<void *>(pool.h, MM_PROP_LOCKARG, &marker), CS_SUCCEED);
    EXPECT_EQ(get_ptr<void *>(pool.h, MM_PROP_LOCKARG), &marker);
}

TEST(MmProperty, AddedRegionServesAPoolWithoutSupplier)
{
    Pool pool;
    ASSERT_EQ(set_ptr<MM_SBREAK_FUNC>(pool.h, MM_PROP_SBREAK, nullptr), CS_SUCCEED);
    void *p = nullptr;
    EXPECT_EQ(comn_mmalloc(pool.h, 16, &p), CS_MEM_ERROR) << "no supplier";
    alignas(8) static CS_BYTE region[8192];
    ASSERT_EQ(comn_mmproperty(pool.h, MM_ACT_SET, MM_PROP_ADDHEAP, region, sizeof region, nullptr), CS_SUCCEED);
    EXPECT_EQ(pool.h->mmh_head->mph_totalsize, 8192);
    p = pool.alloc(16);
    EXPECT_TRUE(p > region && p < region + sizeof region);
    EXPECT_EQ(comn_mmproperty(pool.h, MM_ACT_SET, MM_PROP_ADDHEAP, region, 20, nullptr), CS_FAIL)
        << "room for no piece";
}

// ---- limits ---------------------------------------------------------------

TEST(MmLimit, TotalNeverFallsSoTheLimitCountsRegionsEverDrawn)
{
    // Oversize buddy blocks give their region back when freed.
    Pool pool;
    ASSERT_EQ(set_int(pool.h, MM_PROP_MAXSIZE, 8000), CS_SUCCEED);
    void *p = pool.alloc(5000);
    const CS_INT first = pool.h->mmh_head->mph_totalsize;
    EXPECT_EQ(first, 5000 + 8 + 8 + 32);
    ASSERT_EQ(comn_mmfree(pool.h, p), CS_SUCCEED);
    EXPECT_EQ(pool.supplier.returned, 1);
    EXPECT_EQ(pool.h->mmh_head->mph_totalsize, first);
    void *q = nullptr;
    EXPECT_EQ(comn_mmalloc(pool.h, 5000, &q), CS_MEM_ERROR);
    EXPECT_EQ(pool.supplier.calls, 1);
}

TEST(MmLimit, ChunkRegionsUpToTheLimit)
{
    struct Case {
        CS_INT limit;
        int regions;
    };
    // Each big block needs 4104 + 8 bytes of heap, so every region is
    // 4144 bytes; the sum of regions must stay within the limit.
    for (const Case &c : {Case{4143, 0}, Case{4144, 1}, Case{8000, 1}, Case{8288, 2}, Case{8289, 2}}) {
        Pool pool;
        ASSERT_EQ(set_int(pool.h, MM_PROP_MAXSIZE, c.limit), CS_SUCCEED);
        int got = 0;
        void *p = nullptr;
        while (comn_mmalloc(pool.h, 4088, &p) == CS_SUCCEED)
            got++;
        EXPECT_EQ(got, c.regions) << c.limit;
        EXPECT_LE(pool.h->mmh_head->mph_totalsize, c.limit);
    }
}

// ---- pools over caller memory -----------------------------------------------

TEST(MmManage, BufferSizes)
{
    struct Case {
        CS_UINT buflen;
        CS_RETCODE expected;
        bool has_heap;
    };
    for (const Case &c : {Case{0, CS_FAIL, false}, Case{199, CS_FAIL, false}, Case{200, CS_FAIL, false},
                          Case{287, CS_FAIL, false}, Case{288, CS_SUCCEED, false}, Case{327, CS_SUCCEED, false},
                          Case{328, CS_SUCCEED, true}, Case{4096, CS_SUCCEED, true}}) {
        alignas(8) static CS_BYTE buffer[4096];
        MM_HANDLE *h = nullptr;
        ASSERT_EQ(comn_mmmanage(buffer, c.buflen, &h), c.expected) << c.buflen;
        if (c.expected != CS_SUCCEED)
            continue;
        // Default big blocks would not fit a buffer this small.
        ASSERT_EQ(set_int(h, MM_PROP_BLOCKSIZE, 256), CS_SUCCEED);
        EXPECT_EQ(static_cast<void *>(h), buffer + 88);
        EXPECT_EQ(h->mmh_head->mph_ctx, nullptr);
        EXPECT_EQ(h->mmh_head->mph_sbreak, nullptr);
        EXPECT_EQ(h->mmh_head->mph_heap != nullptr, c.has_heap) << c.buflen;
        void *p = nullptr;
        EXPECT_EQ(comn_mmalloc(h, 8, &p), c.buflen >= 4096 ? CS_SUCCEED : CS_MEM_ERROR) << c.buflen;
        EXPECT_EQ(comn_mmdrop(h, CS_UNUSED), CS_SUCCEED);
    }
}

TEST(MmManage, AllMemoryComesFromTheBuffer)
{
    alignas(8) static CS_BYTE buffer[64 * 1024];
    MM_HANDLE *h = nullptr;
    ASSERT_EQ(comn_mmmanage(buffer, sizeof buffer, &h), CS_SUCCEED);
    EXPECT_EQ(h->mmh_head->mph_totalsize, static_cast<CS_INT>(sizeof buffer - MM_OVERHEAD));
    int count = 0;
    void *p = nullptr;
    while (comn_mmalloc(h, 100, &p) == CS_SUCCEED) {
        ASSERT_TRUE(p >= buffer + MM_OVERHEAD && static_cast<CS_BYTE *>(p) + 100 <= buffer + sizeof buffer);
        count++;
    }
    // 4112-byte pieces of a 65248-byte heap: 15 big blocks of 32 blocks each.
    EXPECT_EQ(count, 15 * 32);
    EXPECT_EQ(comn_mmdrop(h, MM_FORCE_DROP), CS_SUCCEED);
}

TEST(MmManage, CallerRecordsMakeTheWholeBufferARegion)
{
    alignas(8) static CS_BYTE records[MM_OVERHEAD];
    alignas(8) static CS_BYTE buffer[1000];
    MM_HANDLE *h = reinterpret_cast<MM_HANDLE *>(records);
    ASSERT_EQ(comn_mmmanage(buffer, sizeof buffer, &h), CS_SUCCEED);
    EXPECT_EQ(static_cast<void *>(h), records + 88);
    EXPECT_EQ(static_cast<void *>(h->mmh_head->mph_heap), buffer);
    EXPECT_EQ(h->mmh_head->mph_heap->free->size, 1000u - 32);
    EXPECT_EQ(comn_mmdrop(h, CS_UNUSED), CS_SUCCEED);
}

// ---- sub-pools --------------------------------------------------------------

TEST(MmSubpool, TagsFindOrMakeChildren)
{
    Pool pool(MM_UNIFORM, 512);
    MM_HANDLE *a = subpool(pool.h, 7);
    MM_HANDLE *b = subpool(pool.h, 8);
    EXPECT_NE(a, b);
    EXPECT_EQ(subpool(pool.h, 7), a);
    EXPECT_EQ(a->mmh_parent, pool.h);
    EXPECT_EQ(a->mmh_head, pool.h->mmh_head);
    EXPECT_EQ(a->mmh_type, MM_UNIFORM);
    EXPECT_EQ(a->mmh_blocksize, 512);
    EXPECT_EQ(a->mmh_tagid, 7);
    EXPECT_EQ(pool.h->mmh_child, b) << "newest child first";
    // The child's discipline is settled by its own first request.
    void *p = nullptr;
    ASSERT_EQ(comn_mmalloc(a, 40, &p), CS_SUCCEED);
    ASSERT_EQ(comn_mmalloc(b, 16, &p), CS_SUCCEED);
    EXPECT_EQ(a->mmh_pool.uniform.node_size, 48);
    EXPECT_EQ(b->mmh_pool.uniform.node_size, 24);
}

TEST(MmSubpool, DropGivesTheChildsMemoryBack)
{
    Pool pool;
    MM_HANDLE *child = subpool(pool.h, 1);
    for (int i = 0; i < 20; i++) {
        void *p = nullptr;
        ASSERT_EQ(comn_mmalloc(child, 3000, &p), CS_SUCCEED);
    }
    EXPECT_EQ(comn_mmdrop(pool.h, CS_UNUSED), CS_BUSY);
    const size_t regions = pool.supplier.live.size();
    EXPECT_GT(regions, 1u);
    ASSERT_EQ(comn_mmdrop(child, CS_UNUSED), CS_SUCCEED);
    EXPECT_EQ(pool.h->mmh_child, nullptr);
    // Every region held only the child's blocks and the child itself.
    EXPECT_EQ(pool.supplier.live.size(), 0u);
    EXPECT_EQ(pool.supplier.returned, static_cast<int>(regions));
}

TEST(MmSubpool, ForcedDropOfAChildTakesTheWholePool)
{
    Supplier supplier;
    {
        PoolContext context;
        MM_HANDLE *h = nullptr;
        ASSERT_EQ(comn_mminit(context.get(), &h), CS_SUCCEED);
        supplier.attach(h);
        MM_HANDLE *child = subpool(h, 1);
        MM_HANDLE *grandchild = subpool(child, 2);
        void *p = nullptr;
        ASSERT_EQ(comn_mmalloc(grandchild, 100, &p), CS_SUCCEED);
        ASSERT_EQ(comn_mmalloc(h, 100, &p), CS_SUCCEED);
        EXPECT_EQ(comn_mmdrop(child, CS_UNUSED), CS_BUSY);
        EXPECT_EQ(comn_mmdrop(grandchild, MM_FORCE_DROP), CS_SUCCEED);
    }
    EXPECT_TRUE(supplier.live.empty());
}

// ---- the lock ----------------------------------------------------------------

struct LockLog {
    int created = 0, deleted = 0, taken = 0, released = 0;
    CS_RETCODE take_result = CS_SUCCEED;
    CS_RETCODE create_result = CS_SUCCEED;
};
LockLog *g_log;
CS_THRDRES *const kMutex = reinterpret_cast<CS_THRDRES *>(0x1234);

CS_THREAD counting_thread()
{
    CS_THREAD t{};
    t.create_mutex_fn = [](CS_THRDRES **m) {
        g_log->created++;
        *m = kMutex;
        return g_log->create_result;
    };
    t.delete_mutex_fn = [](CS_THRDRES *m) {
        EXPECT_EQ(m, kMutex);
        g_log->deleted++;
        return CS_SUCCEED;
    };
    t.take_mutex_fn = [](CS_THRDRES *m) {
        EXPECT_EQ(m, kMutex);
        EXPECT_EQ(g_log->taken, g_log->released) << "locks are not nested";
        g_log->taken++;
        return g_log->take_result;
    };
    t.release_mutex_fn = [](CS_THRDRES *m) {
        EXPECT_EQ(m, kMutex);
        g_log->released++;
        return CS_SUCCEED;
    };
    return t;
}

TEST(MmLock, EveryOperationLocksOnceThroughTheThreadTable)
{
    LockLog log;
    g_log = &log;
    CS_THREAD thread = counting_thread();
    PoolContext context;
    context.ctx.ctxthread = &thread;
    MM_HANDLE *h = nullptr;
    ASSERT_EQ(comn_mminit(context.get(), &h), CS_SUCCEED);
    EXPECT_EQ(log.created, 1);
    EXPECT_EQ(h->mmh_head->mph_status & MM_ST_OWNMUTEX, MM_ST_OWNMUTEX);

    void *p = nullptr;
    ASSERT_EQ(comn_mmalloc(h, 10, &p), CS_SUCCEED);
    ASSERT_EQ(comn_mmrealloc(h, 100, &p), CS_SUCCEED);
    ASSERT_EQ(comn_mmfree(h, p), CS_SUCCEED);
    MM_HANDLE *child = subpool(h, 3);
    ASSERT_EQ(comn_mmalloc(child, 10, &p), CS_SUCCEED);
    ASSERT_EQ(comn_mmdrop(child, CS_UNUSED), CS_SUCCEED);
    EXPECT_EQ(log.taken, 6);
    EXPECT_EQ(log.released, 6);

    get_int(h, MM_PROP_OVERHEAD);
    EXPECT_EQ(log.taken, 6) << "the overhead is answered without the lock";

    log.take_result = CS_FAIL;
    EXPECT_EQ(comn_mmalloc(h, 10, &p), CS_FAIL);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(log.released, 6) << "a lock not taken is not released";
    log.take_result = CS_SUCCEED;
    log.taken = log.released;

    ASSERT_EQ(comn_mmdrop(h, CS_UNUSED), CS_SUCCEED);
    EXPECT_EQ(log.taken, log.released);
    EXPECT_EQ(log.deleted, 1);
}

TEST(MmLock, ClearDropsTheTrioAndReleasesTheLockInForce)
{
    LockLog log;
    g_log = &log;
    CS_THREAD thread = counting_thread();
    PoolContext context;
    context.ctx.ctxthread = &thread;
    MM_HANDLE *h = nullptr;
    ASSERT_EQ(comn_mminit(context.get(), &h), CS_SUCCEED);
    EXPECT_EQ(set_ptr<MM_LOCK_FUNC>(h, MM_PROP_LOCK, nullptr), CS_FAIL) << "a lock is already set";
    ASSERT_EQ(comn_mmproperty(h, MM_ACT_CLEAR, MM_PROP_UNLOCK, nullptr, 0, nullptr), CS_SUCCEED);
    EXPECT_EQ(log.taken, 2);
    EXPECT_EQ(log.released, 2);
    EXPECT_EQ(h->mmh_head->mph_lock, nullptr);
    EXPECT_EQ(h->mmh_head->mph_unlock, nullptr);
    EXPECT_EQ(h->mmh_head->mph_lockarg, nullptr);
    void *p = nullptr;
    ASSERT_EQ(comn_mmalloc(h, 10, &p), CS_SUCCEED);
    EXPECT_EQ(log.taken, 2);
    // Ownership of the mutex stays with the pool: the drop still deletes.
    log.deleted = 0;
    thread.delete_mutex_fn = [](CS_THRDRES *) {
        g_log->deleted++;
        return CS_SUCCEED;
    };
    ASSERT_EQ(comn_mmdrop(h, CS_UNUSED), CS_SUCCEED);
    EXPECT_EQ(log.deleted, 1);
}

TEST(MmLock, CallerLockIsSetWhenNoneIs)
{
    static int taken, released;
    taken = released = 0;
    Pool pool;
    MM_LOCK_FUNC lock = [](MM_HANDLE *, CS_VOID *) {
        taken++;
        return CS_SUCCEED;
    };
    MM_UNLOCK_FUNC unlock = [](MM_HANDLE *, CS_VOID *) {
        released++;
        return CS_SUCCEED;
    };
    ASSERT_EQ(set_ptr(pool.h, MM_PROP_UNLOCK, unlock), CS_SUCCEED);
    ASSERT_EQ(set_ptr(pool.h, MM_PROP_LOCK, lock), CS_SUCCEED);
    EXPECT_TRUE(pool.h->mmh_status & MM_ST_LOCKSET);
    EXPECT_EQ(released, 0) << "no lock was in force while the lock was set";
    pool.alloc(8);
    EXPECT_EQ(taken, 1);
    EXPECT_EQ(released, 1);
}

TEST(MmLock, MutexFailureReturnsItAndFreesTheRecords)
{
    LockLog log;
    log.create_result = CS_MEM_ERROR;
    g_log = &log;
    CS_THREAD thread = counting_thread();
    PoolContext context;
    context.ctx.ctxthread = &thread;
    MM_HANDLE *h = nullptr;
    EXPECT_EQ(comn_mminit(context.get(), &h), CS_MEM_ERROR);
    EXPECT_EQ(h, nullptr);
}

// ---- assertions ----------------------------------------------------------------

using MmDeathTest = ::testing::Test;

TEST_F(MmDeathTest, Misuse)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_BOMB({
        Pool pool;
        void *p = pool.alloc(10);
        comn_mmfree(pool.h, p);
        comn_mmfree(pool.h, p);
    });
    EXPECT_BOMB({
        Pool pool;
        int outside;
        pool.alloc(10);
        comn_mmfree(pool.h, &outside);
    });
    EXPECT_BOMB({
        Pool pool;
        int nothing;
        comn_mmfree(pool.h, &nothing);
    });
    EXPECT_BOMB({
        Pool pool(MM_TYPE_NONE);
        pool.alloc(10);
    });
    EXPECT_BOMB({
        Pool pool;
        comn_mmdiag(pool.h);
    });
    EXPECT_BOMB({
        PoolContext context;
        context.ctx.ctxversion = 113;
        MM_HANDLE *h = nullptr;
        comn_mminit(context.get(), &h);
    });
}

TEST_F(MmDeathTest, BadPropertiesAndOptions)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    CS_INT value = 0;
    EXPECT_BOMB({
        Pool pool;
        comn_mmproperty(pool.h, 36, MM_PROP_TYPE, &value, 4, nullptr);
    });
    EXPECT_BOMB({
        Pool pool;
        comn_mmproperty(pool.h, MM_ACT_GET, 1248, &value, 4, nullptr);
    });
    EXPECT_BOMB({
        Pool pool;
        comn_mmproperty(pool.h, MM_ACT_CLEAR, MM_PROP_TYPE, nullptr, 0, nullptr);
    });
    EXPECT_BOMB({
        Pool pool;
        comn_mmproperty(pool.h, MM_ACT_GET, MM_PROP_ADDHEAP, &value, 4, nullptr);
    });
    EXPECT_BOMB({
        Pool pool;
        comn_mmdrop(pool.h, 0);
    });
    EXPECT_NULL_POINTER(comn_mmalloc(nullptr, 1, nullptr));
}

} // namespace
