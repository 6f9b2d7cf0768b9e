#include "ui/model/ModelFixture.h"

namespace quorbel::testing {
namespace {

class ProgramModelsTest : public ModelTest {
  protected:
    using Treatment = StreamTreatment;

    ProgramModelsTest() { programs().setWatched(true); }
    [[nodiscard]] ProgramListModel &programs() { return *app->programs(); }
    [[nodiscard]] ProgramRuleModel &rules() { return *app->programRules(); }

    /// Plays one stream of the program "films".
    void play(Treatment treatment, const std::string &title = "A film", bool isSurround = false) {
        hardware.setPlaybackStreams({{.serial = 1,
                                      .program = {.binary = "films", .name = "Films"},
                                      .title = title,
                                      .isCall = treatment == Treatment::call,
                                      .isSurround = isSurround,
                                      .treatment = treatment}});
        clock.runPending();
    }
    [[nodiscard]] std::vector<ProgramRule> inForce() const { return hardware.programRules().rules; }
};

TEST_F(ProgramModelsTest, SwitchesMakeRulesOnlyWhereTheyAreNeeded) {
    const ProgramNames films{.binary = "films"};
    const ProgramRule off{.program = films, .isProcessed = false};
    const ProgramRule on{.program = films};
    const ProgramRule inStereo{.program = films, .isMixedToStereo = true};
    using Rules = std::vector<ProgramRule>;
    struct {
        Treatment treatment;
        bool processed;
        Rules wanted;
        bool isSurround = false;
    } const steps[] = {
        {Treatment::processed, false, {off}},
        {Treatment::excluded, true, {}},
        {Treatment::call, true, {on}},
        {Treatment::call, false, {}},
        {Treatment::surround, true, {inStereo}, true},
        {Treatment::processed, false, {}, true},
        {Treatment::surround, true, {inStereo}, true},
        {Treatment::processed, false, {off}}, // on an output of two channels by now
    };
    for (const auto &[treatment, processed, wanted, isSurround] : steps) {
        play(treatment, "A film", isSurround);
        programs().setProcessed(0, processed);
        EXPECT_EQ(inForce(), wanted) << "step " << static_cast<int>(treatment) << processed;
    }
    // A rule for a title precedes one for all titles, and the switch changes the former.
    rules().setTitle(0, " *film ");
    EXPECT_EQ(inForce(), Rules({{.program = films, .title = "*film", .isProcessed = false}}));
    play(Treatment::excluded);
    programs().setProcessed(0, true);
    EXPECT_EQ(inForce(), Rules({{.program = films, .title = "*film"}}));
    play(Treatment::processed, "Something else");
    programs().setProcessed(0, false);
    EXPECT_EQ(inForce(), Rules({{.program = films, .title = "*film"}, off}));
    rules().setTitle(0, "*films");
    EXPECT_EQ(inForce().back(), off) << "the rule for all titles stays behind";
    rules().setTitle(0, "*film");
    rules().setTitle(1, "*film");
    EXPECT_EQ(inForce(), Rules({{.program = films, .title = "*film", .isProcessed = false}}));

    rules().setOthersProcessed(false);
    EXPECT_FALSE(hardware.programRules().processesOthers);
    play(Treatment::unlisted, "Something else");
    programs().setProcessed(0, true);
    EXPECT_EQ(inForce().size(), 2U);
    rules().forget(0);
    EXPECT_EQ(inForce(), Rules({on}));
    rules().setProcessed(0, false);
    EXPECT_EQ(inForce(), Rules({off}));
    rules().forget(5);
    programs().setProcessed(5, true);
    EXPECT_EQ(inForce(), Rules({off}));
}

TEST_F(ProgramModelsTest, FollowTheServerOnlyWhileWatchedAndTheFileAlways) {
    play(Treatment::moved);
    EXPECT_EQ(says(programs(), 0, "name"), "Films");
    EXPECT_EQ(says(programs(), 0, "status"), "Left alone: moved by you");
    EXPECT_EQ(says(programs(), 0, "processed"), true);
    programs().setWatched(false);
    play(Treatment::processed);
    EXPECT_EQ(says(programs(), 0, "status"), "Left alone: moved by you");
    programs().setWatched(true);
    EXPECT_EQ(says(programs(), 0, "status"), "Processed");
    programs().setProcessed(0, false);
    app.reset();
    state.reset();
    state = std::make_unique<AppState>(hardware, clock, (folder.path() / "state.json").string());
    EXPECT_EQ(inForce().size(), 1U) << "remembered";
    EXPECT_FALSE(state->persistWarning());
    app = std::make_unique<AppModel>(*state, clock);
    EXPECT_EQ(says(rules(), 0, "name"), "films");
}

} // namespace
} // namespace quorbel::testing
