#pragma once

#include "live/Processor.h"
#include "soundserver/GraphClient.h"
#include "soundserver/PrivateSoundServer.h"

#include <cstddef>

namespace quorbel::bench {

/// What a running processor costs, its helper processes apart.
struct LiveLoad {
    /// The device that everything is measured on, the default of the server.
    static constexpr const char *device = "speakers";

    double share = 0.0;            ///< of one core, all threads
    double wakeUpsPerSecond = 0.0; ///< voluntary context switches, all threads
    double wakeUpsPerCycle = 0.0;  ///< of the thread that was woken most often
    std::size_t interruptions = 0; ///< of what the device plays
};

/// Wake-ups per second of a processor that runs while nothing plays, once that has come to rest.
[[nodiscard]] double measureIdleWakeUps(const soundserver::PrivateSoundServer &server,
                                        const Processor &processor);

/// Runs the processor while an application plays a `SteadySound`, and measures for `seconds`.
/// Throws `ServerError` if the device does not play the expected levels in cycles of `quantum`
/// frames, or the processor fails.
[[nodiscard]] LiveLoad measureLiveLoad(const soundserver::PrivateSoundServer &server,
                                       soundserver::GraphClient &client, const Processor &processor,
                                       std::size_t quantum, double seconds);

} // namespace quorbel::bench
