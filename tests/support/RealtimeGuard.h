#pragma once

#include <cstdint>
#include <ostream>

namespace quorbel::testing {

/// Operations of the current thread that are forbidden on audio threads.
struct RealtimeViolations {
    std::uint64_t allocations = 0; ///< by malloc and its callers, including new
    std::uint64_t frees = 0;
    std::uint64_t foreignLocks = 0; ///< mutexes other than ShortLock, and reader-writer locks

    friend bool operator==(const RealtimeViolations &, const RealtimeViolations &) = default;
    friend std::ostream &operator<<(std::ostream &out, const RealtimeViolations &violations) {
        return out << violations.allocations << " allocations, " << violations.frees << " frees, "
                   << violations.foreignLocks << " foreign locks";
    }
};

/// Counts on the constructing thread, from construction on.
///
/// Works by replacing malloc and pthread's lock functions for the whole program. Built with
/// sanitizers, which have replaced them already, it counts memory through their hooks and no locks.
class RealtimeGuard {
  public:
    RealtimeGuard();
    [[nodiscard]] RealtimeViolations violations() const;

    /// True if this build counts locks.
    [[nodiscard]] static bool countsLocks();

  private:
    RealtimeViolations start_;
};

} // namespace quorbel::testing
