// The date and time grammar: accepted and refused forms for every storage
// type, the tokens, the name lookup through character maps, and a seeded
// comparison with the system's strptime on fixed forms.
#include <array>
#include <cstring>
#include <cstdio>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "datetime/calendar.h"
#include "datetime/format.h"
#include "datetime/parse.h"
#include "support/context.h"

namespace {

char **months() { return Com__en_months; }
char **shorts() { return kes::datetext::en_short_months(); }

// A CS_DATETIME as "yyyy-mm-dd hh:mm:ss.mmm", cracked by the calendar.
std::string show(CS_DATETIME dt)
{
    CS_DATEREC r{};
    com_datecrack(&dt, &r);
    com_timecrack(&dt, &r);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d", r.dateyear, r.datemonth + 1,
                  r.datedmonth, r.datehour, r.dateminute, r.datesecond, r.datemsecond);
    return text;
}

// A CS_BIGDATETIME as "yyyy-mm-dd hh:mm:ss.ffffff".
std::string show_big(CS_BIGDATETIME v)
{
    CS_DATEREC r{};
    com_bigdatecrack(&v, &r);
    com_bigtimecrack(&v, &r);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%06d", r.dateyear, r.datemonth + 1,
                  r.datedmonth, r.datehour, r.dateminute, r.datesecond, r.datesecfrac);
    return text;
}

struct Parsed {
    int rc;
    std::string value;
    CS_BOOL truncated;
};

Parsed parse_datetime(const std::string &text, int order = 1, int style = 0)
{
    CS_DATETIME dt{};
    CS_BOOL truncated = 7;
    int rc = com__datefromchar_mb(&dt, const_cast<char *>(text.data()), static_cast<int>(text.size()), style,
                                  order, months(), shorts(), nullptr, &truncated);
    return {rc, rc == 0 ? show(dt) : "", truncated};
}

Parsed parse_big(const std::string &text, int order = 1, int style = 0)
{
    CS_BIGDATETIME v{};
    int rc = com__bigdatetimefromchar_mb(&v, const_cast<char *>(text.data()), static_cast<int>(text.size()),
                                         style, order, months(), shorts(), nullptr);
    return {rc, rc == 0 ? show_big(v) : "", 0};
}

// ---- CS_DATETIME: the forms of the grammar ---------------------------------

struct Form {
    const char *text;
    int order;
    int style;
    int rc;
    const char *value; // for rc 0
};

