#pragma once

#include <string>

namespace quorbel {

/// Lock of one of the settings files, held while a program reads, compares and replaces it: no
/// other program of ours writes it at that time. A file lock on `<file>.lock` beside the file that
/// the path leads to; it ends with the process, however that ends.
class SettingsFileLock {
  public:
    /// Makes the folder where it is missing. Waits for another program, which takes milliseconds
    /// unless it is stopped or its disk hangs. Throws FileReplacementError.
    explicit SettingsFileLock(const std::string &settingsPath, double patienceSeconds = 1.0);
    ~SettingsFileLock();
    SettingsFileLock(const SettingsFileLock &) = delete;
    SettingsFileLock &operator=(const SettingsFileLock &) = delete;

  private:
    int file_ = -1;
};

} // namespace quorbel
