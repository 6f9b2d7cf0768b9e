#include "platform/hardware/pipewire/ObjectRegistry.h"

#include "platform/hardware/pipewire/SystemTime.h"

#include <spa/param/audio/raw.h>
#include <spa/param/format-utils.h>
#include <spa/param/route.h>
#include <spa/pod/iter.h>
#include <spa/pod/parser.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

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

/// Channel count of an audio format; 0 if it does not say one. Of a choice, the preferred one.
std::uint32_t channelsOf(const spa_pod *format) {
    const spa_pod_prop *property = spa_pod_find_prop(format, nullptr, SPA_FORMAT_AUDIO_channels);
    if (property == nullptr)
        return 0;
    std::uint32_t count = 0;
    std::uint32_t choice = 0;
    const spa_pod *value = spa_pod_get_values(&property->value, &count, &choice);
    std::int32_t channels = 0;
    return count > 0 && spa_pod_get_int(value, &channels) == 0 && channels > 0
               ? static_cast<std::uint32_t>(channels)
               : 0;
}

} // namespace

struct ObjectRegistry::BoundNode {
    ObjectRegistry &owner;
    std::uint32_t id;
    Proxy<pw_node> proxy;
    Hook hook;

    void infoChanged(const pw_node_info *info) {
        const NodeRecord *known = owner.objects_.node(id);
        if ((info->change_mask & PW_NODE_CHANGE_MASK_PROPS) == 0 || known == nullptr)
            return;
        NodeRecord record = *known;
        merge(record.properties, info->props);
        record.isComplete = true;
        const NodeRecord &changed = owner.objects_.putNode(std::move(record));
        owner.notify([&](ServerObserver &observer) { observer.nodeChanged(changed); });
    }

    /// One of the formats that a program's stream offers. A stream that offers plain samples too is
    /// not taken for an encoded one.
    void formatRead(const spa_pod *pod) {
        std::uint32_t type = 0;
        std::uint32_t subtype = 0;
        const NodeRecord *known = owner.objects_.node(id);
        if (known == nullptr || spa_format_parse(pod, &type, &subtype) < 0 ||
            type != SPA_MEDIA_TYPE_audio)
            return;
        const bool isPlain = subtype == SPA_MEDIA_SUBTYPE_raw || subtype == SPA_MEDIA_SUBTYPE_dsp;
        SourceFormat format{.channels = channelsOf(pod), .isEncoded = !isPlain};
        if (known->format) {
            format.channels = std::max(format.channels, known->format->channels);
            format.isEncoded = format.isEncoded && known->format->isEncoded;
        }
        NodeRecord record = *known;
        record.format = format;
        const NodeRecord &changed = owner.objects_.putNode(std::move(record));
        if (changed.isComplete)
            owner.notify([&](ServerObserver &observer) { observer.nodeChanged(changed); });
    }
};

/// A program that is connected to the server.
struct ObjectRegistry::BoundClient {
    ObjectRegistry &owner;
    std::uint32_t id;
    Proxy<pw_client> proxy;
    Hook hook;

    void infoChanged(const pw_client_info *info) {
        if ((info->change_mask & PW_CLIENT_CHANGE_MASK_PROPS) == 0)
            return;
        PropertyMap properties;
        merge(properties, info->props);
        owner.objects_.putClient(id, std::move(properties));
        owner.notify([this](ServerObserver &observer) { observer.clientChanged(id); });
    }
};

/// A device and its routes. They are read again after every change that the device announces,
/// which it does for their volumes too; only another route is told.
struct ObjectRegistry::BoundDevice : std::enable_shared_from_this<BoundDevice> {
    static constexpr std::array routeParameters{SPA_PARAM_EnumRoute, SPA_PARAM_Route};

    BoundDevice(ObjectRegistry &registry, std::uint32_t deviceID) : owner(registry), id(deviceID) {}

    ObjectRegistry &owner;
    const std::uint32_t id;
    DeviceRecord record;
    Proxy<pw_device> proxy;
    Hook hook;
    std::array<std::uint32_t, routeParameters.size()> flags{}; ///< as last told
    DeviceRecord read; ///< whose routes are what the reading under way has brought so far
    bool isReading = false;
    bool isOutdated = false; ///< the reading under way

