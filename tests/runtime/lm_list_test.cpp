// The list manager by kind: cursor rules of the linked list, queue and stack
// forms, the hash tables' duplicates, tombstones, prefix matches and
// rebuilds, properties, printing, pools, allocation failure at every step,
// and the assertions.
#include <cstdio>
#include <string>
#include <vector>

#include "kesintl.h"
#include "support/context.h"
#include "lm_reference.h"
#include "lm_support.h"

namespace {

using lmtest::d;
using lmtest::op;
using lmtest::Result;
using lmtest::stack_op;
using lmtest::TrackingAllocator;

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
        EXPECT_EQ(alloc_.unstamped, 0) << "records released without wipe and stamp";
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

void expect(Result got, CS_RETCODE rc, uintptr_t out, const char *why = "")
{
    EXPECT_EQ(kes::test::code_name(got.rc), kes::test::code_name(rc)) << why;
    EXPECT_EQ(lmtest::id(got.out), out) << why;
}

constexpr uintptr_t untouched = 0xbad;
constexpr uintptr_t none = 0;

// Reads the whole linked list head to tail through its records.
std::vector<uintptr_t> contents(LM_HANDLE *h)
{
    std::vector<uintptr_t> v;
    for (DLinkNode *n = static_cast<DLinkInfo *>(h->list_state)->head; n; n = n->next)
        v.push_back(lmtest::id(n->data));
    return v;
}

// ---- context and list life ---------------------------------------------------

TEST_F(Lm, ContextDefaultsAndNameWithItsNul)
{
    EXPECT_EQ(ctx_->length, CS_INT(sizeof "test context"));
    EXPECT_EQ(std::string(ctx_->context_name, size_t(ctx_->length)), std::string("test context", 13));
    struct Row {
        CS_INT property, value;
    } rows[] = {{LM_PROP_LIST_TYPE, 13}, {LM_PROP_MAX_TABLESIZE, 10}, {LM_PROP_MAX_POOLSIZE, 0},
                {LM_PROP_VERSION, 1100}, {LM_PROP_CONTEXT_LOAD, 0}};
    for (auto r : rows) {
        CS_INT v = -1, len = -1;
        bool fixed = r.property >= LM_PROP_VERSION;
        EXPECT_EQ(lm_property(ctx_, LM_ACT_GET, r.property, &v, fixed ? CS_UNUSED : 4, &len), CS_SUCCEED);
        EXPECT_EQ(v, r.value) << r.property;
        EXPECT_EQ(len, 4);
        if (!fixed) {
            EXPECT_EQ(set_ctx(r.property, 77), CS_SUCCEED);
            EXPECT_EQ(lm_property(ctx_, LM_ACT_GET, r.property, &v, 4, &len), CS_SUCCEED);
            EXPECT_EQ(v, 77);
            EXPECT_EQ(lm_property(ctx_, LM_ACT_CLEAR, r.property, nullptr, CS_UNUSED, &len), CS_SUCCEED);
            EXPECT_EQ(len, 0) << "outlen is reset first";
            EXPECT_EQ(lm_property(ctx_, LM_ACT_GET, r.property, &v, 4, nullptr), CS_SUCCEED);
            EXPECT_EQ(v, r.value);
        }
    }
    // A buffer shorter than the integer is refused, with the size needed.
    CS_INT v = 0, len = 0;
    EXPECT_EQ(lm_property(ctx_, LM_ACT_GET, LM_PROP_LIST_TYPE, &v, 3, &len), CS_FAIL);
    EXPECT_EQ(len, 4);
}

TEST_F(Lm, NullContextOrHandleFailsQuietly)
{
    LM_HANDLE *h = nullptr;
    CS_INT len = 9;
    EXPECT_EQ(lm_exit(nullptr, CS_UNUSED), CS_FAIL);
    EXPECT_EQ(lm_list_alloc(nullptr, 13, nullptr, 0, &h), CS_FAIL);
    EXPECT_EQ(lm_list_drop(nullptr, CS_UNUSED), CS_FAIL);
    EXPECT_EQ(lm_list_op(nullptr, LM_OP_INSERT, nullptr, 0, nullptr, nullptr), CS_FAIL);
    EXPECT_EQ(lm_list_prop(nullptr, LM_ACT_GET, 1, nullptr, CS_UNUSED, &len), CS_FAIL);
    EXPECT_EQ(lm_property(nullptr, LM_ACT_GET, 1, nullptr, CS_UNUSED, &len), CS_FAIL);
    EXPECT_EQ(h, nullptr);
}

TEST_F(Lm, ListAllocationByKind)
{
    struct Row {
        CS_INT type;
        CS_RETCODE rc;
    } rows[] = {{LM_LIST_DLINK, CS_SUCCEED}, {LM_LIST_CHASH, CS_SUCCEED}, {LM_LIST_DHASH, CS_SUCCEED},
                {LM_LIST_QUEUE, CS_SUCCEED}, {LM_LIST_STACK, CS_SUCCEED}, {17, CS_FAIL},
                {12, CS_FAIL},               {20, CS_FAIL}};
    CS_INT live = 0;
    for (auto r : rows) {
        LM_HANDLE *h = nullptr;
        EXPECT_EQ(lm_list_alloc(ctx_, r.type, const_cast<CS_CHAR *>("x"), 1, &h), r.rc) << r.type;
        if (r.rc == CS_SUCCEED) {
            live++;
            EXPECT_EQ(lmtest::int_prop(h, LM_PROP_LIST_TYPE), r.type);
            EXPECT_EQ(ctx_->cxtprop->cur_handleaddr, h) << "a new list becomes current";
            EXPECT_EQ(ctx_->first_handle, h) << "and goes to the front";
        }
        EXPECT_EQ(ctx_->cxtprop->context_load, live);
    }
    // CS_UNUSED takes the context's kind.
    set_ctx(LM_PROP_LIST_TYPE, LM_LIST_STACK);
    LM_HANDLE *h = nullptr;
    ASSERT_EQ(lm_list_alloc(ctx_, CS_UNUSED, nullptr, 0, &h), CS_SUCCEED);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_LIST_TYPE), LM_LIST_STACK);
    // With parameter checks on, a list needs a name.
    ctx_->lmchkparam = 1;
    EXPECT_EQ(lm_list_alloc(ctx_, LM_LIST_DLINK, nullptr, 0, &h), CS_FAIL);
}

