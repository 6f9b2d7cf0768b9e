#pragma once

#include "soundserver/ClientStream.h"

#include <string>
#include <vector>

namespace quorbel::soundserver {

/// Records every channel of a device from its monitor, up to `maxSeconds` at 48 kHz.
class ChannelRecorder : public ClientStream {
  public:
    ChannelRecorder(GraphClient &client, const std::string &device, int channels,
                    double maxSeconds);
    ~ChannelRecorder() override { disconnect(); }

    [[nodiscard]] std::size_t frames() const { return frames_; }

    /// The last `seconds` of each channel, in the order of `channelLayout`.
    [[nodiscard]] std::vector<std::vector<float>> last(double seconds) const;

  private:
    std::uint32_t process(const Cycle &cycle, std::span<float *const> channels,
                          std::uint32_t frames) noexcept override;

    // Written by the data thread up to the published count, which only grows.
    std::vector<std::vector<float>> samples_;
    std::atomic<std::size_t> frames_{0};
};

} // namespace quorbel::soundserver