const Form kDatetimeForms[] = {
    // empty and blank: midnight of the base date
    {"", 1, 0, 0, "1900-01-01 00:00:00.000"},
    {"   ", 1, 0, 0, "1900-01-01 00:00:00.000"},
    // times alone, fractions and milliseconds
    {"12:30", 1, 0, 0, "1900-01-01 12:30:00.000"},
    {"12:30:15.5", 1, 0, 0, "1900-01-01 12:30:15.500"},
    {"12:30:15:5", 1, 0, 0, "1900-01-01 12:30:15.006"}, // 5 ms is 2 ticks
    {"12:30:15.123456", 1, 0, 0, "1900-01-01 12:30:15.123"},
    {"12:30:15.9999", 1, 0, 0, "1900-01-01 12:30:15.996"}, // 999 ms is 299 ticks
    {"12:30:15.12", 1, 0, 0, "1900-01-01 12:30:15.120"},
    {"12:30:15.00012", 1, 0, 0, "1900-01-01 12:30:15.000"},
    {"12:30:15.1234567", 1, 0, -1, nullptr}, // seven digits are no token
    {"12:30:15.", 1, 0, -1, nullptr},
    {"12:30:15:1000", 1, 0, -1, nullptr},
    {"12:30:", 1, 0, -1, nullptr},
    {":30", 1, 0, -2, nullptr},
    {"12:", 1, 0, -1, nullptr},
    {"1234:30", 1, 0, -1, nullptr},
    {"24:00", 1, 0, 1, nullptr},
    {"23:60", 1, 0, 1, nullptr},
    {"23:59:60", 1, 0, 1, nullptr},
    {"23:59:59:999", 1, 0, 0, "1900-01-01 23:59:59.996"},
    // AM and PM at their edges
    {"8pm", 1, 0, 0, "1900-01-01 20:00:00.000"},
    {"8 PM", 1, 0, 0, "1900-01-01 20:00:00.000"},
    {"12am", 1, 0, 0, "1900-01-01 00:00:00.000"},
    {"12pm", 1, 0, 0, "1900-01-01 12:00:00.000"},
    {"11:59PM", 1, 0, 0, "1900-01-01 23:59:00.000"},
    {"12:00:01 aM", 1, 0, 0, "1900-01-01 00:00:01.000"},
    {"1:02:03.4 pm", 1, 0, 0, "1900-01-01 13:02:03.400"},
    {"0pm", 1, 0, 9, nullptr},
    {"13am", 1, 0, 9, nullptr},
    {"13pm", 1, 0, 0, "1900-01-01 13:00:00.000"},
    {"pm", 1, 0, -2, nullptr},
    {"1000pm", 1, 0, -1, nullptr},
    // numeric dates by order
    {"12/31/08", 1, 0, 0, "2008-12-31 00:00:00.000"},
    {"2008-12-31", 1, 0, 0, "2008-12-31 00:00:00.000"},
    {"31/12/08", 2, 0, 0, "2008-12-31 00:00:00.000"},
    {"31.12.2008", 2, 0, 0, "2008-12-31 00:00:00.000"},
    {"08/12/31", 3, 0, 0, "2008-12-31 00:00:00.000"},
    {"08/31/12", 4, 0, 0, "2008-12-31 00:00:00.000"},
    {"12/08/31", 5, 0, 0, "2008-12-31 00:00:00.000"},
    {"31/08/12", 6, 0, 0, "2008-12-31 00:00:00.000"},
    {"1/2/2008", 1, 0, 0, "2008-01-02 00:00:00.000"},
    {"1/2/2008", 2, 0, 0, "2008-02-01 00:00:00.000"},
    {"2008/1/2", 2, 0, 0, "2008-01-02 00:00:00.000"},  // a leading year means ymd
    {"2008/2/1", 4, 0, 0, "2008-01-02 00:00:00.000"},  // ...but not for ydm
    {"1/2/3", 7, 0, -1, nullptr},
    {"1/2/3", 0, 0, -1, nullptr},
    {"2008/1/2", 0, 0, 0, "2008-01-02 00:00:00.000"}, // order comes from the year
    {"1-2", 1, 0, -1, nullptr},
    {"1/2/3/4", 1, 0, -2, nullptr},
    {"1/2", 1, 0, -1, nullptr},
    {"1//2", 1, 0, -1, nullptr},
    {"12/31/2008 extra", 1, 0, -1, nullptr},
    {"31/12/123", 2, 0, 1, nullptr},
    {"1/1/49", 1, 0, 0, "2049-01-01 00:00:00.000"},
    {"1/1/50", 1, 0, 0, "1950-01-01 00:00:00.000"},
    {"1/1/00", 1, 0, 0, "2000-01-01 00:00:00.000"},
    {"1/1/99", 1, 0, 0, "1999-01-01 00:00:00.000"},
    {"2/30/2008", 1, 0, 3, nullptr},
    {"13/1/2008", 1, 0, 2, nullptr},
    {"0/1/2008", 1, 0, 2, nullptr},
    {"1/0/2008", 1, 0, 3, nullptr},
    {"2/29/2000", 1, 0, 0, "2000-02-29 00:00:00.000"},
    {"2/29/1900", 1, 0, 3, nullptr},
    {"1752-12-31", 1, 0, 1, nullptr},
    {"1753-01-01", 1, 0, 0, "1753-01-01 00:00:00.000"},
    {"9999-12-31 23:59:59.999", 1, 0, 0, "9999-12-31 23:59:59.996"},
    {"12/31/2008", 1, 0, 0, "2008-12-31 00:00:00.000"},
    {"1.2.2008", 2, 0, 0, "2008-02-01 00:00:00.000"},
    {"1-2/2008", 1, 0, 0, "2008-01-02 00:00:00.000"}, // separators may differ
    // styles settle order and year
    {"12/31/08", 3, 1, 0, "2008-12-31 00:00:00.000"},
    {"12/31/2008", 3, 1, -1, nullptr}, // style 1 reads no 4-digit year
    {"08.12.31", 1, 2, 0, "2008-12-31 00:00:00.000"},
    {"31/12/08", 1, 3, 0, "2008-12-31 00:00:00.000"},
    {"12/31/2008", 3, 101, 0, "2008-12-31 00:00:00.000"},
    {"12/31/08", 3, 101, -1, nullptr},
    {"2008.12.31", 1, 102, 0, "2008-12-31 00:00:00.000"},
    {"31.12.2008", 1, 104, 0, "2008-12-31 00:00:00.000"},
    {"12-31-2008", 2, 110, 0, "2008-12-31 00:00:00.000"},
    {"2008/12/31", 1, 111, 0, "2008-12-31 00:00:00.000"},
    {"08/12/31", 1, 23, 0, "2008-12-31 00:00:00.000"},
    {"1/2/3", 1, 6, -1, nullptr},
    {"1/2/3", 1, 100, -1, nullptr},
    // month names in either case and both lengths
    {"Jan 12 2008", 1, 0, 0, "2008-01-12 00:00:00.000"},
    {"Jan 12, 2008", 1, 0, 0, "2008-01-12 00:00:00.000"},
    {"12 Jan 2008", 1, 0, 0, "2008-01-12 00:00:00.000"},
    {"12-Jan-2008", 1, 0, 0, "2008-01-12 00:00:00.000"},
    {"12/Jan/2008", 1, 0, 0, "2008-01-12 00:00:00.000"},
    {"12-Jan,2008", 1, 0, 0, "2008-01-12 00:00:00.000"},
    {"2008 Jan 12", 1, 0, 0, "2008-01-12 00:00:00.000"},
    {"Jan 2008", 1, 0, 0, "2008-01-01 00:00:00.000"},
    {"January 12 08", 1, 0, 0, "2008-01-12 00:00:00.000"},
    {"12 jan 08", 1, 0, 0, "2008-01-12 00:00:00.000"},
    {"DECEMBER 31 1999 11:59:59.999PM", 2, 0, 0, "1999-12-31 23:59:59.996"},
    {"sEp 1 2008", 1, 0, 0, "2008-09-01 00:00:00.000"},
    {"Mar  5 2008  3:07:09:123PM", 1, 0, 0, "2008-03-05 15:07:09.123"},
    {"Jan 12", 1, 0, -1, nullptr},
    {"12 Jan", 1, 0, -1, nullptr},
    {"Jan 12 123", 1, 0, 1, nullptr},
    {"Janu 12 2008", 1, 0, -1, nullptr}, // a full match, not a prefix
    {"Ja 12 2008", 1, 0, -1, nullptr},
    {"Feb 30 2008", 1, 0, 3, nullptr},
    {"Jan 12 2008 Feb", 1, 0, -2, nullptr},
    // ISO and packed forms
    {"2008-12-31T10:20:30", 1, 0, 0, "2008-12-31 10:20:30.000"},
    {"2008-12-31t10:20:30.5", 2, 0, 0, "2008-12-31 10:20:30.500"},
    {"20081231T10:20", 1, 0, 0, "2008-12-31 10:20:00.000"},
    {"10:20T2008-12-31", 1, 0, -1, nullptr},
    {"Tue", 1, 0, -1, nullptr}, // a word starting with T is the T token
    {"20081231", 1, 0, 0, "2008-12-31 00:00:00.000"},
    {"081231", 1, 0, 0, "2008-12-31 00:00:00.000"},
    {"491231", 1, 0, 0, "2049-12-31 00:00:00.000"},
    {"501231", 1, 0, 0, "1950-12-31 00:00:00.000"},
    {"2008", 1, 0, 0, "2008-01-01 00:00:00.000"},
    {"20081331", 1, 0, 2, nullptr},
    {"1234567", 1, 0, -1, nullptr},
    {"123456789", 1, 0, -1, nullptr},
    {"12345", 1, 0, -2, nullptr},
    {"12", 1, 0, -2, nullptr},
    {"12 13", 1, 0, -2, nullptr},
    // date and time in either order
    {"2008-12-31 10:20", 1, 0, 0, "2008-12-31 10:20:00.000"},
    {"10:20 2008-12-31", 1, 0, 0, "2008-12-31 10:20:00.000"},
    {"10:20 2008-12-31", 2, 0, 0, "2008-12-31 10:20:00.000"},
    {"3pm 12/31/2008", 1, 0, 0, "2008-12-31 15:00:00.000"},
    // characters that are no tokens
    {"2008-12-31\t10:20", 1, 0, -1, nullptr},
    {"2008_12_31", 1, 0, -1, nullptr},
};

