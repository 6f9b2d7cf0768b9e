#pragma once

namespace quorbel {

/// Whether the engine can play the unprocessed sound for comparison.
template <typename Engine>
concept Compares = requires(Engine &engine) {
    engine.setComparing(true);
    engine.comparing();
};

template <typename Engine> [[nodiscard]] bool isComparing(const Engine &engine) {
    if constexpr (Compares<Engine>)
        return engine.comparing();
    else
        return false;
}

template <typename Engine> void setComparing(Engine &engine, bool comparing) {
    if constexpr (Compares<Engine>)
        engine.setComparing(comparing);
}

} // namespace quorbel
