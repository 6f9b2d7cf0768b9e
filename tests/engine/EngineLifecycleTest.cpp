#include "engine/EngineLifecycle.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

using State = EngineLifecycle::State;

TEST(EngineLifecycle, AStartFinishesOnceUnlessAStopOvertakesIt) {
    EngineLifecycle lifecycle;
    const auto overtaken = lifecycle.beginStart();
    EXPECT_FALSE(lifecycle.beginStart()) << "one at a time";
    EXPECT_EQ(lifecycle.state(), State::stopped()) << "shown until the start finishes";
    lifecycle.end();
    EXPECT_FALSE(lifecycle.finishStart(*overtaken));
    const auto start = lifecycle.beginStart();
    EXPECT_FALSE(lifecycle.finishStart(*overtaken));
    lifecycle.failStart(*overtaken, "too late");
    EXPECT_TRUE(lifecycle.isCurrent(*start));
    EXPECT_TRUE(lifecycle.finishStart(*start));
    EXPECT_EQ(lifecycle.state(), State::running());
    EXPECT_FALSE(lifecycle.finishStart(*start)) << "a start finishes once";
    EXPECT_FALSE(lifecycle.beginStart()) << "it runs already";

    const auto before = lifecycle.generation();
    lifecycle.fail("unplugged");
    EXPECT_EQ(lifecycle.state(), State::error("unplugged"));
    EXPECT_EQ(lifecycle.generation(), before + 1);
    const auto next = lifecycle.beginStart();
    EXPECT_EQ(lifecycle.state(), State::error("unplugged")) << "shown until a start succeeds";
    EXPECT_TRUE(lifecycle.finishStart(*next));
    EXPECT_EQ(lifecycle.state(), State::running());
}

} // namespace
} // namespace quorbel
