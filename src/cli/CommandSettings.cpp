#include "cli/CommandSettings.h"

#include "cli/CommandError.h"
#include "settings/files/SettingsFileLock.h"
#include "settings/presets/FactoryPresets.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/CodingError.h"
#include "settings/records/json/JsonLiterals.h"
#include "settings/state/SettingsMerge.h"

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

/// As it would be typed on a plain keyboard, in small letters.
std::string asTyped(const std::string &name) {
    constexpr std::string_view emDash = "—";
    std::string typed;
    for (std::size_t index = 0; index < name.size();) {
        if (name.compare(index, emDash.size(), emDash) == 0) {
            typed += '-';
            index += emDash.size();
            continue;
        }
        const char letter = name[index++];
        typed += letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return typed;
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

ChainSettings chainSettings(const Persisted &settings) {
    return {.bands = settings.bands,
            .eqGlobalGainDB = settings.eqGlobalGainDB.value_or(0.0F),
            .spatial = settings.spatial,
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
    auto chosen = std::find_if(presets.begin(), presets.end(),
                               [&](const Preset &preset) { return preset.name == name; });
    if (chosen == presets.end())
        chosen = std::find_if(presets.begin(), presets.end(), [&](const Preset &preset) {
            return asTyped(preset.name) == asTyped(name);
        });
    if (chosen == presets.end())
        throw CommandError(fmt::format("no preset is named {}; `ostrafine-cli presets` lists them",
                                       quotedText(name)));
    return *chosen;
}

void applyPreset(Persisted &settings, const std::string &name) {
    const Preset chosen = presetNamed(settings, name);
    settings.bands = chosen.bands;
    settings.spatial = chosen.spatial;
}

UserSettings::UserSettings() : settings(defaultSettings()), file_(userSettingsPath()) {
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
}

void UserSettings::save() {
    try {
        const SettingsFileLock lock(file_.path());
        const auto theirs = file_.readChange();
        file_.write(theirs ? mergedSettings(asRead_, settings, *theirs) : settings);
    } catch (const std::exception &error) {
        throw CommandError(file_.path() + ": cannot be written: " + error.what());
    }
}

} // namespace quorbel
