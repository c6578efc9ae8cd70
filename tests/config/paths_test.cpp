// File locations: the home directory and environment lookups of the sibling
// library, path composition and its limits, the environment overrides, the
// driver configuration path, the program name and the diagnosis of missing
// localization files.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "config/paths.h"
#include "conv/string_conv.h"
#include "intl/locale_records.h"
#include "kesintl.h"
#include "support/context.h"

#ifndef KESCOMN_SOURCE_HOME
#error "the build must define KESCOMN_SOURCE_HOME"
#endif

namespace {

const char *const kVariables[] = {"KESTOR",         "KESTOR_XCS", "KESXCS_IFILE", "KESXCS_TCL_CFG",
                                  "KESTOR_TCL_CFG", "LC_ALL",     "LANG"};

// Every test starts from KESTOR=/h and none of the other variables, and
// leaves the environment as it found it.
class Paths : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const char *name : kVariables) {
            if (const char *value = std::getenv(name))
                saved_[name] = value;
            unsetenv(name);
        }
        setenv("KESTOR", "/h", 1);
        com_set_tclcfg(nullptr);
    }
    void TearDown() override
    {
        for (const char *name : kVariables) {
            auto it = saved_.find(name);
            if (it != saved_.end())
                setenv(name, it->second.c_str(), 1);
            else
                unsetenv(name);
        }
        com_set_tclcfg(nullptr);
    }

    static void set(const char *name, const std::optional<std::string> &value)
    {
        if (value)
            setenv(name, value->c_str(), 1);
        else
            unsetenv(name);
    }

    CS_CONTEXT ctx{};

private:
    std::map<std::string, std::string> saved_;
};

using Composer = std::function<CS_RETCODE(CS_CHAR *path, CS_INT size)>;

CS_CHAR *s(const char *text) { return const_cast<CS_CHAR *>(text); }

struct Composition {
    const char *what;
    std::optional<std::string> xcs; // KESTOR_XCS
    Composer compose;
    const char *expected;
};

// ---- the sibling library --------------------------------------------------

TEST_F(Paths, HomeComesFromKestorElseTheBuildDefault)
{
    char buf[COM_PATH_MAX];
    EXPECT_EQ(intl_home(buf, sizeof buf), 2);
    EXPECT_STREQ(buf, "/h");
    for (const std::optional<std::string> &value : {std::optional<std::string>{}, std::optional<std::string>{""}}) {
        set("KESTOR", value);
        ASSERT_EQ(intl_home(buf, sizeof buf), static_cast<int>(std::strlen(KESCOMN_DEFAULT_HOME)));
        EXPECT_STREQ(buf, KESCOMN_DEFAULT_HOME);
    }
}

TEST_F(Paths, HomeAndEnvironmentLengths)
{
    setenv("KESTOR", "/abcd", 1);
    setenv("KESTOR_XCS", "", 1);
    struct Case {
        const char *what;
        std::function<int(char *, int)> call;
        int buflen;
        int expected;
        const char *text;
    };
    const Case cases[] = {
        {"home fits", intl_home, 6, 5, "/abcd"},
        {"home one short", intl_home, 5, INTL_ENOSPACE, "untouched"},
        {"home no room", intl_home, 0, INTL_EBADARG, "untouched"},
        {"value fits", [](char *b, int n) { return intlgetenv(b, n, "KESTOR"); }, 6, 5, "/abcd"},
        {"value one short", [](char *b, int n) { return intlgetenv(b, n, "KESTOR"); }, 5, INTL_ENOSPACE, "untouched"},
        {"unset", [](char *b, int n) { return intlgetenv(b, n, "KESXCS_IFILE"); }, 6, 0, ""},
        {"empty", [](char *b, int n) { return intlgetenv(b, n, "KESTOR_XCS"); }, 1, 0, ""},
        {"null name", [](char *b, int n) { return intlgetenv(b, n, nullptr); }, 6, INTL_EBADARG, "untouched"},
    };
    for (const Case &c : cases) {
        char buf[16] = "untouched";
        EXPECT_EQ(c.call(buf, c.buflen), c.expected) << c.what;
        EXPECT_STREQ(buf, c.text) << c.what;
    }
}

// ---- composition ------------------------------------------------------------

