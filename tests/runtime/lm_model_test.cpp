// Model-based test of the list manager: 100,000 random operations on each
// kind, checked step by step against standard containers that follow the
// kind's rules (cursor moves, newest-first chains, probe order, tombstones,
// rebuilds), hashing with lm_reference.h.  Keys include prefixes of one
// another, an empty key, high bytes and a colliding pair; the open-addressing
// table runs near full, and pool sizes change under the lists' feet.
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "support/context.h"
#include "lm_reference.h"
#include "lm_support.h"

namespace {

using namespace std::string_literals;
using lmtest::Result;

constexpr int kSteps = 100000;

// Keys live for the whole program: the manager keeps pointers to them.
const std::vector<std::string> &keys()
{
    static const std::vector<std::string> k = [] {
        std::vector<std::string> v{""s, "\x01\x02\x03\x80"s, "\x02\x01\x03\x80"s, "\0\0\0\0"s, "\0\0\0\0x"s};
        for (size_t n = 1; n <= 16; n++)
            v.push_back("prefix-of-prefix"s.substr(0, n));
        for (int i = 0; i < 30; i++)
            v.push_back("k" + std::to_string(i));
        std::mt19937 rng(7);
        for (int i = 0; i < 12; i++) {
            std::string s(rng() % 10, '\0');
            for (auto &c : s)
                c = char(rng() % 4 == 0 ? 0x80 + rng() % 128 : rng() % 256);
            v.push_back(s);
        }
        return v;
    }();
    return k;
}
uint32_t fold(int k) { return lmref::fold(keys()[size_t(k)]); }

struct Fixture {
    lmtest::TrackingAllocator alloc;
    LM_CONTEXT *ctx = nullptr;
    LM_HANDLE *h = nullptr;
    std::mt19937 rng;
    uintptr_t next_data = 1;