TEST(DateParse, DatetimeForms)
{
    for (const Form &f : kDatetimeForms) {
        SCOPED_TRACE(testing::Message() << "'" << f.text << "' order " << f.order << " style " << f.style);
        Parsed p = parse_datetime(f.text, f.order, f.style);
        EXPECT_EQ(p.rc, f.rc);
        if (f.rc == 0) {
            EXPECT_EQ(p.value, f.value);
        }
    }
}

TEST(DateParse, TwentyTokensAtMost)
{
    // 5 date tokens, 7 time tokens, AM/PM and 7 commas: 20 tokens, which parse
    // (the commas are left over); a 21st is refused whatever partonly says.
    std::string text20 = "1/2/2008 1:2:3:4 pm , , , , , , ,";
    EXPECT_EQ(parse_datetime(text20).rc, -2);
    EXPECT_EQ(parse_datetime(text20 + " ,").rc, -1);
    CS_DATE d;
    EXPECT_EQ(com__dateafromchar_mb(&d, text20.data(), static_cast<int>(text20.size()), 0, 1, months(), shorts(),
                                    nullptr),
              0);
    std::string text21 = text20 + " ,";
    EXPECT_EQ(com__dateafromchar_mb(&d, text21.data(), static_cast<int>(text21.size()), 0, 1, months(), shorts(),
                                    nullptr),
              -1);
}

