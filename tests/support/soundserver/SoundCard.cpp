#include "support/soundserver/SoundCard.h"

#include "soundserver/Waiting.h"

#include <spa/monitor/utils.h>
#include <spa/param/route.h>
#include <spa/pod/filter.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>

namespace quorbel::soundserver {

struct SoundCard::Methods {
    static SoundCard &of(void *object) { return *static_cast<SoundCard *>(object); }

    static constexpr spa_device_methods table{
        .version = SPA_VERSION_DEVICE_METHODS,
        .add_listener = [](void *object, spa_hook *listener, const spa_device_events *events,
                           void *data) { return of(object).addListener(listener, events, data); },
        .sync =
            [](void *object, int sequence) {
                spa_device_emit_result(&of(object).listeners_, sequence, 0, 0, nullptr);
                return 0;
            },
        .enum_params =
            [](void *object, int sequence, std::uint32_t id, std::uint32_t index,
               std::uint32_t most, const spa_pod *filter) {
                return of(object).enumerate(sequence, id, index, most, filter);
            },
        .set_param = [](void *, std::uint32_t, std::uint32_t, const spa_pod *) { return -ENOTSUP; },
    };
};

SoundCard::SoundCard(GraphClient &client, const std::string &name, const std::string &api,
                     std::vector<std::string> offered)
    : client_(client), name_(name), api_(api), offered_(std::move(offered)) {
    const GraphClient::Guard guard(client_);
    device_.iface =
        SPA_INTERFACE_INIT(SPA_TYPE_INTERFACE_Device, SPA_VERSION_DEVICE, &Methods::table, this);
    spa_hook_list_init(&listeners_);
    const std::array items{SPA_DICT_ITEM_INIT("device.name", name_.c_str()),
                           SPA_DICT_ITEM_INIT("device.api", api_.c_str())};
    const spa_dict properties = SPA_DICT_INIT(items.data(), items.size());
    proxy_ = static_cast<pw_proxy *>(
        pw_core_export(client_.playingCore(), SPA_TYPE_INTERFACE_Device, &properties, &device_, 0));
    if (proxy_ == nullptr)
        throw ServerError("no device " + name_);
}

SoundCard::~SoundCard() {
    const GraphClient::Guard guard(client_);
    pw_proxy_destroy(proxy_);
}

std::uint32_t SoundCard::id() const {
    std::uint32_t id = SPA_ID_INVALID;
    waitFor("the card " + name_, 5.0, [&] {
        const GraphClient::Guard guard(client_);
        id = pw_proxy_get_bound_id(proxy_);
        return id != SPA_ID_INVALID;
    });
    return id;
}

void SoundCard::setRoute(int output, const std::string &route) {
    const GraphClient::Guard guard(client_);
    routes_[output] = route;
    announce();
}

void SoundCard::changeVolume() {
    const GraphClient::Guard guard(client_);
    volume_ = volume_ > 0.5F ? 0.25F : 0.75F;
    announce();
}

void SoundCard::announce() {
    isToggled_ = !isToggled_;
    const std::uint32_t flags =
        SPA_PARAM_INFO_READ | (isToggled_ ? SPA_PARAM_INFO_SERIAL : std::uint32_t{0});
    std::array parameters{SPA_PARAM_INFO(SPA_PARAM_EnumRoute, SPA_PARAM_INFO_READ),
                          SPA_PARAM_INFO(SPA_PARAM_Route, flags)};
    spa_device_info info = SPA_DEVICE_INFO_INIT();
    info.change_mask = SPA_DEVICE_CHANGE_MASK_PARAMS;
    info.params = parameters.data();
    info.n_params = parameters.size();
    spa_device_emit_info(&listeners_, &info);
}

int SoundCard::addListener(spa_hook *listener, const spa_device_events *events, void *data) {
    spa_hook_list all{};
    spa_hook_list_isolate(&listeners_, &all, listener, events, data);
    const std::array items{SPA_DICT_ITEM_INIT("device.name", name_.c_str()),
                           SPA_DICT_ITEM_INIT("device.api", api_.c_str())};
    const spa_dict properties = SPA_DICT_INIT(items.data(), items.size());
    spa_device_info info = SPA_DEVICE_INFO_INIT();
    info.change_mask = SPA_DEVICE_CHANGE_MASK_PROPS;
    info.props = &properties;
    spa_device_emit_info(&listeners_, &info);
    announce();
    spa_hook_list_join(&listeners_, &all);
    return 0;
}

std::vector<std::string> SoundCard::namesOf(std::uint32_t id) const {
    if (id == SPA_PARAM_EnumRoute)
        return offered_;
    std::vector<std::string> names;
    if (id == SPA_PARAM_Route)
        std::ranges::transform(routes_, std::back_inserter(names),
                               [](const auto &route) { return route.second; });
    return names;
}

int SoundCard::enumerate(int sequence, std::uint32_t id, std::uint32_t index, std::uint32_t most,
                         const spa_pod *) {
    const std::size_t count = namesOf(id).size();
    for (std::uint32_t sent = 0; index < count && sent < most; ++index, ++sent) {
        std::array<std::uint8_t, 4096> storage{};
        spa_pod_builder builder = SPA_POD_BUILDER_INIT(storage.data(), storage.size());
        spa_result_device_params result{};
        result.id = id;
        result.index = index;
        result.next = index + 1;
        result.param = build(builder, id, index);
        spa_device_emit_result(&listeners_, sequence, 0, SPA_RESULT_TYPE_DEVICE_PARAMS, &result);
    }
    return 0;
}

spa_pod *SoundCard::build(spa_pod_builder &builder, std::uint32_t id, std::uint32_t index) const {
    const std::string name = namesOf(id)[index];
    const std::array<std::int32_t, 4> outputs{0, 1, 2, 3};
    spa_pod_frame frame{};
    spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_ParamRoute, id);
    spa_pod_builder_add(&builder, SPA_PARAM_ROUTE_index, SPA_POD_Int(static_cast<int>(index)),
                        SPA_PARAM_ROUTE_direction, SPA_POD_Id(SPA_DIRECTION_OUTPUT),
                        SPA_PARAM_ROUTE_name, SPA_POD_String(name.c_str()),
                        SPA_PARAM_ROUTE_description, SPA_POD_String("In some language"), 0);
    if (id == SPA_PARAM_Route) {
        const int output = std::next(routes_.begin(), index)->first;
        spa_pod_builder_add(&builder, SPA_PARAM_ROUTE_device, SPA_POD_Int(output), 0);
        spa_pod_frame properties{};
        spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_props, 0);
        spa_pod_builder_push_object(&builder, &properties, SPA_TYPE_OBJECT_Props, id);
        spa_pod_builder_add(&builder, SPA_PROP_volume, SPA_POD_Float(static_cast<double>(volume_)),
                            0);
        spa_pod_builder_pop(&builder, &properties);
    } else {
        spa_pod_builder_add(
            &builder, SPA_PARAM_ROUTE_devices,
            SPA_POD_Array(sizeof(std::int32_t), SPA_TYPE_Int, outputs.size(), outputs.data()), 0);
    }
    return static_cast<spa_pod *>(spa_pod_builder_pop(&builder, &frame));
}

CardOutput::CardOutput(GraphClient &client, const SoundCard &card, int number,
                       const std::string &name, const std::string &bluetoothProfile)
    : ClientStream(client, name) {
    pw_properties *properties = pw_properties_new(PW_KEY_MEDIA_CLASS, "Audio/Sink",
                                                  PW_KEY_NODE_DESCRIPTION, name.c_str(), nullptr);
    pw_properties_setf(properties, PW_KEY_DEVICE_ID, "%u", card.id());
    pw_properties_setf(properties, "card.profile.device", "%d", number);
    if (!bluetoothProfile.empty()) {
        pw_properties_set(properties, "device.api", "bluez5");
        pw_properties_set(properties, "api.bluez5.profile", bluetoothProfile.c_str());
    }
    connect(PW_DIRECTION_INPUT, properties, 48000);
}

std::uint32_t CardOutput::process(const Cycle &, std::span<float *const> channels,
                                  std::uint32_t frames) noexcept {
    float peak = 0.0F;
    for (std::uint32_t frame = 0; frame < frames; ++frame)
        peak = std::max(peak, std::abs(channels[0][frame]));
    if (peak > peak_)
        peak_ = peak;
    return frames;
}

} // namespace quorbel::soundserver
