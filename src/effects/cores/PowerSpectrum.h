#pragma once

#include "platform/dsp/RealFFT.h"

#include <span>

#include <cstddef>
#include <vector>

namespace quorbel {

/// Power spectrum of 4096 samples under a normalised Hann window, in the scale of `RealFFT`.
/// Belongs to one thread.
class PowerSpectrum {
  public:
    static constexpr std::size_t points = 4096;
    static constexpr std::size_t bins = points / 2;

    /// Throws std::bad_alloc.
    PowerSpectrum();

    /// Input of `transform`.
    [[nodiscard]] std::span<float> samples() { return fft_.input(); }

    /// Consumes the samples.
    void transform() noexcept;

    /// re² + im² of a bin from 1 to `bins` − 1. Bin 0 is packed and has no meaning here.
    [[nodiscard]] double power(std::size_t bin) const noexcept { return fft_.power(bin); }

    /// Sum of the powers from `first` to `last`, both included.
    [[nodiscard]] double powerBetween(std::size_t first, std::size_t last) const noexcept {
        return fft_.powerBetween(first, last);
    }

  private:
    // Memory-bound: it runs twenty times a second, on caches filled by the sound.
    RealFFT fft_{points};
    std::vector<float> window_; ///< doubled to match the scale of `RealFFT::forward`
};

} // namespace quorbel
