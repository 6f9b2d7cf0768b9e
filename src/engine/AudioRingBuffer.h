#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/core/PCMBuffer.h"
#include "platform/threads/ShortLock.h"

#include <cstdint>
#include <vector>

namespace quorbel {

/// The only hand-over between the capture clock and the playback clock, planar stereo. The writer
/// always wins: a full buffer drops its oldest frames; an empty one reads as silence without
/// waiting. Both losses are counted in frames.
///
/// Threads: write [capture], read [render], preiaPierderi [main], reset [main]. All take the same
/// short lock for their copy; nothing is allocated after construction.
class AudioRingBuffer {
  public:
    /// `capacityFrames` per channel; less than 1 makes 1.
    explicit AudioRingBuffer(std::int64_t capacityFrames);

    /// Appends a block of one channel (heard on both sides) or more (the first two count). A block
    /// without samples is ignored.
    void write(const PCMBuffer &buffer) noexcept;

    /// Fills exactly `frameCount` frames of the first and, if present, the second destination.
    /// Consumes both channels even if only one is requested.
    void read(const AudioBufferList &into, std::int64_t frameCount) noexcept;

    /// Frames since the counters were last taken.
    struct Pierderi {
        std::int64_t taiate = 0; ///< cut by overflow
        std::int64_t tacere = 0; ///< of silence, by underflow
        std::int64_t scrise = 0; ///< passed to `write`
        std::int64_t citite = 0; ///< requested from `read`

        friend bool operator==(const Pierderi &, const Pierderi &) = default;
    };
    /// Returns the counters and zeroes them in one step.
    [[nodiscard]] Pierderi preiaPierderi() noexcept;

    /// Empties the buffer without counting its frames as lost. [capture]
    void discard() noexcept;

    /// Empties the buffer and zeroes the counters.
    void reset() noexcept;

    [[nodiscard]] std::int64_t capacity() const noexcept { return capacity_; }

  private:
    const std::int64_t capacity_;

    ShortLock lock; // guards the members below
    std::vector<float> left;
    std::vector<float> right;
    // Total frames written and consumed, never wrapped: frame p is at p mod capacity, and 0 <=
    // writeFrame - readFrame <= capacity whenever the lock is free.
    std::int64_t writeFrame = 0;
    std::int64_t readFrame = 0;
    std::int64_t cadreTaiate = 0;
    std::int64_t cadreDeTacere = 0;
    std::int64_t cadreScrise = 0;
    std::int64_t cadreCitite = 0;
};

} // namespace quorbel
