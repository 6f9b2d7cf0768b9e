#pragma once

#include <chrono>

namespace quorbel {

/// A moment, to the precision of a double.
struct Date {
    double secondsSince2001 = 0.0; ///< since 1 January 2001 00:00 UTC, as the settings file counts

    friend constexpr bool operator==(const Date &, const Date &) = default;

    /// 1 January 1970 00:00 UTC.
    [[nodiscard]] static constexpr Date unixEpoch() { return {-978307200.0}; }
    [[nodiscard]] static Date now() {
        const std::chrono::duration<double> sinceUnixEpoch =
            std::chrono::system_clock::now().time_since_epoch();
        return {unixEpoch().secondsSince2001 + sinceUnixEpoch.count()};
    }
};

} // namespace quorbel
