#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <vector>

namespace quorbel {

/// re² + im² of bin `k` of the last 4096 of `samples`, straight from the definition: twice the
/// Fourier sum of the samples under the window 0.8165·(1 − cos(2πn/N)).
inline double naivePower(const std::vector<double> &samples, std::size_t k) {
    constexpr std::size_t points = 4096;
    const std::size_t begin = samples.size() - points;
    const double step = 2.0 * std::numbers::pi / points;
    // The turning factor is multiplied up; over 4096 steps that costs 1e-12.
    std::complex<double> factor = 1.0;
    const std::complex<double> turn = std::polar(1.0, -step * static_cast<double>(k));
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < points; ++n, factor *= turn)
        sum +=
            0.8165 * (1.0 - std::cos(step * static_cast<double>(n))) * samples[begin + n] * factor;
    return std::norm(2.0 * sum);
}

/// The blocks after which an analysis runs that starts at 0.1 s and repeats every 0.05 s, told one
/// block at a time.
class AnalysisSchedule {
  public:
    explicit AnalysisSchedule(double sampleRate) : interval_(0.05 * sampleRate) {}

    /// Number of runs at the end of a block that ends at frame `end`.
    int dueBy(std::size_t end) {
        int due = 0;
        while (static_cast<double>(end) >= interval_ * static_cast<double>(next_) - 1e-6) {
            ++due;
            ++next_;
        }
        return due;
    }

  private:
    double interval_;
    int next_ = 2;
};

} // namespace quorbel
