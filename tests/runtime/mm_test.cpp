// The pool manager: seeded random allocate/realloc/free/sub-pool runs of each
// discipline against a shadow map of live blocks, then the rules those runs
// cannot see (size classes, block sizes, compaction, the realloc capacity,
// properties, limits, caller memory, sub-pools, the lock, the assertions).
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <tuple>
#include <vector>

#include "support/context.h"

namespace {

CS_INT get_int(MM_HANDLE *h, CS_INT property)
{
    CS_INT value = 0, outlen = 0;
    EXPECT_EQ(comn_mmproperty(h, MM_ACT_GET, property, &value, sizeof value, &outlen), CS_SUCCEED);
    EXPECT_EQ(outlen, 4);
    return value;
}

template <class T> CS_RETCODE set(MM_HANDLE *h, CS_INT property, T value)
{
    return comn_mmproperty(h, MM_ACT_SET, property, &value, sizeof value, nullptr);
}

// The child tagged tag, made when missing (the tag travels as the buffer length).
MM_HANDLE *subpool(MM_HANDLE *h, CS_INT tag, CS_RETCODE *rc = nullptr)
{
    MM_HANDLE *child = nullptr;
    CS_INT outlen = 0;
    const CS_RETCODE got = comn_mmproperty(h, MM_ACT_GET, MM_PROP_SUBPOOL, &child, tag, &outlen);
    if (rc != nullptr)
        *rc = got;
    else
        EXPECT_EQ(got, CS_SUCCEED);
    return child;
}

// The header word in front of a buddy block's data.
CS_UINT header_word(const void *data)
{
    CS_UINT word;
    std::memcpy(&word, static_cast<const CS_BYTE *>(data) - 8, sizeof word);
    return word;
}

// Data bytes a buddy block really holds (realloc counts its header in the
// capacity, the caller may not write it).
CS_UINT buddy_data_bytes(const void *data)
{
    const CS_UINT word = header_word(data);
    return word & MM_BUDDY_OVERSIZE ? word & ~MM_BUDDY_OVERSIZE : (1u << ((word & MM_BUDDY_INDEX_MASK) + 4)) - 8;
}

// A zeroed context of the first version pools accept.
struct PoolContext {
    CS_CONTEXT ctx{};
    PoolContext() { ctx.ctxversion = 114; }
    CS_CONTEXT *get() { return &ctx; }
};

// A supplier that keeps account of the regions it gave and got back.
struct Supplier {
    std::map<void *, CS_INT> live;
    std::int64_t drawn = 0;
    int calls = 0;

    static CS_VOID *sbreak(MM_HANDLE *, CS_VOID *param, CS_INT size)
    {
        auto *self = static_cast<Supplier *>(param);
        void *p = std::malloc(static_cast<size_t>(size));
        self->live[p] = size, self->drawn += size, self->calls++;
        return p;
    }
    static void unsbreak(MM_HANDLE *, CS_VOID *param, CS_VOID *region)
    {
        EXPECT_EQ(static_cast<Supplier *>(param)->live.erase(region), 1u) << "a region never given came back";
        std::free(region);
    }
    void attach(MM_HANDLE *h)
    {
        ASSERT_EQ(set(h, MM_PROP_SBREAK, &Supplier::sbreak), CS_SUCCEED);
        ASSERT_EQ(set(h, MM_PROP_UNSBREAK, &Supplier::unsbreak), CS_SUCCEED);
        ASSERT_EQ(set<void *>(h, MM_PROP_PARAM, this), CS_SUCCEED);
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
            EXPECT_EQ(set(h, MM_PROP_TYPE, type), CS_SUCCEED);
        }
        if (blocksize) {
            EXPECT_EQ(set(h, MM_PROP_BLOCKSIZE, blocksize), CS_SUCCEED);
        }
    }
    ~Pool()
    {
        if (h) {
            EXPECT_EQ(comn_mmdrop(h, MM_FORCE_DROP), CS_SUCCEED);
        }
        EXPECT_TRUE(supplier.live.empty()) << "regions kept after the drop";
    }
    void *alloc(CS_UINT size)
    {
        void *p = nullptr;
        EXPECT_EQ(comn_mmalloc(h, size, &p), CS_SUCCEED) << "size " << size;
        return p;
    }
};

