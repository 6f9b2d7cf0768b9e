#include "effects/cores/PowerSpectrum.h"

#include "platform/dsp/HannWindow.h"

namespace quorbel {

PowerSpectrum::PowerSpectrum() : window_(normalisedHannWindow(points)) {}

void PowerSpectrum::transform() noexcept {
    for (std::size_t i = 0; i < points; ++i)
        samples_[i] *= window_[i];
    fft_.forward(samples_, real_, imaginary_);
}

double PowerSpectrum::power(std::size_t bin) const noexcept {
    const auto re = static_cast<double>(real_[bin]);
    const auto im = static_cast<double>(imaginary_[bin]);
    return re * re + im * im;
}

} // namespace quorbel
