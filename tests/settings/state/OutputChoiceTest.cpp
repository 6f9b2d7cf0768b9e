#include "settings/state/AppStateFixture.h"

namespace quorbel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Output choice across sessions that start and end as those of the window do.
class OutputChoiceTest : public AppStateTest {
  protected:
    void session() {
        launch();
        state->engine().useDefaultOutput();
    }
    void quit() {
        state->persist();
        state.reset();
    }
    void choose(const std::string &uid) {
        state->engine().setOutputDevice(state->deviceManager().outputDevice(uid));
    }
    [[nodiscard]] std::string inUse() {
        const auto &device = state->engine().outputDevice();
        return device ? device->uid : "none";
    }
    [[nodiscard]] std::string chosen() { return state->engine().outputChoice().value_or("none"); }
};

TEST_F(OutputChoiceTest, SurvivesSessionsInWhichItsDeviceIsAway) {
    session();
    EXPECT_EQ(inUse(), "speakers") << "the default, before any choice";
    quit();
    hardware.setDefaultOutput("hdmi");
    session();
    EXPECT_EQ(inUse(), "hdmi") << "what was never chosen does not stay";
    hardware.addDevice({.uid = "usb"});
    state->deviceManager().refresh();
    choose("usb");
    quit();
    EXPECT_THAT(otherFiles(), IsEmpty()) << "the device in use says it";

    hardware.removeDevice("usb");
    for (const std::string stand : {"hdmi", "speakers", "hdmi"}) {
        hardware.setDefaultOutput(stand);
        session();
        EXPECT_EQ(inUse(), stand);
        EXPECT_EQ(chosen(), "usb");
        quit();
        EXPECT_EQ(saved().outputDeviceUID, stand);
    }
    launch(); // selects no stand-in
    quit();
    hardware.addDevice({.uid = "usb"});
    session();
    EXPECT_EQ(inUse(), "usb");
    quit();
    EXPECT_EQ(saved().outputDeviceUID, "usb");
    EXPECT_THAT(otherFiles(), IsEmpty());
}

TEST_F(OutputChoiceTest, YieldsToTheStandInOnceThatIsChosenAndToWhatOthersWrote) {
    session();
    choose("hdmi");
    quit();
    hardware.removeDevice("hdmi");
    session();
    quit();
    EXPECT_THAT(otherFiles(), ElementsAre("output-choice.json"));
    hardware.addDevice({.uid = "usb"});
    Persisted theirs = saved();
    theirs.outputDeviceUID = "usb";
    write(file, encodeRecord(theirs));
    session();
    EXPECT_EQ(chosen(), "usb");

    choose("speakers");
    quit();
    hardware.addDevice({.uid = "hdmi"});
    session();
    EXPECT_EQ(inUse(), "speakers");
    EXPECT_EQ(chosen(), "speakers");
    quit();
    EXPECT_THAT(otherFiles(), IsEmpty());

    write(folder / "output-choice.json", "{\"outputDeviceUID\": 1");
    session();
    EXPECT_EQ(chosen(), "speakers") << "without a file that can be read, the device in use";
}

} // namespace
} // namespace quorbel::testing
