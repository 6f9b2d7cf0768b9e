#include "effects/units/VoiceEnhancerUnit.h"

#include "effects/RelaxedFloat.h"
#include "effects/cores/EnhancerPass.h"
#include "effects/cores/VoiceDetector.h"
#include "effects/cores/VoiceEnhancerCore.h"
#include "platform/threads/SampleRing.h"

#include <array>
#include <cstdint>
#include <utility>

namespace quorbel {

namespace {

constexpr std::array voiceEnhancerParameters{
    EffectParameter{"amount", "Voice Amount", 0.0F, 100.0F, ParameterUnit::percent, 100.0F},
    EffectParameter{"presence", "Presence Gain", 0.0F, 6.0F, ParameterUnit::decibels, 3.0F},
    EffectParameter{"mud", "Mud Cut", 0.0F, 4.0F, ParameterUnit::decibels, 2.5F},
    EffectParameter{"adaptive", "Adaptive Mode", 0.0F, 1.0F, ParameterUnit::boolean, 0.0F},
};

constexpr float smallestMix = 0.001F;

} // namespace

struct VoiceEnhancerUnit::State {
    RelaxedFloat sampleRateStorage{48'000.0F};
    RelaxedFloat confidenceStorage{0.0F}; // 0 to 1; written by the analysis, kept by allocation
    VoiceEnhancerCore core;
    SampleRing ring{RingAnalysis::ringCapacity};  // kept by allocation
    std::array<float, maximumBlockFrames> mono{}; // the unit's input in a joint pass

    /// Adds the stage to `pass`; takes the parameters in their own units. [render]
    void addTo(EnhancerPass &pass, float amountPercent, float presenceDB, float mudDB,
               float adaptiveSwitch) noexcept {
        const float fullMix = amountPercent / 100.0F;
        const float mix =
            isAdaptiveOn(adaptiveSwitch) ? fullMix * confidenceStorage.load() : fullMix;
        if (mix < smallestMix) {
            core.clear();
            return;
        }
        pass.voice = core.designed(mix, presenceDB, mudDB);
        pass.voiceSections = &core.sections();
    }
};

struct VoiceEnhancerUnit::Analysis final : RingAnalysis {
    explicit Analysis(std::shared_ptr<State> shared)
        : RingAnalysis(shared->ring, shared->confidenceStorage), state(std::move(shared)) {}

    float follow(float before, std::uint64_t end) override {
        const auto ratio = detector.voiceRatio(state->ring, end, state->sampleRateStorage.load());
        return ratio ? 0.9F * before + 0.1F * VoiceDetector::confidenceFor(*ratio) : before;
    }

    std::shared_ptr<State> state;
    VoiceDetector detector;
};

VoiceEnhancerUnit::VoiceEnhancerUnit(const ComponentDescription &description,
                                     InstantiationOptions options,
                                     const SerialQueueFactory &analysisQueues)
    : EffectUnit(description, options, voiceEnhancerParameters), state_(std::make_shared<State>()),
      analysisTimer_(analysisQueues, "Quorbel.VoiceAnalysis") {}

Status VoiceEnhancerUnit::prepare(float sampleRate) {
    state_->sampleRateStorage.store(sampleRate);
    state_->core.prepare(sampleRate);
    if (!analysis_)
        analysis_ = std::make_shared<Analysis>(state_);
    analysisTimer_.start(analysis_, sampleRate);
    return statusOK;
}

void VoiceEnhancerUnit::deallocateRenderResources() {
    analysisTimer_.stop();
    EffectUnit::deallocateRenderResources();
}

void VoiceEnhancerUnit::setDemand(const EffectDemand &demand) {
    const bool isHeard =
        isAdaptiveOn(storage(adaptive)->value()) && storage(amount)->value() > 0.0F;
    analysisTimer_.set(demand.isIdle, demand.isDisplayed || isHeard);
}

void VoiceEnhancerUnit::reset() { state_->core.clear(); }

RenderBlock VoiceEnhancerUnit::internalRenderBlock() {
    return effectRenderBlock([state = state_, amountStorage = storage(amount),
                              presenceGainStorage = storage(presence), mudCutStorage = storage(mud),
                              adaptiveStorage = storage(adaptive)](const AudioBufferList &buffers,
                                                                   std::uint32_t frames) noexcept {
        if (buffers.bufferCount < 2)
            return;
        // The analysis reads the unprocessed sound, even while the unit rests.
        state->ring.writeMean(buffers.data[0], buffers.data[1], frames);
        EnhancerPass pass;
        state->addTo(pass, amountStorage->taken(), presenceGainStorage->taken(),
                     mudCutStorage->taken(), adaptiveStorage->taken());
        if (pass.voiceSections != nullptr)
            enhance(pass, buffers.data[0], buffers.data[1], frames);
    });
}

void VoiceEnhancerUnit::addTo(EnhancerPass &pass) noexcept {
    state_->addTo(pass, storage(amount)->taken(), storage(presence)->taken(), storage(mud)->taken(),
                  storage(adaptive)->taken());
    pass.bassMono = state_->mono.data();
}

void VoiceEnhancerUnit::feedAnalysis(std::uint32_t frames) noexcept {
    // The mean of two equal channels is exactly their value.
    state_->ring.writeMean(state_->mono.data(), state_->mono.data(), frames);
}

float VoiceEnhancerUnit::readout() const noexcept { return state_->confidenceStorage.load(); }

} // namespace quorbel
