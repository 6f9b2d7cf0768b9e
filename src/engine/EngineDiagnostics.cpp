#include "engine/EngineDiagnostics.h"

#include "engine/AudioRingBuffer.h"
#include "engine/PlaybackGraph.h"
#include "engine/SystemAudioTap.h"
#include "platform/core/Log.h"

#include <fmt/format.h>

#include <utility>

namespace quorbel {

EngineDiagnostics::EngineDiagnostics(Clock &clock, AudioRingBuffer &ringBuffer,
                                     const SystemAudioTap &systemTap, const PlaybackGraph &playback)
    : clock_(clock), ringBuffer_(ringBuffer), systemTap_(systemTap), playback_(playback) {}

void EngineDiagnostics::start() {
    losses_ = {};
    diagnosticTimer = Timer::repeating(clock_, 1.0, [this] { tick(); });
}

void EngineDiagnostics::tick() {
    const auto [taiate, tacere, scrise, citite] = ringBuffer_.preiaPierderi();
    const std::int32_t droppedCycles = systemTap_.droppedCycles();
    losses_.cutFrames += taiate;
    losses_.silentFrames += tacere;
    if (taiate >= 1 || tacere >= 1 || ultimeleCicluriPierdute < droppedCycles) {
        logLine("AudioEngine",
                fmt::format("într-o secundă: captura a scris {} cadre, redarea a cerut {}; tăiate "
                            "{}, tăcere {}, {} cicluri de captură pierdute",
                            scrise, citite, taiate, tacere,
                            droppedCycles - ultimeleCicluriPierdute));
        losses_.lostCycles += droppedCycles - ultimeleCicluriPierdute;
        ultimeleCicluriPierdute = droppedCycles;
    }

    const std::uint64_t replaced = playback_.replacedNonFiniteFrames();
    const std::uint64_t newlyReplaced = replaced - std::exchange(lastReplacedFrames_, replaced);
    losses_.nonFiniteFrames += newlyReplaced;
    if (newlyReplaced > 0)
        logLine("AudioEngine",
                fmt::format("într-o secundă: {} cadre cu eșantioane nefinite, redate ca zero",
                            newlyReplaced));
}

} // namespace quorbel
