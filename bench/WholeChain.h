#pragma once

#include "engine/ProcessingChain.h"
#include "platform/graph/AudioGraph.h"
#include "platform/graph/SourceNode.h"
#include "platform/threads/ManualClock.h"
#include "platform/units/AudioUnitRegistry.h"

#include <cstdint>
#include <vector>

namespace quorbel::bench {

/// The whole chain as the device's render thread runs it, with everything on. The analyses, which
/// run on threads of their own there, run in `passTime` here.
class WholeChain {
  public:
    /// `isComparable`: with the loudness meters that the window's Compare needs. Throws
    /// std::runtime_error if the chain does not start.
    explicit WholeChain(bool isComparable = false);

    /// Processes a block in place; at most `maximumBlockFrames`.
    void process(float *left, float *right, std::uint32_t frames) noexcept;

    /// Sets the equaliser's bands, to which it glides.
    void setBands(const std::vector<EQBand> &bands);

    /// Advances the clock by `frames`.
    void passTime(std::uint32_t frames);

  private:
    ManualClock clock_;
    SerialQueueFactory queues_ = clockedSerialQueues(clock_);
    AudioUnitRegistry registry_{clock_};
    ProcessingChain chain_;
    AudioBufferList block_; ///< the source's next block
    SourceNode source_;
    AudioGraph graph_{nullptr, queues_};
};

} // namespace quorbel::bench
