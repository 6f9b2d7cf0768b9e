#pragma once

#include <span>

#include <array>
#include <vector>

namespace quorbel::soundserver {

/// Level in dB of the sine of `hz` in the samples, 0 dB being one of amplitude 1. A Hann window
/// keeps other components apart that are a few periods of the whole length away.
double toneLevelDB(std::span<const float> samples, double hz, double sampleRate);

/// Power in dB of the residue after subtracting the best-fitting sine of `hz` with constant
/// amplitude and phase, relative to that sine.
double residueDB(std::span<const float> samples, double hz, double sampleRate);

/// Amplitude of the largest sample.
float peak(std::span<const float> samples);

/// Power spectrum, averaged over half-overlapping Hann windows (Welch's method), one value per bin
/// from 0 to half the sample rate. Only ratios of such spectra are meaningful.
struct PowerSpectrum {
    static constexpr int size = 16384;

    double sampleRate = 48000.0;
    std::vector<double> power;

    static PowerSpectrum of(std::span<const float> samples, double sampleRate);

    [[nodiscard]] double frequencyOf(std::size_t bin) const {
        return static_cast<double>(bin) * sampleRate / size;
    }
};

/// The centres of the octaves from 31.5 Hz to 16 kHz.
inline constexpr std::array<double, 10> octaveCentresHz = {31.5, 63,   125,  250,  500,
                                                           1000, 2000, 4000, 8000, 16000};

/// Level of each octave in dB.
std::array<double, 10> octaveLevelsDB(const PowerSpectrum &spectrum);

} // namespace quorbel::soundserver
