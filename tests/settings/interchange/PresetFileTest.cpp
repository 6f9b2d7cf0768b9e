#include "settings/interchange/PresetFile.h"

#include "settings/interchange/InterchangeError.h"
#include "settings/presets/FactoryPresets.h"
#include "settings/records/json/CodingError.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

TEST(PresetFile, APresetComesBackAsOneOfTheUsersOwn) {
    for (const Preset &preset : factoryPresets()) {
        Preset read = readPresetFile(writePresetFile(preset));
        EXPECT_NE(read.id, preset.id);
        EXPECT_EQ(read.category, Preset::Category::user);
        read.id = preset.id;
        read.category = preset.category;
        EXPECT_EQ(read, preset);
    }
}

TEST(PresetFile, AShortListOfBandsIsFilledUp) {
    Preset preset = factoryPresets()[1];
    preset.bands.resize(4);
    const Preset read = readPresetFile(writePresetFile(preset));
    ASSERT_EQ(read.bands.size(), 10U);
    EXPECT_EQ(read.bands[3], preset.bands[3]);
    EXPECT_EQ(read.bands[9].gainDB, 0.0F);
}

TEST(PresetFile, AByteOrderMarkIsNoReasonToRefuseButANameOfBlanksIs) {
    Preset preset = factoryPresets()[1];
    const std::string marked = "\xEF\xBB\xBF" + writePresetFile(preset);
    EXPECT_TRUE(isPresetFile(marked));
    EXPECT_FALSE(isPresetFile("\xEF\xBB\xBFPreamp: 0 dB"));
    EXPECT_EQ(readPresetFile(marked).bands, preset.bands);
    EXPECT_THROW((void)readPresetFile(marked, " \t"), InterchangeError);
    preset.name = " ";
    EXPECT_THROW((void)readPresetFile(writePresetFile(preset)), InterchangeError);
    EXPECT_EQ(readPresetFile(writePresetFile(preset), "Given").name, "Given");
}

} // namespace
} // namespace quorbel
