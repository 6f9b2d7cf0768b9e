#pragma once

#include "support/soundserver/ClientStream.h"
#include "support/soundserver/Sounds.h"

namespace quorbel::soundserver {

/// An application that plays, in this process, so that what it plays and when is known to the
/// frame.
class Player : public ClientStream {
  public:
    struct Options {
        std::string name = "player";
        std::string target; ///< a device that the application insists on; empty for the default
        int sampleRate = 48000;
        bool mayBeMoved = true; ///< false sets node.dont-reconnect
    };

    Player(GraphClient &client, Sound &sound) : Player(client, sound, Options{}) {}
    Player(GraphClient &client, Sound &sound, const Options &options);
    ~Player() override { disconnect(); }

  private:
    std::uint32_t process(const Cycle &cycle, float *left, float *right,
                          std::uint32_t frames) noexcept override {
        sound_.fill(cycle.position, left, right, frames);
        return frames;
    }

    Sound &sound_;
};

} // namespace quorbel::soundserver
