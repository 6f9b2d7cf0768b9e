#include "soundserver/Levels.h"

#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>

namespace quorbel::soundserver {
namespace {

double hann(std::size_t index, std::size_t length) {
    const double phase = 2.0 * std::numbers::pi * static_cast<double>(index);
    return 0.5 - 0.5 * std::cos(phase / static_cast<double>(length));
}

} // namespace

double toneLevelDB(std::span<const float> samples, double hz, double sampleRate) {
    std::complex<double> sum;
    double weight = 0.0;
    for (std::size_t index = 0; index < samples.size(); ++index) {
        const double window = hann(index, samples.size());
        const double phase = 2.0 * std::numbers::pi * hz / sampleRate * static_cast<double>(index);
        sum += window * static_cast<double>(samples[index]) * std::polar(1.0, phase);
        weight += window;
    }
    return 20.0 * std::log10(std::max(2.0 * std::abs(sum) / std::max(weight, 1e-12), 1e-12));
}

double residueDB(std::span<const float> samples, double hz, double sampleRate) {
    // The least-squares fit of a cosine and a sine: two normal equations.
    const auto phase = [&](std::size_t index) {
        return 2.0 * std::numbers::pi * hz / sampleRate * static_cast<double>(index);
    };
    double cc = 0.0;
    double cs = 0.0;
    double ss = 0.0;
    double xc = 0.0;
    double xs = 0.0;
    for (std::size_t index = 0; index < samples.size(); ++index) {
        const double c = std::cos(phase(index));
        const double s = std::sin(phase(index));
        const auto x = static_cast<double>(samples[index]);
        cc += c * c;
        cs += c * s;
        ss += s * s;
        xc += x * c;
        xs += x * s;
    }
    const double determinant = std::max(cc * ss - cs * cs, 1e-12);
    const double a = (xc * ss - xs * cs) / determinant;
    const double b = (xs * cc - xc * cs) / determinant;
    double tone = 0.0;
    double rest = 0.0;
    for (std::size_t index = 0; index < samples.size(); ++index) {
        const double fitted = a * std::cos(phase(index)) + b * std::sin(phase(index));
        tone += fitted * fitted;
        rest += std::pow(static_cast<double>(samples[index]) - fitted, 2);
    }
    return 10.0 * std::log10(std::max(rest, 1e-20) / std::max(tone, 1e-20));
}

float peak(std::span<const float> samples) {
    float largest = 0.0F;
    for (const float sample : samples)
        largest = std::max(largest, std::abs(sample));
    return largest;
}

PowerSpectrum PowerSpectrum::of(std::span<const float> samples, double sampleRate) {
    PowerSpectrum spectrum{sampleRate, std::vector<double>(size / 2 + 1)};
    const std::unique_ptr<float, decltype(&fftwf_free)> input(
        static_cast<float *>(fftwf_malloc(sizeof(float) * size)), fftwf_free);
    const std::unique_ptr<fftwf_complex, decltype(&fftwf_free)> output(
        static_cast<fftwf_complex *>(fftwf_malloc(sizeof(fftwf_complex) * (size / 2 + 1))),
        fftwf_free);
    fftwf_plan plan = fftwf_plan_dft_r2c_1d(size, input.get(), output.get(), FFTW_ESTIMATE);
    std::size_t windows = 0;
    for (std::size_t start = 0; start + size <= samples.size(); start += size / 2, ++windows) {
        for (std::size_t index = 0; index < size; ++index) {
            input.get()[index] =
                samples[start + index] * static_cast<float>(hann(index, std::size_t{size}));
        }
        fftwf_execute(plan);
        for (std::size_t bin = 0; bin < spectrum.power.size(); ++bin) {
            const fftwf_complex &value = output.get()[bin];
            spectrum.power[bin] +=
                std::norm(std::complex<double>(static_cast<double>(value[0]), value[1]));
        }
    }
    fftwf_destroy_plan(plan);
    // Both halves of the spectrum, over the window's energy of 3/8 per sample; a full sine has
    // power 1/2.
    const double fullScale = 0.5 * 0.375 * size * size / 2.0;
    for (double &power : spectrum.power)
        power /= fullScale * static_cast<double>(std::max<std::size_t>(windows, 1));
    return spectrum;
}

std::array<double, 10> octaveLevelsDB(const PowerSpectrum &spectrum) {
    std::array<double, 10> levels{};
    for (std::size_t octave = 0; octave < levels.size(); ++octave) {
        const double from = octaveCentresHz[octave] / std::numbers::sqrt2;
        const double to = octaveCentresHz[octave] * std::numbers::sqrt2;
        double sum = 0.0;
        for (std::size_t bin = 1; bin < spectrum.power.size(); ++bin) {
            const double hz = spectrum.frequencyOf(bin);
            sum += hz >= from && hz < to ? spectrum.power[bin] : 0.0;
        }
        levels[octave] = 10.0 * std::log10(std::max(sum, 1e-20));
    }
    return levels;
}

} // namespace quorbel::soundserver
