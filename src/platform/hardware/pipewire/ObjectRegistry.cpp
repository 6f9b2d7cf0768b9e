#include "platform/hardware/pipewire/ObjectRegistry.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace quorbel {
namespace {

void merge(PropertyMap &into, const spa_dict *from) {
    if (from == nullptr)
        return;
    for (std::uint32_t i = 0; i < from->n_items; ++i) {
        const spa_dict_item &item = from->items[i];
        if (item.value != nullptr)
            into[item.key] = item.value;
        else
            into.erase(item.key);
    }
}

std::uint32_t idProperty(const PropertyMap &properties, std::string_view key) {
    const std::string &text = propertyValue(properties, key);
    return text.empty() ? SPA_ID_INVALID
                        : static_cast<std::uint32_t>(std::strtoul(text.c_str(), nullptr, 10));
}

} // namespace

const std::string &propertyValue(const PropertyMap &properties, std::string_view key) {
    static const std::string none;
    const auto found = properties.find(key);
    return found == properties.end() ? none : found->second;
}

struct ObjectRegistry::BoundNode {
    ObjectRegistry &owner;
    NodeRecord record;
    Proxy<pw_node> proxy;
    Hook hook;

    void infoChanged(const pw_node_info *info) {
        if ((info->change_mask & PW_NODE_CHANGE_MASK_PROPS) == 0)
            return;
        merge(record.properties, info->props);
        record.isComplete = true;
        owner.notify([&](RegistryObserver &observer) { observer.nodeChanged(record); });
    }
};

struct ObjectRegistry::BoundDevice {
    PropertyMap properties;
    Proxy<pw_device> proxy;
    Hook hook;
};

struct ObjectRegistry::BoundMetadata {
    ObjectRegistry &owner;
    std::uint32_t id;
    bool isDefault;
    Proxy<pw_metadata> proxy;
    Hook hook;
    std::map<std::pair<std::uint32_t, std::string>, MetadataValue> values;

    int propertyChanged(std::uint32_t subject, const char *key, const char *type,
                        const char *value) {
        if (key == nullptr) { // everything about the subject is gone
            std::vector<std::string> keys;
            for (const auto &[where, _] : values)
                if (where.first == subject)
                    keys.push_back(where.second);
            for (const std::string &each : keys)
                propertyChanged(subject, each.c_str(), nullptr, nullptr);
            return 0;
        }
        std::optional<MetadataValue> now;
        if (value != nullptr) {
            now = MetadataValue{type != nullptr ? type : "", value};
            values[{subject, key}] = *now;
        } else {
            values.erase({subject, key});
        }
        if (isDefault && owner.metadataComplete_)
            owner.notify(
                [&](RegistryObserver &observer) { observer.metadataChanged(subject, key, now); });
        return 0;
    }
};

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

template <typename Call> void ObjectRegistry::notify(Call call) {
    // Over a copy: an observer may leave from inside its own call.
    const std::vector<RegistryObserver *> observers = observers_;
    for (RegistryObserver *observer : observers)
        if (std::find(observers_.begin(), observers_.end(), observer) != observers_.end())
            call(*observer);
    connection_.wakeWaiters();
}

void ObjectRegistry::addObserver(RegistryObserver &observer) { observers_.push_back(&observer); }

void ObjectRegistry::removeObserver(RegistryObserver &observer) {
    std::erase(observers_, &observer);
}

