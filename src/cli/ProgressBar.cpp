#include "cli/ProgressBar.h"

#include "engine/ChainFormat.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <unistd.h>

namespace quorbel {

namespace {

constexpr std::size_t barWidth = 30;

std::string minutesAndSeconds(double seconds) {
    const auto whole = static_cast<std::uint64_t>(std::llround(seconds));
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

} // namespace

ProgressBar::ProgressBar(std::uint64_t totalFrames)
    : totalFrames_(totalFrames), onTerminal_(isatty(STDERR_FILENO) == 1) {}

ProgressBar::~ProgressBar() {
    if (drawn_)
        fmt::print(stderr, "\r\033[K");
}

void ProgressBar::update(std::uint64_t frames) {
    if (!onTerminal_)
        return;
    const auto now = Time::now();
    if (now < nextDrawing_)
        return;
    nextDrawing_ = now + std::chrono::milliseconds(100);
    drawn_ = true;

    const double seconds = static_cast<double>(frames) / chainSampleRate;
    const double elapsed = std::chrono::duration<double>(now - start_).count();
    const double speed = elapsed > 0.0 ? seconds / elapsed : 0.0;
    if (totalFrames_ == 0) {
        fmt::print(stderr, "\r{}  {:.0f} x real time\033[K", minutesAndSeconds(seconds), speed);
    } else {
        const double part =
            std::min(1.0, static_cast<double>(frames) / static_cast<double>(totalFrames_));
        const double left = part > 0.0 ? elapsed * (1.0 - part) / part : 0.0;
        const auto filled = static_cast<std::size_t>(part * static_cast<double>(barWidth));
        fmt::print(stderr, "\r[{:#<{}}{:.<{}}] {:3.0f} %  {:.0f} x real time, {} left\033[K", "",
                   filled, "", barWidth - filled, part * 100.0, speed, minutesAndSeconds(left));
    }
    std::fflush(stderr);
}

} // namespace quorbel
