#pragma once

#include "platform/hardware/AudioHardware.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace quorbel::testing {

/// A machine with sound on which a hardware backend is tried: two output devices, "speakers" (the
/// default) and "hdmi", and whatever applications the test starts.
class HardwareWorld {
  public:
    virtual ~HardwareWorld() = default;

    [[nodiscard]] virtual AudioHardware &hardware() = 0;

    /// An application that plays a 1 kHz tone of amplitude 0.25 on both channels, on the default
    /// output, until the world ends.
    virtual void playTone() = 0;

    /// Listens to a device for a moment (at least ten of its cycles) and returns the largest
    /// sample.
    [[nodiscard]] virtual float listen(const std::string &uid) = 0;

    virtual void plugIn(const std::string &uid) = 0;
    virtual void unplug(const std::string &uid) = 0;
    virtual void setDefaultOutput(const std::string &uid) = 0;

    /// A card "card" with one device, which can play on several routes but does not say yet on
    /// which it does.
    virtual void plugInCard(const std::string &uid) = 0;
    virtual void setRoute(const std::string &uid, const std::string &route) = 0;
    /// Of the card's device, with the volume keys.
    virtual void changeVolume(const std::string &uid) = 0;

    /// The end of the sound server.
    virtual void loseServer() = 0;

    /// Lets time pass until `condition` holds, or a deadline that is generous for this machine.
    /// Returns whether it holds.
    [[nodiscard]] virtual bool waitUntil(const std::function<bool()> &condition) = 0;

    /// Lets time pass in which cycles would come if there were any.
    virtual void letCyclesPass() = 0;
};

using MakeHardwareWorld = std::unique_ptr<HardwareWorld> (*)();

/// The promises of every backend of AudioHardware. A test program of a backend links the cases and
/// instantiates them with its world:
///
///     INSTANTIATE_TEST_SUITE_P(Simulated, AudioHardwareContract, ::testing::Values(&makeWorld));
class AudioHardwareContract : public ::testing::TestWithParam<MakeHardwareWorld> {
  protected:
    AudioHardwareContract() : world_(GetParam()()), hardware(world_->hardware()) {}

    [[nodiscard]] HardwareWorld &world() { return *world_; }

    /// The id of a device, 0 if it is not listed.
    [[nodiscard]] AudioObjectID device(const std::string &uid);

  private:
    std::unique_ptr<HardwareWorld> world_;

  protected:
    AudioHardware &hardware;
};

} // namespace quorbel::testing
