// kescomn numeric ADD|SUB|MUL|DIV|CMP A B: exact numeric arithmetic on two
// decimal texts.  Each operand takes the precision and scale of its text
// unless --p1/--s1/--p2/--s2 say otherwise; the result is printed with the
// precision and scale the library chose for it.
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

enum class Op { add, sub, mul, div, cmp };

struct Operation {
    const char *name;
    Op op;
};

constexpr Operation kOperations[] = {
    {"ADD", Op::add}, {"SUB", Op::sub}, {"MUL", Op::mul}, {"DIV", Op::div}, {"CMP", Op::cmp}};

// Decimal text ("-12.50") into a record; precision and scale default to the
// text's digits and decimals.  False with a message when it does not fit.
bool parse_numeric(std::string_view text, std::optional<long long> prec, std::optional<long long> scale,
                   CS_NUMERIC &out, std::string &error)
{
    const std::string original(text);
    bool neg = false;
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        neg = text[0] == '-';
        text.remove_prefix(1);
    }
    std::string digits;
    int decimals = -1;
    for (char c : text) {
        if (c == '.' && decimals < 0) {
            decimals = 0;
        } else if (c >= '0' && c <= '9') {
            digits += c;
            if (decimals >= 0)
                ++decimals;
        } else {
            error = "'" + original + "' is not a decimal number";
            return false;
        }
    }
    if (digits.empty()) {
        error = "'" + original + "' has no digits";
        return false;
    }
    decimals = decimals < 0 ? 0 : decimals;
    const long long s = scale.value_or(decimals);
    if (s < 0 || s > 77) {
        error = "scale " + std::to_string(s) + " is outside 0 to 77";
        return false;
    }
    if (decimals > s) {
        error = "'" + original + "' has more than " + std::to_string(s) + " decimals";
        return false;
    }
    digits.append(static_cast<size_t>(s - decimals), '0');
    const size_t first = digits.find_first_not_of('0');
    const long long sig = first == std::string::npos ? 0 : static_cast<long long>(digits.size() - first);
    const long long p = prec.value_or(sig < 1 ? 1 : sig);
    if (p < 1 || p > 77) {
        error = "precision " + std::to_string(p) + " is outside 1 to 77";
        return false;
    }
    if (sig > p) {
        error = "'" + original + "' needs more than " + std::to_string(p) + " digits";
        return false;
    }
    std::memset(&out, 0, sizeof out);
    out.precision = static_cast<CS_BYTE>(p);
    out.scale = static_cast<CS_BYTE>(s);
    const int len = comn_num_getlen(static_cast<CS_INT>(p));
    for (char c : digits) {
        unsigned carry = static_cast<unsigned>(c - '0');
        for (int i = len - 1; i >= 1; --i) {
            const unsigned v = out.array[i] * 10u + carry;
            out.array[i] = static_cast<CS_BYTE>(v);
            carry = v >> 8;
        }
    }
    out.array[0] = neg && sig > 0 ? 1 : 0;
    return true;
}

// A record as decimal text with all its decimals.
std::string format_numeric(const CS_NUMERIC &n)
{
    CS_BYTE mag[CS_MAX_NUMLEN];
    const int len = comn_num_getlen(n.precision);
    std::memcpy(mag, n.array + 1, static_cast<size_t>(len - 1));
    std::string digits;
    bool nonzero = true;
    while (nonzero) {
        unsigned rem = 0;
        nonzero = false;
        for (int i = 0; i < len - 1; ++i) {
            const unsigned cur = (rem << 8) | mag[i];
            mag[i] = static_cast<CS_BYTE>(cur / 10);
            rem = cur % 10;
            nonzero |= mag[i] != 0;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + rem));
    }
    if (digits.size() <= n.scale)
        digits.insert(0, n.scale + 1 - digits.size(), '0');
    if (n.scale > 0)
        digits.insert(digits.size() - n.scale, ".");
    return (n.array[0] != 0 ? "-" : "") + digits;
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

    CS_NUMERIC a, b, result;
    std::string error;
    if (!parse_numeric(words[1], opt[0], opt[1], a, error) || !parse_numeric(words[2], opt[2], opt[3], b, error))
        return fail(error);
    std::memset(&result, 0, sizeof result);

    CS_RETCODE rc = CS_SUCCEED;
    switch (operation->op) {
    case Op::add: rc = comn_numadd(&a, &b, &result); break;
    case Op::sub: rc = comn_numsub(&a, &b, &result); break;
    case Op::mul: rc = comn_nummul(&a, &b, &result); break;
    case Op::div: rc = comn_numdivide(&a, &b, &result); break;
    case Op::cmp: std::printf("%d\n", static_cast<int>(comn_numcmp(&a, &b))); return 0;
    }
    std::printf("precision %d\nscale %d\nvalue %s\nresult %s\n", result.precision, result.scale,
                rc == CS_SUCCEED ? format_numeric(result).c_str() : "-", retcode_name(rc).c_str());
    return rc == CS_SUCCEED ? 0 : 1;
}

} // namespace

KESCOMN_COMMAND(numeric, "numeric", "ADD|SUB|MUL|DIV|CMP A B [--p1 N] [--s1 N] [--p2 N] [--s2 N]",
                "exact numeric arithmetic on two decimal values (CMP prints -1, 0 or 1)", run_numeric);
