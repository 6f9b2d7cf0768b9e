#pragma once

#include "platform/threads/Timer.h"

#include <cstdint>
#include <functional>

namespace quorbel {

/// Losses between capture and playback.
struct EngineLosses {
    std::int64_t cutFrames = 0;    ///< dropped because playback did not read them in time
    std::int64_t silentFrames = 0; ///< played as silence because capture did not write them in time
    std::int64_t lostCycles = 0;   ///< of capture
    std::uint64_t nonFiniteFrames = 0; ///< played as zero

    friend bool operator==(const EngineLosses &, const EngineLosses &) = default;
};

class AudioRingBuffer;
class PlaybackGraph;
class SystemAudioTap;

/// Logs once a second the frames that were cut, silent or lost between capture and playback. A
/// second without losses logs nothing. [main]
class EngineDiagnostics {
  public:
    /// All arguments must outlive this object.
    EngineDiagnostics(Clock &clock, AudioRingBuffer &ringBuffer, const SystemAudioTap &systemTap,
                      const PlaybackGraph &playback);

    /// Clears the losses and restarts the one-second timer. Calls `lossesChanged` after each second
    /// with a change.
    void start(std::function<void()> lossesChanged);
    void stop();

    /// Pauses the timer after one more second while `isIdle`: no sound arrives until further
    /// notice.
    void setIdle(bool isIdle);

    /// Losses of all whole seconds since the start.
    [[nodiscard]] const EngineLosses &losses() const { return losses_; }

  private:
    void beginSeconds();
    void tick();

    Clock &clock_;
    AudioRingBuffer &ringBuffer_;
    const SystemAudioTap &systemTap_;
    const PlaybackGraph &playback_;
    Timer diagnosticTimer;
    EngineLosses losses_;
    std::function<void()> lossesChanged_;
    bool isRunning_ = false;
    bool isIdle_ = false;
    // Counters as last reported; like the counters themselves they survive stops and starts.
    std::int32_t ultimeleCicluriPierdute = 0;
    std::uint64_t lastReplacedFrames_ = 0;
};

} // namespace quorbel
