#include "settings/records/Date.h"

#include <chrono>

namespace quorbel {

Date Date::now() {
    const std::chrono::duration<double> sinceUnixEpoch =
        std::chrono::system_clock::now().time_since_epoch();
    return {unixEpoch().secondsSince2001 + sinceUnixEpoch.count()};
}

} // namespace quorbel
