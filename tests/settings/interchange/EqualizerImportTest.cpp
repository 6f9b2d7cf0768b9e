#include "settings/interchange/EqualizerImport.h"

#include "settings/interchange/BandResponse.h"
#include "settings/interchange/EqualizerText.h"
#include "settings/interchange/PresetFile.h"
#include "settings/presets/FactoryPresets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace quorbel {
namespace {

using testing::HasSubstr;

/// Text of `count` filters in descending frequency; `off` lists the disabled ones from 1.
std::string filters(std::size_t count, const std::vector<std::size_t> &off = {}) {
    std::string text;
    for (std::size_t i = 1; i <= count; ++i) {
        const bool isOff = std::find(off.begin(), off.end(), i) != off.end();
        text += "Filter " + std::to_string(i) + (isOff ? ": OFF" : ": ON") + " PK Fc " +
                std::to_string(30 * (count - i + 1) * (count - i + 1)) + " Hz Gain -" +
                std::to_string(i % 4 + 1) + ".3 dB Q 1.41\n";
    }
    return text;
}

TEST(EqualizerImport, UpToTenFiltersAreTakenAsTheyAre) {
    for (const std::size_t count : {1U, 7U, 10U}) {
        const std::string text = "Preamp: -6.2 dB\n" + filters(count);
        const EqualizerImport import = importEqualizerText(text, "  My headphones \n");
        EXPECT_EQ(import.preset.name, "My headphones");
        EXPECT_EQ(import.preset.category, Preset::Category::user);
        EXPECT_EQ(import.preset.spatial, SpatialConfig());
        EXPECT_EQ(import.gainDB, -6.2F);
        EXPECT_EQ(import.takenFilters, count);
        EXPECT_FALSE(import.fit);

        // Flat bands fill up to ten: beyond a shorter list the equaliser keeps its old bands.
        ASSERT_EQ(import.preset.bands.size(), 10U);
        const EqualizerText read = readEqualizerText(text);
        std::vector<EQBand> flat = import.preset.bands;
        for (const TextBand &written : read.bands)
            EXPECT_EQ(std::erase_if(flat,
                                    [&](EQBand band) {
                                        band.id = written.band.id;
                                        return band == written.band;
                                    }),
                      1U)
                << "a filter as written";
        for (const EQBand &band : flat)
            EXPECT_EQ(band.gainDB, 0.0F);
        EXPECT_EQ(std::ranges::adjacent_find(import.preset.bands, std::greater_equal(),
                                             &EQBand::frequency),
                  import.preset.bands.end())
            << "each at a frequency of its own, in their order";
    }
}

TEST(EqualizerImport, FiltersWithoutEffectMakeRoomBeforeAnythingIsFitted) {
    const EqualizerImport import = importEqualizerText(
        "Filter: ON PK Fc 50 Hz Gain 0 dB Q 1\nnonsense\n" + filters(12, {3, 8, 12}), "x");
    EXPECT_FALSE(import.fit);
    EXPECT_EQ(import.takenFilters, 10U) << "the earliest one without effect still fits";
    ASSERT_EQ(import.preset.bands.size(), 10U);
    EXPECT_EQ(std::ranges::count(import.preset.bands, 0.0F, &EQBand::gainDB), 1);
    std::vector<std::size_t> lines;
    for (const LineNote &note : import.skipped)
        lines.push_back(note.line);
    EXPECT_EQ(lines, (std::vector<std::size_t>{2, 5, 10, 14}));
    EXPECT_EQ(import.skipped[1].reason, "it is off, and the active ones take all ten bands");
}

TEST(EqualizerImport, MoreThanTenActiveFiltersAreFitted) {
    const EqualizerImport import = importEqualizerText(filters(15), "x");
    ASSERT_TRUE(import.fit);
    EXPECT_EQ(import.preset.bands.size(), 10U);
    EXPECT_GT(import.fit->rmsDB, 0.0);
    EXPECT_LE(import.fit->rmsDB, import.fit->maximumDB);
    EXPECT_LT(import.fit->rmsDB, 0.5);
    EXPECT_THAT(import.preset.notes, HasSubstr("15 filters fitted onto 10 bands"));
}

TEST(EqualizerImport, APreampAloneIsAFlatPreset) {
    const EqualizerImport import = importEqualizerText("Preamp: 3 dB", "x");
    EXPECT_EQ(import.preset.bands.size(), 10U);
    EXPECT_EQ(responseError(import.preset.bands, {}).maximumDB, 0.0);
    EXPECT_THROW((void)importEqualizerText("Preamp: 3 dB", " \t"), InterchangeError);
}

TEST(EqualizerImport, AnAdoptedFileIsHeardAfterAnySettings) {
    Persisted settings;
    settings.bands = factoryPresets()[9].bands;
    settings.spatial = factoryPresets()[9].spatial;
    settings.eqGlobalGainDB = -4.0F;
    settings.outputDeviceUID = "uid";
    Persisted expected = settings;
    const EqualizerImport import = importEqualizerText(filters(3), "Mine");
    expected.bands = import.preset.bands;
    expected.spatial = SpatialConfig();
    expected.activePresetID = import.preset.id;
    expected.activePresetName = "Mine";
    expected.presets = {import.preset};
    adoptPreset(settings, import.preset);
    EXPECT_EQ(settings, expected);
}

} // namespace
} // namespace quorbel
