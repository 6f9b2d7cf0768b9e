#include "platform/hardware/pipewire/PipeWireBackend.h"

#include "platform/hardware/pipewire/PipeWireHardware.h"

namespace quorbel {

std::unique_ptr<AudioHardware> connectToPipeWire(Status &status) {
    return PipeWireHardware::connect(status);
}

} // namespace quorbel
