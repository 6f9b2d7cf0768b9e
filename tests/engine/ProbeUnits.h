#pragma once

#include "effects/EffectUnit.h"
#include "engine/ChainUnits.h"
#include "platform/units/AudioUnitRegistry.h"

#include <map>
#include <set>
#include <vector>

namespace quorbel::testing {

/// Stand-ins for the units of the chain that leave the sound alone and note what is done to them.
/// Their parameters take anything and begin at `untouched`.
class ProbeUnits {
  public:
    static constexpr float untouched = -777.0F;

    /// Registers all of them but the absent ones.
    void registerAll(AudioUnitRegistry &registry);

    std::set<ChainUnit> absent; ///< fail when they are made; looked at each time
    std::map<ChainUnit, int> made;
    std::map<ChainUnit, std::vector<float>> valuesAtAllocation;
    std::vector<ChainUnit> rendered;        ///< in the order of the first block after an allocation
    std::map<ChainUnit, float> firstSample; ///< of the left channel of that block, as it came in
    std::map<ChainUnit, float> readouts;
};

/// The values of a unit's parameters by address.
[[nodiscard]] std::vector<float> values(const AudioUnit *unit);

} // namespace quorbel::testing