TEST_F(Paths, Composition)
{
    CS_CONTEXT *x = &ctx;
    const Composition cases[] = {
        {"any: dir and file", {}, [](CS_CHAR *p, CS_INT n) { return com_path_anyfile(p, n, s("a"), s("b"), 1); }, "/h/a/b"},
        {"any: file only", {}, [](CS_CHAR *p, CS_INT n) { return com_path_anyfile(p, n, nullptr, s("b"), 0); }, "/h/b"},
        {"any: home only", {}, [](CS_CHAR *p, CS_INT n) { return com_path_anyfile(p, n, nullptr, nullptr, 0); }, "/h"},
        {"any: xcs 1", "x", [](CS_CHAR *p, CS_INT n) { return com_path_anyfile(p, n, s("a"), s("b"), 1); }, "/h/x/a/b"},
        {"any: xcs 2 is not 1", "x", [](CS_CHAR *p, CS_INT n) { return com_path_anyfile(p, n, s("a"), s("b"), 2); }, "/h/a/b"},
        {"any: xcs empty", "", [](CS_CHAR *p, CS_INT n) { return com_path_anyfile(p, n, s("a"), nullptr, 1); }, "/h/a"},
        {"cfg", {}, [x](CS_CHAR *p, CS_INT n) { return com_path_cfgfile(x, s("xcs.cfg"), p, n, 1); }, "/h/config/xcs.cfg"},
        {"cfg: xcs 1", "x/y", [x](CS_CHAR *p, CS_INT n) { return com_path_cfgfile(x, s("xcs.cfg"), p, n, 1); }, "/h/x/y/config/xcs.cfg"},
        {"cfg: xcs 2", "x", [x](CS_CHAR *p, CS_INT n) { return com_path_cfgfile(x, s("f"), p, n, 2); }, "/h/x/config/f"},
        {"cfg: xcs 0", "x", [x](CS_CHAR *p, CS_INT n) { return com_path_cfgfile(x, s("f"), p, n, 0); }, "/h/config/f"},
        {"cfg: xcs empty", "", [](CS_CHAR *p, CS_INT n) { return com_path_cfgfile(nullptr, s("f"), p, n, 1); }, "/h/config/f"},
        {"ifile", {}, [x](CS_CHAR *p, CS_INT n) { return com_path_ifile(x, p, n); }, "/h/interfaces"},
        {"loc: lang and set", {}, [x](CS_CHAR *p, CS_INT n) { return com__path_locfile(x, s("french"), s("utf8"), s("common.loc"), p, n); }, "/h/locales/french/utf8/common.loc"},
        {"loc: lang only", {}, [x](CS_CHAR *p, CS_INT n) { return com__path_locfile(x, s("french"), nullptr, s("f"), p, n); }, "/h/locales/french/f"},
        {"loc: set without lang", {}, [x](CS_CHAR *p, CS_INT n) { return com__path_locfile(x, nullptr, s("utf8"), s("locales.dat"), p, n); }, "/h/locales/locales.dat"},
        {"msg", {}, [x](CS_CHAR *p, CS_INT n) { return com_path_msgfile(x, s("french"), 2, s("comnlib.loc"), CS_NULLTERM, p, n); }, "/h/locales/message/french/comnlib.loc"},
        {"msg: file length", {}, [x](CS_CHAR *p, CS_INT n) { return com_path_msgfile(x, s("fr"), 2, s("comnlib.loc"), 7, p, n); }, "/h/locales/message/fr/comnlib"},
        {"char: full", {}, [x](CS_CHAR *p, CS_INT n) { return com_path_charfile(x, s("utf8"), s("charset"), s("loc"), p, n); }, "/h/charsets/utf8/charset.loc"},
        {"char: no ext", {}, [x](CS_CHAR *p, CS_INT n) { return com_path_charfile(x, s("utf8"), s("binary"), nullptr, p, n); }, "/h/charsets/utf8/binary"},
        {"char: set dir", {}, [x](CS_CHAR *p, CS_INT n) { return com_path_charfile(x, s("utf8"), nullptr, s("loc"), p, n); }, "/h/charsets/utf8"},
        {"char: all sets", {}, [x](CS_CHAR *p, CS_INT n) { return com_path_charfile(x, nullptr, nullptr, nullptr, p, n); }, "/h/charsets"},
        {"char: no set", {}, [x](CS_CHAR *p, CS_INT n) { return com_path_charfile(x, nullptr, s("unicode"), nullptr, p, n); }, "/h/charsets/unicode"},
        {"money", {}, [x](CS_CHAR *p, CS_INT n) { return comn__path_locdata(x, COM_LOCDATA_MONEY, s("us"), p, n); }, "/h/locales/money/us.mon"},
        {"numeric", {}, [x](CS_CHAR *p, CS_INT n) { return comn__path_locdata(x, COM_LOCDATA_NUMERIC, s("us"), p, n); }, "/h/locales/numeric/us.num"},
        {"date", {}, [x](CS_CHAR *p, CS_INT n) { return comn__path_locdata(x, COM_LOCDATA_DATE, s("us"), p, n); }, "/h/locales/datetime/us.dt"},
    };
    for (const Composition &c : cases) {
        set("KESTOR_XCS", c.xcs);
        const CS_INT len = static_cast<CS_INT>(std::strlen(c.expected));
        // Exact fit, one byte short, and a roomy buffer.
        for (CS_INT size : {len + 1, len, COM_PATH_MAX}) {
            char path[COM_PATH_MAX];
            std::memset(path, '#', sizeof path);
            const CS_RETCODE rc = c.compose(path, size);
            if (size > len) {
                EXPECT_EQ(rc, CS_SUCCEED) << c.what << " size " << size;
                EXPECT_STREQ(path, c.expected) << c.what << " size " << size;
            } else {
                // When the home alone does not fit, the home lookup fails.
                EXPECT_EQ(rc, std::strcmp(c.expected, "/h") == 0 ? CS_EINTLFILE : CS_FAIL) << c.what << " size " << size;
                EXPECT_STREQ(path, "") << c.what << ": a path that does not fit is not left half made";
            }
        }
    }
}

