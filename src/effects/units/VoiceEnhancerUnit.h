#pragma once

#include "effects/EffectUnit.h"
#include "effects/units/AnalysisTimer.h"

namespace quorbel {

struct EnhancerPass;

/// Voice clarity. Always measures the confidence in a voice in the background; the amount follows
/// it in adaptive mode. Rests at amount 0: bit-exact, with its state cleared.
class VoiceEnhancerUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { amount, presence, mud, adaptive };

    VoiceEnhancerUnit(const ComponentDescription &description, InstantiationOptions options,
                      const SerialQueueFactory &analysisQueues);

    void deallocateRenderResources() override;
    void reset() override;
    void setDemand(const EffectDemand &demand) override;
    [[nodiscard]] RenderBlock internalRenderBlock() override;

    /// Adds the unit's stage to a joint pass, which writes the unit's input, mixed to mono, to the
    /// buffer that `feedAnalysis` reads. [render]
    void addTo(EnhancerPass &pass) noexcept;
    void feedAnalysis(std::uint32_t frames) noexcept; ///< [render]

    /// Confidence that the sound has a voice, 0 to 1.
    [[nodiscard]] float readout() const noexcept override;

  protected:
    Status prepare(float sampleRate) override;

  private:
    struct State;
    struct Analysis;
    std::shared_ptr<State> state_;
    std::shared_ptr<Analysis> analysis_; // made by the first allocation
    AnalysisTimer analysisTimer_;
};

} // namespace quorbel
