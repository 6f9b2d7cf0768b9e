#pragma once

#include <span>

#include <cstddef>
#include <memory>
#include <vector>

namespace quorbel {

/// The periodic Hann window of `points` points, normalised so that windowed noise keeps its power:
/// 0.8165 · (1 - cos(2πn/N)), 0.8165 being √(2/3).
[[nodiscard]] std::vector<float> normalisedHannWindow(std::size_t points);

/// The forward FFT of real samples, with a fixed number of points.
///
/// The result is twice the mathematical transform, X[k] = 2 Σ x[n] exp(-2πi kn/N): thresholds and
/// displays are tuned for that scale. It is packed into N/2 bins: bin 0 holds the real values at 0
/// Hz (real) and at half the sample rate (imaginary), bin k the frequency k · sampleRate / N.
///
/// Used by one thread at a time. Equal input gives identical bytes in every run.
class RealFFT {
  public:
    /// `points` must be even, 2 to 2^24. Allocates and takes a process-wide lock. [any thread but
    /// the audio threads] Throws std::invalid_argument, std::bad_alloc.
    explicit RealFFT(std::size_t points);
    ~RealFFT();
    RealFFT(const RealFFT &) = delete;
    RealFFT &operator=(const RealFFT &) = delete;

    [[nodiscard]] std::size_t points() const noexcept { return points_; }
    [[nodiscard]] std::size_t binCount() const noexcept { return points_ / 2; }

    /// Transforms `points()` samples into `binCount()` bins. Allocates nothing.
    void forward(std::span<const float> samples, std::span<float> real,
                 std::span<float> imaginary) noexcept;

    /// In-place variant without copies: fill these `points()` samples before each `transformInput`,
    /// which may overwrite them. Its result is the mathematical transform, without the factor 2.
    [[nodiscard]] std::span<float> input() noexcept;
    void transformInput() noexcept;
    /// |X[k]|² of the last `transformInput`, for a bin from 1 to `binCount()` − 1.
    [[nodiscard]] double power(std::size_t bin) const noexcept;
    /// Sum of `power` from `first` to `last`, both included.
    [[nodiscard]] double powerBetween(std::size_t first, std::size_t last) const noexcept;

  private:
    struct Plan;

    std::size_t points_;
    std::unique_ptr<Plan> plan_;
};

} // namespace quorbel
