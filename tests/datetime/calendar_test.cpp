// Calendar cases the random oracle cannot reach or does not model: inputs out
// of range, the statuses and partial values of make and add, the exact
// overflow edges of difference, names, descriptors and the type kernels.
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "datetime/calendar.h"
#include "support/context.h"

namespace {

using kes::cal::kBigEnd;
using kes::cal::kBigMin;
using kes::test::constant;
using kes::test::hex;

CS_DATEREC rec_of(int y, int m, int d, int h = 0, int mi = 0, int s = 0, int ms = 0, int prec = 300, int frac = 0)
{
    return {y, m - 1, d, 0, 0, h, mi, s, ms, 0, frac, prec};
}

CS_DATETIME at(int y, int m, int d, int h = 0, int mi = 0, int s = 0, int ms = 0)
{
    CS_DATEREC r = rec_of(y, m, d, h, mi, s, ms);
    CS_DATETIME dt{};
    EXPECT_EQ(com__datemake(&dt, &r) + com__timemake(&dt, &r), 0);
    return dt;
}

CS_BIGDATETIME big_at(int y, int m, int d, int h = 0, int mi = 0, int s = 0, int us = 0)
{
    CS_DATEREC r = rec_of(y, m, d, h, mi, s, 0, 1000000, us);
    CS_BIGDATETIME v = 0;
    EXPECT_EQ(com_bigdatetimemake(&v, &r), 0);
    return v;
}

TEST(Records, GarbageStaysInRangeAndEachCrackOrCopyKeepsItsHalf)
{
    // Weekday and month must index the name lists whatever the input.
    for (CS_INT d : {INT32_MIN, -693596, -1000000, 2958464, INT32_MAX}) {
        CS_DATETIME dt{d, INT32_MIN};
        CS_DATEREC r{};
        com__datecrack(&dt, &r);
        EXPECT_TRUE(r.datedweek >= 0 && r.datedweek <= 6 && r.datemonth >= 0 && r.datemonth <= 11) << d;
        char name[32];
        EXPECT_GT(com__datename(3, &dt, name, com__get_months(), com__get_weekdays()), 0) << d;
    }
    // Only the low 25 bits of the ticks count, and the fraction is cleared.
    CS_DATETIME dt{0, 0x2000000 + 301};
    CS_DATEREC r = rec_of(-1, 1, 1, 0, 0, 0, 0, 0, 77);
    com_timecrack(&dt, &r);
    EXPECT_EQ(r.datesecond, 1);
    EXPECT_EQ(r.datemsecond, 3);
    EXPECT_EQ(r.datesecfrac, 0);
    EXPECT_EQ(r.dateyear, -1);
    r.datehour = 99;
    com_datecrack(&dt, &r);
    EXPECT_EQ(r.dateyear, 1900);
    EXPECT_EQ(r.datehour, 99);
    // A copy takes the fraction and its precision for the big types only.
    const CS_DATEREC src = rec_of(2001, 2, 3, 4, 5, 6, 7, 1000000, 11);
    for (CS_INT type : {CS_DATETIME_TYPE, CS_BIGDATETIME_TYPE, CS_BIGTIME_TYPE}) {
        CS_DATEREC dst = rec_of(1, 1, 1, 0, 0, 0, 0, 300, -1);
        com__dtrec_cp(const_cast<CS_DATEREC *>(&src), &dst, type);
        EXPECT_EQ(dst.datemsecond, 7);
        EXPECT_EQ(dst.datesecfrac, type == CS_DATETIME_TYPE ? -1 : 11) << type;
    }
}

TEST(Leap, ArgumentCountsFromYearZeroAndCountsStopAtZero)
{
    // leapyear(y) answers for the year y + 1.
    for (auto [y, leap] : {std::pair{1999, 1}, {1899, 0}, {1599, 1}, {1699, 0}, {2004, 0}, {-1, 1}, {0, 0}})
        EXPECT_EQ(leapyear(y), leap) << y;
    for (auto [y, n] : {std::pair{-5, 0}, {3, 0}, {4, 1}, {100, 24}, {400, 97}, {9999, 2424}})
        EXPECT_EQ(com__leapcnt(y), n) << y;
}

TEST(Make, DateStatusesLeaveThePartialSum)
{
    struct Case { int y, m, d, status; CS_INT dtdays; }; // on failure: the days summed so far
    constexpr Case cases[] = {
        {1, 1, 1, 0, -693595},    {9999, 12, 31, 0, 2958463}, {2000, 2, 29, 0, 36583}, {1900, 2, 29, 3, 693626},
        {0, 1, 1, 1, 0},          {10000, 1, 1, 1, 0},        {1900, 13, 1, 2, 693595}, {1900, 0, 1, 2, 693595},
        {1900, 4, 31, 3, 693685}, {1900, 4, 0, 3, 693685},
    };
    for (const Case &c : cases) {
        const std::string where = std::to_string(c.y) + "-" + std::to_string(c.m) + "-" + std::to_string(c.d);
        CS_DATEREC r = rec_of(c.y, c.m, c.d);
        CS_DATETIME dt{-7, -7};
        EXPECT_EQ(com_datemake(&dt, &r), c.status) << where;
        EXPECT_EQ(dt.dtdays, c.dtdays) << where;
        EXPECT_EQ(dt.dttime, -7) << where;
        CS_BIGDATETIME big = 123; // written only on success
        EXPECT_EQ(com_bigdatemake(&big, &r), c.status) << where;
        EXPECT_EQ(big, c.status ? 123u : kBigMin + static_cast<uint64_t>(c.dtdays + 693595) * 86400000000ULL) << where;
    }
}

// Both time makes of one record: the ticks keep a partial sum on failure and
// never round into the next second; the microseconds are written only on
// success; a negative fraction is cut to 0 ms for the ticks alone.
TEST(Make, TimeStatusesRoundingAndFractions)
{
    struct Case { int h, m, s, ms, prec, frac, status; CS_INT ticks; int big_status; CS_BIGTIME us; };
    constexpr Case cases[] = {
        {0, 0, 0, 999, 300, 0, 0, 299, 0, 999000},    {0, 0, 0, 994, 300, 0, 0, 298, 0, 994000},
        {0, 0, 0, 1, 300, 0, 0, 0, 0, 1000},          {0, 0, 0, 2, 300, 0, 0, 1, 0, 2000},
        {23, 59, 59, 999, 300, 0, 0, 25919999, 0, 86399999000},
        {24, 0, 0, 0, 300, 0, 4, 0, 4, 5},            {-1, 0, 0, 0, 300, 0, 4, 0, 4, 5},
        {1, 60, 0, 0, 300, 0, 5, 1080000, 5, 5},      {1, 1, 60, 0, 300, 0, 6, 1098000, 6, 5},
        {1, 1, 1, 1000, 300, 0, 7, 1098300, 7, 5},    {1, 1, 1, -1, 300, 0, 7, 1098300, 7, 5},
        {0, 0, 0, 5, 1000000, 999999, 0, 299, 0, 999999}, // the fraction, not the milliseconds
        {0, 0, 0, 0, 1000000, 1000000, 7, 0, 7, 5},   {0, 0, 0, 0, 1000000, -1, 0, 0, 7, 5},
    };
    for (const Case &c : cases) {
        const std::string where = std::to_string(c.h) + ":" + std::to_string(c.m) + ":" + std::to_string(c.s) +
                                  "." + std::to_string(c.ms) + " frac " + std::to_string(c.frac);
        CS_DATEREC r = rec_of(1900, 1, 1, c.h, c.m, c.s, c.ms, c.prec, c.frac);
        CS_DATETIME dt{-7, -7};
        EXPECT_EQ(com_timemake(&dt, &r), c.status) << where;
        EXPECT_EQ(dt.dttime, c.ticks) << where;
        EXPECT_EQ(dt.dtdays, -7) << where;
        CS_BIGTIME bt = 5;
        EXPECT_EQ(com_bigtimemake(&bt, &r), c.big_status) << where;
        EXPECT_EQ(bt, c.us) << where;
    }
    CS_DATEREC r = rec_of(2000, 1, 1, 24);
    CS_BIGDATETIME v = 5;
    EXPECT_EQ(com_bigdatetimemake(&v, &r), 4);
    EXPECT_EQ(v, 5u);
}

TEST(Name, NumbersNamesAndTheirLimits)
{
    CS_DATETIME sunday = at(2008, 12, 28, 7, 5);
    const char *const want[15] = {"2008", "4", "December", "Sunday", "28", "363", "7", "5", "0", "0", "53", "2008",
                                  "52", "Monday" /* ISO weekday names are always days[1] */, "0"};
    char buf[40];
    for (int part = 0; part < 15; part++) {
        std::memset(buf, '#', sizeof buf);
        const int n = com_datename(part, &sunday, buf, com__get_months(), com__get_weekdays());
        EXPECT_EQ(std::string(buf, static_cast<size_t>(n)), want[part]) << "part " << part;
        EXPECT_EQ(buf[n], '#') << "no terminator, no fill";
    }
    // Nothing for a missing list, a part out of range or month 13.
    EXPECT_EQ(com_datename(2, &sunday, buf, nullptr, com__get_weekdays()), 0);
    EXPECT_EQ(com_datename(3, &sunday, buf, com__get_months(), nullptr), 0);
    EXPECT_EQ(com_datename(15, &sunday, buf, com__get_months(), com__get_weekdays()), 0);
    EXPECT_EQ(com_datename(-1, &sunday, buf, com__get_months(), com__get_weekdays()), 0);
    EXPECT_EQ(com__datenameval(2, buf, com__get_months(), nullptr, 13, 0), 0);
    // A number wider than its field (4, microseconds 6) is a single "*".
    struct Width { int part, value, len; };
    for (const Width &w : {Width{0, 9999, 4}, {0, 12345, 1}, {0, -999, 4}, {14, 999999, 6}, {14, 1000000, 1}})
        EXPECT_EQ(com__datenameval(w.part, buf, nullptr, nullptr, w.value, 0), w.len) << w.value;
    // Names stop at 30 bytes.
    char long_name[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghij";
    char *months[12];
    for (char *&m : months)
        m = long_name;
    std::memset(buf, '#', sizeof buf);
    EXPECT_EQ(com_datename(2, &sunday, buf, months, com__get_weekdays()), 30);
    EXPECT_EQ(buf[30], '#');
    CS_BIGDATETIME big = big_at(2008, 12, 28, 0, 0, 0, 654321);
    EXPECT_EQ(com__bigdatename(14, &big, buf, nullptr, nullptr), 6);
    EXPECT_EQ(std::string(buf, 6), "654321");
}

TEST(Add, FailuresLeaveWhatEachRuleLeaves)
{
    const CS_DATETIME end = at(9999, 12, 1), last = at(9999, 12, 31, 23, 59, 59, 999), past_day{0, 25920000};
    struct Case { int part; CS_INT value; CS_DATETIME from; int status; CS_DATETIME after; };
    const Case cases[] = {
        {4, 60, end, 1, end},              {12, INT32_MAX, end, 1, end}, // 7 * value leaves 32 bits
        {0, INT32_MAX, end, 1, end},       // the year leaves 32 bits: nothing made
        {0, 1, end, 1, {0, 0}},            // year 10000: the partial dtdays of make
        {2, -1, at(1, 1, 1), 1, {0, 0}},   // year 0 likewise
        {9, 1, last, 0, last},             // 0.3 ticks round to nothing
        {9, 3, last, 1, {last.dtdays, 0}}, // the time moves before the day fails
        {7, 0, past_day, 1, past_day},     // a time past the day is refused
        {4, 0, past_day, 0, past_day},     // by the time parts only
    };
    for (const Case &c : cases) {
        CS_DATETIME dt = c.from;
        EXPECT_EQ(com_date_add(c.part, c.value, &dt), c.status) << c.part << " " << c.value;
        EXPECT_EQ(hex(&dt, 8), hex(&c.after, 8)) << c.part << " " << c.value;
    }
}

TEST(Diff, ExactOverflowEdgesAndPartsOutsideTheRange)
{
    struct Case { int part; CS_DATETIME from, to; int status; CS_INT diff; }; // diff -5: left alone
    const Case cases[] = {
        {7, {0, 0}, {1491308, 127 * 18000 + 17999}, 0, INT32_MAX},
        {7, {0, 0}, {1491308, 128 * 18000}, 1, -5},
        {7, {1491308, 127 * 18000}, {0, 0}, 0, -INT32_MAX},
        {8, at(1900, 1, 1), at(1968, 1, 20, 3, 14, 7), 0, INT32_MAX},
        {8, at(1900, 1, 1), at(1968, 1, 20, 3, 14, 8), 1, -5},
        {9, at(2000, 1, 1), at(2000, 1, 25), 0, 24 * 86400000},
        {9, at(2000, 1, 1), at(2000, 1, 26), 1, -5},
        {9, at(2000, 1, 1, 1), at(2000, 1, 25), 0, 24 * 86400000 - 3600000},
        {9, at(2000, 1, 1, 23), at(2000, 1, 26), 1, -5}, // mixed signs: the days alone decide
        {14, at(2000, 1, 1), at(2000, 1, 2), 0, -5},
        {-1, at(2000, 1, 1), at(2000, 1, 2), 0, -5},
    };
    for (const Case &c : cases) {
        CS_INT diff = -5;
        CS_DATETIME from = c.from, to = c.to;
        EXPECT_EQ(com_datediff(c.part, &from, &to, &diff), c.status) << c.part << " to " << c.to.dtdays;
        EXPECT_EQ(diff, c.diff) << c.part << " to " << c.to.dtdays;
    }
    CS_BIGDATETIME a = kBigMin, b = kBigMin + 1;
    CS_BIGINT diff = 99;
    EXPECT_EQ(com_bigdatediff(15, &a, &b, &diff), 0);
    EXPECT_EQ(diff, 99);
}

TEST(BigAdd, EachTypeKeepsItsOwnRange)
{
    constexpr CS_BIGTIME k23h = 23 * 3600000000ULL;
    struct Case { int part; CS_INT value; CS_BIGDATETIME from; CS_BYTE type; int status; CS_BIGDATETIME after; };
    const Case cases[] = {
        {6, 1, k23h, 188, 1, k23h}, // a bigtime does not wrap past midnight
        {14, -1, k23h, 188, 0, k23h - 1},           {14, -1, 0, 188, 1, 0},
        {14, -1, 0, 0, 0, UINT64_MAX},              // any other type is unchecked
        {14, 1, kBigEnd - 1, 187, 1, kBigEnd - 1},  {14, -1, kBigMin, 187, 1, kBigMin},
        {2, 1, big_at(2001, 1, 31, 12, 0, 0, 5), 187, 0, big_at(2001, 2, 28, 12, 0, 0, 5)},
        {0, 1, big_at(9999, 1, 31), 187, 1, big_at(9999, 1, 31)},
    };
    for (const Case &c : cases) {
        CS_BIGDATETIME v = c.from;
        EXPECT_EQ(com_bigdate_add(c.part, c.value, &v, c.type), c.status) << c.part << " " << int{c.type};
        EXPECT_EQ(v, c.after) << c.part << " " << int{c.type};
    }
}

TEST(Descriptors, DateaddBothChecksSourceLengthResultTypeAndRange)
{
    const CS_DATETIME d2000{36524, 12960000}; // 2000-01-01 12:00
    // A 4-byte source is the field the result type names; bytes nullptr: status 1.
    struct Case { int part, value; CS_INT srclen; CS_DATETIME src; CS_BYTE type; CS_INT maxlen; const char *bytes; };
    const Case cases[] = {
        {4, 1, 8, d2000, 61, 8, "ad8e000000c1c500"}, {4, 1, 4, d2000, 49, 4, "ad8e0000"},
        {6, 1, 4, {0, 1080000}, 51, 4, "80f52000"},  {6, 23, 4, {0, 1080000}, 51, 4, "00000000"},
        {4, 1, 8, d2000, 58, 4, "ad8ed002"},         {4, 1, 6, d2000, 61, 8, nullptr},
        {4, 1, 8, d2000, 61, 4, nullptr},            {4, 1, 8, d2000, 50, 8, nullptr},
        {4, 0, 8, {-53690, 0}, 61, 8, "462effff00000000"},
        {4, -1, 8, {-53690, 0}, 61, 8, nullptr},     // below 1753-01-01
        {4, 1, 8, {65535, 0}, 58, 4, nullptr},       {4, 1, 8, {2958463, 0}, 61, 8, nullptr},
    };
    for (const Case &c : cases) {
        CS_BYTE in[8], out[8];
        std::memset(out, 0xee, sizeof out);
        std::memcpy(in, c.srclen != 4 ? static_cast<const void *>(&c.src) : c.type == 51 ? &c.src.dttime : &c.src.dtdays,
                    c.srclen == 4 ? 4 : 8);
        __CONSTANT src = constant(in, c.srclen, 8), result = constant(out, 0, c.maxlen);
        result.type = c.type;
        EXPECT_EQ(com_dateadd_both(c.part, c.value, &src, &result), c.bytes ? 0 : 1) << int{c.type};
        if (c.bytes != nullptr) {
            EXPECT_EQ(hex(out, static_cast<size_t>(result.len)), c.bytes) << int{c.type};
        }
    }
}

TEST(Descriptors, BigdateaddBothAndValidity)
{
    CS_BIGDATETIME v = big_at(2000, 1, 1, 23);
    __CONSTANT src = constant(reinterpret_cast<CS_BYTE *>(&v), 8, 8);
    src.type = 187;
    struct Case { CS_INT srclen; CS_BYTE type; int status; CS_BIGDATETIME out; };
    for (const Case &c :
         {Case{8, 187, 0, big_at(2000, 1, 2, 1)}, {8, 188, 0, 3600000000ULL}, {8, 61, 1, 0}, {4, 187, 1, 0}}) {
        CS_BIGDATETIME out = 0;
        __CONSTANT result = constant(reinterpret_cast<CS_BYTE *>(&out), 0, 8);
        result.type = c.type;
        src.len = c.srclen;
        EXPECT_EQ(com_bigdateadd_both(6, 2, &src, &result), c.status) << int{c.type};
        EXPECT_EQ(out, c.out) << int{c.type};
    }
    struct Valid { CS_INT len; CS_DATETIME value; int valid; };
    const Valid cases[] = {
        {8, at(2000, 2, 29, 23, 59, 59, 999), 1}, {8, {-693595, 0}, 1}, // 1753 does not matter here
        {8, {2958464, 0}, 0}, {8, {-693596, 0}, 0}, {8, {0, 25920000}, 0},
        {4, {0, 0}, 1}, {4, {1440 << 16, 0}, 0}, // CS_DATETIME4: minute 1440 is no time
    };
    for (const Valid &c : cases) {
        CS_DATETIME value = c.value;
        __CONSTANT s = constant(reinterpret_cast<CS_BYTE *>(&value), c.len, 8);
        EXPECT_EQ(com_valid_datetime(&s, nullptr), c.valid) << c.value.dtdays << "/" << c.value.dttime;
    }
}

TEST(Compare, SignsClampWideDifferencesAndBigValuesAreUnsigned)
{
    CS_DATETIME a{1, 5}, b{1, 6}, c{2, 0}, lo{INT32_MIN, 0}, hi{INT32_MAX, 0};
    CS_DATETIME4 d1{1, 1439}, d2{2, 0};
    CS_DATE x = -5, y = 3;
    CS_BIGDATETIME b1 = 1ULL << 63, b2 = 1;
    const std::vector<int> signs = {com_datecmp(&a, &b), com_datecmp(&c, &b), com_datecmp(&a, &a),
                                    com_date4cmp(&d1, &d2), com_dateacmp(&x, &y), com_bigdatetimecmp(&b1, &b2),
                                    com__datecmp(&lo, &hi), com__datecmp(&hi, &lo)};
    EXPECT_EQ(signs, (std::vector<int>{-1, 1, 0, -1, -1, 1, INT32_MIN, INT32_MAX}));
}

TEST(Ranges, EachCheckAtItsLimitsAndOnePast)
{
    using Check = int (*)(int64_t);
    const Check dt = [](int64_t v) { CS_DATETIME x{static_cast<CS_INT>(v), 0}; return com__datetime_check_range(&x); };
    const Check big = [](int64_t v) { CS_BIGDATETIME x = v; return com__bigdatetime_check_range(&x); };
    const Check date = [](int64_t v) { CS_DATE x = static_cast<CS_DATE>(v); return com__datea_check_range(&x); };
    const Check time = [](int64_t v) { CS_TIME x = static_cast<CS_TIME>(v); return com__timea_check_range(&x); };
    const Check btime = [](int64_t v) { CS_BIGTIME x = v; return com__bigtime_check_range(&x); };
    struct Case { Check check; int64_t value; int out; };
    const Case cases[] = {
        {dt, -53690, 0}, {dt, -53691, 1}, {dt, 99999999, 0}, // the upper limit is make's
        {big, 31622400000000LL, 0}, {big, 31622399999999LL, 1}, {big, 315569519999999999LL, 0},
        {big, 315569520000000000LL, 1}, {date, -693595, 0}, {date, -693596, 1}, {date, 2958463, 0},
        {date, 2958464, 1}, {time, 0, 0}, {time, -1, 1}, {time, 25919999, 0}, {time, 25920000, 1},
        {btime, 86399999999LL, 0}, {btime, 86400000000LL, 1},
    };
    for (const Case &c : cases)
        EXPECT_EQ(c.check(c.value), c.out) << c.value;
}

TEST(Kernels, RoundingCarriesAndTruncationBetweenTheTypes)
{
    // To CS_DATETIME4: 30 s round up, the day is tested before and after the
    // carry; 29.5 s round up from the big type only (ticks hold 29.496 s).
    struct D4 { CS_DATETIME dt; CS_BIGDATETIME big; int status, days, minutes; }; // big used when not 0
    const D4 d4s[] = {
        {at(2079, 6, 6, 23, 59, 30), 0, 1, 0, 0},   {at(2079, 6, 6, 23, 59, 29, 996), 0, 0, 65535, 1439},
        {at(1899, 12, 31, 23, 59, 30), 0, 1, 0, 0}, {at(2000, 1, 1, 23, 59, 30), 0, 0, 36525, 0},
        {at(2000, 1, 1, 0, 0, 29, 500), 0, 0, 36524, 0},
        {{}, big_at(2000, 1, 1, 0, 0, 29, 500000), 0, 36524, 1},
        {{}, big_at(2000, 1, 1, 0, 0, 29, 499999), 0, 36524, 0},
    };
    for (const D4 &c : d4s) {
        CS_DATETIME4 d4{7, 7};
        CS_DATETIME dt = c.dt;
        CS_BIGDATETIME big = c.big;
        EXPECT_EQ(c.big ? com__bigdttodate4(&big, &d4) : com__dttodate4(&dt, &d4), c.status) << dt.dtdays;
        if (c.status == 0) {
            EXPECT_EQ(d4.days, c.days) << dt.dtdays;
            EXPECT_EQ(d4.minutes, c.minutes) << dt.dtdays;
        }
    }
    // Microseconds to ticks: whole milliseconds, the last one held below
    // midnight, CS_TRUNCATED when microseconds are lost.
    struct Trunc { uint64_t us; CS_RETCODE code; CS_INT ticks; };
    const Trunc truncs[] = {
        {1, CS_TRUNCATED, 0}, {1000, CS_SUCCEED, 0}, {2000, CS_SUCCEED, 1}, {86399998000, CS_SUCCEED, 25919999},
        {86399999000, CS_SUCCEED, 25919999}, {86399999999, CS_TRUNCATED, 25919999},
    };
    for (const Trunc &t : truncs) {
        CS_BIGDATETIME v = big_at(2000, 1, 1) + t.us;
        CS_BIGTIME bt = t.us;
        CS_TIME tp = -1;
        CS_DATETIME d{};
        EXPECT_EQ(com__bigdatetimetotimea(&v, &tp), t.code) << t.us;
        EXPECT_EQ(tp, t.ticks) << t.us;
        EXPECT_EQ(com__bigdatetimetodate(&v, &d), t.code) << t.us;
        EXPECT_EQ(d.dttime, t.ticks) << t.us;
        EXPECT_EQ(com__bigtimetodate(&bt, &d), t.code) << t.us;
        EXPECT_EQ(d.dtdays, 0) << t.us;
    }
    CS_BIGDATETIME old = big_at(1752, 12, 31);
    CS_DATETIME dt{7, 7};
    EXPECT_EQ(com__bigdatetimetodate(&old, &dt), CS_EUNDERFLOW);
    // Dates out of range clear the value.
    CS_DATE first = -693595, bad = 2958464;
    EXPECT_EQ(com__dateatodate(&first, &dt), 1);
    EXPECT_EQ(dt.dtdays + dt.dttime, 0);
    CS_BIGDATETIME bv = 5;
    EXPECT_EQ(com__dateatobigdatetime(&bad, &bv), 1);
    EXPECT_EQ(bv, 0u);
    CS_TIME tick = 299; // ticks widen to whole milliseconds
    com__timeatobigdatetime(&tick, &bv);
    EXPECT_EQ(bv, kBigMin + 996000);
}

TEST(CalendarDeath, BadPartsAndNullPointers)
{
    CS_DATETIME dt{};
    CS_BIGDATETIME big = kBigMin;
    CS_DATEREC rec{};
    EXPECT_BOMB(com_date_add(14, 1, &dt));
    EXPECT_BOMB(com_bigdate_add(15, 1, &big, 187));
    EXPECT_BOMB(com_datepart(-1, &dt, 0));
    EXPECT_NULL_POINTER(com_datecrack(nullptr, &rec));
    EXPECT_NULL_POINTER(com_bigdatetimemake(&big, nullptr));
    EXPECT_NULL_POINTER(com_datediff(0, &dt, nullptr, nullptr));
}

} // namespace