TEST_F(Lm, HashTablesNeedEnoughSlots)
{
    struct Row {
        CS_INT type, size;
        CS_RETCODE rc;
    } rows[] = {{LM_LIST_CHASH, 0, CS_FAIL}, {LM_LIST_CHASH, 1, CS_SUCCEED}, {LM_LIST_DHASH, 1, CS_FAIL},
                {LM_LIST_DHASH, 2, CS_SUCCEED}, {LM_LIST_DHASH, -3, CS_FAIL}};
    for (auto r : rows) {
        set_ctx(LM_PROP_MAX_TABLESIZE, r.size);
        LM_HANDLE *h = nullptr;
        EXPECT_EQ(lm_list_alloc(ctx_, r.type, nullptr, 0, &h), r.rc) << r.type << " " << r.size;
    }
}

TEST_F(Lm, HandleNameCopiesAndCapacities)
{
    LM_HANDLE *h = list(LM_LIST_DLINK, "abc");
    // Stored with its NUL, so a get needs 3 + 1 + 1 bytes.
    struct Row {
        CS_INT buflen;
        bool copied;
    } rows[] = {{0, false}, {1, false}, {4, false}, {5, true}, {6, true}};
    for (auto r : rows) {
        char buf[8];
        std::memset(buf, '#', sizeof buf);
        CS_INT len = -1;
        EXPECT_EQ(lm_list_prop(h, LM_ACT_GET, LM_PROP_HANDLE_NAME, buf, r.buflen, &len), CS_SUCCEED);
        EXPECT_EQ(len, 5);
        if (r.copied)
            EXPECT_EQ(std::string(buf, 5), std::string("abc\0\0", 5));
        else
            EXPECT_EQ(buf[0], '#') << "a short buffer is not written";
    }
    // An explicit length stores no NUL.
    LM_HANDLE *g = nullptr;
    ASSERT_EQ(lm_list_alloc(ctx_, LM_LIST_DLINK, const_cast<CS_CHAR *>("abcdef"), 2, &g), CS_SUCCEED);
    char buf[8] = {};
    CS_INT len = 0;
    lm_list_prop(g, LM_ACT_GET, LM_PROP_HANDLE_NAME, buf, sizeof buf, &len);
    EXPECT_EQ(len, 3);
    EXPECT_STREQ(buf, "ab");
}

TEST_F(Lm, CurrentListByNameAndAddress)
{
    LM_HANDLE *a = list(LM_LIST_DLINK, "alpha");
    LM_HANDLE *b = list(LM_LIST_DLINK, "beta");
    LM_HANDLE *cur = nullptr;
    CS_INT len = 0;
    EXPECT_EQ(lm_property(ctx_, LM_ACT_GET, LM_PROP_CUR_HANDLEADDR, &cur, CS_UNUSED, &len), CS_SUCCEED);
    EXPECT_EQ(cur, b);
    EXPECT_EQ(len, 8);
    EXPECT_EQ(lm_property(ctx_, LM_ACT_SET, LM_PROP_CUR_HANDLENAME, const_cast<char *>("alp"), 3, nullptr),
              CS_SUCCEED);
    EXPECT_EQ(ctx_->cxtprop->cur_handleaddr, a);
    char name[16] = {};
    EXPECT_EQ(lm_property(ctx_, LM_ACT_GET, LM_PROP_CUR_HANDLENAME, name, sizeof name, &len), CS_SUCCEED);
    EXPECT_STREQ(name, "alpha");
    EXPECT_EQ(len, 7);
    EXPECT_EQ(lm_property(ctx_, LM_ACT_SET, LM_PROP_CUR_HANDLENAME, const_cast<char *>("gamma"), 5, nullptr),
              CS_FAIL);
    EXPECT_EQ(lm_property(ctx_, LM_ACT_SET, LM_PROP_CUR_HANDLENAME, const_cast<char *>("alphabet"), 8, nullptr),
              CS_FAIL)
        << "longer than any name";
    EXPECT_EQ(lm_property(ctx_, LM_ACT_CLEAR, LM_PROP_CUR_HANDLENAME, nullptr, CS_UNUSED, nullptr), CS_SUCCEED);
    EXPECT_EQ(ctx_->cxtprop->cur_handleaddr, b) << "clear picks the first list";
    // Dropping the current list makes the first one current.
    EXPECT_EQ(lm_list_drop(b, CS_UNUSED), CS_SUCCEED);
    EXPECT_EQ(ctx_->cxtprop->cur_handleaddr, a);
    EXPECT_EQ(lm_list_drop(a, CS_UNUSED), CS_SUCCEED);
    EXPECT_EQ(ctx_->cxtprop->cur_handleaddr, nullptr);
    EXPECT_EQ(ctx_->cxtprop->cur_handlename, nullptr);
}

TEST_F(Lm, DropAndExitRefuseNonEmptyUnlessForced)
{
    LM_HANDLE *h = list(LM_LIST_QUEUE);
    op(h, LM_OP_INSERT, nullptr, 0, d(1));
    EXPECT_EQ(lm_list_drop(h, CS_UNUSED), CS_FAIL);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_HANDLE_LOAD), 1) << "left intact";
    expect(op(h, LM_OP_CURRENT), CS_SUCCEED, 1);
    EXPECT_EQ(lm_exit(ctx_, CS_UNUSED), CS_FAIL);
    EXPECT_EQ(lm_list_drop(h, LM_FORCE_DROP), CS_SUCCEED);
    EXPECT_EQ(ctx_->cxtprop->context_load, 0);
    list(LM_LIST_CHASH);
    list(LM_LIST_DHASH);
    // TearDown's forced exit drops both.
}

// ---- doubly linked list --------------------------------------------------------

