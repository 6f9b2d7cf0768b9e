#include "reverb/Reverb.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>

namespace quorbel {
namespace {

constexpr double mixGlideSeconds = 0.040;

/// Fade-in of a new room's input: otherwise each echo would repeat the sudden onset. The length
/// limits the overshoot of a steady tone (0.9 dB at 30 ms, 0.56 dB at 300 ms).
constexpr double fadeInSeconds = 0.300;

/// Crossfade from the old room to the new one while that builds up.
constexpr double fadeSeconds = 0.150;

std::uint32_t frameCount(double seconds, double sampleRate) {
    return std::max(1U, static_cast<std::uint32_t>(std::lround(seconds * sampleRate)));
}

/// Rises from 0 to 1 with zero slope at both ends.
float fadeWeight(std::uint32_t frame, std::uint32_t frames) noexcept {
    const float t = static_cast<float>(frame) / static_cast<float>(frames);
    return t * t * (3.0F - 2.0F * t);
}

/// Returns the gains of direct and room sound for a mix of 0 to 1.
Glide<2>::Values gainsFor(float mix) noexcept {
    if (mix <= 0.0F)
        return {1.0, 0.0};
    if (mix >= 1.0F)
        return {0.0, 1.0};
    const double angle = static_cast<double>(mix) * std::numbers::pi / 2.0;
    return {std::cos(angle), std::sin(angle)};
}

ReverbTank::Gains asFloats(const Glide<2>::Values &gains) noexcept {
    return {.dry = static_cast<float>(gains[0]), .wet = static_cast<float>(gains[1])};
}

} // namespace

void Reverb::setRoomModel(RoomModel model) {
    if (model == model_)
        return;
    model_ = model;
    if (sampleRate_ > 0.0)
        designs_.publish(RoomDesign::of(model, sampleRate_));
}

void Reverb::setMixPercent(float percent) {
    mixPercent_ = percent > 0.0F ? std::min(percent, 100.0F) : 0.0F;
    mixTarget_.store(mixPercent_ / 100.0F, std::memory_order_relaxed);
}

void Reverb::prepare(double sampleRate) {
    assert(sampleRate >= 8000.0 && sampleRate <= 384000.0);
    sampleRate_ = sampleRate;
    designs_.publish(RoomDesign::of(model_, sampleRate));
    fadeInFrames_ = frameCount(fadeInSeconds, sampleRate);
    fadeFrames_ = frameCount(fadeSeconds, sampleRate);
    stepFrames_ = frameCount(mixGlideSeconds / (2.0 * Glide<2>::averageSteps), sampleRate);
    reset();
}

void Reverb::reset() {
    if (sampleRate_ == 0.0)
        return; // not prepared: no sound and no memory yet
    for (Voice &voice : voices_)
        voice.tank.prepare(sampleRate_);
    started_ = false;
    idle_ = true;
    newDesign_ = true;
    fading_ = false;
}

void Reverb::begin() noexcept {
    started_ = true;
    mix_ = takenMix_;
    gainGlide_.settle(gainsFor(mix_));
    gains_ = nextGains_ = asFloats(gainGlide_.values());
    stepPosition_ = 0;
    if (mix_ == 0.0F)
        return;
    leaveIdle();
    voices_[current_].fadedIn = fadeInFrames_; // sound from the first frame has no onset
}

void Reverb::leaveIdle() noexcept {
    Voice &voice = voices_[current_];
    voice.tank.start(designs_.current());
    voice.fadedIn = 0;
    runningModel_ = designs_.current().model;
    newDesign_ = false;
    idle_ = false;
}

void Reverb::goIdle() noexcept {
    idle_ = true;
    fading_ = false;
}

void Reverb::takeSettings() noexcept {
    if (designs_.fetch())
        newDesign_ = true;
    takenMix_ = mixTarget_.load(std::memory_order_relaxed);
}

void Reverb::acceptSettings() noexcept {
    if (!started_) {
        begin();
        return;
    }
    const float target = takenMix_;
    if (idle_) {
        // A raised mix waits until the last sound is erased.
        if (target == 0.0F || !voices_[current_].tank.isClear())
            return;
        leaveIdle();
    }
    if (target != mix_) {
        mix_ = target;
        gainGlide_.retarget(gainsFor(target));
    }

    if (newDesign_ && designs_.current().model == runningModel_)
        newDesign_ = false; // changed there and back before the next block
    if (newDesign_ && !fading_ && voices_[1 - current_].tank.isClear()) {
        current_ = 1 - current_;
        leaveIdle();
        fading_ = true;
        faded_ = 0;
    }
}

void Reverb::clearUnused(std::uint32_t frames) noexcept {
    for (std::size_t i = 0; i < voices_.size(); ++i) {
        const bool used = !idle_ && (i == current_ || fading_);
        if (!used && !voices_[i].tank.isClear())
            voices_[i].tank.clearSome(frames);
    }
}

bool Reverb::isSteady() const noexcept {
    return !fading_ && gainGlide_.isSettled() && stepPosition_ == 0 &&
           voices_[current_].fadedIn >= fadeInFrames_;
}

void Reverb::render(float *left, float *right, std::uint32_t frames) noexcept {
    while (frames > 0) {
        acceptSettings();
        std::uint32_t count = std::min(frames, longestPiece);
        if (fading_)
            count = std::min(count, fadeFrames_ - faded_);
        if (!gainGlide_.isSettled() || stepPosition_ != 0)
            count = std::min(count, stepFrames_ - stepPosition_);
        if (!idle_ && isSteady()) {
            voices_[current_].tank.process({left, right, left, right, count, gains_});
        } else if (!idle_) {
            renderRooms(left, right, count);
            mix(left, right, count);
        }
        clearUnused(count);
        left += count;
        right += count;
        frames -= count;
    }
}

void Reverb::renderVoice(Voice &voice, ReverbTank::Block block) noexcept {
    if (voice.fadedIn < fadeInFrames_) {
        for (std::uint32_t i = 0; i < block.frames; ++i) {
            const float weight =
                fadeWeight(std::min(voice.fadedIn + i, fadeInFrames_), fadeInFrames_);
            fadedLeft_[i] = weight * block.left[i];
            fadedRight_[i] = weight * block.right[i];
        }
        voice.fadedIn += block.frames;
        block.left = fadedLeft_.data();
        block.right = fadedRight_.data();
    }
    voice.tank.process(block);
}

void Reverb::renderRooms(const float *left, const float *right, std::uint32_t frames) noexcept {
    constexpr Gains roomAlone{.dry = 0.0F, .wet = 1.0F};
    renderVoice(voices_[current_],
                {left, right, wetLeft_.data(), wetRight_.data(), frames, roomAlone});
    if (!fading_)
        return;
    renderVoice(voices_[1 - current_],
                {left, right, oldLeft_.data(), oldRight_.data(), frames, roomAlone});
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float weight = fadeWeight(faded_ + i, fadeFrames_);
        wetLeft_[i] = oldLeft_[i] + weight * (wetLeft_[i] - oldLeft_[i]);
        wetRight_[i] = oldRight_[i] + weight * (wetRight_[i] - oldRight_[i]);
    }
    faded_ += frames;
    if (faded_ == fadeFrames_)
        fading_ = false;
}

