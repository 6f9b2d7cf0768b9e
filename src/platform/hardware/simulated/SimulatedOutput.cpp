#include "platform/hardware/simulated/SimulatedHardware.h"

#include <cerrno>
#include <numeric>

namespace quorbel {

using simulated::Operation;

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

SimulatedOutput::~SimulatedOutput() {
    (void)hardware_.note(Operation::destroyOutput);
    hardware_.rearrange([this] { hardware_.outputs_.erase(this); });
}

Status SimulatedOutput::setDevice(AudioObjectID device) {
    if (const auto verdict = hardware_.note(Operation::setDevice); !verdict.carryOut)
        return verdict.status;
    if (hardware_.find(device) == nullptr)
        return -ENODEV;
    device_ = device;
    return statusOK;
}

StreamFormat SimulatedOutput::nativeFormat() const {
    const auto verdict = hardware_.note(Operation::nativeFormat);
    const auto *device = hardware_.find(device_);
    if (!verdict.carryOut || device == nullptr)
        return {};
    const auto &channels = device->script.outputChannels;
    return {.sampleRate = device->script.sampleRate,
            .channelCount = std::accumulate(channels.begin(), channels.end(), 0U)};
}

Status SimulatedOutput::start(RenderClient &client) {
    if (const auto verdict = hardware_.note(Operation::startOutput); !verdict.carryOut)
        return verdict.status;
    const auto *device = hardware_.find(device_);
    if (device == nullptr)
        return -ENODEV;
    if (hardware_.outputs_.contains(this))
        return -EBUSY;
    client.renderFormatChanged({.sampleRate = device->script.sampleRate, .channelCount = 2});
    hardware_.rearrange([&] { hardware_.outputs_[this] = {.device = device_, .client = &client}; });
    if (!hardware_.isSuspended_)
        client.renderResumed();
    return statusOK;
}

void SimulatedOutput::renderUntil(const std::function<bool()> &condition, double seconds) {
    if (hardware_.outputs_.contains(this) && hardware_.find(device_) != nullptr)
        hardware_.playOn(condition, seconds);
}

void SimulatedOutput::stop() {
    // Stopping cannot fail: the caller relies on no further call.
    (void)hardware_.note(Operation::stopOutput);
    hardware_.rearrange([this] { hardware_.outputs_.erase(this); });
}

std::unique_ptr<HardwareOutput> SimulatedHardware::makeOutput() {
    // An output can be made without a connection; using it then fails.
    if (const auto verdict = operations_.note(Operation::makeOutput); !verdict.carryOut)
        return nullptr;
    return std::make_unique<SimulatedOutput>(*this);
}

} // namespace quorbel
