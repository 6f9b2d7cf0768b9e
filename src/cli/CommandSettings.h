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

/// The settings that a command starts from. They come from the file at `path`; if that is empty,
/// from the user's own settings file; if that cannot be read, they are the defaults. The file is
/// left as it is. Throws CommandError, naming the file and the place in it, for one that is not a
/// settings file.
[[nodiscard]] Persisted loadSettings(const std::string &path);

/// The gains of presets, from the file beside that one; a missing file has none. Throws
/// CommandError for a file that cannot be read or decoded, because presets without their gain would
/// be too loud.
[[nodiscard]] PresetGains loadPresetGains(const std::string &path);

/// Which programs are processed, from the user's own file. Throws CommandError for a file that
/// cannot be read or decoded, because a call could be processed.
[[nodiscard]] ProgramRules loadProgramRules();

/// The part of the settings that decides the sound, with the preset of this name in place of the
/// active one if there is a name. A missing mixer or gain is the default. `path` is what `settings`
/// were loaded from. Throws as `loadPresetGains` and `presetNamed`.
[[nodiscard]] ChainSettings chainSettings(const Persisted &settings, const std::string &path,
                                          const std::optional<std::string> &presetName = {});

/// The presets that a user with these settings has: the program's own, then the user's.
[[nodiscard]] std::vector<Preset> availablePresets(const Persisted &settings);

/// The one of them with this name. Where no name is equal, capitals and the kind of dash do not
/// count. Throws CommandError for a name that no preset has.
[[nodiscard]] Preset presetNamed(const Persisted &settings, const std::string &name);

/// Makes the preset of this name the active one: replaces the bands and spatial settings with its
/// own; everything else stays. Throws as `presetNamed`.
void applyPreset(Persisted &settings, const std::string &name);

/// The user's own settings file, for a command that changes it. Where there is none yet, it begins
/// with the defaults and the program's presets. Throws CommandError for a file that is there and
/// cannot be read, so that it is never overwritten.
class UserSettings {
  public:
    UserSettings();

    Persisted settings;
    /// The gains of presets, as read; to be changed as needed.
    [[nodiscard]] PresetGains &gains() { return gainsFile_.gains; }

    /// Replaces the file as a whole and keeps another program's changes since. Throws CommandError;
    /// the file is then as it was.
    void save();

  private:
    SharedSettingsFile file_;
    PresetGainsFile gainsFile_;
    Persisted asRead_;
};

/// Reads a file beside the settings file, which is left as it is. Throws CommandError for one that
/// cannot be read or decoded. `File` has `peek` and `path`, as PresetGainsFile has.
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
