// Date and time text by style: every style on one record, the cut rule at the
// capacity edges, the time-of-day variants, the exported entries, and a seeded
// comparison with strftime.
#include <chrono>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <tuple>
#include <utility>

#include "datetime/calendar.h"
#include "datetime/format.h"
#include "kescomn/datetext.h"
#include "support/context.h"

namespace {

char **shorts() { return com__get_shortmonths(); }

CS_DATEREC record(int y, int h, int msec, int frac, int prec)
{
    CS_DATEREC r{};
    r.dateyear = y, r.datemonth = 2, r.datedmonth = 5, r.datehour = h, r.dateminute = 7, r.datesecond = 9;
    r.datemsecond = msec, r.datesecfrac = frac, r.datesecprec = prec;
    return r;
}

struct Out {
    int rc;
    std::string text;
};

// Formats into cap bytes (below 0: no limit) between sentinels and fails when
// a byte outside them changed.  The text is the result's length, or when the
// text was cut, the bytes written.
template <class F> Out run(F format, int cap = -1)
{
    char buf[128];
    std::memset(buf, '#', sizeof buf);
    const int rc = format(buf + 8, cap);
    const int limit = cap < 0 ? 100 : cap;
    for (int i = 0; i < 128; i++)
        EXPECT_TRUE((i >= 8 && (cap < 0 || i < 8 + limit)) || buf[i] == '#') << "byte " << i - 8 << ", cap " << cap;
    int written = limit;
    while (written > 0 && buf[8 + written - 1] == '#')
        written--;
    return {rc, std::string(buf + 8, static_cast<size_t>(rc > 0 ? rc : written))};
}

Out daterec(CS_DATEREC r, int style, int cap = -1, char **months = shorts())
{
    return run([&](char *b, int n) { return com__daterectochar(&r, b, n, style, months, r.datesecprec); }, cap);
}

// 2008-03-05 15:07:09.123456 in every style that exists.
const std::pair<int, const char *> kStyles[] = {
    {0, "Mar  5 2008  3:07PM"}, {1, "03/05/08"}, {2, "08.03.05"}, {3, "05/03/08"}, {4, "05.03.08"},
    {5, "05-03-08"}, {6, "05 Mar 08"}, {7, "Mar 05, 08"}, {8, "15:07:09"}, {9, "Mar  5 2008  3:07:09:123PM"},
    {10, "03-05-08"}, {11, "08/03/05"}, {12, "080305"}, {13, "08/05/03"}, {14, "03/08/05"}, {15, "05/08/03"},
    {16, "Mar  5 2008 15:07:09"}, {17, " 3:07PM"}, {18, "15:07"}, {19, " 3:07:09:123PM"}, {20, "15:07:09:123"},
    {21, "08/03/05 15:07:09"}, {22, "08/03/05  3:07PM"}, {23, "2008-03-05T15:07:09"},
    {36, " 3:07:09.123456PM"}, {37, "15:07:09.123456"}, {38, "Mar  5 08  3:07:09.123456PM"},
    {39, "Mar  5 08 15:07:09.123456"}, {40, "08-03-05 15:07:09.123456"}, {100, "Mar  5 2008  3:07PM"},
    {101, "03/05/2008"}, {102, "2008.03.05"}, {103, "05/03/2008"}, {104, "05.03.2008"}, {105, "05-03-2008"},
    {106, "05 Mar 2008"}, {107, "Mar 05, 2008"}, {108, "15:07:09"}, {109, "Mar  5 2008  3:07:09:123PM"},
    {110, "03-05-2008"}, {111, "2008/03/05"}, {112, "20080305"}, {113, "2008/05/03"}, {114, "03/2008/05"},
    {115, "05/2008/03"}, {116, "Mar  5 2008 15:07:09"}, {117, " 3:07PM"}, {118, "15:07"},
    {121, "2008/03/05 15:07:09"}, {122, "2008/03/05  3:07PM"}, {136, " 3:07:09.123456PM"},
    {137, "15:07:09.123456"}, {138, "Mar  5 2008  3:07:09.123456PM"}, {139, "Mar  5 2008 15:07:09.123456"},
    {140, "2008-03-05 15:07:09.123456"},
};

TEST(DateFormat, EveryStyleAndNoOther)
{
    const CS_DATEREC r = record(2008, 15, 0, 123456, 1000000);
    const std::string named = "|0|6|7|9|16|38|39|100|106|107|109|116|138|139|";
    size_t next = 0;
    for (int style = -1; style <= 141; style++) {
        SCOPED_TRACE(testing::Message() << "style " << style);
        if (next == std::size(kStyles) || kStyles[next].first != style) {
            EXPECT_EQ(daterec(r, style).rc, -1);
            continue;
        }
        const std::string want = kStyles[next++].second;
        const Out o = daterec(r, style);
        EXPECT_EQ(o.rc, static_cast<int>(want.size()));
        EXPECT_EQ(o.text, want);
        // Only the styles that show a month name need the list.
        const bool needs = named.find("|" + std::to_string(style) + "|") != std::string::npos;
        EXPECT_EQ(daterec(r, style, -1, nullptr).rc, needs ? -2 : o.rc);
    }
    EXPECT_EQ(daterec(r, 1000).rc, -1);
}

TEST(DateFormat, HoursFractionsAndYears)
{
    struct Case {
        int year, hour, msec, frac, prec, style;
        const char *text;
    };
    const Case cases[] = {
        // the 12-hour clock at its edges
        {2008, 0, 0, 0, 300, 17, "12:07AM"}, {2008, 11, 0, 0, 300, 17, "11:07AM"},
        {2008, 12, 0, 0, 300, 17, "12:07PM"}, {2008, 23, 0, 0, 300, 100, "Mar  5 2008 11:07PM"},
        // microseconds round to milliseconds but never carry into the second
        {2008, 15, 0, 999499, 1000000, 20, "15:07:09:999"}, {2008, 15, 0, 999500, 1000000, 20, "15:07:09:000"},
        {2008, 15, 0, 499, 1000000, 20, "15:07:09:000"},    {2008, 15, 0, 500, 1000000, 20, "15:07:09:001"},
        {2008, 15, 0, 1, 1000000, 37, "15:07:09.000001"},
        // other precisions read the milliseconds
        {2008, 15, 5, 0, 300, 20, "15:07:09:005"}, {2008, 15, 7, 123456, 0, 37, "15:07:09.007000"},
        // years are zero-filled to their width, two digits cut from four
        {99, 0, 0, 0, 300, 101, "03/05/0099"}, {1, 0, 0, 0, 300, 12, "010305"}, {2000, 0, 0, 0, 300, 1, "03/05/00"},
        {10, 0, 0, 0, 300, 0, "Mar  5 0010 12:07AM"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(daterec(record(c.year, c.hour, c.msec, c.frac, c.prec), c.style).text, c.text)
            << c.year << " " << c.frac << " style " << c.style;
}

// The style writers fill each field the way com__cpint does at that field's
// width, also for field values no calendar gives (wide, negative).
TEST(DateFormat, FieldsMatchTheCopyPrimitive)
{
    const auto cp = [](int v, int len) {
        char b[16];
        return std::string(b, static_cast<size_t>(com__cpint(b, v, 0, len)));
    };
    const auto h12 = [](int h) { return h == 0 ? 12 : (h > 12 ? h - 12 : h); };
    for (const int v : {0, 1, 9, 10, 12, 13, 23, 99, 100, 105, 999, 1000, 1009, 9999, 10000, 12345, 999499,
                        999500, 999999, 1000000, 1234567, -1, -499, -500, -1501, -1234567}) {
        SCOPED_TRACE(testing::Message() << "value " << v);
        CS_DATEREC r{};
        r.dateyear = r.datedmonth = r.datehour = r.dateminute = r.datesecond = r.datemsecond = r.datesecfrac = v;
        r.datemonth = v - 1;
        const std::string mdy = cp(v, -2) + "/" + cp(v, -2) + "/" + cp(v, -4);
        const std::string hns = cp(v, -2) + ":" + cp(v, -2) + ":" + cp(v, -2);
        const std::string ap = v >= 12 ? "PM" : "AM";
        EXPECT_EQ(daterec(r, 101).text, mdy);
        EXPECT_EQ(daterec(r, 14).text, cp(v, -2) + "/" + cp(v, -2) + "/" + cp(v, -2));
        EXPECT_EQ(daterec(r, 121).text, cp(v, -4) + "/" + cp(v, -2) + "/" + cp(v, -2) + " " + hns);
        EXPECT_EQ(daterec(r, 19).text, cp(h12(v), 2) + ":" + cp(v, -2) + ":" + cp(v, -2) + ":" + cp(v, -3) + ap);
        EXPECT_EQ(daterec(r, 37).text, hns + "." + cp(v * 1000, -6));
        r.datesecprec = 1000000;
        EXPECT_EQ(daterec(r, 20).text, hns + ":" + cp((v + 500) / 1000, -3));
        EXPECT_EQ(daterec(r, 37).text, hns + "." + cp(v, -6));
        // The day and the year of a time alone are blank-filled; no month name.
        r.datemonth = 12;
        const Out t = run([&](char *b, int n) { return com__timerectochar(&r, b, n, 100, shorts(), 300); });
        EXPECT_EQ(t.text, " " + cp(v, 2) + " " + cp(v, 4) + " " + cp(h12(v), 2) + ":" + cp(v, -2) + ap);
    }
}

TEST(DateFormat, CutAtTheCapacityEdges)
{
    const CS_DATEREC r = record(2008, 15, 123, 0, 300);
    // The longest layout, with a month name cut to 9 bytes: 35 bytes.
    char name[] = "Septembrxyz";
    char *list[12] = {nullptr, nullptr, name};
    for (const auto &[style, cap] : {std::pair{101, 0}, {101, 1}, {101, 9}, {101, 10}, {101, 11}, {101, -5},
                                     {138, 34}, {138, 35}}) {
        const std::string full = style == 101 ? "03/05/2008" : "Septembrx  5 2008  3:07:09.123000PM";
        const bool fits = cap < 0 || cap >= static_cast<int>(full.size());
        const Out o = daterec(r, style, cap, list);
        EXPECT_EQ(o.rc, fits ? static_cast<int>(full.size()) : 0) << cap;
        EXPECT_EQ(o.text, full.substr(0, fits ? full.size() : static_cast<size_t>(cap))) << cap;
    }
}

TEST(DateFormat, EveryTypeThroughTheExportedEntry)
{
    CS_DATETIME dt{39510, 15 * 1080000 + 7 * 18000 + 9 * 300 + 37}; // 2008-03-05 15:07:09.123
    CS_DATETIME4 d4{39510, 15 * 60 + 7};
    CS_DATE d = -693595;                                            // 0001-01-01
    CS_BIGDATETIME big = 63371948829999600ULL;                      // 2008-03-05 15:07:09.9996
    CS_TIME t = dt.dttime;                                          // on 1900-01-01
    CS_BIGTIME bt = ((15 * 60 + 7) * 60 + 9) * 1000000ULL + 123456; // on 0001-01-01
    const std::tuple<CS_INT, void *, int, const char *> cases[] = {
        {CS_DATETIME_TYPE, &dt, 107, "Mar 05, 2008"},
        {CS_DATETIME4_TYPE, &d4, 9, "Mar  5 2008  3:07:00:000PM"},
        {CS_DATE_TYPE, &d, 0, "Jan  1 0001"}, // styles 0 and 9 show a date alone
        {CS_DATE_TYPE, &d, 121, "0001/01/01 00:00:00"},
        {CS_BIGDATETIME_TYPE, &big, 9, "Mar  5 2008  3:07:09:000PM"}, // no carry into the second
        {CS_BIGDATETIME_TYPE, &big, 140, "2008-03-05 15:07:09.999600"},
        // a time of day: styles 0 and 9 drop the date, 100 and 109 blank-fill
        // the year, date-only styles give one NUL
        {CS_TIME_TYPE, &t, 0, " 3:07PM"}, {CS_BIGTIME_TYPE, &bt, 9, " 3:07:09:123PM"},
        {CS_TIME_TYPE, &t, 37, "15:07:09.123000"}, {CS_BIGTIME_TYPE, &bt, 37, "15:07:09.123456"},
        {CS_TIME_TYPE, &t, 100, "Jan  1 1900  3:07PM"}, {CS_BIGTIME_TYPE, &bt, 109, "Jan  1    1  3:07:09:123PM"},
        {CS_TIME_TYPE, &t, 16, "Jan  1 1900 15:07:09"}, {CS_BIGTIME_TYPE, &bt, 16, "Jan  1 0001 15:07:09"},
        {CS_TIME_TYPE, &t, 40, "00-01-01 15:07:09.123000"}, {CS_BIGTIME_TYPE, &bt, 40, "01-01-01 15:07:09.123456"},
        {CS_TIME_TYPE, &t, 106, "NUL"}, {CS_BIGTIME_TYPE, &bt, 1, "NUL"},
        {CS_TIME_TYPE, &t, 24, "-1"}, {CS_BIGTIME_TYPE, &bt, 119, "-1"},
        {CS_DATE_TYPE, &d, 24, "-1"}, {CS_INT_TYPE, &dt, 0, "-107"},
    };
    char buf[64];
    for (const auto &[type, value, style, text] : cases) {
        const CS_INT n = comn_date_format(type, value, style, nullptr, buf, sizeof buf);
        const std::string got = n == 1 && buf[0] == '\0' ? "NUL" : n > 0 ? std::string(buf, n) : std::to_string(n);
        EXPECT_EQ(got, text) << type << " style " << style;
    }
    // The names are needed only for a date that is shown; the NUL needs room.
    EXPECT_EQ(com__timeatochar(&t, buf, 8, 7, nullptr), 1);
    EXPECT_EQ(com__timeatochar(&t, buf, 0, 7, nullptr), 0);
    EXPECT_EQ(com__timeatochar(&t, buf, 64, 100, nullptr), -2);
    EXPECT_EQ(com_cvtdate4tochar(&d4, buf, 64, 16, nullptr), -2); // no default names here
    EXPECT_EQ(com__dateatochar(&d, buf, 5, 9, shorts()), 0);

    // The byte-level entry: any alignment, style 9 by default, -1 when cut,
    // 0 for no value.
    CS_BYTE raw[9], out[64];
    std::memcpy(raw + 1, &dt, sizeof dt);
    EXPECT_EQ(com_date2char(raw + 1, 8, out, 26, nullptr), 26);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), 26), "Mar  5 2008  3:07:09:123PM");
    EXPECT_EQ(com_date2char(raw + 1, 8, out, 25, nullptr), -1);
    EXPECT_EQ(com_date2char(nullptr, 8, out, 64, nullptr), 0);
    EXPECT_EQ(com_date2char(raw + 1, 0, out, 64, nullptr), 0);
    EXPECT_EQ(com_date2char_ex(raw + 1, 8, out, 64, nullptr, 24), -1);
    char *lower[12] = {nullptr, nullptr, const_cast<char *>("mar")};
    EXPECT_EQ(com_date2char_ex(raw + 1, 8, out, -1, lower, 107), 12);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), 12), "mar 05, 2008");

    // Decimal text, or a lone "*" when it does not fit a positive width.
    for (const auto &[val, len, text] : {std::tuple{123, 3, "123"}, {-12, 2, "*"}, {-2147483647 - 1, 0, "-2147483648"}})
        EXPECT_EQ(std::string(buf, com__itochar(val, buf, len)), text) << val << " in " << len;
}

