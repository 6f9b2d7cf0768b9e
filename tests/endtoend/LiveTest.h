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

/// The sound of a device's monitor while applications play a `Sequence`.
enum class Heard {
    silence,
    dry,       ///< the sequence as it is
    processed, ///< the sequence, 12 dB lower
    other,     ///< anything else, such as both at once or a mixture over time
};

std::ostream &operator<<(std::ostream &out, Heard heard);

Heard heardAs(float sample);
Heard heardIn(const Recording &recording);

/// The setting that makes processed sound easy to tell from unprocessed.
inline LiveSettings twelveDBLower() { return LiveSettings::flat(-12.0); }

/// True when the endurance tests run at full length.
bool slowTestsWanted();

/// Frames of the longest stretch of a recording that was nothing but `kind`, in seconds at 48 kHz.
double longestSeconds(const Recording &recording, Heard kind);

/// The session's knowledge of the devices that applications play on.
struct SessionMemory {
    Metadata routing;
    std::string defaultDevice;
    StoredStreams stored;
    friend bool operator==(const SessionMemory &, const SessionMemory &) = default;
};

/// A machine with two devices, `speakers` (the default) and `hdmi`, each of them recorded, on which
/// applications play.
class LiveTest : public testing::Test {
  protected:
    explicit LiveTest(const PrivateSoundServer::Options &options = {})
        : sampleRate(options.sampleRate), server(options), client(server) {}

    /// An application that plays a sequence of its own, and returns when it is heard somewhere.
    Player &playSequence(const Player::Options &options = {});

    /// As `playSequence`, with a tone of 1 kHz.
    Player &playTone(double levelDB);

    /// The player that was started last ends.
    void closePlayer() { players_.pop_back(); }

    /// A program of the desktop, "pw-play" or "paplay", that plays a sequence for `seconds`.
    std::unique_ptr<ChildProcess> playWith(const std::string &program, double seconds);

    Recorder &record(const std::string &device, double maxSeconds = 120.0);

    /// Starts processing and returns when it runs.
    std::unique_ptr<LiveProcess> startLive(const LiveSettings &settings,
                                           std::vector<std::string> arguments = {});

    /// Ends processing like Ctrl-C, which must succeed.
    static void stopLive(std::unique_ptr<LiveProcess> &live);

    /// Whether a device comes to play nothing but `wanted`, for `windowSeconds`.
    static testing::AssertionResult soonHears(const Recorder &recorder, Heard wanted,
                                              double deadlineSeconds = 2.0,
                                              double windowSeconds = 0.1);

    /// Whether an application comes to play into exactly these nodes.
    testing::AssertionResult soonPlaysInto(const std::string &application,
                                           const std::vector<std::string> &targets,
                                           double deadlineSeconds = 2.0) const;

    /// Waits until the session manager has written down what it knows, which it does a second late.
    [[nodiscard]] SessionMemory settledMemory() const;

    /// Whether the session comes to be as it was, with no node of ours left in it.
    testing::AssertionResult soonIsAsBefore(const SessionMemory &before) const;

    /// The names of our nodes.
    [[nodiscard]] std::vector<std::string> ourNodes() const;

    /// The file in which we note what is routed.
    [[nodiscard]] std::filesystem::path journal() const {
        return server.folder() / "run/quorbel/captured";
    }

    /// The once-a-second lines about losses that `live` has printed.
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

/// Whether the session manager will let an application play on `device` when it is next started.
bool remembersTarget(const StoredStreams &stored, const std::string &application,
                     const std::string &device);

/// Whether its log says that it processes: it came back as often as it was stopped.
bool saysItRuns(const LiveProcess &live);

/// The device that its log says it plays on, by description.
std::string saidDevice(const LiveProcess &live);

/// The name of our node that an application plays into while it is captured.
std::string tapName(LiveProcess &live);

} // namespace quorbel
