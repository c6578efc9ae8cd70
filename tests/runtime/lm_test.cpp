// The list manager: its key hash against a restatement of the folding rules,
// 100,000 random operations per list kind against standard containers, and
// what the random runs cannot see (context and list life, properties, held
// cursors, walks and prints, pools, allocation failure at every step, the
// assertions).  Every block is checked to go back wiped and stamped.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "kesintl.h"
#include "runtime/lm_impl.h"
#include "support/context.h"

namespace {

using namespace std::string_literals;

// Fails allocation number fail_at (0-based).  A released block must be zero
// apart from a leading LM_RELEASED stamp; dirty counts those that are not
// (1000 for a block freed twice or never handed out).
struct TrackingAllocator {
    std::map<void *, size_t> live;
    long calls = 0, fail_at = -1, dirty = 0;

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
        if (it == self->live.end())
            return void(self->dirty += 1000);
        const auto *b = static_cast<unsigned char *>(ptr);
        LM_NODE_STATE stamp{};
        if (it->second >= sizeof stamp)
            std::memcpy(&stamp, b, sizeof stamp);
        self->dirty += std::any_of(b + (stamp == LM_RELEASED ? sizeof stamp : 0), b + it->second,
                                   [](unsigned char c) { return c != 0; });
        self->live.erase(it);
        std::free(ptr);
    }
    CS_RETCODE init(LM_CONTEXT **c, CS_INT version = 1100, const char *name = nullptr, CS_INT len = 0)
    {
        return lm_initlm_ex(version, const_cast<CS_CHAR *>(name), len, c, alloc, release, this);
    }
    bool clean() const { return live.empty() && dirty == 0; }
};

CS_VOID *d(uintptr_t id) { return reinterpret_cast<CS_VOID *>(id); }
uintptr_t id(const CS_VOID *p) { return reinterpret_cast<uintptr_t>(p); }

// The outcome of one operation: its code and data_out, which starts at 0xbad
// so that "untouched" shows.
using Result = std::pair<CS_RETCODE, uintptr_t>;

Result op(LM_HANDLE *h, CS_INT operation, const void *key = nullptr, CS_INT key_size = CS_UNUSED, uintptr_t in = 0)
{
    CS_VOID *out = d(0xbad);
    CS_RETCODE rc = lm_list_op(h, operation, const_cast<void *>(key), key_size, d(in), &out);
    return {rc, id(out)};
}

// A stack's data_out is the address of the receiving location.
Result stack_op(LM_HANDLE *h, CS_INT operation, uintptr_t in = 0)
{
    CS_VOID *out = d(0xbad), **where = &out;
    CS_RETCODE rc = lm_list_op(h, operation, nullptr, CS_UNUSED, d(in), reinterpret_cast<CS_VOID **>(&where));
    return {rc, id(out)};
}

CS_INT get_int(LM_HANDLE *h, CS_INT property)
{
    CS_INT v = -1;
    const bool fixed = property == LM_PROP_LIST_TYPE || property == LM_PROP_HANDLE_LOAD;
    lm_list_prop(h, LM_ACT_GET, property, &v, fixed ? CS_UNUSED : CS_INT(sizeof v), nullptr);
    return v;
}

CS_RETCODE set_int(LM_HANDLE *h, CS_INT property, CS_INT value)
{
    return lm_list_prop(h, LM_ACT_SET, property, &value, sizeof value, nullptr);
}

// The key hash written from its rules, not from the library: four bytes from
// `at` (0x5A past the end), each ORed in sign-extended over the word shifted
// left by 8, so a high byte smears over those before it.
uint32_t ref_word(std::string_view key, size_t at)
{
    uint32_t w = 0;
    for (size_t j = at; j < at + 4; j++) {
        const int64_t b = j < key.size() ? int64_t(static_cast<unsigned char>(key[j])) : 0x5A;
        w = uint32_t((uint64_t(w) << 8) | uint64_t(uint32_t(int32_t(b >= 0x80 ? b - 256 : b))));
    }
    return w;
}

// Whole words pair up (a zero word while none is waiting counts for
// nothing); a word left waiting and a padded tail join at the end.
uint32_t ref_fold(std::string_view key)
{
    uint32_t acc = 0, first = 0;
    for (size_t i = 0; i + 4 <= key.size(); i += 4) {
        const uint32_t w = ref_word(key, i);
        if (first == 0)
            first = w;
        else
            acc = (acc == 0 ? first * 37u : (acc * 37u + first) * 37u) + w, first = 0;
    }
    if (key.size() % 4 == 0)
        return first != 0 ? acc * 37u + first : acc;
    if (first != 0)
        acc = acc == 0 ? first : acc * 37u + first;
    return acc * 37u + ref_word(key, key.size() / 4 * 4);
}
uint32_t ref_home(std::string_view key, uint32_t range) { return ref_fold(key) % range; }
uint32_t ref_second(std::string_view key, uint32_t range) { return ref_fold(key) * 7u % (range - 1) + 1; }
uint32_t ref_probe_start(std::string_view key, uint32_t range)
{
    return (ref_home(key, range) + ref_second(key, range)) % range;
}

CS_UINT fold(std::string key)
{
    CS_UINT v = 0xdeadbeef;
    EXPECT_EQ(lm___api_key_to_uint(key.data(), CS_INT(key.size()), &v), CS_SUCCEED);
    return v;
}

