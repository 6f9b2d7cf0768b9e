#pragma once

#include "SimulatedServer.h"

#include <string>
#include <vector>

namespace quorbel::desktop {

constexpr int applicationCount = 7;
constexpr int deviceCount = 4;

/// Something that users, applications, devices or fate do at a moment.
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
        hang,       ///< our data thread, until the streams are replaced
        leaveAlone, ///< or process again: a rule of a program
        count
    };
    Kind kind{};
    int a = 0, b = 0, c = 0; ///< which, where to, how
    Micros at = 0;
};

/// Everything that decides how a storm goes.
struct Storm {
    std::uint64_t seed = 0;
    std::vector<StormEvent> events;

    static Storm ofSeed(std::uint64_t seed, int length);
    [[nodiscard]] std::string text() const;
};

/// One line.
std::string text(const StormEvent &event);

/// The first thing that went wrong in a storm, or nothing.
std::string run(const Storm &storm);

/// Removes events as long as the storm still fails; returns what is left.
Storm reduced(Storm storm);

} // namespace quorbel::desktop
