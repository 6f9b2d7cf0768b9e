#include "platform/dsp/SpectrumMeasurement.h"

#include <fftw3.h>

#include <array>
#include <cmath>
#include <numbers>

namespace quorbel::testing {
namespace {

constexpr double twoPi = 2.0 * std::numbers::pi;

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

} // namespace quorbel::testing