void ObjectRegistry::globalAdded(std::uint32_t id, const char *type, std::uint32_t version,
                                 const spa_dict *dictionary) {
    PropertyMap properties;
    merge(properties, dictionary);
    if (std::strcmp(type, PW_TYPE_INTERFACE_Node) == 0) {
        auto bound = std::unique_ptr<BoundNode>(new BoundNode{*this, {}, {}, {}});
        bound->record.id = id;
        bound->record.serial =
            std::strtoull(propertyValue(properties, PW_KEY_OBJECT_SERIAL).c_str(), nullptr, 10);
        bound->record.properties = std::move(properties);
        bound->proxy.reset(static_cast<pw_node *>(pw_registry_bind(
            registry_.get(), id, type, std::min<std::uint32_t>(version, PW_VERSION_NODE), 0)));
        if (!bound->proxy)
            return;
        static const pw_node_events events = [] {
            pw_node_events table{};
            table.version = PW_VERSION_NODE_EVENTS;
            table.info = [](void *self, const pw_node_info *info) {
                static_cast<BoundNode *>(self)->infoChanged(info);
            };
            return table;
        }();
        pw_node_add_listener(bound->proxy.get(), bound->hook.get(), &events, bound.get());
        nodes_[id] = std::move(bound);
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Port) == 0) {
        PortRecord port;
        port.id = id;
        port.nodeID = idProperty(properties, PW_KEY_NODE_ID);
        port.index = idProperty(properties, PW_KEY_PORT_ID);
        port.isInput = propertyValue(properties, PW_KEY_PORT_DIRECTION) == "in";
        port.isMonitor = propertyValue(properties, PW_KEY_PORT_MONITOR) == "true";
        ports_[id] = port;
        notify([&](RegistryObserver &observer) { observer.portAdded(port); });
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Link) == 0) {
        const LinkRecord link{id, idProperty(properties, PW_KEY_LINK_OUTPUT_NODE),
                              idProperty(properties, PW_KEY_LINK_INPUT_NODE)};
        links_[id] = link;
        notify([&](RegistryObserver &observer) { observer.linkAdded(link); });
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Device) == 0) {
        auto bound = std::make_unique<BoundDevice>();
        bound->properties = std::move(properties);
        bound->proxy.reset(static_cast<pw_device *>(pw_registry_bind(
            registry_.get(), id, type, std::min<std::uint32_t>(version, PW_VERSION_DEVICE), 0)));
        if (!bound->proxy)
            return;
        static const pw_device_events events = [] {
            pw_device_events table{};
            table.version = PW_VERSION_DEVICE_EVENTS;
            table.info = [](void *self, const pw_device_info *info) {
                merge(static_cast<BoundDevice *>(self)->properties, info->props);
            };
            return table;
        }();
        pw_device_add_listener(bound->proxy.get(), bound->hook.get(), &events, bound.get());
        devices_[id] = std::move(bound);
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Metadata) == 0) {
        bindMetadata(id, version, propertyValue(properties, PW_KEY_METADATA_NAME));
    }
}

void ObjectRegistry::bindMetadata(std::uint32_t id, std::uint32_t version,
                                  const std::string &name) {
    if (name != "default" && name != "settings")
        return;
    const bool isDefault = name == "default";
    auto &slot = isDefault ? default_ : settings_;
    slot = std::unique_ptr<BoundMetadata>(new BoundMetadata{*this, id, isDefault, {}, {}, {}});
    slot->proxy.reset(static_cast<pw_metadata *>(
        pw_registry_bind(registry_.get(), id, PW_TYPE_INTERFACE_Metadata,
                         std::min<std::uint32_t>(version, PW_VERSION_METADATA), 0)));
    if (!slot->proxy) {
        slot.reset();
        return;
    }
    static const pw_metadata_events events = [] {
        pw_metadata_events table{};
        table.version = PW_VERSION_METADATA_EVENTS;
        table.property = [](void *self, std::uint32_t subject, const char *key, const char *type,
                            const char *value) {
            return static_cast<BoundMetadata *>(self)->propertyChanged(subject, key, type, value);
        };
        return table;
    }();
    pw_metadata_add_listener(slot->proxy.get(), slot->hook.get(), &events, slot.get());
    if (!isDefault)
        return;
    metadataComplete_ = false;
    connection_.afterRoundTrip([this] {
        metadataComplete_ = default_ != nullptr;
        if (metadataComplete_)
            notify([](RegistryObserver &observer) { observer.metadataArrived(); });
    });
}

