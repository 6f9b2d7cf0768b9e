#include "cli/CommandError.h"
#include "cli/CommandSettings.h"
#include "cli/Commands.h"
#include "cli/PrintableText.h"
#include "settings/interchange/PresetFile.h"

#include <fmt/format.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace quorbel {

namespace {

std::string notesText(const char *title, const std::vector<LineNote> &notes) {
    std::string text = notes.empty() ? "" : fmt::format("{}:\n", title);
    for (const LineNote &note : notes)
        text += fmt::format("  line {}: {}\n", note.line, printable(note.reason));
    return text;
}

class ImportCommand final : public Command {
  public:
    ImportCommand();

    /// Throws CommandError without changing the settings.
    void run() const override;

  private:
    std::string path_;
    std::optional<std::string> name_;
};

ImportCommand::ImportCommand()
    : Command("import",
              "Make a preset of a parametric equalizer text or a preset file, and use it") {
    declare({.name = "--name",
             .help = "Name of the preset (default: the file's name)",
             .values = {{"NAME"}},
             .variable = &name_});
    declare({.name = "FILE",
             .help = "Text or JSON file",
             .values = {{"FILE", CommandValue::Completion::file}},
             .variable = &path_,
             .isRequired = true});
}

void ImportCommand::run() const {
    ImportedPreset imported;
    try {
        imported = readPreset(path_, name_);
    } catch (const std::runtime_error &error) {
        throw CommandError(fmt::format("{}: {}", path_, error.what()));
    }
    UserSettings user;
    adoptPreset(user.settings, imported.preset);
    user.gains().set(imported.preset.id, imported.gainDB.value_or(0.0F));
    user.save();
    fmt::print("{}\n", printable(imported.summary));
    if (!imported.fitSummary.empty())
        fmt::print("{}\n", imported.fitSummary);
    fmt::print("{}{}", notesText("played otherwise than written", imported.limited),
               notesText("skipped", imported.skipped));
}

} // namespace

std::unique_ptr<Command> makeImportCommand() { return std::make_unique<ImportCommand>(); }

} // namespace quorbel