// One step of a linked-list script: operation, position, data, and what it
// must answer, with the list's contents after it.
struct Step {
    CS_INT op;
    CS_INT pos;
    uintptr_t data;
    CS_RETCODE rc;
    uintptr_t out;
    std::vector<uintptr_t> after;
};

void run_script(LM_HANDLE *h, const std::vector<Step> &script)
{
    int i = 0;
    for (const auto &s : script) {
        SCOPED_TRACE(testing::Message() << "step " << i++ << " op " << s.op);
        expect(op(h, s.op, nullptr, s.pos, d(s.data)), s.rc, s.out);
        EXPECT_EQ(contents(h), s.after);
        EXPECT_EQ(lmtest::int_prop(h, LM_PROP_HANDLE_LOAD), CS_INT(s.after.size()));
    }
}

TEST_F(Lm, LinkedListInsertPositionsMoveHeadAndTail)
{
    LM_HANDLE *h = list(LM_LIST_DLINK);
    run_script(h, {
                      {LM_OP_FIRST, 0, 0, CS_SUCCEED, none, {}},
                      {LM_OP_INSERT, 12345, 1, CS_SUCCEED, 1, {1}}, // position not read when empty
                      {LM_OP_INSERT, LM_POS_BEFORE, 2, CS_SUCCEED, 2, {2, 1}},
                      {LM_OP_INSERT, LM_POS_AFTER, 3, CS_SUCCEED, 3, {2, 3, 1}},
                      {LM_OP_LAST, 0, 0, CS_SUCCEED, 1, {2, 3, 1}},
                      {LM_OP_INSERT, LM_POS_AFTER, 4, CS_SUCCEED, 4, {2, 3, 1, 4}},
                      {LM_OP_INSERT, LM_OP_FIRST, 5, CS_SUCCEED, 5, {5, 2, 3, 1, 4}},
                      {LM_OP_INSERT, LM_OP_LAST, 6, CS_SUCCEED, 6, {5, 2, 3, 1, 4, 6}},
                      {LM_OP_FIRST, 0, 0, CS_SUCCEED, 5, {5, 2, 3, 1, 4, 6}},
                      {LM_OP_INSERT, LM_POS_BEFORE, 7, CS_SUCCEED, 7, {7, 5, 2, 3, 1, 4, 6}},
                      {LM_OP_UPDATE, 0, 70, CS_SUCCEED, 70, {70, 5, 2, 3, 1, 4, 6}},
                  });
    auto *info = static_cast<DLinkInfo *>(h->list_state);
    EXPECT_EQ(lmtest::id(info->head->data), 70u);
    EXPECT_EQ(lmtest::id(info->tail->data), 6u);
    EXPECT_EQ(info->head->previous, nullptr);
    EXPECT_EQ(info->tail->next, nullptr);
}

TEST_F(Lm, LinkedListDeleteMovesCursorAsymmetrically)
{
    LM_HANDLE *h = list(LM_LIST_DLINK);
    for (uintptr_t i = 1; i <= 5; i++)
        op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, d(i));
    run_script(h, {
                      // Middle: the node before becomes the cursor.
                      {LM_OP_FIRST, 0, 0, CS_SUCCEED, 1, {1, 2, 3, 4, 5}},
                      {LM_OP_NEXT, 0, 0, CS_SUCCEED, 2, {1, 2, 3, 4, 5}},
                      {LM_OP_NEXT, 0, 0, CS_SUCCEED, 3, {1, 2, 3, 4, 5}},
                      {LM_OP_DELETE, 0, 0, CS_SUCCEED, 2, {1, 2, 4, 5}},
                      // Head: the new head.
                      {LM_OP_PREVIOUS, 0, 0, CS_SUCCEED, 1, {1, 2, 4, 5}},
                      {LM_OP_DELETE, 0, 0, CS_SUCCEED, 2, {2, 4, 5}},
                      // Tail: the new tail.
                      {LM_OP_LAST, 0, 0, CS_SUCCEED, 5, {2, 4, 5}},
                      {LM_OP_DELETE, 0, 0, CS_SUCCEED, 4, {2, 4}},
                      {LM_OP_DELETE, 0, 0, CS_SUCCEED, 2, {2}},
                      // The last node: everything null, and CURRENT still succeeds.
                      {LM_OP_DELETE, 0, 0, CS_SUCCEED, none, {}},
                      {LM_OP_CURRENT, 0, 0, CS_SUCCEED, none, {}},
                      {LM_OP_LAST, 0, 0, CS_SUCCEED, none, {}},
                  });
    auto *info = static_cast<DLinkInfo *>(h->list_state);
    EXPECT_EQ(info->head, nullptr);
    EXPECT_EQ(info->tail, nullptr);
    EXPECT_EQ(h->cur_ptr, nullptr);
}

TEST_F(Lm, LinkedListWalkEndsLeaveCursorAndOutputAlone)
{
    LM_HANDLE *h = list(LM_LIST_DLINK);
    expect(op(h, LM_OP_NEXT), CS_FAIL, untouched);
    expect(op(h, LM_OP_PREVIOUS), CS_FAIL, untouched);
    op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, d(1));
    op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, d(2));
    expect(op(h, LM_OP_NEXT), CS_FAIL, untouched);
    expect(op(h, LM_OP_CURRENT), CS_SUCCEED, 2, "still on the tail");
    op(h, LM_OP_FIRST);
    expect(op(h, LM_OP_PREVIOUS), CS_FAIL, untouched);
    expect(op(h, LM_OP_CURRENT), CS_SUCCEED, 1);
}

