#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorbel {

using PropertyMap = std::map<std::string, std::string, std::less<>>;

/// Value of `key`, or an empty text.
const std::string &propertyValue(const PropertyMap &properties, std::string_view key);

/// The sound that a program's stream delivers, before the server mixes it for a device.
struct SourceFormat {
    std::uint32_t channels = 0; ///< 0: unknown
    bool isEncoded = false;     ///< compressed sound, which only a device can decode
};

struct NodeRecord {
    std::uint32_t id = 0;     ///< reused by the server as soon as the node is gone
    std::uint64_t serial = 0; ///< never reused
    PropertyMap properties;   ///< only the registry's until `isComplete`, then all
    bool isComplete = false;
    std::optional<SourceFormat> format{}; ///< of an application's playback; arrives later

    [[nodiscard]] const std::string &property(std::string_view key) const {
        return propertyValue(properties, key);
    }
    [[nodiscard]] const std::string &mediaClass() const { return property("media.class"); }
    [[nodiscard]] const std::string &name() const { return property("node.name"); }
};

/// A sound card or Bluetooth device, to which nodes belong.
struct DeviceRecord {
    PropertyMap properties;
    /// Names of the output routes in use, by the number of the node that plays on them
    /// (`card.profile.device`).
    std::map<int, std::string> outputRoutes;
    std::set<int> nodesWithRoutes; ///< numbers of the nodes that have a route to choose
    bool isComplete = false;       ///< properties and routes have been received

    friend bool operator==(const DeviceRecord &, const DeviceRecord &) = default;
};

struct PortRecord {
    std::uint32_t id = 0;
    std::uint32_t nodeID = 0;
    std::uint32_t index = 0;
    std::string channel; ///< "FL", "MONO", "AUX0" and so on
    bool isInput = false;
    bool isMonitor = false;
};

struct LinkRecord {
    std::uint32_t id = 0;
    std::uint32_t outputNodeID = 0;
    std::uint32_t inputNodeID = 0;
    std::uint32_t outputPortID = 0;
    std::uint32_t inputPortID = 0;
};

struct MetadataValue {
    std::string type;
    std::string value;
    bool operator==(const MetadataValue &) const = default;
};

inline constexpr const char *targetObjectKey = "target.object";
inline constexpr const char *targetNodeKey = "target.node";

/// Begins the names of all our nodes.
inline constexpr std::string_view ownNodePrefix = "quorbel.";

/// True for a node that applications can play on.
inline bool isOutputDevice(const NodeRecord &node) {
    return node.mediaClass() == "Audio/Sink" || node.mediaClass() == "Audio/Duplex";
}

/// The sound server's objects as reported so far: nodes, ports, links and the session manager's
/// "default" metadata table. A plain table, filled by the connection to the server.
class ServerObjects {
  public:
    [[nodiscard]] const NodeRecord *node(std::uint32_t id) const;
    [[nodiscard]] const NodeRecord *nodeNamed(std::string_view name) const;
    [[nodiscard]] const NodeRecord *nodeWithSerial(std::uint64_t serial) const;
    [[nodiscard]] const std::map<std::uint32_t, NodeRecord> &nodes() const { return nodes_; }
    /// Properties of a program that is connected to the server; null if unknown.
    [[nodiscard]] const PropertyMap *client(std::uint32_t id) const;
    [[nodiscard]] const PortRecord *port(std::uint32_t id) const;
    /// Ports of a node, sorted by index.
    [[nodiscard]] std::vector<PortRecord> ports(std::uint32_t nodeID, bool input) const;
    [[nodiscard]] bool hasPorts(std::uint32_t nodeID, bool input) const;
    [[nodiscard]] const std::map<std::uint32_t, LinkRecord> &links() const { return links_; }
    [[nodiscard]] bool isLinked(std::uint32_t outputNodeID, std::uint32_t inputNodeID) const;

    /// True once the metadata table is bound and all its values have been received.
    [[nodiscard]] bool hasMetadata() const { return hasMetadata_; }
    [[nodiscard]] std::optional<MetadataValue> metadata(std::uint32_t subject,
                                                        std::string_view key) const;
    /// The subjects of the metadata table.
    [[nodiscard]] std::vector<std::uint32_t> metadataSubjects() const;

    NodeRecord &putNode(NodeRecord node);
    std::optional<NodeRecord> takeNode(std::uint32_t id);
    void putClient(std::uint32_t id, PropertyMap properties);
    bool takeClient(std::uint32_t id);
    void putPort(PortRecord port);
    std::optional<PortRecord> takePort(std::uint32_t id);
    void putLink(const LinkRecord &link);
    std::optional<LinkRecord> takeLink(std::uint32_t id);
    void setHasMetadata(bool has) { hasMetadata_ = has; }
    /// Sets a value of the metadata table, or deletes the key without a value.
    void putMetadata(std::uint32_t subject, std::string_view key,
                     const std::optional<MetadataValue> &value);
    void clearMetadata() { metadata_.clear(); }

  private:
    using Table = std::map<std::string, MetadataValue, std::less<>>;

    std::map<std::uint32_t, NodeRecord> nodes_;
    std::map<std::uint32_t, PropertyMap> clients_;
    std::map<std::uint32_t, PortRecord> ports_;
    std::map<std::uint32_t, LinkRecord> links_;
    std::map<std::uint32_t, Table> metadata_; ///< by subject
    bool hasMetadata_ = false;
};

/// Receives every change of a `ServerObjects` right after it, removals too.
class ServerObserver {
  public:
    virtual ~ServerObserver() = default;
    virtual void nodeChanged(const NodeRecord &) {}
    virtual void nodeRemoved(const NodeRecord &) {}
    /// A device's properties or routes have changed; its removal is not reported.
    virtual void deviceChanged(std::uint32_t /*deviceID*/) {}
    /// A program's properties have changed; its removal is not reported.
    virtual void clientChanged(std::uint32_t /*clientID*/) {}
    virtual void portAdded(const PortRecord &) {}
    virtual void portRemoved(const PortRecord &) {}
    virtual void linkAdded(const LinkRecord &) {}
    virtual void linkRemoved(const LinkRecord &) {}
    /// A key of the "default" metadata changed; without a value it was deleted.
    virtual void metadataChanged(std::uint32_t /*subject*/, std::string_view /*key*/,
                                 const std::optional<MetadataValue> & /*value*/) {}
    virtual void metadataRead() {}    ///< all requested readings have ended
    virtual void metadataArrived() {} ///< `hasMetadata` has become true
    virtual void metadataGone() {}    ///< the session manager has left
};

/// A link that we made; 0 is none.
using OwnLink = std::uint64_t;

struct LinkRequest {
    std::uint32_t outputNodeID = 0;
    std::uint32_t outputPortID = 0;
    std::uint32_t inputNodeID = 0;
    std::uint32_t inputPortID = 0;
    bool isPassive = false; ///< does not keep a device running
};

/// Commands of routing to the sound server, sent without waiting. Their effects come back as
/// changes of `ServerObjects`. Metadata alone is updated there at once: a server of 0.3.65 stops
/// sending its changes for good once a client leaves while binding the table. Hence `readMetadata`.
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
