#include "Storm.h"

#include "Desktop.h"
#include "Invariants.h"

#include <algorithm>
#include <array>

namespace quorbel::desktop {
namespace {

constexpr Micros quiet = 2'000'000;
constexpr Micros unsettled = 300'000;

struct Weight {
    StormEvent::Kind kind;
    const char *name;
    int weight;
};
using enum StormEvent::Kind;
constexpr std::array<Weight, static_cast<std::size_t>(count)> weights{{
    {startApplication, "start application", 30},
    {stopApplication, "stop application", 14},
    {pin, "pin", 14},
    {moveByLinks, "move by links", 3},
    {plug, "plug", 8},
    {unplug, "unplug", 6},
    {chooseDefault, "choose default", 5},
    {start, "start", 12},
    {stop, "stop", 5},
    {kill, "kill", 3},
    {killWithWatchdog, "kill with watchdog", 1},
    {destroyOurs, "destroy ours", 3},
    {suspendOutput, "suspend output", 1},
    {killManager, "kill manager", 2},
    {killServer, "kill server", 1},
    {deafen, "deafen", 1},
    {stall, "stall", 1},
    {hang, "hang", 1},
    {leaveAlone, "leave alone", 0}, // added separately, to every fourth storm
}};

StormEvent::Kind randomKind(Random &random) {
    int total = 0;
    for (const Weight &weight : weights)
        total += weight.weight;
    int pick = below(random, total);
    for (const Weight &weight : weights)
        if ((pick -= weight.weight) < 0)
            return weight.kind;
    return count;
}

std::string check(Desktop &desktop, Desktop &without) {
    if (!desktop.violation().empty())
        return desktop.violation();
    const std::string wrong = wrongWhenQuiet(desktop, without);
    return wrong.empty() ? "" : std::to_string(desktop.server.now / 1000) + " ms: " + wrong;
}

} // namespace

Storm Storm::ofSeed(std::uint64_t seed, int length) {
    Storm storm{seed, {}};
    Random random(seed + 77);
    Micros at = 200'000;
    for (int i = 0; i < length; ++i) {
        const int pause = below(random, 100);
        at += pause < 40   ? below(random, 3000)
              : pause < 80 ? 10'000 + below(random, 150'000)
              : pause < 95 ? 200'000 + below(random, 700'000)
                           : 1'000'000 + below(random, 2'000'000);
        storm.events.push_back({randomKind(random), below(random, applicationCount),
                                below(random, deviceCount), below(random, 100), at});
    }
    if (seed % 4 == 0)
        for (int i = length / 16; i > 0; --i)
            storm.events.push_back({.kind = leaveAlone,
                                    .a = below(random, applicationCount),
                                    .at = 200'000 + below(random, static_cast<int>(at))});
    std::ranges::stable_sort(storm.events, {}, &StormEvent::at);
    return storm;
}

std::string text(const StormEvent &event) {
    return std::to_string(event.at / 1000) + " ms " +
           weights[static_cast<std::size_t>(event.kind)].name + " a=" + std::to_string(event.a) +
           " b=" + std::to_string(event.b) + " c=" + std::to_string(event.c);
}

std::string Storm::text() const {
    std::string result = "seed " + std::to_string(seed) + "\n";
    for (const StormEvent &event : events)
        result += desktop::text(event) + "\n";
    return result;
}

std::string run(const Storm &storm) {
    Desktop desktop(storm, true);
    Desktop without(storm, false);
    Micros end = storm.events.empty() ? 0 : storm.events.back().at;
    for (const StormEvent &event : storm.events) {
        const bool isOff = !desktop.client.wantsOn();
        for (Desktop *each : {&desktop, &without}) {
            each->runUntil(event.at);
            if (event.kind == start && isOff)
                each->noteUnknownPins();
            each->carryOut(event);
        }
    }
    // Checks the desktop after the storm, then after a stop.
    for (const bool stops : {false, true}) {
        for (Desktop *each : {&desktop, &without}) {
            if (stops)
                each->carryOut({.kind = stop});
            each->calm();
            each->runUntil(end + quiet);
        }
        end += quiet;
        // Waits for streams that were just retried or that hang to settle.
        for (int i = 0; i < 12 && desktop.client.hasSomethingDue(); ++i) {
            end += unsettled;
            for (Desktop *each : {&desktop, &without})
                each->runUntil(end);
        }
        if (auto wrong = check(desktop, without); !wrong.empty())
            return wrong;
    }
    return "";
}

Storm reduced(Storm storm) {
    // Compares faults without times and numbers, so that the reduced storm has the same fault.
    const auto kindOf = [](std::string wrong) {
        std::erase_if(wrong, [](char c) { return c >= '0' && c <= '9'; });
        return wrong;
    };
    const std::string wanted = kindOf(run(storm));
    // Tries large pieces first, which saves the most runs.
    for (std::size_t piece = storm.events.size() / 2; piece > 0;) {
        bool removed = false;
        for (std::size_t first = 0; first < storm.events.size();) {
            Storm smaller = storm;
            const auto begin = smaller.events.begin() + static_cast<std::ptrdiff_t>(first);
            smaller.events.erase(begin, begin + static_cast<std::ptrdiff_t>(std::min(
                                                    piece, smaller.events.size() - first)));
            if (kindOf(run(smaller)) != wanted) {
                first += piece;
            } else {
                storm = std::move(smaller);
                removed = true;
            }
        }
        if (piece > 1)
            piece /= 2;
        else if (!removed)
            break;
    }
    return storm;
}

} // namespace quorbel::desktop
