#include "platform/dsp/RealFFT.h"

#include "support/Stereo.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <thread>
#include <vector>

namespace quorbel {
namespace {

using std::numbers::pi;

struct Bins {
    std::vector<float> real;
    std::vector<float> imaginary;
};

Bins transform(RealFFT &fft, const std::vector<float> &samples) {
    Bins bins{std::vector<float>(fft.binCount()), std::vector<float>(fft.binCount())};
    fft.forward(samples, bins.real, bins.imaginary);
    return bins;
}

std::complex<double> definition(const std::vector<float> &x, std::size_t k) {
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < x.size(); ++n)
        sum += static_cast<double>(x[n]) *
               std::polar(1.0, -2.0 * pi * static_cast<double>(k * n % x.size()) /
                                   static_cast<double>(x.size()));
    return sum;
}

TEST(RealFFT, GivesTwiceTheDefinitionPackedIntoHalfTheBins) {
    for (const std::size_t points : {64UL, 2048UL}) {
        RealFFT fft(points);
        const std::vector<float> x = noise(points, 1.0F).left;
        const Bins bins = transform(fft, x);
        // Rounding error of log2(N) stages; the bins have a magnitude of about sqrt(N).
        const double tolerance = 2e-6 * std::sqrt(static_cast<double>(points));
        EXPECT_NEAR(bins.real[0], 2.0 * definition(x, 0).real(), tolerance);
        EXPECT_NEAR(bins.imaginary[0], 2.0 * definition(x, points / 2).real(), tolerance);
        for (std::size_t k = 1; k < points / 2; ++k) {
            const std::complex<double> expected = 2.0 * definition(x, k);
            ASSERT_NEAR(bins.real[k], expected.real(), tolerance) << k;
            ASSERT_NEAR(bins.imaginary[k], expected.imag(), tolerance) << k;
        }
    }
}

TEST(RealFFT, ManyThreadsMayMakeAndUseTheirOwn) {
    const std::vector<float> x = noise(4096, 1.0F).left;
    RealFFT reference(4096);
    const Bins expected = transform(reference, x);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round) {
                RealFFT fft(4096);
                const Bins bins = transform(fft, x);
                EXPECT_EQ(bins.real, expected.real);
                EXPECT_EQ(bins.imaginary, expected.imaginary);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace
} // namespace quorbel
