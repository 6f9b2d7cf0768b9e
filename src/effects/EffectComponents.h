#pragma once

#include "platform/threads/SerialQueue.h"
#include "platform/units/AudioUnitRegistry.h"
#include "platform/units/ComponentDescription.h"

#include <span>

#include <memory>

namespace quorbel {

consteval ComponentDescription effectDescription(const char (&subtype)[5]) {
    return {fourCharCode("aufx"), fourCharCode(subtype), fourCharCode("Qrbl"), 0, 0};
}

inline constexpr ComponentDescription msWidenerDescription = effectDescription("mswd");
inline constexpr ComponentDescription spatializerDescription = effectDescription("xtcs");
inline constexpr ComponentDescription bassEnhancerDescription = effectDescription("bass");
inline constexpr ComponentDescription voiceEnhancerDescription = effectDescription("vclr");
inline constexpr ComponentDescription saturationDescription = effectDescription("satr");
inline constexpr ComponentDescription limiterDescription = effectDescription("limt");
inline constexpr ComponentDescription crossfeedDescription = effectDescription("xfed");
inline constexpr ComponentDescription autoGainDescription = effectDescription("agc`"); // sic

/// One kind of effect unit.
struct EffectComponent {
    ComponentDescription description;
    const char *name = nullptr;

    /// `analysisQueues` makes the serial queue of a unit that analyses in the background. Null if
    /// the program lacks the unit: it is not registered, and the chain leaves it out.
    std::unique_ptr<AudioUnit> (*make)(const ComponentDescription &description,
                                       InstantiationOptions options,
                                       const SerialQueueFactory &analysisQueues) = nullptr;
};

/// Every effect unit, in the order of registration.
[[nodiscard]] std::span<const EffectComponent> effectComponents();

/// Registers every effect unit as version 1.
void registerEffectUnits(AudioUnitRegistry &registry, const SerialQueueFactory &analysisQueues);

} // namespace quorbel
