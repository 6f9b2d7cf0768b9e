#pragma once

#include "settings/records/OutputProfile.h"
#include "settings/state/SideFile.h"

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// `profiles.json` beside the settings file: the profiles of the outputs.
///
///     {"profiles":[{"label":"Headset","output":{"bluetooth":"music","card":"bluez_card.00_11"},
///                   "presetName":"Flat","use":"preset"},
///                  {"label":"","output":{},"use":"flat"}],"version":1}
///
/// Keys of a profile that this version does not know are kept too.
class OutputProfilesFile {
  public:
    /// Without profiles until `read`.
    explicit OutputProfilesFile(const std::string &settingsPath);

    [[nodiscard]] const std::vector<OutputProfile> &profiles() const { return profiles_; }

    /// Reads the file; one that is missing has no profiles. Returns a warning for the user where a
    /// damaged file had to be set aside. Throws SettingsFileError for a file that cannot be read,
    /// or was written by a later version: it is left as it is.
    std::optional<std::string> read();

    /// Takes the profiles of the file, which is left as it is. Throws SettingsFileError as `read`,
    /// and DecodingError for a damaged file.
    void peek();
    [[nodiscard]] const std::string &path() const { return file_.path(); }

    /// Takes over into `ours` the profiles that another program has changed since the last reading
    /// and `ours` has not. Returns whether there are any; a missing file has none. As `peek`.
    bool takeChanges(std::vector<OutputProfile> &ours);

    /// Replaces the profiles with `next`, but for those that another program has changed since the
    /// last reading and `next` has not. Returns a warning if a damaged file had to be set aside.
    /// Throws SettingsFileError, EncodingError and FileReplacementError; the file is then as it
    /// was.
    std::optional<std::string> write(const std::vector<OutputProfile> &next);

  private:
    SideFile file_;
    std::vector<OutputProfile> profiles_;
};

} // namespace quorbel
