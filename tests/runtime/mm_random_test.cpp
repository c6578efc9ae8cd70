// Seeded random allocate/realloc/free/sub-pool sequences for each discipline,
// checked against a shadow map of live blocks: blocks never overlap each
// other or a free piece of a heap, contents survive, memory comes cleared,
// the pool's total matches what the supplier handed out, the limit holds and
// every region goes back at the drop.
#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "runtime/mm_support.h"
#include "support/context.h"

using namespace kes::test::mm;

namespace {

struct Live {
    MM_HANDLE *owner;
    CS_UINT size;    // what was asked for
    CS_UINT written; // bytes the test filled with its pattern
    CS_BYTE seed;
};

CS_BYTE pattern(CS_BYTE seed, CS_UINT i) { return static_cast<CS_BYTE>(seed + i * 13); }

enum class Supply { unlimited, limited, caller_buffer };

struct Scenario {
    CS_INT type;
    Supply supply;
    unsigned seed;
};

using Shadow = std::map<std::uintptr_t, Live>;

// Records a new block after checking that it overlaps no live one.
void add(Shadow &shadow, void *p, const Live &block)
{
    const auto start = reinterpret_cast<std::uintptr_t>(p);
    auto next = shadow.lower_bound(start);
    if (next != shadow.end()) {
        ASSERT_LE(start + std::max<CS_UINT>(block.written, 1), next->first) << "overlaps the next block";
    }
    if (next != shadow.begin()) {
        ASSERT_LE(std::prev(next)->first + std::prev(next)->second.written, start) << "overlaps the previous block";
    }
    shadow[start] = block;
}

void fill(void *p, const Live &block)
{
    for (CS_UINT i = 0; i < block.written; i++)
        static_cast<CS_BYTE *>(p)[i] = pattern(block.seed, i);
}

void verify(std::uintptr_t p, const Live &block, CS_UINT upto)
{
    const auto *bytes = reinterpret_cast<const CS_BYTE *>(p);
    for (CS_UINT i = 0; i < std::min(upto, block.written); i++)
        ASSERT_EQ(bytes[i], pattern(block.seed, i)) << "byte " << i << " of a " << block.size << "-byte block";
}

// Free pieces of the heaps: in address order, inside their region, merged
// with every touching neighbour, and never under a live block.
void check_heaps(MmPoolHead *head, Shadow &shadow)
{
    std::vector<std::pair<std::uintptr_t, std::uintptr_t>> free_ranges;
    for (MmHeap *heap = head->mph_heap; heap; heap = heap->next) {
        const auto base = reinterpret_cast<std::uintptr_t>(heap);
        const MmList *prev = nullptr;
        for (const MmList *n = heap->free; n; n = n->link) {
            const auto at = reinterpret_cast<std::uintptr_t>(n);
            ASSERT_GE(at, base + sizeof(MmHeap));
            ASSERT_LE(at + 8 + n->size, base + static_cast<std::uintptr_t>(heap->size));
            if (prev) {
                ASSERT_LT(reinterpret_cast<std::uintptr_t>(prev) + 8 + prev->size, at) << "unmerged or unordered";
            }
            free_ranges.emplace_back(at + 8, at + 8 + n->size);
            prev = n;
        }
    }
    std::sort(free_ranges.begin(), free_ranges.end());
    for (const auto &[start, block] : shadow) {
        auto it = std::upper_bound(free_ranges.begin(), free_ranges.end(),
                                   std::make_pair(start, UINTPTR_MAX));
        if (it != free_ranges.begin()) {
            --it;
            ASSERT_LE(it->second, start) << "a live block lies in a free heap piece";
        }
    }
}

class Runner {
public:
    explicit Runner(const Scenario &s) : s_(s), rng_(s.seed) {}

