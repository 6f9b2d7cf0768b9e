#pragma once

#include "platform/hardware/AudioHardware.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace quorbel {

/// An audio device as it stood when the devices were listed.
struct AudioDevice {
    AudioObjectID id = 0; ///< valid as long as the device is there; then free for another
    std::string uid;      ///< stays the same when the device goes and comes back
    std::string name;
    std::string manufacturer;
    int inputChannels = 0;
    int outputChannels = 0;
    std::uint64_t serial = 0; ///< another one when the device comes back, also under the same id

    friend bool operator==(const AudioDevice &, const AudioDevice &) = default;
};

} // namespace quorbel

template <> struct std::hash<quorbel::AudioDevice> {
    std::size_t operator()(const quorbel::AudioDevice &device) const noexcept {
        return std::hash<std::string>()(device.uid) ^
               std::hash<quorbel::AudioObjectID>()(device.id);
    }
};
