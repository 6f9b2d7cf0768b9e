#pragma once

#include "platform/hardware/pipewire/PipeWireHardware.h"

#include <atomic>
#include <functional>
#include <memory>

namespace quorbel {

/// The playback side of the hardware: one output stream to one device at a time, and the stream
/// that keeps the device running for a tail.
class PipeWireHardware::Output final : public HardwareOutput {
  public:
    /// `hardware` must outlive the output.
    explicit Output(PipeWireHardware &hardware) : hardware_(hardware) {}
    ~Output() override { stop(); }

    Status setDevice(AudioObjectID device) override;
    [[nodiscard]] StreamFormat nativeFormat() const override;
    void setHoldsTail(bool holdsTail) override { holdsTail_ = holdsTail; }
    /// Returns once the session manager has linked the stream to the device.
    Status start(RenderClient &client) override;
    void renderUntil(const std::function<bool()> &condition, double seconds) override;
    void stop() override;

  private:
    void watchTail();

    PipeWireHardware &hardware_;
    AudioObjectID device_ = 0;
    std::unique_ptr<OutStream> stream_;
    std::atomic<bool> holdsTail_{false}; ///< set by main, read by control
    std::unique_ptr<KeepStream> keep_;
    spa_source *tailTimer_ = nullptr;
};

} // namespace quorbel
