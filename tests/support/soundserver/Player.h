#pragma once

#include "soundserver/ClientStream.h"
#include "support/soundserver/Sounds.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace quorbel::soundserver {

/// An application that plays, in this process, so that what it plays and when is known to the
/// frame.
class Player : public ClientStream {
  public:
    struct Options {
        Options(std::string applicationName = "player", std::string device = "", int rate = 48000)
            : name(std::move(applicationName)), target(std::move(device)), sampleRate(rate) {}

        std::string name;
        std::string target; ///< a device that the application insists on; empty for the default
        int sampleRate;
        int channels = 2;                                ///< those beyond the second are silent
        std::map<std::string, std::string> properties{}; ///< more of the stream
    };

    Player(GraphClient &client, Sound &sound) : Player(client, sound, Options{}) {}
    Player(GraphClient &client, Sound &sound, const Options &options);
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
