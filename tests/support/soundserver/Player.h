#pragma once

#include "soundserver/ClientStream.h"
#include "support/soundserver/Sounds.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace quorbel::soundserver {

/// An application that plays in this process: the time of every frame is known.
class Player : public ClientStream {
  public:
    struct Options {
        Options(std::string applicationName = "player", std::string device = "")
            : name(std::move(applicationName)), target(std::move(device)) {}

        std::string name;
        std::string target; ///< a device that the application insists on; empty for the default
        int channels = 2;   ///< those beyond the second are silent
        std::map<std::string, std::string> properties{}; ///< more properties of the stream
    };

    Player(GraphClient &client, Sound &sound) : Player(client, sound, Options{}) {}
    Player(GraphClient &client, Sound &sound, const Options &options)
        : ClientStream(client, options.name), sound_(sound) {
        pw_properties *properties = pw_properties_new(PW_KEY_MEDIA_CATEGORY, "Playback", nullptr);
        if (!options.target.empty())
            pw_properties_set(properties, PW_KEY_TARGET_OBJECT, options.target.c_str());
        for (const auto &[key, value] : options.properties)
            pw_properties_set(properties, key.c_str(), value.c_str());
        connect(PW_DIRECTION_OUTPUT, properties, 48000, options.channels);
    }
    ~Player() override { disconnect(); }

  private:
    std::uint32_t process(const Cycle &cycle, std::span<float *const> channels,
                          std::uint32_t frames) noexcept override {
        sound_.fill(cycle.position, channels[0], channels[1], frames);
        for (float *silent : channels.subspan(2))
            std::fill_n(silent, frames, 0.0F);
        return frames;
    }

    Sound &sound_;
};

} // namespace quorbel::soundserver
