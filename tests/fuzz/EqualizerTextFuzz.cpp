#include "FuzzInput.h"
#include "settings/interchange/EqualizerImport.h"
#include "settings/interchange/EqualizerText.h"

#include <algorithm>
#include <cmath>

namespace quorbel {
namespace {

bool sameShape(const EQBand &a, const EQBand &b) {
    return a.filterType == b.filterType && a.frequency == b.frequency && a.gainDB == b.gainDB &&
           a.q == b.q && a.bypassed == b.bypassed;
}

void checkReadingBack(const EqualizerText &text) {
    std::vector<EQBand> bands;
    for (const TextBand &entry : text.bands)
        bands.push_back(entry.band);
    const float preampDB = text.preampDB.value_or(0.0F);
    const EqualizerText again = readEqualizerText(writeEqualizerText(bands, preampDB));
    mustHold(again.preampDB == preampDB || std::abs(preampDB) > 1000.0F, "the preamp reads back");
    mustHold(again.bands.size() == bands.size(), "all bands read back");
    for (std::size_t i = 0; i < bands.size(); ++i)
        mustHold(sameShape(again.bands[i].band, bands[i]), "a band reads back");
}

void checkImport(std::string_view text) {
    const EqualizerImport import = importEqualizerText(text, "name");
    mustHold(import.preset.bands.size() == equalizerBandCount, "a preset has ten bands");
    for (const EQBand &band : import.preset.bands)
        mustHold(std::isfinite(band.frequency) && std::isfinite(band.gainDB) &&
                     std::isfinite(band.q),
                 "values are finite");
    mustHold(std::is_sorted(import.skipped.begin(), import.skipped.end(),
                            [](const auto &a, const auto &b) { return a.line < b.line; }),
             "notes stand in the order of lines");
}

} // namespace
} // namespace quorbel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace quorbel;
    try {
        const EqualizerText text = readEqualizerText(textOf(data, size));
        checkReadingBack(text);
        // The fit is the bottleneck: most inputs skip it.
        if (text.bands.size() <= equalizerBandCount || (text.bands.size() < 14 && size % 16 == 0))
            checkImport(textOf(data, size));
    } catch (const InterchangeError &) {
        // The only error allowed.
    }
    return 0;
}
