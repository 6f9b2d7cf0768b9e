#pragma once

#include "platform/core/StreamFormat.h"
#include "platform/hardware/AudioHardware.h"

#include <memory>

namespace quorbel {

/// The end of a graph: the hardware output behind the mixer, or nothing in manual rendering. [main]
class OutputNode {
  public:
    explicit OutputNode(std::unique_ptr<HardwareOutput> output) : output_(std::move(output)) {}

    [[nodiscard]] bool hasHardware() const { return output_ != nullptr; }

    /// Binds the output to a device for the next start. Does nothing without hardware.
    Status setDevice(AudioObjectID device) {
        return output_ ? output_->setDevice(device) : statusOK;
    }

    /// Native rate and channel count of the bound device; invalid without one.
    [[nodiscard]] StreamFormat nativeFormat() const {
        return output_ ? output_->nativeFormat() : StreamFormat{};
    }

    /// Null without hardware.
    [[nodiscard]] HardwareOutput *hardware() const { return output_.get(); }

  private:
    std::unique_ptr<HardwareOutput> output_;
};

} // namespace quorbel
