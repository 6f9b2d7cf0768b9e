#pragma once

#include "platform/threads/Timer.h"

#include <cstdint>
#include <functional>

namespace quorbel {

/// What went wrong between capture and playback.
struct EngineLosses {
    std::int64_t cutFrames = 0;        ///< dropped, because playback did not take them in time
    std::int64_t silentFrames = 0;     ///< of silence, because capture had not brought them in time
    std::int64_t lostCycles = 0;       ///< of capture
    std::uint64_t nonFiniteFrames = 0; ///< played as zero

    friend bool operator==(const EngineLosses &, const EngineLosses &) = default;
};

class AudioRingBuffer;
class PlaybackGraph;
class SystemAudioTap;

/// Once a second says in the log what was cut, silent or lost between capture and playback. A
/// healthy second says nothing. [main]
class EngineDiagnostics {
  public:
    /// All must outlive it.
    EngineDiagnostics(Clock &clock, AudioRingBuffer &ringBuffer, const SystemAudioTap &systemTap,
                      const PlaybackGraph &playback);

    /// Restarts the seconds and clears the losses. Calls `lossesChanged` after each second in which
    /// they have changed.
    void start(std::function<void()> lossesChanged);
    void stop();

    /// Whether no sound comes until further notice. Then one more second is looked at, and none
    /// after it.
    void setIdle(bool isIdle);

    /// Of all whole seconds since the start.
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
    // What was last reported; like the counters themselves they live through stops and starts.
    std::int32_t ultimeleCicluriPierdute = 0;
    std::uint64_t lastReplacedFrames_ = 0;
};

} // namespace quorbel
