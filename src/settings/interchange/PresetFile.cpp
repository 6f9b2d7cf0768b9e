#include "settings/interchange/PresetFile.h"

#include "platform/core/Trimmed.h"
#include "settings/files/FileReplacement.h"
#include "settings/files/TextFile.h"
#include "settings/interchange/EqualizerImport.h"
#include "settings/interchange/EqualizerText.h"
#include "settings/records/json/SettingsCoding.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace quorbel {

namespace {

std::string readImport(const std::string &path) {
    constexpr std::size_t maximumBytes =
        std::max(maximumEqualizerTextBytes, maximumPresetFileBytes);
    try {
        return readTextFile(path, maximumBytes);
    } catch (const TextFileError &error) {
        switch (error.reason()) {
        case TextFileError::Reason::missing:
            throw InterchangeError(0, "the file does not exist");
        case TextFileError::Reason::directory:
        case TextFileError::Reason::irregular:
            throw InterchangeError(0, "not a file");
        case TextFileError::Reason::tooLarge:
            throw InterchangeError(
                0, fmt::format("larger than {} bytes, too large for a preset", maximumBytes));
        case TextFileError::Reason::system:
            break;
        }
        throw InterchangeError(0, "the file cannot be read");
    }
}

ImportedPreset fromText(const std::string &text, const std::string &name) {
    EqualizerImport import = importEqualizerText(text, name);
    ImportedPreset imported;
    imported.summary = fmt::format(
        "{}: {} filter{}, {}", import.preset.name, import.takenFilters,
        import.takenFilters == 1 ? "" : "s",
        import.gainDB ? fmt::format("preamp {:g} dB", *import.gainDB + 0.0F) : "no preamp");
    if (import.fit)
        imported.fitSummary =
            fmt::format("fitted onto ten bands: {:.2f} dB off on average, {:.2f} dB at most",
                        import.fit->rmsDB, import.fit->maximumDB);
    imported.preset = std::move(import.preset);
    imported.gainDB = import.gainDB;
    imported.skipped = std::move(import.skipped);
    imported.limited = std::move(import.limited);
    return imported;
}

ImportedPreset fromPresetFile(const std::string &text, const std::optional<std::string> &name) {
    ImportedPreset imported;
    imported.preset = readPresetFile(text, name);
    imported.summary =
        fmt::format("{}: {} bands", imported.preset.name, imported.preset.bands.size());
    return imported;
}

} // namespace

ImportedPreset readPreset(const std::string &path, const std::optional<std::string> &name) {
    const std::string text = readImport(path);
    return isPresetFile(text)
               ? fromPresetFile(text, name)
               : fromText(text, name.value_or(std::filesystem::path(path).stem().string()));
}

void adoptPreset(Persisted &settings, const Preset &preset) {
    settings.bands = preset.bands;
    settings.spatial = preset.spatial;
    settings.presets.push_back(preset);
    settings.activePresetID = preset.id;
    settings.activePresetName = preset.name;
}

std::string writePreset(const std::string &path, const Preset &preset, float gainDB) {
    if (std::filesystem::path(path).extension() != ".json") {
        replaceFile(path, writeEqualizerText(preset.bands, gainDB));
        return {};
    }
    replaceFile(path, writePresetFile(preset));
    if (gainDB == 0.0F)
        return {};
    return fmt::format(
        "without its gain of {:+.1f} dB, for which only an equalizer text (.txt) has a place",
        gainDB);
}

std::string writePresetFile(const Preset &preset) { return encodeRecord(preset) + '\n'; }

bool isPresetFile(std::string_view text) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    return trimmed(text).starts_with('{');
}

Preset readPresetFile(std::string_view json, const std::optional<std::string> &name) {
    if (json.size() > maximumPresetFileBytes)
        throw InterchangeError(0, "the file is larger than 1 MiB, not a preset");
    Preset preset = decodeRecord<Preset>(json);
    if (name)
        preset.name = *name;
    if (trimmed(preset.name).empty())
        throw InterchangeError(0, "the preset needs a name");
    preset.id = Uuid::random();
    preset.category = Preset::Category::user;
    fillWithFlatBands(preset.bands);
    return preset;
}

} // namespace quorbel
