// The list manager beyond the random operation sequences of lm_model_test:
// the key hash against lm_reference.h, context and list life, properties,
// caller-held cursors, walk and print functions, pools, allocation failure
// at every step, and the assertions.
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "kesintl.h"
#include "runtime/lm_impl.h"
#include "support/context.h"
#include "lm_reference.h"
#include "lm_support.h"

namespace {

using namespace std::string_literals;
using lmtest::get_int;
using lmtest::op;
using lmtest::Result;
using lmtest::set_int;
using lmtest::TrackingAllocator;

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
        {"\x01\x80"s, 0xff805a5a},          // a high byte smears over those before it...
        {"\x01\x02\x03\x80"s, 0xffffff80},  // ...so these byte orders collide
        {"\x02\x01\x03\x80"s, 0xffffff80},
    };
    for (const auto &[key, value] : cases) {
        EXPECT_EQ(fold(key), value) << kes::test::hex(key.data(), key.size());
        EXPECT_EQ(lmref::fold(key), value) << kes::test::hex(key.data(), key.size());
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
        ASSERT_EQ(fold(key), lmref::fold(key)) << kes::test::hex(key.data(), key.size());
        const CS_INT range = CS_INT(i % 2 ? rng() % 5000 : rng() % 0x7ffffffe) + 2;
        CS_UINT home, second;
        lm__api_key_to_hash(key.data(), CS_INT(key.size()), range, &home);
        lm__api_key_to_hash2(key.data(), CS_INT(key.size()), range, &second);
        ASSERT_EQ(home, lmref::home(key, range));
        ASSERT_EQ(second, lmref::second(key, range));
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
    void SetUp() override
    {
        ASSERT_EQ(lm_initlm_ex(1100, const_cast<CS_CHAR *>("test context"), CS_NULLTERM, &ctx_,
                               TrackingAllocator::alloc, TrackingAllocator::release, &alloc_),
                  CS_SUCCEED);
    }
    void TearDown() override
    {
        EXPECT_EQ(lm_exit(ctx_, LM_FORCE_EXIT), CS_SUCCEED);
        EXPECT_TRUE(alloc_.live.empty()) << alloc_.live.size() << " blocks leaked";
        EXPECT_EQ(alloc_.unstamped, 0) << "blocks released without wipe and stamp";
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

// Clear restores a default and reports nothing; a short buffer is refused
// with the size it needs.
TEST_F(Lm, ContextPropertiesDefaultAndClear)
{
    EXPECT_EQ(std::string(ctx_->context_name, size_t(ctx_->length)), "test context\0"s) << "kept with its NUL";
    for (auto [property, value] : {std::pair{LM_PROP_LIST_TYPE, 13}, {LM_PROP_MAX_TABLESIZE, 10},
                                   {LM_PROP_MAX_POOLSIZE, 0}}) {
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
    const struct {
        CS_INT type, table_size;
        CS_RETCODE rc;
    } cases[] = {
        {LM_LIST_DLINK, 10, CS_SUCCEED}, {LM_LIST_QUEUE, 10, CS_SUCCEED}, {LM_LIST_STACK, 10, CS_SUCCEED},
        {17, 10, CS_FAIL},               {12, 10, CS_FAIL},               {20, 10, CS_FAIL},
        {LM_LIST_CHASH, 0, CS_FAIL},     {LM_LIST_CHASH, 1, CS_SUCCEED},  {LM_LIST_DHASH, 1, CS_FAIL},
        {LM_LIST_DHASH, 2, CS_SUCCEED},  {LM_LIST_DHASH, -3, CS_FAIL},
    };
    CS_INT live = 0;
    for (auto c : cases) {
        set_ctx(LM_PROP_MAX_TABLESIZE, c.table_size);
        LM_HANDLE *h = nullptr;
        EXPECT_EQ(lm_list_alloc(ctx_, c.type, const_cast<CS_CHAR *>("x"), 1, &h), c.rc) << c.type;
        if (c.rc == CS_SUCCEED) {
            live++;
            EXPECT_EQ(get_int(h, LM_PROP_LIST_TYPE), c.type);
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
    LM_HANDLE *a = list(LM_LIST_DLINK, "alpha");
    LM_HANDLE *b = list(LM_LIST_DLINK, "beta");
    LM_HANDLE *cur = nullptr;
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

TEST_F(Lm, LinkedListCallerHeldCursor)
{
    LM_HANDLE *h = list(LM_LIST_DLINK);
    EXPECT_EQ(op(h, LM_OP_INSERT, nullptr, 12345, 1).rc, CS_SUCCEED) << "no position is read when empty";
    op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, 2);
    op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, 3);
    // A null held cursor starts from the list's own, then lives apart from it.
    DLinkNode *mine = nullptr;
    EXPECT_EQ(op(h, LM_OP_FIRST, &mine), (Result{CS_SUCCEED, 1}));
    EXPECT_EQ(op(h, LM_OP_NEXT, &mine), (Result{CS_SUCCEED, 2}));
    EXPECT_EQ(op(h, LM_OP_CURRENT), (Result{CS_SUCCEED, 3})) << "the list's cursor did not move";
    EXPECT_EQ(op(h, LM_OP_INSERT, &mine, LM_POS_AFTER, 9), (Result{CS_SUCCEED, 9}));
    EXPECT_EQ(op(h, LM_OP_DELETE, &mine), (Result{CS_SUCCEED, 2}));
    EXPECT_EQ(lmtest::id(mine->data), 2u);
    // A stack takes a null data_out, or one pointing at null, as no output.
    LM_HANDLE *s = list(LM_LIST_STACK);
    CS_VOID **nowhere = nullptr;
    EXPECT_EQ(lm_list_op(s, LM_OP_INSERT, nullptr, 0, lmtest::d(3), nullptr), CS_SUCCEED);
    EXPECT_EQ(lm_list_op(s, LM_OP_CURRENT, nullptr, 0, nullptr, reinterpret_cast<CS_VOID **>(&nowhere)), CS_SUCCEED);
    EXPECT_EQ(lmtest::stack_op(s, LM_OP_CURRENT), (Result{CS_SUCCEED, 3}));
}

TEST_F(Lm, WalkFunctionsStopAtTheFirstZero)
{
    static std::vector<uintptr_t> seen;
    static uintptr_t stop_at;
    CS_PRINT_FUNC record = [](CS_VOID *p) -> CS_RETCODE {
        seen.push_back(lmtest::id(p));
        return lmtest::id(p) != stop_at;
    };
    for (CS_INT type : {LM_LIST_DLINK, LM_LIST_QUEUE, LM_LIST_STACK}) {
        SCOPED_TRACE(type);
        LM_HANDLE *h = list(type);
        for (uintptr_t i = 1; i <= 4; i++)
            lm_list_op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, lmtest::d(i), nullptr);
        const std::vector<uintptr_t> order = type == LM_LIST_STACK ? std::vector<uintptr_t>{4, 3, 2, 1}
                                                                   : std::vector<uintptr_t>{1, 2, 3, 4};
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
    row.replace(lmref::probe_start("A", 3) * 3, 3, "[A]");
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
    const std::pair<CS_INT, CS_RETCODE> sizes[] = {{5, CS_SUCCEED}, {-1, CS_FAIL}, {1, CS_SUCCEED}, {0, CS_SUCCEED}};
    for (auto [size, rc] : sizes) {
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
        EXPECT_EQ(lm_initlm_ex(1200, const_cast<CS_CHAR *>("n"), 1, &c, TrackingAllocator::alloc,
                               TrackingAllocator::release, &a),
                  CS_MEM_ERROR);
        EXPECT_EQ(c, nullptr);
        EXPECT_TRUE(a.live.empty() && a.unstamped == 0) << k;
    }
    for (CS_INT type : {LM_LIST_DLINK, LM_LIST_CHASH, LM_LIST_DHASH, LM_LIST_QUEUE, LM_LIST_STACK}) {
        for (long k = 0;; k++) {
            TrackingAllocator a;
            LM_CONTEXT *c = nullptr;
            ASSERT_EQ(lm_initlm_ex(1100, nullptr, 0, &c, TrackingAllocator::alloc, TrackingAllocator::release, &a),
                      CS_SUCCEED);
            CS_INT pool = 4;
            lm_property(c, LM_ACT_SET, LM_PROP_MAX_POOLSIZE, &pool, 4, nullptr);
            a.fail_at = a.calls + k;
            LM_HANDLE *h = nullptr;
            const CS_RETCODE rc = lm_list_alloc(c, type, const_cast<CS_CHAR *>("l"), CS_NULLTERM, &h);
            EXPECT_EQ(c->cxtprop->context_load, rc == CS_SUCCEED ? 1 : 0);
            EXPECT_EQ(c->first_handle == nullptr, rc != CS_SUCCEED);
            EXPECT_EQ(lm_exit(c, LM_FORCE_EXIT), CS_SUCCEED);
            EXPECT_TRUE(a.live.empty() && a.unstamped == 0) << type << " at " << k;
            if (rc == CS_SUCCEED) {
                EXPECT_GT(k, 3) << type;
                break;
            }
            EXPECT_EQ(rc, CS_MEM_ERROR) << type << " at " << k;
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
    EXPECT_BOMB(lm_initlm(1099, nullptr, 0, &c));
    ASSERT_EQ(lm_initlm(1100, nullptr, 0, &c), CS_SUCCEED);
    EXPECT_BOMB(lm_property(c, LM_ACT_GET, LM_PROP_CUR_HANDLEADDR, &hash, CS_UNUSED, nullptr)); // none current
    CS_INT two = 2, v = 0;
    lm_property(c, LM_ACT_SET, LM_PROP_MAX_TABLESIZE, &two, 4, nullptr);
    LM_HANDLE *h = nullptr, *q = nullptr, *t = nullptr;
    EXPECT_BOMB(lm_list_alloc(c, 15, nullptr, 0, &h)); // the reserved kind
    lm_list_alloc(c, LM_LIST_DLINK, nullptr, 0, &h);
    lm_list_alloc(c, LM_LIST_QUEUE, nullptr, 0, &q);
    lm_list_alloc(c, LM_LIST_DHASH, nullptr, 0, &t);
    EXPECT_BOMB(lm_list_op(h, LM_OP_SEARCH, nullptr, 0, nullptr, nullptr)); // not a list operation
    EXPECT_BOMB(lm_list_op(q, LM_OP_DELETE, nullptr, 0, nullptr, nullptr)); // empty
    lm_list_op(h, LM_OP_INSERT, nullptr, 0, nullptr, nullptr);
    EXPECT_BOMB(lm_list_op(h, LM_OP_INSERT, nullptr, 99, nullptr, nullptr)); // no such position
    lm_list_op(t, LM_OP_INSERT, const_cast<char *>("a"), 1, nullptr, nullptr);
    lm_list_op(t, LM_OP_INSERT, const_cast<char *>("b"), 1, nullptr, nullptr);
    EXPECT_BOMB(lm_list_op(t, LM_OP_INSERT, const_cast<char *>("c"), 1, nullptr, nullptr)); // full
    EXPECT_BOMB(lm_list_prop(h, LM_ACT_SET, LM_PROP_HANDLE_LOAD, &v, CS_UNUSED, nullptr)); // read-only
    EXPECT_BOMB(lm_list_prop(h, LM_ACT_GET, LM_PROP_VERSION, &v, 4, nullptr));             // a context property
    EXPECT_BOMB(lm_exit(c, LM_FORCE_DROP));
    lm_exit(c, LM_FORCE_EXIT);
}

} // namespace
