// Trace levels, the small formatter, bounded copies and the assertions.
#include <cstdarg>
#include <cstdio>
#include <string>
#include <tuple>

#include "errors/debug.h"
#include "support/context.h"

namespace {

// Captures what the library writes to its debug stream.
class DebugStream : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(Com_fp = file_ = std::tmpfile(), nullptr); }
    void TearDown() override
    {
        Com_fp = nullptr;
        std::fclose(file_);
        Com_trace_enable = saved_level_;
    }
    std::string written()
    {
        std::string out(static_cast<size_t>(std::ftell(file_)), '\0');
        std::rewind(file_);
        out.resize(std::fread(out.data(), 1, out.size(), file_));
        return out;
    }

private:
    FILE *file_ = nullptr;
    CS_INT saved_level_ = Com_trace_enable;
};

// Level 2 traces failures, level 3 everything; the conversion codes have no
// name and print as numbers, the path is cut to its base name.
TEST_F(DebugStream, TraceLevels)
{
    const std::tuple<CS_INT, CS_RETCODE, const char *> cases[] = {
        {1, CS_FAIL, ""},
        {2, CS_SUCCEED, ""},
        {2, CS_END_DATA, ""},
        {2, CS_INTERRUPT, ""},
        {2, CS_FAIL, "(CS_FAIL) file x.c, line 1\n"},
        {2, CS_EOVERFLOW, "(-101) file x.c, line 1\n"},
        {3, CS_SUCCEED, "(CS_SUCCEED) file x.c, line 1\n"},
        {3, CS_TRYING, "(CS_TRYING) file x.c, line 1\n"},
    };
    std::string expected;
    for (auto [level, code, text] : cases) {
        com_errset(level);
        EXPECT_EQ(com_errtrace(code, "/deep/path/x.c", 1), code);
        expected += text;
    }
    EXPECT_EQ(written(), expected);
}

CS_RETCODE vprint(const char *format, ...)
{
    va_list ap;
    va_start(ap, format);
    CS_RETCODE rc = comn_debug_vprint(format, ap);
    va_end(ap);
    return rc;
}

TEST_F(DebugStream, SmallFormatter)
{
    EXPECT_EQ(vprint("a%%b %d|%5d|%-3x|%X|%c|%s|%s|%ld|%lx\n", 42, -7, 255, 255, 'q', "str",
                     static_cast<const char *>(nullptr), 1234567890123L, 255L),
              CS_SUCCEED);
    vprint("%z then %d\n", 5);
    EXPECT_EQ(written(), "a%b 42|   -7|ff |FF|q|str|(null)|1234567890123|ff\n"
                         "illegal format specification\n then 5\n");
}

TEST(Debug, ErrorNamesBoundedCopiesAndTheBanner)
{
    EXPECT_STREQ(com__errfind(CS_PASSTHRU_MORE), "CS_PASSTHRU_MORE");
    EXPECT_STREQ(com__errfind(CS_MEM_ERROR), "CS_MEM_ERROR");
    EXPECT_EQ(com__errfind(CS_EOVERFLOW), nullptr);
    EXPECT_EQ(com__errfind(-209), nullptr);
    int depth = 7;
    com__get_stack_depth(&depth);
    EXPECT_EQ(depth, 0);
    char buf[6] = "";
    com_copstr(buf, "abcde", 6); // size - 1 characters fit
    EXPECT_STREQ(buf, "abcde");
    com_copstr(buf, "ab", 6);
    com_catstr(buf, "cde", 6);
    EXPECT_STREQ(buf, "abcde");
    CS_BOOL debug = 7;
    EXPECT_STRNE(com_version(&debug), "");
    EXPECT_TRUE(debug == 0 || debug == 1);
    const std::string banner = com_version_banner();
    EXPECT_NE(banner.find("/Common-Library/"), std::string::npos);
    EXPECT_NE(banner.find("/64bit/"), std::string::npos);
    EXPECT_NE(banner.find(com_get_driverversionsuffix()), std::string::npos);
}

TEST(Debug, SetFileOpensAndCloses)
{
    const std::string path = testing::TempDir() + "kescomn_debug_setfile.txt";
    ASSERT_EQ(comn_debug_setfile(nullptr, path.c_str(), static_cast<CS_INT>(path.size())), CS_SUCCEED);
    ASSERT_NE(Com_fp, nullptr);
    comn_debug_print("hello");
    EXPECT_EQ(comn_debug_setfile(nullptr, nullptr, 0), CS_SUCCEED);
    EXPECT_EQ(Com_fp, nullptr);
    FILE *f = std::fopen(path.c_str(), "r");
    ASSERT_NE(f, nullptr);
    char line[16] = "";
    EXPECT_NE(std::fgets(line, sizeof line, f), nullptr);
    std::fclose(f);
    EXPECT_STREQ(line, "hello");
    EXPECT_EQ(comn_debug_setfile(nullptr, "/nonexistent-dir/x/y", 5), CS_FAIL);
    EXPECT_EQ(Com_fp, nullptr);
}

TEST(DebugDeath, AssertionsEndTheProcess)
{
    char buf[4];
    EXPECT_BOMB(com_copstr(buf, "abcd", 4)); // as long as size: no room for the NUL
    EXPECT_BOMB(com_errset(4));
    EXPECT_DEATH(com_bomb("/x/f.c", 12), "assertion failed, file '/x/f.c' line 12");
    EXPECT_DEATH(com_raise_invalid_null_pointer("g.c", 3), "Invalid NULL pointer , file 'g.c' line 3");
    EXPECT_DEATH((com_toggle_abort(1), com_bomb("h.c", 1)), "");
    EXPECT_EXIT(com_panic("not printed"), testing::ExitedWithCode(255), "^$");
}

} // namespace
