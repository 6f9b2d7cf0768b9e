#include "platform/graph/GraphFixture.h"
#include "platform/graph/ParametricEqualizerNode.h"
#include "platform/graph/UnitNode.h"
#include "support/RealtimeGuard.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

using testing::RealtimeGuard;
using testing::RealtimeViolations;

// The whole way from the source to the output, at every block length, in the states that do the
// most work: equaliser gliding, mixer converting, tap installed.
class RenderPathRealtimeTest : public ::testing::TestWithParam<double> {};

TEST_P(RenderPathRealtimeTest, NeitherAllocatesNorLocks) {
    ManualClock clock;
    CountingSource source;
    ParametricEqualizerNode equalizer(10);
    TestOutput::Line line{.native = {GetParam(), 2}};
    AudioGraph graph(std::make_unique<TestOutput>(line), clockedSerialQueues(clock));
    connectInLine(graph, {&source.node, &equalizer});
    ASSERT_EQ(graph.start(), statusOK);
    graph.installTap(graph.mainMixer(), 512, [](const PCMBuffer &) {});

    Stereo output(20'000);
    float gain = -12.0F;
    for (const std::uint32_t frames : {1U, 7U, 64U, 512U, 4096U, 20'000U}) {
        for (int block = 0; block < 5; ++block) {
            gain = -gain * 0.9F;
            for (std::size_t band = 0; band < equalizer.bandCount(); ++band)
                equalizer.setBand(band, {.frequencyHz = 40.0F * static_cast<float>(2 << band),
                                         .gainDB = gain,
                                         .bypass = block == 4});
            equalizer.setGlobalGainDB(gain);
            const RealtimeGuard guard;
            line.client->renderCycle(output.view(), frames);
            ASSERT_EQ(guard.violations(), RealtimeViolations{})
                << "block " << block << " of " << frames << " frames at " << GetParam() << " Hz";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(OutputRates, RenderPathRealtimeTest,
                         ::testing::Values(48000.0, 44100.0, 192000.0));

} // namespace
} // namespace quorbel