TEST(DateParse, TextEndsAtItsLength)
{
    char text[] = "12:30xyz\0";
    CS_DATETIME dt{};
    CS_BOOL truncated;
    EXPECT_EQ(com__datefromchar_mb(&dt, text, 5, 0, 1, months(), shorts(), nullptr, &truncated), 0);
    EXPECT_EQ(show(dt), "1900-01-01 12:30:00.000");
    EXPECT_EQ(com__datefromchar_mb(&dt, text, 0, 0, 1, months(), shorts(), nullptr, &truncated), 0);
    // A NUL inside the length is an ordinary character, and no token.
    char nul[] = "12:30\0";
    EXPECT_EQ(com__datefromchar_mb(&dt, nul, 6, 0, 1, months(), shorts(), nullptr, &truncated), -1);
}

TEST(DateParse, TruncatedFlag)
{
    struct Case {
        const char *text;
        CS_BOOL truncated;
    };
    const Case cases[] = {
        {"12:30:15.123456", 1}, {"12:30:15.123", 0}, {"12:30:15.1230", 0},
        {"12:30:15.1235", 1},   {"12:30:15:5", 0},   {"12:30", 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text);
        Parsed p = parse_datetime(c.text);
        EXPECT_EQ(p.rc, 0);
        EXPECT_EQ(p.truncated, c.truncated);
    }
}

// ---- the big types keep microseconds and start at year 1 -------------------

