#include "platform/units/AudioUnit.h"

#include "platform/core/AudioBufferList.h"
#include "platform/units/UnitStatus.h"

#include <utility>

namespace quorbel {

namespace {

bool isSupported(const StreamFormat &format) {
    return format.isValid() && format.channelCount <= AudioBufferList::maximumBuffers;
}

} // namespace

AudioUnitBus::AudioUnitBus(const StreamFormat &format) : format_(format) {
    if (!isSupported(format))
        throw AudioUnitError(statusFormatNotSupported, "a bus cannot have this format");
}

Status AudioUnitBus::setFormat(const StreamFormat &format) {
    if (!isSupported(format))
        return statusFormatNotSupported;
    format_ = format;
    return statusOK;
}

AudioUnitBusArray::AudioUnitBusArray(Type type, std::vector<AudioUnitBus *> busses)
    : type_(type), busses_(std::move(busses)) {}

Status AudioUnit::allocateRenderResources() {
    const AudioUnitBusArray &outputs = outputBusses();
    for (const AudioUnitBusArray *busses : {&inputBusses(), &outputBusses()}) {
        for (std::size_t i = 0; i < busses->count(); ++i)
            if ((*busses)[i].format() != outputs[0].format())
                return statusFormatNotSupported;
    }
    allocated_ = true;
    return statusOK;
}

} // namespace quorbel
