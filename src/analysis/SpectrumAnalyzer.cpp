#include "analysis/SpectrumAnalyzer.h"

#include "platform/dsp/RealFFT.h"
#include "platform/threads/SampleRing.h"

#include <span>

#include <algorithm>
#include <cmath>

namespace quorbel {
namespace {

constexpr std::size_t pointCount = 2048;
constexpr std::size_t binCount = pointCount / 2;
constexpr std::size_t ringCapacity = 4096;
constexpr std::uint32_t tapFrames = 512;
constexpr double tickSeconds = 1.0 / 30.0;
constexpr float floorDB = -60.0F;
constexpr float fallPerTick = 0.85F;
constexpr std::int64_t slowTicks = 3;

/// Exceeds the longest device cycle, 8192 frames at 44100 Hz: 0.19 s.
constexpr int ticksUntilPause = 8;

/// A band that falls without sound becomes 0 below this level, 60 millionths of a decibel above the
/// floor, which the factors alone would never reach.
constexpr float lowestFalling = 1e-6F;

/// Writes a tap's sound into a ring, averaged over all channels. [tap]
class MonoFeed {
  public:
    explicit MonoFeed(std::shared_ptr<SampleRing> ring) : ring_(std::move(ring)) {}

    void operator()(const PCMBuffer &buffer) {
        const std::uint32_t channels = buffer.format().channelCount;
        const std::uint32_t frames = buffer.frameLength();
        if (buffer.channelData(0) == nullptr)
            return;
        mono_.assign(frames, 0.0F);
        for (std::uint32_t channel = 0; channel < channels; ++channel)
            if (const float *samples = buffer.channelData(channel))
                for (std::uint32_t i = 0; i < frames; ++i)
                    mono_[i] += samples[i];
        if (channels >= 2)
            for (float &sample : mono_)
                sample *= 1.0F / static_cast<float>(channels);
        ring_->write(mono_);
    }

  private:
    std::shared_ptr<SampleRing> ring_;
    std::vector<float> mono_;
};

} // namespace

SpectrumAnalyzer::SpectrumAnalyzer(Clock &clock, QObject *parent)
    : QObject(parent), clock_(clock), fft_(pointCount),
      hannWindow_(normalisedHannWindow(pointCount)),
      ring_(std::make_shared<SampleRing>(ringCapacity)), samples_(pointCount), real_(binCount),
      imaginary_(binCount), magnitudes_(binCount) {}

SpectrumAnalyzer::~SpectrumAnalyzer() { detach(); }

float SpectrumAnalyzer::bandFrequency(std::size_t band) {
    return 30.0F *
           std::pow(16000.0F / 30.0F, static_cast<float>(band) / static_cast<float>(bandCount - 1));
}

float SpectrumAnalyzer::bandEdge(std::size_t band) {
    if (band == 0)
        return 0.7F * bandFrequency(0);
    if (band == bandCount)
        return 1.4F * bandFrequency(bandCount - 1);
    return (bandFrequency(band - 1) + bandFrequency(band)) / 2.0F;
}

void SpectrumAnalyzer::attach(AudioGraph &graph, GraphNode &node) {
    if (isAttached())
        return;
    const StreamFormat format = graph.outputFormat(node);
    if (!(format.sampleRate > 0.0))
        return;
    tapSampleRate_ = static_cast<float>(format.sampleRate);
    graph_ = &graph;
    tapNode_ = &node;
    listen();
}

void SpectrumAnalyzer::listen() {
    graph_->installTap(*tapNode_, tapFrames, MonoFeed(ring_));
    ticksWithoutSound_ = 0;
    startTimer();
}

void SpectrumAnalyzer::rest() {
    timer_.invalidate();
    graph_->removeTap(*tapNode_);
}

void SpectrumAnalyzer::setIdle(bool isIdle) {
    isIdle_ = isIdle;
    if (isAttached() && !isIdle && !timer_.isSet())
        listen();
}

void SpectrumAnalyzer::detach() {
    timer_.invalidate();
    if (isAttached())
        graph_->removeTap(*tapNode_);
    graph_ = nullptr;
    tapNode_ = nullptr;
}

void SpectrumAnalyzer::startTimer() {
    timer_ = Timer::repeating(clock_, tickSeconds, [this] { computeBands(); });
}

void SpectrumAnalyzer::computeBands() {
    followRate();
    if (!ring_->snapshot(samples_)) {
        if (isIdle_)
            rest();
        return;
    }
    const bool isArriving = isSoundArriving();
    if (isArriving)
        computeMagnitudes();
    else
        std::ranges::fill(magnitudes_, 0.0F);
    for (std::size_t band = 0; band < bandCount; ++band) {
        const float falling = fallPerTick * bands_[band];
        bands_[band] =
            std::max(level(band), isArriving || falling >= lowestFalling ? falling : 0.0F);
    }
    Q_EMIT bandsChanged();
    if (++ticuri_ % slowTicks == 0) {
        benziLente_ = bands_;
        Q_EMIT benziLenteChanged();
    }
    if (isIdle_ && !isArriving && bands_ == Levels{} && benziLente_ == Levels{})
        rest();
}

void SpectrumAnalyzer::followRate() {
    if (const StreamFormat format = graph_->outputFormat(*tapNode_); format.sampleRate > 0.0)
        tapSampleRate_ = static_cast<float>(format.sampleRate);
}

bool SpectrumAnalyzer::isSoundArriving() {
    const std::uint64_t written = ring_->written();
    ticksWithoutSound_ = written == writtenBefore_ ? ticksWithoutSound_ + 1 : 0;
    writtenBefore_ = written;
    return ticksWithoutSound_ < ticksUntilPause;
}

void SpectrumAnalyzer::computeMagnitudes() {
    for (std::size_t n = 0; n < pointCount; ++n)
        samples_[n] *= hannWindow_[n];
    fft_.forward(samples_, real_, imaginary_);
    magnitudes_[0] = 0.0F;
    for (std::size_t k = 1; k < binCount; ++k)
        magnitudes_[k] = std::sqrt(real_[k] * real_[k] + imaginary_[k] * imaginary_[k]) /
                         static_cast<float>(binCount);
}

SpectrumAnalyzer::BinRange SpectrumAnalyzer::bins(std::size_t band) const {
    const float binHz = tapSampleRate_ / static_cast<float>(pointCount);
    const float first = std::max(std::ceil(bandEdge(band) / binHz), 1.0F);
    const float last =
        std::min(std::floor(bandEdge(band + 1) / binHz), static_cast<float>(binCount - 1));
    return {.first = static_cast<std::size_t>(first), .last = static_cast<std::size_t>(last)};
}

bool SpectrumAnalyzer::hasBins(std::size_t band) const {
    const auto [first, last] = bins(band);
    return first <= last;
}

float SpectrumAnalyzer::level(std::size_t band) const {
    const auto [first, last] = bins(band);
    // Some of the lowest bands are narrower than a bin and stay at 0 by design.
    if (first > last)
        return 0.0F;
    float sum = 0.0F;
    for (std::size_t k = first; k <= last; ++k)
        sum += magnitudes_[k];
    const float average = sum / static_cast<float>(last - first + 1);
    const float decibels = 20.0F * std::log10(std::max(average, 1e-6F));
    return std::clamp((decibels - floorDB) / -floorDB, 0.0F, 1.0F);
}

} // namespace quorbel
