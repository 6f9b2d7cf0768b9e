#pragma once

#include "platform/dsp/RealFFT.h"

#include <span>

#include <cstddef>
#include <vector>

namespace quorbel {

/// The power of 4096 samples by frequency, under a normalised Hann window and in the scale of
/// `RealFFT`. Belongs to one thread.
class PowerSpectrum {
  public:
    static constexpr std::size_t points = 4096;
    static constexpr std::size_t bins = points / 2;

    /// Throws std::bad_alloc.
    PowerSpectrum();

    /// Where to put the samples before `transform`.
    [[nodiscard]] std::span<float> samples() { return samples_; }

    /// Consumes the samples.
    void transform() noexcept;

    /// re² + im² of a bin from 1 to `bins` − 1. Bin 0 is packed and has no meaning here.
    [[nodiscard]] double power(std::size_t bin) const noexcept;

  private:
    RealFFT fft_{points};
    std::vector<float> window_;
    std::vector<float> samples_ = std::vector<float>(points);
    std::vector<float> real_ = std::vector<float>(bins);
    std::vector<float> imaginary_ = std::vector<float>(bins);
};

} // namespace quorbel
