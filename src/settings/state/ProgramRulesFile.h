#pragma once

#include "platform/core/Programs.h"
#include "settings/state/SideFile.h"

#include <optional>
#include <string>

namespace quorbel {

/// `programs.json` beside the settings file: which programs are processed.
///
///     {"calls":"leaveAlone","others":"process",
///      "programs":[{"isMixedToStereo":false,"isProcessed":false,
///                   "program":{"applicationID":"","binary":"games","name":"","sandbox":""},
///                   "title":""}],"version":1}
///
/// Keys that this version does not know are kept: at the top, in each entry of `programs` and in
/// its `program`.
class ProgramRulesFile {
  public:
    /// The rules of a missing file until `read`: all but calls are processed.
    explicit ProgramRulesFile(const std::string &settingsPath);

    [[nodiscard]] const ProgramRules &rules() const { return rules_; }

    /// Reads the file. Returns a warning for the user if a damaged file had to be set aside. Throws
    /// SettingsFileError for a file that cannot be read or that a later version wrote: it is left
    /// as it is.
    std::optional<std::string> read();

    /// Takes the rules of the file, which is left as it is. Throws SettingsFileError as `read`, and
    /// DecodingError for a damaged file.
    void peek();
    [[nodiscard]] const std::string &path() const { return file_.path(); }

    /// Replaces the rules by `next`, except those that another program has changed since the last
    /// reading and `next` has not. Returns a warning if a damaged file had to be set aside. Throws
    /// SettingsFileError, EncodingError and FileReplacementError; the file is then as it was.
    std::optional<std::string> write(const ProgramRules &next);

  private:
    SideFile file_;
    ProgramRules rules_;
};

} // namespace quorbel
