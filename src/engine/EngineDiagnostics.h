#pragma once

#include "platform/threads/Timer.h"

#include <cstdint>

namespace quorbel {

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

    /// Begins the seconds anew.
    void start();
    void stop() { diagnosticTimer.invalidate(); }

  private:
    void tick();

    Clock &clock_;
    AudioRingBuffer &ringBuffer_;
    const SystemAudioTap &systemTap_;
    const PlaybackGraph &playback_;
    Timer diagnosticTimer;
    // What was last reported; like the counters themselves they live through stops and starts.
    std::int32_t ultimeleCicluriPierdute = 0;
    std::uint64_t lastReplacedFrames_ = 0;
};

} // namespace quorbel
