#include "ui/logic/PanelTexts.h"
#include "ui/model/ModelFixture.h"

#include <string>
#include <vector>

namespace quorbel::testing {
namespace {

class OutputProfileModelTest : public ModelTest {
  protected:
    [[nodiscard]] OutputProfileModel &profiles() { return *app->profiles(); }
    /// Every row as "name: profile (place)".
    [[nodiscard]] std::vector<std::string> rows() {
        std::vector<std::string> rows;
        for (int row = 0; row < profiles().count(); ++row) {
            const auto said = [&](const char *role) {
                return says(profiles(), row, role).toString().toStdString();
            };
            rows.push_back(said("name") + ": " + said("profile") +
                           (said("place").empty() ? "" : " [" + said("place") + "]"));
        }
        return rows;
    }
    void choose(int row, const QString &choice) {
        const auto index = profiles().choices().indexOf(choice);
        ASSERT_GE(index, 0) << choice.toStdString();
        profiles().choose(row, static_cast<int>(index));
    }
};

TEST_F(OutputProfileModelTest, ListsEveryKnownOutputWithItsProfile) {
    using ::testing::ElementsAre;
    hardware.setIdentity("hdmi", {.card = "pci", .route = "analog-output-headphones"});
    app->devices()->refresh();
    EXPECT_THAT(rows(), ElementsAre("Speakers: No profile of its own [In use]",
                                    "HDMI, Headphones: No profile of its own",
                                    "Any other output: No profile of its own"));
    choose(1, "Bass Heavy");
    EXPECT_EQ(says(profiles(), 1, "choice").toInt(), profiles().choices().indexOf("Bass Heavy"));
    EXPECT_THAT(rows(), ElementsAre("Speakers: No profile of its own [In use]",
                                    "HDMI, Headphones: Bass Heavy", "Any other output: Flat"));
    hardware.removeDevice("hdmi");
    app->devices()->refresh();
    app->setting("bassEnabled")->toggle();
    EXPECT_THAT(rows(), ElementsAre("Speakers: No profile of its own [In use]",
                                    "HDMI, Headphones: Bass Heavy [Not connected]",
                                    "Any other output: Flat (modified)"));
    profiles().forget(1);
    profiles().forget(1);
    EXPECT_THAT(rows(), ElementsAre("Speakers: No profile of its own [In use]",
                                    "Any other output: No profile of its own"));
    EXPECT_TRUE(engine().spatial().bassEnabled);

    hardware.setIdentity("speakers",
                         {.card = "bluez", .bluetooth = OutputIdentity::Bluetooth::call});
    app->devices()->refresh();
    choose(1, "Flat");
    EXPECT_EQ(rows().front(), "Speakers, call: Left alone, as every call [In use]");
    profiles().choose(7, 0);
    profiles().choose(0, 1000);
}

TEST_F(OutputProfileModelTest, LeavingAnOutputAloneIsSaidAndCanBeStopped) {
    run();
    choose(0, "Leave this output alone");
    EXPECT_FALSE(app->engine()->running());
    EXPECT_TRUE(app->engine()->wanted());
    EXPECT_EQ(app->engine()->stateWord(), "STOPPED");
    EXPECT_EQ(app->engine()->outlook(), leftAloneText);
    choose(0, "Settings of now");
    clock.runPending();
    EXPECT_TRUE(app->engine()->running());
    EXPECT_EQ(app->engine()->outlook(), "");
    choose(0, "Leave this output alone");
    app->engine()->toggle();
    EXPECT_FALSE(app->engine()->wanted());
    EXPECT_EQ(app->engine()->outlook(), "");
}

TEST_F(OutputProfileModelTest, UndoDoesNotReachBehindASwitch) {
    app->setting("bassEnabled")->toggle();
    ASSERT_TRUE(app->history()->canUndo());
    choose(1, "Bass Heavy");
    ASSERT_TRUE(app->history()->canUndo()) << "the settings are the same";
    app->devices()->select("hdmi");
    EXPECT_FALSE(app->history()->canUndo()) << "they were those of another output";
}

} // namespace
} // namespace quorbel::testing
