#include "ui/app/ProcessingPermit.h"

#include "ui/model/ModelFixture.h"

#include <optional>

namespace quorbel::testing {
namespace {

/// A session with a runtime folder of its own.
class ProcessingPermitTest : public ModelTest {
  protected:
    ProcessingPermitTest() : before_(qgetenv("XDG_RUNTIME_DIR")) {
        qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(folder.path().string()));
    }
    ~ProcessingPermitTest() override { qputenv("XDG_RUNTIME_DIR", before_); }

    [[nodiscard]] static bool isFree() { return InstanceLock().isHeld(); }

  private:
    QByteArray before_;
};

TEST_F(ProcessingPermitTest, OneProgramProcessesAtATime) {
    const ProcessingPermit permit(*app->engine());
    std::optional<InstanceLock> another(std::in_place);
    app->devices()->select("speakers");
    app->engine()->start();
    clock.runPending();
    EXPECT_FALSE(app->engine()->running());
    EXPECT_EQ(app->engine()->errorMessage(),
              "Another Ostrafine is running and processes the sound. Stop that one first.");
    EXPECT_FALSE(hardware.isCapturing());

    another.reset();
    run();
    EXPECT_FALSE(isFree());
    app->engine()->stop();
    EXPECT_TRUE(isFree());
}

TEST_F(ProcessingPermitTest, StartsThatFailAlikeOrAreStoppedLeaveThePermitFree) {
    const ProcessingPermit permit(*app->engine());
    hardware.operations().fail(SimulatedHardware::Operation::createProcessTap, -1);
    for (int start = 0; start < 3; ++start) {
        app->engine()->start();
        clock.runPending();
        EXPECT_EQ(app->engine()->state(), "error");
        EXPECT_TRUE(isFree()) << start;
    }
    app->engine()->stop();
    app->engine()->start();
    app->engine()->stop(); // in the middle of the start
    clock.runPending();
    EXPECT_TRUE(isFree());

    // An error whose cause has gone ends before the next start, not within it.
    hardware.operations().repair(SimulatedHardware::Operation::createProcessTap);
    hardware.removeDevice("speakers");
    hardware.removeDevice("hdmi");
    app->devices()->refresh();
    app->engine()->start();
    clock.runPending();
    hardware.addDevice({.uid = "speakers"});
    app->engine()->start();
    clock.runPending();
    EXPECT_TRUE(app->engine()->running());
    EXPECT_FALSE(isFree());
}

TEST_F(ProcessingPermitTest, WaitingToComeBackKeepsTheOthersOut) {
    const ProcessingPermit permit(*app->engine());
    run();
    hardware.removeDevice("hdmi");
    hardware.removeDevice("speakers");
    clock.advance(0.5);
    ASSERT_TRUE(app->engine()->comingBack());
    EXPECT_FALSE(isFree());
    hardware.addDevice({.uid = "speakers"});
    clock.advance(3.0);
    EXPECT_TRUE(app->engine()->running());
    EXPECT_FALSE(isFree());
}

} // namespace
} // namespace quorbel::testing
