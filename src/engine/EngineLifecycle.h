#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorbel {

/// Keeps an asynchronous start and a stop that arrives in the middle of it from trampling on each
/// other. A start takes a generation number and asks before every later step whether it still
/// holds; a stop makes it stale. There is no state for "starting": until a start has finished or
/// failed, the state shown is the one before it. All calls [main].
class EngineLifecycle {
  public:
    /// What the screens are shown.
    struct State {
        enum class Kind { error, stopped, running };

        Kind kind = Kind::stopped;
        std::string message; ///< of an error, for the user as it stands; otherwise empty

        [[nodiscard]] static State error(std::string_view message) {
            return {Kind::error, std::string(message)};
        }
        [[nodiscard]] static State stopped() { return {Kind::stopped, {}}; }
        [[nodiscard]] static State running() { return {Kind::running, {}}; }

        friend bool operator==(const State &, const State &) = default;
    };

    using Generation = std::int64_t;

    /// Begins a start; nothing if one is under way or the engine runs.
    [[nodiscard]] std::optional<Generation> beginStart();

    /// True while the start of this generation has been neither finished, failed nor overtaken.
    [[nodiscard]] bool isCurrent(Generation start) const;

    /// To `running`; false, and nothing changes, if the start was overtaken.
    [[nodiscard]] bool finishStart(Generation start);

    /// To `error` with the message, unless the start was overtaken.
    void failStart(Generation start, std::string_view message);

    /// A stop: whatever start is under way becomes stale.
    void end();

    /// A running engine that cannot go on: like `end`, but to `error` with the message.
    void fail(std::string_view message);

    [[nodiscard]] const State &state() const { return state_; }
    [[nodiscard]] Generation generation() const { return generation_; }
    [[nodiscard]] bool isStarting() const { return starting; }

  private:
    void advanceGeneration();

    State state_;
    Generation generation_ = 0;
    bool starting = false;
};

} // namespace quorbel
