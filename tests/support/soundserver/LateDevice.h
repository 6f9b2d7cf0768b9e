#pragma once

#include "soundserver/ClientStream.h"

#include <atomic>

namespace quorbel::soundserver {

/// An output device that says it is heard late, as wireless ones do, and whose ports come a moment
/// after its node.
class LateDevice : public ClientStream {
  public:
    LateDevice(GraphClient &client, const std::string &name, int latencyFrames)
        : ClientStream(client, name) {
        connect(PW_DIRECTION_INPUT,
                pw_properties_new(PW_KEY_MEDIA_CLASS, "Audio/Sink", PW_KEY_NODE_DESCRIPTION,
                                  name.c_str(), nullptr),
                48000);
        announceLatency(latencyFrames);
    }
    ~LateDevice() override { disconnect(); }

    /// The last frame's value on the left channel.
    [[nodiscard]] float lastSample() const { return lastSample_; }

  private:
    std::uint32_t process(const Cycle &, std::span<float *const> channels,
                          std::uint32_t frames) noexcept override {
        if (frames > 0)
            lastSample_ = channels[0][frames - 1];
        return frames;
    }

    std::atomic<float> lastSample_{0.0F};
};

} // namespace quorbel::soundserver
