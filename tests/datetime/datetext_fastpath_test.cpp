// The fixed forms read in front of the date grammar: which texts they take
// (dates, with or without a time, and lone times);
// the in-line values of in-range records against the make operations over
// the whole calendar; and a seeded run of generated texts through every
// reader by both routes (fixed forms first, grammar alone) that must agree in
// result, truncation flag and every byte written, for all date orders, styles
// and types.
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <string>

#include "datetime/calendar.h"
#include "datetime/format.h"
#include "datetime/parse.h"
#include "datetime/parse_fast.h"
#include "kescomn/charattr.h"
#include "support/context.h"

namespace {

using kes::datetext::Readers;
using kes::datetext::Route;

char **months() { return com__get_months(); }
char **shorts() { return com__get_shortmonths(); }

// The text in a buffer of exactly its length, so that a sanitizer build sees
// any read past the end.
class Exact {
public:
    explicit Exact(const std::string &text) : bytes_(new char[text.size()])
    {
        std::memcpy(bytes_.get(), text.data(), text.size());
        len_ = static_cast<int>(text.size());
    }
    char *data() { return bytes_.get(); }
    int len() const { return len_; }

private:
    std::unique_ptr<char[]> bytes_;
    int len_;
};

// What one reader left: its result, the flag and the destination's bytes,
// which start as a pattern so that a field one route writes and the other
// does not shows up.
struct Outcome {
    int rc;
    CS_BOOL truncated;
    unsigned char bytes[sizeof(CS_DATEREC)];
    bool operator==(const Outcome &o) const
    {
        return rc == o.rc && truncated == o.truncated && std::memcmp(bytes, o.bytes, sizeof bytes) == 0;
    }
};

constexpr unsigned char kPattern = 0xA5;

struct Call {
    const char *name;
    Outcome (*run)(const Readers &, char *, int, int style, int order, CHAR_ATTRIB *, int extra);
};

template <class T> T *fresh(Outcome &o)
{
    std::memset(&o, kPattern, sizeof o);
    return reinterpret_cast<T *>(o.bytes);
}

// extra picks partonly and the record's type where a reader takes them.
constexpr CS_INT kRecordTypes[] = {CS_DATETIME_TYPE, CS_BIGDATETIME_TYPE, CS_BIGTIME_TYPE, CS_DATE_TYPE};

const Call kCalls[] = {
    {"xdaterecfromchar",
     [](const Readers &r, char *t, int n, int style, int order, CHAR_ATTRIB *cs, int extra) {
         Outcome o;
         CS_DATEREC *d = fresh<CS_DATEREC>(o);
         o.rc = r.daterec(d, t, n, extra % 4, style, order, months(), shorts(), cs, kRecordTypes[extra / 4 % 4],
                          &o.truncated);
         return o;
     }},
    {"xdatefromchar",
     [](const Readers &r, char *t, int n, int style, int order, CHAR_ATTRIB *cs, int extra) {
         Outcome o;
         CS_DATETIME *d = fresh<CS_DATETIME>(o);
         o.rc = r.datetime(d, t, n, extra % 4, style, order, months(), shorts(), cs, &o.truncated);
         return o;
     }},
    {"xbigdatetimefromchar",
     [](const Readers &r, char *t, int n, int style, int order, CHAR_ATTRIB *cs, int extra) {
         Outcome o;
         CS_BIGDATETIME *d = fresh<CS_BIGDATETIME>(o);
         o.rc = r.bigdatetime(d, t, n, extra % 4, style, order, months(), shorts(), cs);
         return o;
     }},
    {"com__datefromchar_mb",
     [](const Readers &r, char *t, int n, int style, int order, CHAR_ATTRIB *cs, int) {
         Outcome o;
         CS_DATETIME *d = fresh<CS_DATETIME>(o);
         o.rc = r.datefromchar(d, t, n, style, order, months(), shorts(), cs, &o.truncated);
         return o;
     }},
    {"com__bigdatetimefromchar_mb",
     [](const Readers &r, char *t, int n, int style, int order, CHAR_ATTRIB *cs, int) {
         Outcome o;
         CS_BIGDATETIME *d = fresh<CS_BIGDATETIME>(o);
         o.rc = r.bigdatetimefromchar(d, t, n, style, order, months(), shorts(), cs);
         return o;
     }},
    {"com__date4fromchar_mb",
     [](const Readers &r, char *t, int n, int style, int order, CHAR_ATTRIB *cs, int) {
         Outcome o;
         CS_DATETIME4 *d = fresh<CS_DATETIME4>(o);
         o.rc = r.date4fromchar(d, t, n, style, order, months(), shorts(), cs);
         return o;
     }},
    {"com__dateafromchar_mb",
     [](const Readers &r, char *t, int n, int style, int order, CHAR_ATTRIB *cs, int) {
         Outcome o;
         CS_DATE *d = fresh<CS_DATE>(o);
         o.rc = r.dateafromchar(d, t, n, style, order, months(), shorts(), cs);
         return o;
     }},
    {"com__timeafromchar_mb",
     [](const Readers &r, char *t, int n, int style, int order, CHAR_ATTRIB *cs, int) {
         Outcome o;
         CS_TIME *d = fresh<CS_TIME>(o);
         o.rc = r.timeafromchar(d, t, n, style, order, months(), shorts(), cs, &o.truncated);
         return o;
     }},
    {"com__bigtimefromchar_mb",
     [](const Readers &r, char *t, int n, int style, int order, CHAR_ATTRIB *cs, int) {
         Outcome o;
         CS_BIGTIME *d = fresh<CS_BIGTIME>(o);
         o.rc = r.bigtimefromchar(d, t, n, style, order, months(), shorts(), cs);
         return o;
     }},
    {"com__timefromchar_mb",
     [](const Readers &r, char *t, int n, int style, int, CHAR_ATTRIB *cs, int) {
         Outcome o;
         CS_DATETIME *d = fresh<CS_DATETIME>(o);
         o.rc = r.timefromchar(d, t, n, style, cs, &o.truncated);
         return o;
     }},
};

// Styles that the numeric date takes in different ways, and some it refuses.
constexpr int kStyles[] = {0, 9, 1, 10, 2, 11, 21, 22, 23, 3, 4, 5, 101, 110, 102, 111, 103, 104, 105, 100, 121, 6, -1};

constexpr int kYearStyles[] = {0, 0, 9, 101, 110, 102, 111, 103, 104, 105};

// Runs every reader by both routes; an empty string when all agree, else
// what differed.
std::string disagreement(const std::string &text, int style, int order, CHAR_ATTRIB *chatr, int extra)
{
    Exact fast(text), slow(text);
    const Readers &first = kes::datetext::readers(Route::fixed_first);
    const Readers &grammar = kes::datetext::readers(Route::grammar_only);
    for (const Call &call : kCalls) {
        const Outcome a = call.run(first, fast.data(), fast.len(), style, order, chatr, extra);
        const Outcome b = call.run(grammar, slow.data(), slow.len(), style, order, chatr, extra);
        if (!(a == b)) {
            char why[512];
            std::snprintf(why, sizeof why, "%s(\"%s\", style %d, order %d, extra %d): rc %d/%d truncated %d/%d bytes %s/%s",
                          call.name, text.c_str(), style, order, extra, a.rc, b.rc, a.truncated, b.truncated,
                          kes::test::hex(a.bytes, sizeof a.bytes).c_str(),
                          kes::test::hex(b.bytes, sizeof b.bytes).c_str());
            return why;
        }
    }
    return "";
}

bool fixed_takes(const std::string &text, int style = 0, int order = 1, CS_INT dt_type = CS_DATETIME_TYPE,
                 int partonly = 0)
{
    Exact t(text);
    CS_DATEREC parts{};
    CS_BOOL truncated = 0;
    return kes::datetext::read_fixed(&parts, t.data(), t.len(), partonly, style, order, dt_type, &truncated) !=
           kes::datetext::kNotFixed;
}

struct Form {
    const char *text;
    bool taken;
    int style = 0, order = 1;
};

const Form kForms[] = {
    // Taken: the three date layouts, each separator, alone or with a time.
    {"2008-12-31", true},
    {"2008/12/31", true},
    {"2008.12.31", true},
    {"2008-12/31", true},
    {"2008-31-12", true, 0, 4},           // year-day-month keeps its order
    {"2008-12-31", true, 103},            // day first: month 31, the make refuses it
    {"12/31/2008", true},
    {"31.12.2008", true, 0, 2},
    {"31.12.2008", true, 104, 1},
    {"12/31/2008", true, 101, 0},         // the style settles the order
    {"20081231", true, 77, 9},            // packed: neither style nor order matters
    {"2008-12-31T10:20:30", true},
    {"2008-12-31t10:20", true},
    {"2008-12-31 10:20:30", true},
    {"2008-12-31 10:20:30.5", true},
    {"2008-12-31 10:20:30.123456", true},
    {"2008-12-31 10:20:30:5", true},
    {"2008-12-31 10:20:30:999", true},
    {"20081231 10:20:30.12", true},
    {"20081231T10:20", true},
    {"0000-99-99 99:99:99", true},        // fields are the make's business
    {"10:20", true},                      // a lone time
    {"10:20:30", true},
    {"10:20:30.123456", true},
    {"99:99:99:999", true},
    // Left to the grammar.
    {"", false},
    {"2008", false},
    {"2008-12-3", false},
    {"2008-1-31", false},
    {"08-12-31", false},
    {"081231", false},
    {"2008-12-311", false},
    {"200812311", false},
    {"2008-12-31 ", false},
    {" 2008-12-31", false},
    {"2008-12-31T", false},
    {"2008-12-31x", false},
    {"2008-12-31,10:20", false},
    {"2008-12-31  10:20", false},
    {"2008-12-31 10:2", false},
    {"2008-12-31 10:20:3", false},
    {"2008-12-31 10:20:30.", false},
    {"2008-12-31 10:20:30.1234567", false},
    {"2008-12-31 10:20:30:1234", false},
    {"2008-12-31 10:20:30 PM", false},
    {"2008-12-31 10:20PM", false},
    {"2008-12-31 10-20-30", false},
    {"10:20:30 2008-12-31", false},
    {"1:20", false},
    {"10:20 ", false},
    {"10:20:30 PM", false},
    {"10:20:30.1234567", false},
    {"T10:20", false},
    {"Dec-31-2008", false},
    {"12/31/2008", false, 1},             // year not taken: the grammar refuses
    {"2008-12-31", false, 23},
    {"12/31/2008", false, 0, 0},          // no order to place month and day
    {"12/31/2008", false, 0, 7},
    {"2008-12-31", false, 7},
};

TEST(DateFixedForms, TakenExactlyWhereTheGrammarAgrees)
{
    for (const Form &f : kForms) {
        EXPECT_EQ(fixed_takes(f.text, f.style, f.order), f.taken) << f.text << " style " << f.style;
        for (int extra = 0; extra < 16; extra++)
            EXPECT_EQ(disagreement(f.text, f.style, f.order, nullptr, extra), "");
    }
}

TEST(DateFixedForms, TimeOnlyReadingTakesOnlyALoneTime)
{
    EXPECT_TRUE(fixed_takes("10:20:30.5", 0, 1, CS_DATETIME_TYPE, 3));
    EXPECT_FALSE(fixed_takes("2008-12-31", 0, 1, CS_DATETIME_TYPE, 3));
    EXPECT_FALSE(fixed_takes("2008-12-31 10:20", 0, 1, CS_DATETIME_TYPE, 3));
    // The grammar leaves the year of a lone time as it finds it.
    const std::string text = "10:20:30:7";
    ASSERT_TRUE(fixed_takes(text, 0, 1, CS_BIGTIME_TYPE));
    Exact t(text);
    CS_DATEREC r;
    std::memset(&r, kPattern, sizeof r);
    CS_BOOL truncated = 7;
    ASSERT_EQ(xdaterecfromchar(&r, t.data(), t.len(), 0, 0, 1, months(), shorts(), nullptr, CS_BIGTIME_TYPE, &truncated),
              99);
    EXPECT_EQ(r.dateyear, static_cast<CS_INT>(0xA5A5A5A5));
    EXPECT_EQ(r.datemonth, 0);
    EXPECT_EQ(r.datedmonth, 1);
    EXPECT_EQ(r.datesecfrac, 7000);
    EXPECT_EQ(r.datesecprec, 1000000);
    EXPECT_EQ(truncated, 0);
}

TEST(DateFixedForms, OnlyTheBuiltInCharacterSetReadsBytesDirectly)
{
    // A copy of the built-in set is another set to the reader: the grammar
    // reads it, with the same outcome.
    CS_ATTRIB copy = *com_get_charattrib();
    CS_DATEREC a{}, b{};
    char text[] = "2008-12-31 10:20:30.5";
    const int n = static_cast<int>(std::strlen(text));
    CS_BOOL ta = 7, tb = 7;
    EXPECT_EQ(xdaterecfromchar(&a, text, n, 0, 0, 1, months(), shorts(), &copy, CS_DATETIME_TYPE, &ta), 0);
    EXPECT_EQ(xdaterecfromchar(&b, text, n, 0, 0, 1, months(), shorts(), com_get_charattrib(), CS_DATETIME_TYPE,
                               &tb),
              0);
    EXPECT_EQ(std::memcmp(&a, &b, sizeof a), 0);
    EXPECT_EQ(ta, tb);
    EXPECT_EQ(b.datemsecond, 500);
}

TEST(DateFixedForms, TruncationFlagClearedAndSetLikeTheGrammar)
{
    struct Row {
        const char *text;
        CS_INT type;
        CS_BOOL truncated;
        CS_INT msecond, secfrac, secprec;
    };
    const Row rows[] = {
        {"2008-12-31 10:20:30.123456", CS_DATETIME_TYPE, 1, 123, 0, 0},
        {"2008-12-31 10:20:30.9999", CS_DATETIME_TYPE, 1, 999, 0, 0},   // 1000 ms stays 999
        {"2008-12-31 10:20:30.9995", CS_DATETIME_TYPE, 1, 999, 0, 0},
        {"2008-12-31 10:20:30.120", CS_DATETIME_TYPE, 0, 120, 0, 0},
        {"2008-12-31 10:20:30.123456", CS_BIGDATETIME_TYPE, 0, 0, 123456, 1000000},
        {"2008-12-31 10:20:30.05", CS_BIGTIME_TYPE, 0, 0, 50000, 1000000},
        {"2008-12-31 10:20:30:7", CS_BIGTIME_TYPE, 0, 0, 7000, 1000000},
        {"2008-12-31 10:20:30", CS_BIGDATETIME_TYPE, 0, 0, 0, 0},
    };
    for (const Row &row : rows) {
        ASSERT_TRUE(fixed_takes(row.text, 0, 1, row.type)) << row.text;
        Exact t(row.text);
        CS_DATEREC r{};
        CS_BOOL truncated = 7;
        ASSERT_EQ(xdaterecfromchar(&r, t.data(), t.len(), 0, 0, 1, months(), shorts(), nullptr, row.type, &truncated),
                  0);
        EXPECT_EQ(truncated, row.truncated) << row.text;
        EXPECT_EQ(r.datemsecond, row.msecond) << row.text;
        EXPECT_EQ(r.datesecfrac, row.secfrac) << row.text;
        EXPECT_EQ(r.datesecprec, row.secprec) << row.text;
    }
}

// The in-line values against the make operations, on one record.
void expect_made_alike(const CS_DATEREC &r)
{
    CS_DATEREC copy = r;
    CS_DATETIME quick{}, made{};
    CS_BIGDATETIME bigquick = 0;
    CS_BIGTIME time = 0;
    CS_BIGDATETIME date = 0;
    const bool in = com__timemake(&made, &copy) == 0 && com__datemake(&made, &copy) == 0;
    const bool bigin = com__bigtimemake(&time, &copy) == 0 && com__bigdatemake(&date, &copy) == 0;
    ASSERT_EQ(kes::datetext::datetime_in_range(r, &quick), in) << r.dateyear << "-" << r.datemonth << "-" << r.datedmonth;
    ASSERT_EQ(kes::datetext::bigdatetime_in_range(r, &bigquick), bigin);
    if (in) {
        ASSERT_EQ(quick.dtdays, made.dtdays) << r.dateyear << "-" << r.datemonth << "-" << r.datedmonth;
        ASSERT_EQ(quick.dttime, made.dttime) << r.datehour << ":" << r.dateminute << ":" << r.datesecond;
    }
    if (bigin) {
        ASSERT_EQ(bigquick, date + time);
    }
}

TEST(DateFixedForms, InRangeValuesMatchTheMakeOperations)
{
    // Every day of the calendar, each at another time.
    for (CS_INT days = kes::cal::kMinDays; days <= kes::cal::kMaxDays; days++) {
        CS_DATETIME dt{days, 0};
        CS_DATEREC r{};
        com__datecrack(&dt, &r);
        const auto n = static_cast<unsigned>(days - kes::cal::kMinDays);
        r.datehour = static_cast<CS_INT>(n % 24);
        r.dateminute = static_cast<CS_INT>(n / 24 % 60);
        r.datesecond = static_cast<CS_INT>(n % 60);
        r.datemsecond = static_cast<CS_INT>(n % 1000);
        expect_made_alike(r);
        if (HasFatalFailure())
            return;
    }
    // Every second of a day with every millisecond, and microseconds.
    CS_DATEREC r{};
    r.dateyear = 2000;
    r.datedmonth = 29;
    r.datemonth = 1;
    for (int s = 0; s < 86400; s++) {
        r.datehour = s / 3600;
        r.dateminute = s / 60 % 60;
        r.datesecond = s % 60;
        r.datesecprec = s % 2 ? 1000000 : 0;
        r.datesecfrac = s * 7919 % 1000000;
        r.datemsecond = s % 1000;
        expect_made_alike(r);
        if (HasFatalFailure())
            return;
    }
    // One field out of range at a time: the make operations must see it.
    struct Edit {
        CS_INT CS_DATEREC::*field;
        CS_INT value;
    };
    const Edit edits[] = {
        {&CS_DATEREC::dateyear, 0},      {&CS_DATEREC::dateyear, 10000},   {&CS_DATEREC::dateyear, -1},
        {&CS_DATEREC::datemonth, -1},    {&CS_DATEREC::datemonth, 12},     {&CS_DATEREC::datedmonth, 0},
        {&CS_DATEREC::datedmonth, 32},   {&CS_DATEREC::datedmonth, -5},    {&CS_DATEREC::datehour, 24},
        {&CS_DATEREC::datehour, -1},     {&CS_DATEREC::dateminute, 60},    {&CS_DATEREC::datesecond, 60},
        {&CS_DATEREC::datemsecond, 1000}, {&CS_DATEREC::datemsecond, -1},  {&CS_DATEREC::datesecfrac, 1000000},
        {&CS_DATEREC::datesecfrac, -1},
    };
    for (int year : {1, 1900, 1999, 2000, 2100, 2400, 9999}) {
        for (int month = 0; month < 12; month++) {
            for (int day : {28, 29, 30, 31}) {
                CS_DATEREC base{};
                base.dateyear = year;
                base.datemonth = month;
                base.datedmonth = day;
                base.datehour = 23;
                base.dateminute = 59;
                base.datesecond = 59;
                base.datemsecond = 999;
                for (const Edit &e : edits) {
                    for (CS_INT prec : {0, 1000000}) {
                        CS_DATEREC r = base;
                        r.datesecprec = prec;
                        r.*e.field = e.value;
                        expect_made_alike(r);
                        if (HasFatalFailure())
                            return;
                    }
                }
            }
        }
    }
}

// ---- the seeded differential run -------------------------------------------

class TextMaker {
public:
    explicit TextMaker(unsigned seed) : rng_(seed) {}

