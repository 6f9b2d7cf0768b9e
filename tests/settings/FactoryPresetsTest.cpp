#include "settings/presets/FactoryPresets.h"

#include "settings/records/json/SettingsCoding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

namespace quorbel {
namespace {

const Preset &preset(const std::string &name) {
    return *std::ranges::find(factoryPresets(), name, &Preset::name);
}

TEST(FactoryPresets, TheLibraryIsWholeAndUsable) {
    const auto &presets = factoryPresets();
    ASSERT_EQ(presets.size(), 33U);
    EXPECT_EQ(presets.front().name, "Flat");
    EXPECT_EQ(presets.back().name, "Warm / Long Session");
    std::set<std::string> ids;
    std::set<std::string> bandIDs;
    for (const Preset &entry : presets) {
        SCOPED_TRACE(entry.name);
        ids.insert(entry.id.text());
        EXPECT_EQ(entry.createdAt, Date::unixEpoch());
        EXPECT_NE(entry.category, Preset::Category::user);
        EXPECT_NE(entry.notes, "");
        ASSERT_EQ(entry.bands.size(), 10U);
        const auto defaults = EQBand::defaultBands();
        for (std::size_t index = 0; index < 10; ++index) {
            const EQBand &band = entry.bands[index];
            bandIDs.insert(band.id.text());
            EXPECT_EQ(band.frequency, defaults[index].frequency);
            EXPECT_EQ(band.filterType, defaults[index].filterType);
            EXPECT_FALSE(band.bypassed);
            EXPECT_LE(std::abs(band.gainDB), 6.0F);
        }
        EXPECT_EQ(decodeRecord<Preset>(encodeRecord(entry)), entry);
    }
    EXPECT_EQ(ids.size(), 33U);
    EXPECT_EQ(bandIDs.size(), 330U);
    EXPECT_EQ(&factoryPresets(), &presets);
}

// Saved settings refer to presets by this id, so it must never change. Expected values: Python's
// hashlib over the same text.
TEST(FactoryPresets, IdsFollowFromTheNameAlone) {
    EXPECT_EQ(stableFactoryID("Flat").text(), "0AF4AEBF-A952-50FE-B0E2-06CC11DE9AA4");
    EXPECT_EQ(stableFactoryID("MR5 Desk — Late Night").text(),
              "EB5D401E-E1ED-52BC-91D9-FF916A82D1BF");
    EXPECT_EQ(preset("MR5 Desk — Late Night").id, stableFactoryID("MR5 Desk — Late Night"));
    for (const Preset &entry : factoryPresets()) {
        EXPECT_EQ(entry.id.text()[14], '5');
        EXPECT_NE(std::string("89AB").find(entry.id.text()[19]), std::string::npos);
    }
}

} // namespace
} // namespace quorbel
