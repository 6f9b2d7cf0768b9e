#pragma once

#include "platform/hardware/pipewire/ObjectRegistry.h"
#include "platform/hardware/pipewire/PipeWireHandles.h"
#include "platform/hardware/pipewire/ServerConnection.h"
#include "platform/hardware/routing/ServerCommands.h"

#include <array>
#include <cstdint>

namespace quorbel {

/// Keeps the device of our two streams running without an application: what an effect holds when
/// the last application stops is heard to its end.
///
/// Two converters inside the server, in the scheduling group of the streams, through which no sound
/// passes. A link that is not passive keeps every node of its group running, and so the device: the
/// link between the two is the hold. (Servers from 1.0 on want one link group, older ones one node
/// group.) The server runs them itself, so a held cycle wakes this
/// program no more than another one; it removes them when our connection ends. They have no media
/// class: neither session managers nor mixers take notice of them.
///
/// Needs the loop's lock throughout.
class DeviceHold {
  public:
    DeviceHold(ServerConnection &connection, ObjectRegistry &registry);
    ~DeviceHold();
    DeviceHold(const DeviceHold &) = delete;
    DeviceHold &operator=(const DeviceHold &) = delete;

    /// Whether the device is to be kept running.
    void setHeld(bool isHeld);
    /// Carries out what waited for the server: to be called after changes of its objects.
    void follow();

  private:
    [[nodiscard]] Proxy<pw_node> makeConverter(const char *name) const;
    [[nodiscard]] bool areConvertersGone();

    ServerConnection &connection_;
    ObjectRegistry &registry_;
    std::array<Proxy<pw_node>, 2> converters_;
    bool haveBeenSeen_ = false; ///< both have been in the registry
    bool isHeld_ = false;
    OwnLink link_ = 0;
};

} // namespace quorbel
