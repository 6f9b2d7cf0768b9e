#pragma once

#include "effects/EffectUnit.h"

namespace quorbel {

inline constexpr ComponentDescription gainTestDescription{
    fourCharCode("aufx"), fourCharCode("test"), fourCharCode("Qrbl")};

/// The smallest effect unit with a parameter, a switch and a memory: it keeps the suite honest
/// while a real unit is being changed. Its readout is the number of frames since allocation.
class GainTestUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { gain, enabled };

    GainTestUnit(const ComponentDescription &description, InstantiationOptions options);
    RenderBlock internalRenderBlock() override;
    [[nodiscard]] float readout() const noexcept override;
    [[nodiscard]] float sampleRate() const noexcept;

  protected:
    Status prepare(float sampleRate, std::string &error) override;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace quorbel
