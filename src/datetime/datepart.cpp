// Date parts (codes 0 to 14) of a cracked record, and their names.
#include <charconv>
#include <cstring>

#include "datetime/calendar.h"
#include "errors/assert.h"

using namespace kes::cal;

namespace {

constexpr int kNameMax = 30;

int year_length(int64_t year) { return (year % 400 == 0 || (year % 4 == 0 && year % 100 != 0)) ? 366 : 365; }

// dtdays of the Monday of ISO week 1 of the year whose January 1 is jan1.
int64_t iso_week_one(int64_t jan1) { return jan1 + week_one_offset[weekday(jan1)]; }

struct IsoWeek {
    int year;
    int week;
};

IsoWeek iso_week(const CS_DATEREC *t, int64_t date)
{
    const int64_t year = t->dateyear;
    const int64_t jan1 = date - (t->datedyear - 1);
    const int64_t monday = iso_week_one(jan1);
    if (date < monday) {
        const int64_t previous = iso_week_one(jan1 - year_length(year - 1));
        return {static_cast<int>(year - 1), static_cast<int>((date - previous) / 7 + 1)};
    }
    const int64_t w = (date - monday) / 7 + 1;
    if (w > 51 && date >= iso_week_one(jan1 + year_length(year)))
        return {static_cast<int>(year + 1), 1};
    return {static_cast<int>(year), static_cast<int>(w)};
}

// Decimal text of val, or "*" when a positive width is exceeded.
int put_number(char *cp, int val, int width)
{
    char text[16];
    const auto end = std::to_chars(text, text + sizeof text, val).ptr;
    const int n = static_cast<int>(end - text);
    if (width > 0 && n > width) {
        *cp = '*';
        return 1;
    }
    std::memcpy(cp, text, static_cast<size_t>(n));
    return n;
}

// A name, cut to kNameMax bytes, without fill or terminator.
int put_name(char *cp, const char *name)
{
    if (name == nullptr)
        return 0;
    const int n = static_cast<int>(strnlen(name, kNameMax));
    std::memcpy(cp, name, static_cast<size_t>(n));
    return n;
}

} // namespace

extern "C" {

int com__daterecpart(int part, CS_DATEREC *t, int firstday, int dayselapsed, CS_INT odatetype)
{
    const bool big = odatetype == CS_BIGDATETIME_TYPE;
    switch (part) {
    case 0:
        return t->dateyear;
    case 1:
        return t->datemonth / 3 + 1;
    case 2:
        return t->datemonth + 1;
    case 3: {
        const int64_t day = int64_t{weekday(dayselapsed)} + 1 - firstday;
        return static_cast<int>(day < 1 ? day + 7 : day);
    }
    case 4:
        return t->datedmonth;
    case 5:
        return t->datedyear;
    case 6:
        return t->datehour;
    case 7:
        return t->dateminute;
    case 8:
        return t->datesecond;
    case 9:
        return big ? t->datesecfrac / 1000 : t->datemsecond;
    case 10: {
        const int jan1 = weekday(int64_t{dayselapsed} - (t->datedyear - 1));
        return (t->datedyear + jan1 + 6) / 7;
    }
    case 11:
        return iso_week(t, dayselapsed).year;
    case 12:
        return iso_week(t, dayselapsed).week;
    case 13: {
        const int day = weekday(dayselapsed);
        return day == 0 ? 7 : day;
    }
    case 14:
        return big ? t->datesecfrac : 0;
    default:
        KES_ASSERT(!"date part code");
        return CS_EOVERFLOW;
    }
}

int com__datepart(int part, CS_DATETIME *to, int firstday)
{
    CS_DATEREC rec;
    com__datecrack(to, &rec);
    com__timecrack(to, &rec);
    return com__daterecpart(part, &rec, firstday, to->dtdays, CS_DATETIME_TYPE);
}

int com_datepart(int part, CS_DATETIME *to, int firstday)
{
    KES_NOT_NULL(to);
    return com__datepart(part, to, firstday);
}

int com__bigdatepart(int part, CS_BIGDATETIME *bdt, int firstday)
{
    KES_NOT_NULL(bdt);
    CS_DATEREC rec;
    com__bigdatecrack(bdt, &rec);
    com__bigtimecrack(bdt, &rec);
    return com__daterecpart(part, &rec, firstday, big_days(*bdt), CS_BIGDATETIME_TYPE);
}

int com_bigdatepart(int part, CS_BIGDATETIME *bdt, int firstday) { return com__bigdatepart(part, bdt, firstday); }

int com__datenameval(int part, char *cp, char **months, char **days, int value, int dayselapsed)
{
    switch (part) {
    case 0: case 1: case 4: case 5: case 6: case 7: case 8: case 9: case 10: case 11: case 12:
        return put_number(cp, value, 4);
    case 14:
        return put_number(cp, value, 6);
    case 2:
        if (months == nullptr || value < 1 || value > 12)
            return 0;
        return put_name(cp, months[value - 1]);
    case 3: case 13:
        if (days == nullptr)
            return 0;
        return put_name(cp, days[weekday(dayselapsed)]);
    default:
        return 0;
    }
}

// Part 13 hands in day 0, a Monday, as its weekday: ISO weekday names are
// always days[1].  Callers depend on this.
int com__datename(int part, CS_DATETIME *date, char *cp, char **months, char **days)
{
    KES_NOT_NULL(date);
    KES_NOT_NULL(cp);
    if (part < 0 || part > 14)
        return 0;
    return com__datenameval(part, cp, months, days, com__datepart(part, date, 0),
                            part == 13 ? 0 : date->dtdays);
}

int com_datename(int part, CS_DATETIME *date, char *cp, char **months, char **days)
{
    return com__datename(part, date, cp, months, days);
}

int com__bigdatename(int part, CS_BIGDATETIME *bdt, char *cp, char **months, char **days)
{
    KES_NOT_NULL(bdt);
    KES_NOT_NULL(cp);
    if (part < 0 || part > 14)
        return 0;
    return com__datenameval(part, cp, months, days, com__bigdatepart(part, bdt, 0),
                            part == 13 ? 0 : big_days(*bdt));
}

int com_bigdatename(int part, CS_BIGDATETIME *bdt, char *cp, char **months, char **days)
{
    return com__bigdatename(part, bdt, cp, months, days);
}

} // extern "C"
