// Thread layer, state-table drivers, application global and byte tools.
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "kesintl.h"
#include "runtime/appglobal.h"
#include "support/context.h"

namespace {

using namespace std::string_literals;

// ---- thread layer -----------------------------------------------------------

TEST(ThreadShim, CreatorsStoreNullAndEverythingSucceeds)
{
    using Create = CS_RETCODE (*)(void **);
    for (Create create : {Create(comn_create_mutex), Create(comn_create_event), Create(comn_create_sem)}) {
        void *h = &h;
        EXPECT_EQ(create(&h), CS_SUCCEED);
        EXPECT_EQ(h, nullptr);
    }
    using Op = CS_RETCODE (*)(void *);
    for (Op o : {Op(comn_delete_mutex), Op(comn_take_mutex), Op(comn_try_mutex), Op(comn_release_mutex),
                 Op(comn_delete_event), Op(comn_reset_event), Op(comn_signal_event), Op(comn_delete_sem),
                 Op(comn_release_sem)})
        EXPECT_EQ(o(nullptr), CS_SUCCEED);
    EXPECT_EQ(comn_waitfor_event(nullptr, 1000), CS_SUCCEED);
    comn_lock_global();
    comn_unlock_global();
    comn_yield();

    static bool ran = false;
    CS_THREAD_FUNC body = [](CS_VOID *) -> CS_VOID * {
        ran = true;
        return nullptr;
    };
    void *t = &t;
    EXPECT_EQ(comn_create_thread(&t, body, nullptr), CS_SUCCEED);
    EXPECT_EQ(t, nullptr);
    EXPECT_EQ(comn_create_thread_no_alloc(nullptr, body, nullptr), CS_SUCCEED);
    EXPECT_FALSE(ran) << "the shim runs nothing";
}

TEST(ThreadShim, Identifiers)
{
    EXPECT_EQ(comn_threadid(), CS_UNUSED);
    EXPECT_EQ(comn_thread_id(), CS_INT(getpid()));
    EXPECT_TRUE(comn_thread_equal(comn_threadid(), CS_UNUSED));
    EXPECT_FALSE(comn_thread_equal(1, 2));

    CS_INT buf[2] = {7, 7}, len = 0;
    EXPECT_EQ(comn_get_tid(buf, 4, &len), CS_SUCCEED);
    EXPECT_EQ(buf[0], CS_UNUSED);
    EXPECT_EQ(buf[1], 7);
    EXPECT_EQ(len, 4);

    struct Row {
        CS_INT buflen;
        CS_RETCODE rc;
    } rows[] = {{-1, CS_FAIL}, {0, CS_FAIL}, {3, CS_FAIL}, {4, CS_SUCCEED}, {8, CS_SUCCEED}};
    for (auto r : rows) {
        CS_INT out[2] = {7, 7};
        len = -1;
        EXPECT_EQ(comn_get_default_tid(out, r.buflen, &len), r.rc) << r.buflen;
        EXPECT_EQ(out[0], r.rc == CS_SUCCEED ? 0 : 7);
        EXPECT_EQ(out[1], 7);
        EXPECT_EQ(len, r.rc == CS_SUCCEED ? 4 : -1);
    }
    CS_INT out = 7;
    EXPECT_EQ(comn_get_default_tid(&out, 4, nullptr), CS_SUCCEED);
    EXPECT_EQ(out, 0);
}

TEST(ThreadShim, AKeyIsOneProcessWideCell)
{
    void *key = nullptr;
    ASSERT_EQ(comn_create_key(&key), CS_SUCCEED);
    EXPECT_EQ(comn_get_threaduserdata(key), nullptr);
    int value;
    EXPECT_EQ(comn_set_threaduserdata(key, &value), CS_SUCCEED);
    EXPECT_EQ(comn_get_threaduserdata(key), &value);
    EXPECT_EQ(comn_drop_key(key), CS_SUCCEED);
}

// ---- state tables --------------------------------------------------------------

// A three-state machine: 0 idle, 1 busy, 2 done.
struct Machine {
    CS_EVENT ver0[3] = {1, 2, 255}, ver1[2] = {3, 255}, ver2[1] = {255};
    CS_EVENT *ver[3] = {ver0, ver1, ver2};
    CS_EVENT_NS tr0[3] = {{1, 1}, {2, 149}, {255, 0}};
    CS_EVENT_NS tr1[3] = {{3, 2}, {4, 0}, {255, 0}};
    CS_EVENT_NS tr2[1] = {{255, 0}};
    CS_EVENT_NS *trans[3] = {tr0, tr1, tr2};
    CS_DEPEND dep[3] = {{3, 1}, {4, 2}, {255, 0}};
    CS_ST_TABLE st{};
    CS_NS_TABLE ns{};

