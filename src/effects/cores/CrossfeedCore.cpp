#include "effects/cores/CrossfeedCore.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

CrossfeedCore::CrossfeedCore() { prepare(48'000.0F); }

void CrossfeedCore::prepare(float sampleRate) {
    constexpr float delaySeconds = 0.00033F;
    constexpr std::size_t lineLength = 32;
    delay_ = static_cast<std::size_t>(std::max(std::lround(sampleRate * delaySeconds), 1L));
    // A delay of the whole line, at 96 kHz, reads what was just written, undelayed; kept as it
    // stands. Longer delays get the line that they need.
    const std::size_t length = delay_ > lineLength ? delay_ + 1 : lineLength;
    delayL_.assign(length, 0.0F);
    delayR_.assign(length, 0.0F);

    const float w0 = 4398.2295F / sampleRate; // 2π · 700 Hz
    lowPass_ = lowPass(w0, std::sin(w0) / 1.414F);
    clear();
}

void CrossfeedCore::clear() noexcept {
    std::fill(delayL_.begin(), delayL_.end(), 0.0F);
    std::fill(delayR_.begin(), delayR_.end(), 0.0F);
    writeIndex_ = 0;
    fromLeft_ = {};
    fromRight_ = {};
}

void CrossfeedCore::process(float *left, float *right, std::uint32_t frames, float previous,
                            float target) noexcept {
    const std::size_t length = delayL_.size();
    const BiquadCoefficients coefficients = lowPass_;
    BiquadState fromLeft = fromLeft_;
    BiquadState fromRight = fromRight_;
    std::size_t write = writeIndex_;
    float tiny = 1e-20F; // alternates, and so keeps the filters out of denormal numbers

    for (std::uint32_t i = 0; i < frames; ++i) {
        delayL_[write] = left[i];
        delayR_[write] = right[i];
        const std::size_t read = (write + length - delay_) % length;
        const float crossL = fromLeft.process(coefficients, delayL_[read] + tiny);
        const float crossR = fromRight.process(coefficients, delayR_[read] + tiny);

        const float amount = frames == 1 ? target
                                         : previous + (target - previous) * static_cast<float>(i) /
                                                          static_cast<float>(frames - 1);
        if (amount > 0.0F) {
            const float cross = std::min(amount, 1.0F) * 0.5F;
            left[i] = crossR * cross + left[i] * (1.0F - cross);
            right[i] = crossL * cross + right[i] * (1.0F - cross);
        }
        write = write + 1 == length ? 0 : write + 1;
        tiny = -tiny;
    }
    writeIndex_ = write;
    fromLeft_ = fromLeft;
    fromRight_ = fromRight;
}

} // namespace quorbel
