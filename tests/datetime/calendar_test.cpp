// Calendar edge cases: the boundaries of each type, the statuses of make and
// add, the truncation rules of difference, names, descriptors and kernels.
#include <cstring>
#include <string>

#include "datetime/calendar.h"
#include "support/context.h"

namespace {

using kes::test::constant;

CS_DATEREC rec_of(int y, int m, int d, int h = 0, int mi = 0, int s = 0, int ms = 0)
{
    CS_DATEREC r{};
    r.dateyear = y;
    r.datemonth = m - 1;
    r.datedmonth = d;
    r.datehour = h;
    r.dateminute = mi;
    r.datesecond = s;
    r.datemsecond = ms;
    r.datesecprec = 300;
    return r;
}

// A CS_DATETIME from calendar fields (month from 1).
CS_DATETIME at(int y, int m, int d, int h = 0, int mi = 0, int s = 0, int ms = 0)
{
    CS_DATEREC r = rec_of(y, m, d, h, mi, s, ms);
    CS_DATETIME dt{};
    EXPECT_EQ(com__datemake(&dt, &r), 0);
    EXPECT_EQ(com__timemake(&dt, &r), 0);
    return dt;
}

CS_BIGDATETIME big_at(int y, int m, int d, int h = 0, int mi = 0, int s = 0, int us = 0)
{
    CS_DATEREC r = rec_of(y, m, d, h, mi, s);
    r.datesecprec = 1000000;
    r.datesecfrac = us;
    CS_BIGDATETIME v = 0;
    EXPECT_EQ(com_bigdatetimemake(&v, &r), 0);
    return v;
}

uint64_t load_u8(const CS_BYTE *p)
{
    uint64_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

std::string ymd(const CS_DATETIME &dt)
{
    CS_DATEREC r{};
    com__datecrack(const_cast<CS_DATETIME *>(&dt), &r);
    com__timecrack(const_cast<CS_DATETIME *>(&dt), &r);
    char buf[64];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d.%03d", r.dateyear, r.datemonth + 1,
                  r.datedmonth, r.datehour, r.dateminute, r.datesecond, r.datemsecond);
    return buf;
}

TEST(Crack, LandmarkDays)
{
    struct Case {
        CS_INT dtdays;
        int year, month0, mday, yday, wday;
    };
    constexpr Case cases[] = {
        {0, 1900, 0, 1, 1, 1},             // day 0 is a Monday
        {-693595, 1, 0, 1, 1, 1},          // first valid day
        {2958463, 9999, 11, 31, 365, 5},   // last valid day, a Friday
        {-53690, 1753, 0, 1, 1, 1},        // first CS_DATETIME day
        {59, 1900, 2, 1, 60, 4},           // 1900 is no leap year
        {36583, 2000, 1, 29, 60, 2},       // 2000 is
        {36889, 2000, 11, 31, 366, 0},     // day 366 of a leap year
        {-1, 1899, 11, 31, 365, 0},
        {65535, 2079, 5, 6, 157, 2},       // last CS_DATETIME4 day
    };
    for (const Case &c : cases) {
        CS_DATETIME dt{c.dtdays, 0};
        CS_DATEREC r{};
        com__datecrack(&dt, &r);
        EXPECT_EQ(r.dateyear, c.year) << c.dtdays;
        EXPECT_EQ(r.datemonth, c.month0) << c.dtdays;
        EXPECT_EQ(r.datedmonth, c.mday) << c.dtdays;
        EXPECT_EQ(r.datedyear, c.yday) << c.dtdays;
        EXPECT_EQ(r.datedweek, c.wday) << c.dtdays;
    }
}

TEST(Crack, GarbageDaysDoNotFaultAndWeekdaysStayInRange)
{
    for (CS_INT d : {INT32_MIN, INT32_MIN + 1, -693596, -1000000, 2958464, INT32_MAX}) {
        CS_DATETIME dt{d, INT32_MIN};
        CS_DATEREC r{};
        com__datecrack(&dt, &r);
        com__timecrack(&dt, &r);
        EXPECT_GE(r.datedweek, 0) << d;
        EXPECT_LE(r.datedweek, 6) << d;
        EXPECT_GE(r.datemonth, 0) << d;
        EXPECT_LE(r.datemonth, 11) << d;
        char name[32];
        EXPECT_GT(com__datename(3, &dt, name, Com__en_months, Com__en_days), 0) << d;
    }
}

TEST(Crack, TicksAndTheirMilliseconds)
{
    struct Case {
        CS_INT ticks;
        int h, m, s, ms;
    };
    constexpr Case cases[] = {
        {0, 0, 0, 0, 0},         {1, 0, 0, 0, 3},          {2, 0, 0, 0, 6},
        {299, 0, 0, 0, 996},     {300, 0, 0, 1, 0},        {17999, 0, 0, 59, 996},
        {18000, 0, 1, 0, 0},     {1080000, 1, 0, 0, 0},    {25919999, 23, 59, 59, 996},
        {0x2000000 + 300, 0, 0, 1, 0}, // only the low 25 bits count
    };
    for (const Case &c : cases) {
        CS_DATETIME dt{0, c.ticks};
        CS_DATEREC r{};
        r.datesecfrac = 77;
        com__timecrack(&dt, &r);
        EXPECT_EQ(r.datehour, c.h) << c.ticks;
        EXPECT_EQ(r.dateminute, c.m) << c.ticks;
        EXPECT_EQ(r.datesecond, c.s) << c.ticks;
        EXPECT_EQ(r.datemsecond, c.ms) << c.ticks;
        EXPECT_EQ(r.datesecprec, 300);
        EXPECT_EQ(r.datesecfrac, 0);
    }
}

TEST(Crack, ExportedCracksKeepTheOtherHalfOfTheRecord)
{
    CS_DATETIME dt = at(2008, 12, 29, 13, 14, 15, 160);
    CS_DATEREC r{};
    r.datehour = 99;
    r.datetzone = 5;
    com_datecrack(&dt, &r);
    EXPECT_EQ(r.datehour, 99);
    EXPECT_EQ(r.datetzone, 5);
    EXPECT_EQ(r.dateyear, 2008);
    r.dateyear = 1;
    com_timecrack(&dt, &r);
    EXPECT_EQ(r.dateyear, 1);
    EXPECT_EQ(r.datehour, 13);
    EXPECT_EQ(r.datemsecond, 160);
}

TEST(Crack, BigTypes)
{
    CS_BIGDATETIME v = kes::cal::kBigMin;
    CS_DATEREC r{};
    com_bigdatecrack(&v, &r);
    com_bigtimecrack(&v, &r);
    EXPECT_EQ(r.dateyear, 1);
    EXPECT_EQ(r.datedmonth, 1);
    EXPECT_EQ(r.datesecfrac, 0);
    v = kes::cal::kBigEnd - 1;
    com_bigdatecrack(&v, &r);
    com_bigtimecrack(&v, &r);
    EXPECT_EQ(r.dateyear, 9999);
    EXPECT_EQ(r.datemonth, 11);
    EXPECT_EQ(r.datedmonth, 31);
    EXPECT_EQ(r.datehour, 23);
    EXPECT_EQ(r.datesecond, 59);
    EXPECT_EQ(r.datesecfrac, 999999);
    EXPECT_EQ(r.datesecprec, 1000000);
    EXPECT_EQ(r.datemsecond, 0);
}

TEST(Leap, OddArgumentConventionAndCounts)
{
    struct Case {
        int arg, leap;
    };
    constexpr Case leaps[] = {{1999, 1}, {1899, 0}, {2003, 1}, {2004, 0}, {1599, 1}, {1699, 0}, {-1, 1}, {0, 0}, {3, 1}};
    for (const Case &c : leaps)
        EXPECT_EQ(leapyear(c.arg), c.leap) << c.arg;
    constexpr Case counts[] = {{-5, 0}, {0, 0}, {3, 0}, {4, 1}, {100, 24}, {400, 97}, {1899, 460}, {9999, 2424}};
    for (const Case &c : counts)
        EXPECT_EQ(com__leapcnt(c.arg), c.leap) << c.arg;
}

TEST(Make, DateStatusesAndPartialValues)
{
    struct Case {
        int y, m0, d, status;
        CS_INT dtdays; // full value on success, the partial sum otherwise
    };
    constexpr Case cases[] = {
        {1900, 0, 1, 0, 0},
        {1, 0, 1, 0, -693595},
        {9999, 11, 31, 0, 2958463},
        {2000, 1, 29, 0, 36583},
        {1900, 1, 29, 3, 693595 + 31}, // no February 29 in 1900
        {0, 0, 1, 1, 0},
        {10000, 0, 1, 1, 0},
        {1900, 12, 1, 2, 693595},
        {1900, -1, 1, 2, 693595},
        {1900, 3, 31, 3, 693595 + 90},
        {1900, 3, 0, 3, 693595 + 90},
    };
    for (const Case &c : cases) {
        CS_DATEREC r = rec_of(c.y, c.m0 + 1, c.d);
        CS_DATETIME dt{-7, -7};
        EXPECT_EQ(com_datemake(&dt, &r), c.status) << c.y << "-" << c.m0 << "-" << c.d;
        EXPECT_EQ(dt.dtdays, c.dtdays) << c.y << "-" << c.m0 << "-" << c.d;
        EXPECT_EQ(dt.dttime, -7);
        CS_BIGDATETIME big = 123;
        EXPECT_EQ(com_bigdatemake(&big, &r), c.status);
        if (c.status == 0)
            EXPECT_EQ(big, kes::cal::kBigMin + static_cast<uint64_t>(c.dtdays + 693595) * 86400000000ULL);
        else
            EXPECT_EQ(big, 123u);
    }
}

TEST(Make, TimeStatusesAndMillisecondRounding)
{
    struct Case {
        int h, m, s, ms, status;
        CS_INT ticks;
    };
    constexpr Case cases[] = {
        {0, 0, 0, 999, 0, 299},  {0, 0, 0, 998, 0, 299}, {0, 0, 0, 996, 0, 299}, {0, 0, 0, 994, 0, 298},
        {0, 0, 0, 1, 0, 0},      {0, 0, 0, 2, 0, 1},     {0, 0, 0, 5, 0, 2},     {0, 0, 0, 0, 0, 0},
        {23, 59, 59, 999, 0, 25919999},
        {24, 0, 0, 0, 4, 0},     {-1, 0, 0, 0, 4, 0},    {1, 60, 0, 0, 5, 1080000},
        {1, 1, 60, 0, 6, 1098000}, {1, 1, 1, 1000, 7, 1098300}, {1, 1, 1, -1, 7, 1098300},
    };
    for (const Case &c : cases) {
        CS_DATEREC r = rec_of(1900, 1, 1, c.h, c.m, c.s, c.ms);
        CS_DATETIME dt{-7, -7};
        EXPECT_EQ(com_timemake(&dt, &r), c.status) << c.h << ":" << c.m << ":" << c.s << "." << c.ms;
        EXPECT_EQ(dt.dttime, c.ticks) << c.h << ":" << c.m << ":" << c.s << "." << c.ms;
        EXPECT_EQ(dt.dtdays, -7);
    }
    // At microsecond precision the milliseconds are the fraction cut to 1000.
    CS_DATEREC r = rec_of(1900, 1, 1, 0, 0, 0, 0);
    r.datesecprec = 1000000;
    r.datesecfrac = 999999;
    CS_DATETIME dt{};
    EXPECT_EQ(com_timemake(&dt, &r), 0);
    EXPECT_EQ(dt.dttime, 299);
}

TEST(Make, BigTimeFraction)
{
    struct Case {
        int prec, frac, ms, status;
        CS_BIGTIME value;
    };
    constexpr Case cases[] = {
        {1000000, 999999, 0, 0, 3723999999ULL}, {1000000, 1000000, 0, 7, 0}, {1000000, -1, 0, 7, 0},
        {300, 5, 999, 0, 3723999000ULL},        {300, 0, 1000, 7, 0},
    };
    for (const Case &c : cases) {
        CS_DATEREC r = rec_of(1900, 1, 1, 1, 2, 3, c.ms);
        r.datesecprec = c.prec;
        r.datesecfrac = c.frac;
        CS_BIGTIME bt = 0;
        EXPECT_EQ(com_bigtimemake(&bt, &r), c.status);
        EXPECT_EQ(bt, c.value);
    }
    CS_DATEREC r = rec_of(2000, 1, 1, 24);
    CS_BIGDATETIME v = 5;
    EXPECT_EQ(com_bigdatetimemake(&v, &r), 4);
    EXPECT_EQ(v, 5u);
}

TEST(Part, WeekdayFirstdayAndIsoBoundaries)
{
    const CS_DATETIME sunday = at(2008, 12, 28);
    EXPECT_EQ(com_datepart(3, const_cast<CS_DATETIME *>(&sunday), 0), 1);
    EXPECT_EQ(com_datepart(3, const_cast<CS_DATETIME *>(&sunday), 1), 7);
    EXPECT_EQ(com_datepart(13, const_cast<CS_DATETIME *>(&sunday), 0), 7);

    struct Case {
        int y, m, d, iso_year, iso_week, sunday_week;
    };
    constexpr Case cases[] = {
        {2005, 1, 1, 2004, 53, 1},  {2008, 12, 29, 2009, 1, 53}, {2008, 12, 28, 2008, 52, 53},
        {2004, 12, 31, 2004, 53, 53}, {2010, 1, 3, 2009, 53, 2},  {2010, 1, 4, 2010, 1, 2},
        {1, 1, 1, 1, 1, 1},          {9999, 12, 31, 9999, 52, 53},
    };
    for (const Case &c : cases) {
        CS_DATETIME dt = at(c.y, c.m, c.d);
        EXPECT_EQ(com__datepart(11, &dt, 0), c.iso_year) << c.y << "-" << c.m << "-" << c.d;
        EXPECT_EQ(com__datepart(12, &dt, 0), c.iso_week) << c.y << "-" << c.m << "-" << c.d;
        EXPECT_EQ(com__datepart(10, &dt, 0), c.sunday_week) << c.y << "-" << c.m << "-" << c.d;
    }
}

TEST(Part, MillisecondsAndMicrosecondsByType)
{
    CS_DATETIME dt = at(2000, 1, 1, 0, 0, 0, 996);
    EXPECT_EQ(com__datepart(9, &dt, 0), 996);
    EXPECT_EQ(com__datepart(14, &dt, 0), 0);
    CS_BIGDATETIME big = big_at(2000, 1, 1, 0, 0, 0, 123456);
    EXPECT_EQ(com__bigdatepart(9, &big, 0), 123);
    EXPECT_EQ(com__bigdatepart(14, &big, 0), 123456);
}

TEST(Name, NumbersNamesAndTheirLimits)
{
    CS_DATETIME sunday = at(2008, 12, 28, 7, 5);
    struct Case {
        int part;
        const char *text;
    };
    const Case cases[] = {
        {0, "2008"}, {1, "4"},  {2, "December"}, {3, "Sunday"}, {4, "28"}, {5, "363"}, {6, "7"}, {7, "5"},
        {8, "0"},    {9, "0"},  {10, "53"},      {11, "2008"},  {12, "52"},
        {13, "Monday"}, // the ISO weekday name is always days[1]
        {14, "0"},
    };
    for (const Case &c : cases) {
        char buf[40];
        std::memset(buf, '#', sizeof buf);
        const int n = com_datename(c.part, &sunday, buf, Com__en_months, Com__en_days);
        EXPECT_EQ(std::string(buf, static_cast<size_t>(n)), c.text) << "part " << c.part;
        EXPECT_EQ(buf[n], '#') << "no terminator, no fill";
    }
    char buf[40];
    EXPECT_EQ(com_datename(2, &sunday, buf, nullptr, Com__en_days), 0);
    EXPECT_EQ(com_datename(3, &sunday, buf, Com__en_months, nullptr), 0);
    EXPECT_EQ(com_datename(15, &sunday, buf, Com__en_months, Com__en_days), 0);
    EXPECT_EQ(com_datename(-1, &sunday, buf, Com__en_months, Com__en_days), 0);
    // A number wider than its field is a single "*".
    EXPECT_EQ(com__datenameval(0, buf, nullptr, nullptr, 12345, 0), 1);
    EXPECT_EQ(buf[0], '*');
    EXPECT_EQ(com__datenameval(14, buf, nullptr, nullptr, 999999, 0), 6);
    EXPECT_EQ(com__datenameval(14, buf, nullptr, nullptr, 1000000, 0), 1);
    EXPECT_EQ(com__datenameval(0, buf, nullptr, nullptr, -999, 0), 4);
    EXPECT_EQ(com__datenameval(2, buf, Com__en_months, nullptr, 13, 0), 0);
    // Names stop at 30 bytes.
    char long_name[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghij";
    char *months[12];
    for (char *&m : months)
        m = long_name;
    std::memset(buf, '#', sizeof buf);
    EXPECT_EQ(com_datename(2, &sunday, buf, months, Com__en_days), 30);
    EXPECT_EQ(buf[30], '#');
    CS_BIGDATETIME big = big_at(2008, 12, 28, 0, 0, 0, 654321);
    EXPECT_EQ(com__bigdatename(14, &big, buf, nullptr, nullptr), 6);
    EXPECT_EQ(std::string(buf, 6), "654321");
    EXPECT_EQ(com__bigdatename(3, &big, buf, Com__en_months, Com__en_days), 6);
}

TEST(Add, CalendarPartsClampAndCarry)
{
    struct Case {
        int part, value;
        CS_DATETIME from;
        const char *to;
    };
    const Case cases[] = {
        {2, 1, at(2001, 1, 31), "2001-02-28 00:00:00.000"},
        {2, -13, at(2001, 1, 15), "1999-12-15 00:00:00.000"},
        {2, 12, at(2001, 1, 15), "2002-01-15 00:00:00.000"},
        {2, -12, at(2001, 1, 15), "2000-01-15 00:00:00.000"},
        {2, -1, at(2001, 1, 15), "2000-12-15 00:00:00.000"},
        {1, 1, at(2000, 11, 30, 5), "2001-02-28 05:00:00.000"},
        {0, 1, at(2000, 2, 29), "2001-02-28 00:00:00.000"},
        {11, 4, at(2000, 2, 29), "2004-02-29 00:00:00.000"},
        {6, 1, at(2000, 1, 1, 23, 30), "2000-01-02 00:30:00.000"},
        {6, -1, at(2000, 1, 1, 0, 30), "1999-12-31 23:30:00.000"},
        {6, 48, at(2000, 1, 1, 1), "2000-01-03 01:00:00.000"},
        {7, -1441, at(2000, 1, 2), "1999-12-31 23:59:00.000"},
        {8, 86400, at(2000, 1, 1, 0, 0, 1), "2000-01-02 00:00:01.000"},
        {9, 1, at(2000, 1, 1), "2000-01-01 00:00:00.000"},       // 0.3 ticks rounds to none
        {9, 2, at(2000, 1, 1), "2000-01-01 00:00:00.003"},       // 0.6 ticks rounds to one
        {9, -1, at(2000, 1, 1), "2000-01-01 00:00:00.000"},
        {9, -2, at(2000, 1, 1), "1999-12-31 23:59:59.996"},
        {9, 86400000, at(2000, 1, 1), "2000-01-02 00:00:00.000"},
        {10, -1, at(2000, 1, 8), "2000-01-01 00:00:00.000"},
        {13, 2, at(2000, 1, 8), "2000-01-10 00:00:00.000"},
    };
    for (const Case &c : cases) {
        CS_DATETIME dt = c.from;
        EXPECT_EQ(com__date_add(c.part, c.value, &dt), 0) << c.part << " " << c.value << " " << ymd(c.from);
        EXPECT_EQ(ymd(dt), c.to) << c.part << " " << c.value << " " << ymd(c.from);
    }
}

TEST(Add, Overflows)
{
    CS_DATETIME end = at(9999, 12, 1);
    CS_DATETIME dt = end;
    EXPECT_EQ(com__date_add(4, 60, &dt), 1);
    EXPECT_EQ(dt.dtdays, end.dtdays);
    dt = end;
    EXPECT_EQ(com__date_add(12, INT32_MAX, &dt), 1); // 7 * value leaves 32 bits
    EXPECT_EQ(dt.dtdays, end.dtdays);
    dt = end;
    EXPECT_EQ(com__date_add(0, INT32_MAX, &dt), 1); // the year sum leaves 32 bits: nothing made
    EXPECT_EQ(dt.dtdays, end.dtdays);
    dt = end;
    EXPECT_EQ(com__date_add(0, 1, &dt), 1); // year 10000: make's status, with its partial value
    EXPECT_EQ(dt.dtdays, 0);
    dt = at(1, 1, 1);
    EXPECT_EQ(com__date_add(2, -1, &dt), 1);
    dt = at(9999, 12, 31, 23, 59, 59, 999);
    const CS_INT days = dt.dtdays;
    EXPECT_EQ(com__date_add(9, 1, &dt), 0); // 0.3 ticks: no change
    EXPECT_EQ(com__date_add(9, 3, &dt), 1);
    EXPECT_EQ(dt.dtdays, days);
    EXPECT_EQ(dt.dttime, 0); // the time was already moved when the day failed
    dt = CS_DATETIME{0, 25920000};
    EXPECT_EQ(com__date_add(7, 0, &dt), 1);
    EXPECT_EQ(com__date_add(4, 0, &dt), 0); // day parts do not look at the time
}

TEST(Diff, BoundariesTruncationAndOverflow)
{
    struct Case {
        int part;
        CS_DATETIME from, to;
        int status;
        CS_INT diff;
    };
    const Case cases[] = {
        {0, at(2000, 12, 31), at(2001, 1, 1), 0, 1},
        {0, at(2001, 1, 1), at(2000, 12, 31), 0, -1},
        {1, at(2000, 3, 31), at(2000, 4, 1), 0, 1},
        {2, at(2000, 1, 31), at(1999, 12, 1), 0, -1},
        {10, at(2008, 12, 27), at(2008, 12, 28), 0, 1}, // Saturday to Sunday
        {10, at(2008, 12, 28), at(2009, 1, 3), 0, 0},   // Sunday to Saturday
        {12, at(2008, 12, 28), at(2008, 12, 27), 0, -1},
        {12, at(2009, 1, 3), at(2008, 12, 28), 0, 0},
        {3, at(2000, 1, 1), at(2000, 1, 14), 0, 1},
        {13, at(2000, 1, 14), at(2000, 1, 1), 0, -1},
        {4, at(2000, 1, 1, 23), at(2000, 1, 2, 1), 0, 1},
        {6, at(2000, 1, 1, 23), at(2000, 1, 2, 1), 0, 2},
        {6, at(2000, 1, 2, 12), at(2000, 1, 1, 13), 0, -23},
        {6, at(2000, 1, 1, 12, 30), at(2000, 1, 1, 11), 0, -1},
        {7, at(2000, 1, 1, 23, 59, 59), at(2000, 1, 2), 0, 0},
        {7, at(2000, 1, 2), at(2000, 1, 1, 23, 59, 1), 0, 0},
        {8, at(2000, 1, 1, 0, 0, 0, 500), at(2000, 1, 2), 0, 86399},
        {9, at(2000, 1, 1), at(2000, 1, 1, 0, 0, 0, 3), 0, 3},
        {9, at(2000, 1, 1), at(2000, 1, 25), 0, 24 * 86400000},
        {9, at(2000, 1, 1), at(2000, 1, 26), 1, 0},                    // over 24.8 days
        {9, at(2000, 1, 1, 1), at(2000, 1, 25), 0, 24 * 86400000 - 3600000}, // crossing: days alone tested
        {8, at(1900, 1, 1), at(1968, 1, 20, 3, 14, 7), 0, 2147483647},
        {8, at(1900, 1, 1), at(1968, 1, 20, 3, 14, 8), 1, 0},
        {7, at(1, 1, 1), at(9999, 12, 31), 1, 0},
        {11, at(2005, 1, 1), at(2008, 12, 29), 0, 5},
        {14, at(2000, 1, 1), at(2000, 1, 2), 0, -5}, // not a part here: diff untouched
    };
    for (const Case &c : cases) {
        CS_INT diff = -5;
        CS_DATETIME from = c.from, to = c.to;
        const int status = com__datediff(c.part, &from, &to, &diff);
        EXPECT_EQ(status, c.status) << "part " << c.part << " " << ymd(from) << " to " << ymd(to);
        if (status == 0)
            EXPECT_EQ(diff, c.diff) << "part " << c.part << " " << ymd(from) << " to " << ymd(to);
        else
            EXPECT_EQ(diff, -5);
    }
}

TEST(Diff, BigTypesTurnTheirWeeksOnWednesday)
{
    struct Case {
        int part;
        CS_BIGDATETIME from, to;
        CS_BIGINT small, big; // CS_DATETIME and CS_BIGDATETIME answers
    };
    const Case cases[] = {
        {10, big_at(2008, 12, 27), big_at(2008, 12, 28), 1, 0}, // Saturday to Sunday
        {10, big_at(2008, 12, 30), big_at(2008, 12, 31), 0, 1}, // Tuesday to Wednesday
        {12, big_at(2008, 12, 31), big_at(2008, 12, 30), 0, -1},
        {3, big_at(2008, 12, 30), big_at(2009, 1, 6), 1, 1},
    };
    for (const Case &c : cases) {
        CS_BIGDATETIME from = c.from, to = c.to;
        CS_BIGINT diff = 0;
        EXPECT_EQ(com__bigdatediff(c.part, &from, &to, &diff), 0);
        EXPECT_EQ(diff, c.big) << c.part;
        CS_DATETIME a, b;
        ASSERT_EQ(com__bigdatetimetodate(&from, &a), CS_SUCCEED);
        ASSERT_EQ(com__bigdatetimetodate(&to, &b), CS_SUCCEED);
        CS_INT small = 0;
        EXPECT_EQ(com__datediff(c.part, &a, &b, &small), 0);
        EXPECT_EQ(small, c.small) << c.part;
    }
    CS_BIGDATETIME a = big_at(2000, 1, 1), b = big_at(2000, 1, 1, 0, 0, 0, 1);
    CS_BIGINT diff = 99;
    EXPECT_EQ(com__bigdatediff(14, &a, &b, &diff), 0);
    EXPECT_EQ(diff, 1);
    EXPECT_EQ(com__bigdatediff(15, &a, &b, &diff), 0);
    EXPECT_EQ(diff, 1);
    EXPECT_EQ(com__bigdatediff(9, &b, &a, &diff), 0);
    EXPECT_EQ(diff, 0); // cut toward zero
}

TEST(BigAdd, RangesByType)
{
    CS_BIGDATETIME v = big_at(2000, 1, 1, 23);
    EXPECT_EQ(com__bigdate_add(6, 2, &v, 187), 0);
    EXPECT_EQ(v, big_at(2000, 1, 2, 1));
    CS_BIGTIME t = 23 * 3600000000ULL;
    EXPECT_EQ(com__bigdate_add(6, 1, &t, 188), 1); // no wrap past midnight
    EXPECT_EQ(t, 23 * 3600000000ULL);
    EXPECT_EQ(com__bigdate_add(14, -1, &t, 188), 0);
    t = 0;
    EXPECT_EQ(com__bigdate_add(14, -1, &t, 188), 1);
    EXPECT_EQ(com__bigdate_add(14, -1, &t, 0), 0); // any other type passes
    v = kes::cal::kBigEnd - 1;
    EXPECT_EQ(com__bigdate_add(14, 1, &v, 187), 1);
    v = big_at(2001, 1, 31, 12, 0, 0, 5);
    EXPECT_EQ(com__bigdate_add(2, 1, &v, 187), 0);
    EXPECT_EQ(v, big_at(2001, 2, 28, 12, 0, 0, 5));
    v = big_at(9999, 1, 31);
    const CS_BIGDATETIME before = v;
    EXPECT_EQ(com__bigdate_add(0, 1, &v, 187), 1);
    EXPECT_EQ(v, before); // written only on success
}

TEST(Descriptors, DateaddBoth)
{
    struct Case {
        int part, value;
        CS_INT srclen;
        CS_DATETIME src; // a 4-byte source uses the field the result type names
        CS_BYTE type;
        CS_INT maxlen;
        int status;
        const char *bytes; // hex of the result
    };
    const CS_DATETIME d2000 = at(2000, 1, 1, 12);
    const Case cases[] = {
        {4, 1, 8, d2000, 61, 8, 0, nullptr},
        {4, 1, 4, d2000, 49, 4, 0, nullptr},
        {6, 1, 4, CS_DATETIME{0, 1080000}, 51, 4, 0, "80f52000"},   // 2 h of ticks
        {6, 23, 4, CS_DATETIME{0, 1080000}, 51, 4, 0, "00000000"},  // midnight of the next day
        {4, 1, 8, d2000, 58, 4, 0, nullptr},
        {4, 1, 6, d2000, 61, 8, 1, nullptr},         // a source must be 4 or 8 bytes
        {4, 1, 8, d2000, 61, 4, 1, nullptr},         // the result must be of its size
        {4, 1, 8, d2000, 50, 8, 1, nullptr},         // unknown result type
        {4, 1, 8, at(1753, 1, 1), 61, 8, 0, nullptr},
        {4, -1, 8, at(1753, 1, 1), 61, 8, 1, nullptr}, // below the CS_DATETIME range
        {4, 1, 8, at(2079, 6, 6), 58, 4, 1, nullptr},  // past the CS_DATETIME4 range
        {4, 1, 8, at(9999, 12, 31), 61, 8, 1, nullptr},
    };
    for (const Case &c : cases) {
        CS_BYTE in[8], out[8];
        std::memset(out, 0xee, sizeof out);
        if (c.srclen == 4)
            std::memcpy(in, c.type == 51 ? &c.src.dttime : &c.src.dtdays, 4);
        else
            std::memcpy(in, &c.src, 8);
        __CONSTANT src = constant(in, c.srclen, 8);
        __CONSTANT result = constant(out, 0, c.maxlen);
        result.type = c.type;
        EXPECT_EQ(com__dateadd_both(c.part, c.value, &src, &result), c.status)
            << "part " << c.part << " type " << int{c.type};
        if (c.status != 0)
            continue;
        CS_DATETIME want = c.src;
        ASSERT_EQ(com__date_add(c.part, c.value, &want), 0);
        if (c.bytes != nullptr) {
            EXPECT_EQ(kes::test::hex(out, 4), c.bytes);
        } else if (c.type == 61) {
            EXPECT_EQ(kes::test::hex(out, 8), kes::test::hex(&want, 8));
        } else if (c.type == 49) {
            EXPECT_EQ(kes::test::hex(out, 4), kes::test::hex(&want.dtdays, 4));
        } else {
            CS_DATETIME4 d4;
            ASSERT_EQ(com__dttodate4(&want, &d4), 0);
            EXPECT_EQ(kes::test::hex(out, 4), kes::test::hex(&d4, 4));
        }
        EXPECT_EQ(result.len, c.maxlen);
    }
}

TEST(Descriptors, BigdateaddBothAndValidity)
{
    CS_BIGDATETIME v = big_at(2000, 1, 1, 23);
    CS_BYTE out[8];
    __CONSTANT src = constant(reinterpret_cast<CS_BYTE *>(&v), 8, 8);
    src.type = 187;
    __CONSTANT result = constant(out, 0, 8);
    result.type = 187;
    EXPECT_EQ(com__bigdateadd_both(6, 2, &src, &result), 0);
    EXPECT_EQ(load_u8(out), big_at(2000, 1, 2, 1));
    result.type = 188;
    EXPECT_EQ(com__bigdateadd_both(6, 2, &src, &result), 0);
    EXPECT_EQ(load_u8(out), 3600000000ULL);
    result.type = 61;
    EXPECT_EQ(com__bigdateadd_both(6, 2, &src, &result), 1);
    src.len = 4;
    result.type = 187;
    EXPECT_EQ(com__bigdateadd_both(6, 2, &src, &result), 1);

    struct Case {
        CS_INT len;
        CS_DATETIME value;
        int valid;
    };
    const Case cases[] = {
        {8, at(2000, 2, 29, 23, 59, 59, 999), 1},
        {8, CS_DATETIME{-693595, 0}, 1},        // validity does not look at 1753
        {8, CS_DATETIME{2958464, 0}, 0},        // year 10000
        {8, CS_DATETIME{-693596, 0}, 0},        // year 0
        {8, CS_DATETIME{0, 25920000}, 0},
        {4, CS_DATETIME{0, 0}, 1},              // a CS_DATETIME4 of day 0, minute 0
    };
    for (const Case &c : cases) {
        CS_DATETIME value = c.value;
        __CONSTANT s = constant(reinterpret_cast<CS_BYTE *>(&value), c.len, 8);
        EXPECT_EQ(com__valid_datetime(&s, nullptr), c.valid) << c.value.dtdays << "/" << c.value.dttime;
    }
    CS_DATETIME4 d4{65535, 1440}; // a minute count past the day is no valid time
    __CONSTANT s = constant(reinterpret_cast<CS_BYTE *>(&d4), 4, 4);
    EXPECT_EQ(com__valid_datetime(&s, nullptr), 0);
}

TEST(Compare, SignsOfEveryType)
{
    CS_DATETIME a{1, 5}, b{1, 6}, c{2, 0};
    EXPECT_EQ(com_datecmp(&a, &b), -1);
    EXPECT_EQ(com_datecmp(&c, &b), 1);
    EXPECT_EQ(com_datecmp(&a, &a), 0);
    EXPECT_LT(com__datecmp(&a, &b), 0);
    CS_DATETIME lo{INT32_MIN, 0}, hi{INT32_MAX, 0};
    EXPECT_LT(com__datecmp(&lo, &hi), 0);
    EXPECT_GT(com__datecmp(&hi, &lo), 0);
    CS_DATETIME4 d1{1, 1439}, d2{2, 0};
    EXPECT_EQ(com_date4cmp(&d1, &d2), -1);
    EXPECT_EQ(com_date4cmp(&d2, &d1), 1);
    CS_DATE x = -5, y = 3;
    EXPECT_EQ(com_dateacmp(&x, &y), -1);
    CS_TIME t1 = 7, t2 = 7;
    EXPECT_EQ(com_timeacmp(&t1, &t2), 0);
    CS_BIGDATETIME b1 = 1ULL << 63, b2 = 1;
    EXPECT_EQ(com_bigdatetimecmp(&b1, &b2), 1);
    com_datezero(&c);
    EXPECT_EQ(c.dtdays, 0);
    EXPECT_EQ(c.dttime, 0);
    com_date4zero(&d1);
    EXPECT_EQ(d1.days + d1.minutes, 0);
    com_setdatetime(&c, -3, 4);
    EXPECT_EQ(c.dtdays, -3);
    EXPECT_EQ(c.dttime, 4);
}

TEST(Ranges, EachCheckAtItsLimits)
{
    struct Case {
        int (*check)(void *);
        int64_t value;
        int out;
    };
    auto dt = [](void *p) { return com__datetime_check_range(static_cast<CS_DATETIME *>(p)); };
    auto big = [](void *p) { return com__bigdatetime_check_range(static_cast<CS_BIGDATETIME *>(p)); };
    auto datea = [](void *p) { return com__datea_check_range(static_cast<CS_DATE *>(p)); };
    auto timea = [](void *p) { return com__timea_check_range(static_cast<CS_TIME *>(p)); };
    auto bigtime = [](void *p) { return com__bigtime_check_range(static_cast<CS_BIGTIME *>(p)); };
    const Case cases[] = {
        {dt, -53690, 0}, {dt, -53691, 1}, {dt, 99999999, 0}, // the upper limit is make's
        {big, 31622400000000LL, 0}, {big, 31622399999999LL, 1},
        {big, 315569519999999999LL, 0}, {big, 315569520000000000LL, 1},
        {datea, -693595, 0}, {datea, -693596, 1}, {datea, 2958463, 0}, {datea, 2958464, 1},
        {timea, 0, 0}, {timea, -1, 1}, {timea, 25919999, 0}, {timea, 25920000, 1},
        {bigtime, 86399999999LL, 0}, {bigtime, 86400000000LL, 1},
    };
    for (const Case &c : cases) {
        union {
            CS_DATETIME dt;
            CS_INT i4;
            uint64_t u8;
        } v{};
        if (c.check == +big || c.check == +bigtime)
            v.u8 = static_cast<uint64_t>(c.value);
        else
            v.i4 = static_cast<CS_INT>(c.value);
        EXPECT_EQ(c.check(&v), c.out) << c.value;
    }
}

TEST(Misc, TwoDigitYearsAndRecordCopy)
{
    struct Case {
        int in, out;
    };
    constexpr Case cases[] = {{0, 2000}, {49, 2049}, {50, 1950}, {99, 1999}, {100, 1}, {-1, 1}};
    for (const Case &c : cases)
        EXPECT_EQ(com__year2digit(c.in), c.out) << c.in;

    CS_DATEREC src = rec_of(2001, 2, 3, 4, 5, 6, 7);
    src.datesecfrac = 11;
    src.datesecprec = 1000000;
    src.datetzone = 9;
    for (CS_INT type : {CS_DATETIME_TYPE, CS_BIGDATETIME_TYPE, CS_BIGTIME_TYPE}) {
        CS_DATEREC dst{};
        dst.datesecfrac = -1;
        dst.datesecprec = -2;
        com__dtrec_cp(&src, &dst, type);
        EXPECT_EQ(dst.dateyear, 2001);
        EXPECT_EQ(dst.datemsecond, 7);
        const bool big = type != CS_DATETIME_TYPE;
        EXPECT_EQ(dst.datesecfrac, big ? 11 : -1) << type;
        EXPECT_EQ(dst.datesecprec, big ? 1000000 : -2) << type;
    }
}

TEST(Kernels, BetweenTheTypes)
{
    CS_DATETIME4 d4{};
    CS_DATETIME late = at(2079, 6, 6, 23, 59, 30);
    EXPECT_EQ(com__dttodate4(&late, &d4), 1); // rounds past day 65535
    late = at(2079, 6, 6, 23, 59, 29, 996);
    EXPECT_EQ(com__dttodate4(&late, &d4), 0);
    EXPECT_EQ(d4.days, 65535);
    EXPECT_EQ(d4.minutes, 1439);
    CS_DATETIME before = at(1899, 12, 31, 23, 59, 30);
    EXPECT_EQ(com__dttodate4(&before, &d4), 1); // the day is tested before the carry
    CS_DATETIME carry = at(2000, 1, 1, 23, 59, 30);
    EXPECT_EQ(com__dttodate4(&carry, &d4), 0);
    EXPECT_EQ(d4.minutes, 0);
    EXPECT_EQ(d4.days, at(2000, 1, 2).dtdays);

    // 29.5 seconds round up from the big type but not from ticks (29.496 s).
    CS_BIGDATETIME b = big_at(2000, 1, 1, 0, 0, 29, 500000);
    EXPECT_EQ(com__bigdttodate4(&b, &d4), 0);
    EXPECT_EQ(d4.minutes, 1);
    b = big_at(2000, 1, 1, 0, 0, 29, 499999);
    EXPECT_EQ(com__bigdttodate4(&b, &d4), 0);
    EXPECT_EQ(d4.minutes, 0);
    CS_DATETIME ticks = at(2000, 1, 1, 0, 0, 29, 500);
    EXPECT_EQ(com__dttodate4(&ticks, &d4), 0);
    EXPECT_EQ(d4.minutes, 0);

    CS_DATETIME4 src4{3, 61};
    CS_DATETIME wide;
    com__date4todt(&src4, &wide);
    EXPECT_EQ(wide.dtdays, 3);
    EXPECT_EQ(wide.dttime, 61 * 18000);
    CS_BIGDATETIME big4;
    com__date4tobigdatetime(&src4, &big4);
    EXPECT_EQ(big4, big_at(1900, 1, 4, 1, 1));
    CS_BIGTIME bt4;
    com__date4tobigtime(&src4, &bt4);
    EXPECT_EQ(bt4, 61 * 60000000ULL);

    CS_DATE first = -693595;
    CS_DATETIME dt{7, 7};
    EXPECT_EQ(com__dateatodate(&first, &dt), 1);
    EXPECT_EQ(dt.dtdays, 0);
    EXPECT_EQ(dt.dttime, 0);
    CS_DATE bad = 2958464;
    CS_BIGDATETIME bv = 5;
    EXPECT_EQ(com__dateatobigdatetime(&bad, &bv), 1);
    EXPECT_EQ(bv, 0u);

    struct Trunc {
        CS_BIGDATETIME value;
        CS_RETCODE code;
        CS_INT ticks;
    };
    const Trunc truncs[] = {
        {big_at(2000, 1, 1, 0, 0, 0, 1), CS_TRUNCATED, 0},
        {big_at(2000, 1, 1, 0, 0, 0, 1000), CS_SUCCEED, 0},
        {big_at(2000, 1, 1, 0, 0, 0, 2000), CS_SUCCEED, 1},
        {big_at(2000, 1, 1, 23, 59, 59, 999000), CS_SUCCEED, 25919999},
        {big_at(2000, 1, 1, 23, 59, 59, 999999), CS_TRUNCATED, 25919999},
        {big_at(2000, 1, 1, 23, 59, 59, 998000), CS_SUCCEED, 25919999},
    };
    for (const Trunc &t : truncs) {
        CS_BIGDATETIME v = t.value;
        CS_TIME tp = -1;
        EXPECT_EQ(com__bigdatetimetotimea(&v, &tp), t.code);
        EXPECT_EQ(tp, t.ticks);
        CS_DATETIME d{};
        EXPECT_EQ(com__bigdatetimetodate(&v, &d), t.code);
        EXPECT_EQ(d.dttime, t.ticks);
        CS_BIGTIME bt = v % 86400000000ULL;
        EXPECT_EQ(com__bigtimetotimea(&bt, &tp), t.code);
        EXPECT_EQ(com__bigtimetodate(&bt, &d), t.code);
        EXPECT_EQ(d.dtdays, 0);
    }
    CS_BIGDATETIME old = big_at(1752, 12, 31);
    EXPECT_EQ(com__bigdatetimetodate(&old, &dt), CS_EUNDERFLOW);

    CS_TIME tick = 299;
    CS_BIGTIME btime;
    com__timeatobigtime(&tick, &btime);
    EXPECT_EQ(btime, 996000u);
    com__timeatobigdatetime(&tick, &bv);
    EXPECT_EQ(bv, kes::cal::kBigMin + 996000);
    com__timeatodate(&tick, &dt);
    EXPECT_EQ(dt.dtdays, 0);
    EXPECT_EQ(dt.dttime, 299);
    CS_DATETIME full = at(2000, 1, 1, 1, 2, 3, 996);
    EXPECT_EQ(com__datetobigtime(&full, &btime), 0);
    EXPECT_EQ(btime, 3723996000ULL);
    CS_DATE da;
    com__datetodatea(&full, &da);
    EXPECT_EQ(da, full.dtdays);
    CS_TIME ta;
    com__datetotimea(&full, &ta);
    EXPECT_EQ(ta, full.dttime);
}

TEST(CalendarDeath, BadPartsAndNullPointers)
{
    CS_DATETIME dt{};
    CS_BIGDATETIME big = kes::cal::kBigMin;
    CS_DATEREC rec{};
    EXPECT_BOMB(com__date_add(14, 1, &dt));
    EXPECT_BOMB(com__bigdate_add(15, 1, &big, 187));
    EXPECT_BOMB(com__daterecpart(15, &rec, 0, 0, CS_DATETIME_TYPE));
    EXPECT_BOMB(com_datepart(-1, &dt, 0));
    EXPECT_NULL_POINTER(com_datecrack(nullptr, &rec));
    EXPECT_NULL_POINTER(com_bigdatetimemake(&big, nullptr));
    EXPECT_NULL_POINTER(com__datediff(0, &dt, nullptr, nullptr));
}

} // namespace
