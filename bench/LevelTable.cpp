#include "LevelTable.h"

#include "Music.h"
#include "WholeChain.h"
#include "engine/KWeighting.h"
#include "settings/presets/FactoryPresets.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace quorbel::bench {
namespace {

constexpr std::uint32_t hopFrames = 480; // 10 ms at 48 kHz
constexpr std::size_t windowHops = 10;
constexpr std::size_t switchHop = 150;
constexpr std::size_t hopCount = 350;
/// Windows below are passed over: nothing there is suddenly loud.
constexpr double quietDB = -60.0;

struct Signal {
    std::string name;
    std::vector<float> left;
    std::vector<float> right;
};

/// Noise of -3 dB per octave by the sum of first-order filters of P. Kellet, its channels half
/// correlated, at about -20 dB full scale.
Signal pinkNoise() {
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

Signal music() {
    auto sound = demo::composeMusic(static_cast<double>(hopCount * hopFrames) / 48000.0);
    return {"music", std::move(sound.left), std::move(sound.right)};
}

/// The sound after the chain, in levels of 100 ms every 10 ms; `change` acts on the chain before
/// the hop of the switch.
template <typename Change>
std::vector<double> levels(const Signal &signal, const Preset &preset, const Change &change) {
    WholeChain chain({.bands = preset.bands, .spatial = preset.spatial, .mixer = {}}, true);
    KWeighting weighting(48000.0);
    const std::vector<float> silence(hopFrames);
    std::vector<double> powers;
    for (std::size_t hop = 0; hop < hopCount; ++hop) {
        if (hop == switchHop)
            change(chain);
        std::vector<float> left(signal.left.begin() + hop * hopFrames,
                                signal.left.begin() + (hop + 1) * hopFrames);
        std::vector<float> right(signal.right.begin() + hop * hopFrames,
                                 signal.right.begin() + (hop + 1) * hopFrames);
        chain.process(left.data(), right.data(), hopFrames);
        chain.passTime(hopFrames);
        const auto sums = weighting.squares(
            {left.data(), right.data(), silence.data(), silence.data()}, hopFrames);
        powers.push_back((sums[0] + sums[1]) / hopFrames);
    }
    std::vector<double> result;
    for (std::size_t hop = windowHops; hop <= powers.size(); ++hop) {
        double sum = 0.0;
        for (std::size_t back = 1; back <= windowHops; ++back)
            sum += powers[hop - back];
        result.push_back(10.0 * std::log10(sum / windowHops + 1e-12));
    }
    return result;
}

/// By how much `switched` exceeds the louder end at the worst moment after the switch.
double excessDB(const std::vector<double> &switched, const std::vector<double> &one,
                const std::vector<double> &other) {
    double worst = -200.0;
    for (std::size_t i = switchHop - windowHops; i < switched.size(); ++i)
        if (const double end = std::max(one[i], other[i]); std::max(switched[i], end) > quietDB)
            worst = std::max(worst, switched[i] - end);
    return worst;
}

void printLevelTableOf(const Signal &signal, const std::vector<Preset> &presets) {
    const auto nothing = [](WholeChain &) {};
    std::vector<std::vector<double>> steady;
    for (const Preset &preset : presets)
        steady.push_back(levels(signal, preset, nothing));
    fmt::print("{}: excess in dB over the louder end, worst of {} switches per preset\n"
               "{:<34} {:>6} {:<34} {:>8}\n",
               signal.name, presets.size(), "from", "excess", "to", "compare");
    int aboveOne = 0;
    double worst = -200.0;
    for (std::size_t from = 0; from < presets.size(); ++from) {
        double worstOfRow = -200.0;
        std::size_t worstTo = 0;
        for (std::size_t to = 0; to < presets.size(); ++to) {
            const auto switched = levels(
                signal, presets[from], [&](WholeChain &chain) { chain.applyPreset(presets[to]); });
            const double excess = excessDB(switched, steady[from], steady[to]);
            aboveOne += excess > 1.0 ? 1 : 0;
            if (excess > worstOfRow) {
                worstOfRow = excess;
                worstTo = to;
            }
        }
        // The other end is the unprocessed sound with the gain that Compare has settled at.
        const auto compared =
            levels(signal, presets[from], [](WholeChain &chain) { chain.setBypassed(true); });
        std::vector<double> dry = steady.front(); // of the first preset, which changes nothing
        for (const double gainDB = compared.back() - dry.back(); double &level : dry)
            level += gainDB;
        const double compare = excessDB(compared, steady[from], dry);
        worst = std::max({worst, worstOfRow, compare});
        fmt::print("{:<34} {:>+6.2f} {:<34} {:>+8.2f}\n", presets[from].name, worstOfRow,
                   presets[worstTo].name, compare);
    }
    fmt::print("worst {:+.2f} dB, {} of {} switches above 1 dB\n\n", worst, aboveOne,
               presets.size() * presets.size());
}

} // namespace

void printLevelTable() {
    const std::vector<Preset> presets = factoryPresets();
    for (const Signal &signal : {pinkNoise(), music()})
        printLevelTableOf(signal, presets);
}

} // namespace quorbel::bench