TEST_F(Lm, LinkedListCallerHeldCursors)
{
    LM_HANDLE *h = list(LM_LIST_DLINK);
    for (uintptr_t i = 1; i <= 3; i++)
        op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, d(i));
    // A null held cursor starts from the list's own, then lives on its own.
    DLinkNode *mine = nullptr;
    expect(op(h, LM_OP_FIRST, &mine), CS_SUCCEED, 1);
    ASSERT_NE(mine, nullptr);
    expect(op(h, LM_OP_NEXT, &mine), CS_SUCCEED, 2);
    expect(op(h, LM_OP_CURRENT), CS_SUCCEED, 3, "the list's cursor did not move");
    expect(op(h, LM_OP_INSERT, &mine, LM_POS_AFTER, d(9)), CS_SUCCEED, 9);
    EXPECT_EQ(contents(h), (std::vector<uintptr_t>{1, 2, 9, 3}));
    expect(op(h, LM_OP_DELETE, &mine), CS_SUCCEED, 2);
    EXPECT_EQ(lmtest::id(mine->data), 2u);
}

TEST_F(Lm, WalkFunctionsStopAtZero)
{
    static std::vector<uintptr_t> seen;
    static uintptr_t stop_at;
    CS_PRINT_FUNC record = [](CS_VOID *p) -> CS_RETCODE {
        seen.push_back(lmtest::id(p));
        return lmtest::id(p) == stop_at ? 0 : 1;
    };
    for (CS_INT type : {LM_LIST_DLINK, LM_LIST_QUEUE, LM_LIST_STACK}) {
        SCOPED_TRACE(type);
        LM_HANDLE *h = list(type);
        for (uintptr_t i = 1; i <= 4; i++)
            lm_list_op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, d(i), nullptr);
        std::vector<uintptr_t> order = type == LM_LIST_STACK ? std::vector<uintptr_t>{4, 3, 2, 1}
                                                             : std::vector<uintptr_t>{1, 2, 3, 4};
        seen.clear();
        stop_at = 0;
        EXPECT_EQ(lm_list_op(h, LM_OP_APPLY, nullptr, 0, &record, nullptr), CS_SUCCEED);
        EXPECT_EQ(seen, order);
        seen.clear();
        stop_at = order[1];
        EXPECT_EQ(lm_list_op(h, LM_OP_APPLY, nullptr, 0, &record, nullptr), CS_FAIL);
        EXPECT_EQ(seen, std::vector<uintptr_t>(order.begin(), order.begin() + 2));
        // No function: CS_FAIL, for apply and for print.
        CS_PRINT_FUNC nothing = nullptr;
        EXPECT_EQ(lm_list_op(h, LM_OP_APPLY, nullptr, 0, &nothing, nullptr), CS_FAIL);
        EXPECT_EQ(lm_list_op(h, LM_OP_APPLY, nullptr, 0, nullptr, nullptr), CS_FAIL);
        EXPECT_EQ(lm_list_op(h, LM_OP_PRINT_ALL, nullptr, 0, nullptr, nullptr), CS_FAIL);
        EXPECT_EQ(lm_list_op(h, LM_OP_PRINT_CURRENT, nullptr, 0, nullptr, nullptr), CS_FAIL);
        lm_list_prop(h, LM_ACT_SET, LM_PROP_PRINT_FUNC, &record, CS_UNUSED, nullptr);
        seen.clear();
        stop_at = 0;
        EXPECT_EQ(lm_list_op(h, LM_OP_PRINT_ALL, nullptr, 0, nullptr, nullptr), CS_SUCCEED);
        EXPECT_EQ(seen, order);
        lm_list_drop(h, LM_FORCE_DROP);
    }
}

// ---- queue and stack -------------------------------------------------------------

TEST_F(Lm, QueueIsFirstInFirstOut)
{
    LM_HANDLE *h = list(LM_LIST_QUEUE);
    expect(op(h, LM_OP_CURRENT), CS_SUCCEED, none);
    expect(op(h, LM_OP_INSERT, nullptr, 0, d(1)), CS_SUCCEED, 1);
    expect(op(h, LM_OP_INSERT, nullptr, 0, d(2)), CS_SUCCEED, 2);
    expect(op(h, LM_OP_INSERT, nullptr, 0, d(3)), CS_SUCCEED, 3);
    expect(op(h, LM_OP_CURRENT), CS_SUCCEED, 1, "current is the head");
    expect(op(h, LM_OP_DELETE), CS_SUCCEED, 2, "delete reports the new head");
    expect(op(h, LM_OP_DELETE), CS_SUCCEED, 3);
    expect(op(h, LM_OP_DELETE), CS_SUCCEED, none);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_HANDLE_LOAD), 0);
}

TEST_F(Lm, StackIsLastInFirstOutThroughAnIndirectOutput)
{
    LM_HANDLE *h = list(LM_LIST_STACK);
    expect(stack_op(h, LM_OP_CURRENT), CS_SUCCEED, none);
    expect(stack_op(h, LM_OP_INSERT, d(1)), CS_SUCCEED, 1);
    expect(stack_op(h, LM_OP_INSERT, d(2)), CS_SUCCEED, 2);
    expect(stack_op(h, LM_OP_CURRENT), CS_SUCCEED, 2);
    expect(stack_op(h, LM_OP_DELETE), CS_SUCCEED, 1);
    // A null data_out, or one pointing at null, means no output.
    EXPECT_EQ(lm_list_op(h, LM_OP_INSERT, nullptr, 0, d(3), nullptr), CS_SUCCEED);
    CS_VOID **nowhere = nullptr;
    EXPECT_EQ(lm_list_op(h, LM_OP_CURRENT, nullptr, 0, nullptr, reinterpret_cast<CS_VOID **>(&nowhere)),
              CS_SUCCEED);
    expect(stack_op(h, LM_OP_DELETE), CS_SUCCEED, 1);
    expect(stack_op(h, LM_OP_DELETE), CS_SUCCEED, none);
}

// ---- chained hash table --------------------------------------------------------------

