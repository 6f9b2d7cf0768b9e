#include "EverythingOn.h"
#include "StageBenchmark.h"
#include "VectorTarget.h"
#include "WholeChain.h"
#include "effects/ToneEqualizer.h"
#include "effects/units/LimiterUnit.h"
#include "engine/ChainUnits.h"
#include "engine/UnitSettings.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace quorbel::bench {
namespace {

Stage wholeChain(const ChainSettings &settings, bool isComparable = false) {
    auto chain = std::make_shared<WholeChain>(settings, isComparable);
    return [chain](float *left, float *right, std::uint32_t frames) {
        chain->process(left, right, frames);
        chain->passTime(frames);
    };
}

/// The whole chain without AVX-512.
Stage wholeChainOnAVX2() {
    auto target = std::make_shared<VectorTarget>(HWY_AVX2);
    return [target, stage = wholeChain(everythingOn())](
               float *left, float *right, std::uint32_t frames) { stage(left, right, frames); };
}

Stage onlyEqualizerOn() {
    ChainSettings settings;
    settings.bands = everythingOn().bands;
    return wholeChain(settings);
}

Stage onlyVoiceOn() {
    ChainSettings settings;
    settings.spatial.voiceEnabled = true;
    return wholeChain(settings);
}

Stage equalizer() {
    auto processor = std::make_shared<EQProcessor>(everythingOn().bands);
    return stageOf({processor, &processor->eq()});
}

Stage tone() {
    auto tone = std::make_shared<ToneEqualizer>();
    tone->setGainsDB({2.0F, -1.0F, 1.0F});
    return stageOf({tone, &tone->node()});
}

/// One unit without its analyses: its clock never advances, and the adaptive modes are off.
struct SingleUnit {
    SingleUnit(const EffectComponent &component, ChainUnit which)
        : node(component.make(component.description, 0, clockedSerialQueues(clock))) {
        ChainSettings settings = everythingOn();
        settings.spatial.bassAdaptiveEnabled = settings.spatial.voiceAdaptiveEnabled = false;
        pushSettings(settings.spatial, which, node.unit());
        pushSettings(settings.mixer, which, node.unit());
    }

    ManualClock clock;
    UnitNode node;
};

std::vector<StageBenchmark> units() {
    std::vector<StageBenchmark> result;
    for (std::size_t index = 0; index < chainUnitCount; ++index)
        for (const EffectComponent &component : effectComponents())
            if (component.description == chainUnitDescriptions[index])
                result.emplace_back(component.name, [&component, index] {
                    auto unit =
                        std::make_shared<SingleUnit>(component, static_cast<ChainUnit>(index));
                    return stageOf({unit, &unit->node});
                });
    return result;
}

/// A limiter that always reduces: its default threshold acts on loud sound only.
Stage busyLimiter() {
    for (const EffectComponent &component : effectComponents())
        if (component.description == limiterDescription) {
            auto unit = std::make_shared<SingleUnit>(component, ChainUnit::limiter);
            unit->node.unit()
                .parameterTree()
                ->parameterWithAddress(LimiterUnit::threshold)
                ->setValue(-12.0F);
            return stageOf({unit, &unit->node});
        }
    throw std::logic_error("no limiter");
}

const StageBenchmark whole("everything on, with analyses",
                           [] { return wholeChain(everythingOn()); });
const StageBenchmark ofWindow("the same with Compare's meters",
                              [] { return wholeChain(everythingOn(), true); });
const StageBenchmark neutral("nothing on but the limiter",
                             [] { return wholeChain(ChainSettings()); });
const StageBenchmark ofEqualizer("only the equaliser on, 10 bands", onlyEqualizerOn);
const StageBenchmark ofVoice("only the voice enhancer on", onlyVoiceOn);
const auto onAVX2 =
    VectorTarget::isThere(HWY_AVX2)
        ? std::make_unique<StageBenchmark>("everything on, with AVX2 at most", wholeChainOnAVX2)
        : nullptr;
const StageBenchmark equalizerOfTenBands("equaliser, 10 bands", equalizer);
const StageBenchmark toneControls("tone, 3 bands", tone);
const std::vector<StageBenchmark> everyUnit = units();
const StageBenchmark limiting("Limiter, at work", busyLimiter);

} // namespace
} // namespace quorbel::bench
