// File locations: the home directory and environment lookups, path
// composition at exact fit / one short / roomy, the environment overrides,
// the driver configuration path, the program name and the diagnosis of
// missing localization files.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <string>
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

const char *const kVariables[] = {"KESTOR",         "KESTOR_XCS", "KESXCS_IFILE", "KESXCS_TCL_CFG",
                                  "KESTOR_TCL_CFG", "LC_ALL",     "LANG"};

void set(const char *name, const Env &value)
{
    if (value)
        setenv(name, value->c_str(), 1);
    else
        unsetenv(name);
}

// Every test starts from KESTOR=/h and none of the other variables, and
// leaves the environment as it found it.
class Paths : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const char *name : kVariables) {
            saved_[name] = std::getenv(name) ? Env(std::getenv(name)) : Env();
            unsetenv(name);
        }
        setenv("KESTOR", "/h", 1);
        com_set_tclcfg(nullptr);
    }
    void TearDown() override
    {
        for (auto &[name, value] : saved_)
            set(name.c_str(), value);
        com_set_tclcfg(nullptr);
    }
    CS_CONTEXT ctx{};

private:
    std::map<std::string, Env> saved_;
};

CS_CHAR *s(const char *text) { return const_cast<CS_CHAR *>(text); }

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
    struct Case {
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
    for (const Case &c : cases) {
        char b[16] = "untouched";
        EXPECT_EQ(c.call(b, c.buflen), c.expected) << c.text << " in " << c.buflen;
        EXPECT_STREQ(b, c.text) << c.buflen;
    }
}

