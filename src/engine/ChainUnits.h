#pragma once

#include "effects/EffectComponents.h"

#include <array>
#include <cstddef>

namespace quorbel {

/// The chain's units in signal order; each may be missing. (The reverb, between spatializer and
/// saturation, is a graph node and not a unit.)
enum class ChainUnit {
    bassEnhancer,
    voiceEnhancer,
    widener,
    spatializer,
    saturation,
    crossfeed,
    autoGain,
    limiter,
};

/// Descriptions of the units, in the same order.
inline constexpr std::array chainUnitDescriptions{
    bassEnhancerDescription, voiceEnhancerDescription, msWidenerDescription, spatializerDescription,
    saturationDescription,   crossfeedDescription,     autoGainDescription,  limiterDescription,
};

inline constexpr std::size_t chainUnitCount = chainUnitDescriptions.size();
static_assert(chainUnitCount == static_cast<std::size_t>(ChainUnit::limiter) + 1);

} // namespace quorbel