enum class Supply { unlimited, limited, caller_buffer };
struct Scenario {
    CS_INT type;
    Supply supply;
    unsigned seed;
};

struct Live {
    MM_HANDLE *owner;
    CS_UINT capacity, written; // what realloc may grow to in place; bytes of the pattern
    CS_BYTE seed;
};

CS_BYTE pattern(CS_BYTE seed, CS_UINT i) { return static_cast<CS_BYTE>(seed + i * 13); }

// Each step checks: blocks never overlap each other or a free piece of a
// heap, contents survive, memory comes cleared, the pool's total is what the
// supplier handed out, the limit holds; at the end every region goes back.
class Runner {
public:
    explicit Runner(const Scenario &s) : s_(s), rng_(s.seed) {}

    void run(int steps)
    {
        if (s_.supply == Supply::caller_buffer) {
            buffer_ = std::make_unique<std::uint64_t[]>(kBufferBytes / 8);
            ASSERT_EQ(comn_mmmanage(buffer_.get(), kBufferBytes, &root_), CS_SUCCEED);
        } else {
            ASSERT_EQ(comn_mminit(context_.get(), &root_), CS_SUCCEED);
            supplier_.attach(root_);
            if (s_.supply == Supply::limited) {
                ASSERT_EQ(set(root_, MM_PROP_MAXSIZE, kLimit), CS_SUCCEED);
            }
        }
        ASSERT_EQ(set(root_, MM_PROP_TYPE, s_.type), CS_SUCCEED);
        ASSERT_EQ(set(root_, MM_PROP_BLOCKSIZE, CS_INT(pick({512, 1024, 4096, 8192}))), CS_SUCCEED);
        uniform_[root_] = pick({0, 8, 24, 100, 700});
        for (int step = 0; step < steps && !::testing::Test::HasFatalFailure(); step++) {
            const unsigned op = rng_() % 100;
            if (op < 45)
                alloc(owner());
            else if (op < 75)
                release();
            else if (op < 90)
                realloc();
            else if (op < 97)
                owner(); // may make a sub-pool
            else
                drop_child();
            check_accounts();
            if (step % 256 == 0)
                check_heaps();
        }
        while (!children_.empty()) // unforced drops from the leaves up, then the root
            drop_child();
        for (auto &[p, block] : shadow_)
            verify(p, block, block.written);
        ASSERT_EQ(comn_mmdrop(root_, CS_UNUSED), CS_SUCCEED);
        EXPECT_TRUE(supplier_.live.empty()) << "regions kept after the drop";
    }

private:
    static constexpr CS_INT kLimit = 256 * 1024;
    static constexpr CS_UINT kBufferBytes = 512 * 1024;

    CS_UINT pick(std::initializer_list<CS_UINT> values) { return *(values.begin() + rng_() % values.size()); }

    // Mostly small requests, some of a few pages, a few past the big block.
    CS_UINT request_size()
    {
        const unsigned r = rng_() % 100;
        return r < 70 ? rng_() % 260 : r < 95 ? rng_() % 4200 : 4000 + rng_() % 20000;
    }

    // Tags 0-2 name children of the root; asking makes a missing one.
    MM_HANDLE *owner()
    {
        const unsigned r = rng_() % 8;
        if (r >= 3)
            return root_;
        CS_RETCODE rc;
        MM_HANDLE *child = subpool(root_, CS_INT(r), &rc);
        if (rc != CS_SUCCEED) {
            EXPECT_EQ(rc, CS_MEM_ERROR);
            return root_;
        }
        if (std::find(children_.begin(), children_.end(), child) == children_.end()) {
            children_.push_back(child);
            uniform_[child] = pick({0, 16, 40, 300});
        }
        return child;
    }

    // Records a new block after checking that it overlaps no live one.
    void add(void *p, const Live &block)
    {
        const auto start = reinterpret_cast<std::uintptr_t>(p);
        auto next = shadow_.lower_bound(start);
        if (next != shadow_.end()) {
            ASSERT_LE(start + std::max<CS_UINT>(block.written, 1), next->first) << "overlaps the next block";
        }
        if (next != shadow_.begin()) {
            ASSERT_LE(std::prev(next)->first + std::prev(next)->second.written, start) << "overlaps the previous";
        }
        shadow_[start] = block;
        for (CS_UINT i = 0; i < block.written; i++)
            static_cast<CS_BYTE *>(p)[i] = pattern(block.seed, i);
    }

