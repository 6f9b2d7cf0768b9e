#pragma once

#include "settings/records/EQBand.h"
#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

#include <vector>

namespace quorbel {

/// All settings of the chain. The defaults leave the sound unchanged, apart from the limiter.
struct ChainSettings {
    std::vector<EQBand> bands = EQBand::defaultBands();
    float eqGlobalGainDB = 0.0F;
    float presetGainDB = 0.0F; ///< played on top of the global gain
    SpatialConfig spatial;
    MixerConfig mixer;
};

} // namespace quorbel
