// Date and time text by style: every style on one record, the time-of-day
// variants, the cut rule at every capacity, the fraction without carry, the
// legacy and exported entries, and a seeded comparison with strftime.
#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <random>
#include <string>

#include "datetime/calendar.h"
#include "datetime/format.h"
#include "kescomn/datetext.h"
#include "support/context.h"

namespace {

char **shorts() { return kes::datetext::en_short_months(); }

CS_DATEREC record(int y, int mo, int d, int h, int mi, int s, int msec, int frac, int prec)
{
    CS_DATEREC r{};
    r.dateyear = y;
    r.datemonth = mo - 1;
    r.datedmonth = d;
    r.datehour = h;
    r.dateminute = mi;
    r.datesecond = s;
    r.datemsecond = msec;
    r.datesecfrac = frac;
    r.datesecprec = prec;
    return r;
}

struct Out {
    int rc;
    std::string text;
};

// Formats into a buffer of cap bytes framed by sentinels, and fails the test
// when a byte past cap was touched.
template <class F> Out run(F format, int cap)
{
    char buf[128];
    std::memset(buf, '#', sizeof buf);
    const int rc = format(buf + 8, cap);
    const int limit = cap < 0 ? 100 : cap;
    for (int i = 0; i < 8; i++)
        EXPECT_EQ(buf[i], '#') << "written before the buffer";
    int written = limit;
    while (written > 0 && buf[8 + written - 1] == '#')
        written--;
    for (int i = 8 + limit; i < static_cast<int>(sizeof buf) && cap >= 0; i++)
        EXPECT_EQ(buf[i], '#') << "written past the capacity " << cap;
    return {rc, std::string(buf + 8, static_cast<size_t>(rc > 0 ? rc : written))};
}

Out daterec(CS_DATEREC r, int style, int cap = -1, char **months = shorts())
{
    return run([&](char *b, int n) { return com__daterectochar(&r, b, n, style, months, r.datesecprec); }, cap);
}

struct Styled {
    int style;
    const char *text; // nullptr: -1
};

// 2008-03-05 15:07:09.123456 in every style number from -1 to 141.
const Styled kStyles[] = {
    {0, "Mar  5 2008  3:07PM"},
    {1, "03/05/08"},
    {2, "08.03.05"},
    {3, "05/03/08"},
    {4, "05.03.08"},
    {5, "05-03-08"},
    {6, "05 Mar 08"},
    {7, "Mar 05, 08"},
    {8, "15:07:09"},
    {9, "Mar  5 2008  3:07:09:123PM"},
    {10, "03-05-08"},
    {11, "08/03/05"},
    {12, "080305"},
    {13, "08/05/03"},
    {14, "03/08/05"},
    {15, "05/08/03"},
    {16, "Mar  5 2008 15:07:09"},
    {17, " 3:07PM"},
    {18, "15:07"},
    {19, " 3:07:09:123PM"},
    {20, "15:07:09:123"},
    {21, "08/03/05 15:07:09"},
    {22, "08/03/05  3:07PM"},
    {23, "2008-03-05T15:07:09"},
    {36, " 3:07:09.123456PM"},
    {37, "15:07:09.123456"},
    {38, "Mar  5 08  3:07:09.123456PM"},
    {39, "Mar  5 08 15:07:09.123456"},
    {40, "08-03-05 15:07:09.123456"},
    {100, "Mar  5 2008  3:07PM"},
    {101, "03/05/2008"},
    {102, "2008.03.05"},
    {103, "05/03/2008"},
    {104, "05.03.2008"},
    {105, "05-03-2008"},
    {106, "05 Mar 2008"},
    {107, "Mar 05, 2008"},
    {108, "15:07:09"},
    {109, "Mar  5 2008  3:07:09:123PM"},
    {110, "03-05-2008"},
    {111, "2008/03/05"},
    {112, "20080305"},
    {113, "2008/05/03"},
    {114, "03/2008/05"},
    {115, "05/2008/03"},
    {116, "Mar  5 2008 15:07:09"},
    {117, " 3:07PM"},
    {118, "15:07"},
    {121, "2008/03/05 15:07:09"},
    {122, "2008/03/05  3:07PM"},
    {136, " 3:07:09.123456PM"},
    {137, "15:07:09.123456"},
    {138, "Mar  5 2008  3:07:09.123456PM"},
    {139, "Mar  5 2008 15:07:09.123456"},
    {140, "2008-03-05 15:07:09.123456"},
};

const char *expected_text(int style)
{
    for (const Styled &s : kStyles)
        if (s.style == style)
            return s.text;
    return nullptr;
}

TEST(DateFormat, EveryStyle)
{
    const CS_DATEREC r = record(2008, 3, 5, 15, 7, 9, 0, 123456, 1000000);
    for (int style = -1; style <= 141; style++) {
        SCOPED_TRACE(testing::Message() << "style " << style);
        Out o = daterec(r, style);
        const char *want = expected_text(style);
        if (want == nullptr) {
            EXPECT_EQ(o.rc, -1);
            continue;
        }
        EXPECT_EQ(o.rc, static_cast<int>(std::strlen(want)));
        EXPECT_EQ(o.text, want);
    }
    EXPECT_EQ(daterec(r, 1000).rc, -1);
    EXPECT_EQ(daterec(r, -100).rc, -1);
}

TEST(DateFormat, MonthNamesNeeded)
{
    const CS_DATEREC r = record(2008, 3, 5, 15, 7, 9, 123, 0, 300);
    const int named[] = {0, 9, 100, 109, 6, 106, 7, 107, 16, 116, 38, 138, 39, 139};
    for (int style = 0; style <= 140; style++) {
        if (expected_text(style) == nullptr)
            continue;
        const bool needs = std::find(std::begin(named), std::end(named), style) != std::end(named);
        EXPECT_EQ(daterec(r, style, -1, nullptr).rc == -2, needs) << style;
    }
    // The name is cut to 9 bytes; the list is the caller's.
    char longname[] = "Septembering";
    char *list[12] = {};
    list[2] = longname;
    EXPECT_EQ(daterec(r, 107, -1, list).text, "September 05, 2008");
}

TEST(DateFormat, TwelveHourClock)
{
    struct Case {
        int hour;
        const char *text;
    };
    const Case cases[] = {{0, "12:30AM"}, {1, " 1:30AM"}, {11, "11:30AM"}, {12, "12:30PM"},
                          {13, " 1:30PM"}, {23, "11:30PM"}};
    for (const Case &c : cases) {
        const CS_DATEREC r = record(2008, 3, 5, c.hour, 30, 0, 0, 0, 300);
        EXPECT_EQ(daterec(r, 17).text, c.text) << c.hour;
        EXPECT_EQ(daterec(r, 100).text, std::string("Mar  5 2008 ") + c.text) << c.hour;
    }
}

TEST(DateFormat, Fractions)
{
    struct Case {
        int msec, frac, prec, style;
        const char *text;
    };
    const Case cases[] = {
        // milliseconds from ticks, microseconds from milliseconds
        {996, 0, 300, 20, "23:59:59:996"},
        {996, 0, 300, 37, "23:59:59.996000"},
        {5, 0, 300, 20, "23:59:59:005"},
        // microseconds rounded to milliseconds, never carried into the second
        {0, 999499, 1000000, 20, "23:59:59:999"},
        {0, 999500, 1000000, 20, "23:59:59:000"},
        {0, 999600, 1000000, 9, "Dec 31 9999 11:59:59:000PM"},
        {0, 499, 1000000, 20, "23:59:59:000"},
        {0, 500, 1000000, 20, "23:59:59:001"},
        {0, 1, 1000000, 37, "23:59:59.000001"},
        {0, 999999, 1000000, 140, "9999-12-31 23:59:59.999999"},
        // any other precision reads the milliseconds
        {7, 123456, 0, 37, "23:59:59.007000"},
    };
    for (const Case &c : cases) {
        const CS_DATEREC r = record(9999, 12, 31, 23, 59, 59, c.msec, c.frac, c.prec);
        EXPECT_EQ(daterec(r, c.style).text, c.text) << c.frac << " style " << c.style;
    }
}

TEST(DateFormat, Years)
{
    struct Case {
        int year, style;
        const char *text;
    };
    const Case cases[] = {{99, 101, "01/02/0099"},   {99, 1, "01/02/99"},      {1, 112, "00010102"},
                          {1, 12, "010102"},         {2000, 1, "01/02/00"},    {9999, 2, "99.01.02"},
                          {5, 107, "Jan 02, 0005"},  {1905, 7, "Jan 02, 05"}, {10, 0, "Jan  2 0010 12:00AM"}};
    for (const Case &c : cases) {
        const CS_DATEREC r = record(c.year, 1, 2, 0, 0, 0, 0, 0, 300);
        EXPECT_EQ(daterec(r, c.style).text, c.text) << c.year << " style " << c.style;
    }
}

TEST(DateFormat, CutToCapacity)
{
    const CS_DATEREC r = record(2008, 3, 5, 15, 7, 9, 123, 0, 300);
    const std::string full = "03/05/2008";
    struct Case {
        int cap, rc;
    };
    const Case cases[] = {{0, 0}, {1, 0}, {5, 0}, {9, 0}, {10, 10}, {11, 10}, {-1, 10}, {-5, 10}};
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << "capacity " << c.cap);
        Out o = daterec(r, 101, c.cap);
        EXPECT_EQ(o.rc, c.rc);
        const size_t kept = c.rc > 0 ? full.size() : static_cast<size_t>(c.cap);
        EXPECT_EQ(o.text, full.substr(0, kept));
    }
    // The longest layout fits a 9-byte month name.
    char longname[] = "Septembrx";
    char *list[12] = {};
    list[2] = longname;
    const std::string longest = "Septembrx  5 2008  3:07:09.123000PM";
    for (int cap : {0, 34, 35, 36}) {
        Out o = daterec(r, 138, cap, list);
        EXPECT_EQ(o.rc, cap >= 35 ? 35 : 0) << cap;
        EXPECT_EQ(o.text, longest.substr(0, std::min<size_t>(cap, longest.size()))) << cap;
    }
}

