#include "platform/hardware/routing/PairSupervisor.h"

#include <algorithm>
#include <utility>

namespace quorbel {
namespace {

/// Delay of our own repairs: the session manager links within milliseconds. Shorter than
/// `releaseSeconds`, so that a repair can save the routing.
constexpr double healSeconds = 0.2;
constexpr double releaseSeconds = 0.4;
constexpr double rebuildSeconds = 0.8; ///< from one rebuild to the next
constexpr double giveUpSeconds = 2.0;

/// Most rebuilds in `rebuildMemorySeconds`: beyond it, another client keeps removing our streams.
constexpr std::size_t mostRebuilds = 8;
constexpr double rebuildMemorySeconds = 10.0;

/// Five times the longest cycle.
constexpr double standstillSeconds = 1.0;
/// Longest time that counts between two looks: in a longer gap this process was stopped.
constexpr double longestLookSeconds = 0.3;

} // namespace

PairStep PairSupervisor::look(const PairFacts &facts, double now) {
    const bool isBroken =
        !facts.hasTap || !facts.hasOutput || facts.isTapOfWrongKind || mustRebuild_;
    const bool isStuck = facts.tapRuns && !facts.outputRuns;
    if (facts.hasTap && facts.hasOutput)
        wasWhole_ = true;
    if (hasStoodStill(facts, now) && !isBroken)
        return cureStandstill(now);
    if (!isBroken && facts.isOutputLinked && !isStuck) {
        wrongSince_.reset();
        isNew_ = hasLinked_ = hasNudged_ = hasGivenUp_ = false;
        if (isRouting_)
            return PairStep::none;
        isRouting_ = true;
        return PairStep::route;
    }
    if (hasGivenUp_)
        return PairStep::none;
    if (!wrongSince_ || isNew_)
        wrongSince_ = now;
    if (isNew_)
        rebuilds_.push_back(now); // a new pair has as much time as a rebuilt one
    isNew_ = false;
    const double age = now - *wrongSince_;
    const bool isRebuildDue = rebuilds_.empty() || now - rebuilds_.back() >= rebuildSeconds;
    // A pair that was whole and broke is rebuilt at once: more time would not repair it.
    if (isBroken && (isRebuildDue || mustRebuild_ || wasWhole_))
        return rebuild(now);
    if (age >= giveUpSeconds) {
        hasGivenUp_ = true;
        isRouting_ = false;
        return PairStep::giveUp;
    }
    if (age >= releaseSeconds && isRouting_) {
        isRouting_ = false;
        return PairStep::release;
    }
    if (age >= healSeconds && !facts.isOutputLinked && facts.hasDevice && !hasLinked_) {
        hasLinked_ = true;
        return PairStep::link;
    }
    if (age >= healSeconds && isStuck && !hasNudged_) {
        hasNudged_ = true;
        return PairStep::nudge;
    }
    if (age >= rebuildSeconds && isRebuildDue)
        return rebuild(now);
    return PairStep::none;
}

/// True if the server runs the streams, but our side of them runs no cycles.
bool PairSupervisor::hasStoodStill(const PairFacts &facts, double now) {
    const double passed = std::min(now - lastLook_, longestLookSeconds);
    lastLook_ = now;
    const PairFacts before = std::exchange(beats_, facts);
    if (stillSeconds_ >= standstillSeconds) // until replaced: released streams need not run
        return true;
    const bool bothRun = facts.tapRuns && facts.outputRuns;
    if (!bothRun ||
        (facts.tapCycles != before.tapCycles && facts.outputCycles != before.outputCycles))
        stillSeconds_ = 0.0;
    else if (facts.driverCycles != before.driverCycles)
        stillSeconds_ += passed;
    return stillSeconds_ >= standstillSeconds;
}

PairStep PairSupervisor::cureStandstill(double now) {
    if (hasGivenUp_)
        return PairStep::none;
    if (!wrongSince_)
        wrongSince_ = now;
    if (isRouting_) { // a rebuild may have to wait for the hung thread
        isRouting_ = false;
        return PairStep::release;
    }
    if (now - *wrongSince_ < lookSeconds)
        return PairStep::none;
    if (stillRebuild_ && now - *stillRebuild_ < rebuildMemorySeconds) {
        stillSeconds_ = 0.0;
        hasGivenUp_ = true;
        return PairStep::giveUp;
    }
    stillRebuild_ = now;
    return rebuild(now);
}

PairStep PairSupervisor::rebuild(double now) {
    while (!rebuilds_.empty() && now - rebuilds_.front() > rebuildMemorySeconds)
        rebuilds_.pop_front();
    if (rebuilds_.size() >= mostRebuilds) {
        hasGivenUp_ = true;
        isRouting_ = false;
        return PairStep::giveUp;
    }
    rebuilds_.push_back(now);
    mustRebuild_ = wasWhole_ = false;
    stillSeconds_ = 0.0;
    hasLinked_ = false;
    return PairStep::rebuild;
}

double PairSupervisor::nextLook(double now) const {
    return wrongSince_ && !hasGivenUp_ ? now + lookSeconds
                                       : std::numeric_limits<double>::infinity();
}

} // namespace quorbel
