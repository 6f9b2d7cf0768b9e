#include "settings/state/OutputProfilesFile.h"

#include "settings/records/SettingsFile.h"
#include "settings/state/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorbel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class OutputProfilesFileTest : public ::testing::Test {
  protected:
    [[nodiscard]] OutputProfilesFile program() const {
        return OutputProfilesFile(folder.path() / "state.json");
    }
    [[nodiscard]] std::vector<OutputProfile> saved() const {
        OutputProfilesFile reader = program();
        EXPECT_FALSE(reader.read());
        return reader.profiles();
    }

    const TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "profiles.json";
    const OutputProfile headset{
        .key = {.card = "bluez_card.00", .bluetooth = OutputIdentity::Bluetooth::music},
        .label = "Headset",
        .use = OutputProfile::Use::preset,
        .presetID = Uuid::random(),
        .presetName = "Bass \"Boost\"",
        .own = OutputSound{.bands = EQBand::defaultBands(), .presetGainDB = -2.5F}};
    const OutputProfile speaker{.key = {.card = "pci", .route = "speaker"},
                                .use = OutputProfile::Use::leaveAlone};
    const OutputProfile any{.use = OutputProfile::Use::flat};
};

TEST_F(OutputProfilesFileTest, KeepsEveryFieldAndKeysThatItDoesNotKnow) {
    EXPECT_THAT(saved(), IsEmpty());
    EXPECT_FALSE(exists(file)) << "reading makes no file";
    program().write({headset, speaker, any});
    EXPECT_THAT(saved(), ElementsAre(headset, speaker, any));

    write(file, R"({"later":[1],"profiles":[{"output":{"node":"hdmi"},"use":"flat","later":2},)"
                R"({"output":{},"use":"flat"}],"version":1})");
    OutputProfilesFile profiles = program();
    EXPECT_FALSE(profiles.read());
    ASSERT_EQ(profiles.profiles().size(), 2U);
    OutputProfile hdmi = profiles.profiles().front();
    EXPECT_EQ(hdmi.key, OutputKey{.node = "hdmi"});
    hdmi.use = OutputProfile::Use::leaveAlone;
    profiles.write({any, hdmi, speaker});
    EXPECT_THAT(contentOf(file), HasSubstr(R"("later":[1])"));
    EXPECT_THAT(contentOf(file),
                HasSubstr(R"({"label":"","later":2,"output":{"node":"hdmi"},"use":"leaveAlone"})"));
    EXPECT_THAT(saved(), ElementsAre(hdmi, any, speaker));
}

TEST_F(OutputProfilesFileTest, TwoProgramsKeepEachOthersChanges) {
    OutputProfilesFile one = program();
    one.write({headset, any});
    OutputProfilesFile other = program();
    other.read();
    other.write({any, speaker});
    OutputProfile louder = any;
    louder.use = OutputProfile::Use::leaveAlone;
    one.write({headset, louder});
    EXPECT_THAT(saved(), ElementsAre(louder, speaker)) << "which one has not seen";
    EXPECT_THAT(one.profiles(), ElementsAre(louder, speaker));
}

TEST_F(OutputProfilesFileTest, DamagedFilesAreSetAsideAndLaterOnesLeftAsTheyAre) {
    for (const std::string text :
         {"{", "{}", R"({"version":1,"profiles":[{"use":"flat"}]})",
          R"({"version":1,"profiles":[{"output":{"card":1},"use":"flat"}]})",
          R"({"version":1,"profiles":[{"output":{"bluetooth":"none"},"use":"flat"}]})",
          R"({"version":1,"profiles":[{"output":{},"use":"loud"}]})",
          R"({"version":1,"profiles":[{"output":{},"use":"flat","own":{"bands":[]}}]})"}) {
        write(file, text);
        OutputProfilesFile profiles = program();
        const auto warning = profiles.read();
        ASSERT_TRUE(warning) << text;
        EXPECT_THAT(*warning, HasSubstr("No output has a profile now."));
        EXPECT_FALSE(exists(file));
        profiles.write({any});
        EXPECT_THAT(saved(), ElementsAre(any));
    }
    const std::string later = R"({"version":2,"profiles":{}})";
    write(file, later);
    OutputProfilesFile profiles = program();
    EXPECT_THROW(profiles.read(), SettingsFileError);
    EXPECT_THROW(profiles.write({any}), SettingsFileError);
    EXPECT_EQ(contentOf(file), later);
}

} // namespace
} // namespace quorbel::testing