// Worked out by hand, so they hold the reference as well as the library.
TEST(LmHash, KnownValuesOfEachFoldingRule)
{
    const std::pair<std::string, CS_UINT> cases[] = {
        {""s, 0},
        {"A"s, 0x415a5a5a},             // padded with 0x5A
        {"ABCD"s, 0x41424344},          // a word left waiting alone
        {"ABCDE"s, 0xb3ee132e},         // waiting word, then tail
        {"ABCDEFGH"s, 0xb3da001c},      // one pair
        {"ABCDEFGHIJKL"s, 0x47cc4f58},  // pair, then a waiting word
        {"ABCDEFGHIJKLM"s, 0xade1d212}, // pair, waiting word and tail
        {"\0\0\0\0ABCD"s, 0x41424344},  // a zero word while none waits counts for nothing
        {"\x80"s, 0x805a5a5a},
        {"\x01\x80"s, 0xff805a5a},         // a high byte smears over those before it...
        {"\x01\x02\x03\x80"s, 0xffffff80}, // ...so these byte orders collide
        {"\x02\x01\x03\x80"s, 0xffffff80},
    };
    for (const auto &[key, value] : cases) {
        SCOPED_TRACE(kes::test::hex(key.data(), key.size()));
        EXPECT_EQ(fold(key), value);
        EXPECT_EQ(ref_fold(key), value);
    }
}

// Ranges up to the largest, where the second hash's product wraps before
// the modulo; a range below one fails and clears the result.
TEST(LmHash, RandomKeysAgreeWithTheReference)
{
    std::mt19937 rng(20261122);
    for (int i = 0; i < 20000; i++) {
        // Mostly zero and high bytes: they exercise the empty-word and smear rules.
        std::string key(rng() % 41, '\0');
        for (auto &c : key) {
            const unsigned pick = rng() % 256;
            c = char(pick < 40 ? 0 : pick < 100 ? 0x80 | (pick & 0x7f) : pick);
        }
        ASSERT_EQ(fold(key), ref_fold(key)) << kes::test::hex(key.data(), key.size());
        const CS_INT range = CS_INT(i % 2 ? rng() % 5000 : rng() % 0x7ffffffe) + 2;
        CS_UINT home, second;
        lm__api_key_to_hash(key.data(), CS_INT(key.size()), range, &home);
        lm__api_key_to_hash2(key.data(), CS_INT(key.size()), range, &second);
        ASSERT_EQ(home, ref_home(key, range));
        ASSERT_EQ(second, ref_second(key, range));
    }
    for (CS_INT range : {0, -5}) {
        CS_UINT home = 77, second = 77;
        EXPECT_EQ(lm__api_key_to_hash(const_cast<CS_CHAR *>("ABCD"), 4, range, &home), CS_FAIL);
        EXPECT_EQ(lm__api_key_to_hash2(const_cast<CS_CHAR *>("ABCD"), 4, range, &second), CS_FAIL);
        EXPECT_EQ(std::pair(home, second), std::pair(0u, 0u));
    }
}

class Lm : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(alloc_.init(&ctx_, 1100, "test context", CS_NULLTERM), CS_SUCCEED); }
    void TearDown() override
    {
        EXPECT_EQ(lm_exit(ctx_, LM_FORCE_EXIT), CS_SUCCEED);
        EXPECT_TRUE(alloc_.clean()) << alloc_.live.size() << " blocks leaked, " << alloc_.dirty << " unwiped";
    }
    LM_HANDLE *list(CS_INT type, const char *name = "list")
    {
        LM_HANDLE *h = nullptr;
        EXPECT_EQ(lm_list_alloc(ctx_, type, const_cast<CS_CHAR *>(name), CS_NULLTERM, &h), CS_SUCCEED);
        return h;
    }
    CS_RETCODE set_ctx(CS_INT property, CS_INT value)
    {
        return lm_property(ctx_, LM_ACT_SET, property, &value, sizeof value, nullptr);
    }

    TrackingAllocator alloc_;
    LM_CONTEXT *ctx_ = nullptr;
};

constexpr int kSteps = 100000;

// Prefixes of one another, an empty key, high bytes, a colliding pair, zero
// words.  They live for the whole program: the manager keeps pointers to them.
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

class LmModel : public Lm {
protected:
    void start(CS_INT type, CS_INT table_size, CS_INT pool, unsigned seed)
    {
        set_ctx(LM_PROP_MAX_TABLESIZE, table_size);
        set_ctx(LM_PROP_MAX_POOLSIZE, pool);
        h = list(type);
        rng.seed(seed);
    }
    int pick(int n) { return int(rng() % unsigned(n)); }
    Result kop(CS_INT operation, int k, uintptr_t data = 0)
    {
        return op(h, operation, keys()[size_t(k)].data(), CS_INT(keys()[size_t(k)].size()), data);
    }
    // After every step: the load; now and then a new pool size, which the
    // model must not notice, or an apply walk counting entries (or slots).
    void after_step(int step, long load, long visits)
    {
        ASSERT_EQ(get_int(h, LM_PROP_HANDLE_LOAD), load) << "step " << step;
        if (pick(100) == 0) {
            ASSERT_EQ(set_int(h, LM_PROP_MAX_POOLSIZE, pick(9)), CS_SUCCEED);
        }
        if (pick(100) == 0) {
            static long calls;
            calls = 0;
            CS_PRINT_FUNC count = [](CS_VOID *) -> CS_RETCODE { return ++calls, CS_SUCCEED; };
            ASSERT_EQ(lm_list_op(h, LM_OP_APPLY, nullptr, 0, &count, nullptr), CS_SUCCEED);
            ASSERT_EQ(calls, visits);
        }
    }

    template <class Model> void run_hash(Model &m, const int (&upto)[7]);

    LM_HANDLE *h = nullptr;
    std::mt19937 rng;
    uintptr_t next_data = 1;
    long peak = 0, full_steps = 0;
};

#define EXPECT_STEP(got, code, data) ASSERT_EQ((got), (Result{(code), uintptr_t(data)})) << "step " << step

