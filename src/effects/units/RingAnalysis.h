#pragma once

#include "effects/PlainCell.h"
#include "effects/cores/AnalysisRing.h"

#include <cstdint>

namespace quorbel {

/// A result that follows the sound in a ring by estimates: the first 100 ms after the begin, then
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

    /// The estimate of this moment. Returns whether new sound had come or the result has moved.
    bool estimateNow();

    /// Makes the estimates that have fallen due by the frames that have come, each of the sound up
    /// to its own moment. Those that the ring is too short for are lost.
    void catchUp();

    /// By the frames that have come, more than 0 after either of the two.
    [[nodiscard]] double secondsToNext() const;

  protected:
    /// The result after an estimate of the sound before frame `end` of the ring.
    [[nodiscard]] virtual float follow(float before, std::uint64_t end) = 0;

  private:
    const AnalysisRing &ring_;
    PlainCell &result_;
    float sampleRate_ = 48'000.0F;
    std::uint64_t interval_ = 2400; ///< frames
    std::uint64_t next_ = 0;        ///< frame that the next estimate is due at
    std::uint64_t writtenBefore_ = 0;
};

} // namespace quorbel
