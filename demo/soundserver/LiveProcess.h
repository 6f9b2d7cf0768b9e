#pragma once

#include "soundserver/PrivateSoundServer.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quorbel::soundserver {

/// The settings that the tests and the demo use, as in the settings file; all others are at their
/// defaults, which leave the sound unchanged.
struct LiveSettings {
    struct Band {
        double frequency = 1000.0;
        double gainDB = 0.0;
        double q = 1.0;
        std::string filterType = "parametric";
    };

    std::vector<Band> bands;
    double eqGlobalGainDB = 0.0;
    double reverbMix = 0.0; ///< percent, of a cathedral

    /// Ten flat bands and a global gain.
    static LiveSettings flat(double globalGainDB = 0.0);

    [[nodiscard]] std::string json() const;
};

/// `ostrafine-cli live`, run on a private sound server.
class LiveProcess {
  public:
    /// Starts the process and returns at once. `arguments` are added to the command line.
    LiveProcess(const PrivateSoundServer &server, const LiveSettings &settings,
                std::vector<std::string> arguments = {});

    /// Ends the process as Ctrl-C does.
    ~LiveProcess();

    /// Waits until the process captures and plays. Throws `ServerError` with its output if it ends
    /// or takes longer than `seconds`.
    void waitUntilRunning(double seconds = 5.0);

    /// The path of the command-line program: QUORBEL_CLI_PROGRAM in the environment, for an
    /// installed one, else that of this build.
    [[nodiscard]] static std::string program();

    /// Start time on the monotonic clock.
    [[nodiscard]] std::uint64_t startedNanoseconds() const { return startedNanoseconds_; }

    [[nodiscard]] ChildProcess &process() { return *process_; }

    /// The lines of its standard output.
    [[nodiscard]] std::vector<std::string> logLines() const;
    [[nodiscard]] bool hasLogged(const std::string &part) const;

    /// See ProcessUsage.h.
    [[nodiscard]] double processorSeconds() const;
    [[nodiscard]] double memoryMiB() const;

    /// Its living helper processes, such as the watchdog.
    [[nodiscard]] std::vector<pid_t> helpers() const;

  private:
    const PrivateSoundServer &server_;
    std::uint64_t startedNanoseconds_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace quorbel::soundserver
