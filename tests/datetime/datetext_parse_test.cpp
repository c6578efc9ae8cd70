// The date and time grammar: accepted and refused forms for every storage
// type, the token limit, character sets, and a seeded comparison with the
// system's strptime.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "datetime/calendar.h"
#include "datetime/format.h"
#include "datetime/parse.h"
#include "support/context.h"

namespace {

char **months() { return com__get_months(); }
char **shorts() { return com__get_shortmonths(); }

// "yyyy-mm-dd hh:mm:ss.fff", six fraction digits for the big types; a
// midnight shows as the date alone, to keep the table short.
std::string show(CS_DATETIME dt, CS_BIGDATETIME big = 0)
{
    CS_DATEREC r{};
    if (big == 0) {
        com_datecrack(&dt, &r);
        com_timecrack(&dt, &r);
    } else {
        com_bigdatecrack(&big, &r);
        com_bigtimecrack(&big, &r);
    }
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%0*d", r.dateyear, r.datemonth + 1,
                  r.datedmonth, r.datehour, r.dateminute, r.datesecond, big ? 6 : 3,
                  big ? r.datesecfrac : r.datemsecond);
    const std::string s = text;
    return s.find_first_not_of("0:.", 11) == std::string::npos ? s.substr(0, 10) : s;
}

enum Type { DT, BIG, D4, DA, TI, BT };

struct Parsed {
    CS_INT rc;
    std::string value; // the small types on the CS_DATETIME calendar, CS_BIGTIME from 0001-01-01
    CS_BOOL truncated;
};

Parsed parse(Type type, const std::string &text, int order = 1, int style = 0)
{
    static constexpr CS_INT kCodes[] = {CS_DATETIME_TYPE, CS_BIGDATETIME_TYPE, CS_DATETIME4_TYPE,
                                        CS_DATE_TYPE,     CS_TIME_TYPE,        CS_BIGTIME_TYPE};
    union {
        CS_DATETIME dt;
        CS_DATETIME4 d4;
        CS_DATE d;
        CS_TIME t;
        CS_BIGDATETIME big;
    } v{};
    CS_BOOL truncated = 7;
    const CS_INT rc = comn_date_parse(kCodes[type], const_cast<char *>(text.data()), static_cast<CS_INT>(text.size()),
                                      style, order, nullptr, nullptr, nullptr, &v, &truncated);
    const CS_DATETIME dts[] = {v.dt, {}, {v.d4.days, v.d4.minutes * 18000}, {v.d, 0}, {0, v.t}, {}};
    const std::string value = type == BIG  ? show({}, v.big)
                              : type == BT ? show({}, v.big + kes::cal::kBigMin)
                                           : show(dts[type]);
    return {rc, rc == 0 ? value : "", truncated};
}

struct Form {
    Type type;
    const char *text;
    int rc;
    const char *value = nullptr; // for rc 0
    int order = 1, style = 0;
};