    Machine()
    {
        st.st_name = const_cast<char *>("machine");
        st.st_numstates = 3;
        st.st_ver = ver;
        st.st_depend = dep;
        st.st_trans = trans;
        ns.nstable = trans;
        ns.nsnumstates = 3;
    }
};

TEST(StateTables, VerifyDependAndTransitions)
{
    Machine m;
    struct Row {
        CS_STATE state;
        CS_EVENT event;
        bool permitted;
        CS_STATE st_next, ns_next;
    } rows[] = {
        {0, 1, true, 1, 1},       // an ordinary transition
        {0, 2, true, 0, 149},     // 149: stay, untranslated by com_ns_trans
        {0, 3, false, 254, 149},  // no entry
        {1, 3, true, 2, 2},
        {1, 4, false, 0, 0},      // a transition need not be permitted
        {2, 1, false, 254, 149},  // empty lists
        {0, 255, false, 254, 149} // the terminator is no event
    };
    for (auto r : rows) {
        SCOPED_TRACE(testing::Message() << int(r.state) << "/" << int(r.event));
        EXPECT_EQ(com_st_ver(&m.st, r.state, r.event), r.permitted);
        EXPECT_EQ(com_st_trans(&m.st, r.state, r.event), r.st_next);
        EXPECT_EQ(com_ns_trans(&m.ns, r.state, r.event), r.ns_next);
    }
    CS_EVENT dep = 0;
    EXPECT_TRUE(com_st_depend(&m.st, 4, &dep));
    EXPECT_EQ(dep, 2);
    dep = 9;
    EXPECT_FALSE(com_st_depend(&m.st, 1, &dep));
    EXPECT_EQ(dep, 9);
    m.st.st_depend = nullptr;
    EXPECT_FALSE(com_st_depend(&m.st, 4, &dep));
}

TEST(StateTables, RandomTablesAgreeWithALookup)
{
    std::mt19937 rng(99);
    for (int round = 0; round < 2000; round++) {
        // Distinct events per state, so the first match is the only one.
        std::vector<CS_EVENT> events(20);
        std::iota(events.begin(), events.end(), CS_EVENT(140));
        std::shuffle(events.begin(), events.end(), rng);
        size_t n = rng() % 8;
        std::vector<CS_EVENT_NS> list;
        for (size_t i = 0; i < n; i++)
            list.push_back({events[i], CS_STATE(rng() % 2 ? 149 : rng() % 5)});
        list.push_back({255, 0});
        CS_EVENT_NS *rows[1] = {list.data()};
        CS_ST_TABLE st{};
        st.st_numstates = 1;
        st.st_trans = rows;
        CS_NS_TABLE ns{};
        ns.nsnumstates = 1;
        ns.nstable = rows;
        CS_EVENT ev = events[rng() % events.size()];
        auto hit = std::find_if(list.begin(), list.end() - 1, [&](auto e) { return e.ens_event == ev; });
        bool found = hit != list.end() - 1;
        CS_STATE stored = found ? hit->ens_nstate : CS_STATE(149);
        ASSERT_EQ(com_ns_trans(&ns, 0, ev), stored);
        ASSERT_EQ(com_st_trans(&st, 0, ev), !found ? 254 : stored == 149 ? 0 : stored);
    }
}

TEST(StateTablesDeathTest, StateOutsideTheTable)
{
    Machine m;
    EXPECT_BOMB(com_st_trans(&m.st, 3, 1));
    EXPECT_NULL_POINTER(com_st_ver(nullptr, 0, 1));
}

// ---- application global ----------------------------------------------------------

CS_VOID *dropped_chain = nullptr;
void record_drop(CS_VOID *chain) { dropped_chain = chain; }

TEST(AppGlobal, SharedRecordCountsUsers)
{
    CS_THREAD first{}, second{};
    CsAppGlobal *a = nullptr, *b = nullptr;
    ASSERT_EQ(com_appglobal_alloc(&a, &first, CS_AG_SHARED), CS_SUCCEED);
    EXPECT_EQ(a, &Application_global);
    EXPECT_EQ(a->ag_accesscnt, 1);
    EXPECT_EQ(a->ag_ctxthread, &first);
    auto *chain = reinterpret_cast<CS_CFGCHAIN *>(&dropped_chain);
    a->ag_cfgchain = chain;
    ASSERT_EQ(com_appglobal_alloc(&b, &second, CS_AG_SHARED), CS_SUCCEED);
    EXPECT_EQ(b, a);
    EXPECT_EQ(b->ag_accesscnt, 2);
    EXPECT_EQ(b->ag_ctxthread, &first) << "a later user keeps the first thread table";
    EXPECT_EQ(b->ag_cfgchain, nullptr) << "and starts without loaded files";

    com__appglobal_set_cfgdrop(record_drop);
    b->ag_cfgchain = chain;
    EXPECT_EQ(com_appglobal_drop(b, CS_AG_SHARED), CS_SUCCEED);
    EXPECT_EQ(Application_global.ag_accesscnt, 1);
    EXPECT_EQ(dropped_chain, nullptr) << "still in use";
    EXPECT_EQ(com_appglobal_drop(a, CS_AG_SHARED), CS_SUCCEED);
    EXPECT_EQ(dropped_chain, static_cast<CS_VOID *>(chain));
    const CS_APPGLOBAL zero{};
    EXPECT_EQ(std::memcmp(&Application_global, &zero, sizeof zero), 0) << "zeroed at the end";
    com__appglobal_set_cfgdrop(nullptr);
}

TEST(AppGlobal, PrivateRecordsAreFreshAndFreed)
{
    CsAppGlobal *a = nullptr, *b = nullptr;
    ASSERT_EQ(com_appglobal_alloc(&a, nullptr, 0), CS_SUCCEED);
    ASSERT_EQ(com_appglobal_alloc(&b, nullptr, 2), CS_SUCCEED) << "only bit 1 selects sharing";
    EXPECT_NE(a, b);
    EXPECT_NE(a, &Application_global);
    EXPECT_EQ(a->ag_accesscnt, 1);
    EXPECT_EQ(com_appglobal_drop(a, 0), CS_SUCCEED);
    EXPECT_EQ(com_appglobal_drop(b, 0), CS_SUCCEED);
}

TEST(AppGlobalDeathTest, MisuseEndsTheProcess)
{
    CsAppGlobal *g = nullptr;
    // A subscriber left at the last drop.
    EXPECT_BOMB({
        com_appglobal_alloc(&g, nullptr, CS_AG_SHARED);
        com_appglobal_alloc(&g, nullptr, CS_AG_SHARED);
        g->ag_subscribers[2] = 1;
        com_appglobal_drop(g, CS_AG_SHARED);
        com_appglobal_drop(g, CS_AG_SHARED);
    });
    // Shared flag with a private record, and a drop below zero.
    EXPECT_BOMB({
        com_appglobal_alloc(&g, nullptr, 0);
        com_appglobal_drop(g, CS_AG_SHARED);
    });
    EXPECT_BOMB(com_appglobal_drop(&Application_global, CS_AG_SHARED));
}

// ---- byte and string tools ----------------------------------------------------------

int sign(int v) { return (v > 0) - (v < 0); }

TEST(ByteTools, ComparisonsTable)
{
    struct Row {
        std::string a, b;
        size_t n;
        int cmp, ncmp, icmp, nicmp;
    } rows[] = {
        {"abc", "abc", 3, 0, 0, 0, 0},
        {"abc", "abd", 3, 'c' - 'd', 'c' - 'd', 'c' - 'd', 'c' - 'd'},
        {"ab", "abc", 3, -'c', -'c', -'c', -'c'},
        {"\xe9", "e", 1, 0xe9 - 'e', 0xe9 - 'e', 0xe9 - 'e', 0xe9 - 'e'}, // unsigned, not negative
        {"ABC", "abc", 3, 'A' - 'a', 'A' - 'a', 0, 0},
        {"a\0x"s, "a\0y"s, 3, 0, 'x' - 'y', 0, 'x' - 'y'}, // n-forms compare past NUL
        {"abc", "abd", 2, 'c' - 'd', 0, 'c' - 'd', 0},
        {"", "", 0, 0, 0, 0, 0},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(kes::test::hex(r.a.data(), r.a.size()) + " vs " + kes::test::hex(r.b.data(), r.b.size()));
        EXPECT_EQ(com_unsignstrcmp(r.a.c_str(), r.b.c_str()), r.cmp);
        EXPECT_EQ(com_unsignstrncmp(r.a.c_str(), r.b.c_str(), r.n), r.ncmp);
        EXPECT_EQ(com_unsignstricmp(r.a.c_str(), r.b.c_str()), r.icmp);
        EXPECT_EQ(com_unsignstrnicmp(r.a.c_str(), r.b.c_str(), r.n), r.nicmp);
    }
}

TEST(ByteTools, RandomComparisonsAgreeWithTheCLibrary)
{
    std::mt19937 rng(5);
    auto text = [&](bool nuls) {
        std::string s(rng() % 6, '\0');
        for (auto &c : s)
            c = "aAbB\x80\xff\x01"[rng() % 7];
        if (nuls && !s.empty() && rng() % 3 == 0)
            s[rng() % s.size()] = '\0';
        return s;
    };
    for (int i = 0; i < 20000; i++) {
        std::string a = text(true), b = text(true);
        size_t n = std::min(a.size(), b.size());
        ASSERT_EQ(sign(com_unsignstrcmp(a.c_str(), b.c_str())), sign(std::strcmp(a.c_str(), b.c_str())));
        ASSERT_EQ(sign(com_unsignstrncmp(a.data(), b.data(), n)), sign(std::memcmp(a.data(), b.data(), n)));
        ASSERT_EQ(sign(com_unsignstricmp(a.c_str(), b.c_str())), sign(strcasecmp(a.c_str(), b.c_str())));
        bool less = std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                                 [](char x, char y) { return (unsigned char)x < (unsigned char)y; });
        bool more = std::lexicographical_compare(b.begin(), b.end(), a.begin(), a.end(),
                                                 [](char x, char y) { return (unsigned char)x < (unsigned char)y; });
        ASSERT_EQ(com_memhilo(a.data(), CS_INT(a.size()), b.data(), CS_INT(b.size())), less ? -1 : more ? 1 : 0);
    }
}

