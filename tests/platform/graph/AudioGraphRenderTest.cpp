#include "equalizer/ParametricEqualizerNode.h"
#include "platform/graph/GraphFixture.h"
#include "platform/units/UnitStatus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace quorbel {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

TEST(ManualRenderTest, IsBitExactForAnyBlockLengths) {
    std::vector<std::string> log;
    CountingSource source;
    NotingNode twice("twice", log, 2.0F);
    NotingNode half("quarter", log, 0.25F);
    AudioGraph graph(nullptr);
    connectInLine(graph, {&source.node, &twice, &half});

    Stereo block(20'000);
    EXPECT_EQ(graph.render(block.view(), 1), statusUninitialized);
    ASSERT_EQ(graph.start(), statusOK);
    float expected = 0.0F;
    for (const std::uint32_t frames : {1U, 7U, 512U, 8192U, 8193U, 20'000U}) {
        ASSERT_EQ(graph.render(block.view(), frames), statusOK);
        for (std::uint32_t i = 0; i < frames; ++i, expected += 0.5F) {
            ASSERT_EQ(block.left[i], expected);
            ASSERT_EQ(block.right[i], -expected);
        }
    }
    EXPECT_EQ(source.longestBlock, maximumBlockFrames);
    EXPECT_THAT(twice.times, ElementsAre(0, 1, 8, 520, 8712, 16904, 16905, 25097, 33289));

    graph.stop();
    twice.times.clear();
    ASSERT_EQ(graph.start(), statusOK);
    graph.render(block.view(), 10);
    EXPECT_THAT(twice.times, ElementsAre(0)) << "a new run counts from the start";
}

TEST(ManualRenderTest, AFailingStageIsPassedOverAndAFailingSourceIsSilent) {
    std::vector<std::string> log;
    CountingSource source;
    source.position = 100;
    NotingNode twice("twice", log, 2.0F);
    AudioGraph graph(nullptr);
    connectInLine(graph, {&source.node, &twice});
    ASSERT_EQ(graph.start(), statusOK);

    Stereo block(1);
    twice.renderStatus = -7;
    EXPECT_EQ(graph.render(block.view(), 1), -7);
    EXPECT_EQ(block.left[0], 100.0F);

    twice.renderStatus = statusOK;
    source.status = -9;
    EXPECT_EQ(graph.render(block.view(), 1), -9);
    EXPECT_EQ(block.left[0], 0.0F);
    EXPECT_EQ(block.right[0], 0.0F);

    source.status = statusOK;
    EXPECT_EQ(graph.render(block.view(), 1), statusOK);
    EXPECT_EQ(block.left[0], 204.0F);
}

struct ConvertingGraphTest : ::testing::TestWithParam<double> {};

// SampleRateConverterTest measures the pitch and level of converted sound.
TEST_P(ConvertingGraphTest, PullsExactlyWhatItNeeds) {
    const double rate = GetParam();
    CountingSource source;
    TestOutput::Line line;
    line.native = {rate, 2};
    AudioGraph graph{std::make_unique<TestOutput>(line)};
    connectInLine(graph, {&source.node});
    ASSERT_EQ(graph.start(), statusOK);
    EXPECT_EQ(graph.outputFormat(graph.mainMixer()), (StreamFormat{rate, 2}));

    double played = 0.0;
    double worstDrift = 0.0;
    for (std::uint32_t frames = 1; played < rate; frames = frames * 5 % 9973 + 1) {
        const Stereo block = line.play(frames);
        played += frames;
        for (std::uint32_t i = 0; i < frames; ++i)
            ASSERT_EQ(block.left[i], -block.right[i]);
        worstDrift = std::max(
            worstDrift, std::abs(static_cast<double>(source.position) - played * 48000.0 / rate));
    }
    // Reads no further than the input frame that contains the next output sample.
    EXPECT_LE(worstDrift, 2.0 + 48000.0 / rate);
}

INSTANTIATE_TEST_SUITE_P(Rates, ConvertingGraphTest,
                         ::testing::Values(44100.0, 48000.0, 96000.0, 192000.0, 32000.0, 8000.0));

TEST(HardwareRenderTest, FlushesDenormalsWhileRenderingAndOnlyThen) {
    volatile float tiny = std::numeric_limits<float>::min();
    float seen = -1.0F;
    SourceNode source(chain, [&](const AudioBufferList &buffers, std::uint32_t frames) {
        seen = tiny * 0.5F;
        std::fill_n(buffers.data[0], frames, 0.0F);
        std::fill_n(buffers.data[1], frames, 0.0F);
        return statusOK;
    });
    TestOutput::Line line;
    AudioGraph graph(std::make_unique<TestOutput>(line));
    connectInLine(graph, {&source});
    ASSERT_EQ(graph.start(), statusOK);
    line.play(16);
    EXPECT_EQ(seen, 0.0F);
    EXPECT_GT(tiny * 0.5F, 0.0F);
}

TEST(HardwareRenderTest, APauseClearsTheStages) {
    float input = 0.5F;
    SourceNode source(chain, [&](const AudioBufferList &buffers, std::uint32_t frames) {
        std::fill_n(buffers.data[0], frames, input);
        std::fill_n(buffers.data[1], frames, input);
        return statusOK;
    });
    ParametricEqualizerNode equalizer(1);
    equalizer.setBand(0, {.filterType = EqualizerFilterType::lowPass,
                          .frequencyHz = 50.0F,
                          .bandwidthOctaves = 2.0F,
                          .bypass = false});
    TestOutput::Line line;
    line.native.sampleRate = 44100.0; // the converter buffers sound too
    AudioGraph graph(std::make_unique<TestOutput>(line));
    connectInLine(graph, {&source, &equalizer});
    ASSERT_EQ(graph.start(), statusOK);
    line.play(4096);
    input = 0.0F;
    EXPECT_NE(line.play(16).left.front(), 0.0F);
    line.client->renderPaused();
    for (const float sample : line.play(4096).left)
        ASSERT_EQ(sample, 0.0F);
}

} // namespace
} // namespace quorbel
