#include "support/soundserver/ChannelRecorder.h"

#include <algorithm>

namespace quorbel::soundserver {

ChannelRecorder::ChannelRecorder(GraphClient &client, const std::string &device, int channels,
                                 double maxSeconds)
    : ClientStream(client, "recorder-" + device),
      samples_(static_cast<std::size_t>(channels),
               std::vector<float>(static_cast<std::size_t>(maxSeconds * 48000))) {
    connect(PW_DIRECTION_INPUT,
            pw_properties_new(PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_STREAM_CAPTURE_SINK, "true",
                              PW_KEY_TARGET_OBJECT, device.c_str(), nullptr),
            48000, channels);
    waitUntilRunning();
}

std::uint32_t ChannelRecorder::process(const Cycle &, std::span<float *const> channels,
                                       std::uint32_t frames) noexcept {
    const std::size_t start = frames_;
    const std::size_t count = std::min<std::size_t>(frames, samples_.front().size() - start);
    for (std::size_t index = 0; index < channels.size(); ++index) {
        std::copy_n(channels[index], count,
                    samples_[index].begin() + static_cast<std::ptrdiff_t>(start));
    }
    frames_ = start + count;
    return frames;
}

std::vector<std::vector<float>> ChannelRecorder::last(double seconds) const {
    const std::size_t end = frames_;
    const std::size_t start = end - std::min(end, static_cast<std::size_t>(seconds * 48000));
    std::vector<std::vector<float>> result;
    for (const std::vector<float> &channel : samples_) {
        result.emplace_back(channel.begin() + static_cast<std::ptrdiff_t>(start),
                            channel.begin() + static_cast<std::ptrdiff_t>(end));
    }
    return result;
}

} // namespace quorbel::soundserver