TEST(DateFormat, TimeOfDay)
{
    // A CS_TIME stands on 1900-01-01, a CS_BIGTIME on 0001-01-01.
    const CS_TIME t = 15 * 1080000 + 7 * 18000 + 9 * 300 + 37;
    const CS_BIGTIME bt = ((15 * 60 + 7) * 60 + 9) * 1000000ULL + 123456;
    struct Case {
        int style;
        const char *time_text; // CS_TIME
        const char *big_text;  // CS_BIGTIME
    };
    const Case cases[] = {
        {0, " 3:07PM", " 3:07PM"},
        {9, " 3:07:09:123PM", " 3:07:09:123PM"},
        {8, "15:07:09", "15:07:09"},
        {20, "15:07:09:123", "15:07:09:123"},
        {37, "15:07:09.123000", "15:07:09.123456"},
        {100, "Jan  1 1900  3:07PM", "Jan  1    1  3:07PM"},
        {109, "Jan  1 1900  3:07:09:123PM", "Jan  1    1  3:07:09:123PM"},
        {16, "Jan  1 1900 15:07:09", "Jan  1 0001 15:07:09"},
        {23, "1900-01-01T15:07:09", "0001-01-01T15:07:09"},
        {140, "1900-01-01 15:07:09.123000", "0001-01-01 15:07:09.123456"},
        {40, "00-01-01 15:07:09.123000", "01-01-01 15:07:09.123456"},
        {24, nullptr, nullptr},
        {119, nullptr, nullptr},
        {141, nullptr, nullptr},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << "style " << c.style);
        Out a = run([&](char *b, int n) { return com__timeatochar(const_cast<CS_TIME *>(&t), b, n, c.style, shorts()); }, -1);
        Out b = run([&](char *b, int n) { return com__bigtimetochar(const_cast<CS_BIGTIME *>(&bt), b, n, c.style, shorts()); }, -1);
        if (c.time_text == nullptr) {
            EXPECT_EQ(a.rc, -1);
            EXPECT_EQ(b.rc, -1);
            continue;
        }
        EXPECT_EQ(a.text, c.time_text);
        EXPECT_EQ(b.text, c.big_text);
    }
    // Date-only styles give an empty text: a NUL, length 1.
    for (int style : {1, 7, 12, 15, 101, 106, 112, 115}) {
        Out o = run([&](char *b, int n) { return com__timeatochar(const_cast<CS_TIME *>(&t), b, n, style, shorts()); }, 8);
        EXPECT_EQ(o.rc, 1) << style;
        EXPECT_EQ(o.text, std::string(1, '\0')) << style;
        // The names are not needed for a date that is not shown.
        EXPECT_EQ(run([&](char *b, int n) { return com__timeatochar(const_cast<CS_TIME *>(&t), b, n, style, nullptr); }, 8).rc, 1);
    }
    EXPECT_EQ(run([&](char *b, int n) { return com__timeatochar(const_cast<CS_TIME *>(&t), b, n, 100, nullptr); }, -1).rc, -2);
    EXPECT_EQ(run([&](char *b, int n) { return com__timeatochar(const_cast<CS_TIME *>(&t), b, n, 0, nullptr); }, -1).rc, 7);
}

