#pragma once

#include "cli/CommandError.h"
#include "engine/ChainSettings.h"
#include "platform/core/Programs.h"
#include "settings/records/Persisted.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/CodingError.h"
#include "settings/state/PresetGainsFile.h"
#include "settings/state/ProgramRulesFile.h"
#include "settings/state/SharedSettingsFile.h"

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// Reads the file at `path`, or the user's own settings file if `path` is empty. Returns the
/// defaults if the user's file cannot be read. Never changes the file. Throws CommandError with the
/// file and the position in it if it is not a settings file.
[[nodiscard]] Persisted loadSettings(const std::string &path);

/// Reads the gains of presets from the file beside the settings file; a missing file has none.
/// Throws CommandError for an unreadable or invalid file: presets without their gain would be too
/// loud.
[[nodiscard]] PresetGains loadPresetGains(const std::string &path);

/// Reads the user's rules about the programs to process. Throws CommandError for an unreadable or
/// invalid file, because a call could be processed.
[[nodiscard]] ProgramRules loadProgramRules();

/// Returns the settings of the chain, with `presetName` in place of the active preset if given. A
/// missing mixer or gain is the default. `path` is the source of `settings`, see `loadSettings`.
/// Throws like `loadPresetGains` and `presetNamed`.
[[nodiscard]] ChainSettings chainSettings(const Persisted &settings, const std::string &path,
                                          const std::optional<std::string> &presetName = {});

/// Returns the factory presets, then the user's.
[[nodiscard]] std::vector<Preset> availablePresets(const Persisted &settings);

/// Returns the available preset of this name: an exact match, else one that ignores case and the
/// kind of dash. Throws CommandError for an unknown name.
[[nodiscard]] Preset presetNamed(const Persisted &settings, const std::string &name);

/// Activates the preset of this name: replaces only the bands and the spatial settings. Throws like
/// `presetNamed`.
void applyPreset(Persisted &settings, const std::string &name);

/// The user's own settings file, for a command that changes it. A missing file starts with the
/// defaults and the factory presets. Throws CommandError for an unreadable or invalid file, so that
/// it is never overwritten.
class UserSettings {
  public:
    UserSettings();

    Persisted settings;
    /// The gains of presets, as read; callers may change them.
    [[nodiscard]] PresetGains &gains() { return gainsFile_.gains; }

    /// Replaces the file atomically, merged with another program's changes since. On CommandError
    /// the settings file is unchanged.
    void save();

  private:
    SharedSettingsFile file_;
    PresetGainsFile gainsFile_;
    Persisted asRead_;
};

/// Reads a file beside the settings file without changing it. Throws CommandError if it is
/// unreadable or invalid. `File` has `peek` and `path`, like PresetGainsFile.
template <class File> void peekOrError(File &file) {
    try {
        file.peek();
    } catch (const SettingsFileError &error) {
        throw CommandError(error.what());
    } catch (const DecodingError &error) {
        throw CommandError(file.path() + ": " + error.what());
    }
}

} // namespace quorbel
