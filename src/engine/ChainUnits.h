#pragma once

#include "effects/EffectComponents.h"

#include <array>
#include <cstddef>

namespace quorbel {

/// The units of the chain, each of which may be missing, in the order the sound passes them.
/// (Between the spatializer and the saturation stands the reverb, which is no such unit.)
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

/// By which each is asked for, in the same order.
inline constexpr std::array chainUnitDescriptions{
    bassEnhancerDescription, voiceEnhancerDescription, msWidenerDescription, spatializerDescription,
    saturationDescription,   crossfeedDescription,     autoGainDescription,  limiterDescription,
};

inline constexpr std::size_t chainUnitCount = chainUnitDescriptions.size();
static_assert(chainUnitCount == static_cast<std::size_t>(ChainUnit::limiter) + 1);

} // namespace quorbel
