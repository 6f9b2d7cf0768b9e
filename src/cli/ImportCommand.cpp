#include "cli/ImportCommand.h"

#include "cli/CommandError.h"
#include "cli/UserSettings.h"
#include "settings/interchange/EqualizerImport.h"
#include "settings/interchange/EqualizerText.h"
#include "settings/interchange/InterchangeError.h"
#include "settings/interchange/PresetFile.h"
#include "settings/records/json/CodingError.h"

#include <CLI/CLI.hpp>
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

bool isJson(const std::string &text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    return first != std::string::npos && text[first] == '{';
}

void printNotes(const char *title, const std::vector<LineNote> &notes) {
    if (notes.empty())
        return;
    fmt::print("{}:\n", title);
    for (const LineNote &note : notes)
        fmt::print("  line {}: {}\n", note.line, note.reason);
}

void importText(Persisted &settings, const std::string &text, const std::string &name) {
    const EqualizerImport import = importEqualizerText(text, name);
    applyImport(settings, import);
    fmt::print("{}: {} filter{}, preamp {:g} dB as the global gain\n", import.preset.name,
               import.activeFilters, import.activeFilters == 1 ? "" : "s", import.globalGainDB);
    if (import.fit)
        fmt::print("fitted onto ten bands: {:.2f} dB off on average, {:.2f} dB at most\n",
                   import.fit->rmsDB, import.fit->maximumDB);
    printNotes("played otherwise than written", import.limited);
    printNotes("skipped", import.skipped);
}

void importPreset(Persisted &settings, const std::string &text,
                  const std::optional<std::string> &name) {
    Preset preset = readPresetFile(text);
    if (name)
        preset.name = *name;
    settings.presets.push_back(preset);
    settings.activePresetID = preset.id;
    settings.activePresetName = preset.name;
    settings.bands = preset.bands;
    settings.spatial = preset.spatial;
    fmt::print("{}: {} bands\n", preset.name, preset.bands.size());
}

} // namespace

ImportCommand::ImportCommand(CLI::App &program)
    : command_(program.add_subcommand(
          "import", "Make a preset of a parametric equaliser text or a preset file, and use it")) {
    command_->add_option("--name", name_, "Name of the preset (default: the file's name)");
    command_->add_option("FILE", path_, "Text or JSON file")->required();
}

void ImportCommand::run() const {
    const std::string text = readText(path_);
    UserSettings user;
    try {
        if (isJson(text))
            importPreset(user.settings, text, name_);
        else
            importText(user.settings, text,
                       name_.value_or(std::filesystem::path(path_).stem().string()));
    } catch (const InterchangeError &error) {
        throw CommandError(fmt::format("{}: {}", path_, error.what()));
    } catch (const DecodingError &error) {
        throw CommandError(fmt::format("{}: {}", path_, error.what()));
    }
    user.save();
}

} // namespace quorbel
