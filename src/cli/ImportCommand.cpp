#include "cli/ImportCommand.h"

#include "cli/CommandError.h"
#include "cli/PrintableText.h"
#include "cli/UserSettings.h"
#include "settings/interchange/EqualizerImport.h"
#include "settings/interchange/EqualizerText.h"
#include "settings/interchange/InterchangeError.h"
#include "settings/interchange/PresetFile.h"
#include "settings/records/json/CodingError.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace quorbel {

namespace {

std::string readText(const std::string &path) {
    std::error_code unknown;
    if (!std::filesystem::exists(path, unknown))
        throw CommandError(path + ": does not exist");
    if (!std::filesystem::is_regular_file(path, unknown))
        throw CommandError(path + ": is not a file");
    if (std::filesystem::file_size(path, unknown) > maximumEqualizerTextBytes)
        throw CommandError(fmt::format("{}: is larger than {} bytes, too large for a preset", path,
                                       maximumEqualizerTextBytes));
    std::ifstream file(path, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (file.bad() || !file.is_open())
        throw CommandError(path + ": cannot be read");
    return text;
}

std::string notesText(const char *title, const std::vector<LineNote> &notes) {
    std::string text = notes.empty() ? "" : fmt::format("{}:\n", title);
    for (const LineNote &note : notes)
        text += fmt::format("  line {}: {}\n", note.line, printable(note.reason));
    return text;
}

/// Both forms of import return the report for the user.
std::string importText(Persisted &settings, const std::string &text, const std::string &name) {
    const EqualizerImport import = importEqualizerText(text, name);
    applyImport(settings, import);
    std::string report = fmt::format("{}: {} filter{}, preamp {:g} dB as the global gain\n",
                                     printable(import.preset.name), import.takenFilters,
                                     import.takenFilters == 1 ? "" : "s", import.globalGainDB);
    if (import.fit)
        report +=
            fmt::format("fitted onto ten bands: {:.2f} dB off on average, {:.2f} dB at most\n",
                        import.fit->rmsDB, import.fit->maximumDB);
    return report + notesText("played otherwise than written", import.limited) +
           notesText("skipped", import.skipped);
}

std::string importPreset(Persisted &settings, const std::string &text,
                         const std::optional<std::string> &name) {
    const Preset preset = readPresetFile(text, name);
    settings.presets.push_back(preset);
    settings.activePresetID = preset.id;
    settings.activePresetName = preset.name;
    settings.bands = preset.bands;
    settings.spatial = preset.spatial;
    return fmt::format("{}: {} bands\n", printable(preset.name), preset.bands.size());
}

} // namespace

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
    const std::string text = readText(path_);
    UserSettings user;
    std::string report;
    try {
        report = isPresetFile(text)
                     ? importPreset(user.settings, text, name_)
                     : importText(user.settings, text,
                                  name_.value_or(std::filesystem::path(path_).stem().string()));
    } catch (const InterchangeError &error) {
        throw CommandError(fmt::format("{}: {}", path_, error.what()));
    } catch (const DecodingError &error) {
        throw CommandError(fmt::format("{}: {}", path_, error.what()));
    }
    user.save();
    fmt::print("{}", report);
}

} // namespace quorbel
