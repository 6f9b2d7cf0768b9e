#pragma once

#include "settings/records/Persisted.h"

#include <stdexcept>
#include <string>

namespace quorbel {

/// Failure to read a settings file. `what()` is one line with the file and the reason.
class SettingsFileError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Path of the user's own settings: `Quorbel/state.json` in XDG_CONFIG_HOME if that is an absolute
/// path, else in `~/.config`.
[[nodiscard]] std::string userSettingsPath();

/// Reads the whole text of a settings file. Accepts only a regular file of at most 64 MiB, so that
/// it neither blocks nor reads endlessly. Throws SettingsFileError.
[[nodiscard]] std::string readSettingsText(const std::string &path);

/// Reads the record in a settings file strictly, without changing the file. Throws
/// SettingsFileError, or DecodingError for text that is not a settings record.
[[nodiscard]] Persisted readSettingsFile(const std::string &path);

} // namespace quorbel
