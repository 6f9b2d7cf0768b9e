// What the screens print.

#include "settings/presets/FactoryPresets.h"
#include "ui/logic/Destinatie.h"
#include "ui/logic/DrawnCurves.h"
#include "ui/logic/NumberFormat.h"
#include "ui/logic/PanelTexts.h"
#include "ui/logic/PresetTexts.h"
#include "ui/logic/Stages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <limits>
#include <regex>

namespace quorbel {
namespace {

using State = EngineLifecycle::State;
using ::testing::DoubleNear;
using ::testing::ElementsAre;

TEST(NumberFormatTest, NothingPrintsAsMinusZero) {
    EXPECT_EQ(fixedText(-0.0, 1), "0.0");
    EXPECT_EQ(fixedText(-0.04, 1), "0.0");
    EXPECT_EQ(fixedText(-0.3, 0), "0");
    EXPECT_EQ(signedText(-0.0, 1), "+0.0");
    EXPECT_EQ(signedText(-0.04, 1), "+0.0");
    EXPECT_EQ(signedText(-0.06, 1), "-0.1");
    EXPECT_EQ(gainText(2.0), "+2.0 dB");
    EXPECT_EQ(gainText(-11.96), "-12.0 dB");
    EXPECT_EQ(fixedText(std::numeric_limits<double>::quiet_NaN(), 1), "–");
}

TEST(NumberFormatTest, FrequencyLabelsBranchOnTheValue) {
    EXPECT_EQ(frequencyLabel(31.5F), "31.5");
    EXPECT_EQ(frequencyLabel(63.0F), "63");
    EXPECT_EQ(frequencyLabel(999.0F), "999");
    EXPECT_EQ(frequencyLabel(999.97F), "1000.0");
    EXPECT_EQ(frequencyLabel(1000.0F), "1k");
    EXPECT_EQ(frequencyLabel(2500.0F), "2.5k");
    EXPECT_EQ(frequencyLabel(4000.0F), "4k");
    EXPECT_EQ(frequencyLabel(4001.0F), "4.0k");
    EXPECT_EQ(frequencyLabel(16000.0F), "16k");
    EXPECT_EQ(frequencyText(31.5), "31.5 Hz");
    EXPECT_EQ(frequencyText(63.0), "63 Hz");
    EXPECT_EQ(frequencyText(2537.4), "2537 Hz");
}

TEST(PanelTextsTest, SayWhatTheEngineDoes) {
    EXPECT_EQ(stateWord(State::stopped()), "STOPPED");
    EXPECT_EQ(subtitlu(State::running(), "Custom"), "48 kHz · 32 ms · Custom");
    EXPECT_EQ(subtitlu(State::error("No output device selected."), "Flat"),
              "No output device selected.");
    EXPECT_EQ(outlookText(State::stopped(), {}), "");
    EXPECT_EQ(outlookText(State::error("no"), {}),
              "The last start failed. Press Start to try again.");
    EXPECT_EQ(outlookText(State::error("no"), Awaited::nextTry),
              "Trying again; processing comes back by itself");
    MixerConfig mixer;
    mixer.limiterThresholdDB = -0.3F;
    EXPECT_EQ(protectie(mixer), "Limiter on at -0.3 dBFS");
    mixer.limiterEnabled = false;
    EXPECT_EQ(secondLine(true, mixer), "Limiter off — a positive trim can clip");
    EXPECT_EQ(lossesText({.cutFrames = 1, .silentFrames = 480, .lostCycles = 2}),
              "1 frame cut · 480 frames of silence · 2 cycles lost");
}

TEST(StageHelpTest, TheManualsSectionsBeginWithIt) {
    std::ifstream file(QUORBEL_MANUAL);
    const std::string manual = std::regex_replace(
        std::string(std::istreambuf_iterator<char>(file), {}), std::regex("\\s+"), " ");
    ASSERT_FALSE(manual.empty()) << QUORBEL_MANUAL;
    for (const auto &[stage, help] : stageHelps())
        EXPECT_NE(manual.find("### " + std::string(stage) + " " + std::string(help)),
                  std::string::npos)
            << stage;
    EXPECT_EQ(stageHelp("Kitchen"), "");
}

TEST(SpectrumFillTest, BandsWithoutALevelTakeItFromThoseBesideThem) {
    EXPECT_THAT(filledLevels({0.8, 0, 0.4, 0, 0, 1.0, 0}, {1, 0, 1, 0, 0, 1, 0}),
                ElementsAre(0.8, DoubleNear(0.6, 1e-9), 0.4, DoubleNear(0.6, 1e-9),
                            DoubleNear(0.8, 1e-9), 1.0, 1.0));
    EXPECT_THAT(filledLevels({0, 0, 0.5, 0}, {0, 0, 1, 1}), ElementsAre(0.5, 0.5, 0.5, 0));
    EXPECT_THAT(filledLevels({0, 0}, {0, 0}), ElementsAre(0, 0));
}

TEST(PresetTextsTest, DescriptionCountsBandsAndStages) {
    const auto of = [](const char *name) {
        return descriere(*std::ranges::find(factoryPresets(), name, &Preset::name));
    };
    EXPECT_EQ(of("Flat"), "10 bands");
    EXPECT_EQ(of("Bass Heavy"), "10 bands · 1 spatial stage");
    EXPECT_EQ(of("Cinema / Film"), "10 bands · 3 spatial stages");
}

TEST(PresetTextsTest, FilesAreNamedAfterPresetsAsFarAsFileSystemsAllow) {
    EXPECT_EQ(fileNameFor("MR5 Studio / Mixing"), "MR5 Studio - Mixing");
    EXPECT_EQ(fileNameFor("..a:b\\c\n\"d\"?. "), "a-b-c--d--");
    EXPECT_EQ(fileNameFor(". ."), "Preset");
    std::string umlauts;
    for (int letter = 0; letter < 150; ++letter)
        umlauts += "\u00fc";
    EXPECT_EQ(fileNameFor("x" + umlauts), "x" + umlauts.substr(0, 198)) << "no half character";
}

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
