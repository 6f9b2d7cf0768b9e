#include "platform/graph/Fade.h"

#include <algorithm>

namespace quorbel {

void Fade::startSilent() {
    gain_ = 0.0F;
    rises_ = true;
    silent_ = false;
}

void Fade::startFull() {
    gain_ = 1.0F;
    rises_ = true;
    silent_ = false;
}

void Fade::apply(const AudioBufferList &buffers, std::uint32_t frames) noexcept {
    const bool rises = rises_.load(std::memory_order_relaxed);
    if (rises && gain_ == 1.0F)
        return;
    const float step = rises ? step_ : -step_;
    float end = gain_;
    for (std::uint32_t channel = 0; channel < buffers.bufferCount; ++channel) {
        float gain = gain_;
        for (std::uint32_t i = 0; i < frames; ++i) {
            gain = std::clamp(gain + step, 0.0F, 1.0F);
            buffers.data[channel][i] *= gain;
        }
        end = gain;
    }
    gain_ = end;
    if (gain_ == 0.0F)
        silent_.store(true, std::memory_order_release);
}

} // namespace quorbel