    void infoChanged(const pw_device_info *info) {
        DeviceRecord next = record;
        merge(next.properties, info->props);
        bool haveRoutesChanged = false;
        if ((info->change_mask & PW_DEVICE_CHANGE_MASK_PARAMS) != 0)
            for (std::size_t i = 0; i < routeParameters.size(); ++i)
                haveRoutesChanged = takeFlags(*info, i) || haveRoutesChanged;
        if (haveRoutesChanged)
            readRoutes();
        next.isComplete = record.isComplete || !isReading;
        take(std::move(next));
    }

    /// Returns whether there is something new to be read.
    bool takeFlags(const pw_device_info &info, std::size_t parameter) {
        for (std::uint32_t i = 0; i < info.n_params; ++i)
            if (info.params[i].id == routeParameters[parameter])
                return std::exchange(flags[parameter], info.params[i].flags) !=
                           info.params[i].flags &&
                       (info.params[i].flags & SPA_PARAM_INFO_READ) != 0;
        return false;
    }

    void readRoutes() {
        if (std::exchange(isReading, true)) {
            isOutdated = true;
            return;
        }
        isOutdated = false;
        read = {};
        for (std::size_t i = 0; i < routeParameters.size(); ++i)
            if ((flags[i] & SPA_PARAM_INFO_READ) != 0)
                pw_device_enum_params(proxy.get(), 0, routeParameters[i], 0, UINT32_MAX, nullptr);
        owner.connection_.afterRoundTrip([weak = weak_from_this()] {
            if (const auto self = weak.lock())
                self->routesRead();
        });
    }

    void routesRead() {
        isReading = false;
        DeviceRecord next = record;
        next.outputRoutes = std::move(read.outputRoutes);
        next.nodesWithRoutes = std::move(read.nodesWithRoutes);
        next.isComplete = true;
        take(std::move(next));
        if (isOutdated)
            readRoutes();
    }

    void take(DeviceRecord next) {
        if (next == record)
            return;
        record = std::move(next);
        owner.notify([this](ServerObserver &observer) { observer.deviceChanged(id); });
    }

    void parameterRead(std::uint32_t parameter, const spa_pod *pod) {
        std::uint32_t direction = SPA_DIRECTION_INPUT;
        const char *name = nullptr;
        std::int32_t number = -1;
        const spa_pod *numbers = nullptr;
        if (!isReading || spa_pod_parse_object(
                              pod, SPA_TYPE_OBJECT_ParamRoute, nullptr, SPA_PARAM_ROUTE_direction,
                              SPA_POD_Id(&direction), SPA_PARAM_ROUTE_name, SPA_POD_String(&name),
                              SPA_PARAM_ROUTE_device, SPA_POD_OPT_Int(&number),
                              SPA_PARAM_ROUTE_devices, SPA_POD_OPT_Pod(&numbers)) < 0)
            return;
        if (direction != SPA_DIRECTION_OUTPUT)
            return;
        if (parameter == SPA_PARAM_Route) {
            read.outputRoutes[number] = name;
            return;
        }
        std::array<std::int32_t, 64> list{};
        const std::uint32_t count =
            numbers == nullptr
                ? 0
                : spa_pod_copy_array(numbers, SPA_TYPE_Int, list.data(), list.size());
        read.nodesWithRoutes.insert(list.begin(), list.begin() + count);
    }
};

/// The "settings" metadata table, bound.
struct ObjectRegistry::Settings {
    std::uint32_t id;
    Proxy<pw_metadata> proxy;
    Hook hook;
    std::map<std::string, std::string, std::less<>> values; ///< of subject 0