TEST_F(Paths, HomeThatDoesNotFitIsTheLibrarysFailure)
{
    struct Case {
        const char *what;
        std::function<CS_RETCODE(CS_CONTEXT *, CS_CHAR *, CS_INT)> compose;
    };
    const Case cases[] = {
        {"cfg", [](CS_CONTEXT *x, CS_CHAR *p, CS_INT n) { return com_path_cfgfile(x, s("f"), p, n, 0); }},
        {"ifile", [](CS_CONTEXT *x, CS_CHAR *p, CS_INT n) { return com_path_ifile(x, p, n); }},
        {"msg", [](CS_CONTEXT *x, CS_CHAR *p, CS_INT n) { return com_path_msgfile(x, s("l"), 1, s("f"), CS_NULLTERM, p, n); }},
        {"char", [](CS_CONTEXT *x, CS_CHAR *p, CS_INT n) { return com_path_charfile(x, s("c"), nullptr, nullptr, p, n); }},
        {"loc", [](CS_CONTEXT *x, CS_CHAR *p, CS_INT n) { return com__path_locfile(x, nullptr, nullptr, s("f"), p, n); }},
    };
    setenv("KESTOR", std::string(2000, 'k').c_str(), 1);
    for (const Case &c : cases) {
        CS_CONTEXT context{};
        char path[COM_PATH_MAX];
        EXPECT_EQ(c.compose(&context, path, sizeof path), CS_EINTLFILE) << c.what;
        EXPECT_EQ(context.ctxintlerr, INTL_ENOSPACE) << c.what;
        EXPECT_EQ(c.compose(nullptr, path, sizeof path), CS_EINTLFILE) << c.what << " without a context";
    }
    char path[COM_PATH_MAX];
    EXPECT_EQ(com_path_anyfile(path, sizeof path, nullptr, nullptr, 0), CS_EINTLFILE);
    // Exactly the home and its NUL still fits; the first part does not.
    setenv("KESTOR", std::string(COM_PATH_MAX - 1, 'k').c_str(), 1);
    EXPECT_EQ(com_path_anyfile(path, sizeof path, nullptr, nullptr, 0), CS_SUCCEED);
    EXPECT_EQ(com_path_anyfile(path, sizeof path, nullptr, s("f"), 0), CS_FAIL);
}

