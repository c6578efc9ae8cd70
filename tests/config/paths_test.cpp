// File locations: the home and environment lookups, path composition at
// exact fit / one short / roomy, the environment overrides and their length
// limits, the driver configuration path, the program name and the diagnosis
// of missing localization files.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "config/paths.h"
#include "conv/string_conv.h"
#include "intl/locale_records.h"
#include "kesintl.h"
#include "support/context.h"

#ifndef KESCOMN_SOURCE_HOME
#error "the build must define KESCOMN_SOURCE_HOME"
#endif

namespace {

using Env = std::optional<std::string>;

void set(const char *name, const Env &value)
{
    value ? setenv(name, value->c_str(), 1) : unsetenv(name);
}

CS_CHAR *s(const char *text) { return const_cast<CS_CHAR *>(text); }

CS_CONTEXT ctx{};

// Every test starts from KESTOR=/h, none of the other variables and a zeroed
// context, and leaves the environment as it found it.
class Paths : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const char *name :
             {"KESTOR", "KESTOR_XCS", "KESXCS_IFILE", "KESXCS_TCL_CFG", "KESTOR_TCL_CFG", "LC_ALL", "LANG"}) {
            saved_[name] = std::getenv(name) ? Env(std::getenv(name)) : Env();
            unsetenv(name);
        }
        setenv("KESTOR", "/h", 1);
        com_set_tclcfg(nullptr);
        ctx = CS_CONTEXT{};
    }
    void TearDown() override
    {
        for (auto &[name, value] : saved_)
            set(name.c_str(), value);
        com_set_tclcfg(nullptr);
    }

private:
    std::map<std::string, Env> saved_;
};

TEST_F(Paths, HomeAndEnvironmentLookups)
{
    char buf[COM_PATH_MAX];
    for (const Env &value : {Env{}, Env{""}}) { // unset or empty: the build's default
        set("KESTOR", value);
        ASSERT_EQ(intl_home(buf, sizeof buf), static_cast<int>(std::strlen(KESCOMN_DEFAULT_HOME)));
        EXPECT_STREQ(buf, KESCOMN_DEFAULT_HOME);
    }
    setenv("KESTOR", "/abcd", 1);
    setenv("KESTOR_XCS", "", 1);
    auto var = [](const char *name) { return [name](char *b, int n) { return intlgetenv(b, n, name); }; };
    const struct {
        std::function<int(char *, int)> call;
        int buflen, expected;
        const char *text;
    } cases[] = {
        {intl_home, 6, 5, "/abcd"},      {intl_home, 5, INTL_ENOSPACE, "untouched"},
        {intl_home, 0, INTL_EBADARG, "untouched"},
        {var("KESTOR"), 6, 5, "/abcd"},  {var("KESTOR"), 5, INTL_ENOSPACE, "untouched"},
        {var("KESXCS_IFILE"), 6, 0, ""}, {var("KESTOR_XCS"), 1, 0, ""}, // unset and empty alike
        {var(nullptr), 6, INTL_EBADARG, "untouched"},
    };
    for (const auto &c : cases) {
        char b[16] = "untouched";
        EXPECT_EQ(c.call(b, c.buflen), c.expected) << c.text << " in " << c.buflen;
        EXPECT_STREQ(b, c.text) << c.buflen;
    }
}

#define PATH(call) +[](CS_CHAR *p, CS_INT n) { return call; }