TEST(DateFormat, StorageTypes)
{
    // dtdays 0, dttime 0
    CS_DATETIME zero{0, 0};
    EXPECT_EQ(run([&](char *b, int n) { return com__datetochar(&zero, b, n, 0, shorts()); }, -1).text,
              "Jan  1 1900 12:00AM");
    EXPECT_EQ(run([&](char *b, int n) { return com__datetochar(&zero, b, n, 9, shorts()); }, -1).text,
              "Jan  1 1900 12:00:00:000AM");
    // 2008-03-05 15:07:09.123 (ticks 37 show as 123 ms)
    CS_DATETIME dt{39510, 15 * 1080000 + 7 * 18000 + 9 * 300 + 37};
    struct Case {
        int style;
        const char *text;
    };
    for (const Case &c : {Case{101, "03/05/2008"}, Case{23, "2008-03-05T15:07:09"}, Case{112, "20080305"},
                          Case{109, "Mar  5 2008  3:07:09:123PM"}, Case{7, "Mar 05, 08"},
                          Case{107, "Mar 05, 2008"}}) {
        EXPECT_EQ(run([&](char *b, int n) { return com__datetochar(&dt, b, n, c.style, shorts()); }, -1).text,
                  c.text);
        EXPECT_EQ(run([&](char *b, int n) { return com_cvtdatetochar(&dt, b, n, c.style, shorts()); }, -1).text,
                  c.text);
    }
    // CS_DATETIME4 widens to minutes.
    CS_DATETIME4 d4{39510, 15 * 60 + 7};
    EXPECT_EQ(run([&](char *b, int n) { return com__date4tochar(&d4, b, n, 9, shorts()); }, -1).text,
              "Mar  5 2008  3:07:00:000PM");
    EXPECT_EQ(run([&](char *b, int n) { return com_cvtdate4tochar(&d4, b, n, 16, shorts()); }, -1).text,
              "Mar  5 2008 15:07:00");
    // CS_DATE: styles 0 and 9 show the date alone, the others a midnight.
    CS_DATE d = -693595;
    EXPECT_EQ(run([&](char *b, int n) { return com__dateatochar(&d, b, n, 0, shorts()); }, -1).text, "Jan  1 0001");
    EXPECT_EQ(run([&](char *b, int n) { return com__dateatochar(&d, b, n, 9, shorts()); }, 5).rc, 0);
    EXPECT_EQ(run([&](char *b, int n) { return com__dateatochar(&d, b, n, 9, nullptr); }, -1).rc, -2);
    EXPECT_EQ(run([&](char *b, int n) { return com__dateatochar(&d, b, n, 121, shorts()); }, -1).text,
              "0001/01/01 00:00:00");
    EXPECT_EQ(run([&](char *b, int n) { return com__dateatochar(&d, b, n, 24, shorts()); }, -1).rc, -1);
    // CS_BIGDATETIME: .9996 seconds shows :000 in style 9, without a carry.
    CS_BIGDATETIME big = 63371948829999600ULL; // 2008-03-05 15:07:09.9996
    EXPECT_EQ(run([&](char *b, int n) { return com__bigdatetimetochar(&big, b, n, 9, shorts()); }, -1).text,
              "Mar  5 2008  3:07:09:000PM");
    EXPECT_EQ(run([&](char *b, int n) { return com__bigdatetimetochar(&big, b, n, 140, shorts()); }, -1).text,
              "2008-03-05 15:07:09.999600");
}

