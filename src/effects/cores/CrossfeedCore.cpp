#include "effects/cores/CrossfeedCore.h"

#include "effects/cores/CrossfeedBlock.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

CrossfeedCore::CrossfeedCore() { prepare(48'000.0F); }

void CrossfeedCore::prepare(float sampleRate) {
    constexpr float delaySeconds = 0.00033F;
    constexpr std::size_t lineLength = 32;
    delay_ = static_cast<std::size_t>(std::max(std::lround(sampleRate * delaySeconds), 1L));
    // At 96 kHz the delay equals the effect's line length, so it reads the newest frame, undelayed.
    // Longer delays get a longer line.
    if (delay_ == lineLength)
        delay_ = 0;
    isClear_ = false;
    delayL_.assign(delay_ + chunkFrames, 0.0F);
    delayR_.assign(delay_ + chunkFrames, 0.0F);

    const float w0 = 4398.2295F / sampleRate; // 2π · 700 Hz
    lowPass_ = lowPass(w0, std::sin(w0) / 1.414F);
    clear();
}

void CrossfeedCore::clear() noexcept {
    if (isClear_)
        return;
    isClear_ = true;
    std::fill(delayL_.begin(), delayL_.end(), 0.0F);
    std::fill(delayR_.begin(), delayR_.end(), 0.0F);
    crossing_ = {};
}

void CrossfeedCore::process(float *left, float *right, std::uint32_t frames, float previous,
                            float target) noexcept {
    CrossfeedBlock(*this, left, right, frames, previous, target).finish();
}

void CrossfeedCore::append(const float *left, const float *right, std::uint32_t frames) noexcept {
    const auto held = static_cast<std::ptrdiff_t>(delay_);
    isClear_ = false;
    std::copy_n(left, frames, delayL_.begin() + held);
    std::copy_n(right, frames, delayR_.begin() + held);
}

void CrossfeedCore::advance(std::uint32_t frames) noexcept {
    std::copy_n(delayL_.begin() + frames, delay_, delayL_.begin());
    std::copy_n(delayR_.begin() + frames, delay_, delayR_.begin());
}

} // namespace quorbel
