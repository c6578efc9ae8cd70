// The built-in date conventions and the date order codes.
#include "intl/date_defaults.h"

#include <cstring>
#include <iterator>

#include "errors/assert.h"

namespace {

// The tables point into read-only text; the cast only fits the char ** shape.
constexpr CS_CHAR *text(const char *s) { return const_cast<CS_CHAR *>(s); }

struct DateOrder {
    const char *text;
    int id;
    int style; // the default conversion style of the order
};

constexpr DateOrder kDateOrders[] = {
    {"mdy", 1, 0}, {"dmy", 2, 3}, {"ymd", 3, 11}, {"ydm", 4, 13}, {"myd", 5, 14}, {"dym", 6, 15},
};

} // namespace

extern "C" {

constinit CS_CHAR *const Com__Months[12] = {
    text("January"), text("February"), text("March"),     text("April"),   text("May"),      text("June"),
    text("July"),    text("August"),   text("September"), text("October"), text("November"), text("December")};
constinit CS_CHAR *const Com__Shortmonths[12] = {text("Jan"), text("Feb"), text("Mar"), text("Apr"),
                                                 text("May"), text("Jun"), text("Jul"), text("Aug"),
                                                 text("Sep"), text("Oct"), text("Nov"), text("Dec")};
constinit CS_CHAR *const Com__WeekDay[7] = {text("Sunday"),   text("Monday"), text("Tuesday"), text("Wednesday"),
                                            text("Thursday"), text("Friday"), text("Saturday")};
constinit CS_CHAR *const Com__Days[7] = {text("Sun"), text("Mon"), text("Tue"), text("Wed"),
                                         text("Thu"), text("Fri"), text("Sat")};
constinit CS_CHAR *const Com__ampm[2] = {text("AM"), text("PM")};
constinit const CS_INT Com__Firstday = 7;
constinit const CS_CHAR Com__date_order[4] = "mdy";
constinit const int Com__date_order_id = 1;

CS_CHAR **com__get_months(void) { return kes::intl::names(Com__Months); }
CS_CHAR **com__get_shortmonths(void) { return kes::intl::names(Com__Shortmonths); }
CS_CHAR **com__get_weekdays(void) { return kes::intl::names(Com__WeekDay); }
CS_CHAR **com__get_days(void) { return kes::intl::names(Com__Days); }
CS_CHAR **com__get_ampm(void) { return kes::intl::names(Com__ampm); }
CS_INT com__get_firstday(void) { return Com__Firstday; }
CS_CHAR *com__get_date_order(void) { return const_cast<CS_CHAR *>(Com__date_order); }
int com__get_date_order_id(void) { return Com__date_order_id; }

int com__get_dateorder_id(const CS_CHAR *order_text)
{
    if (order_text != nullptr)
        for (const DateOrder &order : kDateOrders)
            if (std::strcmp(order_text, order.text) == 0)
                return order.id;
    return 1; // an order this library does not know reads as "mdy"
}

int com__map_dateorder_id_to_fmt(int id)
{
    KES_ASSERT(id >= 1 && id <= static_cast<int>(std::size(kDateOrders)));
    return kDateOrders[id - 1].style;
}

} // extern "C"
