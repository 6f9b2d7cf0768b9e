#pragma once

#include "platform/hardware/pipewire/ServerConnection.h"

#include <pipewire/extensions/metadata.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorbel {

using PropertyMap = std::map<std::string, std::string, std::less<>>;

/// The value of `key`, or an empty text.
const std::string &propertyValue(const PropertyMap &properties, std::string_view key);

struct NodeRecord {
    std::uint32_t id = 0;
    std::uint64_t serial = 0;
    PropertyMap properties; ///< the registry's few at first, all of them once `isComplete`
    bool isComplete = false;

    [[nodiscard]] const std::string &property(std::string_view key) const {
        return propertyValue(properties, key);
    }
    [[nodiscard]] const std::string &mediaClass() const { return property("media.class"); }
    [[nodiscard]] const std::string &name() const { return property("node.name"); }
};

struct PortRecord {
    std::uint32_t id = 0;
    std::uint32_t nodeID = 0;
    std::uint32_t index = 0;
    bool isInput = false;
    bool isMonitor = false;
};

struct LinkRecord {
    std::uint32_t id = 0;
    std::uint32_t outputNodeID = 0;
    std::uint32_t inputNodeID = 0;
};

struct MetadataValue {
    std::string type;
    std::string value;
};

/// Hears what changes in the registry. [control]
class RegistryObserver {
  public:
    virtual ~RegistryObserver() = default;
    virtual void nodeChanged(const NodeRecord &) {}
    virtual void nodeRemoved(const NodeRecord &) {}
    virtual void portAdded(const PortRecord &) {}
    virtual void linkAdded(const LinkRecord &) {}
    virtual void linkRemoved(const LinkRecord &) {}
    /// A key of the "default" metadata changed; no value means that it was deleted.
    virtual void metadataChanged(std::uint32_t, std::string_view,
                                 const std::optional<MetadataValue> &) {}
    virtual void metadataArrived() {} ///< "default" is bound and all its values have been received
    virtual void metadataGone() {}    ///< the session manager has left
};

/// What the sound server holds, as far as it has told: nodes, ports, links, devices and the two
/// metadata tables that matter. Everything needs the loop's lock.
class ObjectRegistry {
  public:
    explicit ObjectRegistry(ServerConnection &connection);
    ~ObjectRegistry();
    ObjectRegistry(const ObjectRegistry &) = delete;
    ObjectRegistry &operator=(const ObjectRegistry &) = delete;

    void addObserver(RegistryObserver &observer);
    void removeObserver(RegistryObserver &observer);

    [[nodiscard]] const NodeRecord *node(std::uint32_t id) const;
    [[nodiscard]] const NodeRecord *nodeNamed(std::string_view name) const;
    [[nodiscard]] const NodeRecord *nodeWithSerial(std::uint64_t serial) const;
    [[nodiscard]] std::vector<const NodeRecord *> nodes() const; ///< in the order of their ids
    [[nodiscard]] std::vector<PortRecord> ports(std::uint32_t nodeID, bool input) const;
    [[nodiscard]] const std::map<std::uint32_t, LinkRecord> &links() const { return links_; }
    [[nodiscard]] bool isLinked(std::uint32_t outputNodeID, std::uint32_t inputNodeID) const;
    [[nodiscard]] const PropertyMap *deviceProperties(std::uint32_t deviceID) const;

    /// The "default" metadata.
    [[nodiscard]] bool hasMetadata() const { return metadataComplete_; }
    [[nodiscard]] std::optional<MetadataValue> metadata(std::uint32_t subject,
                                                        std::string_view key) const;
    /// Both hold at once, without waiting for the server's echo: a 0.3.65 server sends no more of
    /// them for good once a client has left in the middle of binding the table.
    void setMetadata(std::uint32_t subject, const char *key, const MetadataValue &value);
    void deleteMetadata(std::uint32_t subject, const char *key);

    /// A number of the "settings" metadata (clock.rate and its like); 0 when it is not there.
    [[nodiscard]] double setting(std::string_view key) const;

  private:
    struct BoundNode;
    struct BoundDevice;
    struct BoundMetadata;

    void globalAdded(std::uint32_t id, const char *type, std::uint32_t version,
                     const spa_dict *properties);
    void globalRemoved(std::uint32_t id);
    void bindMetadata(std::uint32_t id, std::uint32_t version, const std::string &name);
    template <typename Call> void notify(Call call);

    ServerConnection &connection_;
    Proxy<pw_registry> registry_;
    Hook registryHook_;
    std::vector<RegistryObserver *> observers_;
    std::map<std::uint32_t, std::unique_ptr<BoundNode>> nodes_;
    std::map<std::uint32_t, std::unique_ptr<BoundDevice>> devices_;
    std::map<std::uint32_t, PortRecord> ports_;
    std::map<std::uint32_t, LinkRecord> links_;
    std::unique_ptr<BoundMetadata> default_;
    std::unique_ptr<BoundMetadata> settings_;
    bool metadataComplete_ = false;
};

} // namespace quorbel
