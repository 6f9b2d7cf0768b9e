#include "platform/hardware/pipewire/DeviceHold.h"

#include "platform/hardware/pipewire/DuplexStreams.h"

#include <fmt/format.h>
#include <spa/param/audio/format-utils.h>
#include <spa/param/param.h>
#include <spa/pod/builder.h>

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace quorbel {
namespace {

/// Gives a converter its only port in that direction, with one channel.
void addPort(pw_node *converter, spa_direction direction) {
    spa_audio_info_raw info{};
    info.format = SPA_AUDIO_FORMAT_F32P;
    info.rate = 48000; // ignored: ports run at the graph's rate
    info.channels = 1;
    info.position[0] = SPA_AUDIO_CHANNEL_MONO;
    std::array<std::uint8_t, 1024> storage{};
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(storage.data(), storage.size());
    spa_pod_frame frame{};
    spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_ParamPortConfig,
                                SPA_PARAM_PortConfig);
    spa_pod_builder_add(&builder, SPA_PARAM_PORT_CONFIG_direction, SPA_POD_Id(direction),
                        SPA_PARAM_PORT_CONFIG_mode, SPA_POD_Id(SPA_PARAM_PORT_CONFIG_MODE_dsp), 0);
    spa_pod_builder_prop(&builder, SPA_PARAM_PORT_CONFIG_format, 0);
    spa_format_audio_raw_build(&builder, SPA_PARAM_PortConfig, &info);
    const auto *config = static_cast<const spa_pod *>(spa_pod_builder_pop(&builder, &frame));
    pw_node_set_param(converter, SPA_PARAM_PortConfig, 0, config);
}

} // namespace

DeviceHold::DeviceHold(ServerConnection &connection, ObjectRegistry &registry)
    : connection_(connection), registry_(registry) {}

DeviceHold::~DeviceHold() { setHeld(false); }

void DeviceHold::setHeld(bool isHeld) {
    isHeld_ = isHeld;
    if (!isHeld && link_ != 0)
        registry_.destroyLink(std::exchange(link_, 0));
    follow();
}

void DeviceHold::follow() {
    if (!isHeld_)
        return;
    if (areConvertersGone()) {
        if (link_ != 0)
            registry_.destroyLink(std::exchange(link_, 0));
        haveBeenSeen_ = false;
        converters_ = {makeConverter("quorbel.hold-a"), makeConverter("quorbel.hold-b")};
    }
    if (link_ != 0)
        return;
    LinkRequest request;
    for (const bool isInput : {false, true}) {
        auto *const converter = reinterpret_cast<pw_proxy *>(converters_[isInput ? 1 : 0].get());
        const std::uint32_t node =
            converter != nullptr ? pw_proxy_get_bound_id(converter) : SPA_ID_INVALID;
        const auto ports = registry_.objects().ports(node, isInput);
        if (ports.empty())
            return; // the server has not answered yet
        (isInput ? request.inputNodeID : request.outputNodeID) = node;
        (isInput ? request.inputPortID : request.outputPortID) = ports.front().id;
    }
    haveBeenSeen_ = true;
    link_ = registry_.createLink(request);
}

Proxy<pw_node> DeviceHold::makeConverter(const char *name) const {
    pw_properties *properties = pw_properties_new(
        PW_KEY_FACTORY_NAME, "audio.convert", PW_KEY_NODE_DESCRIPTION, "Ostrafine",
        PW_KEY_OBJECT_LINGER, "false", PW_KEY_NODE_GROUP, schedulingGroup().c_str(),
        PW_KEY_NODE_LINK_GROUP, schedulingGroup().c_str(), nullptr);
    pw_properties_setf(properties, PW_KEY_NODE_NAME, "%s.%d", name, getpid());
    Proxy<pw_node> converter(static_cast<pw_node *>(
        pw_core_create_object(connection_.core(), "spa-node-factory", PW_TYPE_INTERFACE_Node,
                              PW_VERSION_NODE, &properties->dict, 0)));
    pw_properties_free(properties);
    if (!converter)
        return nullptr;
    addPort(converter.get(), SPA_DIRECTION_INPUT);
    addPort(converter.get(), SPA_DIRECTION_OUTPUT);
    return converter;
}

/// Returns true before they are made too, and after any client has had the server remove one.
bool DeviceHold::areConvertersGone() {
    return std::ranges::any_of(converters_, [&](const Proxy<pw_node> &converter) {
        if (!converter)
            return true;
        const std::uint32_t id =
            pw_proxy_get_bound_id(reinterpret_cast<pw_proxy *>(converter.get()));
        return haveBeenSeen_ && registry_.objects().node(id) == nullptr;
    });
}

} // namespace quorbel
