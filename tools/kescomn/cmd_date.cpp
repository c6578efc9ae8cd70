// kescomn date add|diff|part: calendar arithmetic on dates written in ISO
// form, through the library's date kernels, for any of the six date types.
#include <charconv>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <strings.h>
#include <vector>

#include "cli.h"

namespace {

using namespace kescomn_cli;

struct PartName {
    const char *name;
    int code;
};
constexpr PartName kParts[] = {
    {"year", 0},        {"quarter", 1}, {"month", 2},        {"weekday", 3},  {"day", 4},
    {"dayofyear", 5},   {"hour", 6},    {"minute", 7},       {"second", 8},   {"millisecond", 9},
    {"week", 10},       {"isoyear", 11}, {"isoweek", 12},    {"isoweekday", 13}, {"microsecond", 14},
};

enum class Kind { datetime, datetime4, date, time, bigdatetime, bigtime };

struct TypeInfo {
    const char *name;
    Kind kind;
    CS_BYTE server_type; // the type byte of the descriptor forms of add
};
constexpr TypeInfo kTypes[] = {
    {"datetime", Kind::datetime, 61}, {"datetime4", Kind::datetime4, 58}, {"date", Kind::date, 49},
    {"time", Kind::time, 51},         {"bigdatetime", Kind::bigdatetime, 187}, {"bigtime", Kind::bigtime, 188},
};

bool is_big(Kind k) { return k == Kind::bigdatetime || k == Kind::bigtime; }

// A value held the way the kernels of its family take it.
struct Value {
    CS_DATETIME dt{0, 0};
    CS_BIGDATETIME big = 0;
};

std::optional<int> part_code(std::string_view word)
{
    for (const PartName &p : kParts)
        if (word.size() == std::strlen(p.name) && strncasecmp(word.data(), p.name, word.size()) == 0)
            return p.code;
    if (const auto n = parse_int(word); n && *n >= 0 && *n <= 14)
        return static_cast<int>(*n);
    return std::nullopt;
}

// Reads up to `max` digits (at least one) from the front of s.
std::optional<int> take_number(std::string_view &s, size_t max)
{
    size_t n = 0;
    while (n < s.size() && n < max && s[n] >= '0' && s[n] <= '9')
        n++;
    if (n == 0)
        return std::nullopt;
    int value = 0;
    std::from_chars(s.data(), s.data() + n, value);
    s.remove_prefix(n);
    return value;
}

bool take(std::string_view &s, char c)
{
    if (s.empty() || s.front() != c)
        return false;
    s.remove_prefix(1);
    return true;
}

// "YYYY-MM-DD[ HH:MM[:SS[.ffffff]]]", or the time alone; the fraction is read
// as microseconds.  Fields are only split here: the library's make judges them.
std::optional<CS_DATEREC> parse_iso(std::string_view s, bool time_only)
{
    CS_DATEREC rec{};
    rec.dateyear = 1900;
    rec.datedmonth = 1;
    rec.datesecprec = 1000000;
    const bool has_date = s.size() > 4 && s.find('-') != std::string_view::npos;
    if (has_date) {
        const auto y = take_number(s, 4);
        if (!y || !take(s, '-'))
            return std::nullopt;
        const auto m = take_number(s, 2);
        if (!m || !take(s, '-'))
            return std::nullopt;
        const auto d = take_number(s, 2);
        if (!d)
            return std::nullopt;
        rec.dateyear = *y;
        rec.datemonth = *m - 1;
        rec.datedmonth = *d;
        if (s.empty())
            return rec;
        if (!take(s, ' ') && !take(s, 'T'))
            return std::nullopt;
    } else if (!time_only) {
        return std::nullopt;
    }
    const auto h = take_number(s, 2);
    if (!h || !take(s, ':'))
        return std::nullopt;
    const auto mi = take_number(s, 2);
    if (!mi)
        return std::nullopt;
    rec.datehour = *h;
    rec.dateminute = *mi;
    if (take(s, ':')) {
        const auto sec = take_number(s, 2);
        if (!sec)
            return std::nullopt;
        rec.datesecond = *sec;
        if (take(s, '.')) {
            const size_t digits = s.size();
            const auto frac = take_number(s, 6);
            if (!frac || digits > 6)
                return std::nullopt;
            int scaled = *frac;
            for (size_t i = digits; i < 6; i++)
                scaled *= 10;
            rec.datesecfrac = scaled;
        }
    }
    if (!s.empty())
        return std::nullopt;
    return rec;
}

const char *field_name(int status)
{
    static constexpr const char *names[] = {"", "year", "month", "day", "hour", "minute", "second", "fraction"};
    return status > 0 && status < 8 ? names[status] : "value";
}

// The text of an argument as a value of the type; an error message otherwise.
std::optional<Value> read_value(const char *text, const TypeInfo &type, std::string &error)
{
    const bool time_only = type.kind == Kind::time || type.kind == Kind::bigtime;
    const auto rec = parse_iso(text, time_only);
    if (!rec) {
        error = "'" + std::string(text) + "' is not a date of the form YYYY-MM-DD[ HH:MM:SS[.ffffff]]";
        return std::nullopt;
    }
    CS_DATEREC r = *rec;
    Value v;
    int status = 0;
    switch (type.kind) {
    case Kind::bigdatetime: status = com_bigdatetimemake(&v.big, &r); break;
    case Kind::bigtime: status = com_bigtimemake(&v.big, &r); break;
    case Kind::time: status = com_timemake(&v.dt, &r); break;
    case Kind::date: status = com_datemake(&v.dt, &r); break;
    default:
        status = com_datemake(&v.dt, &r);
        if (status == 0)
            status = com_timemake(&v.dt, &r);
    }
    if (status != 0) {
        error = "'" + std::string(text) + "': " + field_name(status) + " out of range";
        return std::nullopt;
    }
    return v;
}

std::string show(const Value &v, Kind kind)
{
    CS_DATEREC r{};
    char buf[64];
    if (is_big(kind)) {
        CS_BIGDATETIME big = v.big;
        com_bigtimecrack(&big, &r);
        if (kind == Kind::bigtime) {
            std::snprintf(buf, sizeof buf, "%02d:%02d:%02d.%06d", r.datehour, r.dateminute, r.datesecond, r.datesecfrac);
            return buf;
        }
        com_bigdatecrack(&big, &r);
        std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d.%06d", r.dateyear, r.datemonth + 1,
                      r.datedmonth, r.datehour, r.dateminute, r.datesecond, r.datesecfrac);
        return buf;
    }
    CS_DATETIME dt = v.dt;
    com_datecrack(&dt, &r);
    com_timecrack(&dt, &r);
    switch (kind) {
    case Kind::date:
        std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", r.dateyear, r.datemonth + 1, r.datedmonth);
        break;
    case Kind::time:
        std::snprintf(buf, sizeof buf, "%02d:%02d:%02d.%03d", r.datehour, r.dateminute, r.datesecond, r.datemsecond);
        break;
    case Kind::datetime4:
        std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d", r.dateyear, r.datemonth + 1, r.datedmonth,
                      r.datehour, r.dateminute);
        break;
    default:
        std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d.%03d", r.dateyear, r.datemonth + 1,
                      r.datedmonth, r.datehour, r.dateminute, r.datesecond, r.datemsecond);
    }
    return buf;
}