const Form kForms[] = {
    // empty text and lone times fall on the base date
    {DT, "", 0, "1900-01-01"}, {DT, "   ", 0, "1900-01-01"}, {DT, "12:30:15.5", 0, "1900-01-01 12:30:15.500"},
    {DT, "12:30:15:5", 0, "1900-01-01 12:30:15.006"}, // 5 ms is 2 ticks
    {DT, "12:30:15.123456", 0, "1900-01-01 12:30:15.123"},
    {DT, "12:30:15.9999", 0, "1900-01-01 12:30:15.996"}, // rounds to 999, no carry
    {DT, "12:30:15.1234567", -1}, {DT, "12:30:15.", -1}, {DT, "12:30:15:1000", -1}, {DT, "12:30:", -1},
    {DT, ":30", -2}, {DT, "1234:30", -1}, {DT, "24:00", 1}, {DT, "23:59:60", 1},
    // AM and PM at the edge hours
    {DT, "8pm", 0, "1900-01-01 20:00:00.000"}, {DT, "12am", 0, "1900-01-01"},
    {DT, "12pm", 0, "1900-01-01 12:00:00.000"}, {DT, "13pm", 0, "1900-01-01 13:00:00.000"},
    {DT, "12:00:01 aM", 0, "1900-01-01 00:00:01.000"}, {DT, "1:02:03.4 pm", 0, "1900-01-01 13:02:03.400"},
    {DT, "0pm", 9}, {DT, "13am", 9}, {DT, "pm", -2}, {DT, "1000pm", -1},
    // numeric dates in each order; a leading 4-digit year means ymd except under ydm
    {DT, "12/31/08", 0, "2008-12-31"}, {DT, "31/12/08", 0, "2008-12-31", 2}, {DT, "08/12/31", 0, "2008-12-31", 3},
    {DT, "08/31/12", 0, "2008-12-31", 4}, {DT, "12/08/31", 0, "2008-12-31", 5},
    {DT, "31/08/12", 0, "2008-12-31", 6}, {DT, "1/2/2008", 0, "2008-01-02"}, {DT, "1/2/2008", 0, "2008-02-01", 2},
    {DT, "2008/1/2", 0, "2008-01-02", 2}, {DT, "2008/2/1", 0, "2008-01-02", 4},
    {DT, "2008/1/2", 0, "2008-01-02", 0}, {DT, "1/2/3", -1, nullptr, 0}, {DT, "1/2/3", -1, nullptr, 7},
    {DT, "1.2.2008", 0, "2008-02-01", 2}, {DT, "1-2/2008", 0, "2008-01-02"}, {DT, "2008-12-31", 0, "2008-12-31"},
    {DT, "1-2", -1}, {DT, "1//2", -1}, {DT, "1/2/3/4", -2}, {DT, "12/31/2008 extra", -1},
    // two-digit years pivot at 50; three digits are no year
    {DT, "1/1/49", 0, "2049-01-01"}, {DT, "1/1/50", 0, "1950-01-01"}, {DT, "31/12/123", 1, nullptr, 2},
    // bad fields and the type's range
    {DT, "2/30/2008", 3}, {DT, "13/1/2008", 2}, {DT, "0/1/2008", 2}, {DT, "1/0/2008", 3},
    {DT, "2/29/2000", 0, "2000-02-29"}, {DT, "2/29/1900", 3}, {DT, "1752-12-31", 1},
    {DT, "1753-01-01", 0, "1753-01-01"}, {DT, "9999-12-31 23:59:59.999", 0, "9999-12-31 23:59:59.996"},
    // a style settles the order and the year's width
    {DT, "12/31/08", 0, "2008-12-31", 3, 1}, {DT, "12/31/2008", -1, nullptr, 3, 1},
    {DT, "08.12.31", 0, "2008-12-31", 1, 2}, {DT, "31/12/08", 0, "2008-12-31", 1, 3},
    {DT, "08/12/31", 0, "2008-12-31", 1, 23}, {DT, "12/31/2008", 0, "2008-12-31", 3, 101},
    {DT, "12/31/08", -1, nullptr, 3, 101}, {DT, "2008.12.31", 0, "2008-12-31", 1, 102},
    {DT, "31.12.2008", 0, "2008-12-31", 1, 104}, {DT, "12-31-2008", 0, "2008-12-31", 2, 110},
    {DT, "1/2/3", -1, nullptr, 1, 6}, {DT, "1/2/3", -1, nullptr, 1, 100},
    // month names, full or short, in any case; whole words only
    {DT, "Jan 12 2008", 0, "2008-01-12"}, {DT, "Jan 12, 2008", 0, "2008-01-12"},
    {DT, "12 Jan 2008", 0, "2008-01-12"}, {DT, "12-Jan-2008", 0, "2008-01-12"},
    {DT, "12-Jan,2008", 0, "2008-01-12"}, {DT, "2008 Jan 12", 0, "2008-01-12"}, {DT, "Jan 2008", 0, "2008-01-01"},
    {DT, "January 12 08", 0, "2008-01-12"}, {DT, "12 jan 08", 0, "2008-01-12"}, {DT, "sEp 1 2008", 0, "2008-09-01"},
    {DT, "DECEMBER 31 1999 11:59:59.999PM", 0, "1999-12-31 23:59:59.996", 2},
    {DT, "Mar  5 2008  3:07:09:123PM", 0, "2008-03-05 15:07:09.123"}, {DT, "Jan 12", -1}, {DT, "12 Jan", -1},
    {DT, "Jan 12 123", 1}, {DT, "Janu 12 2008", -1}, {DT, "Ja 12 2008", -1}, {DT, "Feb 30 2008", 3},
    {DT, "Jan 12 2008 Feb", -2},
    // the T form, packed dates and lone numbers
    {DT, "2008-12-31T10:20:30", 0, "2008-12-31 10:20:30.000"},
    {DT, "2008-12-31t10:20:30.5", 0, "2008-12-31 10:20:30.500", 2},
    {DT, "20081231T10:20", 0, "2008-12-31 10:20:00.000"}, {DT, "10:20T2008-12-31", -1}, {DT, "Tue", -1},
    {DT, "20081231", 0, "2008-12-31"}, {DT, "081231", 0, "2008-12-31"}, {DT, "491231", 0, "2049-12-31"},
    {DT, "501231", 0, "1950-12-31"}, {DT, "2008", 0, "2008-01-01"}, {DT, "20081331", 2}, {DT, "1234567", -1},
    {DT, "123456789", -1}, {DT, "12345", -2}, {DT, "12 13", -2},
    // time before date, and characters that are no tokens
    {DT, "10:20 2008-12-31", 0, "2008-12-31 10:20:00.000", 2}, {DT, "3pm 12/31/2008", 0, "2008-12-31 15:00:00.000"},
    {DT, "2008-12-31\t10:20", -1}, {DT, "2008_12_31", -1},
    // CS_BIGDATETIME: microseconds, year 1, and the make statuses passed on
    {BIG, "12:30:15.123456", 0, "0001-01-01 12:30:15.123456"},
    {BIG, "12:30:15.9999", 0, "0001-01-01 12:30:15.999900"}, {BIG, "12:30:15:5", 0, "0001-01-01 12:30:15.005000"},
    {BIG, "1752-12-31 23:59:59.999999", 0, "1752-12-31 23:59:59.999999"}, {BIG, "0000-12-31", 1},
    {BIG, "2008-02-30", 3}, {BIG, "2008-13-01", 2}, {BIG, "2008-12-31 24:00", 4}, {BIG, "2008-12-31 23:60", 5},
    {BIG, "2008-12-31 23:59:60", 6},
    {BIG, "25:00", 1}, // a lone bad time is 1
    // CS_DATE and CS_TIME tolerate left-over tokens
    {DA, "1752-12-31", 0, "1752-12-31"}, {DA, "2008-12-31 5", 0, "2008-12-31"},
    {DA, "0001-01-01 10:00", 0, "0001-01-01"}, {DA, "10:00", 0, "1900-01-01"},
    {TI, "2008-12-31 23:59:59.999", 0, "1900-01-01 23:59:59.996"},
    // CS_BIGTIME counts from 0001-01-01, so a date moves it past a day
    {BT, "23:59:59.999999", 0, "0001-01-01 23:59:59.999999"},
    {BT, "0001-01-02 00:00:01", 0, "0001-01-02 00:00:01.000000"},
    // CS_DATETIME4: minutes rounded, 1900-01-01 to 2079-06-06 23:59
    {D4, "1900-01-01 00:00:29.996", 0, "1900-01-01"}, {D4, "1900-01-01 00:00:30", 0, "1900-01-01 00:01:00.000"},
    {D4, "2079-06-06 23:59:29.996", 0, "2079-06-06 23:59:00.000"}, {D4, "2079-06-06 23:59:30", 1},
    {D4, "1899-12-31 23:59", 1}, {D4, "bad", -1},
};

