#pragma once

#include "platform/core/Log.h"

#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorbel::testing {

/// Collects the log lines during its lifetime.
class CapturedLog {
  public:
    CapturedLog()
        : before_(setLogSink([this](std::string_view line) {
              const std::lock_guard guard(mutex_);
              lines_.emplace_back(line);
          })) {}
    ~CapturedLog() { setLogSink(before_); }
    CapturedLog(const CapturedLog &) = delete;
    CapturedLog &operator=(const CapturedLog &) = delete;

    /// The lines since the last call.
    [[nodiscard]] std::vector<std::string> take() {
        const std::lock_guard guard(mutex_);
        return std::exchange(lines_, {});
    }

    /// Those lines that contain `part`.
    [[nodiscard]] std::vector<std::string> takeWith(std::string_view part) {
        auto lines = take();
        std::erase_if(lines, [part](const std::string &line) {
            return line.find(part) == std::string::npos;
        });
        return lines;
    }

  private:
    LogSink before_;
    std::mutex mutex_;
    std::vector<std::string> lines_;
};

} // namespace quorbel::testing
