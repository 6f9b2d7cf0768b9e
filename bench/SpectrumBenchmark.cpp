#include "analysis/SpectrumAnalyzer.h"
#include "platform/graph/AudioGraph.h"
#include "platform/graph/MixerNode.h"
#include "platform/graph/SourceNode.h"
#include "platform/threads/ManualClock.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace quorbel::bench {
namespace {

/// One analysis; the main thread runs 30 per second.
void spectrumTick(benchmark::State &state) {
    constexpr StreamFormat format{48000.0, 2};
    SourceNode source(format, [](const AudioBufferList &buffers, std::uint32_t frames) {
        for (std::uint32_t i = 0; i < frames; ++i)
            buffers.data[0][i] = buffers.data[1][i] = i % 7 < 3 ? 0.3F : -0.2F;
        return statusOK;
    });
    ManualClock clock;
    AudioGraph graph(nullptr);
    SpectrumAnalyzer analyzer(clock);
    graph.attach(source);
    graph.connect(source, graph.mainMixer(), format);
    if (graph.start() != statusOK) {
        state.SkipWithError("the graph does not start");
        return;
    }
    analyzer.attach(graph, graph.mainMixer());
    std::vector<float> left(4096);
    std::vector<float> right(4096);
    graph.render({left.data(), right.data()}, 4096);
    for (auto _ : state)
        clock.advance(1.0 / 30.0);
    if (analyzer.ticuri() == 0)
        state.SkipWithError("nothing was analysed");
    graph.stop();
}
BENCHMARK(spectrumTick)->Name("spectrum, one tick")->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace quorbel::bench