    void start()
    {
        if (s_.supply == Supply::caller_buffer) {
            buffer_ = std::make_unique<std::uint64_t[]>(kBufferBytes / 8);
            ASSERT_EQ(comn_mmmanage(buffer_.get(), kBufferBytes, &root_), CS_SUCCEED);
        } else {
            ASSERT_EQ(comn_mminit(context_.get(), &root_), CS_SUCCEED);
            supplier_.attach(root_);
            if (s_.supply == Supply::limited) {
                ASSERT_EQ(set_int(root_, MM_PROP_MAXSIZE, kLimit), CS_SUCCEED);
            }
        }
        ASSERT_EQ(set_int(root_, MM_PROP_TYPE, s_.type), CS_SUCCEED);
        ASSERT_EQ(set_int(root_, MM_PROP_BLOCKSIZE, pick({512, 1024, 4096, 8192})), CS_SUCCEED);
        uniform_[root_] = pick({0, 8, 24, 100, 700});
    }

    void run(int steps)
    {
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
                check_heaps(root_->mmh_head, shadow_);
        }
        // Unforced drops from the leaves up, then the root.
        while (!children_.empty())
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
        if (r < 70)
            return rng_() % 260;
        if (r < 95)
            return rng_() % 4200;
        return 4000 + rng_() % 20000;
    }