TEST_F(Paths, InterfacesVariableIsTheWholePath)
{
    unsetenv("KESTOR");
    setenv("KESXCS_IFILE", "/srv/db/interfaces", 1);
    char path[COM_PATH_MAX];
    ASSERT_EQ(com_path_ifile(&ctx, path, sizeof path), CS_SUCCEED);
    EXPECT_STREQ(path, "/srv/db/interfaces");
    char small[10];
    EXPECT_EQ(com_path_ifile(&ctx, small, sizeof small), CS_FAIL);
    EXPECT_STREQ(small, "");
}

TEST_F(Paths, ExtraLevelTooLongForItsBufferFails)
{
    setenv("KESTOR_XCS", std::string(512, 'x').c_str(), 1);
    char path[4096];
    EXPECT_EQ(com_path_cfgfile(&ctx, s("f"), path, sizeof path, 1), CS_FAIL);
    setenv("KESTOR_XCS", std::string(511, 'x').c_str(), 1);
    EXPECT_EQ(com_path_cfgfile(&ctx, s("f"), path, sizeof path, 1), CS_SUCCEED);
    EXPECT_EQ(std::strlen(path), 2 + 1 + 511 + 1 + 6 + 1 + 1u);
}

// ---- driver configuration and environment -------------------------------------

TEST_F(Paths, TclCfgSetPathLengths)
{
    const std::string ok(511, 'p');
    EXPECT_EQ(com_set_tclcfg(s(ok.c_str())), CS_SUCCEED);
    EXPECT_EQ(com_set_tclcfg(s(std::string(512, 'q').c_str())), CS_FAIL);
    char buf[600];
    EXPECT_EQ(com_get_tclcfg(buf, sizeof buf), 511) << "the old path stays";
    EXPECT_EQ(std::string(buf), ok);
    EXPECT_EQ(com_get_tclcfg(buf, 512), 511);
    EXPECT_EQ(com_get_tclcfg(buf, 511), 0) << "a path of exactly buflen bytes does not fit";
    EXPECT_EQ(com_set_tclcfg(nullptr), CS_SUCCEED);
    EXPECT_EQ(com_get_tclcfg(buf, sizeof buf), static_cast<CS_INT>(std::strlen("/h/config/libtcl64.cfg")));
}

TEST_F(Paths, TclCfgPrecedence)
{
    struct Case {
        const char *what;
        std::optional<std::string> set_path, xcs_tcl, kestor_tcl, xcs;
        int buflen;
        const char *expected;
    };
    const Case cases[] = {
        {"set path first", "/set", "/a", "/b", {}, 100, "/set"},
        {"driver variable", {}, "/a", "/b", {}, 100, "/a"},
        {"empty driver variable", {}, "", "/b", {}, 100, "/b"},
        {"home variable", {}, {}, "/b", {}, 100, "/b"},
        {"config file", {}, {}, {}, {}, 100, "/h/config/libtcl64.cfg"},
        {"config file with xcs", {}, {}, {}, "x", 100, "/h/x/config/libtcl64.cfg"},
        {"config file too long", {}, {}, {}, {}, 10, ""},
        {"variable too long", {}, "/aaaaaaaaaaaa", "/b", {}, 10, ""},
    };
    for (const Case &c : cases) {
        com_set_tclcfg(c.set_path ? s(c.set_path->c_str()) : nullptr);
        set("KESXCS_TCL_CFG", c.xcs_tcl);
        set("KESTOR_TCL_CFG", c.kestor_tcl);
        set("KESTOR_XCS", c.xcs);
        char buf[100] = "";
        const CS_INT len = com_get_tclcfg(buf, c.buflen);
        EXPECT_EQ(len, static_cast<CS_INT>(std::strlen(c.expected))) << c.what;
        if (len > 0) {
            EXPECT_STREQ(buf, c.expected) << c.what;
        }
    }
}

TEST_F(Paths, GetenvCopies)
{
    struct Case {
        std::optional<std::string> value;
        const char *expected;
    };
    const std::string longest(255, 'v');
    const Case cases[] = {{{}, nullptr}, {"", nullptr}, {"abc", "abc"}, {longest, longest.c_str()},
                          {std::string(256, 'v'), nullptr}};
    for (const Case &c : cases) {
        set("KESTOR_XCS", c.value);
        CS_CHAR *copy = com_getenv(s("KESTOR_XCS"));
        if (c.expected) {
            ASSERT_NE(copy, nullptr);
            EXPECT_STREQ(copy, c.expected);
        } else {
            EXPECT_EQ(copy, nullptr);
        }
        comn_free(copy);
    }
    EXPECT_EQ(com_getenv(nullptr), nullptr);
}

