// Texts of the screens.

#include "settings/presets/FactoryPresets.h"
#include "ui/logic/Destinatie.h"
#include "ui/logic/DrawnCurves.h"
#include "ui/logic/NumberFormat.h"
#include "ui/logic/PanelTexts.h"
#include "ui/logic/PresetTexts.h"
#include "ui/logic/Stages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST(PresetTextsTest, FilesAreNamedAfterPresetsAsFarAsFileSystemsAllow) {
    EXPECT_EQ(fileNameFor("MR5 Studio / Mixing"), "MR5 Studio - Mixing");
    EXPECT_EQ(fileNameFor("..a:b\\c\n\"d\"?. "), "a-b-c--d--");
    EXPECT_EQ(fileNameFor(". ."), "Preset");
    std::string umlauts;
    for (int letter = 0; letter < 150; ++letter)
        umlauts += "\u00fc";
    EXPECT_EQ(fileNameFor("x" + umlauts), "x" + umlauts.substr(0, 198)) << "no half character";
}

} // namespace
} // namespace quorbel