    MM_HANDLE *owner()
    {
        const unsigned r = rng_() % 8;
        if (r >= 3)
            return root_;
        // Tags 0-2 name children of the root; asking makes a missing one.
        CS_INT tag = static_cast<CS_INT>(r);
        MM_HANDLE *child = nullptr;
        CS_INT outlen = 0;
        const CS_RETCODE rc = comn_mmproperty(root_, MM_ACT_GET, MM_PROP_SUBPOOL, &child, tag, &outlen);
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

    void alloc(MM_HANDLE *h)
    {
        CS_UINT size = s_.type == MM_UNIFORM ? uniform_[h] : request_size();
        const bool wrong_size = s_.type == MM_UNIFORM && (h->mmh_status & MM_ST_ALLOCATED) && rng_() % 10 == 0;
        if (wrong_size)
            size += 8;
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
        for (CS_UINT i = 0; i < size; i++)
            ASSERT_EQ(bytes[i], 0) << "not cleared at " << i;
        if (s_.supply == Supply::caller_buffer) {
            const auto *base = reinterpret_cast<const CS_BYTE *>(buffer_.get());
            ASSERT_TRUE(bytes >= base + MM_OVERHEAD && bytes + size <= base + kBufferBytes);
        }
        // An empty allocate-only request takes no room: the next one starts
        // at the same address, so it is no block to keep track of.
        if (s_.type == MM_ALLOCONLY && size == 0)
            return;
        Live block{h, size, size, static_cast<CS_BYTE>(rng_())};
        if (s_.type == MM_BUDDY)
            block.written = std::min(size, buddy_data_bytes(p));
        add(shadow_, p, block);
        fill(p, block);
    }

    std::map<std::uintptr_t, Live>::iterator any_block()
    {
        auto &blocks = shadow_;
        auto it = blocks.begin();
        std::advance(it, static_cast<long>(rng_() % blocks.size()));
        return it;
    }

    void release()
    {
        if (shadow_.empty())
            return;
        auto it = any_block();
        void *p = reinterpret_cast<void *>(it->first);
        verify(it->first, it->second, it->second.written);
        const CS_RETCODE rc = comn_mmfree(it->second.owner, p);
        if (s_.type == MM_ALLOCONLY) {
            ASSERT_EQ(rc, CS_FAIL);
            return;
        }
        ASSERT_EQ(rc, CS_SUCCEED);
        shadow_.erase(it);
    }

    void realloc()
    {
        if (shadow_.empty())
            return;
        auto it = any_block();
        Live block = it->second;
        void *p = reinterpret_cast<void *>(it->first);
        const CS_UINT size = request_size();
        void *q = p;
        const CS_RETCODE rc = comn_mmrealloc(block.owner, size, &q);
        if (s_.type != MM_BUDDY) {
            ASSERT_EQ(rc, CS_FAIL);
            return;
        }
        if (rc == CS_MEM_ERROR) {
            ASSERT_EQ(q, p) << "a failed realloc must keep the block";
            if (!shortage_allowed([&] { return comn_mmrealloc(block.owner, size, &q); }))
                return;
        } else {
            ASSERT_EQ(rc, CS_SUCCEED);
        }
        Live moved{block.owner, size, std::min(size, buddy_data_bytes(q)), static_cast<CS_BYTE>(rng_())};
        if (q == p) {
            // The header counts in the capacity of a pooled block.
            const CS_UINT header = (header_word(p) & MM_BUDDY_OVERSIZE) ? 0 : 8;
            ASSERT_GE(buddy_data_bytes(p) + header, size) << "stayed without room";
        }
        verify(reinterpret_cast<std::uintptr_t>(q), block, moved.written);
        shadow_.erase(it);
        add(shadow_, q, moved);
        fill(q, moved);
    }

    void drop_child()
    {
        if (children_.empty())
            return;
        const size_t at = rng_() % children_.size();
        MM_HANDLE *child = children_[at];
        for (auto it = shadow_.begin(); it != shadow_.end();) {
            if (it->second.owner != child) {
                ++it;
                continue;
            }
            verify(it->first, it->second, it->second.written);
            it = shadow_.erase(it);
        }
        ASSERT_EQ(comn_mmdrop(child, CS_UNUSED), CS_SUCCEED);
        children_.erase(children_.begin() + static_cast<long>(at));
        uniform_.erase(child);
    }

    // Memory may run short only in a fixed buffer, or at the limit: then the
    // same operation with the limit lifted must succeed by drawing a region
    // that the limit would have refused.  The limit then moves up to cover
    // it.  True when the retried operation produced a result to record.
    bool shortage_allowed(const std::function<CS_RETCODE()> &retry)
    {
        if (s_.supply == Supply::caller_buffer)
            return false;
        EXPECT_EQ(s_.supply, Supply::limited) << "shortage without a limit";
        const MmPoolHead *head = root_->mmh_head;
        const CS_INT before = head->mph_totalsize;
        EXPECT_EQ(set_int(root_, MM_PROP_MAXSIZE, INT32_MAX - 1), CS_SUCCEED);
        EXPECT_EQ(retry(), CS_SUCCEED);
        EXPECT_GT(head->mph_totalsize, before) << "no region was needed";
        EXPECT_GT(head->mph_totalsize, limit_) << "the region would have fitted the limit";
        limit_ = std::max(limit_, head->mph_totalsize);
        EXPECT_EQ(set_int(root_, MM_PROP_MAXSIZE, limit_), CS_SUCCEED);
        return !::testing::Test::HasFailure();
    }

    void check_accounts()
    {
        const MmPoolHead *head = root_->mmh_head;
        if (s_.supply == Supply::caller_buffer) {
            ASSERT_EQ(head->mph_totalsize, static_cast<CS_INT>(kBufferBytes - MM_OVERHEAD));
            return;
        }
        ASSERT_EQ(head->mph_totalsize, supplier_.drawn);
        if (s_.supply == Supply::limited) {
            ASSERT_LE(head->mph_totalsize, limit_);
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
    Shadow shadow_;
};

class MmRandom : public ::testing::TestWithParam<Scenario> {};

TEST_P(MmRandom, ShadowMapAgrees)
{
    Runner runner(GetParam());
    runner.start();
    ASSERT_FALSE(HasFatalFailure());
    runner.run(6000);
}

const char *const kTypeNames[] = {"buddy", "uniform", "alloconly"};
const char *const kSupplyNames[] = {"unlimited", "limited", "buffer"};

std::vector<Scenario> scenarios()
{
    std::vector<Scenario> all;
    for (CS_INT type : {MM_BUDDY, MM_UNIFORM, MM_ALLOCONLY})
        for (Supply supply : {Supply::unlimited, Supply::limited, Supply::caller_buffer})
            for (unsigned seed : {1u, 2u, 3u})
                all.push_back({type, supply, seed * 7919u + static_cast<unsigned>(type)});
    return all;
}

std::string scenario_name(const ::testing::TestParamInfo<Scenario> &info)
{
    const int type = info.param.type == MM_BUDDY ? 0 : info.param.type == MM_UNIFORM ? 1 : 2;
    return std::string(kTypeNames[type]) + "_" + kSupplyNames[static_cast<int>(info.param.supply)] + "_" +
           std::to_string(info.index);
}

INSTANTIATE_TEST_SUITE_P(Disciplines, MmRandom, ::testing::ValuesIn(scenarios()), scenario_name);

} // namespace
