#include "engine/EngineLifecycle.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

using State = EngineLifecycle::State;

TEST(EngineLifecycle, AStartKeepsTheStateShownUntilItFinishes) {
    EngineLifecycle lifecycle;
    EXPECT_EQ(lifecycle.state(), State::stopped());
    const auto start = lifecycle.beginStart();
    ASSERT_TRUE(start);
    EXPECT_EQ(*start, 1);
    EXPECT_EQ(lifecycle.state(), State::stopped());
    EXPECT_FALSE(lifecycle.beginStart()) << "a second start is ignored";
    EXPECT_TRUE(lifecycle.finishStart(*start));
    EXPECT_EQ(lifecycle.state(), State::running());
    EXPECT_FALSE(lifecycle.beginStart()) << "it runs already";
    EXPECT_FALSE(lifecycle.finishStart(*start)) << "a start finishes once";
}

TEST(EngineLifecycle, AStopMakesTheStartStale) {
    EngineLifecycle lifecycle;
    const auto overtaken = lifecycle.beginStart();
    lifecycle.end();
    EXPECT_FALSE(lifecycle.isCurrent(*overtaken));
    EXPECT_FALSE(lifecycle.finishStart(*overtaken));
    lifecycle.failStart(*overtaken, "too late");
    EXPECT_EQ(lifecycle.state(), State::stopped());

    // Nor does the old generation touch a newer start.
    const auto newer = lifecycle.beginStart();
    EXPECT_FALSE(lifecycle.finishStart(*overtaken));
    lifecycle.failStart(*overtaken, "too late");
    EXPECT_TRUE(lifecycle.isCurrent(*newer));
    EXPECT_TRUE(lifecycle.finishStart(*newer));
}

TEST(EngineLifecycle, AFailureIsShownUntilAStartSucceeds) {
    EngineLifecycle lifecycle;
    lifecycle.failStart(*lifecycle.beginStart(), "no device");
    EXPECT_EQ(lifecycle.state(), State::error("no device"));
    EXPECT_NE(lifecycle.state(), State::error("another reason"));

    const auto next = lifecycle.beginStart();
    ASSERT_TRUE(next);
    EXPECT_EQ(lifecycle.state(), State::error("no device")) << "shown until the start has finished";
    EXPECT_TRUE(lifecycle.finishStart(*next));
    EXPECT_EQ(lifecycle.state(), State::running());
}

TEST(EngineLifecycle, ARunningEngineCanFail) {
    EngineLifecycle lifecycle;
    const auto start = lifecycle.beginStart();
    EXPECT_TRUE(lifecycle.finishStart(*start));
    const auto before = lifecycle.generation();
    lifecycle.fail("unplugged");
    EXPECT_EQ(lifecycle.state(), State::error("unplugged"));
    EXPECT_EQ(lifecycle.generation(), before + 1);
    EXPECT_TRUE(lifecycle.beginStart());
}

} // namespace
} // namespace quorbel
