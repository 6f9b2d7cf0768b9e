#include "cli/UserSettings.h"

#include "cli/CommandError.h"
#include "cli/PresetChoice.h"
#include "settings/files/SettingsFileLock.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/CodingError.h"
#include "settings/state/SettingsMerge.h"

namespace quorbel {

UserSettings::UserSettings() : file_(userSettingsPath()) {
    settings.bands = EQBand::defaultBands();
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
