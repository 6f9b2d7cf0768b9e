#include "platform/dsp/SampleRateConverter.h"

#include "support/SineFit.h"
#include "support/Stereo.h"

#include <gtest/gtest.h>
#include <span>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace quorbel {
namespace {

/// Converts one channel in calls of up to `inputBlock` input and `outputBlock` output frames.
std::vector<float> convert(SampleRateConverter &converter, std::vector<float> sound,
                           std::size_t frames, std::uint32_t inputBlock = 512,
                           std::uint32_t outputBlock = 8192) {
    std::vector<float> result;
    std::vector<float> room(outputBlock);
    std::size_t position = 0;
    while (result.size() < frames) {
        AudioBufferList from;
        from.bufferCount = 1;
        from.data[0] = sound.data() + position;
        AudioBufferList to;
        to.bufferCount = 1;
        to.data[0] = room.data();
        const auto offered =
            static_cast<std::uint32_t>(std::min<std::size_t>(inputBlock, sound.size() - position));
        const auto wanted =
            static_cast<std::uint32_t>(std::min<std::size_t>(outputBlock, frames - result.size()));
        const auto progress = converter.process(from, offered, to, wanted);
        position += progress.consumed;
        result.insert(result.end(), room.begin(), room.begin() + progress.produced);
        if (progress.produced == 0 && position == sound.size())
            break;
    }
    return result;
}

/// Returns second 1 to 2 of a converted sine; the input lasts 3 s.
std::vector<float> convertedSine(double from, double to, double frequency, double amplitude) {
    SampleRateConverter converter(from, to, 1, 8192);
    const auto frames = static_cast<std::size_t>(from) * 3;
    const std::vector<float> result = convert(
        converter, sine(frequency, frames, amplitude, from).left, static_cast<std::size_t>(to) * 2);
    return {result.begin() + static_cast<std::ptrdiff_t>(to), result.end()};
}

double decibels(double ratio) { return 20.0 * std::log10(ratio); }

double levelDB(std::span<const float> sound) {
    double sum = 0.0;
    for (const float sample : sound)
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    return 10.0 * std::log10(2.0 * sum / static_cast<double>(sound.size()));
}

struct Rates {
    double from;
    double to;
};

class ConverterQuality : public ::testing::TestWithParam<Rates> {};

TEST_P(ConverterQuality, KeepsDistortionRippleAndImagesDown) {
    const auto [from, to] = GetParam();
    const double loud = std::pow(10.0, -1.0 / 20.0);
    const double distortion =
        SineFit::of(convertedSine(from, to, 1000.0, loud), 1000.0, to).residualDB();
    EXPECT_LT(distortion, -110.0);

    double worstRipple = 0.0;
    double worstImage = -200.0;
    for (const double frequency :
         {20.0, 1000.0, 5000.0, 10000.0, 15000.0, 18000.0, 19000.0, 20000.0}) {
        const std::vector<float> sound = convertedSine(from, to, frequency, 0.5);
        const SineFit fit = SineFit::of(sound, frequency, to);
        const double gain = decibels(fit.amplitude / 0.5);
        worstRipple = std::max(worstRipple, std::abs(gain));
        worstImage = std::max(worstImage, fit.residualDB());
    }
    // Frequencies above half the new rate must vanish.
    for (int above = 20; to / 2.0 + above < from / 2.0; above += 97)
        worstImage = std::max(worstImage, levelDB(convertedSine(from, to, to / 2.0 + above, 1.0)));
    EXPECT_LT(worstRipple, 0.1);
    EXPECT_LT(worstImage, -100.0);
}

INSTANTIATE_TEST_SUITE_P(Rates, ConverterQuality,
                         ::testing::Values(Rates{44100, 48000}, Rates{48000, 44100},
                                           Rates{48000, 96000}, Rates{48000, 192000}));

TEST(SampleRateConverter, ConvertsAnyPairOfWholeRates) {
    for (const auto [from, to] : {Rates{4000, 384000},
                                  {384000, 4000},
                                  {48000, 4000},
                                  {12345, 48000},
                                  {48000, 44099},
                                  {383997, 4001},
                                  {47999, 48000},
                                  {88200, 48000}}) {
        const double frequency = 0.1 * std::min(from, to);
        const std::vector<float> sound = convertedSine(from, to, frequency, 0.5);
        const SineFit fit = SineFit::of(sound, frequency, to);
        EXPECT_NEAR(decibels(fit.amplitude / 0.5), 0.0, 0.01) << from << " to " << to;
        EXPECT_LT(fit.residualDB(), -90.0) << from << " to " << to;
    }
}

TEST(SampleRateConverter, IsBitExactForAnyBlockLengths) {
    const std::vector<float> sound = noise(30000, 1.0F).left;
    for (const auto [from, to] :
         {Rates{44100, 48000}, {48000, 44100}, {48000, 47999}, {192000, 8000}}) {
        SampleRateConverter converter(from, to, 1, 8192);
        const auto frames = static_cast<std::size_t>(20000.0 * to / from);
        const std::vector<float> whole = convert(converter, sound, frames, 8192, 8192);
        for (const auto &[inputBlock, outputBlock] :
             {std::pair{1U, 1U}, {1U, 8192U}, {7U, 3U}, {64U, 1000U}, {5000U, 1U}}) {
            converter.reset();
            EXPECT_EQ(convert(converter, sound, frames, inputBlock, outputBlock), whole)
                << from << " to " << to << " in blocks of " << inputBlock << " and " << outputBlock;
        }
    }
}

// Converts an hour of silence in output blocks of varying length. The frames consumed must follow
// the ratio exactly, and inputFramesFor must predict the input of each block.
TEST(SampleRateConverter, CountsFramesExactlyForAnHour) {
    for (const auto [from, to] : {Rates{44100, 48000}, {48000, 44100}, {44099, 48000}}) {
        SampleRateConverter converter(from, to, 1, 8192);
        const AudioBufferList silence; // no channels: frames are only counted
        AudioBufferList nowhere;
        std::uint64_t consumed = 0;
        std::uint64_t produced = 0;
        std::mt19937 random(5);
        const auto hour = static_cast<std::uint64_t>(to) * 3600;
        while (produced < hour) {
            const auto wanted = static_cast<std::uint32_t>(1 + random() % 6000);
            const auto needed = static_cast<std::uint32_t>(converter.inputFramesFor(wanted));
            const auto progress = converter.process(silence, needed, nowhere, wanted);
            ASSERT_EQ(progress.produced, wanted);
            ASSERT_EQ(progress.consumed, needed);
            consumed += needed;
            produced += wanted;
            ASSERT_EQ(consumed, 1 + (produced - 1) * static_cast<std::uint64_t>(from) /
                                        static_cast<std::uint64_t>(to));
        }
    }
}

} // namespace
} // namespace quorbel
