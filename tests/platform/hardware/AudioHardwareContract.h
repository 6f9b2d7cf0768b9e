#pragma once

#include "platform/hardware/HardwareWorld.h"

#include <gtest/gtest.h>

namespace quorbel::testing {

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
