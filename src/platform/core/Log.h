#pragma once

#include <functional>
#include <string_view>

namespace quorbel {

/// Writes one line, "[component] text", to standard output and flushes it for readers of a pipe.
/// Never called on an audio thread.
void logLine(std::string_view component, std::string_view text);

/// Receives whole lines without their line end.
using LogSink = std::function<void(std::string_view line)>;

/// Sends lines to `sink` (for a terminal meter or a test); an empty sink restores standard output.
/// Returns the previous sink. [main]
LogSink setLogSink(LogSink sink);

} // namespace quorbel
