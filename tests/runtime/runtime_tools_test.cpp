// Thread layer, state-table drivers, application global and byte tools.
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "kesintl.h"
#include "runtime/appglobal.h"
#include "support/context.h"

namespace {

using namespace std::string_literals;

// A key is one process-wide cell; the default thread id needs room for one
// integer, where comn_get_tid does not read the length at all.
TEST(ThreadShim, KeysAndThreadIds)
{
    void *key = nullptr;
    int value;
    ASSERT_EQ(comn_create_key(&key), CS_SUCCEED);
    EXPECT_EQ(comn_set_threaduserdata(key, &value), CS_SUCCEED);
    EXPECT_EQ(comn_get_threaduserdata(key), &value);
    EXPECT_EQ(comn_drop_key(key), CS_SUCCEED);
    CS_INT tid[2] = {7, 7}, len = 0;
    EXPECT_EQ(comn_get_tid(tid, 0, &len), CS_SUCCEED);
    EXPECT_EQ(std::tuple(tid[0], tid[1], len), std::tuple(CS_UNUSED, 7, 4));
    for (auto [buflen, rc] : {std::pair{3, CS_FAIL}, {4, CS_SUCCEED}}) {
        CS_INT out[2] = {7, 7};
        len = -1;
        EXPECT_EQ(comn_get_default_tid(out, buflen, &len), rc) << buflen;
        const bool ok = rc == CS_SUCCEED;
        EXPECT_EQ(std::tuple(out[0], out[1], len), std::tuple(ok ? 0 : 7, 7, ok ? 4 : -1)) << buflen;
    }
}

// Random transition lists against a plain lookup: the first entry of the
// event wins; com_st_trans turns "stay" (149) into the state and a missing
// entry into 254, com_ns_trans gives either as 149.
TEST(StateTables, RandomTablesAgreeWithALookup)
{
    std::mt19937 rng(99);
    for (int round = 0; round < 2000; round++) {
        std::vector<CS_EVENT> events(20);
        std::iota(events.begin(), events.end(), CS_EVENT(140));
        std::shuffle(events.begin(), events.end(), rng);
        std::vector<CS_EVENT_NS> list;
        for (size_t i = 0, n = rng() % 8; i < n; i++)
            list.push_back({events[i], CS_STATE(rng() % 2 ? 149 : rng() % 5)});
        list.push_back({255, 0});
        CS_EVENT_NS *rows[2] = {list.data(), list.data()};
        CS_ST_TABLE st{};
        st.st_numstates = 2, st.st_trans = rows;
        CS_NS_TABLE ns{};
        ns.nsnumstates = 2, ns.nstable = rows;
        const CS_STATE state = CS_STATE(rng() % 2);
        const CS_EVENT ev = events[rng() % events.size()];
        auto hit = std::find_if(list.begin(), list.end() - 1, [&](auto e) { return e.ens_event == ev; });
        const bool found = hit != list.end() - 1;
        const CS_STATE stored = found ? hit->ens_nstate : CS_STATE(149);
        ASSERT_EQ(com_ns_trans(&ns, state, ev), stored);
        ASSERT_EQ(com_st_trans(&st, state, ev), !found ? 254 : stored == 149 ? state : stored);
    }
}

TEST(StateTables, PermittedEventsAndDependencies)
{
    CS_EVENT ver0[] = {1, 2, 255}, ver1[] = {255}, *ver[] = {ver0, ver1};
    CS_DEPEND dep[] = {{3, 1}, {4, 2}, {255, 0}};
    CS_ST_TABLE st{};
    st.st_numstates = 2, st.st_ver = ver, st.st_depend = dep;
    EXPECT_TRUE(com_st_ver(&st, 0, 2));
    EXPECT_FALSE(com_st_ver(&st, 0, 255)) << "the terminator is no event";
    EXPECT_FALSE(com_st_ver(&st, 1, 1));
    CS_EVENT depend = 9;
    EXPECT_FALSE(com_st_depend(&st, 1, &depend));
    EXPECT_EQ(depend, 9) << "untouched when there is none";
    EXPECT_TRUE(com_st_depend(&st, 4, &depend));
    EXPECT_EQ(depend, 2);
    st.st_depend = nullptr;
    EXPECT_FALSE(com_st_depend(&st, 4, &depend));
    EXPECT_BOMB(com_st_ver(&st, 2, 1)); // a state outside the table
    EXPECT_NULL_POINTER(com_st_ver(nullptr, 0, 1));
}

CS_VOID *dropped_chain = nullptr;

TEST(AppGlobal, SharedRecordCountsUsersAndDropsTheChainAtTheEnd)
{
    CS_THREAD first{}, second{};
    CsAppGlobal *a = nullptr, *b = nullptr;
    ASSERT_EQ(com_appglobal_alloc(&a, &first, CS_AG_SHARED), CS_SUCCEED);
    EXPECT_EQ(a, &Application_global);
    auto *chain = reinterpret_cast<CS_CFGCHAIN *>(&dropped_chain);
    a->ag_cfgchain = chain;
    ASSERT_EQ(com_appglobal_alloc(&b, &second, CS_AG_SHARED), CS_SUCCEED);
    EXPECT_EQ(std::pair(b, b->ag_accesscnt), std::pair(a, 2));
    EXPECT_EQ(b->ag_ctxthread, &first) << "a later user keeps the first thread table";
    EXPECT_EQ(b->ag_cfgchain, nullptr) << "and starts without loaded files";
    com__appglobal_set_cfgdrop([](CS_VOID *c) { dropped_chain = c; });
    b->ag_cfgchain = chain;
    EXPECT_EQ(com_appglobal_drop(b, CS_AG_SHARED), CS_SUCCEED);
    EXPECT_EQ(dropped_chain, nullptr) << "still in use";
    EXPECT_EQ(com_appglobal_drop(a, CS_AG_SHARED), CS_SUCCEED);
    EXPECT_EQ(dropped_chain, static_cast<CS_VOID *>(chain));
    const CS_APPGLOBAL zero{};
    EXPECT_EQ(std::memcmp(&Application_global, &zero, sizeof zero), 0) << "zeroed at the end";
    com__appglobal_set_cfgdrop(nullptr);

    ASSERT_EQ(com_appglobal_alloc(&a, nullptr, 0), CS_SUCCEED);
    ASSERT_EQ(com_appglobal_alloc(&b, nullptr, 2), CS_SUCCEED) << "only bit 1 selects sharing";
    EXPECT_TRUE(a != b && a != &Application_global);
    EXPECT_EQ(com_appglobal_drop(a, 0), CS_SUCCEED);
    EXPECT_EQ(com_appglobal_drop(b, 0), CS_SUCCEED);
}

TEST(AppGlobalDeathTest, MisuseEndsTheProcess)
{
    CsAppGlobal *g = nullptr;
    EXPECT_BOMB({ // a subscriber left at the last drop
        com_appglobal_alloc(&g, nullptr, CS_AG_SHARED);
        g->ag_subscribers[2] = 1;
        com_appglobal_drop(g, CS_AG_SHARED);
    });
    EXPECT_BOMB({ // the shared flag with a private record
        com_appglobal_alloc(&g, nullptr, 0);
        com_appglobal_drop(g, CS_AG_SHARED);
    });
    EXPECT_BOMB(com_appglobal_drop(&Application_global, CS_AG_SHARED)); // below zero
}

int sign(int v) { return (v > 0) - (v < 0); }

// Random texts of NULs, cases and high bytes against the C library on
// unsigned bytes; the exact differences are pinned where they matter.
TEST(ByteTools, ComparisonsAgreeWithTheCLibrary)
{
    std::mt19937 rng(5);
    auto text = [&] {
        std::string s(rng() % 6, '\0');
        for (auto &c : s)
            c = "aAbB\x80\xff\x01\0"[rng() % 8];
        return s;
    };
    for (int i = 0; i < 20000; i++) {
        const std::string a = text(), b = text();
        const size_t n = std::min(a.size(), b.size());
        ASSERT_EQ(sign(com_unsignstrcmp(a.c_str(), b.c_str())), sign(std::strcmp(a.c_str(), b.c_str())));
        ASSERT_EQ(sign(com_unsignstrncmp(a.data(), b.data(), n)), sign(std::memcmp(a.data(), b.data(), n)));
        ASSERT_EQ(sign(com_unsignstricmp(a.c_str(), b.c_str())), sign(strcasecmp(a.c_str(), b.c_str())));
        ASSERT_EQ(com_memhilo(a.data(), CS_INT(a.size()), b.data(), CS_INT(b.size())), sign(a.compare(b)))
            << "std::string compares bytes as unsigned";
    }
    EXPECT_EQ(com_unsignstrcmp("\xe9", "e"), 0xe9 - 'e');
    EXPECT_EQ(com_unsignstrncmp("a\0x", "a\0y", 3), 'x' - 'y') << "n-forms compare past a NUL";
    EXPECT_EQ(com_unsignstrnicmp("A\0x", "a\0X", 3), 0);
    EXPECT_EQ(com_unsignstricmp("ab", "ABC"), -'c');
    EXPECT_EQ(com_memhilo(nullptr, 0, nullptr, 0), 0);
    EXPECT_EQ(com_memhilo("abc", 2, "abc", 3), -1);
}

// Each case runs on the string the one before left.
TEST(ByteTools, SetStringReplacesOnlyWithSomething)
{
    CS_CHAR *s = nullptr;
    CS_INT len = -1;
    const struct {
        const char *source;
        CS_INT sourcelen;
        CS_RETCODE rc;
        std::string value;
    } cases[] = {
        {"hello", CS_NULLTERM, CS_SUCCEED, "hello"}, {"", CS_NULLTERM, CS_FAIL, "hello"},
        {"xyz", 0, CS_FAIL, "hello"},                {"xyz", -2, CS_FAIL, "hello"},
        {"xyz", 2, CS_SUCCEED, "xy"},                {"a\0b", 3, CS_SUCCEED, "a\0b"s},
        {"longer than before", CS_NULLTERM, CS_SUCCEED, "longer than before"},
        {nullptr, 3, CS_FAIL, "longer than before"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(com_setstring(&s, &len, c.source, c.sourcelen), c.rc);
        ASSERT_NE(s, nullptr);
        EXPECT_EQ(std::string(s, size_t(len) + 1), c.value + "\0"s);
    }
    EXPECT_EQ(com_setstring(nullptr, &len, "a", 1), CS_FAIL);
    EXPECT_EQ(com_setstring(&s, nullptr, "a", 1), CS_FAIL);
    comn_free(s);
}

} // namespace
