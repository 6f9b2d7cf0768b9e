#pragma once

#include "effects/EffectUnit.h"
#include "effects/units/AnalysisTimer.h"

namespace quorbel {

/// Harmonic bass. With adaptive tracking on, the crossover follows the bass of the music, which is
/// measured in the background all the while.
class BassEnhancerUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { amount, drive, crossover, adaptive };

    BassEnhancerUnit(const ComponentDescription &description, InstantiationOptions options,
                     const SerialQueueFactory &analysisQueues);

    void deallocateRenderResources() override;
    void reset() override;
    void setDemand(const EffectDemand &demand) override;
    [[nodiscard]] RenderBlock internalRenderBlock() override;
    /// Voice enhancer, widener and spatializer.
    [[nodiscard]] std::size_t joinable(std::span<AudioUnit *const> following) const override;
    bool renderJoined(std::span<AudioUnit *const> joined, AudioBufferList &buffers,
                      std::uint32_t frames) noexcept override;

    /// The tracked frequency, Hz; 80 before the first measurement.
    [[nodiscard]] float readout() const noexcept override;

  protected:
    Status prepare(float sampleRate, std::string &error) override;

  private:
    struct State;
    struct Analysis;
    std::shared_ptr<State> state_;
    std::shared_ptr<Analysis> analysis_; // made by the first allocation
    AnalysisTimer analysisTimer_;
};

} // namespace quorbel
