#include "effects/EffectComponents.h"

#include "effects/units/AutoGainUnit.h"
#include "effects/units/BassEnhancerUnit.h"
#include "effects/units/CrossfeedUnit.h"
#include "effects/units/LimiterUnit.h"
#include "effects/units/MSWidenerUnit.h"
#include "effects/units/SaturationUnit.h"
#include "effects/units/SpatializerUnit.h"
#include "effects/units/VoiceEnhancerUnit.h"

#include <array>

namespace quorbel {

namespace {

constexpr std::uint32_t componentVersion = 1;

template <typename Unit>
std::unique_ptr<AudioUnit> make(const ComponentDescription &description,
                                InstantiationOptions options, const SerialQueueFactory &) {
    return std::make_unique<Unit>(description, options);
}

template <typename Unit>
std::unique_ptr<AudioUnit> makeAnalysing(const ComponentDescription &description,
                                         InstantiationOptions options,
                                         const SerialQueueFactory &analysisQueues) {
    return std::make_unique<Unit>(description, options, analysisQueues);
}

constexpr std::array components{
    EffectComponent{msWidenerDescription, "MSWidener", make<MSWidenerUnit>},
    EffectComponent{spatializerDescription, "Spatializer", make<SpatializerUnit>},
    EffectComponent{bassEnhancerDescription, "BassEnhancer", makeAnalysing<BassEnhancerUnit>},
    EffectComponent{voiceEnhancerDescription, "VoiceEnhancer", makeAnalysing<VoiceEnhancerUnit>},
    EffectComponent{saturationDescription, "Saturation", make<SaturationUnit>},
    EffectComponent{limiterDescription, "Limiter", make<LimiterUnit>},
    EffectComponent{crossfeedDescription, "Crossfeed", make<CrossfeedUnit>},
    EffectComponent{autoGainDescription, "AutoGain", make<AutoGainUnit>},
};

} // namespace

std::span<const EffectComponent> effectComponents() { return components; }

void registerEffectUnits(AudioUnitRegistry &registry, const SerialQueueFactory &analysisQueues) {
    for (const EffectComponent &component : components) {
        if (component.make == nullptr)
            continue;
        registry.registerSubclass(
            [make = component.make, analysisQueues](const ComponentDescription &description,
                                                    InstantiationOptions options) {
                return make(description, options, analysisQueues);
            },
            component.description, component.name, componentVersion);
    }
}

} // namespace quorbel
