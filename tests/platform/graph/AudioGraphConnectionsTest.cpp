#include "platform/graph/GraphFixture.h"
#include "platform/units/UnitStatus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorbel {
namespace {

using ::testing::ElementsAre;

struct AudioGraphConnectionsTest : ::testing::Test {
    std::vector<std::string> log;
    CountingSource source;
    NotingNode a{"a", log};
    NotingNode b{"b", log};
    AudioGraph graph{nullptr};

    std::vector<std::string> takeLog() { return std::exchange(log, {}); }
};

TEST_F(AudioGraphConnectionsTest, AllocatesConnectedNodesForEachRun) {
    connectInLine(graph, {&source.node, &a, &b});
    ASSERT_EQ(graph.start(), statusOK);
    EXPECT_THAT(takeLog(), ElementsAre("allocate a", "allocate b"));
    EXPECT_EQ(b.format, chain);
    EXPECT_EQ(graph.start(), statusOK) << "starting twice is harmless";
    graph.stop();
    EXPECT_FALSE(graph.isRunning());
    EXPECT_THAT(takeLog(), ElementsAre("deallocate b", "deallocate a"));

    graph.disconnectInput(graph.mainMixer());
    graph.disconnectOutput(a);
    graph.connect(source.node, b, chain);
    graph.connect(b, graph.mainMixer(), chain);
    ASSERT_EQ(graph.start(), statusOK);
    EXPECT_THAT(takeLog(), ElementsAre("allocate b")) << "the other is left out";
}

TEST_F(AudioGraphConnectionsTest, NeedsAPathFromASourceToTheMixer) {
    EXPECT_EQ(graph.start(), statusNoConnection);

    graph.attach(a);
    graph.attach(b);
    graph.connect(a, graph.mainMixer(), chain);
    EXPECT_EQ(graph.start(), statusNoConnection) << "a stage that is no source";
    graph.connect(b, a, chain);
    graph.connect(a, b, chain);
    EXPECT_EQ(graph.start(), statusNoConnection) << "a ring beside the mixer";

    graph.attach(source.node);
    graph.connect(source.node, a, chain);
    EXPECT_EQ(graph.start(), statusNoConnection) << "the mixer is not reached";
    graph.connect(a, graph.mainMixer(), chain);
    EXPECT_EQ(graph.start(), statusOK);
    graph.stop();

    graph.detach(a);
    EXPECT_FALSE(graph.isAttached(a));
    EXPECT_FALSE(graph.outputFormat(source.node).isValid());
    EXPECT_EQ(graph.start(), statusNoConnection) << "detaching takes the connections along";
}

TEST_F(AudioGraphConnectionsTest, ConnectingReplacesEarlierConnectionsOfBothEnds) {
    connectInLine(graph, {&source.node, &a});
    graph.attach(b);
    graph.connect(source.node, b, chain);
    EXPECT_EQ(graph.start(), statusNoConnection) << "a lost its input";
    graph.connect(b, graph.mainMixer(), chain);
    EXPECT_FALSE(graph.outputFormat(a).isValid());
    ASSERT_EQ(graph.start(), statusOK);
    EXPECT_THAT(takeLog(), ElementsAre("allocate b"));
}

TEST_F(AudioGraphConnectionsTest, AFailureLeavesNothingAllocatedAndTheNextStartWorks) {
    TestOutput::Line line;
    AudioGraph live(std::make_unique<TestOutput>(line), threadedSerialQueues());
    connectInLine(live, {&source.node, &a, &b});

    b.allocationStatus = -5;
    EXPECT_EQ(live.start(), -5);
    EXPECT_THAT(takeLog(), ElementsAre("allocate a", "deallocate a"));
    EXPECT_EQ(line.client, nullptr);

    b.allocationStatus = statusOK;
    line.startStatus = -19;
    EXPECT_EQ(live.start(), -19);
    EXPECT_FALSE(live.isRunning());
    EXPECT_THAT(takeLog(), ElementsAre("allocate a", "allocate b", "deallocate b", "deallocate a"));

    line.startStatus = statusOK;
    EXPECT_EQ(live.start(), statusOK);
    EXPECT_NE(line.client, nullptr);
    live.stop();
    EXPECT_EQ(line.client, nullptr);
}

} // namespace
} // namespace quorbel
