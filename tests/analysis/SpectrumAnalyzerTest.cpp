#include "analysis/SpectrumAnalyzer.h"

#include "platform/graph/GraphFixture.h"
#include "platform/graph/MixerNode.h"
#include "platform/graph/SourceNode.h"
#include "platform/threads/ManualClock.h"
#include "platform/threads/SampleRing.h"

#include <gtest/gtest.h>
#include <span>

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <numbers>
#include <numeric>
#include <vector>

namespace quorbel {
namespace {

using std::numbers::pi;

/// Centre frequency of the loudest band.
float loudestHz(const SpectrumAnalyzer &analyzer) {
    const auto loudest = std::ranges::max_element(analyzer.bands());
    return SpectrumAnalyzer::bandFrequency(
        static_cast<std::size_t>(loudest - analyzer.bands().begin()));
}

/// An analyzer with its own clock on a graph that the test renders block by block.
class SpectrumAnalyzerTest : public ::testing::Test {
  protected:
    using Signal = std::function<float(std::size_t frame)>;
    static constexpr double tick = 1.0 / 30.0;

    SpectrumAnalyzerTest() {
        graph_.attach(source_);
        graph_.connect(source_, graph_.mainMixer(), format_);
        EXPECT_EQ(graph_.start(), statusOK);
        QObject::connect(&analyzer_, &SpectrumAnalyzer::bandsChanged, [this] { ++published_; });
        QObject::connect(&analyzer_, &SpectrumAnalyzer::benziLenteChanged,
                         [this] { ++slowPublished_; });
    }

    void attach() { analyzer_.attach(graph_, graph_.mainMixer()); }

    void play(std::uint32_t frames, Signal left, Signal right) {
        left_ = std::move(left);
        right_ = std::move(right);
        played_ = 0;
        std::vector<float> l(frames);
        std::vector<float> r(frames);
        ASSERT_EQ(graph_.render({l.data(), r.data()}, frames), statusOK);
    }
    void play(std::uint32_t frames, const Signal &both) { play(frames, both, both); }

    void waitForTick() { clock_.advance(tick * 1.001); }

    static Signal silence() {
        return [](std::size_t) { return 0.0F; };
    }
    /// A sine in the middle of bin `k` of 2048.
    static Signal sineAtBin(int k, float amplitude) {
        return [=](std::size_t n) {
            return amplitude *
                   static_cast<float>(std::sin(2.0 * pi * k * static_cast<double>(n) / 2048.0));
        };
    }
    static float levelOf(double magnitude) {
        return static_cast<float>(
            std::clamp((20.0 * std::log10(magnitude) + 60.0) / 60.0, 0.0, 1.0));
    }

