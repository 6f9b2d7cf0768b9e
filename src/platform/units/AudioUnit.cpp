#include "platform/units/AudioUnit.h"

#include "platform/units/UnitStatus.h"

namespace quorbel {

Status AudioUnit::allocateRenderResources(std::string &error) {
    const AudioUnitBusArray &outputs = outputBusses();
    for (const AudioUnitBusArray *busses : {&inputBusses(), &outputBusses()}) {
        for (std::size_t i = 0; i < busses->count(); ++i) {
            if ((*busses)[i].format() != outputs[0].format()) {
                error = "the unit's busses have different formats";
                return statusFormatNotSupported;
            }
        }
    }
    allocated_ = true;
    return statusOK;
}

} // namespace quorbel
