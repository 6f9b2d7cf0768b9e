#include "cli/CommandSettings.h"
#include "cli/Commands.h"
#include "cli/PrintableText.h"
#include "settings/records/json/SettingsCoding.h"

#include <fmt/format.h>

namespace quorbel {

namespace {

class PresetsCommand final : public Command {
  public:
    PresetsCommand();

    void run() const override;

  private:
    bool json_ = false;
    bool names_ = false;
};

PresetsCommand::PresetsCommand()
    : Command("presets", "List the presets, the program's and your own") {
    declare({.name = "--json",
             .help = "As a JSON array, in the form of the settings file",
             .variable = &json_});
    declare({.name = "--names",
             .help = "Only the names, one on each line",
             .variable = &names_,
             .excludes = "--json"});
}

void PresetsCommand::run() const {
    const std::vector<Preset> presets = availablePresets(loadSettings(""));
    if (json_) {
        fmt::print("{}\n", encodeRecord(presets));
        return;
    }
    if (names_) {
        for (const Preset &preset : presets)
            fmt::print("{}\n", printable(preset.name));
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
            fmt::print("  {:<28}  {}\n", printable(preset.name), printable(preset.notes));
        }
    }
}

} // namespace

std::unique_ptr<Command> makePresetsCommand() { return std::make_unique<PresetsCommand>(); }

} // namespace quorbel
