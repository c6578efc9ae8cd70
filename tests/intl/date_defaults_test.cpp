// The built-in date conventions, the date order codes, and which locale's
// date record the date queries read.
#include <cstdio>
#include <string>
#include <tuple>
#include <vector>

#include "datetime/calendar.h"
#include "datetime/format.h"
#include "intl/date_defaults.h"
#include "intl/locale_records.h"
#include "kescomn/intl_date.h"
#include "support/context.h"

namespace {

using Strings = std::vector<std::string>;

// A locale whose time cache is filled by hand, unlike the built-in record in
// every field the queries read: months "<tag>month<i>", short months
// "<tag><i>", days "<tag>day<i>".
struct HandLocale {
    char text[31][12]{};
    CS_DATEINFO info{};
    CsLocCache cache{};
    CS_LOCALE locale{};
    HandLocale(char tag, const char *order, int order_id, CS_INT style, CS_INT firstday, CS_INT is12hour)
    {
        for (int i = 0; i < 12; i++) {
            std::snprintf(text[i], 12, "%cmonth%d", tag, i);
            std::snprintf(text[12 + i], 12, "%c%d", tag, i);
            info.months[i] = reinterpret_cast<CS_BYTE *>(text[i]);
            info.shortmonths[i] = reinterpret_cast<CS_BYTE *>(text[12 + i]);
        }
        for (int i = 0; i < 7; i++) {
            std::snprintf(text[24 + i], 12, "%cday%d", tag, i);
            info.days[i] = reinterpret_cast<CS_BYTE *>(text[24 + i]);
        }
        std::snprintf(info.dateorder, sizeof info.dateorder, "%s", order);
        info.locdateorder_id = order_id, info.convertfmt = style, info.firstday = firstday, info.is12hour = is12hour;
        cache.locdateinfo = &info;
        locale.timeptr = &cache;
    }
};

// Everything the queries answer, in one record: month 0, short month 11,
// day 0, order, first day, order id, 12-hour, style, and the two style forms.
using Answers =
    std::tuple<std::string, std::string, std::string, std::string, CS_INT, int, CS_BOOL, CS_INT, CS_INT, CS_INT>;

Answers ask(CS_CONTEXT *context, CS_DATAFMT *dfmt)
{
    return {com_intl_months(context, dfmt)[0],       com_intl_shortmonths(context, dfmt)[11],
            com_intl_days(context, dfmt)[0],         com_intl_dateorder(context, dfmt),
            com_intl_firstday(context, dfmt),        com_intl_dateorder_id(context, dfmt),
            com_intl_is12hour(context, dfmt),        comn_intl_get_dtfmt(context, dfmt->locale),
            comn_dtloc_format(context, dfmt->locale), comn_dtloc_format_fmt(context, dfmt->locale)};
}

TEST(DateDefaults, TablesHoldTheEnglishConventionsSharedWithTheDateCode)
{
    EXPECT_EQ(Strings(com__get_months(), com__get_months() + 12),
              (Strings{"January", "February", "March", "April", "May", "June", "July", "August", "September",
                       "October", "November", "December"}));
    EXPECT_EQ(Strings(com__get_shortmonths(), com__get_shortmonths() + 12),
              (Strings{"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"}));
    EXPECT_EQ(Strings(com__get_weekdays(), com__get_weekdays() + 7),
              (Strings{"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"}));
    EXPECT_EQ(Strings(com__get_days(), com__get_days() + 7),
              (Strings{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"}));
    EXPECT_EQ(Strings(com__get_ampm(), com__get_ampm() + 2), (Strings{"AM", "PM"}));
    EXPECT_EQ(com__get_firstday(), 7);
    EXPECT_STREQ(com__get_date_order(), "mdy");
    EXPECT_EQ(com__get_date_order_id(), 1);
}

// Anything but the six exact lower-case orders is "mdy".
TEST(DateDefaults, OrderTextToIdToStyle)
{
    const std::tuple<const char *, int, int> cases[] = {
        {"mdy", 1, 0}, {"dmy", 2, 3}, {"ymd", 3, 11}, {"ydm", 4, 13}, {"myd", 5, 14}, {"dym", 6, 15},
        {"", 1, 0},    {"MDY", 1, 0}, {"md", 1, 0},   {"dmyx", 1, 0}, {nullptr, 1, 0}};
    for (auto [text, id, style] : cases) {
        EXPECT_EQ(com__get_dateorder_id(text), id) << (text ? text : "(null)");
        EXPECT_EQ(com__map_dateorder_id_to_fmt(id), style) << id;
    }
    EXPECT_BOMB(com__map_dateorder_id_to_fmt(0));
    EXPECT_BOMB(com__map_dateorder_id_to_fmt(7));
}

// The format's locale first (loaded or not), then the context's, then the
// built-in record.
TEST(DateQueries, WhichLocaleAnswers)
{
    HandLocale a('A', "dmy", 2, 103, 1, 0), b('B', "ydm", 4, 113, 3, 1);
    CsLocCache no_dates{};
    CS_LOCALE unloaded{}, no_time{};
    unloaded.timeptr = &no_dates;
    CS_CONTEXT bare{}, with_a{}, with_unloaded{};
    with_a.ctxlocale = &a.locale;
    with_unloaded.ctxlocale = &unloaded;
    // The built-in style is 0 but comn_dtloc_format_fmt gives the order id there.
    const Answers builtin{"January", "Dec", "Sun", "mdy", 7, 1, 1, 0, 1, 1};
    const Answers hand_a{"Amonth0", "A11", "Aday0", "dmy", 1, 2, 0, 103, 2, 103};
    const Answers hand_b{"Bmonth0", "B11", "Bday0", "ydm", 3, 4, 1, 113, 4, 113};
    const std::tuple<const char *, CS_CONTEXT *, CS_LOCALE *, const Answers &> cases[] = {
        {"no context", nullptr, nullptr, builtin},
        {"context without locale", &bare, nullptr, builtin},
        {"context locale", &with_a, nullptr, hand_a},
        {"format locale, no context", nullptr, &b.locale, hand_b},
        {"format locale over context locale", &with_a, &b.locale, hand_b},
        {"context locale not loaded", &with_unloaded, nullptr, builtin},
        {"format locale not loaded over context locale", &with_a, &unloaded, builtin},
        {"format locale without time cache", &with_a, &no_time, builtin},
    };
    for (const auto &[what, context, locale, want] : cases) {
        CS_DATAFMT dfmt = kes::test::fmt(CS_CHAR_TYPE, 30);
        dfmt.locale = locale;
        EXPECT_EQ(ask(context, &dfmt), want) << what;
    }
}

// The styles a date converts to text with pass; every neighbour of a range
// edge gives 0, through the format's locale or the context's.
TEST(DateQueries, ConversionStyleFilter)
{
    const std::pair<CS_INT, CS_INT> cases[] = {{0, 0},     {1, 1},     {23, 23},   {24, 0},   {35, 0},   {36, 36},
                                               {40, 40},   {41, 0},    {99, 0},    {100, 100}, {118, 118}, {119, 0},
                                               {120, 0},   {121, 121}, {122, 122}, {123, 0},  {135, 0},  {136, 136},
                                               {140, 140}, {141, 0},   {-1, 0},    {1000, 0}};
    for (const auto &[style, expect] : cases) {
        HandLocale loc('S', "mdy", 1, style, 7, 1);
        CS_DATAFMT dfmt = kes::test::fmt(CS_CHAR_TYPE, 30);
        dfmt.locale = &loc.locale;
        EXPECT_EQ(comn_get_datetochar_fmt(nullptr, &dfmt), expect) << style;
        CS_CONTEXT context{};
        context.ctxlocale = &loc.locale;
        dfmt.locale = nullptr;
        EXPECT_EQ(comn_get_datetochar_fmt(&context, &dfmt), expect) << style;
    }
}

// The day's place in one week start read from another; the seventh is 0.
TEST(DateQueries, WeekdayBetweenWeekStarts)
{
    const std::tuple<CS_INT, CS_INT, CS_INT, CS_INT> cases[] = {
        {1, 1, 1, 1}, {1, 7, 1, 0}, {7, 2, 1, 1}, {7, 1, 1, 0}, {1, 7, 7, 1}, {3, 5, 6, 2}};
    for (auto [from_first, day, to_first, want] : cases)
        EXPECT_EQ(com_intl_convt_firstday(from_first, day, to_first), want)
            << from_first << "," << day << "," << to_first;
}

TEST(DateQueriesDeathTest, NullFormatIsFatal)
{
    CS_CONTEXT context{};
    EXPECT_NULL_POINTER(com_intl_months(&context, nullptr));
    EXPECT_NULL_POINTER(comn_get_datetochar_fmt(&context, nullptr));
}

} // namespace
