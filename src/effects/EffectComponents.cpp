#include "effects/EffectComponents.h"

#include "effects/units/LimiterUnit.h"

#include <array>

namespace quorbel {

namespace {

constexpr std::uint32_t componentVersion = 1;

template <typename Unit>
std::unique_ptr<AudioUnit> make(const ComponentDescription &description,
                                InstantiationOptions options, const SerialQueueFactory &) {
    return std::make_unique<Unit>(description, options);
}

constexpr std::array components{
    EffectComponent{msWidenerDescription, "MSWidener", nullptr},
    EffectComponent{spatializerDescription, "Spatializer", nullptr},
    EffectComponent{bassEnhancerDescription, "BassEnhancer", nullptr},
    EffectComponent{voiceEnhancerDescription, "VoiceEnhancer", nullptr},
    EffectComponent{saturationDescription, "Saturation", nullptr},
    EffectComponent{limiterDescription, "Limiter", make<LimiterUnit>},
    EffectComponent{crossfeedDescription, "Crossfeed", nullptr},
    EffectComponent{autoGainDescription, "AutoGain", nullptr},
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