TEST(ByteTools, MemHiLoEdges)
{
    EXPECT_EQ(com_memhilo(nullptr, 0, nullptr, 0), 0);
    EXPECT_EQ(com_memhilo("a", 1, nullptr, 0), 1);
    EXPECT_EQ(com_memhilo("ab", 1, "ac", 1), 0);
    EXPECT_EQ(com_memhilo("\x80", 1, "\x7f", 1), 1);
    EXPECT_EQ(com_memhilo("abc", 2, "abc", 3), -1);
}

TEST(ByteTools, SetString)
{
    CS_CHAR *s = nullptr;
    CS_INT len = -1;
    struct Row {
        const char *source;
        CS_INT sourcelen;
        CS_RETCODE rc;
        std::string value;
    } rows[] = {
        {"hello", CS_NULLTERM, CS_SUCCEED, "hello"},
        {"", CS_NULLTERM, CS_FAIL, "hello"}, // empty: target left alone
        {"xyz", 0, CS_FAIL, "hello"},
        {"xyz", -2, CS_FAIL, "hello"},
        {"xyz", 2, CS_SUCCEED, "xy"},
        {"a\0b", 3, CS_SUCCEED, std::string("a\0b", 3)},
        {"a much longer string than before", CS_NULLTERM, CS_SUCCEED, "a much longer string than before"},
        {nullptr, 3, CS_FAIL, "a much longer string than before"},
    };
    for (const auto &r : rows) {
        EXPECT_EQ(com_setstring(&s, &len, r.source, r.sourcelen), r.rc);
        ASSERT_NE(s, nullptr);
        EXPECT_EQ(len, CS_INT(r.value.size()));
        EXPECT_EQ(std::string(s, size_t(len)), r.value);
        EXPECT_EQ(s[len], '\0');
    }
    EXPECT_EQ(com_setstring(nullptr, &len, "a", 1), CS_FAIL);
    EXPECT_EQ(com_setstring(&s, nullptr, "a", 1), CS_FAIL);
    comn_free(s);
}

TEST(ByteTools, SecureMemsetAndDlsym)
{
    unsigned char buf[16];
    std::memset(buf, 1, sizeof buf);
    EXPECT_EQ(com_secure_memset(buf + 2, 0xAB, 12), buf + 2);
    EXPECT_EQ(buf[1], 1);
    EXPECT_EQ(buf[2], 0xAB);
    EXPECT_EQ(buf[13], 0xAB);
    EXPECT_EQ(buf[14], 1);
    EXPECT_NE(com_dlsym("strlen"), nullptr);
    EXPECT_EQ(com_dlsym("no_such_symbol_in_this_process"), nullptr);
}

} // namespace
