#include "platform/dsp/SpectrumMeasurement.h"

#include <fftw3.h>

#include <array>
#include <cmath>
#include <numbers>

namespace quorbel::testing {
namespace {

constexpr double twoPi = 2.0 * std::numbers::pi;

/// Least squares of `signal` on cosine, sine and 1: the three factors.
std::array<double, 3> fitSine(std::span<const float> signal, double frequencyHz,
                              double sampleRate) {
    std::array<std::array<double, 4>, 3> rows{};
    for (std::size_t n = 0; n < signal.size(); ++n) {
        const double phase = twoPi * frequencyHz * static_cast<double>(n) / sampleRate;
        const std::array<double, 4> basis{std::cos(phase), std::sin(phase), 1.0, signal[n]};
        for (std::size_t row = 0; row < 3; ++row)
            for (std::size_t column = 0; column < 4; ++column)
                rows[row][column] += basis[row] * basis[column];
    }
    for (std::size_t pivot = 0; pivot < 3; ++pivot)
        for (std::size_t row = 0; row < 3; ++row) {
            if (row == pivot)
                continue;
            const double factor = rows[row][pivot] / rows[pivot][pivot];
            for (std::size_t column = 0; column < 4; ++column)
                rows[row][column] -= factor * rows[pivot][column];
        }
    return {rows[0][3] / rows[0][0], rows[1][3] / rows[1][1], rows[2][3] / rows[2][2]};
}

} // namespace

std::vector<double> powerSpectrum(std::span<const double> signal) {
    std::vector<double> input(signal.begin(), signal.end());
    std::vector<std::array<double, 2>> bins(signal.size() / 2 + 1);
    auto *output = reinterpret_cast<fftw_complex *>(bins.data());
    fftw_plan plan =
        fftw_plan_dft_r2c_1d(static_cast<int>(signal.size()), input.data(), output, FFTW_ESTIMATE);
    fftw_execute(plan);
    fftw_destroy_plan(plan);
    std::vector<double> power;
    power.reserve(bins.size());
    for (const auto &bin : bins)
        power.push_back(bin[0] * bin[0] + bin[1] * bin[1]);
    return power;
}

double energyOutsideDB(std::span<const float> signal, double lowHz, double highHz,
                       double sampleRate) {
    const auto length = static_cast<double>(signal.size());
    std::vector<double> windowed(signal.size());
    for (std::size_t n = 0; n < signal.size(); ++n) {
        const double phase = twoPi * static_cast<double>(n) / length;
        const double window = 0.35875 - 0.48829 * std::cos(phase) + 0.14128 * std::cos(2 * phase) -
                              0.01168 * std::cos(3 * phase);
        windowed[n] = window * static_cast<double>(signal[n]);
    }
    const std::vector<double> power = powerSpectrum(windowed);
    double inside = 0.0;
    double outside = 0.0;
    for (std::size_t bin = 0; bin < power.size(); ++bin) {
        const double frequency = static_cast<double>(bin) * sampleRate / length;
        (frequency >= lowHz && frequency <= highHz ? inside : outside) += power[bin];
    }
    return 10.0 * std::log10(outside / inside);
}

double residualDB(std::span<const float> signal, double frequencyHz, double sampleRate) {
    const auto [cosine, sineFactor, constant] = fitSine(signal, frequencyHz, sampleRate);
    double residual = 0.0;
    for (std::size_t n = 0; n < signal.size(); ++n) {
        const double phase = twoPi * frequencyHz * static_cast<double>(n) / sampleRate;
        const double fit = cosine * std::cos(phase) + sineFactor * std::sin(phase) + constant;
        residual += std::pow(static_cast<double>(signal[n]) - fit, 2);
    }
    const double power = 0.5 * (cosine * cosine + sineFactor * sineFactor);
    return 10.0 * std::log10(residual / static_cast<double>(signal.size()) / power);
}

double amplitudeAt(std::span<const float> signal, double frequencyHz, double sampleRate) {
    const auto [cosine, sineFactor, constant] = fitSine(signal, frequencyHz, sampleRate);
    return std::hypot(cosine, sineFactor);
}

std::vector<float> sine(double frequencyHz, double amplitude, std::size_t frames,
                        double sampleRate) {
    std::vector<float> result(frames);
    for (std::size_t n = 0; n < frames; ++n)
        result[n] = static_cast<float>(
            amplitude * std::sin(twoPi * frequencyHz * static_cast<double>(n) / sampleRate));
    return result;
}

} // namespace quorbel::testing
