#include "equalizer/ParametricEqualizer.h"

#include "equalizer/SectionDesign.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace quorbel {
namespace {

constexpr double fadeSeconds = 0.020;

// Bands that start from silence run unheard until they have settled to 0.1 %; otherwise a low boost
// would be missing during the fade. The upper limit keeps the change from being noticeably late.
constexpr double decaysToSettle = 7.0;
constexpr double longestWarmUpSeconds = 0.030;

} // namespace

ParametricEqualizer::ParametricEqualizer(std::size_t bandCount)
    : settings_(bandCount), design_{.bands = std::vector<BandDesign>(bandCount), .gainDB = 0.0},
      handOver_(design_), chain_(bandCount), incoming_(bandCount) {}

const EqualizerBandSettings &ParametricEqualizer::band(std::size_t index) const {
    return settings_.at(index);
}

void ParametricEqualizer::set(std::span<const EqualizerBandSettings> bands, float globalGainDB) {
    bool changed = designGain(globalGainDB);
    for (std::size_t i = 0; i < std::min(bands.size(), settings_.size()); ++i)
        changed = design(i, bands[i]) || changed;
    if (changed)
        publish();
}

void ParametricEqualizer::setBand(std::size_t index, const EqualizerBandSettings &settings) {
    if (design(index, settings))
        publish();
}

void ParametricEqualizer::setGlobalGainDB(float gainDB) {
    if (designGain(gainDB))
        publish();
}

/// Returns true if the design has changed.
bool ParametricEqualizer::design(std::size_t index, const EqualizerBandSettings &settings) {
    EqualizerBandSettings &current = settings_.at(index);
    if (current == settings)
        return false;
    current = settings;
    if (sampleRate_ == 0.0)
        return false;
    design_.bands[index] = BandDesign::of(settings, sampleRate_);
    return true;
}

bool ParametricEqualizer::designGain(float gainDB) {
    globalGainDB_ = gainDB;
    const double clamped = clampedGainDB(gainDB);
    if (clamped == design_.gainDB)
        return false;
    design_.gainDB = clamped;
    return true;
}

void ParametricEqualizer::publish() { handOver_.publish(design_); }

void ParametricEqualizer::prepare(double sampleRate) {
    assert(sampleRate > 0.0);
    sampleRate_ = sampleRate;
    for (std::size_t i = 0; i < settings_.size(); ++i)
        design_.bands[i] = BandDesign::of(settings_[i], sampleRate);
    publish();
    renderRate_ = sampleRate;
    fadeFrames_ = std::max(1U, static_cast<std::uint32_t>(std::lround(sampleRate * fadeSeconds)));
    reset();
}

void ParametricEqualizer::reset() {
    chain_.prepare(sampleRate_);
    incoming_.prepare(sampleRate_);
    started_ = false;
    pending_ = true;
    fading_ = false;
}

void ParametricEqualizer::acceptDesign() noexcept {
    const EqualizerDesign &design = handOver_.current();
    pending_ = false;
    if (!started_) {
        chain_.jumpTo(design);
        started_ = true;
    } else if (chain_.canGlideTo(design)) {
        chain_.glideTo(design);
    } else {
        incoming_ = chain_;
        const double decaySeconds = incoming_.jumpTo(design);
        const double warmUpSeconds = std::min(decaysToSettle * decaySeconds, longestWarmUpSeconds);
        fadePosition_ = -static_cast<std::int32_t>(std::lround(warmUpSeconds * renderRate_));
        fading_ = true;
    }
}

void ParametricEqualizer::takeSettings() noexcept {
    if (handOver_.fetch())
        pending_ = true;
}

void ParametricEqualizer::render(float *left, float *right, std::uint32_t frames) noexcept {
    while (frames > 0) {
        if (pending_ && !fading_)
            acceptDesign();
        std::uint32_t chunk = frames;
        if (fading_) {
            const auto remaining = static_cast<std::int32_t>(fadeFrames_) - fadePosition_;
            chunk = std::min({frames, fadeChunk, static_cast<std::uint32_t>(remaining)});
            processFading(left, right, chunk);
        } else {
            chain_.process(left, right, frames);
        }
        left += chunk;
        right += chunk;
        frames -= chunk;
    }
    chain_.dropNonFinite();
    if (fading_)
        incoming_.dropNonFinite();
}

void ParametricEqualizer::renderInSeries(ParametricEqualizer &first, ParametricEqualizer &second,
                                         float *left, float *right, std::uint32_t frames) noexcept {
    if (!first.isAtRest() || !second.isAtRest()) {
        first.render(left, right, frames);
        second.render(left, right, frames);
        return;
    }
    SectionBatch sections(left, right, frames);
    first.chain_.addTo(sections);
    second.chain_.addTo(sections);
    sections.run();
    first.chain_.dropNonFinite();
    second.chain_.dropNonFinite();
}

bool ParametricEqualizer::isAtRest() const noexcept {
    return !pending_ && !fading_ && chain_.isAtRest();
}

void ParametricEqualizer::processFading(float *left, float *right, std::uint32_t frames) noexcept {
    std::copy_n(left, frames, incomingLeft_.data());
    std::copy_n(right, frames, incomingRight_.data());
    chain_.process(left, right, frames);
    incoming_.process(incomingLeft_.data(), incomingRight_.data(), frames);
    const float perFrame = 1.0F / static_cast<float>(fadeFrames_);
    for (std::uint32_t i = 0; i < frames; ++i) {
        const auto position = fadePosition_ + static_cast<std::int32_t>(i);
        const float t = static_cast<float>(std::max(position, 0)) * perFrame;
        const float weight = t * t * (3.0F - 2.0F * t);
        left[i] += (incomingLeft_[i] - left[i]) * weight;
        right[i] += (incomingRight_[i] - right[i]) * weight;
    }
    fadePosition_ += static_cast<std::int32_t>(frames);
    if (fadePosition_ == static_cast<std::int32_t>(fadeFrames_)) {
        std::swap(chain_, incoming_);
        fading_ = false;
    }
}

} // namespace quorbel
