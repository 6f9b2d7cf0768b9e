#include "cli/Commands.h"

namespace quorbel {

std::vector<std::unique_ptr<Command>> allCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(makeRenderCommand());
    commands.push_back(makeLiveCommand());
    commands.push_back(makePresetsCommand());
    commands.push_back(makeImportCommand());
    commands.push_back(makeExportCommand());
    commands.push_back(makeDevicesCommand());
    return commands;
}

} // namespace quorbel
