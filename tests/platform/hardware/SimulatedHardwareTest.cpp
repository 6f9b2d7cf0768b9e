#include "platform/hardware/simulated/SimulatedHardware.h"

#include "platform/hardware/AudioHardwareContract.h"
#include "platform/threads/ManualClock.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <numbers>

namespace quorbel::testing {
namespace {

class SimulatedWorld final : public HardwareWorld {
  public:
    SimulatedWorld() {
        hardware_.addDevice({.uid = "speakers", .name = "Speakers", .blockFrames = {512, 100, 1}});
        hardware_.addDevice({.uid = "hdmi", .name = "HDMI"});
    }

    AudioHardware &hardware() override { return hardware_; }
    void playTone() override {
        hardware_.play([](double seconds, std::uint32_t) {
            return static_cast<float>(0.25 * std::sin(2.0 * std::numbers::pi * 1000.0 * seconds));
        });
    }
    float listen(const std::string &uid) override {
        (void)hardware_.takeRecording(uid);
        letCyclesPass();
        float peak = 0.0F;
        for (const float sample : hardware_.takeRecording(uid).left)
            peak = std::max(peak, std::abs(sample));
        return peak;
    }
    void plugIn(const std::string &uid) override { hardware_.addDevice({.uid = uid}); }
    void unplug(const std::string &uid) override { hardware_.removeDevice(uid); }
    void setDefaultOutput(const std::string &uid) override { hardware_.setDefaultOutput(uid); }
    void plugInCard(const std::string &uid) override {
        hardware_.addDevice({.uid = uid, .identity = {.card = "card", .isAwaited = true}});
    }
    void setRoute(const std::string &uid, const std::string &route) override {
        hardware_.setIdentity(uid, {.card = "card", .route = route});
    }
    void changeVolume(const std::string &) override {} // its devices have no volume
    void loseServer() override { hardware_.loseConnection(-EPIPE); }
    bool waitUntil(const std::function<bool()> &condition) override {
        for (int step = 0; step < 1000 && !condition(); ++step)
            clock_.advance(0.01);
        return condition();
    }
    void letCyclesPass() override { clock_.advance(0.2); }

  private:
    ManualClock clock_;
    SimulatedHardware hardware_{clock_};
};

INSTANTIATE_TEST_SUITE_P(Simulated, AudioHardwareContract,
                         ::testing::Values([]() -> std::unique_ptr<HardwareWorld> {
                             return std::make_unique<SimulatedWorld>();
                         }));

} // namespace
} // namespace quorbel::testing
