#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorbel {

/// Lets a stop cancel an asynchronous start. Each start takes a generation number and checks it
/// before every later step; a stop makes it stale. "Starting" is not a state: the earlier state is
/// shown until the start finishes or fails. All calls [main].
class EngineLifecycle {
  public:
    /// The state that the screens show.
    struct State {
        enum class Kind { error, stopped, running };

        Kind kind = Kind::stopped;
        std::string message; ///< text of an error, shown to the user verbatim; otherwise empty

        [[nodiscard]] static State error(std::string_view message) {
            return {Kind::error, std::string(message)};
        }
        [[nodiscard]] static State stopped() { return {Kind::stopped, {}}; }
        [[nodiscard]] static State running() { return {Kind::running, {}}; }

        friend bool operator==(const State &, const State &) = default;
    };

    using Generation = std::int64_t;

    /// Begins a start; returns nothing if one is under way or the engine runs.
    [[nodiscard]] std::optional<Generation> beginStart();

    /// True until the start of this generation finishes, fails or becomes stale.
    [[nodiscard]] bool isCurrent(Generation start) const;

    /// Changes to `running`; returns false without a change if the start is stale.
    [[nodiscard]] bool finishStart(Generation start);

    /// Changes to `error` with the message, unless the start is stale.
    void failStart(Generation start, std::string_view message);

    /// Stops: a start under way becomes stale.
    void end();

    /// Ends a running engine after a failure: like `end`, but changes to `error` with the message.
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
