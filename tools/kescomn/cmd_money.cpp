// kescomn money ADD|SUB|MUL|DIV A B: money arithmetic on two money texts,
// read by the library's text to money conversion and printed with all four
// decimals.
#include <cstdio>
#include <cstring>
#include <string>
#include <strings.h>

#include "cli.h"

namespace {

using namespace kescomn_cli;

using MoneyOp = CS_RETCODE (*)(CS_MONEY *, CS_MONEY *, CS_MONEY *);

struct Operation {
    const char *name;
    MoneyOp op;
};

constexpr Operation kOperations[] = {
    {"ADD", comn_mnyadd}, {"SUB", comn_mnysub}, {"MUL", comn_mnymul}, {"DIV", comn_mnydivide}};

// Reads a money text through the context's CS_CHAR to CS_MONEY cell.
bool read_money(CS_CONTEXT *context, const char *text, CS_MONEY &out, std::string &error)
{
    CS_CONV_FUNC to_money = com_conv_func(context, CS_CHAR_TYPE, CS_MONEY_TYPE);
    if (to_money == nullptr) {
        error = "this build cannot read money text";
        return false;
    }
    CS_DATAFMT src, dest;
    std::memset(&src, 0, sizeof src);
    std::memset(&dest, 0, sizeof dest);
    src.datatype = CS_CHAR_TYPE;
    src.maxlength = static_cast<CS_INT>(std::strlen(text));
    dest.datatype = CS_MONEY_TYPE;
    dest.maxlength = sizeof out;
    CS_INT destlen = 0;
    if (src.maxlength == 0) {
        error = "empty money text";
        return false;
    }
    const CS_RETCODE rc = to_money(context, &src, const_cast<char *>(text), &dest, &out, &destlen);
    if (rc != CS_SUCCEED) {
        error = "'" + std::string(text) + "' is not a money value (" + retcode_name(rc) + ")";
        return false;
    }
    return true;
}

int run_money(std::span<char *> args)
{
    if (args.size() != 3)
        return fail("money takes an operation and two values; see kescomn money --help");
    const Operation *operation = nullptr;
    for (const Operation &o : kOperations)
        if (strcasecmp(o.name, args[0]) == 0)
            operation = &o;
    if (operation == nullptr)
        return fail(std::string("unknown money operation '") + args[0] + "'; use ADD, SUB, MUL or DIV");

    CS_CONTEXT context{};
    if (com_conv_init(&context) != CS_SUCCEED)
        return fail("cannot set up a context");
    CS_MONEY a{}, b{}, result{};
    std::string error;
    int status = 0;
    if (!read_money(&context, args[1], a, error) || !read_money(&context, args[2], b, error)) {
        status = fail(error);
    } else if (const CS_RETCODE rc = operation->op(&a, &b, &result); rc != CS_SUCCEED) {
        status = fail(std::string(operation->name) + " gives " + retcode_name(rc));
    } else {
        char text[32];
        const CS_CHAR *first = com_precmnytochar(&result, text, sizeof text, 0, 4);
        std::printf("%.*s\n", static_cast<int>(text + sizeof text - first), first);
    }
    com_conv_free(&context);
    return status;
}

} // namespace

KESCOMN_COMMAND(money, "money", "ADD|SUB|MUL|DIV A B",
                "money arithmetic: A op B, products rounded and quotients cut to 1/10000", run_money);
