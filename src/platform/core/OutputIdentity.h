#pragma once

#include <string>

namespace quorbel {

/// Where the sound of a device comes out, in names that stay the same from day to day and do not
/// depend on the language: a sound card plays on its loudspeakers or on its headphones through one
/// and the same device.
struct OutputIdentity {
    /// What the sound server says of a Bluetooth device: stereo music, or a call with a microphone.
    enum class Bluetooth { none, music, call };

    std::string card{}; ///< the sound card or Bluetooth device; empty where there is none
    std::string node{}; ///< the device's own name
    /// The socket or loudspeaker of the card, such as "analog-output-headphones"; empty where it
    /// has none to choose from.
    std::string route{};
    Bluetooth bluetooth = Bluetooth::none;
    /// Card and route are not known yet, but will be.
    bool isAwaited = false;

    friend bool operator==(const OutputIdentity &, const OutputIdentity &) = default;
};

} // namespace quorbel
