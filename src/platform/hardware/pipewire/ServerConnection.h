#pragma once

#include "platform/core/Status.h"
#include "platform/hardware/pipewire/PipeWireHandles.h"

#include <cstdint>
#include <ctime>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace quorbel {

/// Seconds on one of the system's clocks, for deadlines on the server loop and times of cycles,
/// which cannot use the program's clock. [any]
inline double secondsOn(clockid_t clock) noexcept {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

inline double monotonicSeconds() noexcept { return secondsOn(CLOCK_MONOTONIC); }

/// Our connection to the user's sound server: its own thread loop, the context and two cores. A
/// lost connection is never repaired; the owner makes a new one.
///
/// Our streams have a core of their own, because the server stops reading a client in two cases:
///  1. The client has bound the session manager's table: until the session manager answers.
///  2. The client has set a parameter of another client's stream: until that client answers.
/// The session manager sets parameters of our streams. With a single core it could wait for our
/// answer while we wait for its one, and the whole desktop's sound with both.
///
/// [main] except where tagged; [control] is the loop's thread, which holds the loop's lock.
class ServerConnection {
  public:
    /// Connects. On failure returns null and sets `status` to a negative errno (-EHOSTDOWN: no
    /// server).
    static std::unique_ptr<ServerConnection> open(Status &status);
    ~ServerConnection();
    ServerConnection(const ServerConnection &) = delete;
    ServerConnection &operator=(const ServerConnection &) = delete;

    [[nodiscard]] pw_thread_loop *loop() const { return loop_.get(); }
    /// For everything but streams.
    [[nodiscard]] pw_core *core() const { return core_.get(); }
    /// For streams alone.
    [[nodiscard]] pw_core *streamCore() const { return streamCore_.get(); }

    /// Number that identifies this run of the server; 0 until the first round trip is over.
    [[nodiscard]] std::uint32_t serverCookie() const { return serverCookie_; }

    /// Sets the handler for the loss of the server, called once. Needs the loop's lock. [control]
    void setLostHandler(std::function<void(Status)> handler) { lostHandler_ = std::move(handler); }
    [[nodiscard]] bool isLost() const { return lost_; }

    /// Waits until the server has handled all requests so far. Needs the loop's lock. Returns
    /// -ETIMEDOUT after `seconds`, -EPIPE if the server is gone.
    Status roundTrip(double seconds);

    /// Waits until `condition` holds; tests it after every event from the server, and every
    /// `lookSeconds` unless that is 0. Needs the loop's lock. Statuses as `roundTrip`.
    Status waitUntil(const std::function<bool()> &condition, double seconds,
                     double lookSeconds = 0.0);

    /// Makes `waitUntil` test its condition. [control]
    void wakeWaiters() { pw_thread_loop_signal(loop_.get(), false); }

    /// Arms a timer of the loop to fire once after `seconds`; disarms it if infinite. [control]
    void setTimer(spa_source *timer, double seconds) const;

    /// Runs `done` once the server has handled all requests so far. [control]
    void afterRoundTrip(std::function<void()> done);

  private:
    using Core = std::unique_ptr<pw_core, CoreDeleter>;

    ServerConnection() = default;
    [[nodiscard]] Core connectCore() const;
    void coreDone(int sequence);
    void coreError(std::uint32_t id, int result);

    std::unique_ptr<pw_thread_loop, ThreadLoopDeleter> loop_;
    std::unique_ptr<pw_context, ContextDeleter> context_;
    Core core_;
    Core streamCore_;
    Hook coreHook_;
    Hook streamCoreHook_;
    std::function<void(Status)> lostHandler_;
    std::vector<std::pair<int, std::function<void()>>> afterRoundTrip_; ///< by sequence
    int pendingSequence_ = 0;
    int doneSequence_ = -1;
    std::uint32_t serverCookie_ = 0;
    bool lost_ = false;
};

} // namespace quorbel
