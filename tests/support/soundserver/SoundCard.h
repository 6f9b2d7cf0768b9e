#pragma once

#include "soundserver/ClientStream.h"

#include <spa/monitor/device.h>
#include <spa/pod/builder.h>

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quorbel::soundserver {

/// A sound card as made by the session manager: a device of the server that has routes, reports
/// their changes and owns output devices.
class SoundCard {
  public:
    /// `api` is "alsa" or "bluez5"; `offered` are the routes that all outputs can play on.
    SoundCard(GraphClient &client, const std::string &name, const std::string &api,
              std::vector<std::string> offered);
    ~SoundCard();
    SoundCard(const SoundCard &) = delete;
    SoundCard &operator=(const SoundCard &) = delete;

    /// The server's number of the card.
    [[nodiscard]] std::uint32_t id() const;

    /// Lets output number `output` play on this route.
    void setRoute(int output, const std::string &route);
    /// Changes the volume of all routes, as the user's volume keys do.
    void changeVolume();

  private:
    struct Methods;

    void announce();
    int addListener(spa_hook *listener, const spa_device_events *events, void *data);
    int enumerate(int sequence, std::uint32_t id, std::uint32_t index, std::uint32_t most,
                  const spa_pod *filter);
    [[nodiscard]] std::vector<std::string> namesOf(std::uint32_t id) const;
    spa_pod *build(spa_pod_builder &builder, std::uint32_t id, std::uint32_t index) const;

    GraphClient &client_;
    const std::string name_;
    const std::string api_;
    const std::vector<std::string> offered_;
    // Under the client's lock.
    std::map<int, std::string> routes_; ///< by output
    float volume_ = 1.0F;
    bool isToggled_ = false; ///< a flag that differs between one state of the routes and the next
    spa_device device_{};
    spa_hook_list listeners_{};
    pw_proxy *proxy_ = nullptr;
};

/// An output device of a card.
class CardOutput : public ClientStream {
  public:
    /// `bluetoothProfile`, such as "a2dp-sink", for those of Bluetooth cards.
    CardOutput(GraphClient &client, const SoundCard &card, int number, const std::string &name,
               const std::string &bluetoothProfile = {});
    ~CardOutput() override { disconnect(); }

    /// Returns the largest sample since the last call.
    [[nodiscard]] float takePeak() { return peak_.exchange(0.0F); }

  private:
    std::uint32_t process(const Cycle &, std::span<float *const> channels,
                          std::uint32_t frames) noexcept override;

    std::atomic<float> peak_{0.0F};
};

/// An output device that reports a latency, as wireless ones do, and whose ports come after its
/// node.
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

    /// The last frame's value on the left channel.
    [[nodiscard]] float lastSample() const { return lastSample_; }

  private:
    std::uint32_t process(const Cycle &, std::span<float *const> channels,
                          std::uint32_t frames) noexcept override {
        if (frames > 0)
            lastSample_ = channels[0][frames - 1];
        return frames;
    }

    std::atomic<float> lastSample_{0.0F};
};

} // namespace quorbel::soundserver
