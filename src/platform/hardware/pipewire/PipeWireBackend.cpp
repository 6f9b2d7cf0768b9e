#include "platform/hardware/pipewire/PipeWireBackend.h"

#include "platform/hardware/pipewire/PipeWireHardware.h"

#include <pipewire/pipewire.h>

namespace quorbel {

std::unique_ptr<AudioHardware> connectToPipeWire(Status &status) {
    return PipeWireHardware::connect(status);
}

std::string pipeWireLibrary() { return std::string("PipeWire ") + pw_get_library_version(); }

} // namespace quorbel
