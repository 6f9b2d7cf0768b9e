#include "ui/app/ProcessingPermit.h"

#include "ui/model/ModelFixture.h"

#include <optional>

namespace quorbel::testing {
namespace {

/// In a session whose runtime folder is the test's own.
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
