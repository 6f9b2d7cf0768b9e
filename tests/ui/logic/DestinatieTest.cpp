#include "ui/logic/Destinatie.h"

#include "settings/presets/FactoryPresets.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

TEST(DestinatieTest, BadgesTellOfWhatIsBehindThem) {
    SpatialConfig spatial;
    spatial.voiceEnabled = spatial.widenerEnabled = true;
    spatial.toneBassDB = 6; // tone is no stage
    MixerConfig mixer;
    mixer.crossfeedEnabled = true;
    std::vector<Preset> presets = factoryPresets();
    presets.push_back({.name = "My Preset"});
    const InsigneSource source{10, spatial, mixer, 3, presets};

    EXPECT_EQ(insigna(Destinatie::equalizer, source), "10 bands");
    EXPECT_EQ(insigna(Destinatie::spatial, source), "2 on");
    EXPECT_EQ(insigna(Destinatie::mixer, source), "1 on");
    EXPECT_EQ(insigna(Destinatie::devices, source), "3 found");
    EXPECT_EQ(insigna(Destinatie::limiter, source), "on");
    EXPECT_EQ(insigna(Destinatie::presetsAll, source), "34");
    EXPECT_EQ(insigna(Destinatie::presetsFactory, source), "33");
    EXPECT_EQ(insigna(Destinatie::presetsMine, source), "1");
    EXPECT_EQ(insigna(Destinatie::setup, source), "");
    mixer.limiterEnabled = false;
    EXPECT_EQ(insigna(Destinatie::limiter, source), "off");
}

} // namespace
} // namespace quorbel
