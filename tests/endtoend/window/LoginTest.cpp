#include "endtoend/window/WindowTest.h"
#include "soundserver/Levels.h"
#include "support/soundserver/ControlProgram.h"

#include <gmock/gmock.h>
#include <span>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <fstream>
#include <iostream>
#include <iterator>

namespace quorbel {
namespace {

using testing::HasSubstr;

/// Logins to a session whose bus can start the program, as with the package installed.
class LoginTest : public WindowTest {
  protected:
    static constexpr const char *service = "com.quorbel.Ostrafine";

    void TearDown() override {
        WindowTest::TearDown();
        kill();
        std::filesystem::remove(entry());
        std::filesystem::remove(serviceFile());
    }

    /// Lets the bus start the program, through `wrapper`.
    static void install(const std::string &wrapper = "") {
        std::ofstream(serviceFile())
            << "[D-BUS Service]\nName=" << service << "\nExec=" << wrapper << programPath() << '\n';
        bus("ReloadConfig");
        std::string variables;
        for (const auto &[variable, value] : desktopEnvironment())
            variables += (variables.empty() ? "{'" : ", '") + variable + "': '" + value + '\'';
        bus("UpdateActivationEnvironment", variables + '}');
    }

    [[nodiscard]] static std::filesystem::path entry() {
        return settingsFile().parent_path().parent_path() /
               "autostart/com.quorbel.Ostrafine.desktop";
    }
    [[nodiscard]] static std::string entryText() {
        std::ifstream file(entry());
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Runs the entry's command, as a session does at login.
    static void logIn() {
        const std::string text = entryText();
        const std::size_t start = text.find("\nExec=") + 6;
        const auto command =
            server().start({"sh", "-c", text.substr(start, text.find('\n', start) - start)});
        EXPECT_EQ(command->exitStatusWithin(20.0), 0) << command->errors();
    }
    /// Process of the program that the bus has started; 0 for none.
    [[nodiscard]] static pid_t process() {
        const auto call = bus("GetConnectionUnixProcessID", service);
        const std::string answer = call->output(); // (uint32 4711,)
        return answer.empty() ? 0 : std::stoi(answer.substr(answer.find(' ')));
    }
    [[nodiscard]] static testing::AssertionResult soonProcesses() {
        return soonPlaysInto("quorbel.tap." + std::to_string(process()));
    }
    [[nodiscard]] static bool soonEnds() {
        return comesTrue(20.0, [] { return process() == 0; });
    }
    /// Calls a method of the desktop entry; the bus starts the program if needed.
    static void request(const std::string &method, const std::vector<std::string> &arguments) {
        const auto asked = call(service, "org.freedesktop.Application." + method, arguments);
        EXPECT_EQ(asked->exitStatusWithin(0.0), 0) << asked->errors();
    }
    /// Seconds from a frame of the recording until the tone first has that level.
    [[nodiscard]] double secondsUntil(double levelDB, std::size_t frame) const {
        constexpr std::size_t step = 480;
        const double length = static_cast<double>(speakers().frames() - frame) / sampleRate;
        const Recording heard = speakers().last(length);
        const std::span<const float> samples(heard.left);
        for (std::size_t at = 0; at + step <= samples.size(); at += step)
            if (std::abs(toneLevelIn(samples.subspan(at, step)) - levelDB) < 0.5)
                return static_cast<double>(at) / sampleRate;
        return length;
    }
    static void kill() {
        if (const pid_t pid = process(); pid != 0)
            ::kill(pid, SIGKILL);
        EXPECT_TRUE(soonEnds());
    }

  private:
    static double toneLevelIn(std::span<const float> samples) {
        return soundserver::toneLevelDB(samples, toneHz, sampleRate);
    }
    static std::unique_ptr<ChildProcess> bus(const std::string &method,
                                             const std::string &argument = "") {
        return call("org.freedesktop.DBus", "org.freedesktop.DBus." + method,
                    argument.empty() ? std::vector<std::string>() : std::vector{argument});
    }
    /// Calls a method of the object whose path follows from its owner's name.
    static std::unique_ptr<ChildProcess> call(const std::string &owner, const std::string &method,
                                              const std::vector<std::string> &arguments) {
        std::string object = '/' + owner;
        std::ranges::replace(object, '.', '/');
        std::vector<std::string> command = {"gdbus",
                                            "call",
                                            "--session",
                                            "--dest=" + owner,
                                            "--object-path=" + object,
                                            "--method=" + method};
        command.insert(command.end(), arguments.begin(), arguments.end());
        auto process = server().start(command);
        EXPECT_TRUE(process->exitStatusWithin(5.0));
        return process;
    }
    [[nodiscard]] static std::filesystem::path serviceFile() {
        return server().servicesFolder() / "com.quorbel.Ostrafine.service";
    }
};

TEST_F(LoginTest, ContinuesWhatTheLastSessionDid) {
    const Sought login{"check box", "Start at login"};
    const auto soonIs = [&](bool on) {
        return comesTrue(3.0, [&] { return read(login)["checked"] == on; });
    };
    install();
    open();
    playTone();
    goTo("Devices");
    EXPECT_TRUE(soonIs(false));
    press(login);
    ASSERT_TRUE(soonIs(true));
    const auto check = server().start({"desktop-file-validate", entry()});
    EXPECT_EQ(check->exitStatusWithin(5.0), 0) << check->output();
    std::ofstream(entry(), std::ios::app) << "Hidden=true\n"; // as a desktop's settings do
    EXPECT_TRUE(soonIs(false));
    press(login);
    EXPECT_TRUE(soonIs(true));
    EXPECT_THAT(entryText(), HasSubstr("Hidden=false"));

    startProcessing();
    goTo("Equalizer");
    setSlider("Band 7 gain", -9.0);
    ASSERT_TRUE(comesTrue(3.0, [] {
        const nlohmann::json settings = saved();
        return settings.is_object() && settings.at("bands").at(6).at("gainDB") == -9.0;
    }));
    program().signal(SIGKILL);
    ASSERT_TRUE(program().exitStatusWithin(5.0));
    ASSERT_TRUE(soonPlaysInto("speakers"));
    const std::size_t began = speakers().frames();
    logIn();
    EXPECT_TRUE(soonProcesses());
    EXPECT_TRUE(soonHears(toneLevelDB - 9.0));
    std::cout << "from the entry's command to processed sound: "
              << secondsUntil(toneLevelDB - 9.0, began) << " s\n";
    EXPECT_EQ(desktop("shows_window"), false);

    EXPECT_EQ(start()->exitStatusWithin(5.0), 0) << "a second start shows the window";
    desktop("meet", process());
    pressButton("Stop");
    EXPECT_TRUE(soonShows({"label", "STOPPED"}));
    close();
    EXPECT_TRUE(soonEnds());
    logIn();
    EXPECT_TRUE(soonEnds()) << "of no use: there is no tray";
    EXPECT_TRUE(soonPlaysInto("speakers"));
}

TEST_F(LoginTest, StartedByTheBusItProcessesWithoutAWindowUntilItIsStopped) {
    const std::vector<std::string> start{"Start", "[]", "{}"};
    const std::vector<std::string> stop{"Stop", "[]", "{}"};
    open();
    pick("Output", "Speakers");
    close();
    ASSERT_EQ(program().exitStatusWithin(5.0), 0);
    install();
    playTone();

    request("ActivateAction", start);
    EXPECT_TRUE(soonProcesses());
    EXPECT_EQ(desktop("shows_window"), false);
    request("ActivateAction", stop);
    EXPECT_TRUE(soonEnds());
    EXPECT_TRUE(soonPlaysInto("speakers"));

    request("Activate", {"{}"});
    EXPECT_TRUE(comesTrue(5.0, [] { return desktop("shows_window") == true; }));
    request("ActivateAction", stop);
    request("Activate", {"{}"});
    EXPECT_NE(process(), 0) << "the window keeps it";
}

TEST_F(LoginTest, WaitsForTheSoundServerAndLeavesTheProcessingToAnother) {
    // A bus that the program cannot recognise as its parent.
    install("/usr/bin/timeout 600 ");
    std::filesystem::create_directories(settingsFile().parent_path());
    const auto memory = settingsFile().parent_path() / "last-session.json";
    std::ofstream(memory) << R"({"processing":true,"version":1})";
    const auto resume = [] {
        const ControlOutcome outcome = control(server(), {"resume"});
        EXPECT_EQ(outcome.status, 0) << outcome;
    };
    {
        LiveProcess live(server(), LiveSettings::flat());
        live.waitUntilRunning();
        resume();
        EXPECT_TRUE(soonEnds()) << "another one processes";
        EXPECT_TRUE(live.process().running());
    }

    server().crash();
    resume();
    EXPECT_EQ(desktop("shows_window"), false);
    EXPECT_EQ(start()->exitStatusWithin(5.0), 0) << "it answers while it waits";
    EXPECT_TRUE(comesTrue(5.0, [] { return desktop("shows_window") == true; }))
        << "what is missing";
    server().restart();
    connectAgain();
    playTone();
    EXPECT_TRUE(soonProcesses());
    EXPECT_TRUE(soonHears(toneLevelDB));
    desktop("meet", process());
    EXPECT_TRUE(soonShows({"label", "LIVE"})) << "the window was asked for";
    kill();
    resume();
    EXPECT_TRUE(soonProcesses());
    EXPECT_EQ(desktop("shows_window"), false);
}

} // namespace
} // namespace quorbel
