// kescomn convert FROMTYPE TOTYPE VALUE: one value through the conversion
// matrix, the way a driver would do it.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "cli.h"

namespace {

using namespace kescomn_cli;

constexpr CS_INT kBufferSize = 4096;

bool is_character(CS_INT type)
{
    switch (type) {
    case CS_CHAR_TYPE: case CS_LONGCHAR_TYPE: case CS_TEXT_TYPE:
    case CS_SENSITIVITY_TYPE: case CS_BOUNDARY_TYPE: case CS_XML_TYPE:
        return true;
    default:
        return false;
    }
}

struct Options {
    CS_INT format = 0;
    CS_INT maxlength = -1;
    CS_INT precision = 0;
    CS_INT scale = 0;
};

// A context with the conversion state a driver would set up.
struct Session {
    CS_CONTEXT context{};
    Session() { com_conv_init(&context); }
    ~Session() { com_conv_free(&context); }
};

CS_DATAFMT make_fmt(CS_INT type, CS_INT maxlength, const Options &opt)
{
    CS_DATAFMT f;
    std::memset(&f, 0, sizeof f);
    f.datatype = type;
    f.maxlength = maxlength;
    f.format = opt.format;
    f.precision = opt.precision;
    f.scale = opt.scale;
    return f;
}

// The source value in FROMTYPE's storage: text types take the bytes as they
// are, every other type goes through the library's text-to-type cell.
bool read_value(Session &s, CS_INT type, const char *text, std::vector<CS_BYTE> &value, CS_INT &len,
                const Options &opt)
{
    const CS_INT textlen = static_cast<CS_INT>(std::strlen(text));
    if (is_character(type)) {
        value.assign(text, text + textlen);
        len = textlen;
        return true;
    }
    CS_CONV_FUNC parse = com_conv_func(&s.context, CS_CHAR_TYPE, type);
    if (parse == nullptr) {
        fail("no conversion from text to " + type_name(type) + " to read the value");
        return false;
    }
    CS_DATAFMT srcfmt = make_fmt(CS_CHAR_TYPE, textlen, Options{});
    // A numeric source keeps the precision and scale its text has.
    const bool numeric = type == CS_NUMERIC_TYPE || type == CS_DECIMAL_TYPE;
    CS_DATAFMT destfmt = make_fmt(type, kBufferSize, Options{});
    destfmt.precision = numeric ? CS_SRC_VALUE : opt.precision;
    destfmt.scale = numeric ? CS_SRC_VALUE : opt.scale;
    value.assign(kBufferSize, 0);
    CS_RETCODE rc = parse(&s.context, &srcfmt, const_cast<char *>(text), &destfmt, value.data(), &len);
    if (rc != CS_SUCCEED) {
        fail("'" + std::string(text) + "' is not a " + type_name(type) + " (" + retcode_name(rc) + ")");
        return false;
    }
    return true;
}

// The destination shown as text, through the library when it can.
std::string render(Session &s, CS_INT type, const CS_BYTE *bytes, CS_INT len)
{
    if (is_character(type)) {
        std::string text(reinterpret_cast<const char *>(bytes), static_cast<size_t>(len));
        return text.substr(0, text.find('\0'));
    }
    if (type == CS_VARCHAR_TYPE) {
        CS_VARCHAR vc;
        std::memcpy(&vc, bytes, sizeof vc);
        return std::string(vc.str, static_cast<size_t>(vc.len < 0 ? 0 : vc.len));
    }
    CS_CONV_FUNC print = com_conv_func(&s.context, type, CS_CHAR_TYPE);
    if (print == nullptr)
        return "";
    char text[512];
    CS_DATAFMT srcfmt = make_fmt(type, len, Options{});
    CS_DATAFMT destfmt = make_fmt(CS_CHAR_TYPE, sizeof text, Options{});
    CS_INT textlen = 0;
    if (print(&s.context, &srcfmt, const_cast<CS_BYTE *>(bytes), &destfmt, text, &textlen) != CS_SUCCEED)
        return "";
    return std::string(text, static_cast<size_t>(textlen));
}

bool parse_options(std::span<char *> args, std::vector<const char *> &positional, Options &opt)
{
    for (size_t i = 0; i < args.size(); i++) {
        std::string_view word = args[i];
        CS_INT *target = word == "--format"      ? &opt.format
                         : word == "--maxlength" ? &opt.maxlength
                         : word == "--precision" ? &opt.precision
                         : word == "--scale"     ? &opt.scale
                                                 : nullptr;
        if (target == nullptr) {
            if (word.starts_with("--")) {
                fail("unknown option '" + std::string(word) + "'");
                return false;
            }
            positional.push_back(args[i]);
            continue;
        }
        std::optional<long long> n = i + 1 < args.size() ? parse_int(args[i + 1]) : std::nullopt;
        if (!n || *n < -2147483648LL || *n > 2147483647LL) {
            fail(std::string(word) + " takes an integer");
            return false;
        }
        *target = static_cast<CS_INT>(*n);
        i++;
    }
    return true;
}

int run_convert(std::span<char *> args)
{
    std::vector<const char *> positional;
    Options opt;
    if (!parse_options(args, positional, opt))
        return 2;
    if (positional.size() != 3)
        return fail("convert takes FROMTYPE TOTYPE VALUE; see kescomn convert --help");
    std::optional<CS_INT> from = type_code(positional[0]);
    std::optional<CS_INT> to = type_code(positional[1]);
    if (!from || !to)
        return fail("unknown type '" + std::string(from ? positional[1] : positional[0]) + "'");

    Session s;
    CS_CONV_FUNC convert = com_conv_func(&s.context, *from, *to);
    if (convert == nullptr)
        return fail("no conversion from " + type_name(*from) + " to " + type_name(*to));

    std::vector<CS_BYTE> value;
    CS_INT valuelen = 0;
    if (!read_value(s, *from, positional[2], value, valuelen, opt))
        return 2;

    CS_INT capacity = opt.maxlength >= 0 ? opt.maxlength : comn_typelen(*to, 256);
    if (capacity > kBufferSize)
        return fail("--maxlength is at most " + std::to_string(kBufferSize));
    std::vector<CS_BYTE> dest(kBufferSize, 0);
    CS_DATAFMT srcfmt = make_fmt(*from, valuelen, opt);
    CS_DATAFMT destfmt = make_fmt(*to, capacity, opt);
    CS_INT destlen = 0;
    CS_RETCODE rc = convert(&s.context, &srcfmt, value.data(), &destfmt, dest.data(), &destlen);

    const CS_INT shown = destlen < 0 ? 0 : destlen > kBufferSize ? kBufferSize : destlen;
    std::printf("result  %s\nlength  %d\n", retcode_name(rc).c_str(), destlen);
    if (*to == CS_VARCHAR_TYPE || *to == CS_VARBINARY_TYPE) {
        // Of a variable-length record the used part matters, whatever destlen says.
        CS_SMALLINT used;
        std::memcpy(&used, dest.data(), sizeof used);
        used = used < 0 ? 0 : used > CS_MAX_CHAR ? CS_MAX_CHAR : used;
        std::printf("len     %d\nbytes   %s\n", used, hex(dest.data() + sizeof used, static_cast<size_t>(used)).c_str());
    } else {
        std::printf("bytes   %s\n", hex(dest.data(), static_cast<size_t>(shown)).c_str());
    }
    const bool written = shown > 0 || *to == CS_VARCHAR_TYPE;
    if (written && (rc == CS_SUCCEED || rc == CS_EOVERFLOW || rc == CS_EUNDERFLOW || rc == CS_TRUNCATED)) {
        const std::string text = render(s, *to, dest.data(), shown);
        if (!text.empty())
            std::printf("value   %s\n", text.c_str());
    }
    return rc == CS_SUCCEED ? 0 : 1;
}

} // namespace

KESCOMN_COMMAND(convert, "convert",
                "FROMTYPE TOTYPE VALUE [--format N] [--maxlength N] [--precision N] [--scale N]",
                "convert VALUE (text) of FROMTYPE to TOTYPE; prints the result code and the bytes",
                run_convert);
