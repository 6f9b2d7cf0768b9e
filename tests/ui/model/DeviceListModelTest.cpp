#include "ui/model/ModelFixture.h"

#include <cerrno>

namespace quorbel::testing {
namespace {

class DeviceListModelTest : public ModelTest {
  protected:
    [[nodiscard]] DeviceListModel &devices() { return *app->devices(); }
};

TEST_F(DeviceListModelTest, ListsAndSelects) {
    EXPECT_EQ(says(devices(), 1, "name").toString(), "HDMI");
    EXPECT_TRUE(says(devices(), 0, "isDefault").toBool());
    EXPECT_EQ(devices().currentName(), "Speakers") << "the default, before any choice";
    hardware.setDefaultOutput("hdmi");
    clock.advance(2.5);
    EXPECT_EQ(devices().currentName(), "HDMI");
    EXPECT_TRUE(says(devices(), 1, "isDefault").toBool());

    devices().select("speakers");
    devices().select("nothing");
    EXPECT_EQ(devices().currentIndex(), 0);
    EXPECT_TRUE(says(devices(), 0, "isCurrent").toBool());
    EXPECT_FALSE(says(devices(), 1, "isCurrent").toBool());

    run(); // also starts listening to the hardware
    Announcements contents(devices(), &DeviceListModel::dataChanged);
    hardware.setDefaultOutput("speakers");
    clock.advance(0.5);
    EXPECT_TRUE(says(devices(), 0, "isDefault").toBool());
    EXPECT_GT(contents.take(), 0);
}

TEST_F(DeviceListModelTest, FollowsDevicesEvenWhileStopped) {
    hardware.addDevice({.uid = "usb", .name = "Headset"});
    clock.advance(2.5);
    EXPECT_EQ(devices().count(), 3);
    hardware.loseConnection(-EPIPE);
    clock.advance(2.5);
    EXPECT_EQ(devices().count(), 0);
    hardware.restoreConnection();
    clock.advance(2.5);
    EXPECT_EQ(devices().count(), 3) << "and a server that came back";
}

} // namespace
} // namespace quorbel::testing
