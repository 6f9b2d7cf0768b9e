#pragma once

#include "platform/hardware/pipewire/ObjectRegistry.h"
#include "platform/hardware/pipewire/PipeWireHandles.h"
#include "platform/hardware/pipewire/ServerConnection.h"
#include "platform/hardware/routing/ServerObjects.h"

#include <array>
#include <cstdint>

namespace quorbel {

/// Keeps the device of our two streams running without an application, so that an effect's tail is
/// heard to its end.
///
/// The hold is a link between two converters inside the server, in the scheduling group of the
/// streams; no sound passes through them. A link that is not passive keeps every node of its group
/// running, and so the device. (Servers from 1.0 on need one link group, older ones one node
/// group.) The server runs the converters itself, so a held cycle costs this program no extra
/// wake-up, and removes them when our connection ends. They have no media class, so session
/// managers and mixers ignore them.
///
/// Needs the loop's lock throughout.
class DeviceHold {
  public:
    DeviceHold(ServerConnection &connection, ObjectRegistry &registry);
    ~DeviceHold();
    DeviceHold(const DeviceHold &) = delete;
    DeviceHold &operator=(const DeviceHold &) = delete;

    /// Keeps the device running, or releases it.
    void setHeld(bool isHeld);
    /// Continues steps that waited for the server; call it after changes of the server's objects.
    void follow();

  private:
    [[nodiscard]] Proxy<pw_node> makeConverter(const char *name) const;
    [[nodiscard]] bool areConvertersGone();

    ServerConnection &connection_;
    ObjectRegistry &registry_;
    std::array<Proxy<pw_node>, 2> converters_;
    bool haveBeenSeen_ = false; ///< both converters have been in the registry
    bool isHeld_ = false;
    OwnLink link_ = 0;
};

} // namespace quorbel
