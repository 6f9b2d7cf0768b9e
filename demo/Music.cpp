#include "Music.h"

#include "soundserver/Levels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace quorbel::demo {
namespace {

constexpr int sampleRate = 48000;
constexpr double beatSeconds = 0.3125; // 192 beats a minute: sixteen of them in five seconds

class Mix {
  public:
    explicit Mix(double seconds)
        : left_(static_cast<std::size_t>(std::lround(seconds * sampleRate))), right_(left_.size()) {
    }

    /// Adds `shape(t)`, t in seconds from the start of the note, for `length` seconds.
    template <typename Shape> void add(double start, double length, double pan, Shape shape) {
        const auto first = static_cast<std::size_t>(std::lround(start * sampleRate));
        const auto count = static_cast<std::size_t>(length * sampleRate);
        for (std::size_t frame = 0; frame < count && first + frame < left_.size(); ++frame) {
            const double value = shape(static_cast<double>(frame) / sampleRate);
            left_[first + frame] += static_cast<float>(value * (1.0 - pan));
            right_[first + frame] += static_cast<float>(value * (1.0 + pan));
        }
    }

    soundserver::StereoSound withPeak(float wanted) {
        const float factor =
            wanted / std::max({soundserver::peak(left_), soundserver::peak(right_), 1e-9F});
        for (std::size_t frame = 0; frame < left_.size(); ++frame) {
            left_[frame] *= factor;
            right_[frame] *= factor;
        }
        return {sampleRate, left_, right_};
    }

  private:
    std::vector<float> left_;
    std::vector<float> right_;
};

double sine(double hz, double t) { return std::sin(2.0 * std::numbers::pi * hz * t); }

double noteHz(int semitonesAboveA2) { return 110.0 * std::exp2(semitonesAboveA2 / 12.0); }

/// A string-like note, whose higher harmonics fade faster.
double pluck(double hz, double t) {
    double value = 0.0;
    for (int harmonic = 1; harmonic <= 24 && hz * harmonic < 20000.0; ++harmonic)
        value += sine(hz * harmonic, t) / harmonic * std::exp(-t * (2.0 + 0.5 * harmonic));
    return value * std::min(1.0, t * 500.0);
}

double kick(double t) {
    return std::sin(2.0 * std::numbers::pi * (45.0 * t + 4.0 * (1 - std::exp(-t * 30.0)))) *
           std::exp(-t * 9.0);
}

/// Reproducible white noise.
class Noise {
  public:
    double next() {
        state_ = state_ * 1664525U + 1013904223U;
        return static_cast<double>(state_) / 2147483648.0 - 1.0;
    }

  private:
    std::uint32_t state_ = 1;
};

} // namespace

soundserver::StereoSound composeMusic(double seconds) {
    constexpr std::array<std::array<int, 3>, 4> chords = {
        {{0, 3, 7}, {-4, 0, 3}, {3, 7, 10}, {-2, 2, 5}}}; // A minor, F, C, G
    constexpr std::array<int, 8> melody = {24, 27, 31, 27, 34, 31, 27, 22};
    Mix mix(seconds);
    Noise noise;
    const int beats = static_cast<int>(seconds / beatSeconds);
    for (int beat = 0; beat < beats; ++beat) {
        const double start = beat * beatSeconds;
        const auto &chord = chords[static_cast<std::size_t>(beat / 4 % 4)];
        if (beat % 4 == 0) {
            for (std::size_t voice = 0; voice < chord.size(); ++voice) {
                const double hz = noteHz(chord[voice] + 12);
                mix.add(start, 4 * beatSeconds, 0.4 * (static_cast<double>(voice) - 1.0),
                        [hz](double t) { return 0.25 * pluck(hz, t); });
            }
        }
        if (beat % 2 == 0) {
            mix.add(start, beatSeconds, 0.0, [](double t) { return 1.2 * kick(t); });
        } else {
            mix.add(start, 0.15, 0.0,
                    [&](double t) { return 0.5 * noise.next() * std::exp(-t * 30.0); });
        }
        const double bassHz = noteHz(chord[0] - 12);
        mix.add(start, beatSeconds, 0.0, [bassHz](double t) {
            return 0.6 * (sine(bassHz, t) + 0.3 * sine(2 * bassHz, t)) * std::exp(-t * 5.0) *
                   std::min(1.0, t * 300.0);
        });
        const double melodyHz = noteHz(melody[static_cast<std::size_t>(beat) % melody.size()]);
        mix.add(start, 2 * beatSeconds, beat % 2 == 0 ? 0.3 : -0.3,
                [melodyHz](double t) { return 0.3 * pluck(melodyHz, t); });
        for (const double offset : {0.0, 0.5}) {
            mix.add(start + offset * beatSeconds, 0.06, 0.2,
                    [&](double t) { return 0.35 * noise.next() * std::exp(-t * 70.0); });
        }
    }
    return mix.withPeak(0.25F);
}

} // namespace quorbel::demo
