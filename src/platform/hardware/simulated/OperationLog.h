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

/// Which calls came, in which order, and which of them are to fail with what status. [main]
class OperationLog {
  public:
    /// From now on `operation` does nothing and returns `status`. With status 0 it claims success
    /// but still does nothing, so an id it should have set stays 0.
    void fail(Operation operation, Status status) { failures_[operation] = status; }
    void repair(Operation operation) { failures_.erase(operation); }

    /// `event` happens in the middle of the next call.
    void during(Operation operation, std::function<void()> event) {
        events_[operation] = std::move(event);
    }

    [[nodiscard]] const std::vector<Operation> &calls() const { return calls_; }
    void forgetCalls() { calls_.clear(); }

    struct Verdict {
        bool carryOut = true;
        Status status = statusOK;
    };
    /// Notes a call and says whether it is to be carried out.
    Verdict note(Operation operation);

  private:
    std::vector<Operation> calls_;
    std::map<Operation, Status> failures_;
    std::map<Operation, std::function<void()>> events_;
};

} // namespace quorbel::simulated