    int propertyChanged(std::uint32_t subject, const char *key, const char *value) {
        if (subject != 0 || key == nullptr)
            return 0;
        if (value != nullptr)
            values[key] = value;
        else
            values.erase(key);
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
    if (observer_ != nullptr)
        call(*observer_);
    connection_.wakeWaiters();
}

void ObjectRegistry::globalAdded(std::uint32_t id, const char *type, std::uint32_t version,
                                 const spa_dict *dictionary) {
    PropertyMap properties;
    merge(properties, dictionary);
    if (std::strcmp(type, PW_TYPE_INTERFACE_Node) == 0) {
        auto bound = std::unique_ptr<BoundNode>(new BoundNode{*this, id, {}, {}});
        NodeRecord record;
        record.id = id;
        record.serial =
            std::strtoull(propertyValue(properties, PW_KEY_OBJECT_SERIAL).c_str(), nullptr, 10);
        record.properties = std::move(properties);
        const bool isProgramPlayback = record.mediaClass() == "Stream/Output/Audio";
        objects_.putNode(std::move(record));
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
            table.param = [](void *self, int, std::uint32_t, std::uint32_t, std::uint32_t,
                             const spa_pod *pod) {
                if (pod != nullptr)
                    static_cast<BoundNode *>(self)->formatRead(pod);
            };
            return table;
        }();
        pw_node_add_listener(bound->proxy.get(), bound->hook.get(), &events, bound.get());
        if (isProgramPlayback)
            pw_node_enum_params(bound->proxy.get(), 0, SPA_PARAM_EnumFormat, 0, UINT32_MAX,
                                nullptr);
        nodes_[id] = std::move(bound);
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
        auto bound = std::make_shared<BoundDevice>(*this, id);
        bound->record.properties = std::move(properties);
        bound->proxy.reset(static_cast<pw_device *>(pw_registry_bind(
            registry_.get(), id, type, std::min<std::uint32_t>(version, PW_VERSION_DEVICE), 0)));
        if (!bound->proxy)
            return;
        static const pw_device_events events = [] {
            pw_device_events table{};
            table.version = PW_VERSION_DEVICE_EVENTS;
            table.info = [](void *self, const pw_device_info *info) {
                static_cast<BoundDevice *>(self)->infoChanged(info);
            };
            table.param = [](void *self, int, std::uint32_t parameter, std::uint32_t, std::uint32_t,
                             const spa_pod *pod) {
                static_cast<BoundDevice *>(self)->parameterRead(parameter, pod);
            };
            return table;
        }();
        pw_device_add_listener(bound->proxy.get(), bound->hook.get(), &events, bound.get());
        devices_[id] = std::move(bound);
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Metadata) == 0) {
        const std::string &name = propertyValue(properties, PW_KEY_METADATA_NAME);
        if (name == "settings") {
            bindSettings(id, version);
        } else if (name == "default") {
            if (sessionMetadata_)
                dropMetadata();
            sessionMetadata_ =
                std::make_unique<SessionMetadata>(connection_, registry_.get(), id, version, *this);
        }
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Client) == 0) {
        bindClient(id, version);
    }
}

void ObjectRegistry::bindClient(std::uint32_t id, std::uint32_t version) {
    auto &bound = clients_[id] = std::unique_ptr<BoundClient>(new BoundClient{*this, id, {}, {}});
    bound->proxy.reset(static_cast<pw_client *>(
        pw_registry_bind(registry_.get(), id, PW_TYPE_INTERFACE_Client,
                         std::min<std::uint32_t>(version, PW_VERSION_CLIENT), 0)));
    if (!bound->proxy)
        return;
    static const pw_client_events events = [] {
        pw_client_events table{};
        table.version = PW_VERSION_CLIENT_EVENTS;
        table.info = [](void *self, const pw_client_info *info) {
            static_cast<BoundClient *>(self)->infoChanged(info);
        };
        return table;
    }();
    pw_client_add_listener(bound->proxy.get(), bound->hook.get(), &events, bound.get());
}

void ObjectRegistry::bindSettings(std::uint32_t id, std::uint32_t version) {
    settings_ = std::unique_ptr<Settings>(new Settings{id, {}, {}, {}});
    settings_->proxy.reset(static_cast<pw_metadata *>(
        pw_registry_bind(registry_.get(), id, PW_TYPE_INTERFACE_Metadata,
                         std::min<std::uint32_t>(version, PW_VERSION_METADATA), 0)));
    if (!settings_->proxy)
        return;
    static const pw_metadata_events events = [] {
        pw_metadata_events table{};
        table.version = PW_VERSION_METADATA_EVENTS;
        table.property = [](void *self, std::uint32_t subject, const char *key, const char *,
                            const char *value) {
            return static_cast<Settings *>(self)->propertyChanged(subject, key, value);
        };
        return table;
    }();
    pw_metadata_add_listener(settings_->proxy.get(), settings_->hook.get(), &events,
                             settings_.get());
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
