#include "cli/CommandError.h"
#include "cli/CommandSettings.h"
#include "cli/Commands.h"
#include "cli/PrintableText.h"
#include "settings/files/FileReplacement.h"
#include "settings/interchange/InterchangeError.h"
#include "settings/interchange/PresetFile.h"

#include <fmt/format.h>

#include <string>

namespace quorbel {

namespace {

class ExportCommand final : public Command {
  public:
    ExportCommand();

    void run() const override;

  private:
    std::string presetName_;
    std::string path_;
};

ExportCommand::ExportCommand()
    : Command("export", "Write a preset as a parametric equalizer text, or whole to a .json file") {
    declare({.name = "--preset",
             .help = "Name of the preset",
             .values = {{"NAME", CommandValue::Completion::presetName}},
             .variable = &presetName_,
             .isRequired = true});
    declare({.name = "FILE",
             .help = "File to write; one that exists is replaced",
             .values = {{"FILE", CommandValue::Completion::file}},
             .variable = &path_,
             .isRequired = true});
}

void ExportCommand::run() const {
    const Persisted settings = loadSettings("");
    const Preset preset = presetNamed(settings, presetName_);
    const PresetGains gains = loadPresetGains("");
    try {
        if (const std::string loss = writePreset(path_, preset, gains.of(preset.id)); !loss.empty())
            fmt::print("{} is written {}\n", printable(path_), loss);
    } catch (const InterchangeError &error) {
        throw CommandError(fmt::format("{}: {}", preset.name, error.what()));
    } catch (const FileReplacementError &error) {
        throw CommandError(fmt::format("{}: cannot be written: {}", path_, error.what()));
    }
}

} // namespace

std::unique_ptr<Command> makeExportCommand() { return std::make_unique<ExportCommand>(); }

} // namespace quorbel
