#include "platform/units/AudioUnitBus.h"

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

} // namespace quorbel