TEST_F(Paths, CompositionAtExactFitOneShortAndRoomy)
{
    const struct {
        Env xcs; // KESTOR_XCS
        CS_RETCODE (*compose)(CS_CHAR *, CS_INT);
        const char *expected;
    } cases[] = {
        {{}, PATH(com_path_anyfile(p, n, s("a"), s("b"), 1)), "/h/a/b"},
        {{}, PATH(com_path_anyfile(p, n, nullptr, nullptr, 0)), "/h"},
        {"x", PATH(com_path_anyfile(p, n, s("a"), s("b"), 1)), "/h/x/a/b"},
        {"x", PATH(com_path_anyfile(p, n, s("a"), s("b"), 2)), "/h/a/b"},
        {"", PATH(com_path_anyfile(p, n, s("a"), nullptr, 1)), "/h/a"},
        {{}, PATH(com_path_cfgfile(&ctx, s("xcs.cfg"), p, n, 1)), "/h/config/xcs.cfg"},
        {"x/y", PATH(com_path_cfgfile(&ctx, s("f"), p, n, 1)), "/h/x/y/config/f"},
        {"x", PATH(com_path_cfgfile(&ctx, s("f"), p, n, 2)), "/h/x/config/f"},
        {"x", PATH(com_path_cfgfile(&ctx, s("f"), p, n, 0)), "/h/config/f"},
        {{}, PATH(com_path_ifile(&ctx, p, n)), "/h/interfaces"},
        {{}, PATH(com__path_locfile(&ctx, s("fr"), s("utf8"), s("c.loc"), p, n)), "/h/locales/fr/utf8/c.loc"},
        {{}, PATH(com__path_locfile(&ctx, nullptr, s("utf8"), s("l.dat"), p, n)), "/h/locales/l.dat"},
        {{}, PATH(com_path_msgfile(&ctx, s("french"), 2, s("c.loc"), CS_NULLTERM, p, n)), // langlen unread
         "/h/locales/message/french/c.loc"},
        {{}, PATH(com_path_msgfile(&ctx, s("fr"), 2, s("comnlib.loc"), 7, p, n)), "/h/locales/message/fr/comnlib"},
        {{}, PATH(com_path_charfile(&ctx, s("utf8"), s("charset"), s("loc"), p, n)), "/h/charsets/utf8/charset.loc"},
        {{}, PATH(com_path_charfile(&ctx, s("utf8"), nullptr, s("loc"), p, n)), "/h/charsets/utf8"},
        {{}, PATH(com_path_charfile(&ctx, nullptr, s("unicode"), nullptr, p, n)), "/h/charsets/unicode"},
        {{}, PATH(comn__path_locdata(&ctx, COM_LOCDATA_MONEY, s("us"), p, n)), "/h/locales/money/us.mon"},
        {{}, PATH(comn__path_locdata(&ctx, COM_LOCDATA_NUMERIC, s("us"), p, n)), "/h/locales/numeric/us.num"},
        {{}, PATH(comn__path_locdata(&ctx, COM_LOCDATA_DATE, s("us"), p, n)), "/h/locales/datetime/us.dt"},
    };
    for (const auto &c : cases) {
        set("KESTOR_XCS", c.xcs);
        const CS_INT len = static_cast<CS_INT>(std::strlen(c.expected));
        for (CS_INT size : {len + 1, len, COM_PATH_MAX}) {
            SCOPED_TRACE(::testing::Message() << c.expected << " in " << size);
            char path[COM_PATH_MAX];
            std::memset(path, '#', sizeof path);
            const CS_RETCODE rc = c.compose(path, size);
            if (size > len) {
                EXPECT_EQ(rc, CS_SUCCEED);
                EXPECT_STREQ(path, c.expected);
            } else { // when the home alone does not fit, the home lookup fails
                EXPECT_EQ(rc, std::strcmp(c.expected, "/h") == 0 ? CS_EINTLFILE : CS_FAIL);
                EXPECT_STREQ(path, "") << "a path that does not fit is not left half made";
            }
        }
    }
}

// The home, the extra level (a 512-byte buffer of its own) and the
// interfaces variable (the whole path, home or not) at their length limits.
TEST_F(Paths, OverridesAndTheirLengthLimits)
{
    char path[4096], small[10];
    setenv("KESTOR", std::string(2000, 'k').c_str(), 1);
    EXPECT_EQ(com_path_cfgfile(&ctx, s("f"), path, COM_PATH_MAX, 0), CS_EINTLFILE);
    EXPECT_EQ(ctx.ctxintlerr, INTL_ENOSPACE);
    EXPECT_EQ(com_path_charfile(nullptr, s("c"), nullptr, nullptr, path, COM_PATH_MAX), CS_EINTLFILE);
    setenv("KESTOR", std::string(COM_PATH_MAX - 1, 'k').c_str(), 1); // exactly the home and its NUL fit
    EXPECT_EQ(com_path_anyfile(path, COM_PATH_MAX, nullptr, nullptr, 0), CS_SUCCEED);
    EXPECT_EQ(com_path_anyfile(path, COM_PATH_MAX, nullptr, s("f"), 0), CS_FAIL);

    setenv("KESTOR", "/h", 1);
    setenv("KESTOR_XCS", std::string(511, 'x').c_str(), 1);
    EXPECT_EQ(com_path_cfgfile(&ctx, s("f"), path, sizeof path, 1), CS_SUCCEED);
    EXPECT_EQ(std::strlen(path), 2 + 1 + 511 + 1 + 6 + 1 + 1u);
    setenv("KESTOR_XCS", std::string(512, 'x').c_str(), 1);
    EXPECT_EQ(com_path_cfgfile(&ctx, s("f"), path, sizeof path, 1), CS_FAIL);

    unsetenv("KESTOR");
    setenv("KESXCS_IFILE", "/srv/db/interfaces", 1);
    ASSERT_EQ(com_path_ifile(&ctx, path, sizeof path), CS_SUCCEED);
    EXPECT_STREQ(path, "/srv/db/interfaces");
    EXPECT_EQ(com_path_ifile(&ctx, small, sizeof small), CS_FAIL);
    EXPECT_STREQ(small, "");
}

