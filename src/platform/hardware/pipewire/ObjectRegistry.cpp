#include "platform/hardware/pipewire/ObjectRegistry.h"

#include "platform/hardware/pipewire/BoundObjects.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace quorbel {

ObjectRegistry::ObjectRegistry(ServerConnection &connection) : connection_(connection) {
    static const pw_registry_events events = [] {
        pw_registry_events table{};
        table.version = PW_VERSION_REGISTRY_EVENTS;
        table.global = [](void *self, std::uint32_t id, std::uint32_t, const char *type,
                          std::uint32_t version, const spa_dict *properties) {
            static_cast<ObjectRegistry *>(self)->globalAdded(id, type, version, properties);
        };
        table.global_remove = [](void *self, std::uint32_t id) {
            static_cast<ObjectRegistry *>(self)->globalRemoved(id);
        };
        return table;
    }();
    registry_.reset(pw_core_get_registry(connection_.core(), PW_VERSION_REGISTRY, 0));
    if (registry_)
        pw_registry_add_listener(registry_.get(), registryHook_.get(), &events, this);
}

ObjectRegistry::~ObjectRegistry() = default;

void ObjectRegistry::globalAdded(std::uint32_t id, const char *type, std::uint32_t version,
                                 const spa_dict *dictionary) {
    PropertyMap properties;
    merge(properties, dictionary);
    if (std::strcmp(type, PW_TYPE_INTERFACE_Node) == 0) {
        NodeRecord record;
        record.id = id;
        record.serial =
            std::strtoull(propertyValue(properties, PW_KEY_OBJECT_SERIAL).c_str(), nullptr, 10);
        record.properties = std::move(properties);
        const bool isProgramPlayback = record.mediaClass() == "Stream/Output/Audio";
        objects_.putNode(std::move(record));
        nodes_[id] = std::make_unique<BoundNode>(*this, id, version, isProgramPlayback);
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Port) == 0) {
        PortRecord port;
        port.id = id;
        port.nodeID = idProperty(properties, PW_KEY_NODE_ID);
        port.index = idProperty(properties, PW_KEY_PORT_ID);
        port.channel = propertyValue(properties, PW_KEY_AUDIO_CHANNEL);
        port.isInput = propertyValue(properties, PW_KEY_PORT_DIRECTION) == "in";
        port.isMonitor = propertyValue(properties, PW_KEY_PORT_MONITOR) == "true";
        objects_.putPort(port);
        notify([&](ServerObserver &observer) { observer.portAdded(port); });
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Link) == 0) {
        const LinkRecord link{id, idProperty(properties, PW_KEY_LINK_OUTPUT_NODE),
                              idProperty(properties, PW_KEY_LINK_INPUT_NODE),
                              idProperty(properties, PW_KEY_LINK_OUTPUT_PORT),
                              idProperty(properties, PW_KEY_LINK_INPUT_PORT)};
        objects_.putLink(link);
        notify([&](ServerObserver &observer) { observer.linkAdded(link); });
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Device) == 0) {
        devices_[id] = std::make_shared<BoundDevice>(*this, id, version, std::move(properties));
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Metadata) == 0) {
        const std::string &name = propertyValue(properties, PW_KEY_METADATA_NAME);
        if (name == "settings") {
            settings_ = std::make_unique<Settings>(registry_.get(), id, version);
        } else if (name == "default") {
            if (sessionMetadata_)
                dropMetadata();
            sessionMetadata_ =
                std::make_unique<SessionMetadata>(connection_, registry_.get(), id, version, *this);
        }
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Client) == 0) {
        clients_[id] = std::make_unique<BoundClient>(*this, id, version);
    }
}

void ObjectRegistry::metadataArrived() {
    for (const auto &[where, value] : sessionMetadata_->values())
        objects_.putMetadata(where.first, where.second, value);
    objects_.setHasMetadata(true);
    notify([](ServerObserver &observer) { observer.metadataArrived(); });
}

void ObjectRegistry::metadataChanged(std::uint32_t subject, const std::string &key,
                                     const std::optional<MetadataValue> &value) {
    objects_.putMetadata(subject, key, value);
    notify([&](ServerObserver &observer) { observer.metadataChanged(subject, key, value); });
}