TEST_F(Lm, ChainedDuplicatesStandSideBySide)
{
    LM_HANDLE *h = list(LM_LIST_CHASH);
    expect(op(h, LM_OP_INSERT, "key", 3, d(1)), CS_SUCCEED, 1);
    expect(op(h, LM_OP_INSERT, "key", 3, d(2)), CS_SUCCEED, 2);
    expect(op(h, LM_OP_INSERT, "ke", 2, d(3)), CS_SUCCEED, 3);
    expect(op(h, LM_OP_SEARCH, "key", 3), CS_SUCCEED, 2, "the newest wins");
    expect(op(h, LM_OP_SEARCH, "keys", 4), LM_NOT_FOUND, 2, "a miss still reports the cursor");
    expect(op(h, LM_OP_SEARCH, "k", 1), LM_NOT_FOUND, 2, "sizes must be equal");
    expect(op(h, LM_OP_UPDATE, "ke", 2, d(30)), CS_SUCCEED, 30);
    expect(op(h, LM_OP_DELETE, "key", 3), CS_SUCCEED, 1, "cursor to the next of a chain head");
    expect(op(h, LM_OP_SEARCH, "key", 3), CS_SUCCEED, 1);
    expect(op(h, LM_OP_DELETE, "nokey", 5), LM_NOT_FOUND, 1);
    expect(op(h, LM_OP_UPDATE, "nokey", 5, d(5)), LM_NOT_FOUND, 1);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_HANDLE_LOAD), 2);
    // Delete at the cursor, no key: the cursor heads its chain here.
    expect(op(h, LM_OP_DELETE), CS_SUCCEED, none);
    expect(op(h, LM_OP_SEARCH, "key", 3), LM_NOT_FOUND, none);
    expect(op(h, LM_OP_SEARCH, "ke", 2), CS_SUCCEED, 30);
}

// Keys of the given count that share one home slot of a table of size.
std::vector<std::string> colliding(size_t count, CS_INT size)
{
    std::vector<std::string> out;
    uint32_t slot = lmref::home("k0", size);
    for (int i = 0; out.size() < count; i++) {
        std::string k = "k" + std::to_string(i);
        if (lmref::home(k, size) == slot)
            out.push_back(k);
    }
    return out;
}

TEST_F(Lm, ChainedCursorMovesWithinTheChain)
{
    LM_HANDLE *h = list(LM_LIST_CHASH);
    auto keys = colliding(3, 10);
    for (uintptr_t i = 0; i < 3; i++)
        op(h, LM_OP_INSERT, keys[i].data(), CS_INT(keys[i].size()), d(i + 1));
    // Chain: 3, 2, 1.  Deleting the middle moves to the one before (nearer the head).
    expect(op(h, LM_OP_DELETE, keys[1].data(), CS_INT(keys[1].size())), CS_SUCCEED, 3);
    expect(op(h, LM_OP_SEARCH, keys[0].data(), CS_INT(keys[0].size())), CS_SUCCEED, 1);
    expect(op(h, LM_OP_DELETE), CS_SUCCEED, 3, "the tail's previous");
    expect(op(h, LM_OP_DELETE), CS_SUCCEED, none, "the only one");
    auto *info = static_cast<CHashInfo *>(h->list_state);
    for (CS_INT s = 0; s < info->table_size; s++)
        EXPECT_EQ(info->table[s], nullptr);
}

TEST_F(Lm, ChainedRebuildCopiesEachChainHead)
{
    LM_HANDLE *h = list(LM_LIST_CHASH);
    auto keys = colliding(2, 10);
    op(h, LM_OP_INSERT, keys[0].data(), CS_INT(keys[0].size()), d(1));
    op(h, LM_OP_INSERT, keys[1].data(), CS_INT(keys[1].size()), d(2));
    op(h, LM_OP_INSERT, "solo", 4, d(3));
    EXPECT_EQ(lmtest::set_int(h, LM_PROP_MAX_TABLESIZE, 31), CS_SUCCEED);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_MAX_TABLESIZE), 31);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_HANDLE_LOAD), 3);
    // The chain (2, 1) became two copies of 2; 1 is gone.
    expect(op(h, LM_OP_SEARCH, keys[0].data(), CS_INT(keys[0].size())), LM_NOT_FOUND, lmtest::id(lmtest::op(h, LM_OP_CURRENT).out));
    expect(op(h, LM_OP_DELETE, keys[1].data(), CS_INT(keys[1].size())), CS_SUCCEED, 2);
    expect(op(h, LM_OP_SEARCH, keys[1].data(), CS_INT(keys[1].size())), CS_SUCCEED, 2);
    expect(op(h, LM_OP_SEARCH, "solo", 4), CS_SUCCEED, 3);
    // Clear takes the context's size again; a size of 0 is refused.
    EXPECT_EQ(lm_list_prop(h, LM_ACT_CLEAR, LM_PROP_MAX_TABLESIZE, nullptr, CS_UNUSED, nullptr), CS_SUCCEED);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_MAX_TABLESIZE), 10);
    EXPECT_EQ(lmtest::set_int(h, LM_PROP_MAX_TABLESIZE, 0), CS_FAIL);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_MAX_TABLESIZE), 10);
}

TEST_F(Lm, TableSizeIsOnlyForHashKinds)
{
    for (CS_INT type : {LM_LIST_DLINK, LM_LIST_QUEUE, LM_LIST_STACK}) {
        LM_HANDLE *h = list(type);
        CS_INT v = 5, len = 9;
        EXPECT_EQ(lm_list_prop(h, LM_ACT_GET, LM_PROP_MAX_TABLESIZE, &v, 4, &len), CS_FAIL);
        EXPECT_EQ(len, 0);
        EXPECT_EQ(lm_list_prop(h, LM_ACT_SET, LM_PROP_MAX_TABLESIZE, &v, 4, &len), CS_FAIL);
        EXPECT_EQ(lm_list_prop(h, LM_ACT_CLEAR, LM_PROP_MAX_TABLESIZE, &v, 4, &len), CS_FAIL);
    }
}

// ---- open-addressing table ---------------------------------------------------------

