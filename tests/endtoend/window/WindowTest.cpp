#include "endtoend/window/WindowTest.h"

#include "soundserver/Levels.h"

#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace quorbel {

Desktop::Desktop(const PrivateSoundServer &session) {
    const auto pipe = session.folder() / "desktop";
    if (mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR) != 0)
        throw ServerError("no pipe to the desktop");
    pipe_ = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC); // does not wait for a reader
    const char *installed = std::getenv("QUORBEL_DESKTOP");
    process_ = session.start({installed != nullptr ? installed : QUORBEL_DESKTOP, pipe});
    display_ = answer("the display");
}

Desktop::~Desktop() {
    process_->stop();
    ::close(pipe_);
}

nlohmann::json Desktop::ask(const nlohmann::json &command) {
    const std::string line = command.dump() + '\n';
    if (::write(pipe_, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        throw ServerError("the desktop takes no commands");
    auto result = answer(line);
    if (result.is_object() && result.contains("error"))
        throw ServerError(result["error"]);
    return result;
}

nlohmann::json Desktop::answer(const std::string &what) {
    std::string output;
    waitFor("the desktop's answer to " + what, 30.0, [&] {
        if (!process_->running())
            throw ServerError("the desktop ended: " + process_->errors());
        output = process_->output().substr(read_);
        return output.ends_with('\n');
    });
    read_ += output.size();
    return nlohmann::json::parse(output);
}

std::unique_ptr<WindowTest::Session> WindowTest::session_;

namespace {

/// The program's messages on standard error, except those of Qt 6.8 about requests of ours for
/// objects that have gone meanwhile.
std::string complaints(const ChildProcess &program) {
    std::istringstream lines(program.errors());
    std::string complaints;
    for (std::string line; std::getline(lines, line);)
        if (!line.starts_with("qt.accessibility.atspi: Could not find accessible on path"))
            complaints += line + '\n';
    return complaints;
}

} // namespace

void WindowTest::TearDown() {
    if (HasFailure() && program_ && program_->running())
        std::cerr << "What the window showed:\n" << desktop("tree").get<std::string>() << '\n';
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
    environment.merge(desktopEnvironment());
    for (const auto &[variable, value] : more)
        environment[variable] = value;
    return std::make_unique<ChildProcess>(std::vector<std::string>{programPath()}, environment);
}

std::string WindowTest::programPath() {
    const char *installed = std::getenv("QUORBEL_WINDOW_PROGRAM");
    return installed != nullptr ? installed : QUORBEL_PROGRAM;
}

Environment WindowTest::desktopEnvironment() {
    return {{"DISPLAY", session_->desktop.display()},
            {"LANG", "C.UTF-8"},
            {"QT_QPA_PLATFORM", "xcb"},
            {"QT_QUICK_BACKEND", "software"},
            {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"}};
}

void WindowTest::open() {
    program_ = start();
    desktop("meet", program_->pid());
    ASSERT_TRUE(soonShows({"button", "Start"})) << program_->errors();
}

void WindowTest::pick(const std::string &picker, const std::string &entry) {
    press({"combo box", picker});
    press({"list item", entry});
    ASSERT_TRUE(soonShows({"combo box", picker, entry}));
}

void WindowTest::setSlider(const std::string &name, double value) {
    const Sought slider{"slider", name};
    desktop("set", value, slider.role, slider.name, "");
    EXPECT_TRUE(comesTrue(2.0, [&] { return read(slider)["value"] == value; })) << read(slider);
}

void WindowTest::typeInto(const std::string &field, const std::string &text) {
    const Sought it{"text", field};
    ASSERT_TRUE(comesTrue(2.0, [&] { return read(it)["focused"] == true; })) << read(it);
    desktop("type", text);
    ASSERT_TRUE(comesTrue(2.0, [&] { return read(it)["text"] == text; })) << read(it);
}

void WindowTest::startProcessing() const {
    pick("Output", "Speakers");
    pressButton("Start", "Start processing");
    ASSERT_TRUE(soonShows({"label", "LIVE"}));
    ASSERT_TRUE(soonPlaysInto(tapName()));
}

testing::AssertionResult WindowTest::soonShows(const Sought &what) {
    try {
        (void)read(what);
        return testing::AssertionSuccess();
    } catch (const ServerError &error) {
        return testing::AssertionFailure() << "the window does not show it: " << error.what();
    }
}

void WindowTest::play(std::unique_ptr<Sound> sound) {
    sound_ = std::move(sound);
    player_ = std::make_unique<Player>(*session_->client, *sound_);
    speakers_ = std::make_unique<Recorder>(*session_->client, "speakers", 120.0);
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

std::string WindowTest::programName() {
    const ServerState state = server().state();
    const Node *node = state.node("player");
    return node == nullptr ? "" : node->property("application.name");
}

testing::AssertionResult WindowTest::soonHears(double levelDB, double tolerance) const {
    // Requires 0.1 s twice at the same level, which excludes fades.
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
    return server().settingsFolder() / "state.json";
}

nlohmann::json WindowTest::saved() {
    std::ifstream file(settingsFile());
    return file ? nlohmann::json::parse(file, nullptr, false) : nlohmann::json();
}

} // namespace quorbel
