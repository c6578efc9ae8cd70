// kescomn path KIND [ARGS...]: where the stack looks for its files, as the
// library composes the paths below the home directory (KESTOR).
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>

#include "cli.h"
#include "kesintl.h"

namespace {

using namespace kescomn_cli;

CS_CHAR *arg(std::span<char *> args, size_t i) { return i < args.size() ? args[i] : nullptr; }

struct Kind {
    const char *name;
    size_t min_args, max_args;
    std::function<CS_RETCODE(std::span<char *>, CS_CONTEXT *, CS_CHAR *, CS_INT)> compose;
};

const Kind kKinds[] = {
    {"home", 0, 0,
     [](std::span<char *>, CS_CONTEXT *, CS_CHAR *p, CS_INT n) {
         return intl_home(p, n) < 0 ? CS_EINTLFILE : CS_SUCCEED;
     }},
    {"any", 0, 2,
     [](std::span<char *> a, CS_CONTEXT *, CS_CHAR *p, CS_INT n) {
         return com_path_anyfile(p, n, arg(a, 0), arg(a, 1), 1);
     }},
    {"ifile", 0, 0, [](std::span<char *>, CS_CONTEXT *c, CS_CHAR *p, CS_INT n) { return com_path_ifile(c, p, n); }},
    {"cfg", 1, 1,
     [](std::span<char *> a, CS_CONTEXT *c, CS_CHAR *p, CS_INT n) { return com_path_cfgfile(c, a[0], p, n, 1); }},
    {"msg", 2, 2,
     [](std::span<char *> a, CS_CONTEXT *c, CS_CHAR *p, CS_INT n) {
         return com_path_msgfile(c, a[0], CS_NULLTERM, a[1], CS_NULLTERM, p, n);
     }},
    {"char", 0, 3,
     [](std::span<char *> a, CS_CONTEXT *c, CS_CHAR *p, CS_INT n) {
         return com_path_charfile(c, arg(a, 0), arg(a, 1), arg(a, 2), p, n);
     }},
    {"tclcfg", 0, 0,
     [](std::span<char *>, CS_CONTEXT *, CS_CHAR *p, CS_INT n) {
         return com_get_tclcfg(p, n) > 0 ? CS_SUCCEED : CS_FAIL;
     }},
};

int run_path(std::span<char *> args)
{
    if (args.empty())
        return fail("path needs a kind; see kescomn path --help");
    for (const Kind &k : kKinds) {
        if (std::strcmp(k.name, args[0]) != 0)
            continue;
        const std::span<char *> rest = args.subspan(1);
        if (rest.size() < k.min_args || rest.size() > k.max_args)
            return fail(std::string("wrong number of arguments for path ") + k.name + "; see kescomn path --help");
        CS_CONTEXT context{};
        char path[COM_PATH_MAX];
        const CS_RETCODE rc = k.compose(rest, &context, path, sizeof path);
        if (rc != CS_SUCCEED)
            return fail(std::string("no path: ") + retcode_name(rc) +
                        (rc == CS_EINTLFILE ? " (the home directory cannot be had)" : " (it does not fit)"));
        std::printf("%s\n", path);
        return 0;
    }
    return fail(std::string("unknown path kind '") + args[0] + "'; see kescomn path --help");
}

} // namespace

KESCOMN_COMMAND(path, "path",
                "home | ifile | tclcfg | any [DIR [FILE]] | cfg FILE | msg LANG FILE | char [SET [FILE [EXT]]]",
                "print where the stack finds its files (below KESTOR)", run_path);
