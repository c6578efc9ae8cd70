// Pool manager rules the random runs in mm_random_test.cpp cannot see:
// layouts, size classes and block sizes, compaction, the realloc capacity,
// properties, limits, caller memory, sub-pools, the lock and the assertions.
#include <array>
#include <cstddef>
#include <vector>

#include "runtime/mm_support.h"
#include "support/context.h"

using namespace kes::test::mm;

namespace {

TEST(MmLayout, RecordsInCallerMemoryAreLaidAtZeroAndEightyEight)
{
    EXPECT_EQ(sizeof(MmPoolHead) + sizeof(MM_HANDLE), static_cast<size_t>(MM_OVERHEAD));
    EXPECT_EQ(offsetof(MmHeap, buffer), 24u);
    EXPECT_EQ(offsetof(MmPoolHead, mph_chunksize), 48u);
    EXPECT_EQ(offsetof(MM_HANDLE, mmh_pool), 56u);
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
    context.ctx.ctxmalloc = [](size_t) -> CS_VOID * { return nullptr; };
    h = nullptr;
    EXPECT_EQ(comn_mminit(context.get(), &h), CS_FAIL);
}

TEST(MmBuddy, SizeIndexIsLog2OfRequestPlusSevenLessThree)
{
    // n is raised to 12 first; one byte past the big block's data is oversize.
    const std::pair<CS_UINT, CS_UINT> cases[] = {{0, 1},   {24, 1},    {25, 2},    {120, 3},
                                                 {121, 4}, {2040, 7},  {2041, 8},  {4088, 8},
                                                 {4089, MM_BUDDY_OVERSIZE | 4089u}};
    for (auto [request, expected] : cases) {
        Pool pool;
        void *p = pool.alloc(request);
        const CS_UINT word = header_word(p);
        EXPECT_EQ(word & MM_BUDDY_OVERSIZE ? word : word & (MM_BUDDY_INDEX_MASK | MM_BUDDY_FREE), expected)
            << "request " << request;
    }
}

TEST(MmBuddy, FirstAllocationSettlesBlockSizeUpToIndexSixteen)
{
    struct Case {
        CS_INT blocksize, bpmax, settled;
    };
    // The big block is the smallest whose data hold the block size less 8;
    // index 16 (1 MiB) is the largest.
    for (const Case &c : {Case{4096, 8, 4104}, Case{4097, 9, 8200}, Case{1, 1, 40}, Case{33, 2, 72},
                          Case{(1 << 20) + 8, 16, (1 << 20) + 8}, Case{1 << 24, 16, (1 << 20) + 8}}) {
        Pool pool(MM_BUDDY, c.blocksize);
        pool.alloc(16);
        EXPECT_EQ(pool.h->mmh_pool.buddy.bpmax, c.bpmax) << c.blocksize;
        EXPECT_EQ(get_int(pool.h, MM_PROP_BLOCKSIZE), c.settled) << c.blocksize;
        for (int k = c.bpmax + 1; k < MM_BUDDY_LISTS; k++)
            EXPECT_EQ(reinterpret_cast<std::intptr_t>(pool.h->mmh_pool.buddy.free[k]), -1) << k;
    }
}

TEST(MmBuddy, FreeDoesNotMergeButAShortageCompacts)
{
    Pool pool;
    std::vector<void *> small;
    for (int i = 0; i < 4096 / 32; i++)
        small.push_back(pool.alloc(24));
    for (void *p : small)
        ASSERT_EQ(comn_mmfree(pool.h, p), CS_SUCCEED);
    EXPECT_EQ(pool.h->mmh_pool.buddy.free[pool.h->mmh_pool.buddy.bpmax], nullptr) << "merged at free";
    const int calls = pool.supplier.calls;
    EXPECT_EQ(pool.alloc(4088), small.front()); // only merging the 128 small ones gives this
    EXPECT_EQ(pool.supplier.calls, calls);
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

TEST(MmBuddy, ReallocCountsTheHeaderInItsCapacity)
{
    struct Case {
        CS_UINT first, second;
        bool moves;
    };
    for (const Case &c : {Case{24, 32, false}, Case{24, 33, true}, Case{100, 10, false}, Case{120, 128, false},
                          Case{120, 129, true}, Case{5000, 5000, false}, Case{5000, 4000, false},
                          Case{5000, 5001, true}, Case{100, 9000, true}}) {
        Pool pool;
        auto *p = static_cast<CS_BYTE *>(pool.alloc(c.first));
        const CS_UINT keep = std::min(c.first, buddy_data_bytes(p));
        for (CS_UINT i = 0; i < keep; i++)
            p[i] = static_cast<CS_BYTE>(i * 7 + 1);
        void *q = p;
        ASSERT_EQ(comn_mmrealloc(pool.h, c.second, &q), CS_SUCCEED);
        EXPECT_EQ(q != p, c.moves) << c.first << " -> " << c.second;
        for (CS_UINT i = 0; i < keep; i++)
            ASSERT_EQ(static_cast<CS_BYTE *>(q)[i], static_cast<CS_BYTE>(i * 7 + 1)) << c.first << " -> " << c.second;
    }
}

TEST(MmUniform, NodeSizesBlockSizesAndLastInFirstOut)
{
    struct Case {
        CS_UINT request;
        CS_INT blocksize, node, settled;
    };
    // Nodes of the request rounded to 8 plus 8 (at least 16); a block size
    // below one node is raised to it, any other cut to whole nodes.
    for (const Case &c : {Case{0, 4096, 16, 4096}, Case{9, 4096, 24, 4080}, Case{100, 10, 112, 112},
                          Case{100, 223, 112, 112}, Case{5000, 4096, 5008, 5008}}) {
        Pool pool(MM_UNIFORM, c.blocksize);
        std::vector<CS_BYTE *> nodes;
        const int per_block = c.settled / c.node;
        for (int i = 0; i < 2 * per_block; i++) // two blocks, so the second is cut too
            nodes.push_back(static_cast<CS_BYTE *>(pool.alloc(c.request)));
        EXPECT_EQ(pool.h->mmh_pool.uniform.node_size, c.node) << c.request;
        EXPECT_EQ(get_int(pool.h, MM_PROP_BLOCKSIZE), c.settled) << c.request;
        for (int i = 1; i < per_block; i++)
            EXPECT_EQ(nodes[i] - nodes[i - 1], c.node) << c.request << " node " << i;
        for (CS_BYTE *p : nodes)
            ASSERT_EQ(comn_mmfree(pool.h, p), CS_SUCCEED);
        EXPECT_EQ(pool.alloc(c.request), nodes.back());
    }
}

TEST(MmAllocOnly, CursorMovesByRoundedRequestsFirstFit)
{
    Pool pool(MM_ALLOCONLY, 1000);
    auto *a = static_cast<CS_BYTE *>(pool.alloc(1));
    auto *b = static_cast<CS_BYTE *>(pool.alloc(9));
    auto *c = static_cast<CS_BYTE *>(pool.alloc(16));
    EXPECT_EQ(b - a, 8);
    EXPECT_EQ(c - b, 16);
    EXPECT_EQ(pool.h->mmh_pool.alloconly.free->free->size, 1000u - 40 - 40); // block less 40, less 8 + 16 + 16
    auto *big = static_cast<CS_BYTE *>(pool.alloc(10000)); // its own block
    EXPECT_EQ(pool.alloc(8), c + 16);                        // small ones go on in the first with room
    EXPECT_FALSE(big >= a && big < a + 1000);
    EXPECT_EQ(pool.h->mmh_pool.alloconly.free->size, 10000 + 40);
}

TEST(MmProperty, SetRules)
{
    struct Case {
        CS_INT property, value;
        bool after_alloc;
        CS_RETCODE expected;
    };
    const Case cases[] = {
        {MM_PROP_TYPE, MM_UNIFORM, false, CS_SUCCEED},   {MM_PROP_TYPE, MM_TYPE_NONE, false, CS_SUCCEED},
        {MM_PROP_TYPE, 2234, false, MM_EBADTYPE},        {MM_PROP_TYPE, 2239, false, MM_EBADTYPE},
        {MM_PROP_TYPE, 1, true, CS_FAIL},
        {MM_PROP_BLOCKSIZE, 100, false, CS_SUCCEED},     {MM_PROP_BLOCKSIZE, 0, false, CS_FAIL},
        {MM_PROP_BLOCKSIZE, 100, true, CS_FAIL},         {MM_PROP_CHUNKSIZE, 1, true, CS_SUCCEED},
        {MM_PROP_CHUNKSIZE, 0, false, CS_FAIL},          {MM_PROP_MAXSIZE, 1, true, CS_SUCCEED},
        {MM_PROP_MAXSIZE, MM_NO_LIMIT, false, CS_FAIL},  {MM_PROP_OVERHEAD, 1, false, CS_FAIL},
        {MM_PROP_SUBPOOL, 1, false, CS_FAIL},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(::testing::Message() << c.property << " = " << c.value << (c.after_alloc ? " after" : ""));
        Pool pool;
        if (c.after_alloc)
            pool.alloc(8);
        EXPECT_EQ(set_int(pool.h, c.property, c.value), c.expected);
        if (c.expected == CS_SUCCEED) {
            EXPECT_EQ(get_int(pool.h, c.property), c.value);
        }
    }
}

TEST(MmProperty, AddedRegionServesAPoolWithoutSupplier)
{
    Pool pool;
    ASSERT_EQ(set_ptr<MM_SBREAK_FUNC>(pool.h, MM_PROP_SBREAK, nullptr), CS_SUCCEED);
    void *p = nullptr;
    EXPECT_EQ(comn_mmalloc(pool.h, 16, &p), CS_MEM_ERROR);
    alignas(8) static CS_BYTE region[8192];
    ASSERT_EQ(comn_mmproperty(pool.h, MM_ACT_SET, MM_PROP_ADDHEAP, region, sizeof region, nullptr), CS_SUCCEED);
    p = pool.alloc(16);
    EXPECT_TRUE(p > region && p < region + sizeof region);
    EXPECT_EQ(comn_mmproperty(pool.h, MM_ACT_SET, MM_PROP_ADDHEAP, region, 20, nullptr), CS_FAIL) << "no room";
}

// The total counts every region ever drawn (mm_random_test checks it against
// the supplier); here the limit at exact fit and one short.
TEST(MmLimit, RegionsUpToTheLimitExactAndOneShort)
{
    // Every region of a default big block is 4144 bytes.
    const std::pair<CS_INT, int> cases[] = {{4143, 0}, {4144, 1}, {8287, 1}, {8288, 2}};
    for (auto [limit, regions] : cases) {
        Pool pool;
        ASSERT_EQ(set_int(pool.h, MM_PROP_MAXSIZE, limit), CS_SUCCEED);
        int got = 0;
        void *p = nullptr;
        while (comn_mmalloc(pool.h, 4088, &p) == CS_SUCCEED)
            got++;
        EXPECT_EQ(got, regions) << limit;
    }
}

TEST(MmManage, BufferSizesAroundTheRecordsAndTheFirstHeap)
{
    struct Case {
        CS_UINT buflen;
        CS_RETCODE expected;
        bool has_heap;
    };
    for (const Case &c : {Case{0, CS_FAIL, false}, Case{287, CS_FAIL, false}, Case{288, CS_SUCCEED, false},
                          Case{327, CS_SUCCEED, false}, Case{328, CS_SUCCEED, true}, Case{4096, CS_SUCCEED, true}}) {
        alignas(8) static CS_BYTE buffer[4096];
        MM_HANDLE *h = nullptr;
        ASSERT_EQ(comn_mmmanage(buffer, c.buflen, &h), c.expected) << c.buflen;
        if (c.expected != CS_SUCCEED)
            continue;
        ASSERT_EQ(set_int(h, MM_PROP_BLOCKSIZE, 256), CS_SUCCEED);
        EXPECT_EQ(static_cast<void *>(h), buffer + 88);
        EXPECT_EQ(h->mmh_head->mph_heap != nullptr, c.has_heap) << c.buflen;
        void *p = nullptr;
        EXPECT_EQ(comn_mmalloc(h, 8, &p), c.buflen >= 4096 ? CS_SUCCEED : CS_MEM_ERROR) << c.buflen;
        EXPECT_EQ(comn_mmdrop(h, CS_UNUSED), CS_SUCCEED);
    }
    // With the records elsewhere the whole buffer is a region.
    alignas(8) static CS_BYTE records[MM_OVERHEAD], whole[1000];
    MM_HANDLE *h = reinterpret_cast<MM_HANDLE *>(records);
    ASSERT_EQ(comn_mmmanage(whole, sizeof whole, &h), CS_SUCCEED);
    EXPECT_EQ(static_cast<void *>(h->mmh_head->mph_heap), whole);
    EXPECT_EQ(h->mmh_head->mph_heap->free->size, 1000u - 32);
    EXPECT_EQ(comn_mmdrop(h, CS_UNUSED), CS_SUCCEED);
}

TEST(MmSubpool, TagsFindOrMakeChildrenThatInheritTheSettings)
{
    Pool pool(MM_UNIFORM, 512);
    MM_HANDLE *a = subpool(pool.h, 7);
    MM_HANDLE *b = subpool(pool.h, 8);
    EXPECT_NE(a, b);
    EXPECT_EQ(subpool(pool.h, 7), a);
    EXPECT_EQ(a->mmh_head, pool.h->mmh_head);
    EXPECT_EQ(a->mmh_blocksize, 512);
    EXPECT_EQ(pool.h->mmh_child, b) << "newest child first";
    void *p = nullptr;
    ASSERT_EQ(comn_mmalloc(a, 40, &p), CS_SUCCEED); // each child's own first request settles it
    ASSERT_EQ(comn_mmalloc(b, 16, &p), CS_SUCCEED);
    EXPECT_EQ(a->mmh_pool.uniform.node_size, 48);
    EXPECT_EQ(b->mmh_pool.uniform.node_size, 24);
    EXPECT_EQ(comn_mmdrop(pool.h, CS_UNUSED), CS_BUSY);
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

struct LockLog {
    int created = 0, deleted = 0, taken = 0, released = 0;
    CS_RETCODE take_result = CS_SUCCEED, create_result = CS_SUCCEED;
};
LockLog *g_log;

// A thread table whose mutex calls count into g_log and check nesting.
struct CountingThreads {
    LockLog log;
    CS_THREAD thread{};
    PoolContext context;
    MM_HANDLE *h = nullptr;
    explicit CountingThreads(CS_RETCODE create = CS_SUCCEED)
    {
        g_log = &log;
        log.create_result = create;
        thread.create_mutex_fn = [](CS_THRDRES **m) {
            g_log->created++;
            *m = reinterpret_cast<CS_THRDRES *>(0x1234);
            return g_log->create_result;
        };
        thread.delete_mutex_fn = [](CS_THRDRES *) { return g_log->deleted++, CS_SUCCEED; };
        thread.take_mutex_fn = [](CS_THRDRES *) {
            EXPECT_EQ(g_log->taken, g_log->released) << "locks are not nested";
            return g_log->taken++, g_log->take_result;
        };
        thread.release_mutex_fn = [](CS_THRDRES *) { return g_log->released++, CS_SUCCEED; };
        context.ctx.ctxthread = &thread;
    }
};

TEST(MmLock, EveryOperationLocksOnceThroughTheThreadTable)
{
    CountingThreads failing(CS_MEM_ERROR);
    EXPECT_EQ(comn_mminit(failing.context.get(), &failing.h), CS_MEM_ERROR) << "the mutex failure is returned";
    EXPECT_EQ(failing.h, nullptr);
    CountingThreads t;
    ASSERT_EQ(comn_mminit(t.context.get(), &t.h), CS_SUCCEED);
    EXPECT_EQ(t.log.created, 1);
    void *p = nullptr;
    ASSERT_EQ(comn_mmalloc(t.h, 10, &p), CS_SUCCEED);
    ASSERT_EQ(comn_mmrealloc(t.h, 100, &p), CS_SUCCEED);
    ASSERT_EQ(comn_mmfree(t.h, p), CS_SUCCEED);
    MM_HANDLE *child = subpool(t.h, 3);
    ASSERT_EQ(comn_mmalloc(child, 10, &p), CS_SUCCEED);
    ASSERT_EQ(comn_mmdrop(child, CS_UNUSED), CS_SUCCEED);
    get_int(t.h, MM_PROP_OVERHEAD); // answered without the lock
    EXPECT_EQ(t.log.taken, 6);
    EXPECT_EQ(t.log.released, 6);
    t.log.take_result = CS_FAIL;
    EXPECT_EQ(comn_mmalloc(t.h, 10, &p), CS_FAIL);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(t.log.released, 6) << "a lock not taken is not released";
    t.log.take_result = CS_SUCCEED;
    t.log.taken = t.log.released;
    ASSERT_EQ(comn_mmdrop(t.h, CS_UNUSED), CS_SUCCEED);
    EXPECT_EQ(t.log.deleted, 1);
}

TEST(MmLock, ClearDropsTheTrioButThePoolStillOwnsItsMutex)
{
    CountingThreads t;
    ASSERT_EQ(comn_mminit(t.context.get(), &t.h), CS_SUCCEED);
    EXPECT_EQ(set_ptr<MM_LOCK_FUNC>(t.h, MM_PROP_LOCK, nullptr), CS_FAIL) << "a lock is already set";
    ASSERT_EQ(comn_mmproperty(t.h, MM_ACT_CLEAR, MM_PROP_UNLOCK, nullptr, 0, nullptr), CS_SUCCEED);
    EXPECT_EQ(t.log.released, 2); // the lock in force is released
    EXPECT_EQ(t.h->mmh_head->mph_lockarg, nullptr);
    void *p = nullptr;
    ASSERT_EQ(comn_mmalloc(t.h, 10, &p), CS_SUCCEED);
    EXPECT_EQ(t.log.taken, 2);
    ASSERT_EQ(comn_mmdrop(t.h, CS_UNUSED), CS_SUCCEED);
    EXPECT_EQ(t.log.deleted, 1);
}

using MmDeathTest = ::testing::Test;

TEST_F(MmDeathTest, MisuseOfBlocksPoolsAndProperties)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    CS_INT value = 0;
    EXPECT_BOMB({
        Pool pool;
        void *p = pool.alloc(10);
        comn_mmfree(pool.h, p);
        comn_mmfree(pool.h, p);
    });
    EXPECT_BOMB({
        Pool pool(MM_TYPE_NONE);
        pool.alloc(10);
    });
    EXPECT_BOMB({
        Pool pool;
        comn_mmproperty(pool.h, MM_ACT_GET, 1248, &value, 4, nullptr);
    });
    EXPECT_NULL_POINTER(comn_mmalloc(nullptr, 1, nullptr));
}

} // namespace
