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

void EngineDiagnostics::start(std::function<void()> lossesChanged) {
    losses_ = {};
    lossesChanged_ = std::move(lossesChanged);
    isRunning_ = true;
    beginSeconds();
}

void EngineDiagnostics::stop() {
    isRunning_ = false;
    diagnosticTimer.invalidate();
}

void EngineDiagnostics::setIdle(bool isIdle) {
    isIdle_ = isIdle;
    if (isRunning_ && !isIdle && !diagnosticTimer.isSet())
        beginSeconds();
}

void EngineDiagnostics::beginSeconds() {
    diagnosticTimer = Timer::repeating(clock_, 1.0, [this] { tick(); });
}

void EngineDiagnostics::tick() {
    const EngineLosses before = losses_;
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
    if (isIdle_)
        diagnosticTimer.invalidate();
    if (losses_ != before && lossesChanged_)
        lossesChanged_();
}

} // namespace quorbel