TEST(DateParse, GrammarAcceptsAndRefuses)
{
    for (const Form &f : kForms) {
        SCOPED_TRACE(testing::Message() << "type " << f.type << " '" << f.text << "' order " << f.order
                                        << " style " << f.style);
        const Parsed p = parse(f.type, f.text, f.order, f.style);
        EXPECT_EQ(p.rc, f.rc);
        EXPECT_EQ(p.value, f.value ? f.value : "");
    }
}

TEST(DateParse, TruncatedOnlyWhenDigitsAreLost)
{
    for (const auto &[text, lost] : {std::pair{"12:30:15.123456", 1}, {"12:30:15.1230", 0}, {"12:30:15.1235", 1},
                                     {"12:30:15:5", 0}, {"12:30", 0}}) {
        EXPECT_EQ(parse(DT, text).truncated, lost) << text;
        EXPECT_EQ(parse(TI, text).truncated, lost) << text;
    }
}

TEST(DateParse, TwentyTokensAtMost)
{
    // 13 tokens of date and time and 7 commas: 20 tokens, the commas left over.
    const std::string text20 = "1/2/2008 1:2:3:4 pm , , , , , , ,";
    EXPECT_EQ(parse(DT, text20).rc, -2);
    EXPECT_EQ(parse(DA, text20).rc, 0);
    // A 21st token is a syntax error even where leftovers are tolerated.
    EXPECT_EQ(parse(DT, text20 + " ,").rc, -1);
    EXPECT_EQ(parse(DA, text20 + " ,").rc, -1);
}

TEST(DateParse, TextEndsAtItsLengthNotAtNul)
{
    char text[] = "12:30xyz";
    CS_DATETIME dt{};
    EXPECT_EQ(com__datefromchar_mb(&dt, text, 5, 0, 1, months(), shorts(), nullptr, nullptr), 0);
    EXPECT_EQ(show(dt), "1900-01-01 12:30:00.000");
    EXPECT_EQ(parse(DT, std::string("12:30\0", 6)).rc, -1); // a NUL inside the length is no token
    // The time-only reader takes no date and knows no month names.
    for (const auto &[t, rc] : {std::pair{"10:20", 0}, {"2008-12-31 10:20", -2}, {"Jan 10:20", -1}})
        EXPECT_EQ(com__timefromchar_mb(&dt, const_cast<char *>(t), static_cast<int>(std::strlen(t)), 0, nullptr,
                                       nullptr), rc) << t;
}

