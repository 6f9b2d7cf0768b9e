#include "platform/core/Log.h"

#include <fmt/format.h>

#include <cstdio>
#include <mutex>
#include <utility>

namespace quorbel {
namespace {

std::mutex &sinkMutex() {
    static std::mutex mutex;
    return mutex;
}

LogSink &currentSink() {
    static LogSink sink;
    return sink;
}

} // namespace

void logLine(std::string_view component, std::string_view text) {
    const std::string line = fmt::format("[{}] {}", component, text);
    const std::lock_guard guard(sinkMutex());
    if (currentSink()) {
        currentSink()(line);
        return;
    }
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

LogSink setLogSink(LogSink sink) {
    const std::lock_guard guard(sinkMutex());
    return std::exchange(currentSink(), std::move(sink));
}

} // namespace quorbel