TEST(DateParse, BigDatetimeForms)
{
    const Form forms[] = {
        {"", 1, 0, 0, "0001-01-01 00:00:00.000000"},
        {"12:30", 1, 0, 0, "0001-01-01 12:30:00.000000"},
        {"12:30:15.123456", 1, 0, 0, "0001-01-01 12:30:15.123456"},
        {"12:30:15.9999", 1, 0, 0, "0001-01-01 12:30:15.999900"},
        {"12:30:15:5", 1, 0, 0, "0001-01-01 12:30:15.005000"},
        {"12:30:15.1234567", 1, 0, -1, nullptr},
        {"0001-01-01", 1, 0, 0, "0001-01-01 00:00:00.000000"},
        {"1752-12-31 23:59:59.999999", 1, 0, 0, "1752-12-31 23:59:59.999999"},
        {"9999-12-31 23:59:59.999999", 1, 0, 0, "9999-12-31 23:59:59.999999"},
        {"0000-12-31", 1, 0, 1, nullptr},
        {"2008-02-30", 1, 0, 3, nullptr},
        {"2008-13-01", 1, 0, 2, nullptr},
        {"2008-12-31 24:00", 1, 0, 4, nullptr},
        {"2008-12-31 23:60", 1, 0, 5, nullptr},
        {"2008-12-31 23:59:60", 1, 0, 6, nullptr},
        {"25:00", 1, 0, 1, nullptr}, // a lone bad time is 1
        {"0pm", 1, 0, 9, nullptr},
    };
    for (const Form &f : forms) {
        SCOPED_TRACE(testing::Message() << "'" << f.text << "'");
        Parsed p = parse_big(f.text, f.order, f.style);
        EXPECT_EQ(p.rc, f.rc);
        if (f.rc == 0) {
            EXPECT_EQ(p.value, f.value);
        }
    }
}

TEST(DateParse, OtherStorageTypes)
{
    auto text = [](const char *s) { return const_cast<char *>(s); };
    auto len = [](const char *s) { return static_cast<int>(std::strlen(s)); };

    // CS_DATE takes the date and tolerates what is left; 1752 is fine here.
    CS_DATE d = 5;
    EXPECT_EQ(com__dateafromchar_mb(&d, text("1752-12-31"), 10, 0, 1, months(), shorts(), nullptr), 0);
    EXPECT_EQ(d, -53691);
    EXPECT_EQ(com__dateafromchar_mb(&d, text("2008-12-31 5"), 12, 0, 1, months(), shorts(), nullptr), 0);
    EXPECT_EQ(d, 39811);
    EXPECT_EQ(com__dateafromchar_mb(&d, text("0001-01-01 10:00"), 16, 0, 1, months(), shorts(), nullptr), 0);
    EXPECT_EQ(d, -693595);
    EXPECT_EQ(com__dateafromchar_mb(&d, text("10:00"), 5, 0, 1, months(), shorts(), nullptr), 0);
    EXPECT_EQ(d, 0);

    // CS_TIME: the time of day; a date may stand beside it.
    CS_TIME t = 5;
    CS_BOOL truncated = 0;
    const char *s = "2008-12-31 23:59:59.999";
    EXPECT_EQ(com__timeafromchar_mb(&t, text(s), len(s), 0, 1, months(), shorts(), nullptr, &truncated), 0);
    EXPECT_EQ(t, 25919999);
    s = "10:00:00.0001";
    EXPECT_EQ(com__timeafromchar_mb(&t, text(s), len(s), 0, 1, months(), shorts(), nullptr, &truncated), 0);
    EXPECT_EQ(t, 10800000);
    EXPECT_EQ(truncated, 1);

    // CS_BIGTIME counts from 0001-01-01, so only a lone time is a time of day.
    CS_BIGTIME bt = 5;
    s = "23:59:59.999999";
    EXPECT_EQ(com__bigtimefromchar_mb(&bt, text(s), len(s), 0, 1, months(), shorts(), nullptr), 0);
    EXPECT_EQ(bt, 86399999999ULL);
    s = "0001-01-02 00:00:01";
    EXPECT_EQ(com__bigtimefromchar_mb(&bt, text(s), len(s), 0, 1, months(), shorts(), nullptr), 0);
    EXPECT_EQ(bt, 86401000000ULL);

    // CS_DATETIME4: minutes rounded, range 1900-01-01 to 2079-06-06 23:59.
    CS_DATETIME4 d4{};
    struct D4 {
        const char *text;
        int rc;
        CS_USHORT days, minutes;
    };
    const D4 d4cases[] = {
        {"1900-01-01 00:00:29.996", 0, 0, 0},
        {"1900-01-01 00:00:30", 0, 0, 1},
        {"2079-06-06 23:59", 0, 65535, 1439},
        {"2079-06-06 23:59:29.996", 0, 65535, 1439},
        {"2079-06-06 23:59:30", 1, 0, 0},
        {"2079-06-07", 1, 0, 0},
        {"1899-12-31 23:59", 1, 0, 0},
        {"12:30", 0, 0, 750},
        {"bad", -1, 0, 0},
    };
    for (const D4 &c : d4cases) {
        SCOPED_TRACE(c.text);
        int rc = com__date4fromchar_mb(&d4, text(c.text), len(c.text), 0, 1, months(), shorts(), nullptr);
        EXPECT_EQ(rc, c.rc);
        if (rc == 0) {
            EXPECT_EQ(d4.days, c.days);
            EXPECT_EQ(d4.minutes, c.minutes);
        }
    }

    // The time-only reader looks at no date and knows no month names.
    CS_DATETIME dt{};
    s = "10:20";
    EXPECT_EQ(com__timefromchar_mb(&dt, text(s), len(s), 0, nullptr, &truncated), 0);
    EXPECT_EQ(show(dt), "1900-01-01 10:20:00.000");
    s = "2008-12-31 10:20";
    EXPECT_EQ(com__timefromchar_mb(&dt, text(s), len(s), 0, nullptr, &truncated), -2);
    s = "Jan 10:20";
    EXPECT_EQ(com__timefromchar_mb(&dt, text(s), len(s), 0, nullptr, &truncated), -1);
    s = "";
    EXPECT_EQ(com__timefromchar_mb(&dt, text(s), len(s), 0, nullptr, &truncated), 0);
}

