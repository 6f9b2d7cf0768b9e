#pragma once

#include <cstdint>

namespace quorbel {

/// Has the disk write a growing file while the rest of it is still being made, so that the end need
/// not wait for all of it. What is on the disk leaves the memory: hours of sound would push
/// everything else out of it.
class WriteBehind {
  public:
    explicit WriteBehind(int descriptor) : descriptor_(descriptor) {}

    /// The file's next `bytes` have been handed to the system. Returns 0, or the errno with which
    /// an earlier part did not reach the disk; file systems that cannot do this are let be.
    int wrote(std::uint64_t bytes) noexcept;

  private:
    int descriptor_;
    std::uint64_t written_ = 0; ///< so far the disk has it
    std::uint64_t started_ = 0; ///< so far it has been asked to
    std::uint64_t handed_ = 0;  ///< so far the system has it
};

} // namespace quorbel