TEST_F(Paths, TclCfgSetPathLengthsAndPrecedence)
{
    const std::string ok(511, 'p');
    char buf[600];
    EXPECT_EQ(com_set_tclcfg(s(ok.c_str())), CS_SUCCEED);
    EXPECT_EQ(com_set_tclcfg(s(std::string(512, 'q').c_str())), CS_FAIL);
    EXPECT_EQ(com_get_tclcfg(buf, 512), 511) << "the old path stays";
    EXPECT_EQ(std::string(buf), ok);
    EXPECT_EQ(com_get_tclcfg(buf, 511), 0) << "a path of exactly buflen bytes does not fit";
    const struct {
        Env set_path, xcs_tcl, kestor_tcl, xcs;
        int buflen;
        const char *expected;
    } cases[] = {
        {"/set", "/a", "/b", {}, 100, "/set"},
        {{}, "/a", "/b", {}, 100, "/a"},
        {{}, "", "/b", {}, 100, "/b"}, // an empty driver variable does not count
        {{}, {}, {}, {}, 100, "/h/config/libtcl64.cfg"},
        {{}, {}, {}, "x", 100, "/h/x/config/libtcl64.cfg"},
        {{}, {}, {}, {}, 10, ""},
        {{}, "/aaaaaaaaaaaa", "/b", {}, 10, ""},
    };
    for (const auto &c : cases) {
        com_set_tclcfg(c.set_path ? s(c.set_path->c_str()) : nullptr);
        set("KESXCS_TCL_CFG", c.xcs_tcl);
        set("KESTOR_TCL_CFG", c.kestor_tcl);
        set("KESTOR_XCS", c.xcs);
        char b[100] = "";
        EXPECT_EQ(com_get_tclcfg(b, c.buflen), static_cast<CS_INT>(std::strlen(c.expected))) << c.expected;
        EXPECT_STREQ(b, c.expected);
    }
}

TEST_F(Paths, GetenvCopiesUpTo255Bytes)
{
    const std::string longest(255, 'v');
    const std::pair<Env, const char *> cases[] = {
        {{}, nullptr}, {"", nullptr}, {longest, longest.c_str()}, {std::string(256, 'v'), nullptr}};
    for (const auto &[value, expected] : cases) {
        set("KESTOR_XCS", value);
        CS_CHAR *copy = com_getenv(s("KESTOR_XCS"));
        EXPECT_STREQ(copy, expected);
        comn_free(copy);
    }
}

TEST_F(Paths, ProgramNameFromTheSystem)
{
    const std::tuple<CS_INT, CS_INT, const char *> cases[] = { // size, sanitize, name
        {64, 0, "paths_test"}, {64, 2, "PATHS_TEST"}, {6, 2, "PATHS"}, {1, 0, ""}};
    for (auto [size, sanitize, expected] : cases) {
        char name[64];
        ASSERT_EQ(comn__genappname_from_exec(&ctx, name, size, sanitize), CS_SUCCEED);
        EXPECT_STREQ(name, expected) << size << "/" << sanitize;
    }
    char mixed[] = "MiXeD-9";
    comn__sanitize_name(1, mixed, sizeof mixed);
    EXPECT_STREQ(mixed, "mixed-9");
}

TEST_F(Paths, VerifyShowsAPathThatCouldNotBeMadeAsAStar)
{
    setenv("KESTOR", KESCOMN_SOURCE_HOME, 1);
    const std::string home = KESCOMN_SOURCE_HOME;
    char buf[COM_PATH_MAX], small[8];
    EXPECT_EQ(com__verify_charfile(&ctx, s("unicode"), s(".keep"), nullptr, buf, sizeof buf), CS_SUCCEED);
    EXPECT_EQ(buf, home + "/charsets/unicode/.keep");
    EXPECT_EQ(com__verify_charfile(&ctx, s("nosuchset"), s("charset"), s("loc"), buf, sizeof buf), CS_FAIL);
    EXPECT_EQ(buf, home + "/charsets/nosuchset/charset.loc");
    EXPECT_EQ(com__verify_msgfile(&ctx, s("french"), 6, s("common.loc"), CS_NULLTERM, small, sizeof small),
              CS_EINTLFILE);
    EXPECT_STREQ(small, "*");
    CsLocCache cache{};
    CS_LOCALE locale{};
    locale.messageptr = &cache;
    EXPECT_EQ(com_intl_verify_a_msgfile(&ctx, &locale, s("common.loc"), buf, sizeof buf), CS_FAIL);
    EXPECT_STREQ(buf, "*") << "a locale without a language";
    cache.langname = s("..");
    cache.langnamelen = 2;
    ctx.ctxlocale = &locale;
    EXPECT_EQ(com_intl_verify_a_msgfile(&ctx, nullptr, s("locales.dat"), buf, sizeof buf), CS_SUCCEED)
        << "the context's locale stands in for a null one";
    EXPECT_EQ(com_intl_verify_a_msgfile(nullptr, nullptr, s(".keep"), buf, sizeof buf), CS_FAIL);
}

