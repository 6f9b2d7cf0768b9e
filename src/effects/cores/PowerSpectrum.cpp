#include "effects/cores/PowerSpectrum.h"

#include "platform/dsp/RealFFT.h"

namespace quorbel {

PowerSpectrum::PowerSpectrum() : window_(normalisedHannWindow(points)) {
    for (float &weight : window_)
        weight *= 2.0F;
}

void PowerSpectrum::transform() noexcept {
    const std::span<float> input = fft_.input();
    for (std::size_t i = 0; i < points; ++i)
        input[i] *= window_[i];
    fft_.transformInput();
}

} // namespace quorbel
