#pragma once

#include <functional>
#include <string_view>

namespace quorbel {

/// Writes one line, "[component] text", to standard output and flushes it: a reader of a pipe sees
/// it at once. There are no levels. Never called on an audio thread.
void logLine(std::string_view component, std::string_view text);

/// Receives whole lines without their line end.
using LogSink = std::function<void(std::string_view line)>;

/// Sends lines to `sink` instead (a program with a meter on the terminal, a test); an empty sink
/// means standard output again. Returns the sink that was in place. [main]
LogSink setLogSink(LogSink sink);

} // namespace quorbel
