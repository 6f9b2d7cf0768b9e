#include "ui/app/Resumption.h"

#include "engine/AudioEngine.h"
#include "ui/model/EngineModel.h"

#include <utility>

namespace quorbel {

namespace {

constexpr double resumptionLookSeconds = 0.25;
/// Time limit: a session without sound by then is not expected to get it.
constexpr double resumptionSeconds = 30.0;
/// Grace period for the chosen device before processing starts on another.
constexpr double chosenDeviceSeconds = 1.0;

} // namespace

Resumption::Resumption(AudioEngine &engine, EngineModel &model, Clock &clock,
                       std::function<void()> ended)
    : engine_(engine), model_(model), clock_(clock), ended_(std::move(ended)), began_(clock.now()),
      looks_(Timer::repeating(clock, resumptionLookSeconds, [this] { look(); })) {
    look();
}

void Resumption::look() {
    const bool isLate = clock_.now() - began_ >= resumptionSeconds;
    if (!model_.wanted() && (isLate || isOutputReady()))
        model_.start(); // no effect during a start; if late, reports why it fails
    if (!model_.wanted() && model_.refusal().isEmpty() && !isLate)
        return;
    looks_.invalidate();
    clock_.post(ended_);
}

bool Resumption::isOutputReady() {
    if (!engine_.outputDevice())
        return false;
    if (!engine_.outputChoice() || !engine_.isOutputStandIn())
        return true;
    if (!standInSince_)
        standInSince_ = clock_.now();
    return clock_.now() - *standInSince_ >= chosenDeviceSeconds;
}

} // namespace quorbel
