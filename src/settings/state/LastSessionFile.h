#pragma once

#include "settings/state/SideFile.h"

#include <optional>
#include <string>

namespace quorbel {

/// State that one run of the window's program saves for the next.
struct LastSession {
    bool isProcessing = false; ///< processing is wanted: it runs, or resumes by itself
    /// Last answer of the desktop portal, used only in a sandbox. Elsewhere the entry in the
    /// autostart folder decides.
    bool startsAtLogin = false;

    bool operator==(const LastSession &) const = default;
};

/// `last-session.json` beside the settings file. Only the program with the window writes it.
///
///     {"processing":true,"startsAtLogin":false,"version":1}
class LastSessionFile {
  public:
    /// Has the default values until `read`.
    explicit LastSessionFile(const std::string &settingsPath);

    [[nodiscard]] const LastSession &content() const { return content_; }

    /// Reads the file; a missing one has the default values. Returns a warning for the user if a
    /// damaged file was set aside. Throws SettingsFileError for a file that cannot be read or is of
    /// a later version, without changing it.
    std::optional<std::string> read();

    /// Replaces the content. Returns a warning if a damaged file was set aside. Throws
    /// SettingsFileError and FileReplacementError without changing the file.
    std::optional<std::string> write(const LastSession &next);

  private:
    SideFile file_;
    LastSession content_;
};

} // namespace quorbel
