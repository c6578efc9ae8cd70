// What the commands of kescomn share: registration, type names, result code
// names, byte dumps and argument parsing.
#ifndef KESCOMN_TOOLS_CLI_H
#define KESCOMN_TOOLS_CLI_H

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "kescomn.h"

namespace kescomn_cli {

// One command: `kescomn <name> ...`.  run gets the words after the name and
// returns the exit status.
struct Command {
    const char *name;
    const char *usage;   // the argument synopsis, for --help
    const char *summary; // one line
    int (*run)(std::span<char *> args);
};

bool register_command(const Command &command);

// Registers a command at start-up from its own file.
#define KESCOMN_COMMAND(id, ...) \
    [[maybe_unused]] static const bool kescomn_command_##id = kescomn_cli::register_command({__VA_ARGS__})

// Type code by name ("int", "CS_INT", "varchar", ...), case-insensitive.
std::optional<CS_INT> type_code(std::string_view name);
// The canonical name of a type code ("CS_INT").
std::string type_name(CS_INT code);
// The name of a result code ("CS_EOVERFLOW"), or its number.
std::string retcode_name(CS_RETCODE code);
// Bytes as lower-case hex.
std::string hex(const void *data, size_t len);
// An integer argument; std::nullopt when it is not one.
std::optional<long long> parse_int(std::string_view text);

// Prints "kescomn: message" on standard error and returns 2, the status of bad input.
int fail(const std::string &message);
// True when the word is -h or --help.
bool is_help(std::string_view word);
// Prints the usage of a command and returns 0.
int usage(const Command &command);

} // namespace kescomn_cli

#endif
