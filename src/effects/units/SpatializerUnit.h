#pragma once

#include "effects/EffectUnit.h"

namespace quorbel {

/// The crosstalk stage: widens the soundstage of speakers. Runs at amount 0 too, changing nothing
/// but rounding. Changes take effect at the next block.
class SpatializerUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { amount, notch };

    SpatializerUnit(const ComponentDescription &description, InstantiationOptions options);
    void reset() override;
    [[nodiscard]] RenderBlock internalRenderBlock() override;

  protected:
    Status prepare(float sampleRate, std::string &error) override;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace quorbel
