#include "platform/hardware/simulated/OperationLog.h"

#include <array>

namespace quorbel::simulated {

std::string_view name(Operation operation) {
    static constexpr std::array<std::string_view, 26> names{
        "reconnect",
        "processObject",
        "defaultOutputDevice",
        "deviceList",
        "deviceUID",
        "deviceName",
        "deviceManufacturer",
        "streamChannelCounts",
        "addListener",
        "removeListener",
        "createProcessTap",
        "destroyProcessTap",
        "tapFormat",
        "createAggregateDevice",
        "destroyAggregateDevice",
        "nominalSampleRate",
        "createIOProc",
        "destroyIOProc",
        "startDevice",
        "stopDevice",
        "makeOutput",
        "setDevice",
        "nativeFormat",
        "startOutput",
        "stopOutput",
        "destroyOutput",
    };
    static_assert(names.size() == static_cast<std::size_t>(Operation::destroyOutput) + 1);
    return names[static_cast<std::size_t>(operation)];
}

OperationLog::Verdict OperationLog::note(Operation operation) {
    calls_.push_back(operation);
    if (auto event = events_.extract(operation))
        event.mapped()();
    const auto failure = failures_.find(operation);
    if (failure == failures_.end())
        return {};
    return {.carryOut = false, .status = failure->second};
}

} // namespace quorbel::simulated
