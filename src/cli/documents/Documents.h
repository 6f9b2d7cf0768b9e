#pragma once

#include "cli/CommandLine.h"

#include <memory>
#include <string>
#include <vector>

namespace quorbel {

using Commands = std::vector<std::unique_ptr<Command>>;

/// Parts of the manual page generated from the declarations, in roff.
[[nodiscard]] std::string manualSynopsis(const Commands &commands);
[[nodiscard]] std::string manualCommands(const Commands &commands);

/// Completion scripts, which call the program for the names of presets and devices.
[[nodiscard]] std::string bashCompletion(const Commands &commands);
[[nodiscard]] std::string zshCompletion(const Commands &commands);
[[nodiscard]] std::string fishCompletion(const Commands &commands);

/// Returns `text` with every `part` replaced by `replacement`.
[[nodiscard]] std::string withReplaced(std::string text, const std::string &part,
                                       const std::string &replacement);

/// "-h,--help" as {"-h", "--help"}.
[[nodiscard]] std::vector<std::string> namesOf(const EndingOption &option);

/// "ctl start" as "ctl" and "start"; the group is empty for a command without one.
struct CommandWords {
    std::string group;
    std::string word;
};
[[nodiscard]] CommandWords wordsOf(const Command &command);

/// Names of the commands without a group.
[[nodiscard]] std::vector<std::string> plainCommands(const Commands &commands);
/// Second words of the commands in the group.
[[nodiscard]] std::vector<std::string> groupedCommands(const Commands &commands);

/// The value of the first positional argument; null if there is none.
[[nodiscard]] const CommandValue *positionalValue(const Command &command);
/// True if the first positional argument is a file.
[[nodiscard]] bool takesFiles(const Command &command);

[[nodiscard]] std::string joined(const std::vector<std::string> &words);

} // namespace quorbel
