#include "LevelTable.h"

#include "LevelTrace.h"
#include "WholeChain.h"
#include "settings/presets/FactoryPresets.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace quorbel::bench {
namespace {

/// Calls `change` before each hop.
template <typename Change>
LevelTrace traceAfterChain(const LevelSound &sound, const Preset &preset, const Change &change) {
    WholeChain chain({.bands = preset.bands, .spatial = preset.spatial, .mixer = {}}, true);
    LevelSound played = sound;
    for (std::size_t hop = 0; hop < hopCount; ++hop) {
        change(chain, hop);
        chain.process(played.left.data() + hop * hopFrames, played.right.data() + hop * hopFrames,
                      hopFrames);
        chain.passTime(hopFrames);
    }
    return levelTraceOf(played);
}

/// Offsets `trace` to equal `reference` at `index`.
LevelTrace atLevelOf(const LevelTrace &reference, LevelTrace trace, std::size_t index) {
    const double gainDB = reference[index] - trace[index];
    for (double &level : trace)
        level += gainDB;
    return trace;
}

void printLevelTableOf(const LevelSound &sound, const std::vector<Preset> &presets) {
    std::vector<LevelTrace> steady;
    for (const Preset &preset : presets)
        steady.push_back(traceAfterChain(sound, preset, [](WholeChain &, std::size_t) {}));
    const LevelTrace &unprocessed = steady.front(); // the first preset is flat
    fmt::print("{}: excess in dB over the louder end, worst of {} switches per preset\n"
               "{:<34} {:>6} {:<34} {:>8} {:>6}\n",
               sound.name, presets.size(), "from", "excess", "to", "compare", "back");
    int aboveOne = 0;
    double worst = -200.0;
    for (std::size_t from = 0; from < presets.size(); ++from) {
        double worstOfRow = -200.0;
        std::size_t worstTo = 0;
        for (std::size_t to = 0; to < presets.size(); ++to) {
            const auto switched =
                traceAfterChain(sound, presets[from], [&](WholeChain &chain, std::size_t hop) {
                    if (hop == switchHop)
                        chain.applyPreset(presets[to]);
                });
            const double excess = excessDB(switched, steady[from], steady[to]);
            aboveOne += excess > 1.0 ? 1 : 0;
            if (excess > worstOfRow) {
                worstOfRow = excess;
                worstTo = to;
            }
        }
        // The other end is the unprocessed sound at the settled gain of Compare.
        const auto compared = [&](std::size_t first, std::size_t end) {
            return traceAfterChain(sound, presets[from], [&](WholeChain &chain, std::size_t hop) {
                if (hop == first || hop == end)
                    chain.setBypassed(hop == first);
            });
        };
        const auto there = compared(switchHop, hopCount);
        const double compare =
            excessDB(there, steady[from], atLevelOf(there, unprocessed, there.size() - 1));
        const auto andBack = compared(switchHop / 2, switchHop);
        const double back = excessDB(andBack, steady[from],
                                     atLevelOf(andBack, unprocessed, switchHop - windowHops));
        worst = std::max({worst, worstOfRow, compare, back});
        fmt::print("{:<34} {:>+6.2f} {:<34} {:>+8.2f} {:>+6.2f}\n", presets[from].name, worstOfRow,
                   presets[worstTo].name, compare, back);
    }
    fmt::print("worst {:+.2f} dB, {} of {} switches above 1 dB\n\n", worst, aboveOne,
               presets.size() * presets.size());
}

} // namespace

void printLevelTable() {
    for (const LevelSound &sound : levelSounds())
        printLevelTableOf(sound, factoryPresets());
}

} // namespace quorbel::bench
