#pragma once

#include "effects/EffectUnit.h"
#include "platform/graph/UnitNode.h"
#include "support/Stereo.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace quorbel {

/// Renders sound through a unit as the graph does.
class UnitHarness {
  public:
    explicit UnitHarness(std::unique_ptr<AudioUnit> unit)
        : node_(std::make_unique<UnitNode>(std::move(unit))) {}

    [[nodiscard]] AudioUnit &unit() { return node_->unit(); }

    Status allocate(double sampleRate = 48000.0, std::uint32_t channels = 2) {
        return node_->allocateRenderResources({sampleRate, channels}, maximumBlockFrames);
    }

    UnitHarness &set(ParameterAddress address, float value) {
        unit().parameterTree()->parameterWithAddress(address)->setValue(value);
        return *this;
    }

    /// Renders one block in place.
    Status render(AudioBufferList &view, std::uint32_t frames) {
        node_->takeSettings();
        return node_->render({}, view, frames);
    }

    /// Renders the whole sound in blocks of `blockFrames`.
    Stereo play(Stereo sound, std::size_t blockFrames = 512) {
        return inBlocks(std::move(sound), blockFrames,
                        [this](float *left, float *right, std::uint32_t frames) {
                            AudioBufferList view(left, right);
                            render(view, frames);
                        });
    }

    UnitNode &node() { return *node_; }

  private:
    std::unique_ptr<UnitNode> node_;
};

} // namespace quorbel
