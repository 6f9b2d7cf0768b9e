#include "cli/CommandSettings.h"

#include "cli/CommandError.h"
#include "settings/files/SettingsFileLock.h"
#include "settings/presets/FactoryPresets.h"
#include "settings/presets/PresetChoice.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/CodingError.h"
#include "settings/records/json/JsonLiterals.h"
#include "settings/state/SharedSettingsFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace quorbel {

namespace {

Persisted defaultSettings() {
    Persisted settings;
    settings.bands = EQBand::defaultBands();
    return settings;
}

} // namespace

Persisted loadSettings(const std::string &path) {
    const std::string file = path.empty() ? userSettingsPath() : path;
    try {
        return readSettingsFile(file);
    } catch (const SettingsFileError &error) {
        if (path.empty())
            return defaultSettings();
        throw CommandError(error.what());
    } catch (const DecodingError &error) {
        throw CommandError(file + ": " + error.what());
    }
}

PresetGains loadPresetGains(const std::string &path) {
    PresetGainsFile file(path.empty() ? userSettingsPath() : path);
    peekOrError(file);
    return file.gains;
}

ProgramRules loadProgramRules() {
    ProgramRulesFile file(userSettingsPath());
    peekOrError(file);
    return file.rules();
}

ChainSettings chainSettings(const Persisted &settings, const std::string &path,
                            const std::optional<std::string> &presetName) {
    const PresetGains gains = loadPresetGains(path);
    const auto preset =
        presetName ? std::optional(presetNamed(settings, *presetName)) : std::nullopt;
    const float gainDB = preset ? gains.of(preset->id) : gains.inUse(settings.activePresetID);
    return {.bands = preset ? preset->bands : settings.bands,
            .eqGlobalGainDB = settings.eqGlobalGainDB.value_or(0.0F),
            .presetGainDB = gainDB,
            .spatial = preset ? preset->spatial : settings.spatial,
            .mixer = settings.mixer.value_or(MixerConfig{})};
}

std::vector<Preset> availablePresets(const Persisted &settings) {
    std::vector<Preset> presets = factoryPresets();
    std::copy_if(settings.presets.begin(), settings.presets.end(), std::back_inserter(presets),
                 [](const Preset &preset) { return preset.category == Preset::Category::user; });
    return presets;
}

Preset presetNamed(const Persisted &settings, const std::string &name) {
    const std::vector<Preset> presets = availablePresets(settings);
    const Preset *chosen = presetNamed(presets, name);
    if (chosen == nullptr)
        throw CommandError(fmt::format("no preset is named {}; `ostrafine-cli presets` lists them",
                                       quotedText(name)));
    return *chosen;
}

void applyPreset(Persisted &settings, const std::string &name) {
    const Preset chosen = presetNamed(settings, name);
    settings.bands = chosen.bands;
    settings.spatial = chosen.spatial;
    settings.activePresetID = chosen.id;
}

UserSettings::UserSettings()
    : settings(defaultSettings()), file_(userSettingsPath()), gainsFile_(file_.path()) {
    try {
        if (auto record = file_.readChange())
            settings = std::move(*record);
    } catch (const SettingsFileError &error) {
        throw CommandError(error.what());
    } catch (const DecodingError &error) {
        throw CommandError(file_.path() + ": " + error.what());
    }
    settings.presets = availablePresets(settings);
    asRead_ = settings;
    peekOrError(gainsFile_);
}

void UserSettings::save() {
    try {
        // Gains first: bands without their gain would be too loud.
        static_cast<void>(gainsFile_.write());
        const SettingsFileLock lock(file_.path());
        const auto theirs = file_.readChange();
        file_.write(theirs ? mergedSettings(asRead_, settings, *theirs) : settings);
    } catch (const std::exception &error) {
        throw CommandError(file_.path() + ": cannot be written: " + error.what());
    }
}

} // namespace quorbel
