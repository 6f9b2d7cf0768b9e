#pragma once

#include "platform/core/Programs.h"
#include "settings/state/SideFile.h"

#include <optional>
#include <string>

namespace quorbel {

/// `programs.json` beside the settings file: the rules about the programs to process.
///
///     {"calls":"leaveAlone","others":"process",
///      "programs":[{"isMixedToStereo":false,"isProcessed":false,
///                   "program":{"applicationID":"","binary":"games","name":"","sandbox":""},
///                   "title":""}],"version":1}
///
/// Keeps unknown keys at the top, in each entry of `programs` and in its `program`.
class ProgramRulesFile {
  public:
    /// Has the rules of a missing file until `read`: processes all programs but calls.
    explicit ProgramRulesFile(const std::string &settingsPath);

    [[nodiscard]] const ProgramRules &rules() const { return rules_; }

    /// Reads the file. Returns a warning for the user if a damaged file was set aside. Throws
    /// SettingsFileError for a file that cannot be read or is of a later version, without changing
    /// it.
    std::optional<std::string> read();

    /// Reads the file without changing it. Throws SettingsFileError like `read`, and DecodingError
    /// for a damaged file.
    void peek();
    [[nodiscard]] const std::string &path() const { return file_.path(); }

    /// Replaces the rules with `next`, except those that another program has changed since the last
    /// read and `next` has not. Returns a warning if a damaged file was set aside. Throws
    /// SettingsFileError, EncodingError and FileReplacementError without changing the file.
    std::optional<std::string> write(const ProgramRules &next);

  private:
    SideFile file_;
    ProgramRules rules_;
};

} // namespace quorbel
