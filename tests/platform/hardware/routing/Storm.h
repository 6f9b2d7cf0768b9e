#pragma once

#include "SimulatedServer.h"

#include <string>
#include <vector>

namespace quorbel::desktop {

constexpr int applicationCount = 7;
constexpr int deviceCount = 4;

/// One event of a storm, caused by a user, an application, a device or a failure.
struct StormEvent {
    enum class Kind : std::uint8_t {
        startApplication,
        stopApplication,
        pin, ///< by metadata
        moveByLinks,
        plug,
        unplug,
        chooseDefault,
        start,
        stop,
        kill,
        killWithWatchdog,
        destroyOurs,
        suspendOutput,
        killManager,
        killServer,
        deafen,
        stall,
        hang,       ///< of our data thread, until the streams are replaced
        leaveAlone, ///< adds or removes a program's rule
        count
    };
    Kind kind{};
    int a = 0, b = 0, c = 0; ///< application, device, manner
    Micros at = 0;
};

/// Complete input of a run: equal storms give equal runs.
struct Storm {
    std::uint64_t seed = 0;
    std::vector<StormEvent> events;

    static Storm ofSeed(std::uint64_t seed, int length);
    [[nodiscard]] std::string text() const;
};

/// Returns a description of one line.
std::string text(const StormEvent &event);

/// Returns the first violation in a storm; empty if there is none.
std::string run(const Storm &storm);

/// Removes the events that a failing storm does not need to show its fault.
Storm reduced(Storm storm);

} // namespace quorbel::desktop
