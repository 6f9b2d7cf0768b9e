#pragma once

#include <cstdint>
#include <deque>
#include <limits>
#include <optional>

namespace quorbel {

/// What can be seen of our two streams, the tap and the output.
struct PairFacts {
    bool hasTap = false;         ///< its node and its two ports, front left and front right, exist
    bool hasOutput = false;      ///< its node exists
    bool hasDevice = false;      ///< a device is there that the output can be linked to
    bool isOutputLinked = false; ///< to a device, with all its channels
    bool tapRuns = false;        ///< the graph runs it
    bool outputRuns = false;
    bool isTapOfWrongKind = false; ///< it must count as a device and does not
    // Counters that move while there are cycles.
    std::uint64_t driverCycles = 0; ///< of the device's clock
    std::uint64_t tapCycles = 0;    ///< that we have run
    std::uint64_t outputCycles = 0;
};

/// What is to be done about the pair.
enum class PairStep {
    none,
    route,   ///< sound can pass: applications may be sent to the tap
    link,    ///< link the output to its device ourselves
    nudge,   ///< stop the output and start it again
    release, ///< sound cannot pass: put the applications back
    rebuild, ///< replace both streams
    giveUp,  ///< it cannot be healed; tell the user
};

/// Decides from what is seen whether processed sound can pass through the tap and the output, and
/// what heals them if not. Whatever is wrong, sound has another way after half a second, and after
/// two seconds the pair is healed or given up. That the streams run no cycles although they should
/// is noticed after a second, if it is looked at every quarter of one.
class PairSupervisor {
  public:
    static constexpr double lookSeconds = 0.05; ///< between two looks while something is wrong

    /// One step to take now. Ask again after it, until it is `none`.
    PairStep look(const PairFacts &facts, double now);
    /// A new session manager knows nothing of the streams and may leave them half started.
    void sessionManagerReturned() { mustRebuild_ = true; }
    /// Starts from nothing, as for a new pair.
    void reset() { *this = PairSupervisor(); }
    [[nodiscard]] bool isHealthy() const { return !wrongSince_; }
    /// When to look again at the latest, if no event makes it sooner; infinity while all is well.
    [[nodiscard]] double nextLook(double now) const;

  private:
    [[nodiscard]] bool hasStoodStill(const PairFacts &facts, double now);
    [[nodiscard]] PairStep cureStandstill(double now);
    [[nodiscard]] PairStep rebuild(double now);

    std::optional<double> wrongSince_ = 0.0;
    bool isNew_ = true;     ///< not healthy yet since the reset
    bool wasWhole_ = false; ///< since the last rebuilding
    bool isRouting_ = false;
    bool mustRebuild_ = false;
    bool hasLinked_ = false; ///< in this illness, as the next
    bool hasNudged_ = false;
    bool hasGivenUp_ = false;
    std::deque<double> rebuilds_; ///< times of the recent ones

    PairFacts beats_; ///< the counters at the last look
    double lastLook_ = 0.0;
    double stillSeconds_ = 0.0; ///< in which the device has had cycles and we have run none
    std::optional<double> stillRebuild_; ///< when the pair was last replaced for that
};

} // namespace quorbel
