#include "cli/UserSettings.h"

#include "cli/CommandError.h"
#include "cli/PresetChoice.h"
#include "cli/SettingsSource.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/SettingsCoding.h"
#include "settings/state/FileReplacement.h"

#include <filesystem>

namespace quorbel {

UserSettings::UserSettings() : path_(userSettingsPath()) {
    std::error_code unknown;
    const bool exists = std::filesystem::symlink_status(path_, unknown).type() !=
                        std::filesystem::file_type::not_found;
    // Named, the file must be readable; unnamed, the defaults would take its place.
    settings = loadSettings(exists ? path_ : "");
    settings.presets = availablePresets(settings);
}

void UserSettings::save() const {
    try {
        replaceFile(path_, encodeRecord(settings));
    } catch (const FileReplacementError &error) {
        throw CommandError(path_ + ": cannot be written: " + error.what());
    }
}

} // namespace quorbel