TEST(DateFormat, Primitives)
{
    char buf[16];
    struct Int {
        int value, len;
        char pad;
        const char *text;
    };
    const Int ints[] = {{2008, -2, 0, "08"}, {2008, -6, 0, "002008"}, {5, 2, 0, " 5"}, {5, -2, ':', "05:"},
                        {0, -3, 0, "000"},   {0, 2, 0, " 0"},         {12, 2, ' ', "12 "}, {123456, -6, 0, "123456"}};
    for (const Int &c : ints) {
        const int n = com__cpint(buf, c.value, c.pad, c.len);
        EXPECT_EQ(std::string(buf, static_cast<size_t>(n)), c.text) << c.value << " in " << c.len;
    }
    char abc[] = "abcdef";
    EXPECT_EQ(com__cpchar(buf, abc, 0, 3), 3);
    EXPECT_EQ(std::string(buf, 3), "abc");
    EXPECT_EQ(com__cpchar(buf, abc, '.', 9), 7);
    EXPECT_EQ(std::string(buf, 7), "abcdef.");
    struct Ito {
        CS_INT val;
        int len;
        const char *text;
    };
    const Ito itos[] = {{123, 3, "123"}, {123, 2, "*"},   {-12, 3, "-12"}, {-12, 2, "*"},
                        {123, 0, "123"}, {123, -1, "123"}, {-2147483647 - 1, 0, "-2147483648"}};
    for (const Ito &c : itos) {
        const int n = com__itochar(c.val, buf, c.len);
        EXPECT_EQ(std::string(buf, static_cast<size_t>(n)), c.text) << c.val << " in " << c.len;
    }
}

