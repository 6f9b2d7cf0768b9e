#pragma once

#include "settings/records/EQBand.h"
#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

#include <vector>

namespace quorbel {

/// Everything that decides what the chain does to the sound. Made by default it leaves the sound as
/// it is, apart from the limiter.
struct ChainSettings {
    std::vector<EQBand> bands = EQBand::defaultBands();
    float eqGlobalGainDB = 0.0F;
    SpatialConfig spatial;
    MixerConfig mixer;
};

} // namespace quorbel