// ---- tokens and lookup -------------------------------------------------------

TEST(DateParse, Tokens)
{
    struct Tok {
        const char *text;
        std::vector<std::array<int, 3>> tokens; // kind, length, value
    };
    const Tok cases[] = {
        {"1 12 123 1234 12345 123456 12345678",
         {{0, 1, 1}, {0, 2, 12}, {0, 3, 123}, {1, 4, 1234}, {12, 5, 12345}, {10, 6, 123456}, {10, 8, 12345678},
          {7, 0, 0}}},
        {"007", {{0, 3, 7}, {7, 0, 0}}},
        {"/-.,:", {{6, 0, 0}, {6, 0, 0}, {6, 0, -1}, {5, 0, 0}, {2, 0, 0}, {7, 0, 0}}},
        {"am PM Pm", {{3, 0, 0}, {3, 0, 1}, {3, 0, 1}, {7, 0, 0}}},
        {"dec JUNE", {{4, 0, 11}, {4, 0, 5}, {7, 0, 0}}},
        {"T t", {{11, 0, 0}, {11, 0, 0}, {7, 0, 0}}},
        {"1234567", {{8, 7, 1234567}}},
        {"abc", {{8, 0, 0}}},
        {"#", {{8, 0, 0}}},
    };
    for (const Tok &c : cases) {
        SCOPED_TRACE(c.text);
        char *cp = const_cast<char *>(c.text);
        int len = static_cast<int>(std::strlen(c.text));
        for (const auto &want : c.tokens) {
            struct com__datecrack dc{-1, -1, -1};
            int kind = datetoken(&cp, &len, &dc, months(), shorts(), nullptr);
            EXPECT_EQ(kind, want[0]);
            EXPECT_EQ(dc.dctoken, want[0]);
            if (kind == DC_NUMBER || kind == DC_NUMBER4 || kind == DC_PACKED || kind == DC_NUMBER5) {
                EXPECT_EQ(dc.dclength, want[1]);
            }
            if (kind != DC_END && kind != DC_ERROR && kind != DC_COLON && kind != DC_COMMA && kind != DC_T) {
                EXPECT_EQ(dc.dcvalue, want[2]);
            }
        }
    }
    // Without month lists every word but AM/PM is an error.
    char *cp = const_cast<char *>("Jan");
    int len = 3;
    struct com__datecrack dc{};
    EXPECT_EQ(datetoken(&cp, &len, &dc, nullptr, shorts(), nullptr), DC_ERROR);
    cp = const_cast<char *>("pm");
    len = 2;
    EXPECT_EQ(datetoken(&cp, &len, &dc, nullptr, nullptr, nullptr), DC_AMPM);
}

