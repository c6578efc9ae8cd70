// The built-in date conventions, the date order codes, and which locale's
// date record the date queries read: none, the context's, the format's, or a
// locale whose time data is not loaded.
#include <cstdio>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "datetime/calendar.h"
#include "datetime/format.h"
#include "intl/date_defaults.h"
#include "intl/locale_records.h"
#include "kescomn/intl_date.h"
#include "support/context.h"

namespace {

std::vector<std::string> texts(CS_CHAR **names, int n)
{
    return std::vector<std::string>(names, names + n);
}

// A locale handle whose time category is a cache filled by hand, with a date
// record unlike the built-in one in every field the queries read.
struct HandLocale {
    CS_BYTE month[12][12]{};
    CS_BYTE shortmonth[12][4]{};
    CS_BYTE day[7][12]{};
    CS_DATEINFO info{};
    CsLocCache cache{};
    CS_LOCALE locale{};

    HandLocale(char tag, const char *order, int order_id, CS_INT style, CS_INT firstday, CS_INT is12hour)
    {
        for (int i = 0; i < 12; i++) {
            std::snprintf(reinterpret_cast<char *>(month[i]), sizeof month[i], "%cmonth%d", tag, i);
            std::snprintf(reinterpret_cast<char *>(shortmonth[i]), sizeof shortmonth[i], "%c%d", tag, i);
            info.months[i] = month[i], info.shortmonths[i] = shortmonth[i];
        }
        for (int i = 0; i < 7; i++) {
            std::snprintf(reinterpret_cast<char *>(day[i]), sizeof day[i], "%cday%d", tag, i);
            info.days[i] = day[i];
        }
        std::snprintf(info.dateorder, sizeof info.dateorder, "%s", order);
        info.locdateorder_id = order_id, info.convertfmt = style;
        info.firstday = firstday, info.is12hour = is12hour;
        cache.locdateinfo = &info;
        locale.timeptr = &cache;
    }
};

// Everything the queries answer, taken in one go.
struct Answers {
    std::string month0, shortmonth11, day0, order;
    CS_INT firstday;
    int order_id;
    CS_BOOL is12hour;
    CS_INT dtfmt, dtloc, dtloc_fmt;

