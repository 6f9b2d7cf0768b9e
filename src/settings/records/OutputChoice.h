#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// The user's choice of output while the settings file names another device as the one in use.
struct OutputChoice {
    std::optional<std::string> outputDeviceUID; ///< none: nothing chosen, the default will do
    std::vector<std::string> standIns;          ///< uids in the settings file that are no choice

    friend bool operator==(const OutputChoice &, const OutputChoice &) = default;
};

} // namespace quorbel