TEST(DateParse, FindToken)
{
    struct com__datecrack dc[DC_MAXTOKENS] = {{DC_USED, 0, 0}, {DC_NUMBER, 1, 5}, {DC_USED, 0, 0}, {DC_COLON, 0, 0},
                                       {DC_END, 0, 0},  {DC_NUMBER, 0, 0}};
    EXPECT_EQ(findtoken(dc, DC_NUMBER), 1);
    EXPECT_EQ(findtoken(dc, DC_COLON), 3);
    EXPECT_EQ(findtoken(dc, -DC_USED), 1);
    EXPECT_EQ(findtoken(dc, -DC_COLON), 0);
    EXPECT_EQ(findtoken(dc, DC_MONTH), -1);
    dc[1].dctoken = DC_USED;
    dc[3].dctoken = DC_USED;
    EXPECT_EQ(findtoken(dc, -DC_USED), -1); // stops at the end token
}

TEST(DateParse, AmCheck)
{
    struct Case {
        int hour, pm, rc, after;
    };
    const Case cases[] = {{0, 0, 0, 0},   {1, 0, 0, 1},   {11, 0, 0, 11}, {12, 0, 0, 0},  {13, 0, 1, 13},
                          {0, 1, 1, 0},   {1, 1, 0, 13},  {11, 1, 0, 23}, {12, 1, 0, 12}, {13, 1, 0, 13},
                          {23, 1, 0, 23}, {24, 1, 0, 24}};
    for (const Case &c : cases) {
        CS_DATEREC r{};
        r.datehour = c.hour;
        EXPECT_EQ(com__amcheck(&r, c.pm), c.rc) << c.hour << (c.pm ? "pm" : "am");
        EXPECT_EQ(r.datehour, c.after) << c.hour << (c.pm ? "pm" : "am");
    }
}

// A two-byte character set: lead bytes 0x81..0x82, a normalisation map that
// folds letters to upper case and full-width digits (0x82 0x30..0x39) and the
// full-width colon (0x81 0x3A) to ASCII.
struct WideSet {
    CS_TYPE_MAP types[2]{};
    CS_NORM_MAP norm[2]{};
    CS_BYTE widths[256]{};
    CS_ATTRIB attrib{};

    WideSet()
    {
        for (int b = 0; b < 256; b++) {
            types[0].chmap[b] = com_get_typemap()->chmap[b];
            widths[b] = 0x11;
            norm[0].norm[b] = static_cast<CS_BYTE>(b >= 'a' && b <= 'z' ? b - 32 : b);
        }
        for (int lead : {0x81, 0x82}) {
            widths[lead] = 0x22;
            types[0].chmap[lead] = {1, 1, 0, 0x80};
            norm[0].norm[lead] = 1; // page 1
        }
        for (int b = 0; b < 256; b++)
            types[1].chmap[b] = {0, 0, 0, 0};
        for (int d = 0; d < 10; d++) {
            types[1].chmap[0x30 + d] = {0, 0, 2, CS_CT_DIGIT};
            norm[1].norm[0x30 + d] = static_cast<CS_BYTE>('0' + d);
        }
        norm[1].norm[0x3A] = ':';
        attrib.cs_class = 2;
        attrib.cs_maxcharlen = 2;
        attrib.cs_width_map = widths;
        attrib.cs_norm_map = norm;
        attrib.cs_type_map = types;
        attrib.cs_ntype = 2;
        attrib.cs_nnorm = 2;
    }
};

