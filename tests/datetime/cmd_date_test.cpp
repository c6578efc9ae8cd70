// kescomn date: the output and exit status of each subcommand, run as a user
// would run it; the arithmetic itself is tested on the library.
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

namespace {

struct Outcome {
    std::string out;
    int status;
};

Outcome run(const std::string &args)
{
    const std::string command = std::string(KESCOMN_BIN) + " date " + args + " 2>/dev/null";
    FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return {"", -1};
    std::string out;
    std::array<char, 256> buf;
    while (std::fgets(buf.data(), buf.size(), pipe) != nullptr)
        out += buf.data();
    const int status = pclose(pipe);
    return {out, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

TEST(CmdDate, OutputAndStatusOfEachSubcommand)
{
    struct Case { const char *args, *out; int status; };
    const Case cases[] = {
        {"add month 1 2001-01-31", "2001-02-28 00:00:00.000\n", 0},
        {"add day 60 9999-12-01", "", 1}, // out of range
        {"add minute 1 '2079-06-06 23:58' --type datetime4", "2079-06-06 23:59\n", 0},
        {"add microsecond 1 '2000-01-01 00:00:00.999999' --type bigdatetime", "2000-01-01 00:00:01.000000\n", 0},
        {"diff week 2008-12-27 2008-12-28 --type bigdatetime", "0\n", 0},
        {"diff millisecond 2000-01-01 2000-01-26", "", 1}, // overflows 32 bits
        {"part microsecond '2000-01-01 00:00:00.000042' --type bigdatetime", "42\n", 0},
        // Bad input: a message and status 2.
        {"add day 1 1900-02-29", "", 2},
        {"add microsecond 1 2000-01-01", "", 2}, // not a part of datetime
        {"part day 2000-01-01 --firstday 7", "", 2},
        {"diff day 2000-01-01", "", 2},
        {"frobnicate", "", 2},
    };
    for (const Case &c : cases) {
        const Outcome o = run(c.args);
        EXPECT_EQ(o.out, c.out) << c.args;
        EXPECT_EQ(o.status, c.status) << c.args;
    }
    EXPECT_EQ(run("--help").status, 0);
}

} // namespace