TEST_F(LmModel, LinkedListAgreesWithAVector)
{
    start(LM_LIST_DLINK, 10, 4, 1);
    std::vector<uintptr_t> v;
    long cur = -1;
    auto at = [&](long i) { return i < 0 ? uintptr_t(0) : v[size_t(i)]; };
    for (int step = 0; step < kSteps; step++) {
        const int r = pick(100);
        if (r < 25) {
            static const CS_INT positions[] = {LM_OP_FIRST, LM_OP_LAST, LM_POS_BEFORE, LM_POS_AFTER};
            const CS_INT pos = positions[pick(cur < 0 ? 2 : 4)];
            const long where = v.empty() || pos == LM_OP_FIRST ? 0
                               : pos == LM_OP_LAST            ? long(v.size())
                                                              : cur + (pos == LM_POS_AFTER);
            const uintptr_t data = next_data++;
            v.insert(v.begin() + where, data);
            cur = where;
            EXPECT_STEP(op(h, LM_OP_INSERT, nullptr, pos, data), CS_SUCCEED, data);
        } else if (r < 50 && cur >= 0) {
            // The node before becomes the cursor; after the head, the new head.
            v.erase(v.begin() + cur);
            cur = cur == 0 ? (v.empty() ? -1 : 0) : cur - 1;
            EXPECT_STEP(op(h, LM_OP_DELETE), CS_SUCCEED, at(cur));
        } else if (r < 54 && cur >= 0) {
            v[size_t(cur)] = next_data++;
            EXPECT_STEP(op(h, LM_OP_UPDATE, nullptr, 0, at(cur)), CS_SUCCEED, at(cur));
        } else if (r < 84) {
            // At either end a walk fails and leaves cursor and output alone.
            const bool forward = r < 69;
            const long to = cur < 0 ? -1 : forward ? cur + 1 : cur - 1;
            const bool moves = to >= 0 && to < long(v.size());
            cur = moves ? to : cur;
            EXPECT_STEP(op(h, forward ? LM_OP_NEXT : LM_OP_PREVIOUS), moves ? CS_SUCCEED : CS_FAIL,
                        moves ? at(cur) : 0xbad);
        } else if (r < 90) {
            cur = v.empty() ? -1 : r < 87 ? 0 : long(v.size()) - 1;
            EXPECT_STEP(op(h, r < 87 ? LM_OP_FIRST : LM_OP_LAST), CS_SUCCEED, at(cur));
        } else {
            EXPECT_STEP(op(h, LM_OP_CURRENT), CS_SUCCEED, at(cur));
        }
        ASSERT_NO_FATAL_FAILURE(after_step(step, long(v.size()), long(v.size())));
    }
}

TEST_F(LmModel, QueueAndStackAgreeWithADeque)
{
    for (CS_INT type : {LM_LIST_QUEUE, LM_LIST_STACK}) {
        SCOPED_TRACE(type);
        start(type, 10, 2, 2);
        std::deque<uintptr_t> model; // the front leaves first
        auto front = [&] { return model.empty() ? uintptr_t(0) : model.front(); };
        auto run = [&](CS_INT operation, uintptr_t data = 0) {
            return type == LM_LIST_STACK ? stack_op(h, operation, data) : op(h, operation, nullptr, 0, data);
        };
        for (int step = 0; step < kSteps; step++) {
            const int r = pick(100);
            if (r < 45) {
                const uintptr_t data = next_data++;
                type == LM_LIST_STACK ? model.push_front(data) : model.push_back(data);
                EXPECT_STEP(run(LM_OP_INSERT, data), CS_SUCCEED, data);
            } else if (r < 90 && !model.empty()) {
                model.pop_front();
                EXPECT_STEP(run(LM_OP_DELETE), CS_SUCCEED, front());
            } else {
                EXPECT_STEP(run(LM_OP_CURRENT), CS_SUCCEED, front());
            }
            ASSERT_NO_FATAL_FAILURE(after_step(step, long(model.size()), long(model.size())));
        }
    }
}

// Chains hold the newest entry first; a search needs equal sizes; deleting
// moves the cursor to the entry before (nearer the head), else the one after.
struct ChainModel {
    std::vector<std::deque<std::pair<int, uintptr_t>>> chains; // key index, data
    int slot = -1;
    long idx = -1, load = 0;

    explicit ChainModel(int size) : chains(size_t(size)) {}
    size_t home(int k) const { return ref_home(keys()[size_t(k)], uint32_t(chains.size())); }
    uintptr_t &entry() { return chains[size_t(slot)][size_t(idx)].second; }
    uintptr_t current() { return slot < 0 ? 0 : entry(); }
    bool on_entry() const { return slot >= 0; }
    bool can_insert() const { return true; }
    bool find(int k)
    {
        const auto &c = chains[home(k)];
        for (size_t i = 0; i < c.size(); i++)
            if (keys()[size_t(c[i].first)] == keys()[size_t(k)])
                return slot = int(home(k)), idx = long(i), true;
        return false;
    }
    void insert(int k, uintptr_t data) { chains[home(k)].push_front({k, data}), slot = int(home(k)), idx = 0, load++; }
    void erase_current()
    {
        auto &c = chains[size_t(slot)];
        c.erase(c.begin() + idx), load--;
        if (idx > 0)
            idx--;
        else if (c.empty())
            slot = -1, idx = -1;
    }
    // Any size from 1 fits; a rebuild re-inserts each chain's head entry once
    // per node of it.
    int new_size(std::mt19937 &rng) const { return 1 + int(rng() % 40); }
    bool fits(int) const { return true; }
    void rebuild(int size)
    {
        ChainModel fresh(size);
        for (const auto &c : chains)
            for (size_t i = 0; i < c.size(); i++)
                fresh.insert(c.front().first, c.front().second);
        *this = std::move(fresh);
    }
    long visits() const { return load; }
};

// Probing starts at (home + second hash) % size and steps by one over every
// slot; a given key matches a stored key it is a prefix of; deleting leaves
// a tombstone under the cursor; apply visits every slot.
struct SlotModel {
    struct Slot {
        LM_NODE_STATE state = LM_INITIALIZED;
        int key = -1;
        uintptr_t data = 0;
    };
    std::vector<Slot> slots;
    long cur = -1, load = 0;

