#pragma once

#include "platform/hardware/pipewire/DeviceHold.h"
#include "platform/hardware/pipewire/PipeWireHardware.h"

#include <functional>
#include <memory>
#include <string>

namespace quorbel {

/// The playback side of the hardware: one output stream to one device at a time. Keeps the device
/// running for a tail.
class PipeWireHardware::Output final : public HardwareOutput {
  public:
    /// `hardware` must outlive the output.
    explicit Output(PipeWireHardware &hardware) : hardware_(hardware) {}
    ~Output() override { stop(); }

    Status setDevice(AudioObjectID device) override;
    [[nodiscard]] StreamFormat nativeFormat() const override;
    void setHoldsTail(bool holdsTail) override;
    void setStaysOnDevice(bool staysOnDevice) override;
    void setProcessingDelay(double seconds) override;
    /// Returns once the session manager has linked the stream to the device.
    Status start(RenderClient &client) override;
    void renderUntil(const std::function<bool()> &condition, double seconds) override;
    void stop() override;

    // For the hardware's supervision of the running output. Need the loop's lock.
    [[nodiscard]] const OutStream *stream() const { return stream_.get(); }
    [[nodiscard]] AudioObjectID device() const { return device_; }
    void nudge() { stream_->nudge(); }
    /// Replaces the streams by new ones to the same device, with the same client.
    void rebuild();
    /// Holds the device for a time after the last audible output, then releases it. Call it after
    /// every change of the server's objects and of the stream's state.
    void followTail();
    /// Silences the stream if it must stay on its device and that has gone, before the session
    /// manager moves it. Call it when nodes have gone.
    void followDevice();

  private:
    void setTailTimer(double seconds);

    PipeWireHardware &hardware_;
    AudioObjectID device_ = 0;
    std::string startedOn_; ///< name of the running streams' device
    RenderClient *client_ = nullptr;
    std::unique_ptr<OutStream> stream_;
    bool staysOnDevice_ = false;
    bool holdsTail_ = false;
    std::unique_ptr<DeviceHold> hold_; ///< while a tail is wanted
    bool wasStreaming_ = false;        ///< at the last `followTail`
    double streamingSince_ = 0.0;      ///< seconds on the monotonic clock
    spa_source *tailTimer_ = nullptr;
};

} // namespace quorbel
