#pragma once

#include "effects/PlainCell.h"
#include "platform/threads/SampleRing.h"

#include <cstddef>
#include <cstdint>

namespace quorbel {

/// Updates a result by estimates of the sound in a ring: 100 ms after `begin`, then every 50 ms.
/// Belongs to one thread at a time.
class RingAnalysis {
  public:
    /// Both must outlive it; `ring` has `ringCapacity`.
    RingAnalysis(const SampleRing &ring, PlainCell &result) : ring_(ring), result_(result) {}
    virtual ~RingAnalysis() = default;
    RingAnalysis(const RingAnalysis &) = delete;
    RingAnalysis &operator=(const RingAnalysis &) = delete;

    /// Capacity of the ring, in samples: two thirds of a second at 48 kHz.
    static constexpr std::size_t ringCapacity = 32768;
    static constexpr double firstSeconds = 0.1;
    static constexpr double intervalSeconds = 0.05;

    /// `sampleRate` of the sound in Hz.
    void begin(float sampleRate);

    /// Makes an estimate now. Returns true if new sound had arrived or the result has changed.
    bool estimateNow();

    /// Makes all estimates due by the received frames, each from the sound up to its own time.
    /// Skips estimates with frames that the ring has overwritten.
    void catchUp();

    /// Seconds until the next estimate, by the received frames; above 0 after `estimateNow` and
    /// `catchUp`.
    [[nodiscard]] double secondsToNext() const;

  protected:
    /// Returns the result after an estimate of the sound before frame `end` of the ring.
    [[nodiscard]] virtual float follow(float before, std::uint64_t end) = 0;

  private:
    const SampleRing &ring_;
    PlainCell &result_;
    float sampleRate_ = 48'000.0F;
    std::uint64_t interval_ = 2400; ///< frames
    std::uint64_t next_ = 0;        ///< frame at which the next estimate is due
    std::uint64_t writtenBefore_ = 0;
};

} // namespace quorbel