TEST_F(Paths, ProgramNameFromTheSystem)
{
    struct Case {
        CS_INT size;
        CS_INT sanitize;
        const char *expected;
    };
    for (const Case &c : {Case{64, 0, "paths_test"}, Case{64, 1, "paths_test"}, Case{64, 2, "PATHS_TEST"},
                          Case{64, 3, "paths_test"}, Case{6, 2, "PATHS"}, Case{1, 0, ""}}) {
        char name[64];
        ASSERT_EQ(comn__genappname_from_exec(&ctx, name, c.size, c.sanitize), CS_SUCCEED);
        EXPECT_STREQ(name, c.expected) << c.size << "/" << c.sanitize;
    }
    char mixed[] = "MiXeD-9";
    comn__sanitize_name(1, mixed, sizeof mixed);
    EXPECT_STREQ(mixed, "mixed-9");
}

// ---- readability and the diagnosis ----------------------------------------------

TEST_F(Paths, VerifyFiles)
{
    setenv("KESTOR", KESCOMN_SOURCE_HOME, 1);
    char buf[COM_PATH_MAX];
    EXPECT_EQ(com__verify_charfile(&ctx, s("unicode"), s(".keep"), nullptr, buf, sizeof buf), CS_SUCCEED);
    EXPECT_EQ(std::string(buf), std::string(KESCOMN_SOURCE_HOME) + "/charsets/unicode/.keep");
    EXPECT_EQ(com__verify_charfile(&ctx, s("nosuchset"), s("charset"), s("loc"), buf, sizeof buf), CS_FAIL);
    EXPECT_EQ(std::string(buf), std::string(KESCOMN_SOURCE_HOME) + "/charsets/nosuchset/charset.loc");
    EXPECT_EQ(com__verify_msgfile(&ctx, s("french"), 6, s("common.loc"), CS_NULLTERM, buf, sizeof buf), CS_FAIL);
    char small[8];
    EXPECT_EQ(com__verify_msgfile(&ctx, s("french"), 6, s("common.loc"), CS_NULLTERM, small, sizeof small),
              CS_EINTLFILE);
    EXPECT_STREQ(small, "*");
    setenv("KESTOR", "/h", 1);
    char tight[16];
    EXPECT_EQ(com__verify_charfile(&ctx, s("utf8"), s("charset"), s("loc"), tight, sizeof tight), CS_FAIL);
    EXPECT_STREQ(tight, "*");
}

TEST_F(Paths, VerifyMessageFileOfALocale)
{
    setenv("KESTOR", KESCOMN_SOURCE_HOME, 1);
    CsLocCache cache{};
    CS_LOCALE locale{};
    locale.messageptr = &cache;
    char buf[COM_PATH_MAX];
    EXPECT_EQ(com_intl_verify_a_msgfile(&ctx, &locale, s("common.loc"), buf, sizeof buf), CS_FAIL);
    EXPECT_STREQ(buf, "*") << "a locale without a language";
    cache.langname = s("message");
    cache.langnamelen = 7;
    // The source tree has the directory but no message files yet.
    EXPECT_EQ(com_intl_verify_a_msgfile(&ctx, &locale, s(".keep"), buf, sizeof buf), CS_FAIL);
    EXPECT_EQ(std::string(buf), std::string(KESCOMN_SOURCE_HOME) + "/locales/message/message/.keep");
    cache.langname = s("..");
    ctx.ctxlocale = &locale;
    EXPECT_EQ(com_intl_verify_a_msgfile(&ctx, nullptr, s("locales.dat"), buf, sizeof buf), CS_SUCCEED)
        << "the context's locale stands in for a null one";
    EXPECT_EQ(com_intl_verify_a_msgfile(nullptr, nullptr, s(".keep"), buf, sizeof buf), CS_FAIL);
    EXPECT_STREQ(buf, "*");
}

