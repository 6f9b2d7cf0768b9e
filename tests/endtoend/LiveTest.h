#pragma once

#include "soundserver/Levels.h"
#include "soundserver/LiveProcess.h"
#include "soundserver/PrivateSoundServer.h"
#include "soundserver/Recorder.h"
#include "soundserver/SoundFile.h"
#include "soundserver/Waiting.h"
#include "support/soundserver/Player.h"
#include "support/soundserver/SequenceReport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace quorbel {

using namespace soundserver;

/// Sound of a device's monitor while applications play a `Sequence`.
enum class Heard {
    silence,
    dry,       ///< the sequence as it is
    processed, ///< the sequence, 12 dB lower
    other,     ///< anything else, such as a mixture or a change
};

std::ostream &operator<<(std::ostream &out, Heard heard);

Heard heardAs(float sample);
Heard heardIn(const Recording &recording);

/// Settings that make processed sound easy to recognise.
inline LiveSettings twelveDBLower() { return LiveSettings::flat(-12.0); }

/// True if the endurance tests run at full length.
bool slowTestsWanted();

/// Length in seconds of the longest part of a 48 kHz recording with `kind` alone.
double longestSeconds(const Recording &recording, Heard kind);

/// The session's routing of applications, current and stored.
struct SessionMemory {
    Metadata routing;
    std::string defaultDevice;
    StoredStreams stored;
    friend bool operator==(const SessionMemory &, const SessionMemory &) = default;
};

/// Base of tests on a machine with the devices `speakers` (the default) and `hdmi`: plays, records
/// and runs `live`.
class LiveTest : public testing::Test {
  protected:
    explicit LiveTest(const PrivateSoundServer::Options &options = {})
        : sampleRate(options.sampleRate), server(options), client(server) {}

    /// Starts an application that plays a new sequence; returns once it plays.
    Player &playSequence(const Player::Options &options = {});

    /// As `playSequence`, with a tone of 1 kHz.
    Player &playTone(double levelDB);

    /// Ends the player started last.
    void closePlayer() { players_.pop_back(); }

    /// Starts a program of the desktop, "pw-play" or "paplay", that plays a sequence for `seconds`.
    std::unique_ptr<ChildProcess> playWith(const std::string &program, double seconds);

    Recorder &record(const std::string &device, double maxSeconds = 120.0);

    /// Starts processing and returns when it runs.
    std::unique_ptr<LiveProcess> startLive(const LiveSettings &settings,
                                           std::vector<std::string> arguments = {});

    /// Ends processing as Ctrl-C does; expects success.
    static void stopLive(std::unique_ptr<LiveProcess> &live);

    /// Waits until a device plays nothing but `wanted` for `windowSeconds`.
    static testing::AssertionResult soonHears(const Recorder &recorder, Heard wanted,
                                              double deadlineSeconds = 2.0,
                                              double windowSeconds = 0.1);

    /// Waits until an application plays into exactly these nodes.
    testing::AssertionResult soonPlaysInto(const std::string &application,
                                           const std::vector<std::string> &targets,
                                           double deadlineSeconds = 2.0) const;

    /// Waits until the session manager has written its state, after a delay of a second.
    [[nodiscard]] SessionMemory settledMemory() const;

    /// Waits until the session is as before and has no node of ours.
    testing::AssertionResult soonIsAsBefore(const SessionMemory &before) const;

    /// Names of our nodes.
    [[nodiscard]] std::vector<std::string> ourNodes() const;

    /// The file that lists the routed streams.
    [[nodiscard]] std::filesystem::path journal() const {
        return server.folder() / "run/quorbel/captured";
    }

    /// The lines about losses printed by `live`, at most one per second.
    static std::vector<std::string> lossLines(const LiveProcess &live);

    const int sampleRate;
    PrivateSoundServer server;
    GraphClient client;

  private:
    Player &play(std::unique_ptr<Sound> sound, const Player::Options &options);

    std::vector<std::unique_ptr<Sound>> sounds_;
    std::vector<std::unique_ptr<Player>> players_;
    std::vector<std::unique_ptr<Recorder>> recorders_;
};

/// True if the session manager has stored `device` for the application's next start.
bool remembersTarget(const StoredStreams &stored, const std::string &application,
                     const std::string &device);

/// True if processing runs according to the log: it has resumed as often as it stopped.
bool saysItRuns(const LiveProcess &live);

/// Description of the output device, from the log.
std::string saidDevice(const LiveProcess &live);

/// Name of our node into which captured applications play.
std::string tapName(LiveProcess &live);

} // namespace quorbel
