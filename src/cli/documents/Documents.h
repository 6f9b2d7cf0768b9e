#pragma once

#include "cli/CommandLine.h"

#include <memory>
#include <string>
#include <vector>

namespace quorbel {

using Commands = std::vector<std::unique_ptr<Command>>;

/// The parts of the manual page that follow from the declarations, in roff.
[[nodiscard]] std::string manualSynopsis(const Commands &commands);
[[nodiscard]] std::string manualCommands(const Commands &commands);

/// Completion scripts. They ask the program itself for the names of presets and devices.
[[nodiscard]] std::string bashCompletion(const Commands &commands);
[[nodiscard]] std::string zshCompletion(const Commands &commands);
[[nodiscard]] std::string fishCompletion(const Commands &commands);

/// Returns `text` with every `part` replaced by `replacement`.
[[nodiscard]] std::string withReplaced(std::string text, const std::string &part,
                                       const std::string &replacement);

/// "-h,--help" as {"-h", "--help"}.
[[nodiscard]] std::vector<std::string> namesOf(const EndingOption &option);

/// Whether the command takes a file as a positional argument.
[[nodiscard]] bool takesFiles(const Command &command);

} // namespace quorbel
