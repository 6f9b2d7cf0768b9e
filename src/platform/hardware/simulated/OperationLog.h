#pragma once

#include "platform/core/Status.h"

#include <functional>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace quorbel::simulated {

/// The calls of the hardware interface that can be watched and made to fail.
enum class Operation {
    reconnect,
    processObject,
    defaultOutputDevice,
    deviceList,
    deviceUID,
    deviceName,
    deviceManufacturer,
    streamChannelCounts,
    addListener,
    removeListener,
    createProcessTap,
    destroyProcessTap,
    tapFormat,
    createAggregateDevice,
    destroyAggregateDevice,
    nominalSampleRate,
    createIOProc,
    destroyIOProc,
    startDevice,
    stopDevice,
    makeOutput,
    setDevice,
    nativeFormat,
    startOutput,
    stopOutput,
    destroyOutput,
};

[[nodiscard]] std::string_view name(Operation operation);

/// Records the calls in order, and makes chosen ones fail with a chosen status. [main]
class OperationLog {
  public:
    /// Makes `operation` do nothing and return `status` from now on. Status 0 claims success
    /// without effect: an out id stays 0.
    void fail(Operation operation, Status status) { failures_[operation] = status; }
    void repair(Operation operation) { failures_.erase(operation); }

    /// Runs `event` in the middle of the operation's next call.
    void during(Operation operation, std::function<void()> event) {
        events_[operation] = std::move(event);
    }

    [[nodiscard]] const std::vector<Operation> &calls() const { return calls_; }
    void forgetCalls() { calls_.clear(); }

    struct Verdict {
        bool carryOut = true;
        Status status = statusOK;
    };
    /// Records a call and returns whether to carry it out.
    Verdict note(Operation operation);

  private:
    std::vector<Operation> calls_;
    std::map<Operation, Status> failures_;
    std::map<Operation, std::function<void()>> events_;
};

} // namespace quorbel::simulated
