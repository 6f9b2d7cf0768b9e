#pragma once

#include "platform/hardware/pipewire/ServerConnection.h"
#include "platform/hardware/pipewire/SessionMetadata.h"
#include "platform/hardware/routing/ServerObjects.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// Translates between the server's library and routing: fills a `ServerObjects` from the server's
/// events and carries out commands. Everything needs the loop's lock.
class ObjectRegistry final : public ServerCommands, public SessionMetadata::Listener {
  public:
    explicit ObjectRegistry(ServerConnection &connection);
    ~ObjectRegistry() override;
    ObjectRegistry(const ObjectRegistry &) = delete;
    ObjectRegistry &operator=(const ObjectRegistry &) = delete;

    /// Receives every change. [control]
    void setObserver(ServerObserver *observer) { observer_ = observer; }

    [[nodiscard]] const ServerObjects &objects() const { return objects_; }
    /// The device that the node belongs to; null without one.
    [[nodiscard]] const DeviceRecord *deviceOf(const NodeRecord &node) const;
    /// A number of the "settings" metadata, such as clock.rate; 0 if missing.
    [[nodiscard]] double setting(std::string_view key) const;

    /// As `SessionMetadata::refresh`; returns at once without a session manager.
    Status refreshMetadata(double seconds);

    void setMetadata(std::uint32_t subject, const char *key, const MetadataValue &value) override;
    void deleteMetadata(std::uint32_t subject, const char *key) override;
    void readMetadata() override;
    [[nodiscard]] bool isDeaf() const override;
    OwnLink createLink(const LinkRequest &request) override;
    void destroyLink(OwnLink link) override;
    void removeLink(std::uint32_t linkID) override;
    [[nodiscard]] double seconds() const override;

  private:
    struct BoundNode;
    struct BoundDevice;
    struct BoundClient;
    struct Settings;

    void globalAdded(std::uint32_t id, const char *type, std::uint32_t version,
                     const spa_dict *properties);
    void globalRemoved(std::uint32_t id);
    void dropMetadata();
    void metadataArrived() override;
    void metadataRead() override;
    void metadataChanged(std::uint32_t subject, const std::string &key,
                         const std::optional<MetadataValue> &value) override;
    template <typename Call> void notify(Call call);

    ServerConnection &connection_;
    ServerObserver *observer_ = nullptr;
    ServerObjects objects_;
    Proxy<pw_registry> registry_;
    Hook registryHook_;
    std::map<std::uint32_t, std::unique_ptr<BoundNode>> nodes_;
    std::map<std::uint32_t, std::shared_ptr<BoundDevice>> devices_; ///< shared with readings
    std::map<std::uint32_t, std::unique_ptr<BoundClient>> clients_;
    std::unique_ptr<SessionMetadata> sessionMetadata_;
    std::unique_ptr<Settings> settings_;
    std::map<OwnLink, Proxy<pw_proxy>> ownLinks_;
    OwnLink lastOwnLink_ = 0;
};

} // namespace quorbel
