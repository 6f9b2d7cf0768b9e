#pragma once

#include "effects/EffectUnit.h"

namespace quorbel {

/// Crossfeed for headphones. Rests below 1 %: bit-exact, with its state cleared. A change of amount
/// ramps over one block.
class CrossfeedUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { amount };

    CrossfeedUnit(const ComponentDescription &description, InstantiationOptions options);
    void reset() override;
    [[nodiscard]] RenderBlock internalRenderBlock() override;
    /// 1 if the next unit is an auto gain.
    [[nodiscard]] std::size_t joinable(std::span<AudioUnit *const> following) const override;
    /// Renders both units in one pass; refuses while one rests.
    bool renderJoined(std::span<AudioUnit *const> joined, AudioBufferList &buffers,
                      std::uint32_t frames) noexcept override;

  protected:
    Status prepare(float sampleRate) override;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace quorbel
