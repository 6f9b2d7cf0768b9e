#include "ui/app/SimulatedMusic.h"

#include "engine/ChainFormat.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace quorbel {

namespace {

constexpr double beatSeconds = 0.5;

double sine(double frequencyHz, double seconds) {
    return std::sin(2.0 * std::numbers::pi * frequencyHz * seconds);
}

/// -1 to 1, equal at equal times: a hash of the frame's number (a round of splitmix64).
double noise(double seconds, std::uint32_t channel) {
    auto x = static_cast<std::uint64_t>(seconds * chainSampleRate + 0.5) * 2U + channel;
    x += 0x9E3779B97F4A7C15U;
    x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
    return static_cast<double>(static_cast<std::int64_t>(x ^ (x >> 31U))) / 0x1p63;
}

float music(double seconds, std::uint32_t channel) {
    constexpr std::array roots{55.0, 55.0, 43.65, 49.0}; // Hz, a bar each
    const double bar = seconds / (4.0 * beatSeconds);
    const double root = roots[static_cast<std::size_t>(bar) % roots.size()];
    const double intoBeat = std::fmod(seconds, beatSeconds);
    const double pluck = std::exp(-6.0 * intoBeat);

    double sample = 0.30 * sine(root, seconds) * (0.4 + 0.6 * pluck);
    constexpr std::array chord{4.0, 5.0, 6.0, 8.0, 12.0};
    for (std::size_t i = 0; i < chord.size(); ++i) {
        const double side = ((i + channel) % 2 == 0) ? 1.0 : 0.6;
        for (const double harmonic : {1.0, 2.0, 3.0, 5.0, 8.0})
            sample += side * 0.035 / harmonic * sine(root * chord[i] * harmonic, seconds);
    }
    const double hat = std::exp(-60.0 * std::fmod(seconds, beatSeconds / 2.0));
    return static_cast<float>(sample + (0.02 + 0.18 * hat) * noise(seconds, channel));
}

} // namespace

simulated::Sound simulatedMusic() { return music; }

} // namespace quorbel