    std::string next()
    {
        std::string text;
        switch (pick(10)) {
        case 0: text = time(); break;
        case 1: text = time() + " " + date(); break;
        default:
            text = date();
            if (pick(4) != 0)
                text += joiner() + time();
            break;
        }
        for (int n = pick(4) == 0 ? 1 + pick(3) : 0; n > 0; n--)
            mutate(text);
        return text;
    }

private:
    int pick(int n) { return static_cast<int>(rng_() % static_cast<unsigned>(n)); }

    // A number of exactly digits digits: mostly in lo..hi, sometimes one past
    // either end or anything at all.
    std::string number(int digits, int lo, int hi)
    {
        int top = 1;
        for (int i = 0; i < digits; i++)
            top *= 10;
        int v;
        switch (pick(8)) {
        case 0: v = lo - 1; break;
        case 1: v = hi + 1; break;
        case 2: v = pick(top); break;
        default: v = lo + pick(hi - lo + 1); break;
        }
        if (v < 0 || v >= top)
            v = pick(top);
        char buf[16];
        std::snprintf(buf, sizeof buf, "%0*d", digits, v);
        return buf;
    }

    std::string year()
    {
        static const char *const kEdges[] = {"0000", "0001", "1752", "1753", "1899", "1900", "2000",
                                             "2100", "2400", "2079", "9999", "2008"};
        if (pick(3) == 0)
            return kEdges[pick(sizeof kEdges / sizeof *kEdges)];
        return number(4, 1, 9999);
    }

