#include "cli/LiveMeter.h"

#include "engine/AudioEngine.h"

#include <fmt/format.h>

#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace quorbel {

namespace {

constexpr double drawingSeconds = 0.1;

std::string stateText(const AudioEngine &engine, bool hasBegun) {
    switch (engine.state().kind) {
    case EngineLifecycle::State::Kind::running:
        return "running";
    case EngineLifecycle::State::Kind::error:
        return engine.isComingBack() ? "waiting: " + engine.state().message : "error";
    case EngineLifecycle::State::Kind::stopped:
        break;
    }
    if (engine.isLeavingAlone())
        return "left alone";
    return hasBegun ? "stopped" : "starting";
}

/// Truncates the text to the terminal's width: a wrapped second line could not be erased.
std::string cutToTerminal(const std::string &text) {
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return text;
    std::string cut;
    std::size_t columns = 0;
    for (const char character : text) {
        const bool startsCharacter = (static_cast<unsigned char>(character) & 0xC0U) != 0x80U;
        columns += startsCharacter ? 1 : 0;
        if (columns >= size.ws_col)
            break;
        cut += character;
    }
    return cut;
}

} // namespace

LiveMeter::LiveMeter(AudioEngine &engine, Clock &clock)
    : engine_(engine), clock_(clock), isShown_(isatty(STDERR_FILENO) == 1) {
    engine_.setDisplayed(isShown_);
    if (!isShown_)
        return;
    previousSink_ = setLogSink([this](std::string_view line) { printAbove(line); });
    for (const auto change : {&AudioEngine::stateChanged, &AudioEngine::outputDeviceChanged,
                              &AudioEngine::limiterReductionDBChanged,
                              &AudioEngine::autoGainDBChanged, &AudioEngine::lossesChanged})
        QObject::connect(&engine_, change, &changes_, [this] { drawSoon(); });
    QObject::connect(&engine_, &AudioEngine::stateChanged, &changes_, [this] { hasBegun_ = true; });
    drawSoon();
}

LiveMeter::~LiveMeter() {
    if (!isShown_)
        return;
    timer_.invalidate();
    setLogSink(std::move(previousSink_));
    fmt::print(stderr, "\r\033[K");
}

void LiveMeter::drawSoon() {
    if (!timer_.isSet())
        timer_ = Timer::once(clock_, drawingSeconds, [this] { draw(); });
}

void LiveMeter::draw() {
    timer_.invalidate();
    const auto &device = engine_.outputDevice();
    const EngineLosses &losses = engine_.losses();
    const EngineUpheavals &upheavals = engine_.upheavals();
    std::string line = fmt::format(
        "{}  {}  reduction {:.1f} dB  auto gain {:+.1f} dB  lost {} frames",
        stateText(engine_, hasBegun_), device ? device->name : "no device",
        engine_.limiterReductionDB(), engine_.autoGainDB(), losses.cutFrames + losses.silentFrames);
    if (upheavals.outputRestarts > 0)
        line += fmt::format("  {} restarts", upheavals.outputRestarts);
    if (upheavals.comebacks > 0)
        line += fmt::format("  {} returns", upheavals.comebacks);
    const std::lock_guard guard(mutex_);
    shown_ = cutToTerminal(line);
    fmt::print(stderr, "\r{}\033[K", shown_);
    std::fflush(stderr);
}

void LiveMeter::printAbove(std::string_view line) {
    const std::lock_guard guard(mutex_);
    fmt::print(stderr, "\r\033[K");
    std::fflush(stderr);
    fmt::print("{}\n", line);
    std::fflush(stdout);
    fmt::print(stderr, "{}", shown_);
    std::fflush(stderr);
}

} // namespace quorbel