TEST(DateFormat, WallClock)
{
    // The length needed counts a blank and a NUL; CS_FAIL below it.
    for (const auto &[format, is12, needed] : {std::tuple{1, 0, 18}, {3, 0, 18}, {7, 0, 18}, {2, 1, 21}}) {
        char buf[64];
        CS_INT outlen = -1;
        CS_DATEREC r{};
        r.datetzone = 77;
        ASSERT_EQ(comn_time(format, is12, buf, needed, &outlen, &r), CS_SUCCEED);
        EXPECT_EQ(outlen, needed);
        EXPECT_EQ(comn_time(format, is12, buf, needed - 1, &outlen, nullptr), CS_FAIL);
        EXPECT_TRUE(buf[2] == '/' && buf[5] == '/' && buf[8] == ' ' && buf[11] == ':') << buf;
        EXPECT_TRUE(!is12 || std::string(buf + 17) == " AM" || std::string(buf + 17) == " PM") << buf;
        EXPECT_TRUE(r.datemonth >= 0 && r.datemonth <= 11 && r.datetzone == 77); // tzone is no field of the clock
        EXPECT_TRUE(format != 3 || std::stoi(std::string(buf, 2)) == r.dateyear % 100) << buf; // year first
    }
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

TEST(DateFormat, MatchesStrftime)
{
    using namespace std::chrono;
    std::mt19937 rng(1753);
    std::uniform_int_distribution<int> days(-53690, 2958463), ticks(0, 25919999);
    const std::pair<int, const char *> pairs[] = {
        {101, "%m/%d/%Y"}, {23, "%Y-%m-%dT%H:%M:%S"}, {112, "%Y%m%d"}, {108, "%H:%M:%S"}, {116, "%b %e %Y %H:%M:%S"},
        {1, "%m/%d/%y"},   {11, "%y/%m/%d"},          {106, "%d %b %Y"}, {100, "%b %e %Y %l:%M%p"}};
    for (int i = 0; i < 20000; i++) {
        CS_DATETIME dt{days(rng), ticks(rng)};
        // The fields by the standard library's civil calendar.
        const year_month_day ymd{sys_days{1900y / January / 1} + std::chrono::days{dt.dtdays}};
        const int secs = dt.dttime / 300;
        struct tm tm {};
        tm.tm_year = static_cast<int>(ymd.year()) - 1900;
        tm.tm_mon = static_cast<int>(static_cast<unsigned>(ymd.month())) - 1;
        tm.tm_mday = static_cast<int>(static_cast<unsigned>(ymd.day()));
        tm.tm_hour = secs / 3600, tm.tm_min = secs / 60 % 60, tm.tm_sec = secs % 60;
        const auto &[style, format] = pairs[i % std::size(pairs)];
        char want[64], got[64];
        const size_t n = strftime(want, sizeof want, format, &tm);
        const int m = com__datetochar(&dt, got, sizeof got, style, shorts());
        ASSERT_EQ(std::string(got, static_cast<size_t>(m)), std::string(want, n))
            << "days " << dt.dtdays << " ticks " << dt.dttime << " style " << style;
    }
}

} // namespace
