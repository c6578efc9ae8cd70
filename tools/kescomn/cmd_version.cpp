// kescomn version: the library's version and banner.
#include <cstdio>

#include "cli.h"

namespace {

int run_version(std::span<char *> args)
{
    if (!args.empty())
        return kescomn_cli::fail("version takes no arguments");
    CS_BOOL debug = 0;
    const CS_CHAR *version = com_version(&debug);
    std::printf("%s\nversion %s-%s (%s build)\n", com_version_banner(), version,
                com_get_driverversionsuffix(), debug ? "debug" : "optimised");
    return 0;
}

} // namespace

KESCOMN_COMMAND(version, "version", "", "print the library version and banner", run_version);
