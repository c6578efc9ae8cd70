// kescomn datetext parse|format: date and time text through the library's
// reader and formatter, for any of the six date types.
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <strings.h>

#include "cli.h"

namespace {

using namespace kescomn_cli;

struct TypeName {
    const char *name;
    CS_INT code;
};
constexpr TypeName kTypes[] = {
    {"datetime", CS_DATETIME_TYPE}, {"datetime4", CS_DATETIME4_TYPE},     {"date", CS_DATE_TYPE},
    {"time", CS_TIME_TYPE},         {"bigdatetime", CS_BIGDATETIME_TYPE}, {"bigtime", CS_BIGTIME_TYPE},
};

std::optional<CS_INT> date_type(std::string_view word)
{
    for (const TypeName &t : kTypes)
        if (word.size() == std::strlen(t.name) && strncasecmp(word.data(), t.name, word.size()) == 0)
            return t.code;
    return std::nullopt;
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

struct Options {
    std::string text;
    CS_INT type = CS_DATETIME_TYPE;
    CS_INT order = 1;
    CS_INT style = 0;      // parse: the style whose year rules apply
    bool style_set = false;
};

// TEXT and the options; a message and std::nullopt on bad input.
std::optional<Options> read_options(std::span<char *> args, bool need_style)
{
    Options o;
    bool have_text = false;
    for (size_t i = 0; i < args.size(); i++) {
        const std::string_view word = args[i];
        const bool has_value = i + 1 < args.size();
        if (word == "--type" || word == "--order" || word == "--style") {
            if (!has_value) {
                fail(std::string(word) + " needs a value");
                return std::nullopt;
            }
            const std::string_view value = args[++i];
            if (word == "--type") {
                const auto t = date_type(value);
                if (!t) {
                    fail("unknown date type '" + std::string(value) +
                         "' (datetime, datetime4, date, time, bigdatetime, bigtime)");
                    return std::nullopt;
                }
                o.type = *t;
                continue;
            }
            const auto n = parse_int(value);
            if (!n || *n < -100000 || *n > 100000) {
                fail(std::string(word) + " takes a number, not '" + std::string(value) + "'");
                return std::nullopt;
            }
            if (word == "--order") {
                o.order = static_cast<CS_INT>(*n);
            } else {
                o.style = static_cast<CS_INT>(*n);
                o.style_set = true;
            }
        } else if (!have_text) {
            o.text = word;
            have_text = true;
        } else {
            fail("unexpected argument '" + std::string(word) + "'");
            return std::nullopt;
        }
    }
    if (!have_text) {
        fail("a date text is needed; see --help");
        return std::nullopt;
    }
    if (need_style && !o.style_set) {
        fail("format needs --style N");
        return std::nullopt;
    }
    return o;
}

union Storage {
    CS_DATETIME dt;
    CS_DATETIME4 dt4;
    CS_DATE date;
    CS_TIME time;
    CS_BIGDATETIME big;
};

// The text read into the type; false (after a message) when it is refused.
bool read_value(const Options &o, CS_INT style, Storage &value, CS_BOOL &truncated)
{
    std::string text = o.text;
    const CS_INT rc = comn_date_parse(o.type, text.data(), static_cast<CS_INT>(text.size()), style, o.order,
                                      nullptr, nullptr, nullptr, &value, &truncated);
    if (rc != 0) {
        fail("'" + o.text + "' is refused: " + status_text(rc) + " (" + std::to_string(rc) + ")");
        return false;
    }
    return true;
}

// The stored fields of a value, as the type keeps them.
std::string raw_fields(CS_INT type, const Storage &v)
{
    switch (type) {
    case CS_DATETIME_TYPE:
        return "dtdays " + std::to_string(v.dt.dtdays) + ", dttime " + std::to_string(v.dt.dttime) + " ticks";
    case CS_DATETIME4_TYPE:
        return "days " + std::to_string(v.dt4.days) + ", minutes " + std::to_string(v.dt4.minutes);
    case CS_DATE_TYPE: return "days " + std::to_string(v.date);
    case CS_TIME_TYPE: return "ticks " + std::to_string(v.time);
    default: return "microseconds " + std::to_string(v.big);
    }
}

size_t storage_size(CS_INT type)
{
    return type == CS_DATETIME_TYPE || type == CS_BIGDATETIME_TYPE || type == CS_BIGTIME_TYPE ? 8 : 4;
}

// The longest style of each type: date and time with the type's fraction.
CS_INT full_style(CS_INT type)
{
    switch (type) {
    case CS_DATE_TYPE: return 111;
    case CS_TIME_TYPE: case CS_BIGTIME_TYPE: return 37;
    case CS_DATETIME4_TYPE: return 121;
    default: return 140;
    }
}

std::string format(CS_INT type, Storage &v, CS_INT style, CS_INT &rc)
{
    char buf[128];
    rc = comn_date_format(type, &v, style, nullptr, buf, sizeof buf);
    return rc > 0 ? std::string(buf, static_cast<size_t>(rc)) : std::string();
}

int run_parse(const Options &o)
{
    Storage v{};
    CS_BOOL truncated = 0;
    if (!read_value(o, o.style, v, truncated))
        return 1;
    CS_INT rc;
    const std::string shown = format(o.type, v, full_style(o.type), rc);
    std::printf("%s  (%s; bytes %s)%s\n", shown.c_str(), raw_fields(o.type, v).c_str(),
                hex(&v, storage_size(o.type)).c_str(),
                truncated ? "  fraction truncated" : "");
    return 0;
}

int run_format(const Options &o)
{
    Storage v{};
    CS_BOOL truncated = 0;
    if (!read_value(o, 0, v, truncated))
        return 1;
    CS_INT rc;
    const std::string text = format(o.type, v, o.style, rc);
    if (rc == -1)
        return fail("style " + std::to_string(o.style) + " is unknown");
    if (rc < 0)
        return fail("style " + std::to_string(o.style) + " cannot be written (" + std::to_string(rc) + ")");
    std::printf("%s\n", text.c_str());
    return 0;
}

int run_datetext(std::span<char *> args);

const Command kCommand{"datetext",
                       "parse TEXT [--order N] [--type T] [--style N] | format TEXT --style N [--type T] [--order N]",
                       "read date and time text into a date type, or write a value in a style (T: datetime, "
                       "datetime4, date, time, bigdatetime, bigtime; order 1 mdy .. 6 dym)",
                       run_datetext};

int run_datetext(std::span<char *> args)
{
    if (args.empty())
        return fail("datetext needs parse or format; see --help");
    const std::string_view sub = args[0];
    const auto rest = args.subspan(1);
    if (sub == "parse" || sub == "format") {
        if (!rest.empty() && is_help(rest[0]))
            return usage(kCommand);
        const auto o = read_options(rest, sub == "format");
        if (!o)
            return 2;
        return sub == "parse" ? run_parse(*o) : run_format(*o);
    }
    return fail("unknown datetext command '" + std::string(sub) + "' (parse, format)");
}

} // namespace

KESCOMN_COMMAND(datetext, kCommand.name, kCommand.usage, kCommand.summary, kCommand.run);