    explicit SlotModel(int size) : slots(size_t(size)) {}
    long size() const { return long(slots.size()); }
    uintptr_t &entry() { return slots[size_t(cur)].data; }
    uintptr_t current() { return cur < 0 ? 0 : entry(); }
    bool on_entry() const { return cur >= 0 && slots[size_t(cur)].state == LM_SET; }
    bool can_insert() const { return load < size(); }
    bool find(int k)
    {
        for (long i = 0, s0 = ref_probe_start(keys()[size_t(k)], uint32_t(size())); i < size(); i++) {
            const size_t s = size_t((s0 + i) % size());
            if (slots[s].state == LM_SET && keys()[size_t(slots[s].key)].starts_with(keys()[size_t(k)]))
                return cur = long(s), true;
        }
        return false;
    }
    void insert(int k, uintptr_t data)
    {
        size_t s = ref_probe_start(keys()[size_t(k)], uint32_t(size()));
        while (slots[s].state == LM_SET)
            s = (s + 1) % slots.size();
        slots[s] = {LM_SET, k, data};
        cur = long(s), load++;
    }
    void erase_current() { slots[size_t(cur)] = {LM_UNSET, -1, 0}, load--; }
    // Often exactly full, sometimes refused for being too small.
    int new_size(std::mt19937 &rng) const
    {
        return std::max<int>(2, int(load + rng() % 3) - 1 + (rng() % 4 == 0 ? int(rng() % 20) : 0));
    }
    bool fits(int size) const { return size >= load; }
    void rebuild(int size)
    {
        SlotModel fresh(size);
        for (const Slot &s : slots)
            if (s.state == LM_SET)
                fresh.insert(s.key, s.data);
        *this = std::move(fresh);
    }
    long visits() const { return size(); }
};

