#pragma once

#include "settings/records/EQBand.h"
#include "settings/records/SpatialConfig.h"
#include "settings/records/Uuid.h"

#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace quorbel {

/// A point in time.
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

/// A named snapshot of the bands and the spatial settings.
struct Preset {
    /// Groups of presets, in the order of lists.
    enum class Category { general, mr5, mr5Desk, bass, headphones, btSpeakers, genre, user };

    static constexpr std::array allCategories{
        Category::general,    Category::mr5,        Category::mr5Desk, Category::bass,
        Category::headphones, Category::btSpeakers, Category::genre,   Category::user};

    Uuid id{}; ///< random for the user's presets, fixed for factory presets
    std::string name{};
    Category category = Category::user;
    Date createdAt{};
    std::vector<EQBand> bands{};
    SpatialConfig spatial{};
    std::string notes{}; ///< shown under the name

    friend bool operator==(const Preset &, const Preset &) = default;
};

/// The display name of a group.
[[nodiscard]] inline std::string_view displayName(Preset::Category category) {
    using enum Preset::Category;
    switch (category) {
    case general:
        return "General";
    case mr5:
        return "Edifier MR5";
    case mr5Desk:
        return "MR5 + Desk";
    case bass:
        return "Bass";
    case headphones:
        return "Headphones";
    case btSpeakers:
        return "Bluetooth Speakers";
    case genre:
        return "Genre / Use-case";
    case user:
        return "Mine";
    }
    return {};
}

} // namespace quorbel
