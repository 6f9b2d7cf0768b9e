#pragma once

#include "settings/records/Uuid.h"
#include "settings/state/SideFile.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace quorbel {

/// The gains that belong to presets, in dB. Presets are keyed by the text of their id.
struct PresetGains {
    /// The gain that comes with a preset when it is applied; 0 for one that is not listed.
    std::map<std::string, float> ofPresets;
    /// The gain in use and the active preset, whose own gain the user may have changed since.
    std::optional<std::pair<std::string, float>> applied;

    [[nodiscard]] float of(const Uuid &preset) const;
    void set(const Uuid &preset, float gainDB);
    /// The gain in use while `active` is the active preset.
    [[nodiscard]] float inUse(const std::optional<Uuid> &active) const;

    friend bool operator==(const PresetGains &, const PresetGains &) = default;
};

/// `preset-gains.json` beside the settings file: the gains that belong to presets, which their
/// records have no place for.
///
///     {"applied":{"gainDB":-3,"preset":"0AF4AEBF-A952-50FE-B0E2-06CC11DE9AA4"},
///      "gainsDB":{"6D8FBD3A-0D6D-4C44-8A0C-2F2F8E8DFB6E":-6.2},"version":1}
///
/// Gains of missing presets are kept: their preset may return by undo or with another machine's
/// settings.
class PresetGainsFile {
  public:
    /// Without gains until `read`.
    explicit PresetGainsFile(const std::string &settingsPath);

    /// To be changed as needed, then written.
    PresetGains gains;

    /// Takes the gains of the file, but for those changed here since it was last read or written.
    /// A missing file has none. Returns a warning for the user if a damaged file had to be set
    /// aside. Throws SettingsFileError for a file that cannot be read or that a later version
    /// wrote: it is left as it is.
    std::optional<std::string> read();

    /// Replaces `gains` with those of the file, which is left as it is. Throws SettingsFileError as
    /// `read`, and DecodingError for a damaged file.
    void peek();
    [[nodiscard]] const std::string &path() const { return file_.path(); }

    /// Writes `gains`, unless they are those of the file as last seen, and takes over what another
    /// program has changed since. Returns a warning if a damaged file had to be set aside. Throws
    /// SettingsFileError and FileReplacementError; the file is then as it was.
    std::optional<std::string> write();

  private:
    SideFile file_;
    PresetGains seen_; ///< in the file when it was last read or written
};

} // namespace quorbel