// One driver for both hash kinds: keyed insert, delete, search and update,
// delete and update under the cursor, rebuilds to the model's sizes (a size
// below the load is refused), each step's share of a thousand given by upto.
template <class Model> void LmModel::run_hash(Model &m, const int (&upto)[7])
{
    for (int step = 0; step < kSteps; step++) {
        const int r = pick(1000), k = pick(int(keys().size()));
        const uintptr_t data = next_data++;
        if (r < upto[0] && m.can_insert()) {
            m.insert(k, data);
            EXPECT_STEP(kop(LM_OP_INSERT, k, data), CS_SUCCEED, data);
        } else if (r < upto[1]) { // and whenever an insert cannot be made
            const bool hit = m.find(k);
            if (hit)
                m.erase_current();
            EXPECT_STEP(kop(LM_OP_DELETE, k), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < upto[2]) {
            const bool hit = m.find(k);
            EXPECT_STEP(kop(LM_OP_SEARCH, k), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < upto[3] && m.on_entry()) {
            m.erase_current();
            EXPECT_STEP(op(h, LM_OP_DELETE), CS_SUCCEED, m.current());
        } else if (r < upto[4]) {
            const bool hit = m.find(k);
            if (hit)
                m.entry() = data;
            EXPECT_STEP(kop(LM_OP_UPDATE, k, data), hit ? CS_SUCCEED : LM_NOT_FOUND, m.current());
        } else if (r < upto[5] && m.on_entry()) {
            m.entry() = data;
            EXPECT_STEP(op(h, LM_OP_UPDATE, nullptr, CS_UNUSED, data), CS_SUCCEED, data);
        } else if (r >= upto[5] && r < upto[6]) {
            const int size = m.new_size(rng);
            const bool fits = m.fits(size);
            if (fits)
                m.rebuild(size);
            ASSERT_EQ(set_int(h, LM_PROP_MAX_TABLESIZE, size), fits ? CS_SUCCEED : CS_FAIL) << "step " << step;
            EXPECT_STEP(op(h, LM_OP_CURRENT), CS_SUCCEED, m.current());
        } else {
            EXPECT_STEP(op(h, LM_OP_CURRENT), CS_SUCCEED, m.current());
        }
        ASSERT_NO_FATAL_FAILURE(after_step(step, m.load, m.visits()));
        peak = std::max(peak, m.load);
        full_steps += m.load == m.visits();
    }
}

TEST_F(LmModel, ChainedHashTableAgreesWithChainsOfDeques)
{
    start(LM_LIST_CHASH, 10, 3, 3);
    ChainModel m(10);
    run_hash(m, {220, 420, 650, 700, 750, 780, 784});
    EXPECT_GT(peak, 200) << "long chains, so that the cursor moves inside them";
}

TEST_F(LmModel, OpenAddressingTableNearFullAgreesWithASlotVector)
{
    start(LM_LIST_DHASH, 16, 5, 4);
    SlotModel m(16);
    run_hash(m, {400, 550, 620, 680, 740, 740, 755});
    EXPECT_GT(full_steps, kSteps / 10) << "the table should spend time full";
}

// Clear restores a default and reports nothing; a short buffer is refused
// with the size it needs.
TEST_F(Lm, ContextPropertiesDefaultAndClear)
{
    EXPECT_EQ(std::string(ctx_->context_name, size_t(ctx_->length)), "test context\0"s) << "kept with its NUL";
    for (auto [property, value] :
         {std::pair{LM_PROP_LIST_TYPE, 13}, {LM_PROP_MAX_TABLESIZE, 10}, {LM_PROP_MAX_POOLSIZE, 0}}) {
        CS_INT v = -1, len = -1;
        set_ctx(property, 77);
        EXPECT_EQ(lm_property(ctx_, LM_ACT_CLEAR, property, nullptr, CS_UNUSED, &len), CS_SUCCEED);
        EXPECT_EQ(lm_property(ctx_, LM_ACT_GET, property, &v, 4, nullptr), CS_SUCCEED);
        EXPECT_EQ(std::pair(v, len), std::pair(value, 0)) << property;
    }
    CS_INT v = 0, len = 0;
    EXPECT_EQ(lm_property(ctx_, LM_ACT_GET, LM_PROP_VERSION, &v, CS_UNUSED, &len), CS_SUCCEED);
    EXPECT_EQ(std::pair(v, len), std::pair(1100, 4));
    EXPECT_EQ(lm_property(ctx_, LM_ACT_GET, LM_PROP_LIST_TYPE, &v, 3, &len), CS_FAIL);
    EXPECT_EQ(len, 4);
}

TEST_F(Lm, ListAllocationByKindAndTableSize)
{
    const std::tuple<CS_INT, CS_INT, CS_RETCODE> cases[] = { // kind, table size, result
        {LM_LIST_DLINK, 10, CS_SUCCEED}, {LM_LIST_QUEUE, 10, CS_SUCCEED}, {LM_LIST_STACK, 10, CS_SUCCEED},
        {17, 10, CS_FAIL},               {12, 10, CS_FAIL},               {20, 10, CS_FAIL},
        {LM_LIST_CHASH, 0, CS_FAIL},     {LM_LIST_CHASH, 1, CS_SUCCEED},  {LM_LIST_DHASH, 1, CS_FAIL},
        {LM_LIST_DHASH, 2, CS_SUCCEED},  {LM_LIST_DHASH, -3, CS_FAIL},
    };
    CS_INT live = 0;
    for (auto [type, table_size, rc] : cases) {
        SCOPED_TRACE(testing::Message() << type << " of " << table_size);
        set_ctx(LM_PROP_MAX_TABLESIZE, table_size);
        LM_HANDLE *h = nullptr;
        EXPECT_EQ(lm_list_alloc(ctx_, type, const_cast<CS_CHAR *>("x"), 1, &h), rc);
        if (rc == CS_SUCCEED) {
            live++;
            EXPECT_EQ(get_int(h, LM_PROP_LIST_TYPE), type);
            EXPECT_EQ(ctx_->cxtprop->cur_handleaddr, h) << "a new list becomes current";
            EXPECT_EQ(ctx_->first_handle, h) << "and goes to the front";
        }
        EXPECT_EQ(ctx_->cxtprop->context_load, live);
    }
    set_ctx(LM_PROP_LIST_TYPE, LM_LIST_STACK);
    LM_HANDLE *h = nullptr;
    ASSERT_EQ(lm_list_alloc(ctx_, CS_UNUSED, nullptr, 0, &h), CS_SUCCEED);
    EXPECT_EQ(get_int(h, LM_PROP_LIST_TYPE), LM_LIST_STACK) << "CS_UNUSED takes the context's kind";
    ctx_->lmchkparam = 1;
    EXPECT_EQ(lm_list_alloc(ctx_, LM_LIST_DLINK, nullptr, 0, &h), CS_FAIL) << "checked: a list needs a name";
}

// A name given with CS_NULLTERM keeps its NUL and reads back with one more
// (a short buffer is left alone); a list is selected by a prefix of its name.
TEST_F(Lm, ListNamesAndTheCurrentList)
{
    LM_HANDLE *a = list(LM_LIST_DLINK, "alpha"), *b = list(LM_LIST_DLINK, "beta"), *cur = nullptr;
    CS_INT len = 0;
    EXPECT_EQ(lm_property(ctx_, LM_ACT_GET, LM_PROP_CUR_HANDLEADDR, &cur, CS_UNUSED, &len), CS_SUCCEED);
    EXPECT_EQ(std::pair(cur, len), std::pair(b, 8));
    for (CS_INT buflen : {6, 7}) {
        char name[8] = "#######";
        EXPECT_EQ(lm_list_prop(a, LM_ACT_GET, LM_PROP_HANDLE_NAME, name, buflen, &len), CS_SUCCEED);
        EXPECT_EQ(std::string(name, size_t(len)), buflen < 7 ? "#######"s : "alpha\0\0"s) << buflen;
    }
    const auto select = [&](const char *name, CS_INT n = CS_NULLTERM) {
        return lm_property(ctx_, LM_ACT_SET, LM_PROP_CUR_HANDLENAME, const_cast<char *>(name), n, nullptr);
    };
    EXPECT_EQ(select("beta", 5), CS_SUCCEED) << "the whole name, NUL included";
    EXPECT_EQ(select("alp"), CS_SUCCEED);
    char name[16] = {};
    EXPECT_EQ(lm_property(ctx_, LM_ACT_GET, LM_PROP_CUR_HANDLENAME, name, sizeof name, &len), CS_SUCCEED);
    EXPECT_EQ(std::string(name, size_t(len)), "alpha\0\0"s);
    EXPECT_EQ(select("gamma"), CS_FAIL);
    EXPECT_EQ(select("alphabet"), CS_FAIL) << "longer than any name";
    EXPECT_EQ(lm_property(ctx_, LM_ACT_CLEAR, LM_PROP_CUR_HANDLENAME, nullptr, CS_UNUSED, nullptr), CS_SUCCEED);
    EXPECT_EQ(ctx_->cxtprop->cur_handleaddr, b) << "clear picks the first list";
    EXPECT_EQ(lm_list_drop(b, CS_UNUSED), CS_SUCCEED);
    EXPECT_EQ(ctx_->cxtprop->cur_handleaddr, a) << "dropping the current list makes the first current";
    EXPECT_EQ(lm_list_drop(a, CS_UNUSED), CS_SUCCEED);
    EXPECT_EQ(ctx_->cxtprop->cur_handlename, nullptr);
    ASSERT_EQ(lm_list_alloc(ctx_, LM_LIST_DLINK, const_cast<CS_CHAR *>("abcdef"), 2, &a), CS_SUCCEED);
    EXPECT_EQ(std::string(a->hdlprop->handle_name, 3), "ab\0"s) << "an explicit length stores no NUL";
}

TEST_F(Lm, DropAndExitRefuseNonEmptyUnlessForced)
{
    LM_HANDLE *h = list(LM_LIST_QUEUE);
    op(h, LM_OP_INSERT, nullptr, 0, 1);
    EXPECT_EQ(lm_list_drop(h, CS_UNUSED), CS_FAIL);
    EXPECT_EQ(op(h, LM_OP_CURRENT), (Result{CS_SUCCEED, 1})) << "left intact";
    EXPECT_EQ(lm_exit(ctx_, CS_UNUSED), CS_FAIL);
    EXPECT_EQ(lm_list_drop(h, LM_FORCE_DROP), CS_SUCCEED);
    EXPECT_EQ(ctx_->cxtprop->context_load, 0);
    op(list(LM_LIST_CHASH), LM_OP_INSERT, "k", 1, 1);
    op(list(LM_LIST_DHASH), LM_OP_INSERT, "k", 1, 1); // TearDown's forced exit drops both
    // A null context or list is a quiet failure, not an assertion.
    EXPECT_EQ(lm_exit(nullptr, CS_UNUSED), CS_FAIL);
    EXPECT_EQ(lm_list_drop(nullptr, CS_UNUSED), CS_FAIL);
    EXPECT_EQ(lm_list_op(nullptr, LM_OP_INSERT, nullptr, 0, nullptr, nullptr), CS_FAIL);
    EXPECT_EQ(lm_list_prop(nullptr, LM_ACT_GET, 1, nullptr, CS_UNUSED, nullptr), CS_FAIL);
}

TEST_F(Lm, TableSizeBelongsToHashKindsAndHasAFloor)
{
    for (CS_INT type : {LM_LIST_DLINK, LM_LIST_QUEUE, LM_LIST_STACK}) {
        CS_INT v = 5, len = 9;
        LM_HANDLE *h = list(type);
        for (CS_INT action : {LM_ACT_GET, LM_ACT_SET, LM_ACT_CLEAR})
            EXPECT_EQ(lm_list_prop(h, action, LM_PROP_MAX_TABLESIZE, &v, 4, &len), CS_FAIL) << type;
        EXPECT_EQ(len, 0);
    }
    LM_HANDLE *c = list(LM_LIST_CHASH), *o = list(LM_LIST_DHASH);
    EXPECT_EQ(set_int(c, LM_PROP_MAX_TABLESIZE, 31), CS_SUCCEED);
    EXPECT_EQ(set_int(c, LM_PROP_MAX_TABLESIZE, 0), CS_FAIL);
    EXPECT_EQ(get_int(c, LM_PROP_MAX_TABLESIZE), 31);
    EXPECT_EQ(lm_list_prop(c, LM_ACT_CLEAR, LM_PROP_MAX_TABLESIZE, nullptr, CS_UNUSED, nullptr), CS_SUCCEED);
    EXPECT_EQ(get_int(c, LM_PROP_MAX_TABLESIZE), 10) << "clear takes the context's size";
    EXPECT_EQ(set_int(o, LM_PROP_MAX_TABLESIZE, 1), CS_FAIL);
    EXPECT_EQ(set_int(o, LM_PROP_MAX_TABLESIZE, 2), CS_SUCCEED);
    EXPECT_EQ(get_int(o, LM_PROP_MAX_POOLSIZE), 0) << "the open table never pools";
}

TEST_F(Lm, LinkedListCallerHeldCursor)
{
    LM_HANDLE *h = list(LM_LIST_DLINK);
    EXPECT_EQ(op(h, LM_OP_INSERT, nullptr, 12345, 1).first, CS_SUCCEED) << "no position is read when empty";
    op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, 2);
    op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, 3);
    // A null held cursor starts from the list's own, then lives apart from it.
    DLinkNode *mine = nullptr;
    EXPECT_EQ(op(h, LM_OP_FIRST, &mine), (Result{CS_SUCCEED, 1}));
    EXPECT_EQ(op(h, LM_OP_NEXT, &mine), (Result{CS_SUCCEED, 2}));
    EXPECT_EQ(op(h, LM_OP_CURRENT), (Result{CS_SUCCEED, 3})) << "the list's cursor did not move";
    EXPECT_EQ(op(h, LM_OP_INSERT, &mine, LM_POS_AFTER, 9), (Result{CS_SUCCEED, 9}));
    EXPECT_EQ(op(h, LM_OP_DELETE, &mine), (Result{CS_SUCCEED, 2}));
    EXPECT_EQ(id(mine->data), 2u);
    // A stack takes a null data_out, or one pointing at null, as no output.
    LM_HANDLE *s = list(LM_LIST_STACK);
    CS_VOID **nowhere = nullptr;
    EXPECT_EQ(lm_list_op(s, LM_OP_INSERT, nullptr, 0, d(3), nullptr), CS_SUCCEED);
    EXPECT_EQ(lm_list_op(s, LM_OP_CURRENT, nullptr, 0, nullptr, reinterpret_cast<CS_VOID **>(&nowhere)), CS_SUCCEED);
    EXPECT_EQ(stack_op(s, LM_OP_CURRENT), (Result{CS_SUCCEED, 3}));
}

