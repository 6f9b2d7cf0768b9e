#pragma once

#include "live/Processor.h"
#include "soundserver/GraphClient.h"
#include "soundserver/PrivateSoundServer.h"

#include <cstddef>

namespace quorbel::bench {

/// Load of a running processor, without its helper processes.
struct LiveLoad {
    /// Measured device, the server's default.
    static constexpr const char *device = "speakers";

    double share = 0.0;            ///< of one core, over all threads
    double wakeUpsPerSecond = 0.0; ///< voluntary context switches of all threads
    double wakeUpsPerCycle = 0.0;  ///< of the thread with the most wake-ups
    std::size_t interruptions = 0; ///< of the device's sound
};

/// Wake-ups per second of a running processor while nothing plays, after it has settled.
[[nodiscard]] double measureIdleWakeUps(const soundserver::PrivateSoundServer &server,
                                        const Processor &processor);

/// Runs the processor while an application plays a `SteadySound`, and measures for `seconds`.
/// Throws `ServerError` if the device does not play the expected levels in cycles of `quantum`
/// frames, or the processor fails.
[[nodiscard]] LiveLoad measureLiveLoad(const soundserver::PrivateSoundServer &server,
                                       soundserver::GraphClient &client, const Processor &processor,
                                       std::size_t quantum, double seconds);

} // namespace quorbel::bench
