#include "devices/DeviceManager.h"

#include "platform/hardware/simulated/SimulatedHardware.h"
#include "platform/threads/ManualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <vector>

namespace quorbel {
namespace {

using Operation = SimulatedHardware::Operation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DeviceManagerTest : public ::testing::Test {
  protected:
    DeviceManagerTest() {
        hardware.addDevice({.uid = "speakers", .name = "Speakers", .manufacturer = "Acme"});
        hardware.addDevice({.uid = "mic",
                            .name = "Microphone",
                            .manufacturer = {},
                            .inputChannels = {1},
                            .outputChannels = {}});
        hardware.addDevice({.uid = "hdmi", .name = "HDMI", .outputChannels = {2, 4}});
    }

    [[nodiscard]] std::vector<std::string> uids(const DeviceManager &manager) const {
        std::vector<std::string> result;
        for (const AudioDevice &device : manager.outputDevices())
            result.push_back(device.uid);
        return result;
    }

    ManualClock clock;
    SimulatedHardware hardware{clock};
};

TEST_F(DeviceManagerTest, ListsTheDevicesThatPlayAndFallsBackWhereNothingCanBeRead) {
    hardware.addDevice({.uid = "nameless", .name = std::nullopt});
    DeviceManager manager(hardware, clock);
    EXPECT_THAT(uids(manager), ElementsAre("speakers", "hdmi", "nameless"));
    EXPECT_EQ(manager.outputDevice("hdmi")->outputChannels, 6) << "the sum over its buffers";
    EXPECT_EQ(manager.outputDevices().front().manufacturer, "Acme");
    EXPECT_EQ(manager.allDevices()[1].inputChannels, 1);
    EXPECT_EQ(manager.outputDevice("nameless")->name, "Unknown");

    hardware.operations().fail(Operation::deviceUID, -EIO);
    manager.refresh();
    EXPECT_EQ(manager.outputDevices().front().uid, "");
    for (const Operation operation : {Operation::streamChannelCounts, Operation::deviceList}) {
        hardware.operations().fail(operation, -EIO);
        manager.refresh();
        EXPECT_THAT(manager.outputDevices(), IsEmpty());
        hardware.operations().repair(operation);
    }
}

TEST_F(DeviceManagerTest, DefaultOutputIsTheSystemsIfItIsListed) {
    DeviceManager manager(hardware, clock);
    hardware.setDefaultOutput("hdmi");
    EXPECT_EQ(manager.defaultOutput()->uid, "hdmi");
    EXPECT_EQ(manager.currentDefaultOutputUID(), "hdmi");

    // The system knows this device, but the list predates it.
    hardware.addDevice({.uid = "late"});
    hardware.setDefaultOutput("late");
    EXPECT_EQ(manager.defaultOutput()->uid, "speakers");
    EXPECT_EQ(manager.currentDefaultOutputUID(), "late");

    hardware.operations().fail(Operation::defaultOutputDevice, -EIO);
    EXPECT_EQ(manager.defaultOutput()->uid, "speakers");
    EXPECT_EQ(manager.currentDefaultOutputUID(), std::nullopt);

    hardware.operations().fail(Operation::deviceList, -EIO);
    manager.refresh();
    EXPECT_EQ(manager.defaultOutput(), std::nullopt);
}

TEST_F(DeviceManagerTest, ReportsChangesOnTheMainThreadOnly) {
    DeviceManager manager(hardware, clock);
    int changes = 0;
    manager.onHardwareChange = [&] {
        ++changes;
        EXPECT_NE(manager.outputDevice("usb"), std::nullopt) << "the list is fresh";
    };
    hardware.addDevice({.uid = "usb"});
    clock.runPending();
    EXPECT_EQ(changes, 0) << "not observing yet";

    manager.startObservingHardware();
    manager.startObservingHardware();
    EXPECT_TRUE(manager.isObservingHardware());
    hardware.setDefaultOutput("usb");
    EXPECT_EQ(changes, 0) << "only handed over";
    clock.runPending();
    EXPECT_EQ(changes, 1) << "installed once, heard once";

    hardware.setDefaultOutput("hdmi");
    manager.stopObservingHardware();
    EXPECT_FALSE(hardware.isListenedTo());
    clock.runPending();
    EXPECT_EQ(changes, 1) << "what was on its way is dropped";
}

TEST_F(DeviceManagerTest, DropsEventsOfEndedObservations) {
    {
        DeviceManager gone(hardware, clock);
        gone.startObservingHardware();
        hardware.addDevice({.uid = "usb"}); // still pending when the manager is destroyed
    }
    EXPECT_FALSE(hardware.isListenedTo());
    DeviceManager manager(hardware, clock);
    std::vector<Status> lost;
    manager.onHardwareLost = [&](Status status) { lost.push_back(status); };
    manager.startObservingHardware();
    hardware.loseConnection(-EPIPE);
    manager.stopObservingHardware();
    hardware.restoreConnection();
    manager.startObservingHardware();
    clock.runPending();
    EXPECT_THAT(lost, IsEmpty());

    hardware.loseConnection(-EPIPE);
    clock.runPending();
    EXPECT_THAT(lost, ElementsAre(-EPIPE));
    EXPECT_THAT(manager.outputDevices(), IsEmpty());
}

} // namespace
} // namespace quorbel