    void verify(std::uintptr_t p, const Live &block, CS_UINT upto)
    {
        for (CS_UINT i = 0; i < std::min(upto, block.written); i++)
            ASSERT_EQ(reinterpret_cast<const CS_BYTE *>(p)[i], pattern(block.seed, i)) << "byte " << i;
    }

    void alloc(MM_HANDLE *h)
    {
        CS_UINT size = s_.type == MM_UNIFORM ? uniform_[h] : request_size();
        const bool wrong_size = s_.type == MM_UNIFORM && (h->mmh_status & MM_ST_ALLOCATED) && rng_() % 10 == 0;
        size += wrong_size ? 8 : 0;
        void *p = reinterpret_cast<void *>(1);
        const CS_RETCODE rc = comn_mmalloc(h, size, &p);
        if (wrong_size) {
            ASSERT_EQ(rc, CS_FAIL);
            ASSERT_EQ(p, nullptr);
            return;
        }
        if (rc == CS_MEM_ERROR) {
            ASSERT_EQ(p, nullptr);
            if (!shortage_allowed([&] { return comn_mmalloc(h, size, &p); }))
                return;
        } else {
            ASSERT_EQ(rc, CS_SUCCEED) << "size " << size;
        }
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(p) % 8, 0u);
        const auto *bytes = static_cast<const CS_BYTE *>(p);
        ASSERT_TRUE(std::all_of(bytes, bytes + size, [](CS_BYTE b) { return b == 0; })) << "not cleared";
        if (s_.supply == Supply::caller_buffer) {
            const auto *base = reinterpret_cast<const CS_BYTE *>(buffer_.get());
            ASSERT_TRUE(bytes >= base + MM_OVERHEAD && bytes + size <= base + kBufferBytes);
        }
        // An empty allocate-only request takes no room: the next one starts
        // at the same address, so it is no block to keep track of.
        if (s_.type == MM_ALLOCONLY && size == 0)
            return;
        add(p, {h, capacity(p), s_.type == MM_BUDDY ? std::min(size, buddy_data_bytes(p)) : size, CS_BYTE(rng_())});
    }

    CS_UINT capacity(void *p) const
    {
        return s_.type != MM_BUDDY ? 0 : buddy_data_bytes(p) + (header_word(p) & MM_BUDDY_OVERSIZE ? 0 : 8);
    }

    std::map<std::uintptr_t, Live>::iterator any_block()
    {
        return std::next(shadow_.begin(), static_cast<long>(rng_() % shadow_.size()));
    }

    void release()
    {
        if (shadow_.empty())
            return;
        auto it = any_block();
        verify(it->first, it->second, it->second.written);
        const CS_RETCODE rc = comn_mmfree(it->second.owner, reinterpret_cast<void *>(it->first));
        ASSERT_EQ(rc, s_.type == MM_ALLOCONLY ? CS_FAIL : CS_SUCCEED);
        if (rc == CS_SUCCEED)
            shadow_.erase(it);
    }

    void realloc()
    {
        if (shadow_.empty())
            return;
        auto it = any_block();
        const Live block = it->second;
        void *p = reinterpret_cast<void *>(it->first), *q = p;
        const CS_UINT size = request_size();
        const CS_RETCODE rc = comn_mmrealloc(block.owner, size, &q);
        if (s_.type != MM_BUDDY) {
            EXPECT_EQ(rc, CS_FAIL);
            return;
        }
        if (rc == CS_MEM_ERROR) {
            ASSERT_EQ(q, p) << "a failed realloc must keep the block";
            if (!shortage_allowed([&] { return comn_mmrealloc(block.owner, size, &q); }))
                return;
        } else {
            ASSERT_EQ(rc, CS_SUCCEED);
        }
        // A block stays exactly when it has room; the header counts in the
        // capacity of a pooled block.
        ASSERT_EQ(q == p, size <= block.capacity) << "realloc of " << block.written << " to " << size;
        const Live moved{block.owner, capacity(q), std::min(size, buddy_data_bytes(q)), CS_BYTE(rng_())};
        verify(reinterpret_cast<std::uintptr_t>(q), block, moved.written);
        shadow_.erase(it);
        add(q, moved);
    }

    void drop_child()
    {
        if (children_.empty())
            return;
        const size_t at = rng_() % children_.size();
        MM_HANDLE *child = children_[at];
        std::erase_if(shadow_, [&](const auto &entry) {
            if (entry.second.owner == child)
                verify(entry.first, entry.second, entry.second.written);
            return entry.second.owner == child;
        });
        ASSERT_EQ(comn_mmdrop(child, CS_UNUSED), CS_SUCCEED);
        children_.erase(children_.begin() + static_cast<long>(at));
        uniform_.erase(child);
    }

    // Memory may run short only in a fixed buffer, or at the limit: then the
    // same operation with the limit lifted must succeed by drawing a region
    // that the limit would have refused; the limit moves up to cover it.
    // True when the retried operation produced a result to record.
    bool shortage_allowed(const std::function<CS_RETCODE()> &retry)
    {
        if (s_.supply == Supply::caller_buffer)
            return false;
        EXPECT_EQ(s_.supply, Supply::limited) << "shortage without a limit";
        const CS_INT before = root_->mmh_head->mph_totalsize;
        EXPECT_EQ(set(root_, MM_PROP_MAXSIZE, INT32_MAX - 1), CS_SUCCEED);
        EXPECT_EQ(retry(), CS_SUCCEED);
        const CS_INT after = root_->mmh_head->mph_totalsize;
        EXPECT_GT(after, before) << "no region was needed";
        EXPECT_GT(after, limit_) << "the region would have fitted the limit";
        limit_ = std::max(limit_, after);
        EXPECT_EQ(set(root_, MM_PROP_MAXSIZE, limit_), CS_SUCCEED);
        return !::testing::Test::HasFailure();
    }

    void check_accounts()
    {
        const CS_INT total = root_->mmh_head->mph_totalsize;
        if (s_.supply == Supply::caller_buffer) {
            ASSERT_EQ(total, CS_INT(kBufferBytes - MM_OVERHEAD));
            return;
        }
        ASSERT_EQ(total, supplier_.drawn);
        if (s_.supply == Supply::limited) {
            ASSERT_LE(total, limit_);
        }
    }

    // Free pieces of the heaps: in address order, inside their region, merged
    // with every touching neighbour, and never under a live block.
    void check_heaps()
    {
        std::vector<std::pair<std::uintptr_t, std::uintptr_t>> free_ranges;
        for (MmHeap *heap = root_->mmh_head->mph_heap; heap; heap = heap->next) {
            const auto base = reinterpret_cast<std::uintptr_t>(heap);
            std::uintptr_t prev_end = 0;
            for (const MmList *n = heap->free; n; n = n->link) {
                const auto at = reinterpret_cast<std::uintptr_t>(n);
                ASSERT_GE(at, base + sizeof(MmHeap));
                ASSERT_LE(at + 8 + n->size, base + static_cast<std::uintptr_t>(heap->size));
                ASSERT_LT(prev_end, at) << "unmerged or unordered";
                free_ranges.emplace_back(at + 8, prev_end = at + 8 + n->size);
            }
        }
        std::sort(free_ranges.begin(), free_ranges.end());
        for (const auto &[start, block] : shadow_) {
            auto it = std::upper_bound(free_ranges.begin(), free_ranges.end(), std::pair(start, UINTPTR_MAX));
            if (it != free_ranges.begin()) {
                ASSERT_LE(std::prev(it)->second, start) << "a live block lies in a free heap piece";
            }
        }
    }

    Scenario s_;
    std::mt19937 rng_;
    PoolContext context_;
    Supplier supplier_;
    std::unique_ptr<std::uint64_t[]> buffer_;
    MM_HANDLE *root_ = nullptr;
    CS_INT limit_ = kLimit;
    std::vector<MM_HANDLE *> children_;
    std::map<MM_HANDLE *, CS_UINT> uniform_;
    std::map<std::uintptr_t, Live> shadow_;
};

