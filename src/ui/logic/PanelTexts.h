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

/// Returns the error's text, else the format and the active preset.
[[nodiscard]] std::string subtitlu(const EngineLifecycle::State &state,
                                   std::string_view activePresetName);

/// Condition for processing to resume.
enum class Awaited { soundServer, outputDevice, nextTry };

/// Outlook after an error: the program waits for `awaited`, or the user has to start again. Empty
/// without an error.
[[nodiscard]] std::string outlookText(const EngineLifecycle::State &state,
                                      std::optional<Awaited> awaited);

/// Outlook while processing is on and the output in use is left alone.
inline constexpr const char *leftAloneText =
    "This output is left alone; processing continues with another one";

/// State of peak protection.
[[nodiscard]] std::string protectie(const MixerConfig &mixer);

/// Returns "No output device", else the state of peak protection.
[[nodiscard]] std::string secondLine(bool hasOutputDevice, const MixerConfig &mixer);

/// Losses between capture and playback since the start; empty for none.
[[nodiscard]] std::string lossesText(const EngineLosses &losses);

} // namespace quorbel