    Fixture(CS_INT type, CS_INT table_size, CS_INT pool, unsigned seed) : rng(seed)
    {
        EXPECT_EQ(lm_initlm_ex(1100, nullptr, 0, &ctx, alloc.alloc, alloc.release, &alloc), CS_SUCCEED);
        lm_property(ctx, LM_ACT_SET, LM_PROP_MAX_TABLESIZE, &table_size, 4, nullptr);
        lm_property(ctx, LM_ACT_SET, LM_PROP_MAX_POOLSIZE, &pool, 4, nullptr);
        EXPECT_EQ(lm_list_alloc(ctx, type, const_cast<CS_CHAR *>("model"), CS_NULLTERM, &h), CS_SUCCEED);
    }
    ~Fixture()
    {
        EXPECT_EQ(lm_exit(ctx, LM_FORCE_EXIT), CS_SUCCEED);
        EXPECT_TRUE(alloc.live.empty() && alloc.unstamped == 0);
    }
    int pick(int n) { return int(rng() % unsigned(n)); }
    Result kop(CS_INT op, int k, uintptr_t data = 0)
    {
        return lmtest::op(h, op, keys()[size_t(k)].data(), CS_INT(keys()[size_t(k)].size()), data);
    }
    Result cur() { return lmtest::op(h, LM_OP_CURRENT); }
    CS_INT load() { return lmtest::get_int(h, LM_PROP_HANDLE_LOAD); }
    // Rare steps every kind shares: a new pool size, which the model must
    // not notice, or an apply walk counting the entries (or slots).
    void common(long expected_visits)
    {
        if (pick(100) == 0) {
            ASSERT_EQ(lmtest::set_int(h, LM_PROP_MAX_POOLSIZE, pick(9)), CS_SUCCEED);
        }
        if (pick(100) == 0) {
            static long calls;
            calls = 0;
            CS_PRINT_FUNC count = [](CS_VOID *) -> CS_RETCODE { return ++calls, CS_SUCCEED; };
            ASSERT_EQ(lm_list_op(h, LM_OP_APPLY, nullptr, 0, &count, nullptr), CS_SUCCEED);
            ASSERT_EQ(calls, expected_visits);
        }
    }
};

#define EXPECT_STEP(got, code, data) ASSERT_EQ((got), (Result{(code), uintptr_t(data)})) << "step " << step

TEST(LmModel, LinkedList)
{
    Fixture f(LM_LIST_DLINK, 10, 4, 1);
    std::vector<uintptr_t> v;
    long cur = -1;
    auto at = [&](long i) { return i < 0 ? uintptr_t(0) : v[size_t(i)]; };
    for (int step = 0; step < kSteps; step++) {
        const int r = f.pick(100);
        if (r < 25) {
            static const CS_INT positions[] = {LM_OP_FIRST, LM_OP_LAST, LM_POS_BEFORE, LM_POS_AFTER};
            const CS_INT pos = positions[f.pick(cur < 0 ? 2 : 4)];
            const uintptr_t data = f.next_data++;
            const long where = v.empty() || pos == LM_OP_FIRST ? 0
                               : pos == LM_OP_LAST            ? long(v.size())
                                                              : cur + (pos == LM_POS_AFTER);
            v.insert(v.begin() + where, data);
            cur = where;
            EXPECT_STEP(lmtest::op(f.h, LM_OP_INSERT, nullptr, pos, data), CS_SUCCEED, data);
        } else if (r < 50 && cur >= 0) {
            // The node before becomes the cursor; after the head, the new head.
            v.erase(v.begin() + cur);
            cur = cur == 0 ? (v.empty() ? -1 : 0) : cur - 1;
            EXPECT_STEP(lmtest::op(f.h, LM_OP_DELETE), CS_SUCCEED, at(cur));
        } else if (r < 54 && cur >= 0) {
            v[size_t(cur)] = f.next_data++;
            EXPECT_STEP(lmtest::op(f.h, LM_OP_UPDATE, nullptr, 0, at(cur)), CS_SUCCEED, at(cur));
        } else if (r < 84) {
            // At either end a walk fails and leaves cursor and output alone.
            const bool forward = r < 69;
            const long to = cur < 0 ? -1 : forward ? cur + 1 : cur - 1;
            const bool moves = to >= 0 && to < long(v.size());
            cur = moves ? to : cur;
            EXPECT_STEP(lmtest::op(f.h, forward ? LM_OP_NEXT : LM_OP_PREVIOUS), moves ? CS_SUCCEED : CS_FAIL,
                        moves ? at(cur) : 0xbad);
        } else if (r < 90) {
            const bool first = r < 87;
            cur = v.empty() ? -1 : first ? 0 : long(v.size()) - 1;
            EXPECT_STEP(lmtest::op(f.h, first ? LM_OP_FIRST : LM_OP_LAST), CS_SUCCEED, at(cur));
        } else {
            EXPECT_STEP(f.cur(), CS_SUCCEED, at(cur));
        }
        f.common(long(v.size()));
        ASSERT_EQ(f.load(), CS_INT(v.size())) << "step " << step;
    }
}

TEST(LmModel, QueueAndStack)
{
    for (CS_INT type : {LM_LIST_QUEUE, LM_LIST_STACK}) {
        SCOPED_TRACE(type);
        const bool stack = type == LM_LIST_STACK;
        Fixture f(type, 10, 2, 2);
        std::deque<uintptr_t> model; // the front leaves first
        auto front = [&] { return model.empty() ? uintptr_t(0) : model.front(); };
        auto run = [&](CS_INT op, uintptr_t data = 0) {
            return stack ? lmtest::stack_op(f.h, op, data) : lmtest::op(f.h, op, nullptr, 0, data);
        };
        for (int step = 0; step < kSteps; step++) {
            const int r = f.pick(100);
            if (r < 45) {
                const uintptr_t data = f.next_data++;
                stack ? model.push_front(data) : model.push_back(data);
                EXPECT_STEP(run(LM_OP_INSERT, data), CS_SUCCEED, data);
            } else if (r < 90 && !model.empty()) {
                model.pop_front();
                EXPECT_STEP(run(LM_OP_DELETE), CS_SUCCEED, front());
            } else {
                EXPECT_STEP(run(LM_OP_CURRENT), CS_SUCCEED, front());
            }
            f.common(long(model.size()));
            ASSERT_EQ(f.load(), CS_INT(model.size()));
        }
    }
}

// Chains hold the newest entry first; a search needs equal sizes; deleting
// moves the cursor to the entry before (nearer the head), else the one after.
struct ChainModel {
    std::vector<std::deque<std::pair<int, uintptr_t>>> chains; // key index, data
    int slot = -1;
    long idx = -1;

