#include "cli/CommandLine.h"
#include "cli/DevicesCommand.h"
#include "cli/ExportCommand.h"
#include "cli/ImportCommand.h"
#include "cli/LiveCommand.h"
#include "cli/PresetsCommand.h"
#include "cli/RenderCommand.h"

namespace quorbel {

std::vector<std::unique_ptr<Command>> allCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<RenderCommand>());
    commands.push_back(std::make_unique<LiveCommand>());
    commands.push_back(std::make_unique<PresetsCommand>());
    commands.push_back(std::make_unique<ImportCommand>());
    commands.push_back(std::make_unique<ExportCommand>());
    commands.push_back(std::make_unique<DevicesCommand>());
    return commands;
}

} // namespace quorbel
