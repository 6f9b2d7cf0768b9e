#pragma once

#include <atomic>
#include <chrono>
#include <concepts>
#include <stdexcept>
#include <string>
#include <thread>

namespace quorbel::soundserver {

using SteadyClock = std::chrono::steady_clock;

/// Something outside of this process did not happen within its deadline, or ended with a failure.
class ServerError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The user asked to end (see `requestInterrupt`); unwinding ends what was started.
class Interrupted : public std::runtime_error {
  public:
    Interrupted() : std::runtime_error("interrupted") {}
};

/// Set by a signal handler: every wait of this library then throws `Interrupted`.
inline std::atomic<bool> interruptRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free);

/// Looks every few milliseconds whether something of another process has come true, and says
/// whether it did before the deadline.
template <std::predicate Condition> bool comesTrue(double seconds, Condition condition) {
    const auto deadline = SteadyClock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (interruptRequested) {
            throw Interrupted();
        }
        if (SteadyClock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    return true;
}

/// As `comesTrue`, for what the caller cannot go on without. Throws `ServerError` naming `what`.
template <std::predicate Condition>
void waitFor(const std::string &what, double seconds, Condition condition) {
    if (!comesTrue(seconds, condition)) {
        throw ServerError("not within " + std::to_string(seconds) + " s: " + what);
    }
}

} // namespace quorbel::soundserver
