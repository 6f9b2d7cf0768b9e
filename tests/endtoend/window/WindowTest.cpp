#include "endtoend/window/WindowTest.h"

#include "soundserver/Levels.h"

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace quorbel {

std::unique_ptr<WindowTest::Session> WindowTest::session_;

namespace {

/// What a program has to complain about. Qt 6.8 tells on standard error when we ask about an object
/// that has gone since we heard of it, which is our doing.
std::string complaints(const ChildProcess &program) {
    std::istringstream lines(program.errors());
    std::string complaints;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("qt.accessibility.atspi: Could not find accessible on path"))
            complaints += line + '\n';
    }
    return complaints;
}

} // namespace

void WindowTest::TearDown() {
    if (HasFailure() && window_ && program_->running())
        std::cerr << "What the window showed:\n" << window_->tree();
    window_.reset();
    player_.reset();
    speakers_.reset();
    if (program_) {
        program_->stop();
        EXPECT_EQ(complaints(*program_), "");
        program_.reset();
    }
    std::filesystem::remove_all(settingsFile().parent_path());
}

std::unique_ptr<ChildProcess> WindowTest::start(const Environment &more) {
    Environment environment = server().environment();
    environment["DISPLAY"] = display().name();
    environment["LANG"] = "C.UTF-8";
    environment["QT_QPA_PLATFORM"] = "xcb";
    environment["QT_QUICK_BACKEND"] = "software";
    environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
    for (const auto &[variable, value] : more)
        environment[variable] = value;
    const char *installed = std::getenv("QUORBEL_WINDOW_PROGRAM");
    return std::make_unique<ChildProcess>(
        std::vector<std::string>{installed != nullptr ? installed : QUORBEL_PROGRAM}, environment);
}

void WindowTest::open() {
    program_ = start();
    window_.emplace(program_->pid());
    ASSERT_TRUE(soonShows({ATSPI_ROLE_PUSH_BUTTON, "Start"})) << program_->errors();
}

void WindowTest::pick(const std::string &picker, const std::string &entry) const {
    press({ATSPI_ROLE_COMBO_BOX, picker});
    press({ATSPI_ROLE_LIST_ITEM, entry});
    ASSERT_TRUE(soonShows({ATSPI_ROLE_COMBO_BOX, picker, entry}));
}

void WindowTest::setSlider(const std::string &name, double value) const {
    const Accessible slider = window().find({ATSPI_ROLE_SLIDER, name});
    slider.setValue(value);
    EXPECT_TRUE(comesTrue(2.0, [&] { return slider.value() == value; })) << slider.summary();
}

void WindowTest::typeInto(const std::string &field, const std::string &text) const {
    const Accessible it = window().find({ATSPI_ROLE_TEXT, field});
    ASSERT_TRUE(comesTrue(2.0, [&] { return it.is(ATSPI_STATE_FOCUSED); })) << it.summary();
    session_->bus.type(text);
    ASSERT_TRUE(comesTrue(2.0, [&] { return it.text() == text; })) << it.summary();
}

void WindowTest::startProcessing() const {
    pick("Output", "Speakers");
    pressButton("Start", "Start processing");
    ASSERT_TRUE(soonShows({ATSPI_ROLE_LABEL, "LIVE"}));
    ASSERT_TRUE(soonPlaysInto(tapName()));
}

testing::AssertionResult WindowTest::soonShows(const Sought &what) const {
    if (window().soonShows(what))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "the window does not show " << what.name << " (" << what.description << ")";
}

void WindowTest::play(std::unique_ptr<Sound> sound) {
    sound_ = std::move(sound);
    player_ = std::make_unique<Player>(session_->client, *sound_);
    speakers_ = std::make_unique<Recorder>(session_->client, "speakers", 120.0);
    player_->waitUntilRunning();
}

void WindowTest::endPlaying() {
    player_.reset();
    speakers_.reset();
}

testing::AssertionResult WindowTest::soonPlaysInto(const std::string &target) {
    std::vector<std::string> seen;
    if (comesTrue(3.0, [&] {
            seen = server().state().targetsOf("player");
            return seen == std::vector{target};
        }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "it plays into " << testing::PrintToString(seen) << " instead of " << target;
}

std::string WindowTest::tapName() const { return "quorbel.tap." + std::to_string(program_->pid()); }

testing::AssertionResult WindowTest::soonHears(double levelDB, double tolerance) const {
    // 0.2 s whose second half is like the first: neither a fade nor a moment of both sounds.
    constexpr std::size_t half = 4800;
    double level = 0.0;
    const std::size_t start = speakers_->frames();
    if (comesTrue(4.0, [&] {
            const Recording heard = speakers_->last(2.0 * half / sampleRate);
            if (speakers_->frames() - start < 2 * half)
                return false;
            const std::span<const float> samples(heard.left);
            level = soundserver::toneLevelDB(samples.first(half), toneHz, sampleRate);
            const double later = soundserver::toneLevelDB(samples.last(half), toneHz, sampleRate);
            return std::abs(level - levelDB) < tolerance && std::abs(later - levelDB) < tolerance;
        }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the tone has " << level << " dB instead of " << levelDB;
}

std::filesystem::path WindowTest::settingsFile() {
    return std::filesystem::path(server().environment().at("XDG_CONFIG_HOME")) /
           "Quorbel/state.json";
}

nlohmann::json WindowTest::saved() {
    std::ifstream file(settingsFile());
    return file ? nlohmann::json::parse(file, nullptr, false) : nlohmann::json();
}

} // namespace quorbel
