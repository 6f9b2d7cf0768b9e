#pragma once

#include <spa/param/audio/raw.h>
#include <span>

namespace quorbel::soundserver {

/// One channel of a device, by its names in the server's two interfaces.
struct Channel {
    spa_audio_channel position;
    const char *name;      ///< PipeWire's
    const char *pulseName; ///< PulseAudio's
};

/// The usual layout of 1, 2, 4, 6 or 8 channels. Throws `ServerError` for any other count.
std::span<const Channel> channelLayout(int channels);

} // namespace quorbel::soundserver