TEST_F(Lm, OpenTablePrefixesTombstonesAndFullness)
{
    set_ctx(LM_PROP_MAX_TABLESIZE, 4);
    LM_HANDLE *h = list(LM_LIST_DHASH);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_MAX_POOLSIZE), 0);
    static const char stored[] = "prefix-longer";
    expect(op(h, LM_OP_INSERT, stored, 13, d(1)), CS_SUCCEED, 1);
    expect(op(h, LM_OP_SEARCH, "prefix", 6), CS_SUCCEED, 1, "a shorter given key matches");
    expect(op(h, LM_OP_INSERT, "pre", 3, d(2)), CS_SUCCEED, 2);
    expect(op(h, LM_OP_SEARCH, "prefix", 6), CS_SUCCEED, 1, "a shorter stored key does not");
    expect(op(h, LM_OP_INSERT, "x", 1, d(3)), CS_SUCCEED, 3);
    expect(op(h, LM_OP_INSERT, "y", 1, d(4)), CS_SUCCEED, 4);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_HANDLE_LOAD), 4);
    // Delete leaves a tombstone under the cursor; insert reuses it.
    expect(op(h, LM_OP_DELETE, "x", 1), CS_SUCCEED, none);
    expect(op(h, LM_OP_CURRENT), CS_SUCCEED, none);
    auto *slot = static_cast<DLinkNode *>(h->cur_ptr);
    EXPECT_EQ(slot->state, LM_UNSET);
    expect(op(h, LM_OP_SEARCH, "x", 1), LM_NOT_FOUND, none);
    expect(op(h, LM_OP_INSERT, "z", 1, d(5)), CS_SUCCEED, 5);
    EXPECT_EQ(static_cast<DLinkNode *>(h->cur_ptr), slot) << "the only free slot";
    // Full: shrinking below the load is refused; at the load it is fine.
    EXPECT_EQ(lmtest::set_int(h, LM_PROP_MAX_TABLESIZE, 3), CS_FAIL);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_MAX_TABLESIZE), 4);
    EXPECT_EQ(lmtest::set_int(h, LM_PROP_MAX_TABLESIZE, 1), CS_FAIL);
    expect(op(h, LM_OP_DELETE, "y", 1), CS_SUCCEED, none);
    EXPECT_EQ(lmtest::set_int(h, LM_PROP_MAX_TABLESIZE, 3), CS_SUCCEED);
    for (auto [k, v] : {std::pair{"prefix-longer", 1}, {"pre", 2}, {"z", 5}}) {
        std::string key(k);
        expect(op(h, LM_OP_SEARCH, key.data(), CS_INT(key.size())), CS_SUCCEED, uintptr_t(v));
    }
    // Delete at the cursor, then update by key.
    expect(op(h, LM_OP_DELETE), CS_SUCCEED, none);
    expect(op(h, LM_OP_UPDATE, "pre", 3, d(20)), CS_SUCCEED, 20);
}

TEST_F(Lm, OpenTableProbeStartsAtSumOfHashes)
{
    set_ctx(LM_PROP_MAX_TABLESIZE, 7);
    LM_HANDLE *h = list(LM_LIST_DHASH);
    auto *info = static_cast<DHashInfo *>(h->list_state);
    for (const char *k : {"alpha", "beta", "gamma", "delta", "eps"}) {
        op(h, LM_OP_INSERT, k, CS_INT(std::strlen(k)), d(1));
        // The slot chosen is the first free from the start, wrapping.
        uint32_t s = lmref::probe_start(k, 7);
        while (info->table[s] != h->cur_ptr)
            s = (s + 1) % 7;
        EXPECT_EQ(static_cast<DLinkNode *>(h->cur_ptr)->key, k);
    }
    // The first slot of each key: computed independently.
    auto *first = info->table[lmref::probe_start("alpha", 7)];
    EXPECT_EQ(first->state, LM_SET);
    EXPECT_STREQ(static_cast<const char *>(first->key), "alpha");
}

// ---- printing ---------------------------------------------------------------------

class LmPrint : public Lm {
protected:
    void SetUp() override
    {
        Lm::SetUp();
        out_ = std::tmpfile();
        saved_ = Com_fp;
        Com_fp = out_;
    }
    void TearDown() override
    {
        Com_fp = saved_;
        std::fclose(out_);
        Lm::TearDown();
    }
    std::string printed()
    {
        std::fflush(out_);
        std::string s;
        std::rewind(out_);
        for (int c; (c = std::fgetc(out_)) != EOF;)
            s += char(c);
        return s;
    }
    static CS_RETCODE print_text(CS_VOID *p)
    {
        comn_debug_print("[%s]", p ? static_cast<const char *>(p) : "-");
        return CS_SUCCEED;
    }
    FILE *out_ = nullptr;
    FILE *saved_ = nullptr;
};

TEST_F(LmPrint, ChainedLayout)
{
    set_ctx(LM_PROP_MAX_TABLESIZE, 2);
    LM_HANDLE *h = list(LM_LIST_CHASH);
    CS_PRINT_FUNC fn = print_text;
    EXPECT_EQ(lm_list_prop(h, LM_ACT_SET, LM_PROP_PRINT_FUNC, &fn, CS_UNUSED, nullptr), CS_SUCCEED);
    // "A" folds to 0x415a5a5a (even), "AB" to 0x41425a5a (even), "B" odd.
    static char a[] = "A", ab[] = "AB";
    lm_list_op(h, LM_OP_INSERT, a, 1, a, nullptr);
    lm_list_op(h, LM_OP_INSERT, ab, 2, ab, nullptr);
    EXPECT_EQ(lm_list_op(h, LM_OP_PRINT_ALL, nullptr, 0, nullptr, nullptr), CS_SUCCEED);
    EXPECT_EQ(printed(), "\nKeys:\n[AB][A]\nData:\n[AB][A]\n\n***Chain empty***\n");
    // Print current by key, then the null cursor case.
    EXPECT_EQ(lm_list_op(h, LM_OP_PRINT_CURRENT, a, 1, nullptr, nullptr), CS_SUCCEED);
    lm_list_op(h, LM_OP_DELETE, ab, 2, nullptr, nullptr);
    lm_list_op(h, LM_OP_DELETE, a, 1, nullptr, nullptr);
    EXPECT_EQ(lm_list_op(h, LM_OP_PRINT_CURRENT, nullptr, CS_UNUSED, nullptr, nullptr), CS_SUCCEED);
    EXPECT_EQ(lm_list_op(h, LM_OP_PRINT_CURRENT, a, 1, nullptr, nullptr), LM_NOT_FOUND);
    EXPECT_EQ(printed(), "\nKeys:\n[AB][A]\nData:\n[AB][A]\n\n***Chain empty***\n[A]\nNULL\n");
}

