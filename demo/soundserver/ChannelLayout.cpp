#include "soundserver/ChannelLayout.h"

#include "soundserver/Waiting.h"

#include <array>
#include <string>

namespace quorbel::soundserver {
namespace {

constexpr Channel mono[] = {{SPA_AUDIO_CHANNEL_MONO, "MONO", "mono"}};
constexpr Channel quadraphonic[] = {{SPA_AUDIO_CHANNEL_FL, "FL", "front-left"},
                                    {SPA_AUDIO_CHANNEL_FR, "FR", "front-right"},
                                    {SPA_AUDIO_CHANNEL_RL, "RL", "rear-left"},
                                    {SPA_AUDIO_CHANNEL_RR, "RR", "rear-right"}};
// Its first two and six channels are layouts as well.
constexpr Channel surround[] = {
    {SPA_AUDIO_CHANNEL_FL, "FL", "front-left"},   {SPA_AUDIO_CHANNEL_FR, "FR", "front-right"},
    {SPA_AUDIO_CHANNEL_FC, "FC", "front-center"}, {SPA_AUDIO_CHANNEL_LFE, "LFE", "lfe"},
    {SPA_AUDIO_CHANNEL_RL, "RL", "rear-left"},    {SPA_AUDIO_CHANNEL_RR, "RR", "rear-right"},
    {SPA_AUDIO_CHANNEL_SL, "SL", "side-left"},    {SPA_AUDIO_CHANNEL_SR, "SR", "side-right"}};

} // namespace

std::span<const Channel> channelLayout(int channels) {
    switch (channels) {
    case 1:
        return mono;
    case 4:
        return quadraphonic;
    case 2:
    case 6:
    case 8:
        return std::span(surround).first(static_cast<std::size_t>(channels));
    default:
        throw ServerError("no usual layout has " + std::to_string(channels) + " channels");
    }
}

} // namespace quorbel::soundserver
