#pragma once

#include <cstdint>
#include <deque>
#include <limits>
#include <optional>

namespace quorbel {

/// Observed state of our two streams, the tap and the output.
struct PairFacts {
    bool hasTap = false;         ///< its node and its two ports, front left and front right, exist
    bool hasOutput = false;      ///< its node exists
    bool hasDevice = false;      ///< a device exists to which the output can be linked
    bool isOutputLinked = false; ///< to a device, with all its channels
    bool tapRuns = false;        ///< the graph runs it
    bool outputRuns = false;
    bool isTapOfWrongKind = false; ///< it must count as a device but does not
    // Counters that advance with the cycles.
    std::uint64_t driverCycles = 0; ///< of the device's clock
    std::uint64_t tapCycles = 0;    ///< run by us
    std::uint64_t outputCycles = 0;
};

/// Next step for the pair.
enum class PairStep {
    none,
    route,   ///< sound can pass: applications may be sent to the tap
    link,    ///< link the output to its device ourselves
    nudge,   ///< stop the output and start it again
    release, ///< sound cannot pass: put the applications back
    rebuild, ///< replace both streams
    giveUp,  ///< repairs have failed; tell the user
};

/// Decides from the observed state whether processed sound can pass through the tap and the output,
/// and which step repairs them if not. Puts the applications back half a second after any failure;
/// repairs the pair or gives it up after two seconds. Detects streams that have stopped running
/// cycles after a second, given a look every quarter of a second.
class PairSupervisor {
  public:
    static constexpr double lookSeconds = 0.05; ///< between two looks while something is wrong

    /// Returns one step to take now. Call again after taking it, until it is `none`.
    PairStep look(const PairFacts &facts, double now);
    /// Requests a rebuild: a new session manager does not know the streams and may leave them half
    /// started.
    void sessionManagerReturned() { mustRebuild_ = true; }
    /// Starts over, as for a new pair.
    void reset() { *this = PairSupervisor(); }
    [[nodiscard]] bool isHealthy() const { return !wrongSince_; }
    /// Latest time of the next look, if no event comes earlier; infinity while the pair is healthy.
    [[nodiscard]] double nextLook(double now) const;

  private:
    [[nodiscard]] bool hasStoodStill(const PairFacts &facts, double now);
    [[nodiscard]] PairStep cureStandstill(double now);
    [[nodiscard]] PairStep rebuild(double now);

    std::optional<double> wrongSince_ = 0.0;
    bool isNew_ = true;     ///< not healthy yet since the reset
    bool wasWhole_ = false; ///< both nodes existed once since the last rebuild
    bool isRouting_ = false;
    bool mustRebuild_ = false;
    bool hasLinked_ = false; ///< during this failure, like `hasNudged_`
    bool hasNudged_ = false;
    bool hasGivenUp_ = false;
    std::deque<double> rebuilds_; ///< times of recent rebuilds

    PairFacts beats_; ///< the counters at the last look
    double lastLook_ = 0.0;
    double stillSeconds_ = 0.0;          ///< duration of device cycles without one of ours
    std::optional<double> stillRebuild_; ///< time of the last rebuild for that reason
};

} // namespace quorbel