TEST_F(Lm, WalkFunctionsStopAtTheFirstZero)
{
    static std::vector<uintptr_t> seen;
    static uintptr_t stop_at;
    CS_PRINT_FUNC record = [](CS_VOID *p) -> CS_RETCODE {
        seen.push_back(id(p));
        return id(p) != stop_at;
    };
    for (CS_INT type : {LM_LIST_DLINK, LM_LIST_QUEUE, LM_LIST_STACK}) {
        SCOPED_TRACE(type);
        LM_HANDLE *h = list(type);
        for (uintptr_t i = 1; i <= 4; i++)
            lm_list_op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, d(i), nullptr);
        const std::vector<uintptr_t> order =
            type == LM_LIST_STACK ? std::vector<uintptr_t>{4, 3, 2, 1} : std::vector<uintptr_t>{1, 2, 3, 4};
        const auto walk = [&](CS_INT operation, uintptr_t stop, CS_VOID *fn) {
            seen.clear();
            stop_at = stop;
            return lm_list_op(h, operation, nullptr, 0, fn, nullptr);
        };
        EXPECT_EQ(walk(LM_OP_APPLY, 0, &record), CS_SUCCEED);
        EXPECT_EQ(seen, order);
        EXPECT_EQ(walk(LM_OP_APPLY, order[1], &record), CS_FAIL);
        EXPECT_EQ(seen, std::vector<uintptr_t>(order.begin(), order.begin() + 2));
        CS_PRINT_FUNC nothing = nullptr; // no function: CS_FAIL
        EXPECT_EQ(walk(LM_OP_APPLY, 0, &nothing), CS_FAIL);
        EXPECT_EQ(walk(LM_OP_APPLY, 0, nullptr), CS_FAIL);
        EXPECT_EQ(walk(LM_OP_PRINT_ALL, 0, nullptr), CS_FAIL);
        EXPECT_EQ(walk(LM_OP_PRINT_CURRENT, 0, nullptr), CS_FAIL);
        lm_list_prop(h, LM_ACT_SET, LM_PROP_PRINT_FUNC, &record, CS_UNUSED, nullptr);
        EXPECT_EQ(walk(LM_OP_PRINT_ALL, 0, nullptr), CS_SUCCEED);
        EXPECT_EQ(seen, order);
        lm_list_drop(h, LM_FORCE_DROP);
    }
}

