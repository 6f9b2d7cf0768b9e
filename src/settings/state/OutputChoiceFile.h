#pragma once

#include "settings/records/Persisted.h"

#include <optional>
#include <string>

namespace quorbel {

/// `output-choice.json` beside the settings file. It exists only while the device in use, which the
/// settings file names, is not the user's choice: without it, the device in use is the choice. The
/// same holds if the settings file names a device that is not among the stand-ins: another program
/// has changed it since.
class OutputChoiceFile {
  public:
    /// Reads the file. One that cannot be read or decoded is ignored and replaced by the next
    /// choice.
    explicit OutputChoiceFile(const std::string &settingsPath);

    /// The user's choice, given the device that the settings file names.
    [[nodiscard]] std::optional<std::string>
    chosenUID(const std::optional<std::string> &uidInSettings) const;

    /// To be called before the settings file is written: from now on the choice is `chosen`.
    /// Neither the device in the file nor its next one overrules it. Throws FileReplacementError.
    void prepare(const std::optional<std::string> &chosen,
                 const std::optional<std::string> &uidInSettings,
                 const std::optional<std::string> &nextUID);
    /// To be called after that: removes the file if it is no longer needed. Throws
    /// FileReplacementError.
    void finish(const std::optional<std::string> &chosen,
                const std::optional<std::string> &uidInSettings);

  private:
    std::string path_;
    std::optional<OutputChoice> content_;
};

} // namespace quorbel
