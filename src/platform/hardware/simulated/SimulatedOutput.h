#pragma once

#include "platform/hardware/simulated/SimulatedHardware.h"

namespace quorbel {

/// The playback side of a simulated machine. [main]
class SimulatedOutput final : public HardwareOutput {
  public:
    explicit SimulatedOutput(SimulatedHardware &hardware) : hardware_(hardware) {}
    ~SimulatedOutput() override;
    SimulatedOutput(const SimulatedOutput &) = delete;
    SimulatedOutput &operator=(const SimulatedOutput &) = delete;

    Status setDevice(AudioObjectID device) override;
    [[nodiscard]] StreamFormat nativeFormat() const override;
    Status start(RenderClient &client) override;
    void renderUntil(const std::function<bool()> &condition, double seconds) override;
    void stop() override;

  private:
    SimulatedHardware &hardware_;
    AudioObjectID device_ = 0;
};

} // namespace quorbel