// Print walks go to the debug stream: keys then data chain by chain, or
// every slot of an open table, empty ones included.
TEST_F(Lm, PrintLayoutsOfTheHashTables)
{
    char *text = nullptr;
    size_t size = 0;
    FILE *saved = Com_fp;
    Com_fp = open_memstream(&text, &size);
    CS_PRINT_FUNC fn = [](CS_VOID *p) -> CS_RETCODE {
        comn_debug_print("[%s]", p != nullptr ? static_cast<const char *>(p) : "-");
        return CS_SUCCEED;
    };
    static char a[] = "A", ab[] = "AB"; // both fold to even values
    set_ctx(LM_PROP_MAX_TABLESIZE, 2);
    LM_HANDLE *c = list(LM_LIST_CHASH);
    lm_list_prop(c, LM_ACT_SET, LM_PROP_PRINT_FUNC, &fn, CS_UNUSED, nullptr);
    lm_list_op(c, LM_OP_INSERT, a, 1, a, nullptr);
    lm_list_op(c, LM_OP_INSERT, ab, 2, ab, nullptr);
    EXPECT_EQ(lm_list_op(c, LM_OP_PRINT_ALL, nullptr, 0, nullptr, nullptr), CS_SUCCEED);
    EXPECT_EQ(lm_list_op(c, LM_OP_PRINT_CURRENT, a, 1, nullptr, nullptr), CS_SUCCEED);
    lm_list_op(c, LM_OP_DELETE, ab, 2, nullptr, nullptr);
    lm_list_op(c, LM_OP_DELETE, a, 1, nullptr, nullptr);
    EXPECT_EQ(lm_list_op(c, LM_OP_PRINT_CURRENT, nullptr, CS_UNUSED, nullptr, nullptr), CS_SUCCEED);
    EXPECT_EQ(lm_list_op(c, LM_OP_PRINT_CURRENT, a, 1, nullptr, nullptr), LM_NOT_FOUND);
    set_ctx(LM_PROP_MAX_TABLESIZE, 3);
    LM_HANDLE *o = list(LM_LIST_DHASH);
    lm_list_prop(o, LM_ACT_SET, LM_PROP_PRINT_FUNC, &fn, CS_UNUSED, nullptr);
    lm_list_op(o, LM_OP_INSERT, a, 1, a, nullptr);
    EXPECT_EQ(lm_list_op(o, LM_OP_PRINT_ALL, nullptr, 0, nullptr, nullptr), CS_SUCCEED);
    std::fclose(Com_fp);
    Com_fp = saved;
    std::string row = "[-][-][-]";
    row.replace(ref_probe_start("A", 3) * 3, 3, "[A]");
    EXPECT_EQ(std::string(text, size), "\nKeys:\n[AB][A]\nData:\n[AB][A]\n\n***Chain empty***\n[A]\nNULL\n"
                                       "Keys:\n" + row + "\nData:\n" + row + "\n");
    std::free(text);
}

TEST_F(Lm, PoolFillsAheadRecyclesAndResizes)
{
    set_ctx(LM_PROP_MAX_POOLSIZE, 3);
    LM_HANDLE *h = list(LM_LIST_DLINK);
    const long before = alloc_.calls;
    for (uintptr_t i = 1; i <= 4; i++)
        op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, i);
    EXPECT_EQ(alloc_.calls, before + 1) << "three of four nodes came from the pool";
    for (int i = 0; i < 4; i++)
        op(h, LM_OP_DELETE);
    EXPECT_EQ(h->free_nodes, 3) << "the fourth went back to the allocator";
    // Growth adds the difference; shrinking frees what the pool holds.
    for (auto [size, rc] : {std::pair{5, CS_SUCCEED}, {-1, CS_FAIL}, {1, CS_SUCCEED}, {0, CS_SUCCEED}}) {
        EXPECT_EQ(set_int(h, LM_PROP_MAX_POOLSIZE, size), rc) << size;
        EXPECT_EQ(h->free_nodes, rc == CS_SUCCEED ? size : 5) << size;
    }
    EXPECT_EQ(lm_list_prop(h, LM_ACT_CLEAR, LM_PROP_MAX_POOLSIZE, nullptr, CS_UNUSED, nullptr), CS_SUCCEED);
    EXPECT_EQ(get_int(h, LM_PROP_MAX_POOLSIZE), 3) << "clear takes the context's value";
}

