#pragma once

#include <string>

namespace quorbel {

/// Keeps our other programs from writing a settings file while this one reads, compares and
/// replaces it. A file lock on `<file>.lock` beside the file that the path leads to; the system
/// releases it at the process's end, even after a crash.
class SettingsFileLock {
  public:
    /// Creates a missing folder. Waits for another program, which takes milliseconds unless that
    /// program is stopped or its disk hangs. Throws FileReplacementError.
    explicit SettingsFileLock(const std::string &settingsPath, double patienceSeconds = 1.0);
    ~SettingsFileLock();
    SettingsFileLock(const SettingsFileLock &) = delete;
    SettingsFileLock &operator=(const SettingsFileLock &) = delete;

  private:
    int file_ = -1;
};

} // namespace quorbel
