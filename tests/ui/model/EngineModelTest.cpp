// The engine and the live spectrum as QML sees them.

#include "ui/model/ModelFixture.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cerrno>

namespace quorbel::testing {
namespace {

class EngineModelTest : public ModelTest {
  protected:
    [[nodiscard]] EngineModel &model() { return *app->engine(); }
    [[nodiscard]] SpectrumModel &spectrum() { return *app->spectrum(); }
    [[nodiscard]] double loudest() {
        const QList<qreal> levels = spectrum().levels();
        return *std::ranges::max_element(levels);
    }
    /// Advances the clock until the spectrum shows the tone, for ten real seconds at most: the
    /// analyzer gets it on another thread.
    [[nodiscard]] bool waitForTone() {
        QElapsedTimer timer;
        for (timer.start(); loudest() < 0.5 && timer.elapsed() < 10000;)
            clock.advance(0.05);
        return loudest() >= 0.5;
    }
};

TEST_F(EngineModelTest, StartWithoutADeviceShowsTheErrorUntilAStartSucceeds) {
    engine().setOutputDevice(std::nullopt);
    EXPECT_EQ(model().state(), "idle");
    EXPECT_EQ(model().secondLine(), "No output device");
    model().toggle();
    clock.runPending();
    EXPECT_EQ(model().state(), "error");
    EXPECT_EQ(model().stateWord(), "ERROR");
    EXPECT_EQ(model().subtitle(), "No output device selected. Choose your speakers as output.");
    run();
    EXPECT_EQ(model().state(), "running");
    EXPECT_EQ(model().subtitle(), "48 kHz · 32 ms · Flat");
    EXPECT_EQ(model().secondLine(), "Limiter on at -0.3 dBFS");
    model().setComparing(true);
    EXPECT_TRUE(engine().comparing());
    model().toggle();
    EXPECT_EQ(model().state(), "idle");
    EXPECT_FALSE(model().comparing()) << "it ends with the processing";
}

TEST_F(EngineModelTest, ARefusedStartIsAnErrorUntilItsReasonHasGoneOrTheNextStartOrStop) {
    QString reason = "busy";
    model().setStartCheck([&] { return reason; });
    app->devices()->select("speakers");
    model().start();
    clock.advance(5.0);
    EXPECT_EQ(model().state(), "error");
    EXPECT_EQ(model().subtitle(), "busy");
    EXPECT_FALSE(hardware.isCapturing());
    reason.clear();
    clock.advance(1.1);
    EXPECT_EQ(model().state(), "idle");
    EXPECT_EQ(model().outlook(), "");
    reason = "busy";
    model().start();
    model().stop();
    EXPECT_EQ(model().state(), "idle");
    model().start();
    reason.clear();
    model().start();
    clock.runPending();
    EXPECT_TRUE(model().running());
    EXPECT_EQ(model().errorMessage(), "");
}

TEST_F(EngineModelTest, NamesTheAwaitedServerOrDeviceUntilItIsBack) {
    run();
    hardware.loseConnection(-EPIPE);
    clock.advance(0.5);
    EXPECT_EQ(model().state(), "error");
    EXPECT_EQ(model().outlook(), "Waiting for the sound server; processing comes back by itself");
    Announcements outlooks(model(), &EngineModel::outlookChanged);
    hardware.removeDevice("speakers");
    hardware.removeDevice("hdmi");
    hardware.restoreConnection();
    clock.advance(0.5);
    EXPECT_EQ(model().outlook(), "Waiting for an output device; processing comes back by itself");
    EXPECT_GT(outlooks.take(), 0);
    hardware.addDevice({.uid = "speakers", .name = "Speakers"});
    clock.advance(2.0);
    EXPECT_TRUE(model().running());
    EXPECT_EQ(model().outlook(), "");
}

TEST_F(EngineModelTest, TheSpectrumMovesOnlyWhileItIsSeenAndNoMoreOftenThan30TimesASecond) {
    Announcements levels(spectrum(), &SpectrumModel::levelsChanged);
    EXPECT_FALSE(spectrum().active());
    EXPECT_EQ(spectrum().levels().size(), 32);
    run();
    EXPECT_TRUE(spectrum().active());
    EXPECT_TRUE(waitForTone());
    EXPECT_GT(levels.take(), 0);
    clock.advance(1.0);
    EXPECT_LE(levels.take(), 30);

    spectrum().setVisible(false);
    clock.advance(1.0);
    EXPECT_EQ(levels.take(), 0);
    spectrum().setVisible(true);
    app->setting("spectrumEnabled")->setValue(0);
    EXPECT_FALSE(spectrum().active());
    EXPECT_EQ(loudest(), 0.0) << "a frozen display would look like sound";
    app->setting("spectrumEnabled")->setValue(1);
    EXPECT_TRUE(waitForTone());
    model().stop();
    EXPECT_EQ(loudest(), 0.0);
}

} // namespace
} // namespace quorbel::testing
