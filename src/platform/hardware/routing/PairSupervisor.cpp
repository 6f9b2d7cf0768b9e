#include "platform/hardware/routing/PairSupervisor.h"

namespace quorbel {
namespace {

/// The session manager links within milliseconds. Shorter than the time after which applications
/// are put back, so that a link of our own spares them that.
constexpr double healSeconds = 0.3;
constexpr double releaseSeconds = 0.5;
constexpr double rebuildSeconds = 0.8; ///< from one rebuilding to the next
constexpr double pairSeconds = 2.0;

/// More than this many in that time: somebody keeps removing our streams.
constexpr std::size_t mostRebuilds = 8;
constexpr double rebuildMemorySeconds = 10.0;

} // namespace

PairStep PairSupervisor::look(const PairFacts &facts, double now) {
    const bool isBroken =
        !facts.hasTap || !facts.hasOutput || facts.isTapOfWrongKind || mustRebuild_;
    const bool isStuck = facts.tapRuns && !facts.outputRuns;
    if (!isBroken && facts.isOutputLinked && !isStuck) {
        wrongSince_.reset();
        isNew_ = hasLinked_ = hasNudged_ = hasGivenUp_ = false;
        if (isRouting_ && !isRebuilt_)
            return PairStep::none;
        isRouting_ = true;
        isRebuilt_ = false;
        return PairStep::route;
    }
    if (hasGivenUp_)
        return PairStep::none;
    if (!wrongSince_ || isNew_)
        wrongSince_ = now;
    isNew_ = false;
    const double age = now - *wrongSince_;
    const bool isRebuildDue = rebuilds_.empty() || now - rebuilds_.back() >= rebuildSeconds;
    if (isBroken && (isRebuildDue || mustRebuild_))
        return rebuild(now);
    if (age >= pairSeconds) {
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

PairStep PairSupervisor::rebuild(double now) {
    while (!rebuilds_.empty() && now - rebuilds_.front() > rebuildMemorySeconds)
        rebuilds_.pop_front();
    if (rebuilds_.size() >= mostRebuilds) {
        hasGivenUp_ = true;
        isRouting_ = false;
        return PairStep::giveUp;
    }
    rebuilds_.push_back(now);
    mustRebuild_ = false;
    hasLinked_ = false;
    isRebuilt_ = true;
    return PairStep::rebuild;
}

double PairSupervisor::nextLook(double now) const {
    return wrongSince_ && !hasGivenUp_ ? now + lookSeconds
                                       : std::numeric_limits<double>::infinity();
}

} // namespace quorbel
