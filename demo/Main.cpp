// The demo of scripts/run for machines without a sound server: a private server with two virtual
// devices, an ordinary player, Ostrafine in between, and recordings from before and after it.

#include "ExpectedResponse.h"
#include "Music.h"
#include "soundserver/LiveProcess.h"
#include "soundserver/PrivateSoundServer.h"
#include "soundserver/Recorder.h"
#include "soundserver/SoundFile.h"
#include "soundserver/Waiting.h"

#include <fmt/format.h>

#include <cmath>
#include <csignal>
#include <exception>
#include <filesystem>
#include <stdexcept>

namespace quorbel::demo {
namespace {

namespace fs = std::filesystem;
using namespace soundserver;

constexpr double beforeSeconds = 5.0;
constexpr double afterSeconds = 10.0;

// Tolerance of an octave's level, and the level below which it is not judged.
constexpr double toleranceDB = 0.5;
constexpr double quietDB = -80.0;

/// The processed sound differs from the expected one.
class WrongSound : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

LiveSettings audibleSettings() {
    return {{{63.0, 6.0, 1.0, "parametric"},
             {500.0, -8.0, 0.8, "parametric"},
             {6000.0, 8.0, 0.7, "highShelf"}},
            -1.0};
}

/// Counts interruptions of the sound: silences longer than any in the music, with sound after them.
int gaps(const Recording &sound) {
    constexpr std::size_t longestRest = 128; // frames; the shortest cycle of a server that plays
    int count = 0;
    std::size_t silent = 0;
    for (std::size_t frame = 0; frame < sound.frames(); ++frame) {
        const bool isSilent = sound.left[frame] == 0.0F && sound.right[frame] == 0.0F;
        count += !isSilent && silent > longestRest ? 1 : 0;
        silent = isSilent ? silent + 1 : 0;
    }
    return count;
}

/// Plays generated music through pw-play and returns the device's sound, from its first one on.
Recording playOnce(const PrivateSoundServer &server, const Recorder &recorder, double seconds) {
    const fs::path music = server.folder() / "music.wav";
    writeSoundFile(music, composeMusic(seconds));
    const std::size_t start = recorder.frames();
    const auto player = server.start({"pw-play", music.string()});
    waitFor("pw-play ends", seconds + 10.0, [&] { return !player->running(); });
    if (player->exitStatusWithin(0.0) != 0)
        throw ServerError("pw-play failed: " + player->errors());
    const Recording heard = recorder.recording(start);
    std::size_t first = 0;
    while (first < heard.frames() && heard.left[first] == 0.0F && heard.right[first] == 0.0F)
        ++first;
    Recording sound = heard.excerpt(first, static_cast<std::size_t>(seconds * 48000));
    if (sound.frames() < static_cast<std::size_t>((seconds - 0.5) * 48000)) {
        throw WrongSound(fmt::format("of {} s of music only {:.2f} s reached the device", seconds,
                                     static_cast<double>(sound.frames()) / 48000));
    }
    return sound;
}

/// Plays again after an interruption: a busy machine or a stalled virtual one loses cycles.
Recording playAndRecord(const PrivateSoundServer &server, const Recorder &recorder,
                        double seconds) {
    constexpr int attempts = 3;
    for (int attempt = 1;; ++attempt) {
        Recording sound = playOnce(server, recorder, seconds);
        const int interruptions = gaps(sound);
        if (interruptions == 0)
            return sound;
        if (attempt == attempts) {
            throw WrongSound(fmt::format("the sound was interrupted {} times in {:g} s: this "
                                         "machine is too busy for it",
                                         interruptions, seconds));
        }
        fmt::print("(Interrupted {} times, for the machine is busy; once more.)\n", interruptions);
        std::fflush(stdout);
    }
}

void printTableAndJudge(const Recording &before, const Recording &after,
                        const LiveSettings &settings) {
    for (const auto &[channel, name] :
         {std::pair{&Recording::left, "left"}, {&Recording::right, "right"}}) {
        const PowerSpectrum plain = PowerSpectrum::of(before.*channel, 48000);
        const auto beforeDB = octaveLevelsDB(plain);
        const auto afterDB = octaveLevelsDB(PowerSpectrum::of(after.*channel, 48000));
        const auto expectedDB = octaveLevelsDB(expectedSpectrum(plain, settings));
        fmt::print("\n  {:<7} {:>10} {:>10} {:>10} {:>14}\n", name, "before", "after", "change",
                   "settings say");
        std::string wrong;
        for (std::size_t octave = 0; octave < octaveCentresHz.size(); ++octave) {
            const double change = afterDB[octave] - beforeDB[octave];
            const double expected = expectedDB[octave] - beforeDB[octave];
            fmt::print("  {:>5g} Hz {:>8.1f} dB {:>7.1f} dB {:>+7.1f} dB {:>+11.1f} dB\n",
                       octaveCentresHz[octave], beforeDB[octave], afterDB[octave], change,
                       expected);
            if (wrong.empty() && beforeDB[octave] > quietDB &&
                !(std::abs(change - expected) <= toleranceDB)) {
                wrong =
                    fmt::format("the octave at {:g} Hz changed by {:+.1f} dB on the {} channel, "
                                "but the settings say {:+.1f} dB",
                                octaveCentresHz[octave], change, name, expected);
            }
        }
        if (!wrong.empty())
            throw WrongSound(wrong);
    }
}

void runDemo(const fs::path &folder) {
    fs::create_directories(folder);
    const LiveSettings settings = audibleSettings();
    PrivateSoundServer::Options options;
    options.devices = {{"speakers", "Speakers"}, {"headphones", "Headphones"}};
    const PrivateSoundServer server(options);
    GraphClient client(server);
    const Recorder recorder(client, "speakers", 3.0 * (beforeSeconds + afterSeconds) + 30.0);

    fmt::print("A player plays {:g} s of music on the virtual speakers ...\n", beforeSeconds);
    std::fflush(stdout);
    const Recording before = playAndRecord(server, recorder, beforeSeconds);

    fmt::print(
        "... and now {:g} s with Ostrafine: +6 dB at 63 Hz, -8 dB at 500 Hz, +8 dB from 6 kHz "
        "up, -1 dB for all.\n",
        afterSeconds);
    std::fflush(stdout);
    const Metadata settingsBefore = server.state().metadata;
    LiveProcess live(server, settings);
    live.waitUntilRunning();
    // On a busy machine a new process may not have its environment yet.
    if (!comesTrue(2.0, [&] { return !live.helpers().empty(); }))
        throw ServerError("the watchdog, which restores the routing after a crash, does not run");
    const Recording after = playAndRecord(server, recorder, afterSeconds);
    const int status = live.process().stop(5.0, SIGINT);
    if (status != 0) {
        throw ServerError(fmt::format("ostrafine-cli live ended with status {}: {}", status,
                                      live.process().errors()));
    }

    writeSoundFile(folder / "before.wav", {48000, before.left, before.right});
    writeSoundFile(folder / "after.wav", {48000, after.left, after.right});
    printTableAndJudge(before, after, settings);
    if (server.state().metadata != settingsBefore)
        throw WrongSound("the sound settings are not as they were before");
    fmt::print("\nThe sound is what the settings say, and the sound settings are as they were.\n"
               "Listen: {}\n        {}\n",
               (folder / "before.wav").string(), (folder / "after.wav").string());
}

void interrupt(int) { interruptRequested = true; }

} // namespace
} // namespace quorbel::demo

int main(int argc, char **argv) {
    using namespace quorbel;
    if (argc != 2) {
        fmt::print(stderr,
                   "Usage: quorbel-demo FOLDER\n"
                   "Plays music on a private sound server without and with Ostrafine, compares\n"
                   "the two, and leaves both recordings in FOLDER.\n");
        return 2;
    }
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal, demo::interrupt);
    try {
        demo::runDemo(argv[1]);
        return 0;
    } catch (const soundserver::Interrupted &) {
        fmt::print(stderr, "\nInterrupted.\n");
        return 130;
    } catch (const std::exception &error) {
        fmt::print(stderr, "demo failed: {}\n", error.what());
        return 1;
    }
}
