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
    [[nodiscard]] std::span<float> samples() { return fft_.input(); }

    /// Consumes the samples.
    void transform() noexcept;

    /// re² + im² of a bin from 1 to `bins` − 1. Bin 0 is packed and has no meaning here.
    [[nodiscard]] double power(std::size_t bin) const noexcept { return fft_.power(bin); }

    /// Their sum from one bin to another, both included.
    [[nodiscard]] double powerBetween(std::size_t first, std::size_t last) const noexcept {
        return fft_.powerBetween(first, last);
    }

  private:
    // Twenty times a second on caches that the sound has filled: memory touched is what it costs.
    RealFFT fft_{points};
    std::vector<float> window_; ///< doubled, which is the scale of `RealFFT::forward`
};

} // namespace quorbel