void ObjectRegistry::metadataRead() {
    notify([](ServerObserver &observer) { observer.metadataRead(); });
}

Status ObjectRegistry::refreshMetadata(double seconds) {
    return sessionMetadata_ ? sessionMetadata_->refresh(seconds) : statusOK;
}

void ObjectRegistry::globalRemoved(std::uint32_t id) {
    if (nodes_.erase(id) > 0) {
        if (const auto gone = objects_.takeNode(id))
            notify([&](ServerObserver &observer) { observer.nodeRemoved(*gone); });
    } else if (const auto link = objects_.takeLink(id)) {
        notify([&](ServerObserver &observer) { observer.linkRemoved(*link); });
    } else if (const auto port = objects_.takePort(id)) {
        notify([&](ServerObserver &observer) { observer.portRemoved(*port); });
    } else if (devices_.erase(id) > 0) {
        return;
    } else if (settings_ && settings_->id == id) {
        settings_.reset();
    } else if (clients_.erase(id) > 0) {
        objects_.takeClient(id);
        if (sessionMetadata_)
            sessionMetadata_->clientLeft();
    } else if (sessionMetadata_ && sessionMetadata_->id() == id) {
        dropMetadata();
    }
}

void ObjectRegistry::dropMetadata() {
    sessionMetadata_.reset();
    objects_.setHasMetadata(false);
    objects_.clearMetadata();
    notify([](ServerObserver &observer) { observer.metadataGone(); });
}

const DeviceRecord *ObjectRegistry::deviceOf(const NodeRecord &node) const {
    const auto found = devices_.find(idProperty(node.properties, PW_KEY_DEVICE_ID));
    return found == devices_.end() ? nullptr : &found->second->record;
}

double ObjectRegistry::setting(std::string_view key) const {
    if (!settings_)
        return 0.0;
    const auto found = settings_->values.find(key);
    return found == settings_->values.end() ? 0.0 : std::strtod(found->second.c_str(), nullptr);
}

void ObjectRegistry::setMetadata(std::uint32_t subject, const char *key,
                                 const MetadataValue &value) {
    if (!sessionMetadata_)
        return;
    objects_.putMetadata(subject, key, value);
    sessionMetadata_->set(subject, key, value);
}

void ObjectRegistry::deleteMetadata(std::uint32_t subject, const char *key) {
    if (!sessionMetadata_)
        return;
    objects_.putMetadata(subject, key, std::nullopt);
    sessionMetadata_->set(subject, key, std::nullopt);
}

void ObjectRegistry::readMetadata() {
    if (sessionMetadata_)
        sessionMetadata_->read();
}

bool ObjectRegistry::isDeaf() const { return sessionMetadata_ && sessionMetadata_->isDeaf(); }

OwnLink ObjectRegistry::createLink(const LinkRequest &request) {
    pw_properties *properties = pw_properties_new(PW_KEY_OBJECT_LINGER, "false", nullptr);
    if (request.isPassive)
        pw_properties_set(properties, PW_KEY_LINK_PASSIVE, "true");
    pw_properties_setf(properties, PW_KEY_LINK_OUTPUT_NODE, "%u", request.outputNodeID);
    pw_properties_setf(properties, PW_KEY_LINK_OUTPUT_PORT, "%u", request.outputPortID);
    pw_properties_setf(properties, PW_KEY_LINK_INPUT_NODE, "%u", request.inputNodeID);
    pw_properties_setf(properties, PW_KEY_LINK_INPUT_PORT, "%u", request.inputPortID);
    Proxy<pw_proxy> link(static_cast<pw_proxy *>(
        pw_core_create_object(connection_.core(), "link-factory", PW_TYPE_INTERFACE_Link,
                              PW_VERSION_LINK, &properties->dict, 0)));
    pw_properties_free(properties);
    if (!link)
        return 0;
    ownLinks_[++lastOwnLink_] = std::move(link);
    return lastOwnLink_;
}

void ObjectRegistry::destroyLink(OwnLink link) { ownLinks_.erase(link); }

void ObjectRegistry::removeLink(std::uint32_t linkID) {
    if (const auto &links = objects_.links(); links.contains(linkID))
        pw_registry_destroy(registry_.get(), linkID);
}

double ObjectRegistry::seconds() const { return monotonicSeconds(); }

} // namespace quorbel