// Addition through the descriptor forms, which keep each type's own range.
std::optional<Value> add(int part, CS_INT n, const Value &v, const TypeInfo &type)
{
    Value out;
    CS_BYTE in[8], result[8];
    __CONSTANT src{}, dest{};
    src.value = in;
    dest.value = result;
    dest.type = type.server_type;
    src.type = type.server_type;
    if (is_big(type.kind)) {
        std::memcpy(in, &v.big, 8);
        src.len = 8;
        dest.maxlen = 8;
        if (com_bigdateadd_both(part, n, &src, &dest) != 0)
            return std::nullopt;
        std::memcpy(&out.big, result, 8);
        return out;
    }
    switch (type.kind) {
    case Kind::date:
        std::memcpy(in, &v.dt.dtdays, 4);
        src.len = dest.maxlen = 4;
        break;
    case Kind::time:
        std::memcpy(in, &v.dt.dttime, 4);
        src.len = dest.maxlen = 4;
        break;
    case Kind::datetime4:
        std::memcpy(in, &v.dt, 8);
        src.len = 8;
        dest.maxlen = 4;
        break;
    default:
        std::memcpy(in, &v.dt, 8);
        src.len = dest.maxlen = 8;
    }
    if (com_dateadd_both(part, n, &src, &dest) != 0)
        return std::nullopt;
    switch (type.kind) {
    case Kind::date: std::memcpy(&out.dt.dtdays, result, 4); break;
    case Kind::time: std::memcpy(&out.dt.dttime, result, 4); break;
    case Kind::datetime4: {
        CS_DATETIME4 d4;
        std::memcpy(&d4, result, 4);
        com_setdatetime(&out.dt, d4.days, d4.minutes * 18000);
        break;
    }
    default: std::memcpy(&out.dt, result, 8);
    }
    return out;
}

// A value must lie in its own type's range (1753 on for datetime, 2079 at
// most for datetime4): adding nothing through the descriptor form tests it.
bool in_own_range(const Value &v, const TypeInfo &type) { return add(4, 0, v, type).has_value(); }

// Reads a value and checks its range; an error message otherwise.
std::optional<Value> read_checked(const char *text, const TypeInfo &type, std::string &error)
{
    auto v = read_value(text, type, error);
    if (v && !in_own_range(*v, type)) {
        error = "'" + std::string(text) + "' is outside the range of " + type.name;
        v.reset();
    }
    return v;
}