    bool operator==(const Answers &) const = default;
};

Answers ask(CS_CONTEXT *context, CS_DATAFMT *dfmt)
{
    return {com_intl_months(context, dfmt)[0],       com_intl_shortmonths(context, dfmt)[11],
            com_intl_days(context, dfmt)[0],         com_intl_dateorder(context, dfmt),
            com_intl_firstday(context, dfmt),        com_intl_dateorder_id(context, dfmt),
            com_intl_is12hour(context, dfmt),        comn_intl_get_dtfmt(context, dfmt->locale),
            comn_dtloc_format(context, dfmt->locale), comn_dtloc_format_fmt(context, dfmt->locale)};
}

std::ostream &operator<<(std::ostream &os, const Answers &a)
{
    return os << a.month0 << "/" << a.shortmonth11 << "/" << a.day0 << "/" << a.order << " first " << a.firstday
              << " id " << a.order_id << " 12h " << a.is12hour << " fmt " << a.dtfmt << "/" << a.dtloc << "/"
              << a.dtloc_fmt;
}

// The built-in conventions; comn_dtloc_format_fmt gives the order id there.
const Answers kBuiltIn{"January", "Dec", "Sun", "mdy", 7, 1, 1, 0, 1, 1};
const Answers kHandA{"Amonth0", "A11", "Aday0", "dmy", 1, 2, 0, 103, 2, 103};
const Answers kHandB{"Bmonth0", "B11", "Bday0", "ydm", 3, 4, 1, 113, 4, 113};

TEST(DateDefaults, TablesHoldTheEnglishConventions)
{
    EXPECT_EQ(texts(com__get_months(), 12),
              (std::vector<std::string>{"January", "February", "March", "April", "May", "June", "July", "August",
                                        "September", "October", "November", "December"}));
    EXPECT_EQ(texts(com__get_shortmonths(), 12),
              (std::vector<std::string>{"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct",
                                        "Nov", "Dec"}));
    EXPECT_EQ(texts(com__get_weekdays(), 7), (std::vector<std::string>{"Sunday", "Monday", "Tuesday", "Wednesday",
                                                                        "Thursday", "Friday", "Saturday"}));
    EXPECT_EQ(texts(com__get_days(), 7),
              (std::vector<std::string>{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"}));
    EXPECT_EQ(texts(com__get_ampm(), 2), (std::vector<std::string>{"AM", "PM"}));
    EXPECT_EQ(com__get_firstday(), 7);
    EXPECT_STREQ(com__get_date_order(), "mdy");
    EXPECT_EQ(com__get_date_order_id(), 1);
}

// The date code's names for the English lists are the same tables, not copies.
TEST(DateDefaults, DateCodeSharesTheTables)
{
    EXPECT_EQ(kes::datetext::en_short_months(), com__get_shortmonths());
    EXPECT_EQ(kes::datetext::ampm(), com__get_ampm());
    EXPECT_EQ(Com__en_months, com__get_months());
    EXPECT_EQ(Com__en_days, com__get_weekdays());
}

TEST(DateDefaults, OrderTextToIdToStyle)
{
    struct Case {
        const char *text;
        int id;
        int style;
    };
    const Case cases[] = {{"mdy", 1, 0},  {"dmy", 2, 3}, {"ymd", 3, 11}, {"ydm", 4, 13}, {"myd", 5, 14},
                          {"dym", 6, 15}, {"", 1, 0},    {"MDY", 1, 0},  {"md", 1, 0},   {"dmyx", 1, 0},
                          {"xyz", 1, 0},  {nullptr, 1, 0}};
    for (const Case &c : cases) {
        const char *shown = c.text ? c.text : "(null)";
        EXPECT_EQ(com__get_dateorder_id(c.text), c.id) << shown;
        EXPECT_EQ(com__map_dateorder_id_to_fmt(com__get_dateorder_id(c.text)), c.style) << shown;
    }
}

TEST(DateDefaultsDeathTest, UnknownOrderIdIsFatal)
{
    EXPECT_BOMB(com__map_dateorder_id_to_fmt(0));
    EXPECT_BOMB(com__map_dateorder_id_to_fmt(7));
}

TEST(DateQueries, WhichLocaleAnswers)
{
    HandLocale a('A', "dmy", 2, 103, 1, 0);
    HandLocale b('B', "ydm", 4, 113, 3, 1);
    CsLocCache no_dates{};
    CS_LOCALE unloaded{};
    unloaded.timeptr = &no_dates;
    CS_LOCALE no_time{};

    CS_CONTEXT bare{};
    CS_CONTEXT with_a{};
    with_a.ctxlocale = &a.locale;
    CS_CONTEXT with_unloaded{};
    with_unloaded.ctxlocale = &unloaded;

    struct Case {
        const char *what;
        CS_CONTEXT *context;
        CS_LOCALE *fmt_locale;
        const Answers &expect;
    };
    const Case cases[] = {
        {"no context", nullptr, nullptr, kBuiltIn},
        {"context without locale", &bare, nullptr, kBuiltIn},
        {"context locale", &with_a, nullptr, kHandA},
        {"format locale, no context", nullptr, &b.locale, kHandB},
        {"format locale over context locale", &with_a, &b.locale, kHandB},
        {"context locale not loaded", &with_unloaded, nullptr, kBuiltIn},
        // The format's locale is the one asked about, loaded or not.
        {"format locale not loaded over context locale", &with_a, &unloaded, kBuiltIn},
        {"format locale without time cache", &with_a, &no_time, kBuiltIn},
    };
    for (const Case &c : cases) {
        CS_DATAFMT dfmt = kes::test::fmt(CS_CHAR_TYPE, 30);
        dfmt.locale = c.fmt_locale;
        EXPECT_EQ(ask(c.context, &dfmt), c.expect) << c.what;
    }
}

// The styles a date converts to text with pass; every neighbour of a range
// edge gives 0.
TEST(DateQueries, ConversionStyleFilter)
{
    const std::pair<CS_INT, CS_INT> cases[] = {
        {0, 0},     {1, 1},     {23, 23},   {24, 0},    {35, 0},    {36, 36},   {40, 40},   {41, 0},
        {99, 0},    {100, 100}, {118, 118}, {119, 0},   {120, 0},   {121, 121}, {122, 122}, {123, 0},
        {135, 0},   {136, 136}, {140, 140}, {141, 0},   {-1, 0},    {1000, 0}};
    for (const auto &[style, expect] : cases) {
        HandLocale loc('S', "mdy", 1, style, 7, 1);
        CS_DATAFMT dfmt = kes::test::fmt(CS_CHAR_TYPE, 30);
        dfmt.locale = &loc.locale;
        EXPECT_EQ(comn_get_datetochar_fmt(nullptr, &dfmt), expect) << style;
        // A format without a locale takes the context's.
        CS_CONTEXT context{};
        context.ctxlocale = &loc.locale;
        dfmt.locale = nullptr;
        EXPECT_EQ(comn_get_datetochar_fmt(&context, &dfmt), expect) << style;
    }
    CS_DATAFMT plain = kes::test::fmt(CS_CHAR_TYPE, 30);
    EXPECT_EQ(comn_get_datetochar_fmt(nullptr, &plain), 0); // the built-in style 0 is not among them
}

TEST(DateQueries, WeekdayBetweenWeekStarts)
{
    struct Case {
        CS_INT orig_firstday, orig_day, dest_firstday, expect;
    };
    const Case cases[] = {
        {1, 1, 1, 1}, {1, 7, 1, 0}, // the seventh day of a week reads as 0
        {7, 2, 1, 1},               // Monday: second from Sunday, first from Monday
        {7, 1, 1, 0},               // Sunday: first from Sunday, seventh from Monday
        {1, 7, 7, 1},               // Sunday from a Monday week into a Sunday week
        {3, 5, 6, 2},               // Sunday: fifth from Wednesday, second from Saturday
    };
    for (const Case &c : cases)
        EXPECT_EQ(com_intl_convt_firstday(c.orig_firstday, c.orig_day, c.dest_firstday), c.expect)
            << c.orig_firstday << "," << c.orig_day << "," << c.dest_firstday;
}

TEST(DateQueriesDeathTest, NullFormatIsFatal)
{
    CS_CONTEXT context{};
    EXPECT_NULL_POINTER(com_intl_months(&context, nullptr));
    EXPECT_NULL_POINTER(com_intl_is12hour(nullptr, nullptr));
    EXPECT_NULL_POINTER(comn_get_datetochar_fmt(&context, nullptr));
}

} // namespace
