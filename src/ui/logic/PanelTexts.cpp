#include "ui/logic/PanelTexts.h"

#include "ui/logic/NumberFormat.h"

#include <fmt/format.h>

namespace quorbel {

namespace {

void appendCount(std::string &text, std::uint64_t count, std::string_view one,
                 std::string_view many) {
    if (count == 0)
        return;
    if (!text.empty())
        text += " · ";
    text += fmt::format("{} {}", count, count == 1 ? one : many);
}

} // namespace

std::string_view stateWord(const EngineLifecycle::State &state) {
    switch (state.kind) {
    case EngineLifecycle::State::Kind::running:
        return "LIVE";
    case EngineLifecycle::State::Kind::error:
        return "ERROR";
    case EngineLifecycle::State::Kind::stopped:
        break;
    }
    return "STOPPED";
}

std::string subtitlu(const EngineLifecycle::State &state, std::string_view activePresetName) {
    if (state.kind == EngineLifecycle::State::Kind::error)
        return state.message;
    return fmt::format("48 kHz · 32 ms · {}", activePresetName);
}

std::string outlookText(const EngineLifecycle::State &state, std::optional<Awaited> awaited) {
    if (state.kind != EngineLifecycle::State::Kind::error)
        return {};
    if (!awaited)
        return "The last start failed. Press Start to try again.";
    switch (*awaited) {
    case Awaited::soundServer:
        return "Waiting for the sound server; processing comes back by itself";
    case Awaited::outputDevice:
        return "Waiting for an output device; processing comes back by itself";
    case Awaited::nextTry:
        break;
    }
    return "Trying again; processing comes back by itself";
}

std::string protectie(const MixerConfig &mixer) {
    if (!mixer.limiterEnabled)
        return "Limiter off — a positive trim can clip";
    return "Limiter on at " + fixedText(static_cast<double>(mixer.limiterThresholdDB), 1) + " dBFS";
}

std::string secondLine(bool hasOutputDevice, const MixerConfig &mixer) {
    return hasOutputDevice ? protectie(mixer) : "No output device";
}

std::string lossesText(const EngineLosses &losses) {
    std::string text;
    appendCount(text, static_cast<std::uint64_t>(losses.cutFrames), "frame cut", "frames cut");
    appendCount(text, static_cast<std::uint64_t>(losses.silentFrames), "frame of silence",
                "frames of silence");
    appendCount(text, static_cast<std::uint64_t>(losses.lostCycles), "cycle lost", "cycles lost");
    appendCount(text, losses.nonFiniteFrames, "frame not a number", "frames not numbers");
    return text;
}

} // namespace quorbel
