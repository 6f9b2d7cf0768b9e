#include "cli/Commands.h"

#include <utility>

namespace quorbel {

std::vector<std::unique_ptr<Command>> allCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(makeRenderCommand());
    commands.push_back(makeLiveCommand());
    commands.push_back(makePresetsCommand());
    commands.push_back(makeImportCommand());
    commands.push_back(makeExportCommand());
    commands.push_back(makeDevicesCommand());
    for (auto &command : makeControlCommands())
        commands.push_back(std::move(command));
    return commands;
}

} // namespace quorbel
