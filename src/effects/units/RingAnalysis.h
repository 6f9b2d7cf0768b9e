#pragma once

#include "effects/PlainCell.h"
#include "effects/cores/AnalysisRing.h"

#include <cstdint>

namespace quorbel {

/// A result that follows the sound in a ring by estimates: the first 100 ms after `begin`, then one
/// every 50 ms. Belongs to one thread at a time.
class RingAnalysis {
  public:
    /// Both must outlive it.
    RingAnalysis(const AnalysisRing &ring, PlainCell &result) : ring_(ring), result_(result) {}
    virtual ~RingAnalysis() = default;
    RingAnalysis(const RingAnalysis &) = delete;
    RingAnalysis &operator=(const RingAnalysis &) = delete;

    static constexpr double firstSeconds = 0.1;
    static constexpr double intervalSeconds = 0.05;

    /// `sampleRate` of the sound in Hz.
    void begin(float sampleRate);

    /// Makes an estimate now. Returns whether new sound had come or the result has changed.
    bool estimateNow();

    /// Makes the estimates that the received frames have made due, each from the sound up to its
    /// own time. Estimates whose frames the ring has overwritten are lost.
    void catchUp();

    /// Seconds until the next estimate is due, by the received frames; above 0 after `estimateNow`
    /// and `catchUp`.
    [[nodiscard]] double secondsToNext() const;

  protected:
    /// Returns the result after an estimate of the sound before frame `end` of the ring.
    [[nodiscard]] virtual float follow(float before, std::uint64_t end) = 0;

  private:
    const AnalysisRing &ring_;
    PlainCell &result_;
    float sampleRate_ = 48'000.0F;
    std::uint64_t interval_ = 2400; ///< frames
    std::uint64_t next_ = 0;        ///< frame at which the next estimate is due
    std::uint64_t writtenBefore_ = 0;
};

} // namespace quorbel
