#include "ui/model/PresetExchange.h"

#include "settings/interchange/EqualizerImport.h"
#include "settings/interchange/EqualizerText.h"
#include "settings/interchange/PresetFile.h"
#include "settings/records/json/CodingError.h"
#include "settings/state/FileReplacement.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace quorbel {

namespace {

std::string readText(const std::string &path) {
    const std::size_t maximumBytes = std::max(maximumEqualizerTextBytes, maximumPresetFileBytes);
    std::error_code unknown;
    if (!std::filesystem::exists(path, unknown))
        throw PresetExchangeError("the file does not exist");
    if (!std::filesystem::is_regular_file(path, unknown))
        throw PresetExchangeError("not a file");
    if (std::filesystem::file_size(path, unknown) > maximumBytes)
        throw PresetExchangeError(
            fmt::format("larger than {} bytes, too large for a preset", maximumBytes));
    std::ifstream file(path, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (file.bad() || !file.is_open())
        throw PresetExchangeError("the file cannot be read");
    return text;
}

ImportedPreset fromText(const std::string &text, const std::string &name) {
    EqualizerImport import = importEqualizerText(text, name);
    std::string summary = fmt::format(
        "{}: {} filter{}, preamp {:g} dB as the global gain", import.preset.name,
        import.takenFilters, import.takenFilters == 1 ? "" : "s", import.globalGainDB + 0.0F);
    if (import.fit)
        summary += fmt::format(", fitted onto ten bands: {:.2f} dB off on average, {:.2f} at most",
                               import.fit->rmsDB, import.fit->maximumDB);
    return {.preset = std::move(import.preset),
            .globalGainDB = import.globalGainDB,
            .summary = std::move(summary),
            .skipped = std::move(import.skipped),
            .limited = std::move(import.limited)};
}

ImportedPreset fromPresetFile(const std::string &text) {
    ImportedPreset imported;
    imported.preset = readPresetFile(text);
    imported.summary =
        fmt::format("{}: {} bands", imported.preset.name, imported.preset.bands.size());
    return imported;
}

} // namespace

ImportedPreset readPreset(const std::string &path) {
    const std::filesystem::path file(path);
    try {
        const std::string text = readText(path);
        return isPresetFile(text) ? fromPresetFile(text) : fromText(text, file.stem().string());
    } catch (const std::exception &error) {
        throw PresetExchangeError(file.filename().string() + ": " + error.what());
    }
}

void writePreset(const std::string &path, const Preset &preset, float globalGainDB) {
    const std::filesystem::path file(path);
    try {
        replaceFile(path, file.extension() == ".json"
                              ? writePresetFile(preset)
                              : writeEqualizerText(preset.bands, globalGainDB));
    } catch (const std::exception &error) {
        throw PresetExchangeError(file.filename().string() + ": " + error.what());
    }
}

} // namespace quorbel