    const StreamFormat format_{48000.0, 2};
    Signal left_;
    Signal right_;
    std::size_t played_ = 0;
    SourceNode source_{format_, [this](const AudioBufferList &buffers, std::uint32_t frames) {
                           for (std::uint32_t i = 0; i < frames; ++i, ++played_) {
                               buffers.data[0][i] = left_(played_);
                               buffers.data[1][i] = right_(played_);
                           }
                           return statusOK;
                       }};
    ManualClock clock_;
    AudioGraph graph_{nullptr};
    SpectrumAnalyzer analyzer_{clock_};
    int published_ = 0;
    int slowPublished_ = 0;
};

TEST_F(SpectrumAnalyzerTest, EveryBandIsTheMeanMagnitudeOfItsBins) {
    const std::vector<float> samples = noise(2048, 1.0F).left;
    attach();
    play(2048, [&](std::size_t n) { return samples[n]; });
    waitForTick();

    const auto magnitude = [&](int k) {
        std::complex<double> sum = 0.0;
        for (std::size_t n = 0; n < 2048; ++n)
            sum += static_cast<double>(samples[n]) * 0.8165 *
                   (1.0 - std::cos(2.0 * pi * static_cast<double>(n) / 2048.0)) *
                   std::polar(1.0, -2.0 * pi * k * static_cast<double>(n) / 2048.0);
        return 2.0 * std::abs(sum) / 1024.0;
    };
    struct Range {
        std::size_t band;
        int lo;
        int hi;
    };
    for (const Range &range :
         {Range{0, 1, 1}, Range{2, 2, 2}, Range{4, 3, 3}, Range{6, 4, 4}, Range{7, 5, 5},
          Range{8, 6, 7}, Range{16, 30, 36}, Range{24, 151, 183}, Range{31, 621, 955}}) {
        double sum = 0.0;
        for (int k = range.lo; k <= range.hi; ++k)
            sum += magnitude(k);
        const float expected = levelOf(sum / (range.hi - range.lo + 1));
        EXPECT_NEAR(analyzer_.bands()[range.band], expected, 1e-5F) << "band " << range.band;
        EXPECT_GT(expected, 0.05F);
    }
    for (const std::size_t dark : {1U, 3U, 5U})
        EXPECT_EQ(analyzer_.bands()[dark], 0.0F);
}

TEST_F(SpectrumAnalyzerTest, FallsByFifteenPercentPerTickAndTheSlowCopyFollowsEveryThird) {
    attach();
    play(2048, sineAtBin(4, 1.0F));
    waitForTick();
    play(4096, silence());
    float expected = 1.0F;
    for (int i = 2; i <= 7; ++i) {
        waitForTick();
        expected *= 0.85F;
        ASSERT_FLOAT_EQ(analyzer_.bands()[6], expected);
        ASSERT_EQ(analyzer_.ticuri(), i);
        ASSERT_EQ(published_, i);
        ASSERT_EQ(slowPublished_, i / 3);
        if (i % 3 == 0) {
            ASSERT_EQ(analyzer_.benziLente(), analyzer_.bands());
        }
    }
    EXPECT_NE(analyzer_.benziLente(), analyzer_.bands());
}

TEST_F(SpectrumAnalyzerTest, AttachesOnceAndOnlyWithAFormat) {
    AudioGraph unconnected(nullptr);
    analyzer_.attach(unconnected, unconnected.mainMixer());
    EXPECT_FALSE(analyzer_.isAttached());

    attach();
    analyzer_.attach(graph_, source_); // ignored: a second timer would tick twice as often
    play(1024, silence());
    clock_.advance(1.0);
    EXPECT_EQ(published_, 0) << "not enough for a spectrum";
    play(1024, silence());
    clock_.advance(10.0);
    EXPECT_EQ(published_, 300);

    analyzer_.detach();
    analyzer_.detach();
    play(2048, sineAtBin(4, 1.0F));
    clock_.advance(1.0);
    EXPECT_EQ(published_, 300);
    attach();
    waitForTick();
    EXPECT_EQ(published_, 301) << "the ring has kept what it had";
    EXPECT_EQ(analyzer_.bands()[6], 0.0F) << "and nothing came while detached";
}

TEST_F(SpectrumAnalyzerTest, DecaysToRestInSilence) {
    attach();
    play(8192, sineAtBin(4, 1.0F));
    clock_.advance(8192.0 / 44100.0);
    EXPECT_EQ(analyzer_.bands()[6], 1.0F) << "between two of the longest cycles";
    play(2048, sineAtBin(4, 1.0F));
    clock_.advance(2.0);
    EXPECT_LT(analyzer_.bands()[6], 0.01F);
    EXPECT_LT(analyzer_.benziLente()[6], 0.01F);
    play(2048, sineAtBin(4, 1.0F));
    waitForTick();
    EXPECT_EQ(analyzer_.bands()[6], 1.0F);
}

TEST(SpectrumAnalyzerRateTest, BandsFollowTheOutputsRateWhileAttached) {
    ManualClock clock;
    std::size_t played = 0;
    SourceNode source({48000.0, 2}, [&](const AudioBufferList &buffers, std::uint32_t frames) {
        for (std::uint32_t i = 0; i < frames; ++i, ++played)
            buffers.data[0][i] = buffers.data[1][i] = static_cast<float>(
                std::sin(2.0 * pi * 3000.0 * static_cast<double>(played) / 48000.0));
        return statusOK;
    });
    TestOutput::Line line;
    AudioGraph graph(std::make_unique<TestOutput>(line), clockedSerialQueues(clock));
    graph.attach(source);
    graph.connect(source, graph.mainMixer(), {48000.0, 2});
    ASSERT_EQ(graph.start(), statusOK);
    SpectrumAnalyzer analyzer(clock);
    analyzer.attach(graph, graph.mainMixer());
    for (const double rate : {48000.0, 96000.0, 44100.0}) {
        line.client->renderFormatChanged({rate, 2});
        for (int cycle = 0; cycle < 30; ++cycle) {
            line.play(4096);
            clock.advance(4096.0 / rate);
        }
        EXPECT_NEAR(std::log2(loudestHz(analyzer) / 3000.0F), 0.0F, 0.15F) << rate;
    }
    analyzer.detach();
    graph.stop();
}

TEST(SampleRing, ReturnsTheNewestInTimeOrderAcrossTheWrap) {
    SampleRing ring(4096);
    std::vector<float> into(2048);
    std::size_t written = 0;
    std::vector<float> counted(30000);
    std::iota(counted.begin(), counted.end(), 0.0F);
    for (const std::size_t piece : {3000UL, 1095UL, 2UL, 511UL, 4096UL, 10000UL, 1UL, 2049UL}) {
        ring.write(std::span(counted).subspan(written, piece));
        written += piece;
        ASSERT_TRUE(ring.snapshot(into));
        EXPECT_TRUE(std::ranges::equal(into, std::span(counted).subspan(written - 2048, 2048)));
    }
}

} // namespace
} // namespace quorbel