TEST_F(LmPrint, OpenTableLayoutVisitsEverySlot)
{
    set_ctx(LM_PROP_MAX_TABLESIZE, 3);
    LM_HANDLE *h = list(LM_LIST_DHASH);
    CS_PRINT_FUNC fn = print_text;
    lm_list_prop(h, LM_ACT_SET, LM_PROP_PRINT_FUNC, &fn, CS_UNUSED, nullptr);
    static char a[] = "A";
    lm_list_op(h, LM_OP_INSERT, a, 1, a, nullptr);
    EXPECT_EQ(lm_list_op(h, LM_OP_PRINT_ALL, nullptr, 0, nullptr, nullptr), CS_SUCCEED);
    std::string slots[3] = {"[-]", "[-]", "[-]"};
    slots[lmref::probe_start("A", 3)] = "[A]";
    std::string row = slots[0] + slots[1] + slots[2];
    EXPECT_EQ(printed(), "Keys:\n" + row + "\nData:\n" + row + "\n");
}

// ---- properties of a list -----------------------------------------------------------

TEST_F(Lm, ListPropertiesGetSetClear)
{
    LM_HANDLE *h = list(LM_LIST_DLINK);
    LM_CONTEXT *owner = nullptr;
    CS_INT len = 0;
    EXPECT_EQ(lm_list_prop(h, LM_ACT_GET, LM_PROP_CONTEXT_ADDR, &owner, CS_UNUSED, &len), CS_SUCCEED);
    EXPECT_EQ(owner, ctx_);
    EXPECT_EQ(len, 8);
    CS_COMPARE_FUNC cmp = [](CS_VOID *, CS_VOID *, CS_INT) -> CS_RETCODE { return 0; };
    CS_COMPARE_FUNC got = nullptr;
    EXPECT_EQ(lm_list_prop(h, LM_ACT_SET, LM_PROP_COMP_FUNC, &cmp, CS_UNUSED, nullptr), CS_SUCCEED);
    EXPECT_EQ(lm_list_prop(h, LM_ACT_GET, LM_PROP_COMP_FUNC, &got, 8, &len), CS_SUCCEED);
    EXPECT_EQ(got, cmp);
    EXPECT_EQ(lm_list_prop(h, LM_ACT_GET, LM_PROP_COMP_FUNC, &got, 7, &len), CS_FAIL);
    EXPECT_EQ(lm_list_prop(h, LM_ACT_CLEAR, LM_PROP_COMP_FUNC, nullptr, CS_UNUSED, nullptr), CS_SUCCEED);
    EXPECT_EQ(h->hdlprop->comp_func, nullptr);
}

TEST_F(Lm, PoolFillsAheadAndRecycles)
{
    set_ctx(LM_PROP_MAX_POOLSIZE, 3);
    LM_HANDLE *h = list(LM_LIST_DLINK);
    EXPECT_EQ(h->free_nodes, 3);
    long before = alloc_.calls;
    for (uintptr_t i = 1; i <= 3; i++)
        op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, d(i));
    EXPECT_EQ(alloc_.calls, before) << "three inserts came from the pool";
    EXPECT_EQ(h->free_nodes, 0);
    op(h, LM_OP_INSERT, nullptr, LM_OP_LAST, d(4));
    EXPECT_EQ(alloc_.calls, before + 1);
    for (int i = 0; i < 4; i++)
        op(h, LM_OP_DELETE);
    EXPECT_EQ(h->free_nodes, 3) << "the fourth node went back to the allocator";
    // Resize: growth adds the difference, shrinkage frees what the pool has.
    struct Row {
        CS_INT size;
        CS_RETCODE rc;
        CS_INT free_after;
    } rows[] = {{5, CS_SUCCEED, 5}, {-1, CS_FAIL, 5}, {1, CS_SUCCEED, 1}, {0, CS_SUCCEED, 0}};
    for (auto r : rows) {
        EXPECT_EQ(lmtest::set_int(h, LM_PROP_MAX_POOLSIZE, r.size), r.rc) << r.size;
        EXPECT_EQ(h->free_nodes, r.free_after) << r.size;
    }
    EXPECT_EQ(lm_list_prop(h, LM_ACT_CLEAR, LM_PROP_MAX_POOLSIZE, nullptr, CS_UNUSED, nullptr), CS_SUCCEED);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_MAX_POOLSIZE), 3) << "clear takes the context's value";
}

// ---- allocation failure ------------------------------------------------------------

TEST(LmMemory, ContextStartFailsCleanlyAtEveryAllocation)
{
    for (long k = 0; k < 3; k++) {
        TrackingAllocator a;
        a.fail_at = k;
        LM_CONTEXT *c = nullptr;
        EXPECT_EQ(lm_initlm_ex(1200, const_cast<CS_CHAR *>("n"), 1, &c, TrackingAllocator::alloc,
                               TrackingAllocator::release, &a),
                  CS_MEM_ERROR);
        EXPECT_EQ(c, nullptr);
        EXPECT_TRUE(a.live.empty());
        EXPECT_EQ(a.unstamped, 0);
    }
    LM_CONTEXT *c = nullptr;
    ASSERT_EQ(lm_initlm(1100, const_cast<CS_CHAR *>("comnlib list context"), 20, &c), CS_SUCCEED);
    EXPECT_EQ(lm_exit(c, CS_UNUSED), CS_SUCCEED);
}

