#pragma once

#include <string>

namespace quorbel {

/// Identifies the physical output of a device by names that persist across sessions and languages.
/// The route is needed because one device serves a card's loudspeakers and its headphones.
struct OutputIdentity {
    /// Bluetooth mode reported by the sound server: stereo music, or a call with a microphone.
    enum class Bluetooth { none, music, call };

    std::string card{}; ///< the sound card or Bluetooth device; empty if none
    std::string node{}; ///< the device's own name
    /// The card's socket or loudspeaker, such as "analog-output-headphones"; empty without a
    /// choice.
    std::string route{};
    Bluetooth bluetooth = Bluetooth::none;
    /// True while card and route are still to be reported.
    bool isAwaited = false;

    friend bool operator==(const OutputIdentity &, const OutputIdentity &) = default;
};

} // namespace quorbel
