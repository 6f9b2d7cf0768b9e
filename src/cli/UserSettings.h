#pragma once

#include "settings/records/Persisted.h"
#include "settings/state/SharedSettingsFile.h"

namespace quorbel {

/// The user's own settings file, for a command that changes it. Where there is none yet, it begins
/// with the defaults and the program's presets. Throws CommandError for a file that is there and
/// cannot be read, so that it is never overwritten.
class UserSettings {
  public:
    UserSettings();

    Persisted settings;

    /// Replaces the file as a whole, with what another program has written since. Throws
    /// CommandError; the file is then as it was.
    void save();

  private:
    SharedSettingsFile file_;
    Persisted asRead_;
};

} // namespace quorbel
