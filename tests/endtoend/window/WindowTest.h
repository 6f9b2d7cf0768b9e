#pragma once

#include "soundserver/GraphClient.h"
#include "soundserver/PrivateSoundServer.h"
#include "soundserver/Recorder.h"
#include "soundserver/Waiting.h"
#include "support/soundserver/Player.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace quorbel {

using namespace soundserver;

/// The desktop around the window, played by desktop.py: display, assistive technology and
/// notifications.
class Desktop {
  public:
    /// Throws `ServerError`.
    explicit Desktop(const PrivateSoundServer &session);
    ~Desktop();
    Desktop(const Desktop &) = delete;
    Desktop &operator=(const Desktop &) = delete;

    /// For the variable DISPLAY.
    [[nodiscard]] const std::string &display() const { return display_; }
    /// Carries out a command and returns its answer. Throws `ServerError` on failure.
    nlohmann::json ask(const nlohmann::json &command);

  private:
    [[nodiscard]] nlohmann::json answer(const std::string &what);

    std::unique_ptr<ChildProcess> process_;
    std::size_t read_ = 0; ///< characters of its output
    int pipe_ = -1;
    std::string display_;
};

/// An object of the window. An empty name or description matches any.
struct Sought {
    std::string role; ///< as assistive technology names it: "button", "list item", ...
    std::string name;
    std::string description{};
};

/// A user who operates the program by assistive technology alone, on a machine with a display and
/// two devices, `speakers` (the default) and `hdmi`. Every test begins without a settings file.
class WindowTest : public testing::Test {
  protected:
    static constexpr double sampleRate = 48000.0;
    static constexpr double toneHz = 2000.0;
    static constexpr double toneLevelDB = -20.0;

    static void SetUpTestSuite() { session_ = std::make_unique<Session>(); }
    static void TearDownTestSuite() { session_.reset(); }
    void TearDown() override;

    static PrivateSoundServer &server() { return session_->server; }
    /// Runs a command of desktop.py. Throws `ServerError` on failure.
    template <typename... Arguments> static nlohmann::json desktop(const Arguments &...arguments) {
        return session_->desktop.ask(nlohmann::json::array({nlohmann::json(arguments)...}));
    }

    /// Starts the program as the desktop's menu does, with `more` variables in its environment.
    [[nodiscard]] static std::unique_ptr<ChildProcess> start(const Environment &more = {});

    /// Path of the program.
    [[nodiscard]] static std::string programPath();
    /// Environment of this desktop's programs.
    [[nodiscard]] static Environment desktopEnvironment();
    /// Call this after a restart of the sound server, before playing.
    static void connectAgain() {
        session_->client = std::make_unique<GraphClient>(session_->server);
    }

    /// Starts the program; returns when its window can be operated.
    void open();
    [[nodiscard]] ChildProcess &program() { return *program_; }
    static void close() { desktop("close"); }

    // Input
    static void press(const Sought &what) {
        desktop("press", what.role, what.name, what.description);
    }
    static void pressButton(const std::string &name, const std::string &description = "") {
        press({"button", name, description});
    }
    static void goTo(const std::string &destination) { press({"list item", destination}); }
    /// Opens a combo box of the toolbar and chooses an entry.
    static void pick(const std::string &picker, const std::string &entry);
    static void setSlider(const std::string &name, double value);
    /// Types into a focused field whose content is selected.
    static void typeInto(const std::string &field, const std::string &text);
    /// Picks the speakers and presses Start; returns when the tone is captured.
    void startProcessing() const;

    // Output
    [[nodiscard]] static testing::AssertionResult soonShows(const Sought &what);
    /// {role, name, description, value, text, checked, focused, selected}
    [[nodiscard]] static nlohmann::json read(const Sought &what) {
        return desktop("read", what.role, what.name, what.description);
    }
    /// Makes an application play and records the speakers.
    void play(std::unique_ptr<Sound> sound);
    void playTone() { play(std::make_unique<Tone>(toneHz, toneLevelDB, sampleRate)); }
    /// Ends playing and recording.
    void endPlaying();
    [[nodiscard]] const Recorder &speakers() const { return *speakers_; }
    /// Waits until the server links the application to `target`.
    [[nodiscard]] static testing::AssertionResult soonPlaysInto(const std::string &target);
    [[nodiscard]] std::string tapName() const;
    /// Name of the player's program.
    [[nodiscard]] static std::string programName();
    /// Waits until the tone on the speakers settles at this level.
    [[nodiscard]] testing::AssertionResult soonHears(double levelDB, double tolerance = 0.1) const;

    // The saved settings.
    [[nodiscard]] static std::filesystem::path settingsFile();
    [[nodiscard]] static nlohmann::json saved();

  private:
    struct Session {
        PrivateSoundServer server;
        Desktop desktop{server};
        std::unique_ptr<GraphClient> client = std::make_unique<GraphClient>(server);
    };
    static std::unique_ptr<Session> session_;

    std::unique_ptr<ChildProcess> program_;
    std::unique_ptr<Sound> sound_;
    std::unique_ptr<Player> player_;
    std::unique_ptr<Recorder> speakers_;
};

} // namespace quorbel
