#include "effects/EQProcessor.h"

#include "effects/FilterBandwidth.h"
#include "effects/ToneEqualizer.h"

#include <gtest/gtest.h>

#include <limits>

namespace quorbel {
namespace {

TEST(FilterBandwidthTest, FollowsTheFormulaWithinItsLimits) {
    EXPECT_NEAR(bandwidthOctaves(1.0F), 1.3884839F, 1e-6);
    // Definition: Q = f0 / (f2 − f1) for band edges with f1·f2 = f0².
    for (const float q : {0.2F, 0.5F, 0.707F, 2.0F, 10.0F, 28.0F}) {
        const double ratio = std::exp2(bandwidthOctaves(q));
        EXPECT_NEAR(std::sqrt(ratio) / (ratio - 1.0), double{q}, 1e-5 * double{q});
    }
    for (const float q : {0.1F, 0.0F, -3.0F, 0.1824F, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(bandwidthOctaves(q), 5.0F) << q;
    EXPECT_LT(bandwidthOctaves(0.1827F), 5.0F);
    for (const float q : {100.0F, std::numeric_limits<float>::infinity()})
        EXPECT_EQ(bandwidthOctaves(q), 0.05F) << q;
}

struct EQProcessorTest : ::testing::Test {
    EQProcessor processor{EQBand::defaultBands()};
};

TEST_F(EQProcessorTest, CopiesEveryFieldOfEveryBandOntoTheNode) {
    using Model = EQBand::FilterType;
    using Node = EqualizerFilterType;
    std::vector<EQBand> bands = EQBand::defaultBands();
    const std::pair<Model, Node> types[] = {{Model::parametric, Node::parametric},
                                            {Model::lowShelf, Node::lowShelf},
                                            {Model::highShelf, Node::highShelf},
                                            {Model::lowPass, Node::lowPass},
                                            {Model::highPass, Node::highPass}};
    for (std::size_t i = 0; i < std::size(types); ++i)
        bands[i] = {.frequency = 100.0F + static_cast<float>(i),
                    .gainDB = -1.5F * static_cast<float>(i),
                    .q = 0.5F + static_cast<float>(i),
                    .filterType = types[i].first,
                    .bypassed = i % 2 == 1};
    processor.setBands(bands);
    for (std::size_t i = 0; i < std::size(types); ++i) {
        const EqualizerBandSettings expected{.filterType = types[i].second,
                                             .frequencyHz = bands[i].frequency,
                                             .bandwidthOctaves = bandwidthOctaves(bands[i].q),
                                             .gainDB = bands[i].gainDB,
                                             .bypass = bands[i].bypassed};
        EXPECT_EQ(processor.eq().band(i), expected) << "band " << i;
    }
    processor.setGlobalGainDB(-40.0F);
    EXPECT_EQ(processor.eq().globalGainDB(), -40.0F);
}

TEST(ToneEqualizerTest, HasTheThreeBandsAndMovesOnlyTheirGains) {
    ToneEqualizer tone;
    tone.setGainsDB({0.0F, 4.0F, -5.0F});
    const auto expected = [](EqualizerFilterType type, float hz, float q, float gain) {
        return EqualizerBandSettings{type, hz, bandwidthOctaves(q), gain, false};
    };
    using enum EqualizerFilterType;
    EXPECT_EQ(tone.node().band(0), expected(lowShelf, 100.0F, 0.707F, 0.0F));
    EXPECT_EQ(tone.node().band(1), expected(parametric, 1000.0F, 0.7F, 4.0F));
    EXPECT_EQ(tone.node().band(2), expected(highShelf, 5000.0F, 0.707F, -5.0F));
}

} // namespace
} // namespace quorbel
