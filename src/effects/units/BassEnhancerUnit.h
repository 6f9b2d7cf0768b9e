#pragma once

#include "effects/EffectUnit.h"
#include "effects/units/AnalysisTimer.h"

namespace quorbel {

/// Harmonic bass. Always measures the music's bass frequency in the background; the crossover
/// follows it while adaptive tracking is on.
class BassEnhancerUnit final : public EffectUnit {
  public:
    enum Address : ParameterAddress { amount, drive, crossover, adaptive };

    BassEnhancerUnit(const ComponentDescription &description, InstantiationOptions options,
                     const SerialQueueFactory &analysisQueues);

    void deallocateRenderResources() override;
    void reset() override;
    void setDemand(const EffectDemand &demand) override;
    [[nodiscard]] RenderBlock internalRenderBlock() override;
    /// Number of the following units that can join this one's pass: voice enhancer, widener,
    /// spatializer.
    [[nodiscard]] std::size_t joinable(std::span<AudioUnit *const> following) const override;
    bool renderJoined(std::span<AudioUnit *const> joined, AudioBufferList &buffers,
                      std::uint32_t frames) noexcept override;

    /// Tracked frequency, Hz; 80 before the first measurement.
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