// Runs the diagnosis in a scratch directory (it appends to kesinit.err in
// the current one) and returns what it printed.
class Diagnosis : public Paths {
protected:
    void SetUp() override
    {
        Paths::SetUp();
        scratch_ = std::filesystem::temp_directory_path() / ("kescomn_paths_" + std::to_string(getpid()));
        std::filesystem::create_directories(scratch_);
        old_cwd_ = std::filesystem::current_path();
        std::filesystem::current_path(scratch_);
    }
    void TearDown() override
    {
        std::filesystem::current_path(old_cwd_);
        std::filesystem::remove_all(scratch_);
        Paths::TearDown();
    }

    std::string run(CS_RETCODE expected)
    {
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(com_intl_verify_ctxloc(&ctx), expected);
        return ::testing::internal::GetCapturedStderr();
    }

    // A home with only the named files.
    std::string make_home(std::initializer_list<const char *> files)
    {
        const auto home = scratch_ / "home";
        for (const char *f : files) {
            std::filesystem::create_directories((home / f).parent_path());
            std::ofstream(home / f) << "";
        }
        return home.string();
    }

    std::filesystem::path scratch_;
    std::filesystem::path old_cwd_;
};

TEST_F(Diagnosis, Lines)
{
    const std::string full = make_home({"config/objectid.dat", "locales/locales.dat"});
    struct Case {
        const char *what;
        std::string home;
        std::optional<std::string> lc_all, lang;
        bool remove_locales;
        CS_RETCODE expected;
        std::vector<std::string> present, absent;
    };
    const std::string header = "\n\nThe context allocation routine failed when it tried to load localization files!!\n"
                               "One or more following problems may caused the failure\n\n";
    const Case cases[] = {
        {"source tree, LC_ALL", KESCOMN_SOURCE_HOME, "C", "fr", false, CS_SUCCEED,
         {header, "Your kestor home directory is " KESCOMN_SOURCE_HOME ". Check the environment variable KESTOR if it is not the one you want!\n",
          "Using locale name \"C\" defined in environment variable LC_ALL\n"},
         {"Cannot access"}},
        {"LANG", full, "", "fr_FR", false, CS_SUCCEED, {"Using locale name \"fr_FR\" defined in environment variable LANG\n"}, {"LC_ALL"}},
        {"default", full, {}, {}, false, CS_SUCCEED, {"Using default locale name: \"default\"\n"}, {"environment variable LANG"}},
        {"LC_ALL too long", full, std::string(300, 'l'), {}, false, CS_FAIL,
         {"An intl library error occurs when trying to get locale name from environment variable LC_ALL\n"}, {"Using"}},
        {"no locale table", full, "C", {}, true, CS_FAIL, {"Cannot access file locales.dat\n"}, {"Using"}},
        {"no home", std::string(2000, 'k'), {}, {}, false, CS_FAIL,
         {header + "Cannot access the kestor home directory, please check environment variable KESTOR or ~kestor\n"},
         {"Your kestor home"}},
        {"no identifiers", scratch_.string() + "/nowhere", {}, {}, false, CS_FAIL,
         {"Cannot access file objectid.dat\n"}, {"locales.dat", "Using"}},
    };
    for (const Case &c : cases) {
        setenv("KESTOR", c.home.c_str(), 1);
        set("LC_ALL", c.lc_all);
        set("LANG", c.lang);
        if (c.remove_locales)
            std::filesystem::remove(scratch_ / "home/locales/locales.dat");
        const std::string out = run(c.expected);
        for (const std::string &text : c.present)
            EXPECT_NE(out.find(text), std::string::npos) << c.what << ": missing \"" << text << "\" in\n" << out;
        for (const std::string &text : c.absent)
            EXPECT_EQ(out.find(text), std::string::npos) << c.what << ": unexpected \"" << text << "\" in\n" << out;
    }
    EXPECT_TRUE(std::filesystem::exists(scratch_ / "kesinit.err"));
}

// ---- assertions -------------------------------------------------------------------

TEST_F(Paths, Assertions)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    char path[16];
    EXPECT_BOMB(comn__path_locdata(&ctx, 7, s("us"), path, sizeof path));
    EXPECT_BOMB(com_path_cfgfile(&ctx, s("f"), path, 0, 0));
    EXPECT_NULL_POINTER(com_path_cfgfile(&ctx, nullptr, path, sizeof path, 0));
}

} // namespace
