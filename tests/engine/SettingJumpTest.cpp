#include "engine/OfflineRenderer.h"
#include "platform/graph/GraphFixture.h"
#include "settings/presets/FactoryPresets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <numbers>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace quorbel::testing {
namespace {

using ReverbPreset = SpatialConfig::ReverbPreset;

constexpr std::size_t blockFrames = 512;
constexpr std::size_t changeBlock = 188; // after two seconds
constexpr std::size_t blocks = 376;

using Samples = std::vector<float>;

Samples lowTone() {
    Samples samples(blocks * blockFrames);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(
            0.25 * std::sin(2.0 * std::numbers::pi * 100.0 * static_cast<double>(i) / 48000.0));
    return samples;
}

/// White noise through the sum of first-order low passes an octave apart.
Samples pinkNoise() {
    std::mt19937 random(7);
    std::normal_distribution<float> white(0.0F, 0.05F);
    Samples samples(blocks * blockFrames);
    std::array<float, 8> states{};
    for (float &sample : samples) {
        const float input = white(random);
        sample = 0.0F;
        for (std::size_t i = 0; i < states.size(); ++i) {
            const float pole = std::exp(-2.0F * 3.14159F * 40.0F * std::exp2(float(i)) / 48000.0F);
            states[i] += (1.0F - pole) * (input - states[i]);
            sample += states[i] * std::sqrt(32.0F / std::exp2(float(i)));
        }
    }
    return samples;
}

/// The input rendered with `before`, and with `after` from the change on.
Stereo rendered(const Samples &input, const ChainSettings &before, const ChainSettings *after) {
    OfflineRenderer renderer(before);
    Stereo sound;
    sound.left = sound.right = input;
    for (std::size_t block = 0; block < blocks; ++block) {
        if (after != nullptr && block == changeBlock)
            renderer.apply(*after);
        const AudioBufferList view(&sound.left[block * blockFrames],
                                   &sound.right[block * blockFrames]);
        renderer.render(view, view, blockFrames);
    }
    return sound;
}

/// Of both channels, from the change on; what came before is the same in both.
float largestStep(const Stereo &sound) {
    float largest = 0.0F;
    for (const Samples *samples : {&sound.left, &sound.right})
        for (std::size_t i = changeBlock * blockFrames; i < samples->size(); ++i)
            largest = std::max(largest, std::abs((*samples)[i] - (*samples)[i - 1]));
    return largest;
}

/// The level in dB of the loudest 10 ms from the change on, both channels together.
double loudestWindow(const Stereo &sound) {
    constexpr std::size_t window = 480;
    double loudest = 0.0;
    for (std::size_t start = changeBlock * blockFrames; start + window <= sound.left.size();
         start += window / 4) {
        double sum = 1e-12;
        for (std::size_t i = start; i < start + window; ++i)
            sum += std::pow(sound.left[i], 2.0) + std::pow(sound.right[i], 2.0);
        loudest = std::max(loudest, sum / window);
    }
    return 10.0 * std::log10(loudest);
}

/// Off: the limiter and everything else that is not ours to smooth.
ChainSettings plain() {
    ChainSettings settings;
    settings.mixer.limiterEnabled = false;
    return settings;
}

ChainSettings withBand(float frequency, float gainDB, EQBand::FilterType type, float q = 1.0F) {
    ChainSettings settings = plain();
    settings.bands[4].frequency = frequency;
    settings.bands[4].gainDB = gainDB;
    settings.bands[4].filterType = type;
    settings.bands[4].q = q;
    return settings;
}

ChainSettings withReverb(ReverbPreset preset, float mix) {
    ChainSettings settings = plain();
    settings.spatial.reverbEnabled = true;
    settings.spatial.reverbPreset = preset;
    settings.spatial.reverbMix = mix;
    return settings;
}

ChainSettings withGain(float globalDB, float toneDB) {
    ChainSettings settings = plain();
    settings.eqGlobalGainDB = globalDB;
    settings.spatial.toneBassDB = toneDB;
    settings.spatial.toneTrebleDB = -toneDB;
    return settings;
}

/// The equaliser of a factory preset, without its effects.
ChainSettings withPreset(std::size_t index) {
    ChainSettings settings = plain();
    settings.bands = factoryPresets().at(index).bands;
    return settings;
}

struct Change {
    std::string name;
    ChainSettings before;
    ChainSettings after;
    double loudestDB = 0.5; ///< that a 10 ms window may be louder than with either setting
    friend std::ostream &operator<<(std::ostream &out, const Change &change) {
        return out << change.name;
    }
};

std::vector<Change> changes() {
    using enum EQBand::FilterType;
    return {
        {"BandUp", plain(), withBand(100.0F, 12.0F, parametric)},
        {"BandDown", withBand(100.0F, 12.0F, parametric), withBand(100.0F, -12.0F, parametric)},
        {"BandMoves", withBand(60.0F, 12.0F, parametric, 4.0F),
         withBand(5000.0F, 12.0F, parametric, 4.0F)},
        {"TypeChanges", withBand(200.0F, 6.0F, lowShelf), withBand(200.0F, 6.0F, highShelf)},
        {"PassComes", plain(), withBand(200.0F, 0.0F, highPass)},
        {"Gains", withGain(-12.0F, -6.0F), withGain(6.0F, 6.0F)},
        // A tone in a room swells a little before its echoes have found their final phases.
        {"ReverbOn", plain(), withReverb(ReverbPreset::largeHall, 60.0F), 0.6},
        {"ReverbOff", withReverb(ReverbPreset::plate, 60.0F), plain()},
        {"RoomChanges", withReverb(ReverbPreset::smallRoom, 50.0F),
         withReverb(ReverbPreset::cathedral, 50.0F)},
        {"Preset", withPreset(2), withPreset(20)},
    };
}

class SettingJump : public ::testing::TestWithParam<Change> {
  protected:
    static void expectNoJump(const Samples &input) {
        const Change &change = GetParam();
        const Stereo before = rendered(input, change.before, nullptr);
        const Stereo after = rendered(input, change.after, nullptr);
        const Stereo changing = rendered(input, change.before, &change.after);
        EXPECT_LE(largestStep(changing), 1.5F * std::max(largestStep(before), largestStep(after)));
        EXPECT_LE(loudestWindow(changing),
                  change.loudestDB + std::max(loudestWindow(before), loudestWindow(after)));
    }
};

TEST_P(SettingJump, IsNoneOnALowTone) { expectNoJump(lowTone()); }
TEST_P(SettingJump, IsNoneOnPinkNoise) { expectNoJump(pinkNoise()); }

INSTANTIATE_TEST_SUITE_P(Change, SettingJump, ::testing::ValuesIn(changes()),
                         [](const auto &value) { return value.param.name; });

} // namespace
} // namespace quorbel::testing
