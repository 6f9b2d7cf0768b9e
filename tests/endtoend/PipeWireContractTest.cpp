#include "platform/hardware/AudioHardwareContract.h"
#include "platform/hardware/SystemHardware.h"
#include "soundserver/GraphClient.h"
#include "soundserver/Levels.h"
#include "soundserver/PrivateSoundServer.h"
#include "soundserver/Recorder.h"
#include "soundserver/Waiting.h"
#include "support/soundserver/Player.h"
#include "support/soundserver/SoundCard.h"
#include "support/soundserver/Sounds.h"

#include <cstdlib>

namespace quorbel::testing {
namespace {

class PipeWireWorld final : public HardwareWorld {
  public:
    PipeWireWorld() : client_(server_) {
        for (const auto &[name, value] : server_.environment())
            setenv(name.c_str(), value.c_str(), 1);
        Status status = statusOK;
        hardware_ = makeSystemHardware(status);
        if (!hardware_)
            throw soundserver::ServerError("no connection: " + std::to_string(status));
    }

    AudioHardware &hardware() override { return *hardware_; }
    void playTone() override {
        player_ = std::make_unique<soundserver::Player>(client_, tone_);
        soundserver::waitFor("the tone is heard", 5.0, [&] { return listen("speakers") > 0.2F; });
    }
    float listen(const std::string &uid) override {
        // Discards 0.1 s from earlier cycles, because the recorder's start may change the
        // quantum.
        soundserver::Recorder recorder(client_, uid, 10.0);
        (void)recorder.next(0.1);
        return soundserver::peak(recorder.next(0.25).left);
    }
    void plugIn(const std::string &uid) override { server_.addDevice({uid, uid}); }
    void unplug(const std::string &uid) override { server_.removeDevice(uid); }
    void setDefaultOutput(const std::string &uid) override { server_.setDefaultDevice(uid); }
    void plugInCard(const std::string &uid) override {
        card_ = std::make_unique<soundserver::SoundCard>(
            client_, "card", "alsa",
            std::vector<std::string>{"analog-output-speaker", "analog-output-headphones"});
        cardOutput_ = std::make_unique<soundserver::CardOutput>(client_, *card_, 2, uid);
    }
    void setRoute(const std::string &, const std::string &route) override {
        card_->setRoute(2, route);
        card_->setRoute(1, "hdmi-output-0"); // of an absent device
    }
    void changeVolume(const std::string &) override { card_->changeVolume(); }
    void loseServer() override {
        player_.reset();
        server_.crash();
        isLost_ = true;
    }
    bool waitUntil(const std::function<bool()> &condition) override {
        return soundserver::comesTrue(5.0, condition);
    }
    void letCyclesPass() override {
        if (!isLost_)
            (void)listen("speakers");
    }

  private:
    soundserver::PrivateSoundServer server_;
    soundserver::GraphClient client_;
    soundserver::Tone tone_{1000.0, -12.0, 48000.0};
    std::unique_ptr<soundserver::Player> player_;
    std::unique_ptr<soundserver::SoundCard> card_;
    std::unique_ptr<soundserver::CardOutput> cardOutput_;
    std::unique_ptr<AudioHardware> hardware_;
    bool isLost_ = false;
};

INSTANTIATE_TEST_SUITE_P(PipeWire, AudioHardwareContract,
                         ::testing::Values([]() -> std::unique_ptr<HardwareWorld> {
                             return std::make_unique<PipeWireWorld>();
                         }));

} // namespace
} // namespace quorbel::testing