// Every discipline on a plain supplier, under a limit and in a caller's buffer.
TEST(MmRandom, EveryDisciplineAndSupplyAgreesWithAShadowMap)
{
    for (CS_INT type : {MM_BUDDY, MM_UNIFORM, MM_ALLOCONLY})
        for (Supply supply : {Supply::unlimited, Supply::limited, Supply::caller_buffer})
            for (unsigned seed : {1u, 2u, 3u}) {
                SCOPED_TRACE(testing::Message() << "type " << type << ", supply " << int(supply) << ", seed " << seed);
                Runner({type, supply, seed * 7919u + static_cast<unsigned>(type)}).run(6000);
                ASSERT_FALSE(HasFatalFailure());
            }
}

TEST(MmLayout, RecordsInCallerMemoryAreLaidAtZeroAndEightyEight)
{
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

// The index is log2(request + 7) - 3 with the request raised to 12 first;
// one byte past the big block's data is oversize.
TEST(MmBuddy, SizeIndexAtEachClassBoundary)
{
    const std::pair<CS_UINT, CS_UINT> cases[] = {{0, 1},    {24, 1},   {25, 2},   {120, 3},
                                                 {121, 4},  {2040, 7}, {2041, 8}, {4088, 8},
                                                 {4089, MM_BUDDY_OVERSIZE | 4089u}};
    for (auto [request, expected] : cases) {
        Pool pool;
        const CS_UINT word = header_word(pool.alloc(request));
        EXPECT_EQ(word & MM_BUDDY_OVERSIZE ? word : word & (MM_BUDDY_INDEX_MASK | MM_BUDDY_FREE), expected) << request;
    }
}

// The big block is the smallest whose data hold the block size less 8;
// index 16 (1 MiB) is the largest.
TEST(MmBuddy, FirstAllocationSettlesBlockSizeUpToIndexSixteen)
{
    const std::array<CS_INT, 3> cases[] = {{4096, 8, 4104}, {4097, 9, 8200}, {1, 1, 40}, {33, 2, 72},
                                           {(1 << 20) + 8, 16, (1 << 20) + 8}, {1 << 24, 16, (1 << 20) + 8}};
    for (auto [blocksize, bpmax, settled] : cases) {
        Pool pool(MM_BUDDY, blocksize);
        pool.alloc(16);
        EXPECT_EQ(pool.h->mmh_pool.buddy.bpmax, bpmax) << blocksize;
        EXPECT_EQ(get_int(pool.h, MM_PROP_BLOCKSIZE), settled) << blocksize;
        for (int k = bpmax + 1; k < MM_BUDDY_LISTS; k++)
            EXPECT_EQ(reinterpret_cast<std::intptr_t>(pool.h->mmh_pool.buddy.free[k]), -1) << k;
    }
}

// Freeing does not merge; a shortage compacts before asking the supplier.
// The second case is the largest block, whose 512 KiB halves differ only
// above the 19 address bits the offset marker keeps.
TEST(MmBuddy, ShortageCompactsFreedBlocksBeforeDrawingARegion)
{
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
    Pool pool(MM_BUDDY, 1 << 24);
    void *low = pool.alloc((1u << 19) - 8), *high = pool.alloc((1u << 19) - 8);
    ASSERT_EQ(static_cast<CS_BYTE *>(high) - static_cast<CS_BYTE *>(low), 1 << 19);
    ASSERT_EQ(comn_mmfree(pool.h, high), CS_SUCCEED);
    ASSERT_EQ(comn_mmfree(pool.h, low), CS_SUCCEED);
    const int calls = pool.supplier.calls;
    EXPECT_EQ(pool.alloc((1u << 20) - 8), low);
    EXPECT_EQ(pool.supplier.calls, calls);
    EXPECT_EQ(header_word(low) & MM_BUDDY_INDEX_MASK, 16u);
}

// Nodes of the request rounded to 8 plus 8 (at least 16); a block size below
// one node is raised to it, any other cut to whole nodes.  Freed nodes are
// handed out again last in, first out.
TEST(MmUniform, NodeSizesBlockSizesAndLastInFirstOut)
{
    const std::array<CS_INT, 4> cases[] = {
        {0, 4096, 16, 4096}, {9, 4096, 24, 4080}, {100, 10, 112, 112}, {100, 223, 112, 112}, {5000, 4096, 5008, 5008}};
    for (auto [request, blocksize, node, settled] : cases) {
        SCOPED_TRACE(request);
        Pool pool(MM_UNIFORM, blocksize);
        std::vector<CS_BYTE *> nodes;
        for (int i = 0; i < 2 * settled / node; i++) // two blocks, so the second is cut too
            nodes.push_back(static_cast<CS_BYTE *>(pool.alloc(CS_UINT(request))));
        EXPECT_EQ(pool.h->mmh_pool.uniform.node_size, node);
        EXPECT_EQ(get_int(pool.h, MM_PROP_BLOCKSIZE), settled);
        for (int i = 1; i < settled / node; i++)
            EXPECT_EQ(nodes[i] - nodes[i - 1], node) << "node " << i;
        for (CS_BYTE *p : nodes)
            ASSERT_EQ(comn_mmfree(pool.h, p), CS_SUCCEED);
        EXPECT_EQ(pool.alloc(CS_UINT(request)), nodes.back());
    }
}

TEST(MmAllocOnly, CursorMovesByRoundedRequestsFirstFit)
{
    Pool pool(MM_ALLOCONLY, 1000);
    auto *a = static_cast<CS_BYTE *>(pool.alloc(1));
    auto *b = static_cast<CS_BYTE *>(pool.alloc(9));
    auto *c = static_cast<CS_BYTE *>(pool.alloc(16));
    EXPECT_EQ(std::pair(b - a, c - b), std::pair(8L, 16L));
    EXPECT_EQ(pool.h->mmh_pool.alloconly.free->free->size, 1000u - 40 - 40); // block less 40, less 8 + 16 + 16
    auto *big = static_cast<CS_BYTE *>(pool.alloc(10000)); // its own block
    EXPECT_EQ(pool.alloc(8), c + 16);                        // small ones go on in the first with room
    EXPECT_FALSE(big >= a && big < a + 1000);
    EXPECT_EQ(pool.h->mmh_pool.alloconly.free->size, 10000 + 40);
}

TEST(MmProperty, SetRules)
{
    const std::tuple<CS_INT, CS_INT, bool, CS_RETCODE> cases[] = { // property, value, after an allocation, result
        {MM_PROP_TYPE, MM_UNIFORM, false, CS_SUCCEED},  {MM_PROP_TYPE, MM_TYPE_NONE, false, CS_SUCCEED},
        {MM_PROP_TYPE, 2234, false, MM_EBADTYPE},       {MM_PROP_TYPE, 2239, false, MM_EBADTYPE},
        {MM_PROP_TYPE, 1, true, CS_FAIL},               {MM_PROP_BLOCKSIZE, 100, false, CS_SUCCEED},
        {MM_PROP_BLOCKSIZE, 0, false, CS_FAIL},         {MM_PROP_BLOCKSIZE, 100, true, CS_FAIL},
        {MM_PROP_CHUNKSIZE, 1, true, CS_SUCCEED},       {MM_PROP_CHUNKSIZE, 0, false, CS_FAIL},
        {MM_PROP_MAXSIZE, 1, true, CS_SUCCEED},         {MM_PROP_MAXSIZE, MM_NO_LIMIT, false, CS_FAIL},
        {MM_PROP_OVERHEAD, 1, false, CS_FAIL},          {MM_PROP_SUBPOOL, 1, false, CS_FAIL},
    };
    for (auto [property, value, after_alloc, expected] : cases) {
        SCOPED_TRACE(::testing::Message() << property << " = " << value << (after_alloc ? " after" : ""));
        Pool pool;
        if (after_alloc)
            pool.alloc(8);
        EXPECT_EQ(set(pool.h, property, value), expected);
        if (expected == CS_SUCCEED) {
            EXPECT_EQ(get_int(pool.h, property), value);
        }
    }
}

TEST(MmProperty, AddedRegionServesAPoolWithoutSupplier)
{
    Pool pool;
    ASSERT_EQ(set<MM_SBREAK_FUNC>(pool.h, MM_PROP_SBREAK, nullptr), CS_SUCCEED);
    void *p = nullptr;
    EXPECT_EQ(comn_mmalloc(pool.h, 16, &p), CS_MEM_ERROR);
    alignas(8) static CS_BYTE region[8192];
    ASSERT_EQ(comn_mmproperty(pool.h, MM_ACT_SET, MM_PROP_ADDHEAP, region, sizeof region, nullptr), CS_SUCCEED);
    p = pool.alloc(16);
    EXPECT_TRUE(p > region && p < region + sizeof region);
    EXPECT_EQ(comn_mmproperty(pool.h, MM_ACT_SET, MM_PROP_ADDHEAP, region, 20, nullptr), CS_FAIL) << "no room";
}

// Every region of a default big block is 4144 bytes: the limit at exact fit
// and one short.
TEST(MmLimit, RegionsUpToTheLimitExactAndOneShort)
{
    for (auto [limit, regions] : {std::pair{4143, 0}, {4144, 1}, {8287, 1}, {8288, 2}}) {
        Pool pool;
        ASSERT_EQ(set(pool.h, MM_PROP_MAXSIZE, limit), CS_SUCCEED);
        int got = 0;
        for (void *p = nullptr; comn_mmalloc(pool.h, 4088, &p) == CS_SUCCEED;)
            got++;
        EXPECT_EQ(got, regions) << limit;
    }
}

TEST(MmManage, BufferSizesAroundTheRecordsAndTheFirstHeap)
{
    const std::tuple<CS_UINT, CS_RETCODE, bool> cases[] = { // buffer length, result, a first heap
        {0, CS_FAIL, false},      {287, CS_FAIL, false},   {288, CS_SUCCEED, false},
        {327, CS_SUCCEED, false}, {328, CS_SUCCEED, true}, {4096, CS_SUCCEED, true}};
    for (auto [buflen, expected, has_heap] : cases) {
        SCOPED_TRACE(buflen);
        alignas(8) static CS_BYTE buffer[4096];
        MM_HANDLE *h = nullptr;
        ASSERT_EQ(comn_mmmanage(buffer, buflen, &h), expected);
        if (expected != CS_SUCCEED)
            continue;
        ASSERT_EQ(set(h, MM_PROP_BLOCKSIZE, 256), CS_SUCCEED);
        EXPECT_EQ(static_cast<void *>(h), buffer + 88);
        EXPECT_EQ(h->mmh_head->mph_heap != nullptr, has_heap);
        void *p = nullptr;
        EXPECT_EQ(comn_mmalloc(h, 8, &p), buflen >= 4096 ? CS_SUCCEED : CS_MEM_ERROR);
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
    MM_HANDLE *a = subpool(pool.h, 7), *b = subpool(pool.h, 8);
    EXPECT_NE(a, b);
    EXPECT_EQ(subpool(pool.h, 7), a);
    EXPECT_EQ(a->mmh_head, pool.h->mmh_head);
    EXPECT_EQ(a->mmh_blocksize, 512);
    EXPECT_EQ(pool.h->mmh_child, b) << "newest child first";
    void *p = nullptr;
    ASSERT_EQ(comn_mmalloc(a, 40, &p), CS_SUCCEED); // each child's own first request settles it
    ASSERT_EQ(comn_mmalloc(b, 16, &p), CS_SUCCEED);
    EXPECT_EQ(std::pair(a->mmh_pool.uniform.node_size, b->mmh_pool.uniform.node_size), std::pair(48, 24));
    EXPECT_EQ(comn_mmdrop(pool.h, CS_UNUSED), CS_BUSY);
    // A forced drop of a grandchild takes the whole pool (the Pool has nothing left to drop).
    MM_HANDLE *grandchild = subpool(a, 2);
    ASSERT_EQ(comn_mmalloc(grandchild, 40, &p), CS_SUCCEED);
    pool.alloc(8);
    EXPECT_EQ(comn_mmdrop(a, CS_UNUSED), CS_BUSY);
    EXPECT_EQ(comn_mmdrop(grandchild, MM_FORCE_DROP), CS_SUCCEED);
    EXPECT_TRUE(pool.supplier.live.empty());
    pool.h = nullptr;
}

// A thread table whose mutex calls count into lock_log and check that locks
// do not nest.
struct {
    int created, deleted, taken, released;
    CS_RETCODE create_result, take_result;
} lock_log;

CS_THREAD counting_threads()
{
    CS_THREAD t{};
    t.create_mutex_fn = [](CS_THRDRES **m) {
        *m = reinterpret_cast<CS_THRDRES *>(0x1234);
        return lock_log.created++, lock_log.create_result;
    };
    t.delete_mutex_fn = [](CS_THRDRES *) { return lock_log.deleted++, CS_SUCCEED; };
    t.take_mutex_fn = [](CS_THRDRES *) {
        EXPECT_EQ(lock_log.taken, lock_log.released) << "locks are not nested";
        return lock_log.taken++, lock_log.take_result;
    };
    t.release_mutex_fn = [](CS_THRDRES *) { return lock_log.released++, CS_SUCCEED; };
    return t;
}

TEST(MmLock, EveryOperationLocksOnceThroughTheThreadTable)
{
    CS_THREAD thread = counting_threads();
    PoolContext context;
    context.ctx.ctxthread = &thread;
    MM_HANDLE *h = nullptr;
    lock_log = {0, 0, 0, 0, CS_MEM_ERROR, CS_SUCCEED};
    EXPECT_EQ(comn_mminit(context.get(), &h), CS_MEM_ERROR) << "the mutex failure is returned";
    EXPECT_EQ(h, nullptr);
    lock_log = {0, 0, 0, 0, CS_SUCCEED, CS_SUCCEED};
    ASSERT_EQ(comn_mminit(context.get(), &h), CS_SUCCEED);
    EXPECT_EQ(lock_log.created, 1);
    void *p = nullptr;
    ASSERT_EQ(comn_mmalloc(h, 10, &p), CS_SUCCEED);
    ASSERT_EQ(comn_mmrealloc(h, 100, &p), CS_SUCCEED);
    ASSERT_EQ(comn_mmfree(h, p), CS_SUCCEED);
    MM_HANDLE *child = subpool(h, 3);
    ASSERT_EQ(comn_mmalloc(child, 10, &p), CS_SUCCEED);
    ASSERT_EQ(comn_mmdrop(child, CS_UNUSED), CS_SUCCEED);
    get_int(h, MM_PROP_OVERHEAD); // answered without the lock
    EXPECT_EQ(std::pair(lock_log.taken, lock_log.released), std::pair(6, 6));
    lock_log.take_result = CS_FAIL;
    EXPECT_EQ(comn_mmalloc(h, 10, &p), CS_FAIL);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(lock_log.released, 6) << "a lock not taken is not released";
    lock_log.take_result = CS_SUCCEED;
    lock_log.taken = lock_log.released;
    // Clearing the trio releases the lock in force; the pool still owns its mutex.
    EXPECT_EQ(set<MM_LOCK_FUNC>(h, MM_PROP_LOCK, nullptr), CS_FAIL) << "a lock is already set";
    ASSERT_EQ(comn_mmproperty(h, MM_ACT_CLEAR, MM_PROP_UNLOCK, nullptr, 0, nullptr), CS_SUCCEED);
    EXPECT_EQ(lock_log.released, 8);
    EXPECT_EQ(h->mmh_head->mph_lockarg, nullptr);
    ASSERT_EQ(comn_mmalloc(h, 10, &p), CS_SUCCEED);
    EXPECT_EQ(lock_log.taken, 8) << "no longer locked";
    ASSERT_EQ(comn_mmdrop(h, CS_UNUSED), CS_SUCCEED);
    EXPECT_EQ(lock_log.deleted, 1);
}

TEST(MmDeathTest, MisuseOfBlocksPoolsAndProperties)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    CS_INT value = 0;
    EXPECT_BOMB({
        Pool pool;
        void *p = pool.alloc(10);
        comn_mmfree(pool.h, p);
        comn_mmfree(pool.h, p);
    });
    EXPECT_BOMB(Pool(MM_TYPE_NONE).alloc(10));
    EXPECT_BOMB(comn_mmproperty(Pool().h, MM_ACT_GET, 1248, &value, 4, nullptr));
    EXPECT_NULL_POINTER(comn_mmalloc(nullptr, 1, nullptr));
}

} // namespace
