#pragma once

// Objects of the server that bind themselves and translate their events for the registry, the only
// file that includes them.

#include "platform/hardware/pipewire/ObjectRegistry.h"

#include <spa/param/audio/raw.h>
#include <spa/param/format-utils.h>
#include <spa/param/route.h>
#include <spa/pod/iter.h>
#include <spa/pod/parser.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace quorbel {

/// Sets the dictionary's properties, and erases those without a value.
inline void merge(PropertyMap &into, const spa_dict *from) {
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

/// Number in a property; SPA_ID_INVALID without one.
inline std::uint32_t idProperty(const PropertyMap &properties, std::string_view key) {
    const std::string &text = propertyValue(properties, key);
    return text.empty() ? SPA_ID_INVALID
                        : static_cast<std::uint32_t>(std::strtoul(text.c_str(), nullptr, 10));
}

/// Binds an object of the server, with the older of its and our interface versions.
template <typename Interface>
Proxy<Interface> bound(pw_registry *registry, std::uint32_t id, const char *type,
                       std::uint32_t version, std::uint32_t ours) {
    return Proxy<Interface>(
        static_cast<Interface *>(pw_registry_bind(registry, id, type, std::min(version, ours), 0)));
}

/// Channel count of an audio format, the preferred one of a choice; 0 if absent.
inline std::uint32_t channelsOf(const spa_pod *format) {
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

template <typename Call> void ObjectRegistry::notify(Call call) {
    if (observer_ != nullptr)
        call(*observer_);
    connection_.wakeWaiters();
}

/// A node, with the formats that it offers if it is a program's playback.
struct ObjectRegistry::BoundNode {
    ObjectRegistry &owner;
    const std::uint32_t id;
    Proxy<pw_node> proxy;
    Hook hook;

    BoundNode(ObjectRegistry &registry, std::uint32_t nodeID, std::uint32_t version,
              bool readsFormats)
        : owner(registry), id(nodeID),
          proxy(bound<pw_node>(owner.registry_.get(), id, PW_TYPE_INTERFACE_Node, version,
                               PW_VERSION_NODE)) {
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
        if (!proxy)
            return;
        pw_node_add_listener(proxy.get(), hook.get(), &events, this);
        if (readsFormats)
            pw_node_enum_params(proxy.get(), 0, SPA_PARAM_EnumFormat, 0, UINT32_MAX, nullptr);
    }

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

    /// Merges one of the formats that a program's stream offers. The stream counts as encoded only
    /// if it offers no plain samples.
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
    const std::uint32_t id;
    Proxy<pw_client> proxy;
    Hook hook;

    BoundClient(ObjectRegistry &registry, std::uint32_t clientID, std::uint32_t version)
        : owner(registry), id(clientID),
          proxy(bound<pw_client>(owner.registry_.get(), id, PW_TYPE_INTERFACE_Client, version,
                                 PW_VERSION_CLIENT)) {
        static const pw_client_events events = [] {
            pw_client_events table{};
            table.version = PW_VERSION_CLIENT_EVENTS;
            table.info = [](void *self, const pw_client_info *info) {
                static_cast<BoundClient *>(self)->infoChanged(info);
            };
            return table;
        }();
        if (proxy)
            pw_client_add_listener(proxy.get(), hook.get(), &events, this);
    }

    void infoChanged(const pw_client_info *info) {
        if ((info->change_mask & PW_CLIENT_CHANGE_MASK_PROPS) == 0)
            return;
        PropertyMap properties;
        merge(properties, info->props);
        owner.objects_.putClient(id, std::move(properties));
        owner.notify([this](ServerObserver &observer) { observer.clientChanged(id); });
    }
};

/// A device and its routes. Reads the routes after every change that the device announces, even of
/// a volume; notifies the observer only if the record differs.
struct ObjectRegistry::BoundDevice : std::enable_shared_from_this<BoundDevice> {
    static constexpr std::array routeParameters{SPA_PARAM_EnumRoute, SPA_PARAM_Route};

    ObjectRegistry &owner;
    const std::uint32_t id;
    DeviceRecord record;
    Proxy<pw_device> proxy;
    Hook hook;
    std::array<std::uint32_t, routeParameters.size()> flags{}; ///< as last announced
    DeviceRecord read; ///< holds the routes received so far by the current reading
    bool isReading = false;
    bool isOutdated = false; ///< the routes have changed during the current reading

    BoundDevice(ObjectRegistry &registry, std::uint32_t deviceID, std::uint32_t version,
                PropertyMap properties)
        : owner(registry), id(deviceID), record{std::move(properties), {}, {}, false},
          proxy(bound<pw_device>(owner.registry_.get(), id, PW_TYPE_INTERFACE_Device, version,
                                 PW_VERSION_DEVICE)) {
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
        if (proxy)
            pw_device_add_listener(proxy.get(), hook.get(), &events, this);
    }

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

    /// Returns whether the parameter has changed and can be read.
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

/// The "settings" metadata table.
struct ObjectRegistry::Settings {
    const std::uint32_t id;
    Proxy<pw_metadata> proxy;
    Hook hook;
    std::map<std::string, std::string, std::less<>> values{}; ///< of subject 0

    Settings(pw_registry *registry, std::uint32_t tableID, std::uint32_t version)
        : id(tableID), proxy(bound<pw_metadata>(registry, id, PW_TYPE_INTERFACE_Metadata, version,
                                                PW_VERSION_METADATA)) {
        static const pw_metadata_events events = [] {
            pw_metadata_events table{};
            table.version = PW_VERSION_METADATA_EVENTS;
            table.property = [](void *self, std::uint32_t subject, const char *key, const char *,
                                const char *value) {
                return static_cast<Settings *>(self)->propertyChanged(subject, key, value);
            };
            return table;
        }();
        if (proxy)
            pw_metadata_add_listener(proxy.get(), hook.get(), &events, this);
    }

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

} // namespace quorbel
