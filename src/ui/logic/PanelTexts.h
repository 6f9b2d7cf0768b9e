#pragma once

#include "engine/EngineDiagnostics.h"
#include "engine/EngineLifecycle.h"
#include "settings/records/MixerConfig.h"

#include <optional>
#include <string>
#include <string_view>

namespace quorbel {

/// "LIVE", "ERROR" or "STOPPED".
[[nodiscard]] std::string_view stateWord(const EngineLifecycle::State &state);

/// The error's own text, or else format and active preset.
[[nodiscard]] std::string subtitlu(const EngineLifecycle::State &state,
                                   std::string_view activePresetName);

/// The condition of a return to processing.
enum class Awaited { soundServer, outputDevice, nextTry };

/// The outlook after an error: the program waits for `awaited`, or the user starts again. Empty
/// without an error.
[[nodiscard]] std::string outlookText(const EngineLifecycle::State &state,
                                      std::optional<Awaited> awaited);

/// The outlook while processing is on, but the output in use is left alone.
inline constexpr const char *leftAloneText =
    "This output is left alone; processing continues with another one";

/// The state of peak protection.
[[nodiscard]] std::string protectie(const MixerConfig &mixer);

/// "No output device", or the state of peak protection.
[[nodiscard]] std::string secondLine(bool hasOutputDevice, const MixerConfig &mixer);

/// The losses between capture and playback since the start; empty for none.
[[nodiscard]] std::string lossesText(const EngineLosses &losses);

} // namespace quorbel
