#include "platform/hardware/routing/OutputIdentities.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace quorbel {
namespace {

std::optional<int> wholeNumber(const std::string &text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNumber = error == std::errc() && !text.empty() && end == text.data() + text.size();
    return isNumber ? std::optional(number) : std::nullopt;
}

/// Judges by the node's Bluetooth profile. Profiles with a microphone are named after the headset,
/// except the stereo ones ("a2dp-duplex", "bap-duplex"), which count as music.
OutputIdentity::Bluetooth bluetoothKind(const NodeRecord &node, const DeviceRecord &card) {
    using enum OutputIdentity::Bluetooth;
    const auto isBluetooth = [](const std::string &api) { return api == "bluez5"; };
    if (!isBluetooth(node.property("device.api")) &&
        !isBluetooth(propertyValue(card.properties, "device.api")))
        return none;
    constexpr std::array callProfiles{"headset", "hsp", "hfp"};
    const std::string &profile = node.property("api.bluez5.profile");
    return std::any_of(callProfiles.begin(), callProfiles.end(),
                       [&](const char *call) { return profile.starts_with(call); })
               ? call
               : music;
}

} // namespace

OutputIdentity identityOf(const NodeRecord &node, const DeviceRecord *card) {
    OutputIdentity identity;
    identity.node = node.name();
    if (card == nullptr)
        return identity;
    identity.card = propertyValue(card->properties, "device.name");
    identity.bluetooth = bluetoothKind(node, *card);
    identity.isAwaited = !card->isComplete;
    const auto number = wholeNumber(node.property("card.profile.device"));
    if (!number || identity.bluetooth != OutputIdentity::Bluetooth::none)
        return identity;
    if (const auto route = card->outputRoutes.find(*number); route != card->outputRoutes.end())
        identity.route = route->second;
    else if (card->nodesWithRoutes.contains(*number))
        identity.isAwaited = true;
    return identity;
}

} // namespace quorbel
