// kescomn numeric ADD|SUB|MUL|DIV|CMP A B: exact numeric arithmetic on two
// decimal texts.  Each operand takes the precision and scale of its text
// unless --p1/--s1/--p2/--s2 say otherwise; the result is printed with the
// precision and scale the library chose for it.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <strings.h>
#include <vector>

#include "cli.h"

namespace {

using namespace kescomn_cli;

enum class Op { add, sub, mul, div, cmp };

struct Operation {
    const char *name;
    Op op;
};

constexpr Operation kOperations[] = {
    {"ADD", Op::add}, {"SUB", Op::sub}, {"MUL", Op::mul}, {"DIV", Op::div}, {"CMP", Op::cmp}};

// Decimal text ("-12.50", "1.5e3" with --s) into a record through the
// library's own text conversion; precision and scale default to the text's
// digits and decimals.  False with a message when it does not convert.
bool parse_numeric(CS_CONTEXT *context, const std::string &text, std::optional<long long> prec,
                   std::optional<long long> scale, CS_NUMERIC &out, std::string &error)
{
    if (text.empty()) {
        error = "an empty value is not a decimal number";
        return false;
    }
    auto convert = [&](CS_INT p, CS_INT s) {
        CS_DATAFMT srcfmt{};
        srcfmt.datatype = CS_CHAR_TYPE;
        srcfmt.maxlength = static_cast<CS_INT>(text.size());
        CS_DATAFMT destfmt{};
        destfmt.datatype = CS_NUMERIC_TYPE;
        destfmt.maxlength = sizeof(CS_NUMERIC);
        destfmt.precision = p;
        destfmt.scale = s;
        std::memset(&out, 0, sizeof out);
        CS_INT len = 0;
        return comn_chartonum(context, &srcfmt, const_cast<char *>(text.data()), &destfmt, &out, &len);
    };
    auto refuse = [&](CS_RETCODE rc) {
        error = "'" + text + "' is not a decimal number of that precision and scale (" + retcode_name(rc) + ")";
        return false;
    };
    if (scale && (*scale < 0 || *scale > 77)) {
        error = "scale " + std::to_string(*scale) + " is outside 0 to 77";
        return false;
    }
    if (prec && (*prec < 1 || *prec > 77)) {
        error = "precision " + std::to_string(*prec) + " is outside 1 to 77";
        return false;
    }
    // The text's own shape does not account for an exponent.
    if (!prec && text.find_first_of("eE") != std::string::npos) {
        error = "'" + text + "' has an exponent: give its precision (--p1 or --p2)";
        return false;
    }
    // A scale without a precision keeps the text's integer digits.
    if (scale && !prec) {
        if (CS_RETCODE rc = convert(CS_SRC_VALUE, CS_SRC_VALUE); rc != CS_SUCCEED)
            return refuse(rc);
        const long long intdigits = out.scale <= 77 ? out.precision - out.scale : out.precision;
        prec = std::clamp(std::max(intdigits, 1LL) + *scale, 1LL, 77LL);
    }
    const CS_RETCODE rc = convert(prec ? static_cast<CS_INT>(*prec) : CS_SRC_VALUE,
                                  scale ? static_cast<CS_INT>(*scale) : CS_SRC_VALUE);
    if (rc != CS_SUCCEED)
        return refuse(rc);
    if (out.scale > 77) {
        error = "'" + text + "' has no scale of its own";
        return false;
    }
    return true;
}

// A record as decimal text with all its decimals, through the library.  A
// negative value at scale 77 has no text of its own: its magnitude is
// printed behind a "-".
std::string format_numeric(CS_CONTEXT *context, CS_NUMERIC n)
{
    std::string sign;
    if (n.scale == 77 && n.array[0] != 0) {
        n.array[0] = 0;
        sign = "-";
    }
    CS_DATAFMT srcfmt{};
    srcfmt.datatype = CS_NUMERIC_TYPE;
    srcfmt.maxlength = sizeof(CS_NUMERIC);
    CS_DATAFMT destfmt{};
    destfmt.datatype = CS_CHAR_TYPE;
    destfmt.maxlength = 80;
    char text[80];
    CS_INT len = 0;
    if (comn_numtochar(context, &srcfmt, &n, &destfmt, text, &len) != CS_SUCCEED)
        return "?";
    return sign + std::string(text, static_cast<size_t>(len));
}

int run_numeric(std::span<char *> args)
{
    std::optional<long long> opt[4]; // p1 s1 p2 s2
    constexpr const char *kOptions[4] = {"--p1", "--s1", "--p2", "--s2"};
    std::vector<char *> words;
    for (size_t i = 0; i < args.size(); ++i) {
        int which = -1;
        for (int k = 0; k < 4; ++k)
            if (std::strcmp(args[i], kOptions[k]) == 0)
                which = k;
        if (which < 0) {
            words.push_back(args[i]);
            continue;
        }
        if (i + 1 >= args.size() || !(opt[which] = parse_int(args[i + 1])))
            return fail(std::string(kOptions[which]) + " needs an integer");
        ++i;
    }
    if (words.size() != 3)
        return fail("numeric takes an operation and two values; see kescomn numeric --help");
    const Operation *operation = nullptr;
    for (const Operation &o : kOperations)
        if (strcasecmp(o.name, words[0]) == 0)
            operation = &o;
    if (operation == nullptr)
        return fail(std::string("unknown numeric operation '") + words[0] + "'; use ADD, SUB, MUL, DIV or CMP");

    CS_CONTEXT context{};
    com_conv_init(&context);
    CS_NUMERIC a, b, result;
    std::string error;
    const bool parsed = parse_numeric(&context, words[1], opt[0], opt[1], a, error) &&
                        parse_numeric(&context, words[2], opt[2], opt[3], b, error);
    if (!parsed) {
        com_conv_free(&context);
        return fail(error);
    }
    std::memset(&result, 0, sizeof result);

    CS_RETCODE rc = CS_SUCCEED;
    switch (operation->op) {
    case Op::add: rc = comn_numadd(&a, &b, &result); break;
    case Op::sub: rc = comn_numsub(&a, &b, &result); break;
    case Op::mul: rc = comn_nummul(&a, &b, &result); break;
    case Op::div: rc = comn_numdivide(&a, &b, &result); break;
    case Op::cmp:
        std::printf("%d\n", static_cast<int>(comn_numcmp(&a, &b)));
        com_conv_free(&context);
        return 0;
    }
    std::printf("precision %d\nscale %d\nvalue %s\nresult %s\n", result.precision, result.scale,
                rc == CS_SUCCEED ? format_numeric(&context, result).c_str() : "-", retcode_name(rc).c_str());
    com_conv_free(&context);
    return rc == CS_SUCCEED ? 0 : 1;
}

} // namespace

KESCOMN_COMMAND(numeric, "numeric", "ADD|SUB|MUL|DIV|CMP A B [--p1 N] [--s1 N] [--p2 N] [--s2 N]",
                "exact numeric arithmetic on two decimal values (CMP prints -1, 0 or 1)", run_numeric);
