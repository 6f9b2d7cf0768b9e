#pragma once

namespace quorbel {

/// One program at a time processes a user's sound: two would take each other's streams. The lock is
/// a file lock in the user's runtime folder, so it goes with the process however that ends.
class InstanceLock {
  public:
    /// Tries to take it; without a runtime folder there is nothing to keep apart and it is taken.
    InstanceLock();
    ~InstanceLock();
    InstanceLock(const InstanceLock &) = delete;
    InstanceLock &operator=(const InstanceLock &) = delete;

    /// False if another process has it.
    [[nodiscard]] bool isHeld() const { return isHeld_; }

  private:
    int file_ = -1;
    bool isHeld_ = true;
};

} // namespace quorbel
