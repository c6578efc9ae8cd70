#include "cli.h"
#include "retcode_names.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <vector>

namespace kescomn_cli {

namespace {

std::vector<Command> &registry()
{
    static std::vector<Command> commands;
    return commands;
}

struct TypeName {
    CS_INT code;
    const char *name;
};

// Canonical names; the short alias is the name without "CS_", lower case.
constexpr TypeName kTypeNames[] = {
    {CS_CHAR_TYPE, "CS_CHAR"},           {CS_BINARY_TYPE, "CS_BINARY"},
    {CS_LONGCHAR_TYPE, "CS_LONGCHAR"},   {CS_LONGBINARY_TYPE, "CS_LONGBINARY"},
    {CS_TEXT_TYPE, "CS_TEXT"},           {CS_IMAGE_TYPE, "CS_IMAGE"},
    {CS_TINYINT_TYPE, "CS_TINYINT"},     {CS_SMALLINT_TYPE, "CS_SMALLINT"},
    {CS_INT_TYPE, "CS_INT"},             {CS_REAL_TYPE, "CS_REAL"},
    {CS_FLOAT_TYPE, "CS_FLOAT"},         {CS_BIT_TYPE, "CS_BIT"},
    {CS_DATETIME_TYPE, "CS_DATETIME"},   {CS_DATETIME4_TYPE, "CS_DATETIME4"},
    {CS_MONEY_TYPE, "CS_MONEY"},         {CS_MONEY4_TYPE, "CS_MONEY4"},
    {CS_NUMERIC_TYPE, "CS_NUMERIC"},     {CS_DECIMAL_TYPE, "CS_DECIMAL"},
    {CS_VARCHAR_TYPE, "CS_VARCHAR"},     {CS_VARBINARY_TYPE, "CS_VARBINARY"},
    {CS_LONG_TYPE, "CS_LONG"},           {CS_SENSITIVITY_TYPE, "CS_SENSITIVITY"},
    {CS_BOUNDARY_TYPE, "CS_BOUNDARY"},   {CS_VOID_TYPE, "CS_VOID"},
    {CS_USHORT_TYPE, "CS_USHORT"},       {CS_UNICHAR_TYPE, "CS_UNICHAR"},
    {CS_BLOB_TYPE, "CS_BLOB"},           {CS_DATE_TYPE, "CS_DATE"},
    {CS_TIME_TYPE, "CS_TIME"},           {CS_UNITEXT_TYPE, "CS_UNITEXT"},
    {CS_BIGINT_TYPE, "CS_BIGINT"},       {CS_USMALLINT_TYPE, "CS_USMALLINT"},
    {CS_UINT_TYPE, "CS_UINT"},           {CS_UBIGINT_TYPE, "CS_UBIGINT"},
    {CS_XML_TYPE, "CS_XML"},             {CS_BIGDATETIME_TYPE, "CS_BIGDATETIME"},
    {CS_BIGTIME_TYPE, "CS_BIGTIME"},     {CS_TEXTLOCATOR_TYPE, "CS_TEXTLOCATOR"},
    {CS_IMAGELOCATOR_TYPE, "CS_IMAGELOCATOR"}, {CS_UNITEXTLOCATOR_TYPE, "CS_UNITEXTLOCATOR"},
};

bool iequals(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

} // namespace

bool register_command(const Command &command)
{
    registry().push_back(command);
    return true;
}

std::optional<CS_INT> type_code(std::string_view name)
{
    for (const TypeName &t : kTypeNames) {
        std::string_view canonical(t.name);
        if (iequals(name, canonical) || iequals(name, canonical.substr(3)))
            return t.code;
    }
    return std::nullopt;
}

std::string type_name(CS_INT code)
{
    for (const TypeName &t : kTypeNames)
        if (t.code == code)
            return t.name;
    return "user type " + std::to_string(code);
}

std::string retcode_name(CS_RETCODE code)
{
    const char *name = known_retcode_name(code);
    return name != nullptr ? name : std::to_string(code);
}

std::string hex(const void *data, size_t len)
{
    static constexpr char digits[] = "0123456789abcdef";
    std::string out;
    out.reserve(len * 2);
    const auto *p = static_cast<const unsigned char *>(data);
    for (size_t i = 0; i < len; i++) {
        out += digits[p[i] >> 4];
        out += digits[p[i] & 15];
    }
    return out;
}

std::optional<long long> parse_int(std::string_view text)
{
    long long value;
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

int fail(const std::string &message)
{
    std::fprintf(stderr, "kescomn: %s\n", message.c_str());
    return 2;
}

bool is_help(std::string_view word) { return word == "-h" || word == "--help"; }

int usage(const Command &command)
{
    std::printf("usage: kescomn %s %s\n\n  %s\n", command.name, command.usage, command.summary);
    return 0;
}

// Used by main: the whole list, for the top-level help.
const std::vector<Command> &commands() { return registry(); }

} // namespace kescomn_cli