TEST(DateParse, MultiByteCharacterSet)
{
    // Lead bytes 0x81 and 0x82; behind them 0x30..0x39 are digits and 0x3A a
    // colon; single-byte letters fold to upper case.
    CS_TYPE_MAP types[2]{};
    CS_NORM_MAP norm[2]{};
    CS_BYTE widths[256];
    for (int b = 0; b < 256; b++) {
        const bool lead = b == 0x81 || b == 0x82;
        widths[b] = lead ? 0x22 : 0x11;
        types[0].chmap[b] = lead ? CHAR_MAP{1, 1, 0, 0x80} : com_get_typemap()->chmap[b];
        norm[0].norm[b] = static_cast<CS_BYTE>(lead ? 1 : b >= 'a' && b <= 'z' ? b - 32 : b);
        if (b >= '0' && b <= '9')
            types[1].chmap[b] = {0, 0, 2, CS_CT_DIGIT}, norm[1].norm[b] = static_cast<CS_BYTE>(b);
    }
    norm[1].norm[':'] = ':';
    CS_ATTRIB set{};
    set.cs_class = 2, set.cs_maxcharlen = 2, set.cs_width_map = widths, set.cs_norm_map = norm;
    set.cs_type_map = types, set.cs_ntype = set.cs_nnorm = 2;
    const std::pair<std::string, const char *> cases[] = {
        {"\x82\x31\x82\x32\x81\x3A\x82\x33\x82\x30", "1900-01-01 12:30:00.000"}, // full-width 12:30
        {"dec 31 2008 11:00 pm", "2008-12-31 23:00:00.000"},
        {"12:30 \x82", nullptr}, // a lead byte cut by the end is refused, not read past
    };
    for (const auto &[text, value] : cases) {
        std::vector<char> bytes(text.begin(), text.end()); // exactly sized: a sanitizer sees a read past the end
        CS_DATETIME dt{};
        const int rc = com__datefromchar_mb(&dt, bytes.data(), static_cast<int>(bytes.size()), 0, 1, months(),
                                            shorts(), &set, nullptr);
        EXPECT_EQ(rc, value != nullptr ? 0 : -1) << text;
        EXPECT_EQ(rc == 0 ? show(dt) : "", value ? value : "");
    }
}

TEST(DateParse, LookupIsCaseBlindWholeAndAtMost30Bytes)
{
    char *list[3] = {const_cast<char *>("Mai"), nullptr, const_cast<char *>("M\xC4rz")};
    for (const auto &[text, hit] : {std::pair{"MAI", 0}, {"ma", -1}, {"maii", -1}, {"m\xE4rz", 2}})
        EXPECT_EQ(datelookup(const_cast<char *>(text), static_cast<int>(std::strlen(text)), list, 3, nullptr), hit)
            << text;
    std::string name(31, 'a');
    char *longlist[1] = {name.data()};
    EXPECT_EQ(datelookup(name.data(), 31, longlist, 1, nullptr), -1);
    name.resize(30);
    EXPECT_EQ(datelookup(name.data(), 30, longlist, 1, nullptr), 0);
}

TEST(DateParse, MatchesStrptime)
{
    using namespace std::chrono;
    std::mt19937 rng(20081231);
    std::uniform_int_distribution<int> year(1753, 9999), month(1, 12), day(1, 31), hour(0, 23), minsec(0, 59);
    for (int i = 0; i < 20000; i++) {
        const int y = year(rng), mo = month(rng), d = day(rng), h = hour(rng), mi = minsec(rng), s = minsec(rng);
        const bool ymd = i % 2 == 0;
        char text[64];
        if (ymd)
            std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", y, mo, d, h, mi, s);
        else
            std::snprintf(text, sizeof text, "%02d/%02d/%04d %02d:%02d:%02d", mo, d, y, h, mi, s);
        struct tm tm {};
        ASSERT_NE(strptime(text, ymd ? "%Y-%m-%d %H:%M:%S" : "%m/%d/%Y %H:%M:%S", &tm), nullptr) << text;
        const Parsed p = parse(DT, text);
        // strptime does not check the day against the month; the civil calendar does.
        if (!year_month_day{std::chrono::year{y}, std::chrono::month(mo), std::chrono::day(d)}.ok()) {
            EXPECT_EQ(p.rc, 3) << text;
            continue;
        }
        char want[64];
        std::snprintf(want, sizeof want, "%04d-%02d-%02d %02d:%02d:%02d.000", tm.tm_year + 1900, tm.tm_mon + 1,
                      tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
        ASSERT_EQ(p.rc, 0) << text;
        ASSERT_EQ(p.value.size() == 10 ? p.value + " 00:00:00.000" : p.value, want) << text;
    }
}

} // namespace
