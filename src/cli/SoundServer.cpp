#include "cli/SoundServer.h"

#include "cli/CommandError.h"
#include "platform/hardware/SystemHardware.h"

#include <fmt/format.h>

#include <system_error>

namespace quorbel {

std::unique_ptr<AudioHardware> hardwareOrError() {
    Status status = statusOK;
    auto hardware = makeSystemHardware(status);
    if (!hardware)
        throw CommandError(fmt::format("no PipeWire sound server answers ({}); start one with: "
                                       "systemctl --user start pipewire wireplumber pipewire-pulse",
                                       std::generic_category().message(-status)));
    return hardware;
}

} // namespace quorbel
