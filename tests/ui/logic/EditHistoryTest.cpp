#include "ui/logic/EditHistory.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

/// One value, the global gain, and the history of its changes.
class EditHistoryTest : public ::testing::Test {
  protected:
    void set(float gainDB, const std::string &key = "gain") {
        EditState after = state_;
        after.globalGainDB = gainDB;
        history.record(state_, after, "Change of " + key, key, now);
        state_ = after;
    }
    void undo() { state_ = history.undo().before; }
    void redo() { state_ = history.redo().after; }
    [[nodiscard]] float gain() const { return state_.globalGainDB; }
    [[nodiscard]] int stepsBack() {
        int steps = 0;
        for (; history.canUndo(); ++steps)
            undo();
        return steps;
    }

    EditHistory history;
    double now = 0.0;

  private:
    EditState state_;
};

TEST_F(EditHistoryTest, UndoesAndRedoesUntilANewChangeEndsRedo) {
    EXPECT_FALSE(history.canUndo());
    set(1, "a");
    set(2, "b");
    EXPECT_EQ(history.undoable().what, "Change of b");
    undo();
    EXPECT_EQ(gain(), 1);
    EXPECT_EQ(history.redoable().what, "Change of b");
    undo();
    EXPECT_EQ(gain(), 0);
    EXPECT_FALSE(history.canUndo());
    set(0, "c");
    EXPECT_TRUE(history.canRedo()) << "what changes nothing is no step";
    redo();
    redo();
    EXPECT_EQ(gain(), 2);
    undo();
    set(3, "c");
    EXPECT_FALSE(history.canRedo());
    undo();
    EXPECT_EQ(gain(), 1);
}

TEST_F(EditHistoryTest, AGestureOfAnyLengthIsOneStep) {
    history.beginGesture();
    for (int i = 1; i <= 5; ++i) {
        now += 3.0;
        set(static_cast<float>(i), i % 2 == 0 ? "frequency" : "gain");
    }
    history.endGesture();
    set(9, "gain");
    undo();
    EXPECT_EQ(gain(), 5) << "the change after the gesture is not part of it";
    undo();
    EXPECT_EQ(gain(), 0);
    EXPECT_FALSE(history.canUndo());
}

TEST_F(EditHistoryTest, AGestureThatEndsWhereItBeganIsNoStep) {
    set(1, "a");
    history.beginGesture();
    set(5);
    set(1);
    history.endGesture();
    EXPECT_EQ(stepsBack(), 1);
}

TEST_F(EditHistoryTest, AGestureLeftOpenEndsWithTheNextOrWithUndo) {
    history.beginGesture();
    set(1);
    history.beginGesture();
    set(2);
    undo();
    EXPECT_EQ(gain(), 1);
    set(3);
    EXPECT_EQ(stepsBack(), 2);
    EXPECT_EQ(gain(), 0);
}

TEST_F(EditHistoryTest, BurstsOfTheSameThingAreOneStep) {
    set(1, "a");
    now += 0.5;
    set(2, "a");
    now += 0.7;
    set(3, "a");
    now += 0.1;
    set(4, "b");
    now += EditHistory::burstSeconds + 0.1;
    set(5, "b");
    undo();
    EXPECT_EQ(gain(), 4) << "after a pause it is another step";
    undo();
    EXPECT_EQ(gain(), 3) << "another thing is another step";
    undo();
    EXPECT_EQ(gain(), 0);
}

TEST_F(EditHistoryTest, ForgetsTheOldestSteps) {
    for (std::size_t i = 0; i < EditHistory::maximumSteps + 5; ++i)
        set(static_cast<float>(i + 1), std::to_string(i));
    EXPECT_EQ(stepsBack(), static_cast<int>(EditHistory::maximumSteps));
    EXPECT_EQ(gain(), 5);
}

} // namespace
} // namespace quorbel
