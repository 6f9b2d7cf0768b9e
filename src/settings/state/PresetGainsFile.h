#pragma once

#include "settings/records/Uuid.h"
#include "settings/state/SideFile.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace quorbel {

/// Gains of presets in dB, keyed by the text of the preset's id.
struct PresetGains {
    /// Each preset's own gain; 0 if it is not listed.
    std::map<std::string, float> ofPresets;
    /// The active preset and the current gain, if that differs from the preset's own.
    std::optional<std::pair<std::string, float>> applied;

    [[nodiscard]] float of(const Uuid &preset) const;
    void set(const Uuid &preset, float gainDB);
    /// The current gain while `active` is the active preset.
    [[nodiscard]] float inUse(const std::optional<Uuid> &active) const;

    friend bool operator==(const PresetGains &, const PresetGains &) = default;
};

/// `preset-gains.json` beside the settings file: the presets' gains, which a Preset cannot hold.
///
///     {"applied":{"gainDB":-3,"preset":"0AF4AEBF-A952-50FE-B0E2-06CC11DE9AA4"},
///      "gainsDB":{"6D8FBD3A-0D6D-4C44-8A0C-2F2F8E8DFB6E":-6.2},"version":1}
///
/// Keeps gains of missing presets, which may return by undo or with another machine's settings.
class PresetGainsFile {
  public:
    /// Has no gains until `read`.
    explicit PresetGainsFile(const std::string &settingsPath);

    /// Callers may change them before `write`.
    PresetGains gains;

    /// Takes the gains of the file, except those changed here since its last read or write. A
    /// missing file has none. Returns a warning for the user if a damaged file was set aside.
    /// Throws SettingsFileError for a file that cannot be read or is of a later version, without
    /// changing it.
    std::optional<std::string> read();

    /// Replaces `gains` with those of the file without changing it. Throws SettingsFileError like
    /// `read`, and DecodingError for a damaged file.
    void peek();
    [[nodiscard]] const std::string &path() const { return file_.path(); }

    /// Writes `gains` if they have changed, merged with another program's changes since. Returns a
    /// warning if a damaged file was set aside. Throws SettingsFileError and FileReplacementError
    /// without changing the file.
    std::optional<std::string> write();

  private:
    SideFile file_;
    PresetGains seen_; ///< in the file at its last read or write
};

} // namespace quorbel
