#include "settings/interchange/EqualizerText.h"

#include <fmt/format.h>

#include <cmath>

namespace quorbel {

namespace {

using FilterType = EQBand::FilterType;

constexpr float lowestFrequency = 1.0F; // the equaliser clamps lower ones to this
constexpr float lowestQ = 0.1F;

const char *typeOf(FilterType type) {
    switch (type) {
    case FilterType::parametric:
        return "PK";
    case FilterType::lowShelf:
        return "LSC";
    case FilterType::highShelf:
        return "HSC";
    case FilterType::lowPass:
        return "LPQ";
    case FilterType::highPass:
        return "HPQ";
    }
    return "PK";
}

bool isPass(FilterType type) { return type == FilterType::lowPass || type == FilterType::highPass; }

} // namespace

std::string writeEqualizerText(const std::vector<EQBand> &bands, float preampDB) {
    if (!std::isfinite(preampDB))
        throw InterchangeError(0, "the gain is not a finite number");
    std::string text = fmt::format("Preamp: {} dB\n", preampDB);
    for (std::size_t i = 0; i < bands.size(); ++i) {
        const EQBand &band = bands[i];
        if (!std::isfinite(band.frequency) || !std::isfinite(band.gainDB) || !std::isfinite(band.q))
            throw InterchangeError(0, fmt::format("band {} has a value that is not finite", i + 1));
        text += fmt::format("Filter {}: {} {} Fc {} Hz", i + 1, band.bypassed ? "OFF" : "ON",
                            typeOf(band.filterType),
                            band.frequency > 0.0F ? band.frequency : lowestFrequency);
        if (!isPass(band.filterType))
            text += fmt::format(" Gain {} dB", band.gainDB);
        text += fmt::format(" Q {}\n", band.q > 0.0F ? band.q : lowestQ);
    }
    return text;
}

} // namespace quorbel
