// Model-based test of the list manager: long random operation sequences on
// each list kind, checked step by step against standard containers that
// follow the kind's rules (cursor moves, newest-first chains, probe order,
// tombstones, rebuilds) with the independently written key hash of
// lm_reference.h.  Keys include prefixes of one another, an empty key, high
// bytes and a colliding pair; the open-addressing table runs near full.
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "support/context.h"
#include "lm_reference.h"
#include "lm_support.h"

namespace {

using lmtest::d;
using lmtest::id;
using lmtest::Result;

constexpr int steps = 100000;
constexpr int check_every = 1000;

// Keys live for the whole program: the manager keeps pointers to them.
const std::vector<std::string> &key_pool()
{
    static const std::vector<std::string> keys = [] {
        std::vector<std::string> k;
        std::string chain = "prefix-of-prefix";
        for (size_t n = 1; n <= chain.size(); n++)
            k.push_back(chain.substr(0, n));
        for (int i = 0; i < 30; i++)
            k.push_back("k" + std::to_string(i));
        k.push_back(std::string());
        k.push_back(std::string("\x01\x02\x03\x80", 4));
        k.push_back(std::string("\x02\x01\x03\x80", 4));
        k.push_back(std::string("\0\0\0\0", 4));
        k.push_back(std::string("\0\0\0\0x", 5));
        std::mt19937 rng(7);
        for (int i = 0; i < 12; i++) {
            std::string s(rng() % 10, '\0');
            for (auto &c : s)
                c = char(rng() % 4 == 0 ? 0x80 + rng() % 128 : rng() % 256);
            k.push_back(s);
        }
        return k;
    }();
    return keys;
}

// The reference fold of every pool key, computed once.
uint32_t folded(int k)
{
    static const std::vector<uint32_t> folds = [] {
        std::vector<uint32_t> v;
        for (const auto &key : key_pool())
            v.push_back(lmref::fold(key));
        return v;
    }();
    return folds[size_t(k)];
}

struct Fixture {
    lmtest::TrackingAllocator alloc;
    LM_CONTEXT *ctx = nullptr;
    LM_HANDLE *h = nullptr;
    std::mt19937 rng;

