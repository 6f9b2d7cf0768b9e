#pragma once

#include "soundserver/ClientStream.h"

namespace quorbel::soundserver {

/// An output device that says it is heard late, as wireless ones do.
class LateDevice : public ClientStream {
  public:
    LateDevice(GraphClient &client, const std::string &name, int latencyFrames)
        : ClientStream(client, name) {
        connect(PW_DIRECTION_INPUT,
                pw_properties_new(PW_KEY_MEDIA_CLASS, "Audio/Sink", PW_KEY_NODE_DESCRIPTION,
                                  name.c_str(), nullptr),
                48000);
        announceLatency(latencyFrames);
    }
    ~LateDevice() override { disconnect(); }

  private:
    std::uint32_t process(const Cycle &, float *, float *, std::uint32_t frames) noexcept override {
        return frames;
    }
};

} // namespace quorbel::soundserver
