#pragma once

#include "platform/hardware/AudioHardware.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace quorbel::testing {

/// Machine to test a hardware backend on, with two output devices, "speakers" (the default) and
/// "hdmi", and the applications that the test starts.
class HardwareWorld {
  public:
    virtual ~HardwareWorld() = default;

    [[nodiscard]] virtual AudioHardware &hardware() = 0;

    /// Starts an application that plays a 1 kHz tone of amplitude 0.25 on both channels of the
    /// default output until the world ends.
    virtual void playTone() = 0;

    /// Returns the largest sample of a device in at least ten of its cycles.
    [[nodiscard]] virtual float listen(const std::string &uid) = 0;

    virtual void plugIn(const std::string &uid) = 0;
    virtual void unplug(const std::string &uid) = 0;
    virtual void setDefaultOutput(const std::string &uid) = 0;

    /// Plugs in a card "card" with one device. The device has several routes; its current route is
    /// still unknown.
    virtual void plugInCard(const std::string &uid) = 0;
    virtual void setRoute(const std::string &uid, const std::string &route) = 0;
    /// Changes the volume of the card's device, as the volume keys do.
    virtual void changeVolume(const std::string &uid) = 0;

    /// Ends the sound server.
    virtual void loseServer() = 0;

    /// Lets time pass until `condition` holds or a generous deadline expires. Returns true if it
    /// holds.
    [[nodiscard]] virtual bool waitUntil(const std::function<bool()> &condition) = 0;

    /// Lets the time of several cycles pass.
    virtual void letCyclesPass() = 0;
};

using MakeHardwareWorld = std::unique_ptr<HardwareWorld> (*)();

/// Requirements on every backend of AudioHardware. The test program of a backend links these cases
/// and instantiates them with its world:
///
///     INSTANTIATE_TEST_SUITE_P(Simulated, AudioHardwareContract, ::testing::Values(&makeWorld));
class AudioHardwareContract : public ::testing::TestWithParam<MakeHardwareWorld> {
  protected:
    AudioHardwareContract() : world_(GetParam()()), hardware(world_->hardware()) {}

    [[nodiscard]] HardwareWorld &world() { return *world_; }

    /// Returns the id of a device, 0 if it is not listed.
    [[nodiscard]] AudioObjectID device(const std::string &uid);

  private:
    std::unique_ptr<HardwareWorld> world_;

  protected:
    AudioHardware &hardware;
};

} // namespace quorbel::testing
