#pragma once

#include "platform/hardware/routing/ServerObjects.h"

#include <cstdint>

namespace quorbel {

/// A link that we made; 0 names none.
using OwnLink = std::uint64_t;

struct LinkRequest {
    std::uint32_t outputNodeID = 0;
    std::uint32_t outputPortID = 0;
    std::uint32_t inputNodeID = 0;
    std::uint32_t inputPortID = 0;
    bool isPassive = false; ///< does not keep a device running by itself
};

/// What routing asks of the sound server. Commands are sent, not awaited; their effects come back
/// as changes of the objects. Only metadata holds in the objects at once, because a server of
/// 0.3.65 sends no more of its changes for good once a client has left in the middle of binding the
/// table. Hence `readMetadata`.
class ServerCommands {
  public:
    virtual ~ServerCommands() = default;

    virtual void setMetadata(std::uint32_t subject, const char *key,
                             const MetadataValue &value) = 0;
    virtual void deleteMetadata(std::uint32_t subject, const char *key) = 0;
    /// Tells the changes of the table that the server has not told, and then
    /// `ServerObserver::metadataRead`. Requests may be answered together.
    virtual void readMetadata() = 0;
    /// True while the server is known not to tell of changes of the table.
    [[nodiscard]] virtual bool isDeaf() const = 0;

    /// A link that lives until `destroyLink` or until its owner's connection ends, whichever is
    /// first. The server refuses a second link between the same two ports.
    virtual OwnLink createLink(const LinkRequest &request) = 0;
    virtual void destroyLink(OwnLink link) = 0;
    /// Removes a link of somebody else's, by its id.
    virtual void removeLink(std::uint32_t linkID) = 0;

    /// Now, in seconds on a clock that never goes back.
    [[nodiscard]] virtual double seconds() const = 0;
};

} // namespace quorbel
