#pragma once

#include "cli/Commands.h"

#include <memory>
#include <vector>

namespace quorbel {

inline constexpr const char *programSummary =
    "Everything the computer plays, through one equaliser and effects chain.";

/// Subcommands that share their first word.
struct CommandGroup {
    const char *name;
    const char *summary;
};
inline constexpr CommandGroup controlGroup{"ctl", "Control the Ostrafine that runs"};

/// An option without a value that ends the program.
struct EndingOption {
    const char *names; ///< separated by a comma
    const char *help;
};
inline constexpr EndingOption helpOption{"-h,--help", "Print this help and exit"};
inline constexpr EndingOption versionOption{"--version", "Print the version and exit"};

struct ParsedCommandLine {
    const Command *command = nullptr; ///< null if there is nothing to run
    int status = 0;                   ///< exit status without a command
};

/// Finds the subcommand and fills the variables of its arguments. Prints help and version on
/// standard output, usage errors on standard error.
[[nodiscard]] ParsedCommandLine
parseCommandLine(const std::vector<std::unique_ptr<Command>> &commands, int argc,
                 const char *const *argv);

} // namespace quorbel