    // Month lengths and leap days get their edges: 28 to 31 often.
    std::string day() { return pick(3) == 0 ? std::to_string(28 + pick(5)) : number(2, 1, 31); }

    // Mostly a date separator, now and then a byte that the grammar reads
    // otherwise.
    char separator() { return pick(10) == 0 ? ",: T"[pick(4)] : "-/."[pick(3)]; }

    std::string date()
    {
        const std::string m = number(2, 1, 12), d = day();
        switch (pick(7)) {
        case 0: case 1: return year() + separator() + m + separator() + d;
        case 2: return m + separator() + d + separator() + year();
        case 3: return d + separator() + m + separator() + year();
        case 4: return year() + m + d;
        case 5: return number(2, 0, 99) + m + d; // six digits
        default: // short fields
            return year() + separator() + std::to_string(1 + pick(12)) + separator() + std::to_string(1 + pick(31));
        }
    }

    std::string joiner()
    {
        static const char *const kJoiners[] = {" ", "T", " ", "T", "t", " ", "T", "  ", ",", ""};
        return kJoiners[pick(sizeof kJoiners / sizeof *kJoiners)];
    }

    std::string time()
    {
        std::string t = number(2, 0, 23) + ":" + number(2, 0, 59);
        if (pick(5) == 0)
            return t;
        t += ":" + number(2, 0, 59);
        switch (pick(5)) {
        case 0: t += "." + fraction(); break;
        case 1: t += ":" + number(1 + pick(4), 0, 999); break;
        default: break;
        }
        if (pick(12) == 0)
            t += pick(2) ? " PM" : "am";
        return t;
    }

