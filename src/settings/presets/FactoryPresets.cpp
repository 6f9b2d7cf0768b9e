#include "settings/presets/FactoryPresets.h"

#include <fmt/format.h>

#include <QCryptographicHash>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace quorbel {

const std::vector<Preset> &factoryPresets() {
    static const std::vector<Preset> presets = [] {
        std::vector<Preset> built = factoryLibrary();
        for (Preset &preset : built) {
            preset.id = stableFactoryID(preset.name);
            preset.createdAt = Date::unixEpoch();
        }
        return built;
    }();
    return presets;
}

Uuid stableFactoryID(std::string_view key) {
    const std::string text = "com.quorbel.factory-preset:" + std::string(key);
    const QByteArray digest =
        QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha256);
    std::array<std::uint8_t, 16> bytes{};
    std::copy_n(digest.begin(), bytes.size(), bytes.begin());
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x50U); // version 5
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U); // standard variant
    return Uuid(bytes);
}

std::vector<EQBand> bands(const std::vector<float> &gains,
                          const std::map<std::size_t, float> &qOverrides) {
    std::vector<EQBand> result = EQBand::defaultBands();
    if (gains.size() != result.size()) {
        fmt::print(stderr, "a factory preset has {} gains instead of {}\n", gains.size(),
                   result.size());
        std::abort();
    }
    for (std::size_t index = 0; index < result.size(); ++index) {
        EQBand &band = result[index];
        const auto given = qOverrides.find(index);
        band.gainDB = gains[index];
        if (given != qOverrides.end())
            band.q = given->second;
        else
            band.q = band.filterType == EQBand::FilterType::parametric ? 1.0F : 0.7F;
    }
    return result;
}

} // namespace quorbel