    Fixture(CS_INT type, CS_INT table_size, CS_INT pool, unsigned seed) : rng(seed)
    {
        EXPECT_EQ(lm_initlm_ex(1100, const_cast<CS_CHAR *>("model"), CS_NULLTERM, &ctx,
                               lmtest::TrackingAllocator::alloc, lmtest::TrackingAllocator::release, &alloc),
                  CS_SUCCEED);
        lm_property(ctx, LM_ACT_SET, LM_PROP_MAX_TABLESIZE, &table_size, 4, nullptr);
        lm_property(ctx, LM_ACT_SET, LM_PROP_MAX_POOLSIZE, &pool, 4, nullptr);
        EXPECT_EQ(lm_list_alloc(ctx, type, const_cast<CS_CHAR *>("under test"), CS_NULLTERM, &h), CS_SUCCEED);
    }
    ~Fixture()
    {
        EXPECT_EQ(lm_exit(ctx, LM_FORCE_EXIT), CS_SUCCEED);
        EXPECT_TRUE(alloc.live.empty());
        EXPECT_EQ(alloc.unstamped, 0);
    }
    int pick(int n) { return int(rng() % unsigned(n)); }
    int key() { return pick(int(key_pool().size())); }
    CS_INT load() { return lmtest::int_prop(h, LM_PROP_HANDLE_LOAD); }
    // A random pool size now and then: the model must not notice.
    void shuffle_pool() { ASSERT_EQ(lmtest::set_int(h, LM_PROP_MAX_POOLSIZE, pick(9)), CS_SUCCEED); }
    long apply_count()
    {
        static long calls;
        calls = 0;
        CS_PRINT_FUNC count = [](CS_VOID *) -> CS_RETCODE {
            calls++;
            return CS_SUCCEED;
        };
        EXPECT_EQ(lm_list_op(h, LM_OP_APPLY, nullptr, 0, &count, nullptr), CS_SUCCEED);
        return calls;
    }
};

Result kop(LM_HANDLE *h, CS_INT op, int k, CS_VOID *data = nullptr)
{
    const std::string &key = key_pool()[size_t(k)];
    return lmtest::op(h, op, key.data(), CS_INT(key.size()), data);
}

#define CHECK_RESULT(got, code, data)                                            \
    do {                                                                         \
        Result got_ = (got);                                                     \
        ASSERT_EQ(got_.rc, (code)) << "step " << step;                           \
        ASSERT_EQ(id(got_.out), uintptr_t(data)) << "step " << step;             \
    } while (0)

// ---- doubly linked list ------------------------------------------------------------

TEST(LmModel, LinkedList)
{
    Fixture f(LM_LIST_DLINK, 10, 4, 1);
    std::vector<uintptr_t> v;
    long cur = -1;
    uintptr_t next_id = 1;
    auto at = [&](long i) { return i < 0 ? uintptr_t(0) : v[size_t(i)]; };
    for (int step = 0; step < steps; step++) {
        int r = f.pick(100);
        if (r < 25) {
            static const CS_INT positions[] = {LM_OP_FIRST, LM_OP_LAST, LM_POS_BEFORE, LM_POS_AFTER};
            CS_INT pos = positions[f.pick(cur < 0 ? 2 : 4)];
            uintptr_t data = next_id++;
            if (v.empty()) {
                v.push_back(data), cur = 0;
            } else if (pos == LM_OP_FIRST) {
                v.insert(v.begin(), data), cur = 0;
            } else if (pos == LM_OP_LAST) {
                v.push_back(data), cur = long(v.size()) - 1;
            } else if (pos == LM_POS_BEFORE) {
                v.insert(v.begin() + cur, data);
            } else {
                v.insert(v.begin() + cur + 1, data), cur++;
            }
            CHECK_RESULT(lmtest::op(f.h, LM_OP_INSERT, nullptr, pos, d(data)), CS_SUCCEED, data);
        } else if (r < 50) {
            if (cur < 0)
                continue;
            v.erase(v.begin() + cur);
            cur = cur == 0 ? (v.empty() ? -1 : 0) : cur - 1;
            CHECK_RESULT(lmtest::op(f.h, LM_OP_DELETE), CS_SUCCEED, at(cur));
        } else if (r < 54) {
            if (cur < 0)
                continue;
            v[size_t(cur)] = next_id++;
            CHECK_RESULT(lmtest::op(f.h, LM_OP_UPDATE, nullptr, 0, d(v[size_t(cur)])), CS_SUCCEED, v[size_t(cur)]);
        } else if (r < 84) {
            bool forward = r < 69;
            long to = cur < 0 ? -1 : forward ? cur + 1 : cur - 1;
            if (to < 0 || to >= long(v.size())) {
                CHECK_RESULT(lmtest::op(f.h, forward ? LM_OP_NEXT : LM_OP_PREVIOUS), CS_FAIL, 0xbad);
            } else {
                cur = to;
                CHECK_RESULT(lmtest::op(f.h, forward ? LM_OP_NEXT : LM_OP_PREVIOUS), CS_SUCCEED, at(cur));
            }
        } else if (r < 90) {
            bool first = r < 87;
            cur = v.empty() ? -1 : first ? 0 : long(v.size()) - 1;
            CHECK_RESULT(lmtest::op(f.h, first ? LM_OP_FIRST : LM_OP_LAST), CS_SUCCEED, at(cur));
        } else if (r < 97) {
            CHECK_RESULT(lmtest::op(f.h, LM_OP_CURRENT), CS_SUCCEED, at(cur));
        } else if (r < 98) {
            ASSERT_EQ(f.apply_count(), long(v.size()));
        } else {
            f.shuffle_pool();
        }
        ASSERT_EQ(f.load(), CS_INT(v.size())) << "step " << step;
        if (step % check_every == 0) {
            auto *info = static_cast<DLinkInfo *>(f.h->list_state);
            std::vector<uintptr_t> fwd, back;
            for (DLinkNode *n = info->head; n; n = n->next)
                fwd.push_back(id(n->data));
            for (DLinkNode *n = info->tail; n; n = n->previous)
                back.insert(back.begin(), id(n->data));
            ASSERT_EQ(fwd, v);
            ASSERT_EQ(back, v);
        }
    }
}

// ---- queue and stack ----------------------------------------------------------------

TEST(LmModel, QueueAndStack)
{
    for (CS_INT type : {LM_LIST_QUEUE, LM_LIST_STACK}) {
        SCOPED_TRACE(type);
        bool stack = type == LM_LIST_STACK;
        Fixture f(type, 10, 2, 2);
        std::deque<uintptr_t> model; // front is what leaves first
        auto front = [&] { return model.empty() ? uintptr_t(0) : model.front(); };
        auto run = [&](CS_INT op, CS_VOID *data = nullptr) {
            return stack ? lmtest::stack_op(f.h, op, data) : lmtest::op(f.h, op, nullptr, 0, data);
        };
        uintptr_t next_id = 1;
        for (int step = 0; step < steps; step++) {
            int r = f.pick(100);
            if (r < 45) {
                uintptr_t data = next_id++;
                stack ? model.push_front(data) : model.push_back(data);
                CHECK_RESULT(run(LM_OP_INSERT, d(data)), CS_SUCCEED, data);
            } else if (r < 90) {
                if (model.empty())
                    continue;
                model.pop_front();
                CHECK_RESULT(run(LM_OP_DELETE), CS_SUCCEED, front());
            } else if (r < 99) {
                CHECK_RESULT(run(LM_OP_CURRENT), CS_SUCCEED, front());
            } else {
                f.shuffle_pool();
            }
            ASSERT_EQ(f.load(), CS_INT(model.size()));
            if (step % check_every == 0) {
                std::deque<uintptr_t> seen;
                for (DLinkNode *n = static_cast<DLinkInfo *>(f.h->list_state)->head; n; n = n->next)
                    seen.push_back(id(n->data));
                ASSERT_EQ(seen, model);
            }
        }
    }
}

// ---- chained hash table -------------------------------------------------------------

struct ChainModel {
    struct Entry {
        int key;
        uintptr_t data;
    };
    std::vector<std::deque<Entry>> chains;
    int slot = -1;
    long idx = -1;

