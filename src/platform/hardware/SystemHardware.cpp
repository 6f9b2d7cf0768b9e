#include "platform/hardware/SystemHardware.h"

#include "platform/hardware/pipewire/PipeWireBackend.h"

namespace quorbel {

std::unique_ptr<AudioHardware> makeSystemHardware(Status &status) {
    return connectToPipeWire(status);
}

std::string systemHardwareLibrary() { return pipeWireLibrary(); }

} // namespace quorbel