TEST(DateFormat, LegacyEntries)
{
    CS_DATETIME dt{39510, 15 * 1080000 + 7 * 18000 + 9 * 300 + 37};
    CS_BYTE raw[9];
    std::memcpy(raw + 1, &dt, sizeof dt); // unaligned on purpose
    CS_BYTE out[64];
    EXPECT_EQ(com_date2char(raw + 1, 8, out, -1, nullptr), 26);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), 26), "Mar  5 2008  3:07:09:123PM");
    EXPECT_EQ(com_date2char(raw + 1, 8, out, 26, nullptr), 26);
    EXPECT_EQ(com_date2char(raw + 1, 8, out, 25, nullptr), -1);
    EXPECT_EQ(com_date2char(nullptr, 8, out, 64, nullptr), 0);
    EXPECT_EQ(com_date2char(raw + 1, 0, out, 64, nullptr), 0);
    char lower[12][4] = {"jan", "feb", "mar", "apr", "may", "jun", "jul", "aug", "sep", "oct", "nov", "dec"};
    char *list[12];
    for (int i = 0; i < 12; i++)
        list[i] = lower[i];
    EXPECT_EQ(com_date2char_ex(raw + 1, 8, out, 64, list, 107), 12);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), 12), "mar 05, 2008");
    EXPECT_EQ(com_date2char_ex(raw + 1, 8, out, 64, list, 24), -1);
    EXPECT_EQ(com_date2char_ex(raw + 1, 8, out, 64, nullptr, 23), 19);
}

TEST(DateFormat, ExportedEntries)
{
    char buf[64];
    CS_DATETIME dt{39510, 0};
    EXPECT_EQ(comn_date_format(CS_DATETIME_TYPE, &dt, 23, nullptr, buf, sizeof buf), 19);
    EXPECT_EQ(std::string(buf, 19), "2008-03-05T00:00:00");
    EXPECT_EQ(comn_date_format(CS_INT_TYPE, &dt, 23, nullptr, buf, sizeof buf), CS_EDOMAIN);
    CS_BIGDATETIME big = 0;
    char text[] = "2008-03-05 15:07:09.123456";
    EXPECT_EQ(comn_date_parse(CS_BIGDATETIME_TYPE, text, 26, 0, 1, nullptr, nullptr, nullptr, &big, nullptr), 0);
    EXPECT_EQ(comn_date_format(CS_BIGDATETIME_TYPE, &big, 140, nullptr, buf, sizeof buf), 26);
    EXPECT_EQ(std::string(buf, 26), text);
    CS_BOOL truncated = 0;
    EXPECT_EQ(comn_date_parse(CS_TIME_TYPE, text, 26, 0, 1, nullptr, nullptr, nullptr, &big, &truncated), 0);
    EXPECT_EQ(truncated, 1);
    EXPECT_EQ(comn_date_parse(CS_INT_TYPE, text, 26, 0, 1, nullptr, nullptr, nullptr, &big, nullptr), CS_EDOMAIN);
}

