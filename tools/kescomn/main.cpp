// kescomn: the library's command-line front door.  Each command registers
// itself from its own cmd_<name>.cpp; main only dispatches.
#include <cstdio>
#include <cstring>
#include <vector>

#include "cli.h"

namespace kescomn_cli {
const std::vector<Command> &commands();
}

static int print_help()
{
    std::printf("usage: kescomn COMMAND [ARGS...]\n\ncommands:\n");
    for (const kescomn_cli::Command &c : kescomn_cli::commands())
        std::printf("  %-10s %s\n", c.name, c.summary);
    std::printf("\n`kescomn COMMAND --help` describes one command.\n");
    return 0;
}

int main(int argc, char **argv)
{
    if (argc < 2)
        {
        print_help();
        return 2;
    }
    if (kescomn_cli::is_help(argv[1]))
        return print_help();
    for (const kescomn_cli::Command &c : kescomn_cli::commands()) {
        if (std::strcmp(c.name, argv[1]) != 0)
            continue;
        std::span<char *> args(argv + 2, static_cast<size_t>(argc - 2));
        if (!args.empty() && kescomn_cli::is_help(args[0]))
            return kescomn_cli::usage(c);
        return c.run(args);
    }
    return kescomn_cli::fail(std::string("unknown command '") + argv[1] + "'; see kescomn --help");
}
