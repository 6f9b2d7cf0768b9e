#pragma once

#include "settings/records/Persisted.h"

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// Detects other programs' changes of the shared settings file. A writer holds a SettingsFileLock
/// from before `readChange` until after `write`, so that it overwrites no unseen change.
class SharedSettingsFile {
  public:
    explicit SharedSettingsFile(std::string path) : path_(std::move(path)) {}

    [[nodiscard]] const std::string &path() const { return path_; }

    /// The record in the file; none if there is no file or its text is the last one read or written
    /// here. Throws SettingsFileError for an existing file that cannot be read, and DecodingError
    /// for text that is not a settings record; both count as unseen.
    [[nodiscard]] std::optional<Persisted> readChange();

    /// Throws EncodingError or FileReplacementError without changing the file.
    void write(const Persisted &record);

  private:
    std::string path_;
    std::optional<std::string> seenText_;
};

/// Merges two sets of changes since `base`: takes a field from `ours` if it differs from `base`,
/// else from `theirs`. Merges presets one by one, by their ids. Takes optional fields that `theirs`
/// lacks from `ours`.
[[nodiscard]] Persisted mergedSettings(const Persisted &base, const Persisted &ours,
                                       const Persisted &theirs);

/// Merges two lists of presets. Keeps a preset that one side has deleted and the other has changed.
/// If both have changed the list, the order is theirs, with our new presets at the end.
[[nodiscard]] std::vector<Preset> mergedPresets(const std::vector<Preset> &base,
                                                const std::vector<Preset> &ours,
                                                const std::vector<Preset> &theirs);

} // namespace quorbel