// The diagnosis appends to kesinit.err in the current directory: it runs in
// a scratch one, with a home that has the two files it looks for.
TEST_F(Paths, DiagnosisOfMissingLocalizationFiles)
{
    namespace fs = std::filesystem;
    const fs::path scratch = fs::temp_directory_path() / ("kescomn_paths_" + std::to_string(getpid()));
    const fs::path old_cwd = fs::current_path();
    fs::create_directories(scratch / "home/config");
    fs::create_directories(scratch / "home/locales");
    std::ofstream(scratch / "home/config/objectid.dat") << "";
    std::ofstream(scratch / "home/locales/locales.dat") << "";
    fs::current_path(scratch);
    const std::string full = (scratch / "home").string();
    const std::string header = "\n\nThe context allocation routine failed when it tried to load localization files!!\n"
                               "One or more following problems may caused the failure\n\n";
    const struct {
        std::string home;
        Env lc_all, lang;
        bool remove_locales;
        CS_RETCODE expected;
        std::vector<std::string> present, absent;
    } cases[] = {
        {KESCOMN_SOURCE_HOME, "C", "fr", false, CS_SUCCEED,
         {header, "Your kestor home directory is " KESCOMN_SOURCE_HOME ". Check the environment variable KESTOR if it is not the one you want!\n",
          "Using locale name \"C\" defined in environment variable LC_ALL\n"},
         {"Cannot access"}},
        {full, "", "fr_FR", false, CS_SUCCEED, {"Using locale name \"fr_FR\" defined in environment variable LANG\n"}, {"LC_ALL"}},
        {full, {}, {}, false, CS_SUCCEED, {"Using default locale name: \"default\"\n"}, {"environment variable LANG"}},
        {full, std::string(300, 'l'), {}, false, CS_FAIL,
         {"An intl library error occurs when trying to get locale name from environment variable LC_ALL\n"}, {"Using"}},
        {full, "C", {}, true, CS_FAIL, {"Cannot access file locales.dat\n"}, {"Using"}},
        {std::string(2000, 'k'), {}, {}, false, CS_FAIL,
         {header + "Cannot access the kestor home directory, please check environment variable KESTOR or ~kestor\n"},
         {"Your kestor home"}},
        {scratch.string() + "/nowhere", {}, {}, false, CS_FAIL, {"Cannot access file objectid.dat\n"}, {"locales.dat", "Using"}},
    };
    for (const auto &c : cases) {
        setenv("KESTOR", c.home.c_str(), 1);
        set("LC_ALL", c.lc_all);
        set("LANG", c.lang);
        if (c.remove_locales)
            fs::remove(scratch / "home/locales/locales.dat");
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(com_intl_verify_ctxloc(&ctx), c.expected);
        const std::string out = ::testing::internal::GetCapturedStderr();
        for (const std::string &text : c.present)
            EXPECT_NE(out.find(text), std::string::npos) << "missing \"" << text << "\" in\n" << out;
        for (const std::string &text : c.absent)
            EXPECT_EQ(out.find(text), std::string::npos) << "unexpected \"" << text << "\" in\n" << out;
    }
    EXPECT_TRUE(fs::exists(scratch / "kesinit.err"));
    fs::current_path(old_cwd);
    fs::remove_all(scratch);
}

TEST_F(Paths, Assertions)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    char path[16];
    EXPECT_BOMB(comn__path_locdata(&ctx, 7, s("us"), path, sizeof path));
    EXPECT_BOMB(com_path_cfgfile(&ctx, s("f"), path, 0, 0));
    EXPECT_NULL_POINTER(com_path_cfgfile(&ctx, nullptr, path, sizeof path, 0));
}

} // namespace