TEST(DateParse, CharacterSetMaps)
{
    WideSet set;
    // Full-width digits and colon read as their ASCII twins.
    const std::string text = "\x82\x31\x82\x32\x81\x3A\x82\x33\x82\x30";
    CS_DATETIME dt{};
    CS_BOOL truncated;
    EXPECT_EQ(com__datefromchar_mb(&dt, const_cast<char *>(text.data()), static_cast<int>(text.size()), 0, 1,
                                   months(), shorts(), &set.attrib, &truncated),
              0);
    EXPECT_EQ(show(dt), "1900-01-01 12:30:00.000");
    // An upper-casing map makes names case-blind.
    const std::string named = "dec 31 2008 11:00 pm";
    EXPECT_EQ(com__datefromchar_mb(&dt, const_cast<char *>(named.data()), static_cast<int>(named.size()), 0, 1,
                                   months(), shorts(), &set.attrib, &truncated),
              0);
    EXPECT_EQ(show(dt), "2008-12-31 23:00:00.000");
    // A lead byte cut by the end of the text is refused, not read past.
    const std::string cut = "12:30 \x82";
    EXPECT_EQ(com__datefromchar_mb(&dt, const_cast<char *>(cut.data()), static_cast<int>(cut.size()), 0, 1,
                                   months(), shorts(), &set.attrib, &truncated),
              -1);
}

TEST(DateParse, Lookup)
{
    char *list[3] = {const_cast<char *>("Mai"), nullptr, const_cast<char *>("M\xC4rz")};
    struct Case {
        const char *text;
        int hit;
    };
    const Case cases[] = {{"mai", 0}, {"MAI", 0}, {"ma", -1}, {"maii", -1}, {"m\xE4rz", 2}, {"M\xC4RZ", 2}};
    for (const Case &c : cases)
        EXPECT_EQ(datelookup(const_cast<char *>(c.text), static_cast<int>(std::strlen(c.text)), list, 3, nullptr),
                  c.hit)
            << c.text;
    // Texts over 30 bytes are never names, even when a list entry is as long.
    std::string longname(31, 'a');
    char *longlist[1] = {longname.data()};
    EXPECT_EQ(datelookup(longname.data(), 31, longlist, 1, nullptr), -1);
    EXPECT_EQ(datelookup(longname.data(), 30, longlist, 1, nullptr), -1);
    longname.resize(30);
    EXPECT_EQ(datelookup(longname.data(), 30, longlist, 1, nullptr), 0);
}

// ---- against the system's strptime -----------------------------------------

TEST(DateParse, MatchesStrptime)
{
    std::mt19937 rng(20081231);
    std::uniform_int_distribution<int> year(1753, 9999), month(1, 12), day(1, 31), hour(0, 23), minute(0, 59),
        second(0, 59);
    const char *forms[] = {"%04d-%02d-%02d %02d:%02d:%02d", "%02d/%02d/%04d %02d:%02d:%02d"};
    for (int i = 0; i < 20000; i++) {
        const int y = year(rng), mo = month(rng), d = day(rng), h = hour(rng), mi = minute(rng), s = second(rng);
        const bool ymd = i % 2 == 0;
        char text[64];
        if (ymd)
            std::snprintf(text, sizeof text, forms[0], y, mo, d, h, mi, s);
        else
            std::snprintf(text, sizeof text, forms[1], mo, d, y, h, mi, s);
        struct tm tm {};
        const char *end = strptime(text, ymd ? "%Y-%m-%d %H:%M:%S" : "%m/%d/%Y %H:%M:%S", &tm);
        ASSERT_NE(end, nullptr) << text;
        Parsed p = parse_datetime(text, 1, 0);
        // strptime does not check the day against the month; the calendar does.
        const bool valid = d <= (mo == 2 ? ((y % 4 == 0 && y % 100 != 0) || y % 400 == 0 ? 29 : 28)
                                         : (mo == 4 || mo == 6 || mo == 9 || mo == 11 ? 30 : 31));
        if (!valid) {
            EXPECT_EQ(p.rc, 3) << text;
            continue;
        }
        ASSERT_EQ(p.rc, 0) << text;
        char want[64];
        std::snprintf(want, sizeof want, "%04d-%02d-%02d %02d:%02d:%02d.000", tm.tm_year + 1900, tm.tm_mon + 1,
                      tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
        ASSERT_EQ(p.value, want) << text;
    }
}

} // namespace