void Reverb::mix(float *left, float *right, std::uint32_t frames) noexcept {
    if (gainGlide_.isSettled() && stepPosition_ == 0) {
        const Gains gains = gains_;
        for (std::uint32_t i = 0; i < frames; ++i) {
            left[i] = gains.dry * left[i] + gains.wet * wetLeft_[i];
            right[i] = gains.dry * right[i] + gains.wet * wetRight_[i];
        }
        return;
    }
    if (stepPosition_ == 0) {
        gainGlide_.advance();
        nextGains_ = asFloats(gainGlide_.values());
    }
    const float perFrame = 1.0F / static_cast<float>(stepFrames_);
    const float dryStep = (nextGains_.dry - gains_.dry) * perFrame;
    const float wetStep = (nextGains_.wet - gains_.wet) * perFrame;
    for (std::uint32_t i = 0; i < frames; ++i) {
        const auto position = static_cast<float>(stepPosition_ + i);
        const float dry = gains_.dry + dryStep * position;
        const float wet = gains_.wet + wetStep * position;
        left[i] = dry * left[i] + wet * wetLeft_[i];
        right[i] = dry * right[i] + wet * wetRight_[i];
    }
    stepPosition_ += frames;
    if (stepPosition_ < stepFrames_)
        return;
    stepPosition_ = 0;
    gains_ = nextGains_;
    if (gainGlide_.isSettled() && mix_ == 0.0F)
        goIdle();
}

} // namespace quorbel
