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

/// The error's text as it stands, or else the name of what is played.
[[nodiscard]] std::string subtitlu(const EngineLifecycle::State &state,
                                   std::string_view activePresetName);

/// What a return to processing waits for.
enum class Awaited { soundServer, outputDevice, nextTry };

/// What happens after an error: what `awaited` names comes first, or the user starts again. Empty
/// where there is no error.
[[nodiscard]] std::string outlookText(const EngineLifecycle::State &state,
                                      std::optional<Awaited> awaited);

/// Whether peaks are held.
[[nodiscard]] std::string protectie(const MixerConfig &mixer);

/// "No output device", or how peaks are held.
[[nodiscard]] std::string secondLine(bool hasOutputDevice, const MixerConfig &mixer);

/// What was lost between capture and playback since the start; empty when nothing was.
[[nodiscard]] std::string lossesText(const EngineLosses &losses);

} // namespace quorbel
