#pragma once

#include <atomic>
#include <chrono>
#include <concepts>
#include <stdexcept>
#include <string>
#include <thread>

namespace quorbel::soundserver {

using SteadyClock = std::chrono::steady_clock;

/// An event outside of this process missed its deadline or failed.
class ServerError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The user asked to end (see `requestInterrupt`); unwinding ends all started processes.
class Interrupted : public std::runtime_error {
  public:
    Interrupted() : std::runtime_error("interrupted") {}
};

/// Set by a signal handler: every wait of this library then throws `Interrupted`.
inline std::atomic<bool> interruptRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free);

/// Tests a condition of another process every few milliseconds; returns whether it held before the
/// deadline.
template <std::predicate Condition> bool comesTrue(double seconds, Condition condition) {
    const auto deadline = SteadyClock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (interruptRequested)
            throw Interrupted();
        if (SteadyClock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    return true;
}

/// As `comesTrue`, but throws `ServerError` naming `what` if the deadline passes.
template <std::predicate Condition>
void waitFor(const std::string &what, double seconds, Condition condition) {
    if (!comesTrue(seconds, condition))
        throw ServerError("not within " + std::to_string(seconds) + " s: " + what);
}

} // namespace quorbel::soundserver
