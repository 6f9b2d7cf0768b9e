#pragma once

namespace quorbel {

/// Lets one program at a time process a user's sound: two would take each other's streams. It is a
/// file lock in the user's runtime folder, so it ends with the process in any case.
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
