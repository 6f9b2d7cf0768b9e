#include "engine/EngineLifecycle.h"

#include <cstdlib>
#include <limits>

namespace quorbel {

std::optional<EngineLifecycle::Generation> EngineLifecycle::beginStart() {
    if (starting || state_.kind == State::Kind::running)
        return std::nullopt;
    advanceGeneration();
    starting = true;
    return generation_;
}

bool EngineLifecycle::isCurrent(Generation start) const { return starting && start == generation_; }

bool EngineLifecycle::finishStart(Generation start) {
    if (!isCurrent(start))
        return false;
    starting = false;
    state_ = State::running();
    return true;
}

void EngineLifecycle::failStart(Generation start, std::string_view message) {
    if (!isCurrent(start))
        return;
    starting = false;
    state_ = State::error(message);
}

void EngineLifecycle::end() {
    advanceGeneration();
    starting = false;
    state_ = State::stopped();
}

void EngineLifecycle::fail(std::string_view message) {
    advanceGeneration();
    starting = false;
    state_ = State::error(message);
}

void EngineLifecycle::advanceGeneration() {
    if (generation_ == std::numeric_limits<Generation>::max())
        std::abort();
    ++generation_;
}

} // namespace quorbel
