#include "endtoend/window/NotificationDesktop.h"
#include "endtoend/window/WindowTest.h"

#include <csignal>

namespace quorbel {
namespace {

/// The gain of a band in what is saved.
std::optional<double> savedGain(const nlohmann::json &settings, std::size_t band) {
    const auto bands = settings.find("bands");
    if (bands == settings.end() || bands->size() <= band)
        return {};
    return (*bands)[band]["gainDB"].get<double>();
}

TEST_F(WindowTest, FromTheFirstStartToTheLastEdit) {
    ASSERT_FALSE(exists(settingsFile()));
    open();
    EXPECT_TRUE(soonShows({ATSPI_ROLE_LABEL, "STOPPED"}));
    EXPECT_TRUE(soonShows({ATSPI_ROLE_LIST_ITEM, "Mine", "0"}));
    EXPECT_TRUE(soonShows({ATSPI_ROLE_LIST_ITEM, "Factory", "33"}));

    playTone();
    ASSERT_TRUE(soonPlaysInto("speakers"));
    EXPECT_TRUE(soonShows({ATSPI_ROLE_COMBO_BOX, "Output", "Speakers"})) << "the default";
    pressButton("Start");
    EXPECT_TRUE(soonShows({ATSPI_ROLE_LABEL, "LIVE"})) << "at the first try";
    EXPECT_TRUE(soonHears(toneLevelDB)) << "ten flat bands";

    setSlider("Band 7 gain", 6.0);
    EXPECT_TRUE(soonShows({ATSPI_ROLE_COMBO_BOX, "Preset", "Custom"}));
    EXPECT_TRUE(soonHears(toneLevelDB + 6.0));

    goTo("Factory");
    pressButton("Apply", "MR5 Studio / Mixing");
    EXPECT_TRUE(soonShows({ATSPI_ROLE_COMBO_BOX, "Preset", "MR5 Studio / Mixing"}));
    EXPECT_TRUE(soonHears(toneLevelDB - 3.0, 0.3)) << "-3 dB at 2 kHz, and a little of -1 at 4 kHz";

    goTo("Equalizer");
    setSlider("Band 7 gain", -6.0);
    EXPECT_TRUE(soonHears(toneLevelDB - 6.0, 0.3));
    goTo("Mine");
    EXPECT_TRUE(soonShows({ATSPI_ROLE_LABEL, "No presets here yet"}));
    pressButton("Save current…");
    typeInto("Name", "Evening");
    pressButton("Save");
    EXPECT_TRUE(soonShows({ATSPI_ROLE_COMBO_BOX, "Preset", "Evening"}));
    EXPECT_TRUE(soonShows({ATSPI_ROLE_LIST_ITEM, "Mine", "1"}));
    EXPECT_EQ(saved()["presets"].size(), 34U) << "written at once";
    pressButton("Delete preset", "Evening");
    EXPECT_TRUE(soonShows({ATSPI_ROLE_LIST_ITEM, "Mine", "0"}));
    EXPECT_TRUE(soonShows({ATSPI_ROLE_LABEL, "No presets here yet"}));
    EXPECT_EQ(saved()["presets"].size(), 33U);
    EXPECT_TRUE(soonHears(toneLevelDB - 6.0, 0.3)) << "the sound stays";

    goTo("Devices");
    const Sought spectrum = {ATSPI_ROLE_CHECK_BOX, "Spectrum analyzer (visual only)"};
    ASSERT_TRUE(window().find(spectrum).is(ATSPI_STATE_CHECKED));
    press(spectrum);
    EXPECT_TRUE(comesTrue(2.0, [&] { return !window().find(spectrum).is(ATSPI_STATE_CHECKED); }));
    EXPECT_TRUE(comesTrue(2.0, [&] { return saved()["mixer"]["spectrumEnabled"] == false; }));
    EXPECT_TRUE(soonHears(toneLevelDB - 6.0, 0.3));

    pressButton("Stop", "Stop processing");
    EXPECT_TRUE(soonShows({ATSPI_ROLE_LABEL, "STOPPED"}));
    EXPECT_TRUE(soonPlaysInto("speakers"));
    EXPECT_TRUE(soonHears(toneLevelDB)) << "normal sound";

    goTo("Equalizer");
    const auto cross = frame();
    setSlider("Band 2 gain", 4.5);
    const auto edited = SteadyClock::now();
    display().close(cross);
    EXPECT_LT(SteadyClock::now() - edited, std::chrono::milliseconds(300));
    EXPECT_EQ(program().exitStatusWithin(5.0), 0);
    EXPECT_EQ(savedGain(saved(), 1), 4.5);
}

TEST_F(WindowTest, ASecondStartShowsTheFirst) {
    open();
    const auto ours = frame();
    display().coverEverything();
    ASSERT_TRUE(comesTrue(2.0, [&] { return !display().isInFront(ours); }));
    EXPECT_EQ(start()->exitStatusWithin(5.0), 0);
    EXPECT_TRUE(comesTrue(2.0, [&] { return display().isInFront(ours); }));

    display().minimise(ours);
    ASSERT_TRUE(comesTrue(2.0, [&] { return !display().isInFront(ours); }));
    EXPECT_EQ(start()->exitStatusWithin(5.0), 0);
    EXPECT_TRUE(comesTrue(2.0, [&] { return display().isInFront(ours); }));
    EXPECT_TRUE(program().running());
}

TEST_F(WindowTest, StartedByTheBusItProcessesWithoutAWindowUntilItIsStopped) {
    const auto request = [](std::vector<std::string> what) {
        std::vector<std::string> call = {"gdbus",         "call",
                                         "--session",     "--dest=com.quorbel.Ostrafine",
                                         "--object-path", "/com/quorbel/Ostrafine",
                                         "--method"};
        what.front().insert(0, "org.freedesktop.Application.");
        call.insert(call.end(), what.begin(), what.end());
        return server().start(call)->exitStatusWithin(5.0) == 0;
    };
    const auto startByBus = [] { return start({{"DBUS_STARTER_BUS_TYPE", "session"}}); };
    open();
    pick("Output", "Speakers");
    display().close(frame());
    ASSERT_EQ(program().exitStatusWithin(5.0), 0);
    playTone();

    const auto first = startByBus();
    ASSERT_TRUE(comesTrue(5.0, [&] { return request({"ActivateAction", "Start", "[]", "{}"}); }));
    EXPECT_TRUE(soonPlaysInto("quorbel.tap." + std::to_string(first->pid())));
    EXPECT_FALSE(display().shows("Ostrafine"));
    EXPECT_TRUE(request({"ActivateAction", "Stop", "[]", "{}"}));
    EXPECT_EQ(first->exitStatusWithin(5.0), 0) << first->errors();
    EXPECT_TRUE(soonPlaysInto("speakers"));

    const auto second = startByBus();
    ASSERT_TRUE(comesTrue(5.0, [&] { return request({"Activate", "{}"}); }));
    EXPECT_TRUE(comesTrue(5.0, [&] { return display().shows("Ostrafine"); }));
    EXPECT_TRUE(request({"ActivateAction", "Stop", "[]", "{}"}));
    EXPECT_TRUE(request({"Activate", "{}"})) << "the window keeps it";
    EXPECT_EQ(first->errors() + second->errors(), "");
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
    NotificationDesktop desktop(server().environment().at("DBUS_SESSION_BUS_ADDRESS"));
    const auto closeAndBeTold = [&] {
        display().close(frame());
        ASSERT_TRUE(comesTrue(5.0, [&] { return desktop.shown().id != 0; }));
        ASSERT_TRUE(comesTrue(5.0, [&] { return !display().shows("Ostrafine"); }));
        EXPECT_EQ(desktop.shown().summary, "Ostrafine still processes the sound");
    };
    open();
    playTone();
    startProcessing();
    setSlider("Band 7 gain", -9.0);
    closeAndBeTold();
    EXPECT_TRUE(soonHears(toneLevelDB - 9.0));
    EXPECT_EQ(desktop.shown().actions, (std::vector<std::string>{"default", "Show Ostrafine",
                                                                 "stop", "Stop", "quit", "Quit"}));

    EXPECT_EQ(start()->exitStatusWithin(5.0), 0);
    EXPECT_TRUE(comesTrue(5.0, [&] { return display().shows("Ostrafine"); }));
    EXPECT_TRUE(comesTrue(5.0, [&] { return desktop.shown().id == 0; })) << "taken away";
    closeAndBeTold();
    desktop.press("default");
    EXPECT_TRUE(comesTrue(5.0, [&] { return display().shows("Ostrafine"); }));
    closeAndBeTold();
    desktop.press("stop");
    EXPECT_EQ(program().exitStatusWithin(5.0), 0) << "nothing is left to do";
    EXPECT_TRUE(soonHears(toneLevelDB));
    EXPECT_EQ(desktop.shown().id, 0U);

    open();
    EXPECT_TRUE(soonShows({ATSPI_ROLE_LABEL, "STOPPED"})) << "nothing starts by itself";
    EXPECT_TRUE(soonShows({ATSPI_ROLE_COMBO_BOX, "Output", "Speakers"}));
    EXPECT_EQ(window().find({ATSPI_ROLE_SLIDER, "Band 7 gain"}).value(), -9.0);
    pressButton("Start");
    ASSERT_TRUE(soonHears(toneLevelDB - 9.0));
    closeAndBeTold();
    desktop.press("quit");
    EXPECT_EQ(program().exitStatusWithin(5.0), 0);
}

TEST_F(WindowTest, ClosedWhereNothingWouldShowItItAsks) {
    open();
    playTone();
    startProcessing();
    setSlider("Band 7 gain", -9.0);
    display().close(frame());
    pressButton("Cancel");
    EXPECT_TRUE(window().soonHides({ATSPI_ROLE_PUSH_BUTTON, "Stop and quit"}));
    EXPECT_TRUE(soonHears(toneLevelDB - 9.0));
    EXPECT_TRUE(display().shows("Ostrafine"));
    display().close(frame());
    pressButton("Stop and quit");
    EXPECT_EQ(program().exitStatusWithin(5.0), 0);
    EXPECT_TRUE(soonHears(toneLevelDB));
}

TEST_F(WindowTest, KilledItGivesTheSoundBack) {
    open();
    playTone();
    startProcessing();
    program().signal(SIGKILL);
    EXPECT_EQ(program().exitStatusWithin(5.0), 128 + SIGKILL);
    EXPECT_TRUE(soonPlaysInto("speakers"));
    EXPECT_TRUE(soonHears(toneLevelDB));
}

} // namespace
} // namespace quorbel