void ObjectRegistry::globalRemoved(std::uint32_t id) {
    if (const auto node = nodes_.find(id); node != nodes_.end()) {
        const std::unique_ptr<BoundNode> gone = std::move(node->second);
        nodes_.erase(node);
        notify([&](RegistryObserver &observer) { observer.nodeRemoved(gone->record); });
        return;
    }
    if (const auto link = links_.find(id); link != links_.end()) {
        const LinkRecord gone = link->second;
        links_.erase(link);
        notify([&](RegistryObserver &observer) { observer.linkRemoved(gone); });
        return;
    }
    if (ports_.erase(id) > 0 || devices_.erase(id) > 0)
        return;
    if (settings_ && settings_->id == id)
        settings_.reset();
    if (default_ && default_->id == id) {
        default_.reset();
        metadataComplete_ = false;
        notify([](RegistryObserver &observer) { observer.metadataGone(); });
    }
}

const NodeRecord *ObjectRegistry::node(std::uint32_t id) const {
    const auto found = nodes_.find(id);
    return found == nodes_.end() ? nullptr : &found->second->record;
}

const NodeRecord *ObjectRegistry::nodeNamed(std::string_view name) const {
    for (const auto &[_, bound] : nodes_)
        if (bound->record.name() == name)
            return &bound->record;
    return nullptr;
}

const NodeRecord *ObjectRegistry::nodeWithSerial(std::uint64_t serial) const {
    for (const auto &[_, bound] : nodes_)
        if (bound->record.serial == serial)
            return &bound->record;
    return nullptr;
}

std::vector<const NodeRecord *> ObjectRegistry::nodes() const {
    std::vector<const NodeRecord *> result;
    result.reserve(nodes_.size());
    for (const auto &[_, bound] : nodes_)
        result.push_back(&bound->record);
    return result;
}

std::vector<PortRecord> ObjectRegistry::ports(std::uint32_t nodeID, bool input) const {
    std::vector<PortRecord> result;
    for (const auto &[_, port] : ports_)
        if (port.nodeID == nodeID && port.isInput == input)
            result.push_back(port);
    std::sort(result.begin(), result.end(),
              [](const PortRecord &a, const PortRecord &b) { return a.index < b.index; });
    return result;
}

bool ObjectRegistry::isLinked(std::uint32_t outputNodeID, std::uint32_t inputNodeID) const {
    return std::any_of(links_.begin(), links_.end(), [&](const auto &entry) {
        return entry.second.outputNodeID == outputNodeID && entry.second.inputNodeID == inputNodeID;
    });
}

const PropertyMap *ObjectRegistry::deviceProperties(std::uint32_t deviceID) const {
    const auto found = devices_.find(deviceID);
    return found == devices_.end() ? nullptr : &found->second->properties;
}

std::optional<MetadataValue> ObjectRegistry::metadata(std::uint32_t subject,
                                                      std::string_view key) const {
    if (!default_)
        return std::nullopt;
    const auto found = default_->values.find({subject, std::string(key)});
    if (found == default_->values.end())
        return std::nullopt;
    return found->second;
}

void ObjectRegistry::setMetadata(std::uint32_t subject, const char *key,
                                 const MetadataValue &value) {
    if (!default_)
        return;
    default_->values[{subject, key}] = value;
    pw_metadata_set_property(default_->proxy.get(), subject, key, value.type.c_str(),
                             value.value.c_str());
}

void ObjectRegistry::deleteMetadata(std::uint32_t subject, const char *key) {
    if (!default_)
        return;
    default_->values.erase({subject, key});
    pw_metadata_set_property(default_->proxy.get(), subject, key, nullptr, nullptr);
}

double ObjectRegistry::setting(std::string_view key) const {
    if (!settings_)
        return 0.0;
    const auto found = settings_->values.find({0, std::string(key)});
    return found == settings_->values.end() ? 0.0
                                            : std::strtod(found->second.value.c_str(), nullptr);
}

} // namespace quorbel
