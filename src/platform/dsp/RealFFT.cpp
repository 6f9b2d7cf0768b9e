#include "platform/dsp/RealFFT.h"

#include <fftw3.h>

#include <array>
#include <cassert>
#include <mutex>
#include <new>
#include <stdexcept>

namespace quorbel {
namespace {

/// FFTW executes plans on any thread, but makes and destroys them on one thread at a time.
std::mutex &plannerMutex() {
    static std::mutex mutex;
    return mutex;
}

} // namespace

struct RealFFT::Plan {
    float *samples = nullptr;
    fftwf_complex *bins = nullptr;
    fftwf_plan plan = nullptr;

    explicit Plan(std::size_t points)
        : samples(fftwf_alloc_real(points)), bins(fftwf_alloc_complex(points / 2 + 1)) {
        if (samples != nullptr && bins != nullptr) {
            const std::lock_guard lock(plannerMutex());
            // FFTW_MEASURE could choose another algorithm in every run, and the rounding depends on
            // the algorithm.
            plan = fftwf_plan_dft_r2c_1d(static_cast<int>(points), samples, bins, FFTW_ESTIMATE);
        }
        if (plan == nullptr) {
            free();
            throw std::bad_alloc();
        }
    }
    ~Plan() { free(); }
    Plan(const Plan &) = delete;
    Plan &operator=(const Plan &) = delete;

  private:
    void free() {
        if (plan != nullptr) {
            const std::lock_guard lock(plannerMutex());
            fftwf_destroy_plan(plan);
        }
        fftwf_free(bins);
        fftwf_free(samples);
    }
};

RealFFT::RealFFT(std::size_t points) : points_(points) {
    if (points < 2 || points % 2 != 0 || points > (std::size_t{1} << 24))
        throw std::invalid_argument("RealFFT: the number of points must be even, 2 to 2^24");
    plan_ = std::make_unique<Plan>(points);
}

RealFFT::~RealFFT() = default;

std::span<float> RealFFT::input() noexcept { return {plan_->samples, points_}; }

void RealFFT::transformInput() noexcept { fftwf_execute(plan_->plan); }

double RealFFT::power(std::size_t bin) const noexcept {
    const auto real = static_cast<double>(plan_->bins[bin][0]);
    const auto imaginary = static_cast<double>(plan_->bins[bin][1]);
    return real * real + imaginary * imaginary;
}

double RealFFT::powerBetween(std::size_t first, std::size_t last) const noexcept {
    // A single sum is latency-bound; eight side by side are not.
    std::array<double, 8> sums{};
    const float *const parts = &plan_->bins[first][0]; // interleaved real and imaginary parts
    const std::size_t count = 2 * (last - first + 1);
    std::size_t i = 0;
    for (; i + sums.size() <= count; i += sums.size())
        for (std::size_t k = 0; k < sums.size(); ++k) {
            const auto part = static_cast<double>(parts[i + k]);
            sums[k] += part * part;
        }
    for (; i < count; ++i) {
        const auto part = static_cast<double>(parts[i]);
        sums[i % sums.size()] += part * part;
    }
    return ((sums[0] + sums[1]) + (sums[2] + sums[3])) +
           ((sums[4] + sums[5]) + (sums[6] + sums[7]));
}

void RealFFT::forward(std::span<const float> samples, std::span<float> real,
                      std::span<float> imaginary) noexcept {
    const std::size_t bins = binCount();
    assert(samples.size() == points_ && real.size() == bins && imaginary.size() == bins);
    for (std::size_t n = 0; n < points_; ++n)
        plan_->samples[n] = 2.0F * samples[n];
    fftwf_execute(plan_->plan);
    real[0] = plan_->bins[0][0];
    imaginary[0] = plan_->bins[bins][0];
    for (std::size_t k = 1; k < bins; ++k) {
        real[k] = plan_->bins[k][0];
        imaginary[k] = plan_->bins[k][1];
    }
}

} // namespace quorbel
