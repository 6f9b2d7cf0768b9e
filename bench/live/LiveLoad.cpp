#include "live/LiveLoad.h"

#include "soundserver/ProcessUsage.h"
#include "soundserver/Waiting.h"
#include "support/soundserver/Player.h"

#include <fmt/format.h>

#include <chrono>
#include <cmath>

namespace quorbel::bench {
namespace {

using namespace soundserver;

// Deviation from the expected levels: 0.02 dB undisturbed, some tenths of a dB for seconds after an
// interruption, 0.45 dB without the spatial settings, 2.1 dB unprocessed.
constexpr double toleranceDB = 0.4;
constexpr double settlingSeconds = 60.0;

/// Uses short windows: on a busy machine long ones often contain an interruption.
void waitUntilHeard(const Recorder &recorder, const Processor &processor, ChildProcess &process,
                    std::size_t quantum) {
    constexpr double windowSeconds = 0.1;
    SteadyLevels heard{};
    std::size_t heardQuantum = 0;
    const bool settled = comesTrue(settlingSeconds, [&] {
        const Recording sound = recorder.next(windowSeconds);
        heard = levelsOf(sound);
        heardQuantum = sound.segments[1].frames; // the first segment may be cut
        return !process.running() || (heardQuantum == quantum &&
                                      std::abs(heard[0] - processor.expected[0]) < toleranceDB &&
                                      std::abs(heard[1] - processor.expected[1]) < toleranceDB);
    });
    if (!settled || !process.running()) {
        throw ServerError(fmt::format(
            "{} should play {:.2f} dB (left) and {:.2f} dB (right) at quantum {}, but {:.2f} dB "
            "and {:.2f} dB at quantum {} are heard\n{}{}",
            processor.name, processor.expected[0], processor.expected[1], quantum, heard[0],
            heard[1], heardQuantum, process.errors(), process.output()));
    }
}

} // namespace

LiveLoad measureLiveLoad(const PrivateSoundServer &server, GraphClient &client,
                         const Processor &processor, std::size_t quantum, double seconds) {
    const auto process = server.start(processor.command);
    waitFor("the sink of " + processor.name, 10.0, [&] {
        if (!process->running())
            throw ServerError(processor.name + " ended: " + process->errors() + process->output());
        return processor.sink.empty() ||
               server.desktopList("sinks").find("\t" + processor.sink + "\t") != std::string::npos;
    });
    SteadySound sound;
    const Player player(client, sound, {"player of " + processor.name, processor.sink});
    const Recorder recorder(client, LiveLoad::device, seconds + 2.0 * settlingSeconds);
    waitUntilHeard(recorder, processor, *process, quantum);

    const std::size_t start = recorder.frames();
    const auto startTime = SteadyClock::now();
    const double processorSecondsBefore = processorSeconds(process->pid());
    const auto wakeUpsBefore = wakeUps(process->pid());
    recorder.skip(seconds);
    const double used = processorSeconds(process->pid()) - processorSecondsBefore;
    const WakeUps woken = wakeUpsSince(process->pid(), wakeUpsBefore);
    const std::chrono::duration<double> elapsed = SteadyClock::now() - startTime;
    const Recording measured = recorder.recording(start);

    waitUntilHeard(recorder, processor, *process, quantum);
    if (const int status = process->stop(5.0, SIGINT); status != 0) {
        throw ServerError(
            fmt::format("{} ended with status {}: {}", processor.name, status, process->errors()));
    }
    return {used / elapsed.count(), woken.all / elapsed.count(),
            woken.most / static_cast<double>(measured.segments.size()),
            interruptions(measured, quantum)};
}

double measureIdleWakeUps(const PrivateSoundServer &server, const Processor &processor) {
    const auto process = server.start(processor.command);
    const double perSecond = idleWakeUps(process->pid(), settlingSeconds);
    if (!process->running())
        throw ServerError(processor.name + " ended: " + process->errors() + process->output());
    process->stop(5.0, SIGINT);
    return perSecond;
}

} // namespace quorbel::bench
