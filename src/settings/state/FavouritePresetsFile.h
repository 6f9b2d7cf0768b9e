#pragma once

#include "settings/records/Uuid.h"
#include "settings/state/SideFile.h"

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// `favourite-presets.json` beside the settings file: the ids of the user's favourite presets.
///
///     {"favourites":["0AF4AEBF-A952-50FE-B0E2-06CC11DE9AA4"],"version":1}
///
/// Keeps ids of missing presets, which may return by undo or with another machine's settings.
class FavouritePresetsFile {
  public:
    /// Has no favourites until `read`.
    explicit FavouritePresetsFile(const std::string &settingsPath);

    /// Reads the favourites without changing the file; none if it is missing or damaged.
    [[nodiscard]] static std::vector<Uuid> idsIn(const std::string &settingsPath);

    [[nodiscard]] const std::vector<Uuid> &ids() const { return ids_; }

    /// Reads the file; a missing one has no favourites. Returns a warning for the user if a damaged
    /// file was set aside. Throws SettingsFileError for a file that cannot be read or is of a later
    /// version, without changing it.
    std::optional<std::string> read();

    /// Replaces the favourites with `next`, except those that another program has added or removed
    /// since the last read. Returns a warning if a damaged file was set aside. Throws
    /// SettingsFileError and FileReplacementError without changing the file.
    std::optional<std::string> write(const std::vector<Uuid> &next);

  private:
    SideFile file_;
    std::vector<Uuid> ids_;
};

} // namespace quorbel
