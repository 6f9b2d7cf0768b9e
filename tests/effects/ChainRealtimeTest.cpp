// Every stage of the chain in one graph, with everything on, as the device's render thread runs it.

#include "effects/EQProcessor.h"
#include "effects/EffectComponents.h"
#include "effects/ToneEqualizer.h"
#include "effects/UnitHarness.h"
#include "platform/graph/GraphFixture.h"
#include "support/RealtimeGuard.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

using testing::RealtimeGuard;
using testing::RealtimeViolations;

struct ChainRealtimeTest : ::testing::TestWithParam<double> {
    ManualClock clock;
    std::int64_t position = 0;
    SourceNode source{chain, [this](const AudioBufferList &buffers, std::uint32_t frames) {
                          for (std::uint32_t i = 0; i < frames; ++i, ++position) {
                              const auto phase = static_cast<float>(position % 480) / 480.0F;
                              buffers.data[0][i] = phase - 0.5F;
                              buffers.data[1][i] = 0.5F - phase * phase;
                          }
                          return statusOK;
                      }};
    EQProcessor eq{EQBand::defaultBands()};
    ToneEqualizer tone;
    std::vector<std::unique_ptr<UnitNode>> units;
    TestOutput::Line line{.native = {GetParam(), 2}};
    AudioGraph graph{std::make_unique<TestOutput>(line), clockedSerialQueues(clock)};

    void SetUp() override {
        GraphNode *last = &source;
        const auto append = [&](GraphNode &node) {
            graph.attach(*last);
            graph.attach(node);
            graph.connect(*last, node, chain);
            last = &node;
        };
        append(eq.eq());
        append(tone.node());
        for (const EffectComponent &component : effectComponents()) {
            if (component.make == nullptr)
                continue;
            units.push_back(std::make_unique<UnitNode>(
                component.make(component.description, 0, clockedSerialQueues(clock))));
            append(*units.back());
        }
        graph.connect(*last, graph.mainMixer(), chain);
        ASSERT_EQ(graph.start(), statusOK);
    }

    /// Everything to a different setting; no two calls in a row set the same.
    void moveAllControls(int step) {
        for (const auto &node : units)
            for (const auto &parameter : node->unit().parameterTree()->allParameters()) {
                const ParameterDescription &range = parameter->description();
                const float place = 0.5F + 0.5F * static_cast<float>(step % 5) / 4.0F;
                parameter->setValue(range.minimum + place * (range.maximum - range.minimum));
            }
        std::vector<EQBand> bands = EQBand::defaultBands();
        for (EQBand &band : bands)
            band.gainDB = static_cast<float>(step % 7) - 3.0F;
        eq.setBands(bands);
        tone.setGainsDB({static_cast<float>(step % 3), 0.0F, 0.0F});
    }
};

TEST_P(ChainRealtimeTest, NeitherAllocatesNorTakesForeignLocksAndStaysFinite) {
    Stereo output(4096);
    int step = 0;
    for (const std::uint32_t frames : {1U, 7U, 64U, 512U, 4096U}) {
        for (int block = 0; block < 10; ++block) {
            moveAllControls(step++);
            const RealtimeGuard guard;
            line.client->renderCycle(output.view(), frames);
            ASSERT_EQ(guard.violations(), RealtimeViolations{}) << "blocks of " << frames;
            clock.advance(frames / GetParam());
            for (std::uint32_t i = 0; i < frames; ++i)
                ASSERT_TRUE(std::isfinite(output.left[i]) && std::isfinite(output.right[i]));
        }
    }
    graph.stop();
}

INSTANTIATE_TEST_SUITE_P(OutputRates, ChainRealtimeTest, ::testing::Values(48000.0, 44100.0));

} // namespace
} // namespace quorbel
