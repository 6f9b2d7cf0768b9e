#include "StageBenchmark.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

namespace quorbel::bench {
namespace {

constexpr StreamFormat format{48000.0, 2};

/// The fastest run: interference from other processes only adds time.
double least(const std::vector<double> &values) { return std::ranges::min(values); }

/// Periodic noise with most of its power between 300 and 4000 Hz: the chain detects a voice and
/// activates the voice stage.
std::vector<float> voiceLikeNoise(std::uint32_t frames) {
    constexpr std::uint32_t width = 8; // moving average with its first zero at 6 kHz
    std::mt19937 random(1);
    std::uniform_real_distribution<float> uniform(-0.5F, 0.5F);
    std::vector<float> white(2 * std::size_t{frames});
    std::ranges::generate(white, [&] { return uniform(random); });
    std::vector<float> noise(white.size());
    for (std::size_t i = 0; i < noise.size(); ++i)
        for (std::size_t k = 0; k < width; ++k)
            noise[i] += 1.5F / width * white[(i + k) % white.size()];
    return noise;
}

void measure(benchmark::State &state, const std::function<Stage()> &make) {
    const auto frames = static_cast<std::uint32_t>(state.range(0));
    const std::vector<float> noise = voiceLikeNoise(frames);
    std::vector<float> left(frames);
    std::vector<float> right(frames);
    const Stage stage = make();
    for (auto _ : state) {
        std::copy_n(noise.data(), frames, left.data());
        std::copy_n(noise.data() + frames, frames, right.data());
        stage(left.data(), right.data(), frames);
        benchmark::DoNotOptimize(left.data());
        benchmark::ClobberMemory();
    }
    state.counters["per_frame"] = benchmark::Counter(static_cast<double>(frames),
                                                     benchmark::Counter::kIsIterationInvariantRate |
                                                         benchmark::Counter::kInvert);
}

const StageBenchmark copy("copy", [] { return [](float *, float *, std::uint32_t) {}; });

} // namespace

StageBenchmark::StageBenchmark(const std::string &name, std::function<Stage()> make) {
    benchmark::RegisterBenchmark(
        name.c_str(), [make = std::move(make)](benchmark::State &state) { measure(state, make); })
        ->Arg(64)
        ->Arg(512)
        ->Arg(4096)
        ->MinTime(0.05)
        ->Repetitions(10)
        ->ComputeStatistics("least", least)
        ->DisplayAggregatesOnly();
}

Stage stageOf(std::shared_ptr<GraphNode> node) {
    if (node->allocateRenderResources(format, maximumBlockFrames) != statusOK)
        throw std::runtime_error("a benchmarked node cannot be allocated");
    return [node = std::move(node), time = RenderTime{}](float *left, float *right,
                                                         std::uint32_t frames) mutable {
        AudioBufferList buffers(left, right);
        node->takeSettings();
        node->render(time, buffers, frames);
        time.sampleTime += frames;
    };
}

} // namespace quorbel::bench
