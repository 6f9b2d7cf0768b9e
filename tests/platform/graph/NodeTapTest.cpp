#include "equalizer/ParametricEqualizerNode.h"
#include "platform/graph/GraphFixture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>

namespace quorbel {
namespace {

struct Heard {
    std::vector<float> left;
    std::vector<float> right;

    AudioGraph::TapBlock listener() {
        return [this](const PCMBuffer &buffer) {
            left.insert(left.end(), buffer.channelData(0),
                        buffer.channelData(0) + buffer.frameLength());
            right.insert(right.end(), buffer.channelData(1),
                         buffer.channelData(1) + buffer.frameLength());
        };
    }
    [[nodiscard]] bool countsFrom(float first) const {
        for (std::size_t i = 0; i < left.size(); ++i)
            if (left[i] != first + static_cast<float>(i) || right[i] != -left[i])
                return false;
        return true;
    }
};

TEST(NodeTapTest, TapsTheFirstOfTwoJoinedStages) {
    CountingSource source;
    ParametricEqualizerNode first(1);
    ParametricEqualizerNode second(1);
    AudioGraph graph(nullptr);
    connectInLine(graph, {&source.node, &first, &second});
    first.setGlobalGainDB(-6.0F);
    second.setGlobalGainDB(-20.0F);
    ASSERT_EQ(graph.start(), statusOK);
    Stereo block(512);
    graph.render(block.view(), 512);
    EXPECT_NEAR(block.left[100], 100.0F * std::pow(10.0F, -1.3F), 1e-4F);

    Heard heard;
    graph.installTap(first, 512, heard.listener());
    graph.render(block.view(), 512);
    ASSERT_EQ(heard.left.size(), 512U);
    EXPECT_NEAR(heard.left[100], 612.0F * std::pow(10.0F, -0.3F), 1e-3F);
    EXPECT_NEAR(block.left[100], 612.0F * std::pow(10.0F, -1.3F), 1e-3F);
}

TEST(NodeTapTest, DeliversOnItsClockAndRestartsWhenReinstalled) {
    ManualClock clock;
    CountingSource source;
    TestOutput::Line line;
    AudioGraph graph(std::make_unique<TestOutput>(line), clockedSerialQueues(clock));
    connectInLine(graph, {&source.node});
    ASSERT_EQ(graph.start(), statusOK);
    line.play(1000); // fades in

    Heard heard;
    graph.installTap(graph.mainMixer(), 512, heard.listener());
    line.play(1000);
    EXPECT_TRUE(heard.left.empty()) << "never inside the render call";
    clock.advance(1000 / 48000.0);
    EXPECT_EQ(heard.left.size(), 512U);
    EXPECT_TRUE(heard.countsFrom(1000.0F));

    graph.removeTap(graph.mainMixer());
    line.play(1000);
    clock.advance(1.0);
    EXPECT_EQ(heard.left.size(), 512U);

    Heard again;
    graph.installTap(graph.mainMixer(), 256, again.listener());
    line.play(256);
    clock.advance(1.0);
    EXPECT_EQ(again.left.size(), 256U);
    EXPECT_TRUE(again.countsFrom(3000.0F)) << "nothing left over from before";
}

TEST(NodeTapTest, InstallsAndRemovesWhileAnotherThreadRenders) {
    CountingSource source;
    TestOutput::Line line;
    AudioGraph graph(std::make_unique<TestOutput>(line));
    connectInLine(graph, {&source.node});
    ASSERT_EQ(graph.start(), statusOK);

    std::atomic<bool> stop{false};
    std::thread render([&] {
        while (!stop) {
            source.position %= 1 << 20; // floats are exact up to here
            line.play(64);
        }
    });
    for (int round = 0; round < 20; ++round) {
        auto blocks = std::make_unique<std::atomic<int>>(0);
        std::atomic<bool> torn{false};
        graph.installTap(graph.mainMixer(), 128,
                         [&, count = blocks.get()](const PCMBuffer &buffer) {
                             for (std::uint32_t i = 0; i < buffer.frameLength(); ++i)
                                 if (buffer.channelData(0)[i] != -buffer.channelData(1)[i])
                                     torn = true;
                             count->fetch_add(1);
                             count->notify_one();
                         });
        blocks->wait(0);
        graph.removeTap(graph.mainMixer());
        EXPECT_FALSE(torn);
        blocks.reset(); // a later call of the listener would touch freed memory
    }
    stop = true;
    render.join();
}

} // namespace
} // namespace quorbel
