#pragma once

#include "platform/hardware/routing/ServerObjects.h"

#include <cstdint>

namespace quorbel {

/// A link that we made; 0 is none.
using OwnLink = std::uint64_t;

struct LinkRequest {
    std::uint32_t outputNodeID = 0;
    std::uint32_t outputPortID = 0;
    std::uint32_t inputNodeID = 0;
    std::uint32_t inputPortID = 0;
    bool isPassive = false; ///< does not keep a device running by itself
};

/// Commands of routing to the sound server. They are sent without waiting; their effects come back
/// as changes of `ServerObjects`. Metadata alone is updated there at once, because a server of
/// 0.3.65 stops sending its changes for good once a client leaves while binding the table. Hence
/// `readMetadata`.
class ServerCommands {
  public:
    virtual ~ServerCommands() = default;

    virtual void setMetadata(std::uint32_t subject, const char *key,
                             const MetadataValue &value) = 0;
    virtual void deleteMetadata(std::uint32_t subject, const char *key) = 0;
    /// Reports the changes of the table that the server has not sent, then
    /// `ServerObserver::metadataRead`. Requests may be answered together.
    virtual void readMetadata() = 0;
    /// True while the server is known to send no changes of the table.
    [[nodiscard]] virtual bool isDeaf() const = 0;

    /// Makes a link that lives until `destroyLink` or the end of our connection. The server refuses
    /// a second link between the same two ports.
    virtual OwnLink createLink(const LinkRequest &request) = 0;
    virtual void destroyLink(OwnLink link) = 0;
    /// Removes another client's link, by its id.
    virtual void removeLink(std::uint32_t linkID) = 0;

    /// Current time in seconds on a monotonic clock.
    [[nodiscard]] virtual double seconds() const = 0;
};

} // namespace quorbel
