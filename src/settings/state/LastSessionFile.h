#pragma once

#include "settings/state/SideFile.h"

#include <optional>
#include <string>

namespace quorbel {

/// Facts that one run of the window's program leaves for the next.
struct LastSession {
    bool isProcessing = false; ///< processing is wanted: it runs, or returns by itself
    /// Last answer of the desktop's portal. Meaningless without a sandbox: the entry in the
    /// autostart folder decides there.
    bool startsAtLogin = false;

    bool operator==(const LastSession &) const = default;
};

/// `last-session.json` beside the settings file. Only the program with the window writes it.
///
///     {"processing":true,"startsAtLogin":false,"version":1}
class LastSessionFile {
  public:
    /// With the default values until `read`.
    explicit LastSessionFile(const std::string &settingsPath);

    [[nodiscard]] const LastSession &content() const { return content_; }

    /// Reads the file; a missing one has the default values. Returns a warning for the user where a
    /// damaged file had to be set aside. Throws SettingsFileError for a file that cannot be read,
    /// or was written by a later version: it is left as it is.
    std::optional<std::string> read();

    /// Replaces the content. Returns a warning if a damaged file had to be set aside. Throws
    /// SettingsFileError and FileReplacementError; the file is then as it was.
    std::optional<std::string> write(const LastSession &next);

  private:
    SideFile file_;
    LastSession content_;
};

} // namespace quorbel
