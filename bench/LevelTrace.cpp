#include "LevelTrace.h"

#include "Music.h"
#include "engine/KWeighting.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <utility>

namespace quorbel::bench {
namespace {

/// Level in dB below which windows do not count: they contain no sudden loudness.
constexpr double quietDB = -60.0;

/// Pink noise at about -20 dBFS from P. Kellet's sum of first-order filters (-3 dB per octave),
/// with half-correlated channels.
LevelSound pinkNoise() {
    std::mt19937 random(1);
    const auto channel = [&] {
        std::normal_distribution<double> white(0.0, 1.0);
        std::array<double, 3> poles{};
        std::vector<double> samples(hopCount * hopFrames);
        for (double &sample : samples) {
            const double input = white(random);
            poles = {0.99765 * poles[0] + 0.0990460 * input, 0.96300 * poles[1] + 0.2965164 * input,
                     0.57000 * poles[2] + 1.0526913 * input};
            sample = poles[0] + poles[1] + poles[2] + 0.1848 * input;
        }
        return samples;
    };
    const auto shared = channel();
    const auto mixed = [&](const std::vector<double> &own) {
        std::vector<float> samples(own.size());
        for (std::size_t i = 0; i < own.size(); ++i)
            samples[i] = static_cast<float>(0.03 * (own[i] + shared[i]));
        return samples;
    };
    return {"pink noise", mixed(channel()), mixed(channel())};
}

LevelSound music() {
    auto sound = demo::composeMusic(static_cast<double>(hopCount * hopFrames) / 48000.0);
    return {"music", std::move(sound.left), std::move(sound.right)};
}

} // namespace

std::vector<LevelSound> levelSounds() { return {pinkNoise(), music()}; }

LevelTrace levelTraceOf(const LevelSound &sound) {
    KWeighting weighting(48000.0);
    const std::vector<float> silence(hopFrames);
    std::vector<double> powers;
    for (std::size_t begin = 0; begin + hopFrames <= sound.left.size(); begin += hopFrames) {
        const auto sums = weighting.squares(
            {sound.left.data() + begin, sound.right.data() + begin, silence.data(), silence.data()},
            hopFrames);
        powers.push_back((sums[0] + sums[1]) / hopFrames);
    }
    LevelTrace levels;
    for (std::size_t hop = windowHops; hop <= powers.size(); ++hop) {
        double sum = 0.0;
        for (std::size_t back = 1; back <= windowHops; ++back)
            sum += powers[hop - back];
        levels.push_back(10.0 * std::log10(sum / windowHops + 1e-12));
    }
    return levels;
}

double excessDB(const LevelTrace &switched, const LevelTrace &one, const LevelTrace &other) {
    double worst = -200.0;
    const std::size_t size = std::min({switched.size(), one.size(), other.size()});
    for (std::size_t i = switchHop - windowHops; i < size; ++i)
        if (const double end = std::max(one[i], other[i]); std::max(switched[i], end) > quietDB)
            worst = std::max(worst, switched[i] - end);
    return worst;
}

} // namespace quorbel::bench
