// kescomn date: the command's answers and its exit statuses, run as a user
// would run it.
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

TEST(CmdDate, AnswersAndStatuses)
{
    struct Case {
        const char *args;
        const char *out;
        int status;
    };
    const Case cases[] = {
        {"add month 1 2001-01-31", "2001-02-28 00:00:00.000\n", 0},
        {"add 2 -13 2001-01-15", "1999-12-15 00:00:00.000\n", 0},
        {"add hour 1 '2000-01-01 23:30'", "2000-01-02 00:30:00.000\n", 0},
        {"add millisecond 2 '2000-01-01 00:00:00'", "2000-01-01 00:00:00.003\n", 0},
        {"add day 60 9999-12-01", "", 1},
        {"add day -1 1753-01-01", "", 1},
        {"add minute 1 '2079-06-06 23:58' --type datetime4", "2079-06-06 23:59\n", 0},
        {"add minute 2 '2079-06-06 23:58' --type datetime4", "", 1},
        {"add hour 2 23:00:00 --type time", "01:00:00.000\n", 0},
        {"add hour 2 23:00:00 --type bigtime", "", 1},
        {"add microsecond 1 '2000-01-01 00:00:00.999999' --type bigdatetime", "2000-01-01 00:00:01.000000\n", 0},
        {"add day 1 1700-01-01 --type date", "1700-01-02\n", 0},
        {"diff year 2000-12-31 2001-01-01", "1\n", 0},
        {"diff week 2008-12-27 2008-12-28", "1\n", 0},
        {"diff week 2008-12-27 2008-12-28 --type bigdatetime", "0\n", 0},
        {"diff millisecond 2000-01-01 2000-01-26", "", 1},
        {"diff microsecond 2000-01-01 '2000-01-01 00:00:00.5' --type bigdatetime", "500000\n", 0},
        {"part isoweek 2005-01-01", "53\n", 0},
        {"part isoyear 2008-12-29", "2009\n", 0},
        {"part weekday 2008-12-28 --firstday 1", "7\n", 0},
        {"part microsecond '2000-01-01 00:00:00.000042' --type bigdatetime", "42\n", 0},
        // Bad input: a message and status 2.
        {"add day 1 1900-02-29", "", 2},
        {"add day 1 garbage", "", 2},
        {"add decade 1 2000-01-01", "", 2},
        {"add microsecond 1 2000-01-01", "", 2}, // not a part of datetime
        {"add day 99999999999 2000-01-01", "", 2},
        {"part day 2000-01-01 --type week", "", 2},
        {"part day 2000-01-01 --firstday 7", "", 2},
        {"diff day 2000-01-01", "", 2},
        {"frobnicate", "", 2},
        {"", "", 2},
    };
    for (const Case &c : cases) {
        const Outcome o = run(c.args);
        EXPECT_EQ(o.out, c.out) << c.args;
        EXPECT_EQ(o.status, c.status) << c.args;
    }
    EXPECT_EQ(run("--help").status, 0);
}

} // namespace