    // 1 to 8 digits (7 are an error, 8 a packed number), often nines that
    // round up to the next second.
    std::string fraction()
    {
        const int n = 1 + pick(8);
        if (pick(4) == 0)
            return std::string(static_cast<size_t>(n - 1), '9') + static_cast<char>('0' + pick(10));
        int top = 1;
        for (int i = 0; i < n && i < 6; i++)
            top *= 10;
        return number(n, 0, top - 1);
    }

    void mutate(std::string &text)
    {
        static const char kAlphabet[] = "0123456789-/.: Tt,aApPmMJx\t";
        const size_t at = text.empty() ? 0 : static_cast<size_t>(pick(static_cast<int>(text.size()) + 1));
        const char c = kAlphabet[pick(sizeof kAlphabet - 1)];
        switch (pick(6)) {
        case 0: text.resize(at); break;                                 // truncate
        case 1: text.insert(at, 1, c); break;                           // insert
        case 2: text.insert(at, 1, ' '); break;                         // blank
        case 3: if (at < text.size()) text[at] = c; break;              // replace
        case 4: if (at < text.size()) text.erase(at, 1); break;         // delete
        default: text += pick(2) ? std::string(1, c) : std::string("Jan"); break; // extend
        }
    }

    std::mt19937 rng_;
};

TEST(DateFixedForms, AgreeWithTheGrammarOnGeneratedTexts)
{
    constexpr int kTexts = 200000;
    TextMaker maker(20081231);
    std::mt19937 rng(1753);
    int taken = 0, failures = 0;
    for (int i = 0; i < kTexts && failures < 10; i++) {
        const std::string text = maker.next();
        // Half the runs take a style that reads a 4-digit year, so that
        // the fixed forms often apply.
        const int style = rng() % 2 ? kYearStyles[rng() % (sizeof kYearStyles / sizeof *kYearStyles)]
                                    : kStyles[rng() % (sizeof kStyles / sizeof *kStyles)];
        const int order = static_cast<int>(rng() % 8); // 0 and 7 are no order
        CHAR_ATTRIB *chatr = rng() % 4 == 0 ? com_get_charattrib() : nullptr;
        const int extra = static_cast<int>(rng() % 16);
        taken += fixed_takes(text, style, order);
        const std::string why = disagreement(text, style, order, chatr, extra);
        if (!why.empty()) {
            ADD_FAILURE() << why;
            failures++;
        }
    }
    // The run must exercise the fixed forms, not only the grammar.
    EXPECT_GT(taken, kTexts / 5);
    EXPECT_LT(taken, kTexts * 4 / 5);
}

} // namespace