    explicit ChainModel(int size) : chains(size_t(size)) {}
    uint32_t home(int k) const { return folded(k) % uint32_t(chains.size()); }
    uintptr_t current() const { return slot < 0 ? 0 : chains[size_t(slot)][size_t(idx)].data; }
    bool find(int k)
    {
        auto &c = chains[home(k)];
        for (size_t i = 0; i < c.size(); i++)
            if (key_pool()[size_t(c[i].key)] == key_pool()[size_t(k)]) {
                slot = int(home(k)), idx = long(i);
                return true;
            }
        return false;
    }
    void insert(int k, uintptr_t data)
    {
        chains[home(k)].push_front({k, data});
        slot = int(home(k)), idx = 0;
    }
    void erase_current()
    {
        auto &c = chains[size_t(slot)];
        c.erase(c.begin() + idx);
        if (idx > 0)
            idx--;
        else if (c.empty())
            slot = -1, idx = -1;
    }
    // Each chain node re-inserts its chain's head entry.
    void rebuild(int size)
    {
        ChainModel fresh(size);
        for (auto &c : chains)
            for (size_t i = 0; i < c.size(); i++)
                fresh.insert(c.front().key, c.front().data);
        *this = std::move(fresh);
    }
    size_t load() const
    {
        size_t n = 0;
        for (auto &c : chains)
            n += c.size();
        return n;
    }
};

TEST(LmModel, ChainedHashTable)
{
    Fixture f(LM_LIST_CHASH, 10, 3, 3);
    ChainModel m(10);
    uintptr_t next_id = 1;
    size_t peak = 0;
    for (int step = 0; step < steps; step++) {
        int r = f.pick(1000);
        int k = f.key();
        if (r < 220) {
            uintptr_t data = next_id++;
            m.insert(k, data);
            CHECK_RESULT(kop(f.h, LM_OP_INSERT, k, d(data)), CS_SUCCEED, data);
        } else if (r < 450) {
            bool hit = m.find(k);
            CHECK_RESULT(kop(f.h, LM_OP_SEARCH, k), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < 650) {
            bool hit = m.find(k);
            if (hit)
                m.erase_current();
            CHECK_RESULT(kop(f.h, LM_OP_DELETE, k), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < 700) {
            if (m.slot < 0)
                continue;
            m.erase_current();
            CHECK_RESULT(lmtest::op(f.h, LM_OP_DELETE), CS_SUCCEED, m.current());
        } else if (r < 780) {
            uintptr_t data = next_id++;
            bool by_key = r < 750;
            if (by_key ? !m.find(k) : m.slot < 0) {
                if (by_key)
                    CHECK_RESULT(kop(f.h, LM_OP_UPDATE, k, d(data)), LM_NOT_FOUND, m.current());
                continue;
            }
            m.chains[size_t(m.slot)][size_t(m.idx)].data = data;
            CHECK_RESULT(by_key ? kop(f.h, LM_OP_UPDATE, k, d(data)) : lmtest::op(f.h, LM_OP_UPDATE, nullptr,
                                                                                  CS_UNUSED, d(data)),
                         CS_SUCCEED, data);
        } else if (r < 950) {
            CHECK_RESULT(lmtest::op(f.h, LM_OP_CURRENT), CS_SUCCEED, m.current());
        } else if (r < 954) {
            int size = 1 + f.pick(40);
            m.rebuild(size);
            ASSERT_EQ(lmtest::set_int(f.h, LM_PROP_MAX_TABLESIZE, size), CS_SUCCEED);
            CHECK_RESULT(lmtest::op(f.h, LM_OP_CURRENT), CS_SUCCEED, m.current());
        } else if (r < 970) {
            ASSERT_EQ(f.apply_count(), long(m.load()));
        } else if (r < 980) {
            f.shuffle_pool();
        }
        ASSERT_EQ(f.load(), CS_INT(m.load())) << "step " << step;
        peak = std::max(peak, m.load());
        if (step % check_every == 0) {
            auto *info = static_cast<CHashInfo *>(f.h->list_state);
            ASSERT_EQ(size_t(info->table_size), m.chains.size());
            for (size_t s = 0; s < m.chains.size(); s++) {
                DLinkNode *n = info->table[s], *prev = nullptr;
                for (const auto &e : m.chains[s]) {
                    ASSERT_NE(n, nullptr);
                    ASSERT_EQ(n->previous, prev);
                    ASSERT_EQ(n->key, key_pool()[size_t(e.key)].data());
                    ASSERT_EQ(n->data, d(e.data));
                    prev = n, n = n->next;
                }
                ASSERT_EQ(n, nullptr);
            }
        }
    }
    // Long chains, so that cursor moves inside chains are exercised.
    EXPECT_GT(peak, 200u) << peak;
}

// ---- open-addressing table ----------------------------------------------------------

struct SlotModel {
    struct Slot {
        int state = 0; // 0 never used, 1 set, 2 deleted
        int key = -1;
        uintptr_t data = 0;
    };
    std::vector<Slot> slots;
    long cur = -1;
    long load = 0;

    explicit SlotModel(int size) : slots(size_t(size)) {}
    CS_INT size() const { return CS_INT(slots.size()); }
    uintptr_t current() const { return cur < 0 ? 0 : slots[size_t(cur)].data; }
    uint32_t start(int k) const
    {
        auto n = uint32_t(size());
        return (folded(k) % n + folded(k) * 7u % (n - 1) + 1) % n;
    }
    bool find(int k)
    {
        const std::string &key = key_pool()[size_t(k)];
        uint32_t first = start(k);
        for (CS_INT i = 0; i < size(); i++) {
            size_t s = (first + uint32_t(i)) % uint32_t(size());
            if (slots[s].state != 1)
                continue;
            const std::string &stored = key_pool()[size_t(slots[s].key)];
            if (stored.size() >= key.size() && stored.compare(0, key.size(), key) == 0) {
                cur = long(s);
                return true;
            }
        }
        return false;
    }
    void insert(int k, uintptr_t data)
    {
        size_t s = start(k);
        while (slots[s].state == 1)
            s = (s + 1) % slots.size();
        slots[s] = {1, k, data};
        cur = long(s);
        load++;
    }
    void erase_current()
    {
        slots[size_t(cur)] = {2, -1, 0};
        load--;
    }
    void rebuild(int size)
    {
        SlotModel fresh(size);
        for (const auto &s : slots)
            if (s.state == 1)
                fresh.insert(s.key, s.data);
        *this = std::move(fresh);
    }
};

TEST(LmModel, OpenAddressingTableNearFull)
{
    Fixture f(LM_LIST_DHASH, 16, 5, 4);
    SlotModel m(16);
    uintptr_t next_id = 1;
    long full_steps = 0;
    for (int step = 0; step < steps; step++) {
        int r = f.pick(1000);
        int k = f.key();
        if (r < 400) {
            if (m.load == m.size())
                r = 500; // full: delete instead
            else {
                uintptr_t data = next_id++;
                m.insert(k, data);
                CHECK_RESULT(kop(f.h, LM_OP_INSERT, k, d(data)), CS_SUCCEED, data);
            }
        }
        if (r < 400) {
        } else if (r < 550) {
            bool hit = m.find(k);
            if (hit)
                m.erase_current();
            CHECK_RESULT(kop(f.h, LM_OP_DELETE, k), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < 620) {
            bool hit = m.find(k);
            CHECK_RESULT(kop(f.h, LM_OP_SEARCH, k), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < 680) {
            if (m.cur < 0 || m.slots[size_t(m.cur)].state != 1)
                continue;
            m.erase_current();
            CHECK_RESULT(lmtest::op(f.h, LM_OP_DELETE), CS_SUCCEED, 0);
        } else if (r < 740) {
            uintptr_t data = next_id++;
            if (!m.find(k)) {
                CHECK_RESULT(kop(f.h, LM_OP_UPDATE, k, d(data)), LM_NOT_FOUND, m.current());
                continue;
            }
            m.slots[size_t(m.cur)].data = data;
            CHECK_RESULT(kop(f.h, LM_OP_UPDATE, k, d(data)), CS_SUCCEED, data);
        } else if (r < 960) {
            CHECK_RESULT(lmtest::op(f.h, LM_OP_CURRENT), CS_SUCCEED, m.current());
        } else if (r < 975) {
            // Often exactly full, sometimes refused for being too small.
            int size = std::max<int>(2, int(m.load) + f.pick(3) - 1 + (f.pick(4) == 0 ? f.pick(20) : 0));
            bool fits = size >= m.load;
            if (fits)
                m.rebuild(size);
            ASSERT_EQ(lmtest::set_int(f.h, LM_PROP_MAX_TABLESIZE, size), fits ? CS_SUCCEED : CS_FAIL);
            CHECK_RESULT(lmtest::op(f.h, LM_OP_CURRENT), CS_SUCCEED, m.current());
        } else if (r < 990) {
            ASSERT_EQ(f.apply_count(), long(m.size())) << "apply visits every slot";
        }
        ASSERT_EQ(f.load(), CS_INT(m.load)) << "step " << step;
        full_steps += m.load == m.size();
        if (step % check_every == 0) {
            auto *info = static_cast<DHashInfo *>(f.h->list_state);
            ASSERT_EQ(info->table_size, m.size());
            static const LM_NODE_STATE states[] = {LM_INITIALIZED, LM_SET, LM_UNSET};
            for (size_t s = 0; s < m.slots.size(); s++) {
                const DLinkNode *n = info->table[s];
                ASSERT_EQ(n->state, states[m.slots[s].state]) << s;
                ASSERT_EQ(n->data, d(m.slots[s].data));
                if (m.slots[s].state == 1) {
                    ASSERT_EQ(n->key, key_pool()[size_t(m.slots[s].key)].data());
                }
            }
        }
    }
    EXPECT_GT(full_steps, steps / 10) << "the table should spend time full";
}

} // namespace
