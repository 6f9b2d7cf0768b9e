#include "settings/interchange/EqualizerImport.h"

#include "platform/core/Trimmed.h"
#include "settings/interchange/BandResponse.h"
#include "settings/interchange/EqualizerText.h"
#include "settings/records/PlayedFilterType.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace quorbel {

namespace {

bool isFlat(const EQBand &band) {
    return hasGain(playedFilterType(band.filterType)) && band.gainDB == 0.0F;
}

bool isActive(const EQBand &band) { return !band.bypassed && !isFlat(band); }

/// Drops bands without effect, last first, while there are more than ten bands.
void dropInactive(std::vector<TextBand> &bands, std::vector<LineNote> &skipped) {
    for (std::size_t i = bands.size(); i-- > 0 && bands.size() > equalizerBandCount;) {
        if (isActive(bands[i].band))
            continue;
        skipped.push_back({bands[i].line, bands[i].band.bypassed
                                              ? "it is off, and the active ones take all ten bands"
                                              : "it is flat, and the others take all ten bands"});
        bands.erase(bands.begin() + static_cast<std::ptrdiff_t>(i));
    }
    std::stable_sort(skipped.begin(), skipped.end(),
                     [](const LineNote &a, const LineNote &b) { return a.line < b.line; });
}

std::string notesOf(const EqualizerImport &import) {
    std::string notes = "Imported.";
    if (import.fit)
        notes += fmt::format(" {} filters fitted onto {} bands: {:.2f} dB RMS, at most {:.2f} dB.",
                             import.takenFilters, equalizerBandCount, import.fit->rmsDB,
                             import.fit->maximumDB);
    return notes;
}

double distanceInOctaves(const std::vector<EQBand> &bands, float frequency) {
    double nearest = std::numeric_limits<double>::infinity();
    for (const EQBand &band : bands)
        if (band.frequency > 0.0F)
            nearest = std::min(
                nearest, std::abs(std::log2(static_cast<double>(band.frequency / frequency))));
    return nearest;
}

} // namespace

void fillWithFlatBands(std::vector<EQBand> &bands) {
    const std::vector<EQBand> octaves = EQBand::defaultBands();
    while (bands.size() < equalizerBandCount) {
        float farthest = octaves.front().frequency;
        for (const EQBand &octave : octaves)
            if (distanceInOctaves(bands, octave.frequency) > distanceInOctaves(bands, farthest))
                farthest = octave.frequency;
        bands.push_back(EQBand{.frequency = farthest});
    }
}

EqualizerImport importEqualizerText(std::string_view bytes, std::string_view name) {
    EqualizerText text = readEqualizerText(bytes);
    EqualizerImport import;
    import.preset = {
        .id = Uuid::random(), .name = std::string(trimmed(name)), .createdAt = Date::now()};
    if (import.preset.name.empty())
        throw InterchangeError(0, "the preset needs a name");
    import.gainDB = text.preampDB;
    import.limited = std::move(text.limited);
    import.skipped = std::move(text.skipped);

    dropInactive(text.bands, import.skipped);
    import.takenFilters = text.bands.size();
    std::vector<EQBand> &bands = import.preset.bands;
    std::ranges::transform(text.bands, std::back_inserter(bands), &TextBand::band);
    if (bands.size() > equalizerBandCount) {
        BandFit fit = fitBands(bands, equalizerBandCount);
        bands = std::move(fit.bands);
        import.fit = fit.error;
    }
    fillWithFlatBands(bands);
    std::ranges::stable_sort(bands, {}, &EQBand::frequency);
    import.preset.notes = notesOf(import);
    return import;
}

} // namespace quorbel
