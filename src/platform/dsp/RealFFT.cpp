#include "platform/dsp/RealFFT.h"

#include <fftw3.h>

#include <array>
#include <cassert>
#include <cmath>
#include <cstring>
#include <mutex>
#include <new>
#include <numbers>
#include <stdexcept>

namespace quorbel {

std::vector<float> normalisedHannWindow(std::size_t points) {
    std::vector<float> window(points);
    for (std::size_t n = 0; n < points; ++n) {
        const double phase =
            2.0 * std::numbers::pi * static_cast<double>(n) / static_cast<double>(points);
        window[n] = static_cast<float>(0.8165 * (1.0 - std::cos(phase)));
    }
    return window;
}

namespace {

/// Guards FFTW's planner: only one thread at a time may create or destroy plans.
std::mutex &plannerMutex() {
    static std::mutex mutex;
    return mutex;
}

/// Two complex numbers or factors. Every supported machine has four lanes.
using ComplexPair [[gnu::vector_size(4 * sizeof(float))]] = float;

ComplexPair loadPair(const fftwf_complex *numbers) noexcept {
    ComplexPair result;
    std::memcpy(&result, numbers, sizeof result);
    return result;
}

} // namespace

/// FFTW's last step of a real transform takes twice as long as a complex transform of half the
/// length. FFTW therefore transforms even samples as real and odd samples as imaginary parts;
/// `separate` computes the real transform's bins; most callers need only some.
struct RealFFT::Plan {
    std::size_t halfPoints;
    float *samples = nullptr;
    fftwf_complex *halves = nullptr; ///< result of the complex transform
    fftwf_complex *bins = nullptr;   ///< result of the real transform, once separated
    fftwf_complex *turns = nullptr;  ///< cosine and sine of 2πk / points
    fftwf_plan plan = nullptr;

    explicit Plan(std::size_t points)
        : halfPoints(points / 2), samples(fftwf_alloc_real(points)),
          halves(fftwf_alloc_complex(halfPoints)), bins(fftwf_alloc_complex(halfPoints)),
          turns(fftwf_alloc_complex(halfPoints)) {
        if (samples != nullptr && halves != nullptr && bins != nullptr && turns != nullptr) {
            const std::lock_guard lock(plannerMutex());
            // FFTW_MEASURE could change the algorithm, and with it the rounding, from run to run.
            plan = fftwf_plan_dft_1d(static_cast<int>(halfPoints),
                                     reinterpret_cast<fftwf_complex *>(samples), halves,
                                     FFTW_FORWARD, FFTW_ESTIMATE);
        }
        if (plan == nullptr) {
            free();
            throw std::bad_alloc();
        }
        for (std::size_t k = 0; k < halfPoints; ++k) {
            const double turn =
                2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(points);
            turns[k][0] = static_cast<float>(std::cos(turn));
            turns[k][1] = static_cast<float>(std::sin(turn));
        }
    }
    ~Plan() { free(); }
    Plan(const Plan &) = delete;
    Plan &operator=(const Plan &) = delete;

    /// Separates bin k, 1 to halfPoints − 1: with Z the complex transform and its mirror image M =
    /// conj Z[halfPoints − k], X[k] = ((Z[k] + M) − i·exp(−2πik / points)·(Z[k] − M)) / 2.
    void separate(std::size_t k) noexcept {
        const float *const z = halves[k];
        const float *const mirrored = halves[halfPoints - k];
        const float *const turn = turns[k];
        const float differenceReal = z[0] - mirrored[0];
        const float differenceImaginary = z[1] + mirrored[1];
        const float turnedReal = turn[0] * differenceImaginary - turn[1] * differenceReal;
        const float turnedImaginary = -turn[0] * differenceReal - turn[1] * differenceImaginary;
        bins[k][0] = 0.5F * ((z[0] + mirrored[0]) + turnedReal);
        bins[k][1] = 0.5F * ((z[1] - mirrored[1]) + turnedImaginary);
    }

    /// Separates bins `first` to `last`, both included, two at a time with the same arithmetic.
    void separate(std::size_t first, std::size_t last) noexcept {
        const ComplexPair conjugated = {1.0F, -1.0F, 1.0F, -1.0F};
        std::size_t k = first;
        for (; k + 1 <= last; k += 2) {
            const ComplexPair z = loadPair(halves + k);
            const ComplexPair backwards = loadPair(halves + halfPoints - k - 1);
            const ComplexPair mirrored =
                __builtin_shufflevector(backwards, backwards, 2, 3, 0, 1) * conjugated;
            const ComplexPair turn = loadPair(turns + k);
            const ComplexPair cosines =
                __builtin_shufflevector(turn, turn, 0, 0, 2, 2) * conjugated;
            const ComplexPair sines = __builtin_shufflevector(turn, turn, 1, 1, 3, 3);
            const ComplexPair difference = z - mirrored;
            const ComplexPair swapped = __builtin_shufflevector(difference, difference, 1, 0, 3, 2);
            const ComplexPair separated =
                0.5F * ((z + mirrored) + (cosines * swapped - sines * difference));
            std::memcpy(bins + k, &separated, sizeof separated);
        }
        if (k == last)
            separate(k);
    }

  private:
    void free() {
        if (plan != nullptr) {
            const std::lock_guard lock(plannerMutex());
            fftwf_destroy_plan(plan);
        }
        for (fftwf_complex *numbers : {turns, bins, halves})
            fftwf_free(numbers);
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
    plan_->separate(bin);
    const auto real = static_cast<double>(plan_->bins[bin][0]);
    const auto imaginary = static_cast<double>(plan_->bins[bin][1]);
    return real * real + imaginary * imaginary;
}

double RealFFT::powerBetween(std::size_t first, std::size_t last) const noexcept {
    plan_->separate(first, last);
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
    plan_->separate(1, bins - 1);
    real[0] = plan_->halves[0][0] + plan_->halves[0][1];
    imaginary[0] = plan_->halves[0][0] - plan_->halves[0][1];
    for (std::size_t k = 1; k < bins; ++k) {
        real[k] = plan_->bins[k][0];
        imaginary[k] = plan_->bins[k][1];
    }
}

} // namespace quorbel