TEST(DateFormat, WallClock)
{
    const time_t before = time(nullptr);
    struct Case {
        CS_INT format;
        CS_BOOL is12;
        size_t length;
    };
    for (const Case &c : {Case{1, 0, 17}, Case{3, 0, 17}, Case{7, 0, 17}, Case{2, 1, 20}}) {
        char buf[64];
        CS_INT outlen = -1;
        CS_DATEREC r{};
        r.datetzone = 77;
        ASSERT_EQ(comn_time(c.format, c.is12, buf, sizeof buf, &outlen, &r), CS_SUCCEED);
        EXPECT_EQ(outlen, static_cast<CS_INT>(c.length + 1)); // both parts plus 2
        EXPECT_EQ(std::strlen(buf), c.length) << buf;
        EXPECT_EQ(buf[2], '/');
        EXPECT_EQ(buf[8], ' ');
        EXPECT_EQ(buf[11], ':');
        if (c.is12) {
            EXPECT_TRUE(std::string(buf + 17) == " AM" || std::string(buf + 17) == " PM") << buf;
        }
        struct tm tm;
        localtime_r(&before, &tm);
        EXPECT_GE(r.dateyear, tm.tm_year + 1900);
        EXPECT_GE(r.datemonth, 0);
        EXPECT_LE(r.datemonth, 11);
        EXPECT_EQ(r.datetzone, 77); // not a field of the clock
        if (c.format == 3) { // year first
            EXPECT_EQ(std::stoi(std::string(buf, 2)), r.dateyear % 100);
        }
    }
    // Too small a buffer is CS_FAIL, with the length it needs.
    char small[18];
    CS_INT outlen = 0;
    EXPECT_EQ(comn_time(1, 0, small, 17, &outlen, nullptr), CS_FAIL);
    EXPECT_EQ(outlen, 18);
    EXPECT_EQ(comn_time(1, 0, small, 18, &outlen, nullptr), CS_SUCCEED);
    EXPECT_EQ(std::strlen(small), 17u);
    // Without a buffer only the record is filled.
    CS_DATEREC r{};
    EXPECT_EQ(comn_time(1, 0, nullptr, 0, nullptr, &r), CS_SUCCEED);
    EXPECT_GE(r.dateyear, 2000);
}

TEST(DateFormatDeath, NullArguments)
{
    char buf[8];
    CS_DATETIME dt{};
    EXPECT_NULL_POINTER(com_cvtdatetochar(nullptr, buf, 8, 0, shorts()));
    EXPECT_NULL_POINTER(comn_date_format(CS_DATETIME_TYPE, &dt, 0, nullptr, nullptr, 8));
    EXPECT_NULL_POINTER(comn_date_parse(CS_DATETIME_TYPE, buf, 0, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_BOMB(comn_date_parse(CS_DATETIME_TYPE, nullptr, 3, 0, 1, nullptr, nullptr, nullptr, &dt, nullptr));
}

// ---- against strftime ---------------------------------------------------------

TEST(DateFormat, MatchesStrftime)
{
    using namespace std::chrono;
    std::mt19937 rng(1753);
    std::uniform_int_distribution<int> days(-53690, 2958463), ticks(0, 25919999);
    struct Pair {
        int style;
        const char *strftime_format;
    };
    const Pair pairs[] = {{101, "%m/%d/%Y"}, {23, "%Y-%m-%dT%H:%M:%S"}, {112, "%Y%m%d"},
                          {108, "%H:%M:%S"}, {116, "%b %e %Y %H:%M:%S"}, {1, "%m/%d/%y"},
                          {11, "%y/%m/%d"},  {106, "%d %b %Y"},          {100, "%b %e %Y %l:%M%p"}};
    for (int i = 0; i < 20000; i++) {
        CS_DATETIME dt{days(rng), ticks(rng)};
        // The fields by the standard library's civil calendar.
        const year_month_day ymd{sys_days{1900y / January / 1} + std::chrono::days{dt.dtdays}};
        const auto secs = dt.dttime / 300;
        struct tm tm {};
        tm.tm_year = static_cast<int>(ymd.year()) - 1900;
        tm.tm_mon = static_cast<int>(static_cast<unsigned>(ymd.month())) - 1;
        tm.tm_mday = static_cast<int>(static_cast<unsigned>(ymd.day()));
        tm.tm_hour = secs / 3600;
        tm.tm_min = secs / 60 % 60;
        tm.tm_sec = secs % 60;
        const Pair &p = pairs[i % std::size(pairs)];
        char want[64], got[64];
        const size_t n = strftime(want, sizeof want, p.strftime_format, &tm);
        const int m = com__datetochar(&dt, got, sizeof got, p.style, shorts());
        ASSERT_EQ(std::string(got, static_cast<size_t>(m)), std::string(want, n))
            << "days " << dt.dtdays << " ticks " << dt.dttime << " style " << p.style;
    }
}

} // namespace
