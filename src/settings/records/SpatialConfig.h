#pragma once

#include <array>
#include <string_view>

namespace quorbel {

/// Settings of width, crosstalk shuffling, reverb, bass, voice and tone; with the bands they make
/// up a preset. Fields are in the order of the settings file.
struct SpatialConfig {
    /// Room models of the reverb, in the order of pickers.
    enum class ReverbPreset {
        smallRoom,
        mediumRoom,
        largeRoom,
        mediumHall,
        largeHall,
        cathedral,
        plate,
    };

    static constexpr std::array allReverbPresets{ReverbPreset::smallRoom, ReverbPreset::mediumRoom,
                                                 ReverbPreset::largeRoom, ReverbPreset::mediumHall,
                                                 ReverbPreset::largeHall, ReverbPreset::cathedral,
                                                 ReverbPreset::plate};

    bool widenerEnabled = false;
    float widthPercent = 100.0F; ///< 100 leaves the sound unchanged

    bool xtcEnabled = false;
    float xtcAmount = 50.0F; ///< percent
    float xtcNotchFrequency = 2000.0F;

    bool reverbEnabled = false;
    float reverbMix = 15.0F; ///< percent
    ReverbPreset reverbPreset = ReverbPreset::smallRoom;

    bool bassEnabled = false;
    float bassAmount = 50.0F; ///< percent
    float bassDrive = 3.0F;
    float bassCrossover = 80.0F; ///< Hz
    bool bassAdaptiveEnabled = false;

    bool voiceEnabled = false;
    float voiceAmount = 100.0F; ///< percent
    float voicePresenceGainDB = 3.0F;
    float voiceMudCutDB = 2.5F;
    bool voiceAdaptiveEnabled = false;

    float toneBassDB = 0.0F;
    float toneMidDB = 0.0F;
    float toneTrebleDB = 0.0F;

    friend bool operator==(const SpatialConfig &, const SpatialConfig &) = default;
};

/// The display name.
[[nodiscard]] inline std::string_view title(SpatialConfig::ReverbPreset preset) {
    using enum SpatialConfig::ReverbPreset;
    switch (preset) {
    case smallRoom:
        return "Small Room";
    case mediumRoom:
        return "Medium Room";
    case largeRoom:
        return "Large Room";
    case mediumHall:
        return "Medium Hall";
    case largeHall:
        return "Large Hall";
    case cathedral:
        return "Cathedral";
    case plate:
        return "Plate";
    }
    return {};
}

} // namespace quorbel