TEST(LmMemory, EveryListKindFailsCleanlyAtEveryAllocation)
{
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
            CS_RETCODE rc = lm_list_alloc(c, type, const_cast<CS_CHAR *>("l"), CS_NULLTERM, &h);
            if (rc == CS_SUCCEED) {
                EXPECT_GT(k, 3) << type;
                EXPECT_EQ(lm_exit(c, LM_FORCE_EXIT), CS_SUCCEED);
                EXPECT_TRUE(a.live.empty());
                break;
            }
            EXPECT_EQ(rc, CS_MEM_ERROR) << type << " at " << k;
            EXPECT_EQ(c->cxtprop->context_load, 0);
            EXPECT_EQ(c->first_handle, nullptr);
            EXPECT_EQ(lm_exit(c, CS_UNUSED), CS_SUCCEED);
            EXPECT_TRUE(a.live.empty()) << type << " at " << k;
            EXPECT_EQ(a.unstamped, 0);
        }
    }
}

TEST_F(Lm, FailedInsertAndRebuildLeaveTheListAsItWas)
{
    LM_HANDLE *h = list(LM_LIST_CHASH);
    for (uintptr_t i = 0; i < 6; i++) {
        static const char *keys[] = {"a", "b", "c", "d", "e", "f"};
        op(h, LM_OP_INSERT, keys[i], 1, d(i + 1));
    }
    CS_VOID *state = h->list_state;
    alloc_.fail_at = alloc_.calls;
    expect(op(h, LM_OP_INSERT, "g", 1, d(7)), CS_MEM_ERROR, 6);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_HANDLE_LOAD), 6);
    // A rebuild failing at its table, then at each re-insert.
    for (long k = 0; k < 8; k++) {
        alloc_.fail_at = alloc_.calls + k;
        EXPECT_EQ(lmtest::set_int(h, LM_PROP_MAX_TABLESIZE, 13), CS_MEM_ERROR) << k;
        EXPECT_EQ(h->list_state, state);
        EXPECT_EQ(lmtest::int_prop(h, LM_PROP_MAX_TABLESIZE), 10);
        EXPECT_EQ(lmtest::int_prop(h, LM_PROP_HANDLE_LOAD), 6);
        expect(op(h, LM_OP_SEARCH, "c", 1), CS_SUCCEED, 3);
    }
    // Pool growth failing part way keeps the old pool.
    alloc_.fail_at = alloc_.calls + 2;
    EXPECT_EQ(lmtest::set_int(h, LM_PROP_MAX_POOLSIZE, 5), CS_MEM_ERROR);
    EXPECT_EQ(h->free_nodes, 0);
    EXPECT_EQ(lmtest::int_prop(h, LM_PROP_MAX_POOLSIZE), 0);
}

// ---- assertions ---------------------------------------------------------------------

TEST(LmDeathTest, ProgrammingErrorsEndTheProcess)
{
    LM_CONTEXT *c = nullptr;
    EXPECT_BOMB(lm_initlm(1099, nullptr, 0, &c));
    ASSERT_EQ(lm_initlm(1100, nullptr, 0, &c), CS_SUCCEED);
    LM_HANDLE *h = nullptr;
    EXPECT_BOMB(lm_list_alloc(c, 15, nullptr, 0, &h));
    ASSERT_EQ(lm_list_alloc(c, LM_LIST_DLINK, nullptr, 0, &h), CS_SUCCEED);
    EXPECT_BOMB(lm_list_op(h, LM_OP_SEARCH, nullptr, 0, nullptr, nullptr));
    EXPECT_BOMB(lm_list_op(h, LM_OP_DELETE, nullptr, 0, nullptr, nullptr)); // empty list
    lm_list_op(h, LM_OP_INSERT, nullptr, 0, d(1), nullptr);
    EXPECT_BOMB(lm_list_op(h, LM_OP_INSERT, nullptr, 99, d(2), nullptr)); // bad position
    EXPECT_BOMB(lm_list_drop(h, 7));
    EXPECT_BOMB(lm_exit(c, LM_FORCE_DROP));
    CS_INT v = 0;
    EXPECT_BOMB(lm_list_prop(h, LM_ACT_SET, LM_PROP_HANDLE_LOAD, &v, CS_UNUSED, nullptr)); // fixed
    EXPECT_BOMB(lm_list_prop(h, LM_ACT_GET, LM_PROP_LIST_TYPE, &v, 4, nullptr)); // fixed wants CS_UNUSED
    EXPECT_BOMB(lm_list_prop(h, LM_ACT_GET, 4, &v, 4, nullptr));                 // a context property
    EXPECT_BOMB(lm_property(c, 36, LM_PROP_LIST_TYPE, &v, 4, nullptr));
    lm_list_drop(h, LM_FORCE_DROP);
    EXPECT_BOMB(lm_property(c, LM_ACT_GET, LM_PROP_CUR_HANDLEADDR, &h, CS_UNUSED, nullptr)); // none current
    lm_exit(c, CS_UNUSED);
}

TEST(LmDeathTest, QueueEndsAndFullTables)
{
    LM_CONTEXT *c = nullptr;
    ASSERT_EQ(lm_initlm(1100, nullptr, 0, &c), CS_SUCCEED);
    CS_INT two = 2;
    lm_property(c, LM_ACT_SET, LM_PROP_MAX_TABLESIZE, &two, 4, nullptr);
    LM_HANDLE *q = nullptr, *t = nullptr;
    lm_list_alloc(c, LM_LIST_QUEUE, nullptr, 0, &q);
    EXPECT_BOMB(lm_list_op(q, LM_OP_DELETE, nullptr, 0, nullptr, nullptr));
    EXPECT_BOMB(lm_list_op(q, LM_OP_NEXT, nullptr, 0, nullptr, nullptr));
    lm_list_alloc(c, LM_LIST_DHASH, nullptr, 0, &t);
    lm_list_op(t, LM_OP_INSERT, const_cast<char *>("a"), 1, nullptr, nullptr);
    lm_list_op(t, LM_OP_INSERT, const_cast<char *>("b"), 1, nullptr, nullptr);
    EXPECT_BOMB(lm_list_op(t, LM_OP_INSERT, const_cast<char *>("c"), 1, nullptr, nullptr));
    EXPECT_BOMB(lm_list_op(t, LM_OP_NEXT, nullptr, 0, nullptr, nullptr));
    lm_exit(c, LM_FORCE_EXIT);
}

} // namespace
