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

/// The whole chain as the device's render thread runs it. The analyses, which
/// run on threads of their own there, run in `passTime` here.
class WholeChain {
  public:
    /// `isComparable`: with the meters that the window needs. Throws std::runtime_error if the
    /// chain does not start.
    WholeChain(const ChainSettings &settings, bool isComparable);
    /// With everything on.
    explicit WholeChain(bool isComparable = false);

    /// Processes a block in place; at most `maximumBlockFrames`.
    void process(float *left, float *right, std::uint32_t frames) noexcept;

    /// Sets the equaliser's bands, to which it glides.
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
