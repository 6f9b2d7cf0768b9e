#include "equalizer/EqualizerChain.h"

#include "equalizer/MovingCascade.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quorbel {
namespace {

// Steps of a third of a millisecond make a glide 20 ms long; within a step everything moves
// linearly.
constexpr double stepsPerSecond = 2.0 * Glide<1>::averageSteps / 0.020;

float gainFromDB(double gainDB) noexcept {
    return gainDB == 0.0 ? 1.0F : static_cast<float>(std::pow(10.0, gainDB / 20.0));
}

} // namespace

EqualizerChain::EqualizerChain(std::size_t bandCount) : bands_(bandCount) {}

void EqualizerChain::prepare(double sampleRate) {
    for (Band &band : bands_)
        stop(band);
    gainGlide_.settle({0.0});
    gain_ = nextGain_ = 1.0F;
    stepFrames_ =
        std::max(1U, static_cast<std::uint32_t>(std::lround(sampleRate / stepsPerSecond)));
    stepPosition_ = 0;
    gliding_ = false;
}

void EqualizerChain::stop(Band &band) noexcept {
    band.running = false;
    band.endsFlat = false;
    band.left = {};
    band.right = {};
}

bool EqualizerChain::canGlide(const Band &band, const BandDesign &design) noexcept {
    if (!band.running)
        return !design.active || hasGain(design.type);
    if (!design.active)
        return hasGain(band.design.type);
    const auto distance = [&](BandDesign::LogValue value) {
        return std::abs(band.glide.values()[value] - design.logarithms[value]);
    };
    return band.design.type == design.type &&
           distance(BandDesign::frequency) <=
               std::min(band.design.frequencyReach, design.frequencyReach) &&
           distance(BandDesign::quality) <= std::min(band.design.qualityReach, design.qualityReach);
}

bool EqualizerChain::canGlideTo(const EqualizerDesign &design) const noexcept {
    for (std::size_t i = 0; i < bands_.size(); ++i)
        if (!canGlide(bands_[i], design.bands[i]))
            return false;
    return true;
}

double EqualizerChain::jumpTo(const EqualizerDesign &design) noexcept {
    double longestDecay = 0.0;
    for (std::size_t i = 0; i < bands_.size(); ++i) {
        Band &band = bands_[i];
        const BandDesign &target = design.bands[i];
        if (!target.active || !canGlide(band, target))
            stop(band);
        if (!target.active)
            continue;
        if (!band.running)
            longestDecay = std::max(longestDecay, target.decaySeconds);
        band.running = true;
        band.endsFlat = false;
        band.design = target;
        band.glide.settle(target.logarithms);
        band.section = band.next = target.section;
    }
    gainGlide_.settle({design.gainDB});
    gain_ = nextGain_ = gainFromDB(design.gainDB);
    stepPosition_ = 0;
    gliding_ = false;
    return longestDecay;
}

void EqualizerChain::glideTo(const EqualizerDesign &design) noexcept {
    for (std::size_t i = 0; i < bands_.size(); ++i) {
        Band &band = bands_[i];
        const BandDesign &target = design.bands[i];
        if (!target.active) {
            if (!band.running || band.endsFlat)
                continue;
            band.endsFlat = true;
            band.glide.retarget(BandDesign::flattened(band.design.logarithms));
        } else {
            if (!band.running) {
                band.running = true;
                band.glide.settle(BandDesign::flattened(target.logarithms));
                band.section = band.next = BandDesign::sectionAt(band.glide.values());
            } else if (!band.endsFlat && band.design.logarithms == target.logarithms) {
                continue;
            }
            band.endsFlat = false;
            band.design = target;
            band.glide.retarget(target.logarithms);
        }
        gliding_ = true;
    }
    if (gainGlide_.target()[0] != design.gainDB) {
        gainGlide_.retarget({design.gainDB});
        gliding_ = true;
    }
}

void EqualizerChain::startStep() noexcept {
    for (Band &band : bands_) {
        band.moving = band.running && !band.glide.isSettled();
        if (!band.moving)
            continue;
        band.glide.advance();
        const bool arrived = band.glide.isSettled() && !band.endsFlat;
        band.next = arrived ? band.design.section : BandDesign::sectionAt(band.glide.values());
    }
    gainGlide_.advance();
    nextGain_ = gainFromDB(gainGlide_.values()[0]);
}

void EqualizerChain::finishStep() noexcept {
    stepPosition_ = 0;
    gliding_ = !gainGlide_.isSettled();
    gain_ = nextGain_;
    for (Band &band : bands_) {
        if (!band.running)
            continue;
        band.section = band.next;
        if (!band.glide.isSettled())
            gliding_ = true;
        else if (band.endsFlat)
            stop(band);
    }
}

void EqualizerChain::process(float *left, float *right, std::uint32_t frames) noexcept {
    while (gliding_ && frames > 0) {
        if (stepPosition_ == 0)
            startStep();
        const std::uint32_t chunk = std::min(frames, stepFrames_ - stepPosition_);
        processGliding(left, right, chunk);
        stepPosition_ += chunk;
        left += chunk;
        right += chunk;
        frames -= chunk;
        if (stepPosition_ == stepFrames_)
            finishStep();
    }
    if (frames == 0)
        return;
    SectionBatch sections(left, right, frames);
    addTo(sections);
    sections.run();
}

void EqualizerChain::processGliding(float *left, float *right, std::uint32_t frames) noexcept {
    std::array<MovingSection, 16> sections; // more are run in several calls
    MovingCascade cascade{.sections = sections.data(),
                          .count = 0,
                          .stepFrames = stepFrames_,
                          .stepPosition = stepPosition_};
    const auto run = [&] {
        processMoving(cascade, left, right, frames);
        cascade.count = 0;
    };
    for (Band &band : bands_) {
        if (!band.running)
            continue;
        if (cascade.count == sections.size())
            run();
        sections[cascade.count++] = {.from = &band.section,
                                     .to = band.moving ? &band.next : nullptr,
                                     .left = &band.left,
                                     .right = &band.right};
    }
    run();
    const float gainStep = (nextGain_ - gain_) / static_cast<float>(stepFrames_);
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float gain = gain_ + gainStep * static_cast<float>(stepPosition_ + i);
        left[i] *= gain;
        right[i] *= gain;
    }
}

void EqualizerChain::addTo(SectionBatch &sections) noexcept {
    for (Band &band : bands_)
        if (band.running)
            sections.add(band.section, band.left, band.right);
    sections.scale(gain_);
}

void EqualizerChain::dropNonFinite() noexcept {
    for (Band &band : bands_)
        for (SectionState *state : {&band.left, &band.right})
            if (!std::isfinite(state->first) || !std::isfinite(state->second))
                *state = {};
}

} // namespace quorbel
