#pragma once

#include "settings/records/Uuid.h"
#include "settings/state/SideFile.h"

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// `favourite-presets.json` beside the settings file: the ids of the user's favourites among the
/// presets.
///
///     {"favourites":["0AF4AEBF-A952-50FE-B0E2-06CC11DE9AA4"],"version":1}
///
/// Ids of missing presets are kept: their preset may return by undo or with another machine's
/// settings.
class FavouritePresetsFile {
  public:
    /// Without favourites until `read`.
    explicit FavouritePresetsFile(const std::string &settingsPath);

    /// The favourites in the file. None where it is missing or damaged; it is left as it is.
    [[nodiscard]] static std::vector<Uuid> idsIn(const std::string &settingsPath);

    [[nodiscard]] const std::vector<Uuid> &ids() const { return ids_; }

    /// Reads the file; one that is missing has no favourites. Returns a warning for the user where
    /// a damaged file had to be set aside. Throws SettingsFileError for a file that cannot be read,
    /// or was written by a later version: it is left as it is.
    std::optional<std::string> read();

    /// Replaces the favourites with `next`, but for those that another program has added or removed
    /// since the last reading. Returns a warning if a damaged file had to be set aside. Throws
    /// SettingsFileError and FileReplacementError; the file is then as it was.
    std::optional<std::string> write(const std::vector<Uuid> &next);

  private:
    SideFile file_;
    std::vector<Uuid> ids_;
};

} // namespace quorbel
