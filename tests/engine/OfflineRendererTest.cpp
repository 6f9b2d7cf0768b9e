#include "engine/OfflineRenderer.h"

#include "engine/EngineFixture.h"
#include "support/EveryVectorTarget.h"
#include "support/Stereo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace quorbel::testing {
namespace {

Stereo render(OfflineRenderer &renderer, Stereo input, std::size_t blockFrames) {
    Stereo output(input.frames());
    for (std::size_t at = 0; at < input.frames(); at += blockFrames) {
        const auto frames = static_cast<std::uint32_t>(std::min(blockFrames, input.frames() - at));
        EXPECT_EQ(renderer.render(input.view(at), output.view(at), frames), statusOK);
    }
    return output;
}

/// Flat settings without the limiter, which adds latency.
ChainSettings plain() {
    ChainSettings settings;
    settings.mixer.limiterEnabled = false;
    return settings;
}

ChainSettings shaped() {
    ChainSettings settings = plain();
    settings.bands[2].gainDB = 7.0F;
    settings.bands[8].gainDB = -9.0F;
    settings.spatial.toneTrebleDB = 4.0F;
    settings.eqGlobalGainDB = -3.0F;
    return settings;
}

TEST(OfflineRenderer, IsBitExactForAnyBlockLengths) {
    const Stereo input = noise(60'000);
    const auto with = [&](std::size_t blockFrames) {
        OfflineRenderer renderer(shaped());
        return render(renderer, input, blockFrames);
    };
    const Stereo reference = with(512);
    EXPECT_NE(reference, input);
    EXPECT_EQ(with(512), reference);
    EXPECT_EQ(with(1), reference);
    EXPECT_EQ(with(777), reference);
    EXPECT_EQ(with(60'000), reference) << "longer than the longest block: split inside";
}

/// Settings with every stage active.
ChainSettings everything() {
    ChainSettings settings = shaped();
    settings.spatial.widenerEnabled = settings.spatial.xtcEnabled = true;
    settings.spatial.reverbEnabled = settings.spatial.bassEnabled = true;
    settings.spatial.voiceEnabled = true;
    settings.spatial.widthPercent = 130.0F;
    settings.mixer.saturationEnabled = settings.mixer.crossfeedEnabled = true;
    settings.mixer.autoGainEnabled = settings.mixer.limiterEnabled = true;
    return settings;
}

class WholeChainOnTarget : public EveryVectorTarget {};

TEST_P(WholeChainOnTarget, EqualsTheSmallestVectors) {
    const Stereo input = noise(48'000);
    const auto rendered = [&] {
        OfflineRenderer renderer(everything());
        return render(renderer, input, 512);
    };
    const Stereo here = rendered();
    useTarget(HWY_STATIC_TARGET);
    const Stereo smallest = rendered();
    // Fused multiplications differ by at most 1.4e-5 on AVX2; a wrong lane exceeds that.
    EXPECT_LT(difference(here, smallest), 1e-4);
}

INSTANTIATE_TEST_SUITE_P(Targets, WholeChainOnTarget,
                         ::testing::ValuesIn(WholeChainOnTarget::compiled()),
                         WholeChainOnTarget::nameOf);

TEST(OfflineRenderer, PlaysTenBandsWithAnyNumberInTheSettings) {
    const auto cutAt4kHz = [](std::vector<EQBand> bands) {
        ChainSettings settings = plain();
        settings.bands = std::move(bands);
        OfflineRenderer renderer([] {
            ChainSettings first = plain();
            first.bands.resize(3);
            return first;
        }());
        renderer.apply(settings);
        Stereo tone(9600);
        for (std::size_t frame = 0; frame < 9600; ++frame)
            tone.left[frame] = sine(4000.0)(static_cast<double>(frame) / 48000.0, 0);
        const Stereo after = render(renderer, tone, 512);
        const std::vector<float> settled(after.left.begin() + 4800, after.left.end());
        return 20.0 * std::log10(SineFit::of(settled, 4000.0, 48000.0).amplitude / 0.25);
    };
    std::vector<EQBand> bands = EQBand::defaultBands();
    bands[7].gainDB = -12.0F;
    EXPECT_NEAR(cutAt4kHz(bands), -12.0, 0.05) << "after a file with three";
    bands[7].gainDB = 0.0F;
    bands.push_back({.frequency = 4000.0F, .gainDB = -12.0F});
    EXPECT_NEAR(cutAt4kHz(bands), 0.0, 0.05) << "an eleventh is not played";
}

} // namespace
} // namespace quorbel::testing