struct Options {
    const TypeInfo *type = &kTypes[0];
    int firstday = 0;
    std::string error;
};

// Removes --type T and --firstday N from the words; the rest stay in order.
std::optional<std::vector<char *>> take_options(std::span<char *> args, Options &o)
{
    std::vector<char *> rest;
    for (size_t i = 0; i < args.size(); i++) {
        const std::string_view word = args[i];
        if (word == "--type" || word == "--firstday") {
            if (i + 1 == args.size()) {
                o.error = std::string(word) + " needs a value";
                return std::nullopt;
            }
            const char *value = args[++i];
            if (word == "--type") {
                o.type = nullptr;
                for (const TypeInfo &t : kTypes)
                    if (strcasecmp(t.name, value) == 0)
                        o.type = &t;
                if (o.type == nullptr) {
                    o.error = std::string("unknown date type '") + value +
                              "'; use datetime, datetime4, date, time, bigdatetime or bigtime";
                    return std::nullopt;
                }
            } else {
                const auto n = parse_int(value);
                if (!n || *n < 0 || *n > 6) {
                    o.error = std::string("--firstday takes 0 (Sunday) to 6, not '") + value + "'";
                    return std::nullopt;
                }
                o.firstday = static_cast<int>(*n);
            }
        } else {
            rest.push_back(args[i]);
        }
    }
    return rest;
}

int run_date(std::span<char *> args)
{
    Options o;
    const auto words = take_options(args, o);
    if (!words)
        return fail(o.error);
    const std::vector<char *> &w = *words;
    if (w.empty())
        return fail("date takes add, diff or part; see kescomn date --help");
    const std::string_view op = w[0];
    const size_t want = op == "part" ? 3 : 4;
    if ((op != "add" && op != "diff" && op != "part") || w.size() != want)
        return fail("usage: kescomn date add PART N DATE | diff PART D1 D2 | part PART DATE");

    const auto part = part_code(w[1]);
    const int last_part = is_big(o.type->kind) ? 14 : 13;
    if (!part || (*part > last_part && op != "part"))
        return fail(std::string("'") + w[1] + "' is no date part for " + o.type->name +
                    (is_big(o.type->kind) ? " (0 to 14" : " (0 to 13") + " or year, quarter, month, ...)");

    std::string error;
    if (op == "part") {
        const auto v = read_checked(w[2], *o.type, error);
        if (!v)
            return fail(error);
        CS_DATETIME dt = v->dt;
        CS_BIGDATETIME big = v->big;
        std::printf("%d\n", is_big(o.type->kind) ? com_bigdatepart(*part, &big, o.firstday)
                                                  : com_datepart(*part, &dt, o.firstday));
        return 0;
    }
    if (op == "add") {
        const auto n = parse_int(w[2]);
        if (!n || *n < INT32_MIN || *n > INT32_MAX)
            return fail(std::string("'") + w[2] + "' is not a 32-bit count");
        const auto v = read_checked(w[3], *o.type, error);
        if (!v)
            return fail(error);
        const auto sum = add(*part, static_cast<CS_INT>(*n), *v, *o.type);
        if (!sum) {
            std::fprintf(stderr, "kescomn: the sum leaves the range of %s\n", o.type->name);
            return 1;
        }
        std::printf("%s\n", show(*sum, o.type->kind).c_str());
        return 0;
    }
    const auto a = read_checked(w[2], *o.type, error);
    const auto b = a ? read_checked(w[3], *o.type, error) : std::nullopt;
    if (!a || !b)
        return fail(error);
    if (is_big(o.type->kind)) {
        CS_BIGDATETIME from = a->big, to = b->big;
        CS_BIGINT diff = 0;
        com_bigdatediff(*part, &from, &to, &diff);
        std::printf("%lld\n", static_cast<long long>(diff));
        return 0;
    }
    CS_DATETIME from = a->dt, to = b->dt;
    CS_INT diff = 0;
    if (com_datediff(*part, &from, &to, &diff) != 0) {
        std::fprintf(stderr, "kescomn: the difference does not fit 32 bits in that unit\n");
        return 1;
    }
    std::printf("%d\n", diff);
    return 0;
}

} // namespace

KESCOMN_COMMAND(date, "date",
                "add PART N DATE | diff PART D1 D2 | part PART DATE [--type datetime|datetime4|date|time|"
                "bigdatetime|bigtime] [--firstday 0-6]\n\n"
                "  PART is 0-14 or year, quarter, month, weekday, day, dayofyear, hour, minute, second,\n"
                "  millisecond, week, isoyear, isoweek, isoweekday, microsecond.  Dates are written\n"
                "  YYYY-MM-DD[ HH:MM[:SS[.ffffff]]]; time types also take the time alone.",
                "calendar arithmetic: add to a date, difference of two dates, part of a date", run_date);
