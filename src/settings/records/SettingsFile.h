#pragma once

#include "settings/records/Persisted.h"

#include <stdexcept>
#include <string>

namespace quorbel {

/// A settings file that cannot be read at all. `what()` is one line that names the file and the
/// reason.
class SettingsFileError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Path of the user's own settings: `Quorbel/state.json` in the folder that XDG_CONFIG_HOME names
/// if that is an absolute path, else in `~/.config`.
[[nodiscard]] std::string userSettingsPath();

/// The whole text of a settings file. Never waits and never reads without end: only a regular file
/// of at most 64 MiB is taken. Throws SettingsFileError.
[[nodiscard]] std::string readSettingsText(const std::string &path);

/// The record in a settings file, read strictly; the file is left as it is. Throws
/// SettingsFileError, or DecodingError for text that is not a settings record.
[[nodiscard]] Persisted readSettingsFile(const std::string &path);

} // namespace quorbel
