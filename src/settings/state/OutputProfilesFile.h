#pragma once

#include "settings/records/OutputProfile.h"
#include "settings/state/SideFile.h"

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// `profiles.json` beside the settings file: the output profiles.
///
///     {"profiles":[{"label":"Headset","output":{"bluetooth":"music","card":"bluez_card.00_11"},
///                   "presetName":"Flat","use":"preset"},
///                  {"label":"","output":{},"use":"flat"}],"version":1}
///
/// Keeps a profile's keys that are unknown to this version.
class OutputProfilesFile {
  public:
    /// Has no profiles until `read`.
    explicit OutputProfilesFile(const std::string &settingsPath);

    [[nodiscard]] const std::vector<OutputProfile> &profiles() const { return profiles_; }

    /// Reads the file; a missing one has no profiles. Returns a warning for the user if a damaged
    /// file was set aside. Throws SettingsFileError for a file that cannot be read or is of a later
    /// version, without changing it.
    std::optional<std::string> read();

    /// Reads the file without changing it. Throws SettingsFileError like `read`, and DecodingError
    /// for a damaged file.
    void peek();
    [[nodiscard]] const std::string &path() const { return file_.path(); }

    /// Merges into `ours` the profiles that another program has changed since the last read and
    /// `ours` has not. Returns true if the file has changed; a missing file has not. Throws like
    /// `peek`.
    bool takeChanges(std::vector<OutputProfile> &ours);

    /// Replaces the profiles with `next`, except those that another program has changed since the
    /// last read and `next` has not. Returns a warning if a damaged file was set aside. Throws
    /// SettingsFileError, EncodingError and FileReplacementError without changing the file.
    std::optional<std::string> write(const std::vector<OutputProfile> &next);

  private:
    SideFile file_;
    std::vector<OutputProfile> profiles_;
};

} // namespace quorbel
