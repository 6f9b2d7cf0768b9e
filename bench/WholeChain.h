#pragma once

#include "engine/ChainSettings.h"
#include "engine/ProcessingChain.h"
#include "platform/graph/AudioGraph.h"
#include "platform/graph/SourceNode.h"
#include "platform/threads/ManualClock.h"
#include "platform/units/AudioUnitRegistry.h"
#include "settings/records/Preset.h"

#include <cstdint>
#include <vector>

namespace quorbel::bench {

/// The whole chain as a device's render thread runs it. The analyses run in `passTime` instead of
/// on their own threads.
class WholeChain {
  public:
    /// `isComparable` adds the window's meters. Throws std::runtime_error if the chain does not
    /// start.
    explicit WholeChain(const ChainSettings &settings, bool isComparable = false);

    /// Processes a block of at most `maximumBlockFrames` in place.
    void process(float *left, float *right, std::uint32_t frames) noexcept;

    /// Starts a glide to these bands.
    void setBands(const std::vector<EQBand> &bands);
    /// Sets bands and spatial settings together, as a preset does.
    void applyPreset(const Preset &preset);
    void setBypassed(bool isBypassed) { chain_.setBypassed(isBypassed); }

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
