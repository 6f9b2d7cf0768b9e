#pragma once

#include "settings/records/Persisted.h"

#include <optional>
#include <string>

namespace quorbel {

/// The settings file as one of several programs that write it has seen it: tells what others have
/// written since. A writer holds a SettingsFileLock from before `readChange` until after `write`,
/// and so overwrites nothing unseen.
class SharedSettingsFile {
  public:
    explicit SharedSettingsFile(std::string path) : path_(std::move(path)) {}

    [[nodiscard]] const std::string &path() const { return path_; }

    /// The record in the file; nothing where there is no file, or where it holds what was read or
    /// written here last. Throws SettingsFileError for a file that is there and cannot be read, and
    /// DecodingError for text that is not a settings record: both count as unseen.
    [[nodiscard]] std::optional<Persisted> readChange();

    /// Replaces the file. Throws EncodingError or FileReplacementError; the file is then as it was.
    void write(const Persisted &record);

  private:
    std::string path_;
    std::optional<std::string> seenText_;
};

} // namespace quorbel