    explicit ChainModel(int size) : chains(size_t(size)) {}
    size_t home(int k) const { return fold(k) % uint32_t(chains.size()); }
    uintptr_t current() const { return slot < 0 ? 0 : chains[size_t(slot)][size_t(idx)].second; }
    bool find(int k)
    {
        const auto &c = chains[home(k)];
        for (size_t i = 0; i < c.size(); i++)
            if (keys()[size_t(c[i].first)] == keys()[size_t(k)])
                return slot = int(home(k)), idx = long(i), true;
        return false;
    }
    void insert(int k, uintptr_t data) { chains[home(k)].push_front({k, data}), slot = int(home(k)), idx = 0; }
    void erase_current()
    {
        auto &c = chains[size_t(slot)];
        c.erase(c.begin() + idx);
        if (idx > 0)
            idx--;
        else if (c.empty())
            slot = -1, idx = -1;
    }
    // A rebuild re-inserts each chain's head entry once per node of it.
    void rebuild(int size)
    {
        ChainModel fresh(size);
        for (const auto &c : chains)
            for (size_t i = 0; i < c.size(); i++)
                fresh.insert(c.front().first, c.front().second);
        *this = std::move(fresh);
    }
    size_t load() const
    {
        size_t n = 0;
        for (const auto &c : chains)
            n += c.size();
        return n;
    }
};

TEST(LmModel, ChainedHashTable)
{
    Fixture f(LM_LIST_CHASH, 10, 3, 3);
    ChainModel m(10);
    size_t peak = 0;
    for (int step = 0; step < kSteps; step++) {
        const int r = f.pick(1000), k = f.pick(int(keys().size()));
        const uintptr_t data = f.next_data++;
        if (r < 220) {
            m.insert(k, data);
            EXPECT_STEP(f.kop(LM_OP_INSERT, k, data), CS_SUCCEED, data);
        } else if (r < 450) {
            const bool hit = m.find(k);
            EXPECT_STEP(f.kop(LM_OP_SEARCH, k), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < 650) {
            const bool hit = m.find(k);
            if (hit)
                m.erase_current();
            EXPECT_STEP(f.kop(LM_OP_DELETE, k), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < 700 && m.slot >= 0) {
            m.erase_current();
            EXPECT_STEP(lmtest::op(f.h, LM_OP_DELETE), CS_SUCCEED, m.current());
        } else if (r < 750) {
            const bool hit = m.find(k);
            if (hit)
                m.chains[size_t(m.slot)][size_t(m.idx)].second = data;
            EXPECT_STEP(f.kop(LM_OP_UPDATE, k, data), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < 780 && m.slot >= 0) {
            m.chains[size_t(m.slot)][size_t(m.idx)].second = data;
            EXPECT_STEP(lmtest::op(f.h, LM_OP_UPDATE, nullptr, CS_UNUSED, data), CS_SUCCEED, data);
        } else if (r >= 780 && r < 784) {
            const int size = 1 + f.pick(40);
            m.rebuild(size);
            ASSERT_EQ(lmtest::set_int(f.h, LM_PROP_MAX_TABLESIZE, size), CS_SUCCEED);
            EXPECT_STEP(f.cur(), CS_SUCCEED, m.current());
        } else {
            EXPECT_STEP(f.cur(), CS_SUCCEED, m.current());
        }
        f.common(long(m.load()));
        ASSERT_EQ(f.load(), CS_INT(m.load())) << "step " << step;
        peak = std::max(peak, m.load());
    }
    EXPECT_GT(peak, 200u) << "long chains, so that the cursor moves inside them";
}

// Probing starts at (home + second hash) % size and steps by one over every
// slot; a given key matches a stored key it is a prefix of; deleting leaves
// a tombstone under the cursor.
struct SlotModel {
    struct Slot {
        LM_NODE_STATE state = LM_INITIALIZED;
        int key = -1;
        uintptr_t data = 0;
    };
    std::vector<Slot> slots;
    long cur = -1, load = 0;

    explicit SlotModel(int size) : slots(size_t(size)) {}
    uint32_t size() const { return uint32_t(slots.size()); }
    uintptr_t current() const { return cur < 0 ? 0 : slots[size_t(cur)].data; }
    uint32_t start(int k) const { return (fold(k) % size() + fold(k) * 7u % (size() - 1) + 1) % size(); }
    bool find(int k)
    {
        for (uint32_t i = 0; i < size(); i++) {
            const size_t s = (start(k) + i) % size();
            if (slots[s].state == LM_SET && keys()[size_t(slots[s].key)].starts_with(keys()[size_t(k)]))
                return cur = long(s), true;
        }
        return false;
    }
    void insert(int k, uintptr_t data)
    {
        size_t s = start(k);
        while (slots[s].state == LM_SET)
            s = (s + 1) % size();
        slots[s] = {LM_SET, k, data};
        cur = long(s), load++;
    }
    void erase_current() { slots[size_t(cur)] = {LM_UNSET, -1, 0}, load--; }
    void rebuild(int size)
    {
        SlotModel fresh(size);
        for (const Slot &s : slots)
            if (s.state == LM_SET)
                fresh.insert(s.key, s.data);
        *this = std::move(fresh);
    }
};

TEST(LmModel, OpenAddressingTableNearFull)
{
    Fixture f(LM_LIST_DHASH, 16, 5, 4);
    SlotModel m(16);
    long full_steps = 0;
    for (int step = 0; step < kSteps; step++) {
        const int r = f.pick(1000), k = f.pick(int(keys().size()));
        const uintptr_t data = f.next_data++;
        if (r < 400 && m.load < m.size()) {
            m.insert(k, data);
            EXPECT_STEP(f.kop(LM_OP_INSERT, k, data), CS_SUCCEED, data);
        } else if (r < 550) { // and whenever the table is full
            const bool hit = m.find(k);
            if (hit)
                m.erase_current();
            EXPECT_STEP(f.kop(LM_OP_DELETE, k), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < 620) {
            const bool hit = m.find(k);
            EXPECT_STEP(f.kop(LM_OP_SEARCH, k), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < 680 && m.cur >= 0 && m.slots[size_t(m.cur)].state == LM_SET) {
            m.erase_current();
            EXPECT_STEP(lmtest::op(f.h, LM_OP_DELETE), CS_SUCCEED, 0);
        } else if (r < 740) {
            const bool hit = m.find(k);
            if (hit)
                m.slots[size_t(m.cur)].data = data;
            EXPECT_STEP(f.kop(LM_OP_UPDATE, k, data), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < 755) {
            // Often exactly full, sometimes refused for being too small.
            const int size = std::max<int>(2, int(m.load) + f.pick(3) - 1 + (f.pick(4) == 0 ? f.pick(20) : 0));
            const bool fits = size >= m.load;
            if (fits)
                m.rebuild(size);
            ASSERT_EQ(lmtest::set_int(f.h, LM_PROP_MAX_TABLESIZE, size), fits ? CS_SUCCEED : CS_FAIL);
            EXPECT_STEP(f.cur(), CS_SUCCEED, m.current());
        } else {
            EXPECT_STEP(f.cur(), CS_SUCCEED, m.current());
        }
        f.common(long(m.size())); // apply visits every slot
        ASSERT_EQ(f.load(), CS_INT(m.load)) << "step " << step;
        full_steps += m.load == m.size();
    }
    EXPECT_GT(full_steps, kSteps / 10) << "the table should spend time full";
}

} // namespace
