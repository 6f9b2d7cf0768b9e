#include "endtoend/window/WindowTest.h"
#include "soundserver/Levels.h"

#include <cmath>
#include <csignal>

namespace quorbel {
namespace {

/// The saved gain of a band.
std::optional<double> savedGain(const nlohmann::json &settings, std::size_t band) {
    const auto bands = settings.find("bands");
    if (bands == settings.end() || bands->size() <= band)
        return {};
    return (*bands)[band]["gainDB"].get<double>();
}

TEST_F(WindowTest, LeavesAProgramAloneAndProcessesItAgain) {
    open();
    playTone();
    setSlider("Band 7 gain", 6.0);
    startProcessing();
    ASSERT_TRUE(soonHears(toneLevelDB + 6.0));
    goTo("Programs");
    EXPECT_TRUE(soonShows({"label", "Processed"}));
    const Sought processed{"check box", "Process " + programName()};
    // The level of the latest 20 ms.
    const auto levelNow = [&] {
        const Recording heard = speakers().last(0.02);
        return soundserver::toneLevelDB(std::span<const float>(heard.left), toneHz, sampleRate);
    };
    for (const double gainDB : {0.0, 6.0}) {
        press(processed);
        const auto pressed = SteadyClock::now();
        EXPECT_TRUE(
            comesTrue(2.0, [&] { return std::abs(levelNow() - toneLevelDB - gainDB) < 0.3; }));
        EXPECT_LT(SteadyClock::now() - pressed, std::chrono::milliseconds(200));
        EXPECT_TRUE(soonShows({"label", gainDB == 0.0 ? "Left alone: your choice" : "Processed"}));
        EXPECT_TRUE(soonHears(toneLevelDB + gainDB));
    }
}

TEST_F(WindowTest, FromTheFirstStartToTheLastEdit) {
    ASSERT_FALSE(exists(settingsFile()));
    open();
    EXPECT_TRUE(soonShows({"label", "STOPPED"}));
    EXPECT_TRUE(soonShows({"list item", "Mine", "0"}));
    EXPECT_TRUE(soonShows({"list item", "Factory", "33"}));

    playTone();
    ASSERT_TRUE(soonPlaysInto("speakers"));
    EXPECT_TRUE(soonShows({"combo box", "Output", "Speakers"})) << "the default";
    pressButton("Start");
    EXPECT_TRUE(soonShows({"label", "LIVE"})) << "at the first try";
    EXPECT_TRUE(soonHears(toneLevelDB)) << "ten flat bands";

    setSlider("Band 7 gain", 6.0);
    EXPECT_TRUE(soonShows({"combo box", "Preset", "Custom"}));
    EXPECT_TRUE(soonHears(toneLevelDB + 6.0));

    goTo("Factory");
    pressButton("Apply", "MR5 Studio / Mixing");
    EXPECT_TRUE(soonShows({"combo box", "Preset", "MR5 Studio / Mixing"}));
    EXPECT_TRUE(soonHears(toneLevelDB - 3.0, 0.3)) << "-3 dB at 2 kHz, and a little of -1 at 4 kHz";

    goTo("Equalizer");
    setSlider("Band 7 gain", -6.0);
    EXPECT_TRUE(soonHears(toneLevelDB - 6.0, 0.3));
    goTo("Mine");
    EXPECT_TRUE(soonShows({"label", "No presets here yet"}));
    pressButton("Save current…");
    typeInto("Name", "Evening");
    pressButton("Save");
    EXPECT_TRUE(soonShows({"combo box", "Preset", "Evening"}));
    EXPECT_TRUE(soonShows({"list item", "Mine", "1"}));
    EXPECT_EQ(saved()["presets"].size(), 34U) << "written at once";
    pressButton("Delete preset", "Evening");
    EXPECT_TRUE(soonShows({"list item", "Mine", "0"}));
    EXPECT_TRUE(soonShows({"label", "No presets here yet"}));
    EXPECT_EQ(saved()["presets"].size(), 33U);
    EXPECT_TRUE(soonHears(toneLevelDB - 6.0, 0.3)) << "the sound stays";

    goTo("Devices");
    const Sought spectrum = {"check box", "Spectrum analyzer (visual only)"};
    ASSERT_EQ(read(spectrum)["checked"], true);
    press(spectrum);
    EXPECT_TRUE(comesTrue(2.0, [&] { return read(spectrum)["checked"] == false; }));
    EXPECT_TRUE(comesTrue(2.0, [&] { return saved()["mixer"]["spectrumEnabled"] == false; }));
    EXPECT_TRUE(soonHears(toneLevelDB - 6.0, 0.3));

    pressButton("Stop", "Stop processing");
    EXPECT_TRUE(soonShows({"label", "STOPPED"}));
    EXPECT_TRUE(soonPlaysInto("speakers"));
    EXPECT_TRUE(soonHears(toneLevelDB)) << "normal sound";

    goTo("Equalizer");
    setSlider("Band 2 gain", 4.5);
    const auto edited = SteadyClock::now();
    close();
    EXPECT_LT(SteadyClock::now() - edited, std::chrono::milliseconds(300));
    EXPECT_EQ(program().exitStatusWithin(5.0), 0);
    EXPECT_EQ(savedGain(saved(), 1), 4.5);
}

TEST_F(WindowTest, ASecondStartShowsTheFirst) {
    open();
    desktop("cover");
    ASSERT_TRUE(comesTrue(2.0, [&] { return desktop("is_in_front") == false; }));
    EXPECT_EQ(start()->exitStatusWithin(5.0), 0);
    EXPECT_TRUE(comesTrue(2.0, [&] { return desktop("is_in_front") == true; }));

    desktop("minimise");
    ASSERT_TRUE(comesTrue(2.0, [&] { return desktop("is_in_front") == false; }));
    // As a file manager does that the bus has started.
    EXPECT_EQ(start({{"DBUS_STARTER_BUS_TYPE", "session"}})->exitStatusWithin(5.0), 0);
    EXPECT_TRUE(comesTrue(2.0, [&] { return desktop("is_in_front") == true; }));
    EXPECT_TRUE(program().running());
}

TEST_F(WindowTest, AnEndBySignalSavesAndGivesTheSoundBack) {
    open();
    playTone();
    startProcessing();
    setSlider("Band 7 gain", -9.0);
    program().signal(SIGTERM);
    EXPECT_EQ(program().exitStatusWithin(5.0), 0);
    EXPECT_EQ(savedGain(saved(), 6), -9.0);
    EXPECT_TRUE(soonPlaysInto("speakers"));
    EXPECT_TRUE(soonHears(toneLevelDB));
}

TEST_F(WindowTest, ClosedItContinuesAndANotificationSaysSo) {
    desktop("notify", true);
    const auto closeAndBeTold = [&] {
        close();
        ASSERT_TRUE(comesTrue(5.0, [&] { return desktop("notification")["id"] != 0; }));
        ASSERT_TRUE(comesTrue(5.0, [&] { return desktop("shows_window") == false; }));
        EXPECT_EQ(desktop("notification")["summary"], "Ostrafine still processes the sound");
    };
    open();
    playTone();
    startProcessing();
    setSlider("Band 7 gain", -9.0);
    closeAndBeTold();
    EXPECT_TRUE(soonHears(toneLevelDB - 9.0));
    EXPECT_EQ(
        desktop("notification")["actions"],
        (std::vector<std::string>{"default", "Show Ostrafine", "stop", "Stop", "quit", "Quit"}));

    EXPECT_EQ(start()->exitStatusWithin(5.0), 0);
    EXPECT_TRUE(comesTrue(5.0, [&] { return desktop("shows_window") == true; }));
    EXPECT_TRUE(comesTrue(5.0, [&] { return desktop("notification")["id"] == 0; })) << "taken away";
    closeAndBeTold();
    desktop("choose", "default");
    EXPECT_TRUE(comesTrue(5.0, [&] { return desktop("shows_window") == true; }));
    closeAndBeTold();
    desktop("choose", "stop");
    EXPECT_EQ(program().exitStatusWithin(5.0), 0) << "nothing is left to do";
    EXPECT_TRUE(soonHears(toneLevelDB));
    EXPECT_EQ(desktop("notification")["id"], 0);

    open();
    EXPECT_TRUE(soonShows({"label", "STOPPED"})) << "nothing starts by itself";
    EXPECT_TRUE(soonShows({"combo box", "Output", "Speakers"}));
    EXPECT_EQ(read({"slider", "Band 7 gain"})["value"], -9.0);
    pressButton("Start");
    ASSERT_TRUE(soonHears(toneLevelDB - 9.0));
    closeAndBeTold();
    desktop("choose", "quit");
    EXPECT_EQ(program().exitStatusWithin(5.0), 0);
    desktop("notify", false);
}

TEST_F(WindowTest, AsksWhenClosedOnADesktopThatCannotShowIt) {
    open();
    playTone();
    startProcessing();
    setSlider("Band 7 gain", -9.0);
    close();
    pressButton("Cancel");
    EXPECT_EQ(desktop("hides", "button", "Stop and quit", ""), true);
    EXPECT_TRUE(soonHears(toneLevelDB - 9.0));
    EXPECT_EQ(desktop("shows_window"), true);
    close();
    pressButton("Stop and quit");
    EXPECT_EQ(program().exitStatusWithin(5.0), 0);
    EXPECT_TRUE(soonHears(toneLevelDB));
}

} // namespace
} // namespace quorbel