TEST(LmMemory, ContextAndEveryListKindFailCleanlyAtEveryAllocation)
{
    for (long k = 0; k < 3; k++) {
        TrackingAllocator a;
        a.fail_at = k;
        LM_CONTEXT *c = nullptr;
        EXPECT_EQ(a.init(&c, 1200, "n", 1), CS_MEM_ERROR) << k;
        EXPECT_EQ(c, nullptr);
        EXPECT_TRUE(a.clean()) << k;
    }
    for (CS_INT type : {LM_LIST_DLINK, LM_LIST_CHASH, LM_LIST_DHASH, LM_LIST_QUEUE, LM_LIST_STACK}) {
        for (long k = 0;; k++) {
            SCOPED_TRACE(testing::Message() << type << " failing at " << k);
            TrackingAllocator a;
            LM_CONTEXT *c = nullptr;
            ASSERT_EQ(a.init(&c), CS_SUCCEED);
            CS_INT pool = 4;
            lm_property(c, LM_ACT_SET, LM_PROP_MAX_POOLSIZE, &pool, 4, nullptr);
            a.fail_at = a.calls + k;
            LM_HANDLE *h = nullptr;
            const CS_RETCODE rc = lm_list_alloc(c, type, const_cast<CS_CHAR *>("l"), CS_NULLTERM, &h);
            EXPECT_EQ(c->cxtprop->context_load, rc == CS_SUCCEED ? 1 : 0);
            EXPECT_EQ(c->first_handle == nullptr, rc != CS_SUCCEED);
            EXPECT_EQ(lm_exit(c, LM_FORCE_EXIT), CS_SUCCEED);
            EXPECT_TRUE(a.clean());
            if (rc == CS_SUCCEED) {
                EXPECT_GT(k, 3) << "every allocation of the list was made to fail";
                break;
            }
            EXPECT_EQ(rc, CS_MEM_ERROR);
        }
    }
}

TEST_F(Lm, FailedInsertRebuildOrPoolGrowthLeavesTheListAsItWas)
{
    LM_HANDLE *h = list(LM_LIST_CHASH);
    for (uintptr_t i = 0; i < 6; i++)
        op(h, LM_OP_INSERT, &"abcdef"[i], 1, i + 1);
    CS_VOID *state = h->list_state;
    alloc_.fail_at = alloc_.calls;
    EXPECT_EQ(op(h, LM_OP_INSERT, "g", 1, 7), (Result{CS_MEM_ERROR, 6}));
    for (long k = 0; k < 8; k++) { // at the table, then at each re-insert
        alloc_.fail_at = alloc_.calls + k;
        EXPECT_EQ(set_int(h, LM_PROP_MAX_TABLESIZE, 13), CS_MEM_ERROR) << k;
        EXPECT_EQ(h->list_state, state);
        EXPECT_EQ(std::pair(get_int(h, LM_PROP_MAX_TABLESIZE), get_int(h, LM_PROP_HANDLE_LOAD)), std::pair(10, 6));
        EXPECT_EQ(op(h, LM_OP_SEARCH, "c", 1), (Result{CS_SUCCEED, 3}));
    }
    alloc_.fail_at = alloc_.calls + 2;
    EXPECT_EQ(set_int(h, LM_PROP_MAX_POOLSIZE, 5), CS_MEM_ERROR);
    EXPECT_EQ(std::pair(h->free_nodes, get_int(h, LM_PROP_MAX_POOLSIZE)), std::pair(0, 0));
}

TEST(LmDeathTest, ProgrammingErrorsEndTheProcess)
{
    CS_UINT hash;
    EXPECT_BOMB(lm__api_key_to_hash2(const_cast<CS_CHAR *>("k"), 1, 1, &hash)); // nothing to divide by
    LM_CONTEXT *c = nullptr;
    EXPECT_BOMB(lm_initlm(1099, nullptr, 0, &c)); // below the first version
    ASSERT_EQ(lm_initlm(1100, nullptr, 0, &c), CS_SUCCEED);
    CS_INT two = 2, v = 0;
    lm_property(c, LM_ACT_SET, LM_PROP_MAX_TABLESIZE, &two, 4, nullptr);
    LM_HANDLE *h = nullptr, *q = nullptr, *t = nullptr;
    EXPECT_BOMB(lm_list_alloc(c, 15, nullptr, 0, &h)); // the reserved kind
    lm_list_alloc(c, LM_LIST_DLINK, nullptr, 0, &h);
    lm_list_alloc(c, LM_LIST_QUEUE, nullptr, 0, &q);
    lm_list_alloc(c, LM_LIST_DHASH, nullptr, 0, &t);
    EXPECT_BOMB(lm_list_op(h, LM_OP_SEARCH, nullptr, 0, nullptr, nullptr)); // not a list operation
    EXPECT_BOMB(lm_list_op(q, LM_OP_DELETE, nullptr, 0, nullptr, nullptr)); // empty
    lm_list_op(t, LM_OP_INSERT, const_cast<char *>("a"), 1, nullptr, nullptr);
    lm_list_op(t, LM_OP_INSERT, const_cast<char *>("b"), 1, nullptr, nullptr);
    EXPECT_BOMB(lm_list_op(t, LM_OP_INSERT, const_cast<char *>("c"), 1, nullptr, nullptr)); // full
    EXPECT_BOMB(lm_list_prop(h, LM_ACT_SET, LM_PROP_HANDLE_LOAD, &v, CS_UNUSED, nullptr));   // read-only
    EXPECT_BOMB(lm_exit(c, LM_FORCE_DROP));
    lm_exit(c, LM_FORCE_EXIT);
}

} // namespace
