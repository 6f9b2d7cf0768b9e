#pragma once

#include "endtoend/window/AccessibilityBus.h"
#include "endtoend/window/Accessible.h"
#include "endtoend/window/VirtualDisplay.h"
#include "soundserver/GraphClient.h"
#include "soundserver/PrivateSoundServer.h"
#include "soundserver/Recorder.h"
#include "soundserver/Waiting.h"
#include "support/soundserver/Player.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <optional>
#include <string>

namespace quorbel {

using namespace soundserver;

/// A user at a machine with two devices, `speakers` (the default) and `hdmi`, a display, and an
/// assistive technology, which is all they operate the program with. Every test begins without a
/// settings file.
class WindowTest : public testing::Test {
  protected:
    static constexpr double sampleRate = 48000.0;
    static constexpr double toneHz = 2000.0;
    static constexpr double toneLevelDB = -20.0;

    static void SetUpTestSuite() { session_ = std::make_unique<Session>(); }
    static void TearDownTestSuite() { session_.reset(); }
    void TearDown() override;

    static PrivateSoundServer &server() { return session_->server; }
    static VirtualDisplay &display() { return session_->display; }

    /// The program, as the desktop's menu starts it; with `more` variables in its environment.
    [[nodiscard]] static std::unique_ptr<ChildProcess> start(const Environment &more = {});

    /// Starts it, and returns when its window can be operated.
    void open();
    [[nodiscard]] ChildProcess &program() { return *program_; }
    [[nodiscard]] const AccessibleProgram &window() const { return *window_; }
    [[nodiscard]] static VirtualDisplay::Window frame() { return display().window("Ostrafine"); }

    // The user's hands.
    void press(const Sought &what) const { window().find(what).press(); }
    void pressButton(const std::string &name, const std::string &description = "") const {
        press({ATSPI_ROLE_PUSH_BUTTON, name, description});
    }
    void goTo(const std::string &destination) const { press({ATSPI_ROLE_LIST_ITEM, destination}); }
    /// Opens a picker of the toolbar and takes one of its entries.
    void pick(const std::string &picker, const std::string &entry) const;
    void setSlider(const std::string &name, double value) const;
    /// Into a field that has the focus and its content selected.
    void typeInto(const std::string &field, const std::string &text) const;
    /// Picks the speakers and presses Start; returns when the tone is captured.
    void startProcessing() const;

    // The user's eyes and ears.
    [[nodiscard]] testing::AssertionResult soonShows(const Sought &what) const;
    /// An application plays from now on, and the speakers are recorded.
    void play(std::unique_ptr<Sound> sound);
    void playTone() { play(std::make_unique<Tone>(toneHz, toneLevelDB, sampleRate)); }
    /// Neither plays nor is recorded any more.
    void endPlaying();
    [[nodiscard]] const Recorder &speakers() const { return *speakers_; }
    /// Where it plays, as far as the server knows.
    [[nodiscard]] static testing::AssertionResult soonPlaysInto(const std::string &target);
    [[nodiscard]] std::string tapName() const;
    /// The level of the tone on the speakers, once it rests.
    [[nodiscard]] testing::AssertionResult soonHears(double levelDB, double tolerance = 0.1) const;

    // What is saved.
    [[nodiscard]] static std::filesystem::path settingsFile();
    [[nodiscard]] static nlohmann::json saved();

  private:
    struct Session {
        PrivateSoundServer server;
        VirtualDisplay display{1280, 900, server.environment()};
        AccessibilityBus bus{server, display.name()};
        GraphClient client{server};
    };
    static std::unique_ptr<Session> session_;

    std::unique_ptr<ChildProcess> program_;
    std::optional<AccessibleProgram> window_;
    std::unique_ptr<Sound> sound_;
    std::unique_ptr<Player> player_;
    std::unique_ptr<Recorder> speakers_;
};

} // namespace quorbel
