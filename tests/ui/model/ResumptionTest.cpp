#include "ui/app/Resumption.h"

#include "ui/app/SessionMemory.h"
#include "ui/model/ModelFixture.h"

#include <gmock/gmock.h>

namespace quorbel::testing {
namespace {

using ::testing::HasSubstr;

class ResumptionTest : public ModelTest {
  protected:
    [[nodiscard]] std::string settings() const { return folder.path() / "state.json"; }
    /// True if a login would resume processing now.
    [[nodiscard]] bool isToContinue() const { return SessionMemory(settings()).isToContinue(); }
    [[nodiscard]] Resumption resume() {
        return {engine(), *app->engine(), clock, [this] { ++ends; }};
    }

    int ends = 0;
};

TEST_F(ResumptionTest, TheWishOutlivesAnyEndButStop) {
    EXPECT_FALSE(isToContinue());
    {
        SessionMemory memory(settings());
        memory.follow(*app->engine());
        run();
        EXPECT_TRUE(isToContinue()) << "after a crash";
        hardware.removeDevice("hdmi");
        hardware.removeDevice("speakers");
        clock.advance(0.5);
        ASSERT_TRUE(app->engine()->comingBack());
        EXPECT_TRUE(isToContinue());
        hardware.addDevice({.uid = "speakers"});
        clock.advance(3.0);
        app->engine()->stop();
        EXPECT_FALSE(isToContinue());
        run();
        memory.close();
        app->engine()->stop(); // as at the end of the program
        EXPECT_TRUE(isToContinue());
    }
    SessionMemory memory(settings());
    memory.follow(*app->engine());
    memory.noteIdle();
    EXPECT_FALSE(isToContinue()) << "ended without processing";
    EXPECT_TRUE(memory.isToContinue()) << "for a login after the window was restored";
    memory.noteStop();
    EXPECT_FALSE(memory.isToContinue());
}

TEST_F(ResumptionTest, ADamagedNoteIsSetAsideWithAWarning) {
    write(folder.path() / "last-session.json", R"({"version":1,"processing":"yes"})");
    const SessionMemory memory(settings());
    EXPECT_FALSE(memory.isToContinue());
    EXPECT_THAT(memory.warning().toStdString(),
                HasSubstr("were set aside as last-session.corrupt-"));
}

TEST_F(ResumptionTest, StartsOnceTheChosenDeviceIsThereOrIsMissed) {
    app->devices()->select("speakers");
    clock.advance(1.0);
    app.reset();
    state.reset();
    hardware.removeDevice("speakers");
    hardware.removeDevice("hdmi");
    state = std::make_unique<AppState>(hardware, clock, settings());
    app = std::make_unique<AppModel>(*state, clock);
    const Resumption resumption = resume();
    clock.advance(5.0);
    EXPECT_TRUE(resumption.isUnderWay());
    EXPECT_TRUE(app->engine()->errorMessage().isEmpty());
    hardware.addDevice({.uid = "hdmi"});
    clock.advance(1.0);
    EXPECT_FALSE(app->engine()->running()) << "not on another at once";
    clock.advance(2.0);
    EXPECT_TRUE(app->engine()->running());
    EXPECT_EQ(ends, 1);
}

TEST_F(ResumptionTest, TriesAgainButNotForEverNorAgainstAnotherProgram) {
    hardware.operations().fail(SimulatedHardware::Operation::createProcessTap, -1);
    {
        const Resumption resumption = resume();
        clock.advance(29.0);
        EXPECT_EQ(ends, 0);
        clock.advance(2.0);
        EXPECT_EQ(ends, 1);
        EXPECT_FALSE(app->engine()->errorMessage().isEmpty());
    }
    const Resumption again = resume();
    hardware.operations().repair(SimulatedHardware::Operation::createProcessTap);
    clock.advance(1.0);
    EXPECT_TRUE(app->engine()->running());
    EXPECT_EQ(ends, 2);

    app->engine()->stop();
    app->engine()->setStartCheck([] { return QString("another"); });
    const Resumption refused = resume();
    clock.advance(0.1);
    EXPECT_FALSE(refused.isUnderWay());
    EXPECT_EQ(ends, 3);
}

} // namespace
} // namespace quorbel::testing
