#pragma once

#include "settings/records/Persisted.h"

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// The settings file from the view of one of several programs that write it: detects the changes of
/// others. A writer holds a SettingsFileLock from before `readChange` until after `write`, and so
/// overwrites nothing unseen.
class SharedSettingsFile {
  public:
    explicit SharedSettingsFile(std::string path) : path_(std::move(path)) {}

    [[nodiscard]] const std::string &path() const { return path_; }

    /// The record in the file; nothing without a file, or if its text is the one read or written
    /// here last. Throws SettingsFileError for a file that is there and cannot be read, and
    /// DecodingError for text that is not a settings record: both count as unseen.
    [[nodiscard]] std::optional<Persisted> readChange();

    /// Replaces the file. Throws EncodingError or FileReplacementError; the file is then as it was.
    void write(const Persisted &record);

  private:
    std::string path_;
    std::optional<std::string> seenText_;
};

/// Merges two sets of changes of the same settings: a field that differs between `base` and `ours`
/// is taken from `ours`, any other from `theirs`. Presets are merged one by one, by their ids.
/// Optional fields that `theirs` lacks are ours.
[[nodiscard]] Persisted mergedSettings(const Persisted &base, const Persisted &ours,
                                       const Persisted &theirs);

/// The same for a list of presets. A preset that one side has deleted and the other has changed is
/// kept. The order is theirs where both have changed the list, with our new ones at the end.
[[nodiscard]] std::vector<Preset> mergedPresets(const std::vector<Preset> &base,
                                                const std::vector<Preset> &ours,
                                                const std::vector<Preset> &theirs);

} // namespace quorbel
