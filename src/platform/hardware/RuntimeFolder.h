#pragma once

namespace quorbel {

/// Opens the program's folder inside the user's runtime folder and makes it if it is missing.
/// Returns a descriptor, which the caller closes. Returns -1 without a runtime folder, or if ours
/// is a link, another user's, or open to others.
int openRuntimeFolder();

/// Opens a file in `folder` with `flags` of open(2); neither follows links nor blocks.
/// Returns -1 unless it is a regular file of this user. A new file is readable by this user only.
int openRuntimeFile(int folder, const char *name, int flags);

/// Lets one process at a time handle a user's sound: two would take each other's streams. A file
/// lock in the user's runtime folder: the kernel releases it when the process ends.
class InstanceLock {
  public:
    /// Tries to take the lock; without a runtime folder it always succeeds.
    InstanceLock();
    ~InstanceLock();
    InstanceLock(const InstanceLock &) = delete;
    InstanceLock &operator=(const InstanceLock &) = delete;

    /// False if another process holds it.
    [[nodiscard]] bool isHeld() const { return isHeld_; }

  private:
    int file_ = -1;
    bool isHeld_ = true;
};

} // namespace quorbel
