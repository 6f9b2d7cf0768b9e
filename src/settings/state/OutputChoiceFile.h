#pragma once

#include "settings/records/Persisted.h"

#include <optional>
#include <string>

namespace quorbel {

/// `output-choice.json` beside the settings file: the user's choice while the settings file names
/// another device in use. The device in the settings file is the choice if this file is missing, or
/// if that device is not among the stand-ins: then another program has chosen it.
class OutputChoiceFile {
  public:
    /// Reads the file. Ignores an unreadable or invalid file; the next choice replaces it.
    explicit OutputChoiceFile(const std::string &settingsPath);

    /// The user's choice, given the device in the settings file.
    [[nodiscard]] std::optional<std::string>
    chosenUID(const std::optional<std::string> &uidInSettings) const;

    /// Stores `chosen` before the settings file is written: neither that file's current device nor
    /// its next one overrides the choice. Throws FileReplacementError.
    void prepare(const std::optional<std::string> &chosen,
                 const std::optional<std::string> &uidInSettings,
                 const std::optional<std::string> &nextUID);
    /// Removes an unneeded file after the settings file is written. Throws FileReplacementError.
    void finish(const std::optional<std::string> &chosen,
                const std::optional<std::string> &uidInSettings);

  private:
    std::string path_;
    std::optional<OutputChoice> content_;
};

} // namespace quorbel