TEST_F(Paths, CompositionAtExactFitOneShortAndRoomy)
{
    using Composer = std::function<CS_RETCODE(CS_CHAR *, CS_INT)>;
    CS_CONTEXT *x = &ctx;
    const struct {
        Env xcs; // KESTOR_XCS
        Composer compose;
        const char *expected;
    } cases[] = {
        {{}, [](CS_CHAR *p, CS_INT n) { return com_path_anyfile(p, n, s("a"), s("b"), 1); }, "/h/a/b"},
        {{}, [](CS_CHAR *p, CS_INT n) { return com_path_anyfile(p, n, nullptr, nullptr, 0); }, "/h"},
        {"x", [](CS_CHAR *p, CS_INT n) { return com_path_anyfile(p, n, s("a"), s("b"), 1); }, "/h/x/a/b"},
        {"x", [](CS_CHAR *p, CS_INT n) { return com_path_anyfile(p, n, s("a"), s("b"), 2); }, "/h/a/b"},
        {"", [](CS_CHAR *p, CS_INT n) { return com_path_anyfile(p, n, s("a"), nullptr, 1); }, "/h/a"},
        {{}, [x](CS_CHAR *p, CS_INT n) { return com_path_cfgfile(x, s("xcs.cfg"), p, n, 1); }, "/h/config/xcs.cfg"},
        {"x/y", [x](CS_CHAR *p, CS_INT n) { return com_path_cfgfile(x, s("f"), p, n, 1); }, "/h/x/y/config/f"},
        {"x", [x](CS_CHAR *p, CS_INT n) { return com_path_cfgfile(x, s("f"), p, n, 2); }, "/h/x/config/f"},
        {"x", [x](CS_CHAR *p, CS_INT n) { return com_path_cfgfile(x, s("f"), p, n, 0); }, "/h/config/f"},
        {{}, [x](CS_CHAR *p, CS_INT n) { return com_path_ifile(x, p, n); }, "/h/interfaces"},
        {{}, [x](CS_CHAR *p, CS_INT n) { return com__path_locfile(x, s("fr"), s("utf8"), s("c.loc"), p, n); }, "/h/locales/fr/utf8/c.loc"},
        {{}, [x](CS_CHAR *p, CS_INT n) { return com__path_locfile(x, nullptr, s("utf8"), s("l.dat"), p, n); }, "/h/locales/l.dat"},
        {{}, [x](CS_CHAR *p, CS_INT n) { return com_path_msgfile(x, s("french"), 2, s("c.loc"), CS_NULLTERM, p, n); }, "/h/locales/message/french/c.loc"}, // langlen unread
        {{}, [x](CS_CHAR *p, CS_INT n) { return com_path_msgfile(x, s("fr"), 2, s("comnlib.loc"), 7, p, n); }, "/h/locales/message/fr/comnlib"},
        {{}, [x](CS_CHAR *p, CS_INT n) { return com_path_charfile(x, s("utf8"), s("charset"), s("loc"), p, n); }, "/h/charsets/utf8/charset.loc"},
        {{}, [x](CS_CHAR *p, CS_INT n) { return com_path_charfile(x, s("utf8"), nullptr, s("loc"), p, n); }, "/h/charsets/utf8"},
        {{}, [x](CS_CHAR *p, CS_INT n) { return com_path_charfile(x, nullptr, s("unicode"), nullptr, p, n); }, "/h/charsets/unicode"},
        {{}, [x](CS_CHAR *p, CS_INT n) { return comn__path_locdata(x, COM_LOCDATA_MONEY, s("us"), p, n); }, "/h/locales/money/us.mon"},
        {{}, [x](CS_CHAR *p, CS_INT n) { return comn__path_locdata(x, COM_LOCDATA_NUMERIC, s("us"), p, n); }, "/h/locales/numeric/us.num"},
        {{}, [x](CS_CHAR *p, CS_INT n) { return comn__path_locdata(x, COM_LOCDATA_DATE, s("us"), p, n); }, "/h/locales/datetime/us.dt"},
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

TEST_F(Paths, HomeThatDoesNotFitIsTheIntlFailure)
{
    setenv("KESTOR", std::string(2000, 'k').c_str(), 1);
    CS_CONTEXT context{};
    char path[COM_PATH_MAX];
    EXPECT_EQ(com_path_cfgfile(&context, s("f"), path, sizeof path, 0), CS_EINTLFILE);
    EXPECT_EQ(context.ctxintlerr, INTL_ENOSPACE);
    EXPECT_EQ(com_path_charfile(nullptr, s("c"), nullptr, nullptr, path, sizeof path), CS_EINTLFILE);
    // Exactly the home and its NUL still fits; the first part more does not.
    setenv("KESTOR", std::string(COM_PATH_MAX - 1, 'k').c_str(), 1);
    EXPECT_EQ(com_path_anyfile(path, sizeof path, nullptr, nullptr, 0), CS_SUCCEED);
    EXPECT_EQ(com_path_anyfile(path, sizeof path, nullptr, s("f"), 0), CS_FAIL);
}

TEST_F(Paths, EnvironmentOverrides)
{
    // The interfaces variable is the whole path, home or not.
    unsetenv("KESTOR");
    setenv("KESXCS_IFILE", "/srv/db/interfaces", 1);
    char path[4096], small[10];
    ASSERT_EQ(com_path_ifile(&ctx, path, sizeof path), CS_SUCCEED);
    EXPECT_STREQ(path, "/srv/db/interfaces");
    EXPECT_EQ(com_path_ifile(&ctx, small, sizeof small), CS_FAIL);
    EXPECT_STREQ(small, "");
    // The extra level has a 512-byte buffer of its own.
    setenv("KESTOR", "/h", 1);
    setenv("KESTOR_XCS", std::string(511, 'x').c_str(), 1);
    EXPECT_EQ(com_path_cfgfile(&ctx, s("f"), path, sizeof path, 1), CS_SUCCEED);
    EXPECT_EQ(std::strlen(path), 2 + 1 + 511 + 1 + 6 + 1 + 1u);
    setenv("KESTOR_XCS", std::string(512, 'x').c_str(), 1);
    EXPECT_EQ(com_path_cfgfile(&ctx, s("f"), path, sizeof path, 1), CS_FAIL);
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
    struct Case {
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
    for (const Case &c : cases) {
        com_set_tclcfg(c.set_path ? s(c.set_path->c_str()) : nullptr);
        set("KESXCS_TCL_CFG", c.xcs_tcl);
        set("KESTOR_TCL_CFG", c.kestor_tcl);
        set("KESTOR_XCS", c.xcs);
        char b[100] = "";
        const CS_INT len = com_get_tclcfg(b, c.buflen);
        EXPECT_EQ(len, static_cast<CS_INT>(std::strlen(c.expected))) << c.expected;
        if (len > 0) {
            EXPECT_STREQ(b, c.expected);
        }
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
    struct Case {
        CS_INT size, sanitize;
        const char *expected;
    };
    for (const Case &c : {Case{64, 0, "paths_test"}, Case{64, 2, "PATHS_TEST"}, Case{6, 2, "PATHS"}, Case{1, 0, ""}}) {
        char name[64];
        ASSERT_EQ(comn__genappname_from_exec(&ctx, name, c.size, c.sanitize), CS_SUCCEED);
        EXPECT_STREQ(name, c.expected) << c.size << "/" << c.sanitize;
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

// The diagnosis appends to kesinit.err in the current directory: run it in
// a scratch one.
class Diagnosis : public Paths {
protected:
    void SetUp() override
    {
        Paths::SetUp();
        scratch_ = std::filesystem::temp_directory_path() / ("kescomn_paths_" + std::to_string(getpid()));
        std::filesystem::create_directories(scratch_ / "home/config");
        std::filesystem::create_directories(scratch_ / "home/locales");
        std::ofstream(scratch_ / "home/config/objectid.dat") << "";
        std::ofstream(scratch_ / "home/locales/locales.dat") << "";
        old_cwd_ = std::filesystem::current_path();
        std::filesystem::current_path(scratch_);
    }
    void TearDown() override
    {
        std::filesystem::current_path(old_cwd_);
        std::filesystem::remove_all(scratch_);
        Paths::TearDown();
    }
    std::filesystem::path scratch_, old_cwd_;
};

TEST_F(Diagnosis, Lines)
{
    const std::string full = (scratch_ / "home").string();
    const std::string header = "\n\nThe context allocation routine failed when it tried to load localization files!!\n"
                               "One or more following problems may caused the failure\n\n";
    struct Case {
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
        {scratch_.string() + "/nowhere", {}, {}, false, CS_FAIL, {"Cannot access file objectid.dat\n"}, {"locales.dat", "Using"}},
    };
    for (const Case &c : cases) {
        setenv("KESTOR", c.home.c_str(), 1);
        set("LC_ALL", c.lc_all);
        set("LANG", c.lang);
        if (c.remove_locales)
            std::filesystem::remove(scratch_ / "home/locales/locales.dat");
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(com_intl_verify_ctxloc(&ctx), c.expected);
        const std::string out = ::testing::internal::GetCapturedStderr();
        for (const std::string &text : c.present)
            EXPECT_NE(out.find(text), std::string::npos) << "missing \"" << text << "\" in\n" << out;
        for (const std::string &text : c.absent)
            EXPECT_EQ(out.find(text), std::string::npos) << "unexpected \"" << text << "\" in\n" << out;
    }
    EXPECT_TRUE(std::filesystem::exists(scratch_ / "kesinit.err"));
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
