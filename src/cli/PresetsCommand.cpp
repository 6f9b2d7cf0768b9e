#include "cli/PresetsCommand.h"

#include "cli/PresetChoice.h"
#include "cli/SettingsSource.h"
#include "settings/records/json/SettingsCoding.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace quorbel {

PresetsCommand::PresetsCommand(CLI::App &program)
    : command_(program.add_subcommand("presets", "List the presets, the program's and your own")) {
    command_->add_flag("--json", json_, "As a JSON array, in the form of the settings file");
}

void PresetsCommand::run() const {
    const std::vector<Preset> presets = availablePresets(loadSettings(""));
    if (json_) {
        fmt::print("{}\n", encodeRecord(presets));
        return;
    }
    const char *separator = "";
    for (const Preset::Category category : Preset::allCategories) {
        bool titled = false;
        for (const Preset &preset : presets) {
            if (preset.category != category)
                continue;
            if (!titled)
                fmt::print("{}{}\n", separator, displayName(category));
            titled = true;
            separator = "\n";
            fmt::print("  {:<28}  {}\n", preset.name, preset.notes);
        }
    }
}

} // namespace quorbel
