#pragma once

#include "cli/Command.h"

#include <memory>
#include <vector>

namespace quorbel {

/// The subcommands, in the order of help and manual.
[[nodiscard]] std::vector<std::unique_ptr<Command>> allCommands();

/// `render`: plays a sound file through the chain into another, as fast as the machine can. On an
/// error OUT is as it was.
[[nodiscard]] std::unique_ptr<Command> makeRenderCommand();

/// `live`: plays everything the computer plays through the chain, until a signal or for some time.
/// On an error the sound is as it was.
[[nodiscard]] std::unique_ptr<Command> makeLiveCommand();

/// `presets`: lists the program's presets and the user's own.
[[nodiscard]] std::unique_ptr<Command> makePresetsCommand();

/// `import`: makes a preset of the user's of a parametric equaliser text or a preset file, and
/// activates it. On an error the settings are as they were.
[[nodiscard]] std::unique_ptr<Command> makeImportCommand();

/// `export`: writes a preset as a parametric equaliser text, or as JSON to a file named so.
[[nodiscard]] std::unique_ptr<Command> makeExportCommand();

/// `devices`: lists the output devices.
[[nodiscard]] std::unique_ptr<Command> makeDevicesCommand();

/// `ctl status` and its like: ask the Ostrafine that runs, and have it do things.
[[nodiscard]] std::vector<std::unique_ptr<Command>> makeControlCommands();

} // namespace quorbel
