// kescomn date add|diff|part: calendar arithmetic on dates written in ISO
// form, through the library's date kernels, for any of the six date types.
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

// The storage of any of the six types, as the library's reader fills it.
union Storage {
    CS_DATETIME dt;
    CS_DATETIME4 dt4;
    CS_DATE date;
    CS_TIME time;
    CS_BIGDATETIME big;
};

constexpr CS_INT type_code(Kind kind)
{
    switch (kind) {
    case Kind::datetime: return CS_DATETIME_TYPE;
    case Kind::datetime4: return CS_DATETIME4_TYPE;
    case Kind::date: return CS_DATE_TYPE;
    case Kind::time: return CS_TIME_TYPE;
    case Kind::bigdatetime: return CS_BIGDATETIME_TYPE;
    default: return CS_BIGTIME_TYPE;
    }
}

// What a status of the reader means, for the one-line message.
const char *status_text(CS_INT rc)
{
    switch (rc) {
    case -1: return "syntax error";
    case -2: return "tokens left over";
    case 1: return "value out of the type's range";
    case 2: return "month out of range";
    case 3: return "day out of range";
    case 4: return "hour out of range";
    case 5: return "minute out of range";
    case 6: return "second out of range";
    case 7: return "fraction out of range";
    case 9: return "hour contradicts AM/PM";
    default: return "unexpected result";
    }
}

// Text through the library's date reader into the type's storage; an error
// message otherwise.
std::optional<Storage> parse_text(const char *text, Kind kind, CS_INT style, CS_INT order, bool *truncated,
                                  std::string &error)
{
    std::string copy = text;
    Storage v{};
    CS_BOOL cut = 0;
    const CS_INT rc = comn_date_parse(type_code(kind), copy.data(), static_cast<CS_INT>(copy.size()), style,
                                      order, nullptr, nullptr, nullptr, &v, &cut);
    if (rc != 0) {
        error = "'" + std::string(text) + "' is refused: " + status_text(rc);
        return std::nullopt;
    }
    if (truncated != nullptr)
        *truncated = cut != 0;
    return v;
}

// The text of an argument as a value of the type, held the way the kernels
// of its family take it; an error message otherwise.
std::optional<Value> read_value(const char *text, const TypeInfo &type, std::string &error)
{
    const auto s = parse_text(text, type.kind, 0, 1, nullptr, error);
    if (!s)
        return std::nullopt;
    Value v;
    switch (type.kind) {
    case Kind::datetime: v.dt = s->dt; break;
    case Kind::datetime4: com_setdatetime(&v.dt, s->dt4.days, s->dt4.minutes * 18000); break;
    case Kind::date: v.dt.dtdays = s->date; break;
    case Kind::time: v.dt.dttime = s->time; break;
    default: v.big = s->big;
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

// The longest style of each type: date and time with the type's fraction.
CS_INT full_style(Kind kind)
{
    switch (kind) {
    case Kind::date: return 111;
    case Kind::time: case Kind::bigtime: return 37;
    case Kind::datetime4: return 121;
    default: return 140;
    }
}

size_t storage_size(Kind kind)
{
    return kind == Kind::datetime || kind == Kind::bigdatetime || kind == Kind::bigtime ? 8 : 4;
}

// date parse TEXT [--type T] [--order N] [--style N]: the reader's value,
// shown in the type's fullest style, with its stored bytes.
// date format TEXT --style N [--type T]: the value of TEXT in a style.
int run_text(std::string_view op, std::span<char *> args)
{
    Options o;
    CS_INT order = 1;
    std::optional<CS_INT> style;
    std::vector<char *> words;
    const auto rest = take_options(args, o);
    if (!rest)
        return fail(o.error);
    for (size_t i = 0; i < rest->size(); i++) {
        const std::string_view word = (*rest)[i];
        if (word != "--order" && word != "--style") {
            words.push_back((*rest)[i]);
            continue;
        }
        const auto n = i + 1 < rest->size() ? parse_int((*rest)[++i]) : std::nullopt;
        if (!n || *n < -100000 || *n > 100000)
            return fail(std::string(word) + " takes a number");
        (word == "--order" ? order : style.emplace()) = static_cast<CS_INT>(*n);
    }
    if (words.size() != 1)
        return fail("date " + std::string(op) + " takes one date text; see kescomn date --help");
    if (op == "format" && !style)
        return fail("date format needs --style N");

    std::string error;
    bool truncated = false;
    const Kind kind = o.type->kind;
    auto v = parse_text(words[0], kind, op == "parse" ? style.value_or(0) : 0, order, &truncated, error);
    if (!v)
        return fail(error);
    char buf[128];
    const CS_INT shown = op == "parse" ? full_style(kind) : *style;
    const CS_INT n = comn_date_format(type_code(kind), &*v, shown, nullptr, buf, sizeof buf);
    if (n == -1)
        return fail("style " + std::to_string(shown) + " is unknown");
    if (n < 0)
        return fail("style " + std::to_string(shown) + " cannot be written (" + std::to_string(n) + ")");
    if (op == "format")
        std::printf("%.*s\n", static_cast<int>(n), buf);
    else
        std::printf("%.*s  (bytes %s)%s\n", static_cast<int>(n), buf, hex(&*v, storage_size(kind)).c_str(),
                    truncated ? "  fraction truncated" : "");
    return 0;
}

int run_date(std::span<char *> args)
{
    if (!args.empty() && (std::string_view(args[0]) == "parse" || std::string_view(args[0]) == "format"))
        return run_text(args[0], args.subspan(1));
    Options o;
    const auto words = take_options(args, o);
    if (!words)
        return fail(o.error);
    const std::vector<char *> &w = *words;
    if (w.empty())
        return fail("date takes add, diff, part, parse or format; see kescomn date --help");
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
                "add PART N DATE | diff PART D1 D2 | part PART DATE | parse TEXT [--order N] [--style N]\n"
                "       | format TEXT --style N   [--type datetime|datetime4|date|time|bigdatetime|bigtime]\n"
                "       [--firstday 0-6]\n\n"
                "  PART is 0-14 or year, quarter, month, weekday, day, dayofyear, hour, minute, second,\n"
                "  millisecond, week, isoyear, isoweek, isoweekday, microsecond.  Dates are any text the\n"
                "  library reads (\"2024-02-29 13:45:00.5\", \"Feb 29 2024 1:45PM\", \"29/02/2024\" with\n"
                "  --order); --order picks the field order of numeric dates, --style the text form.",
                "dates: add, difference, part, and text in (parse) and out (format)", run_date);
