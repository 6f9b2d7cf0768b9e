#include "platform/threads/SerialQueue.h"

#include "platform/threads/ManualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>
#include <vector>

namespace quorbel {
namespace {

TEST(ThreadedSerialQueueTest, CancelWaitsForTheRunningTaskAndNothingRunsAfterwards) {
    auto queue = threadedSerialQueues()("test");
    for (int round = 0; round < 50; ++round) {
        auto alive = std::make_unique<std::atomic<int>>(0);
        std::promise<void> ran;
        std::atomic<bool> first{true};
        const auto timer = queue->repeating(1e-4, 1e-4, [&, counter = alive.get()] {
            ++*counter;
            if (first.exchange(false))
                ran.set_value();
        });
        ran.get_future().wait();
        queue->cancel(timer);
        alive.reset(); // a task still running or to come would touch freed memory
    }
}

TEST(ThreadedSerialQueueTest, ATimerMayCancelItselfAndEndsWithTheQueue) {
    std::atomic<int> ticks{0};
    {
        auto queue = threadedSerialQueues()("test");
        std::promise<SerialQueue::TimerID> timer;
        std::promise<void> cancelled;
        timer.set_value(queue->repeating(1e-4, 1e-4, [&] {
            ++ticks;
            queue->cancel(timer.get_future().get());
            cancelled.set_value();
        }));
        cancelled.get_future().wait();
        queue->repeating(1e-4, 1e-4, [] {});
    }
    EXPECT_EQ(ticks, 1);
}

TEST(SharedThreadSerialQueueTest, QueuesEndOneByOneAndTheThreadWithTheLast) {
    const auto queues = sharedThreadSerialQueues("shared");
    std::atomic<int> firstTicks{0};
    std::promise<std::thread::id> firstThread;
    std::promise<std::thread::id> secondThread;
    auto first = queues("first");
    auto second = queues("second");
    std::atomic<bool> told{false};
    first->repeating(1e-4, 1e-4, [&] {
        if (!told.exchange(true))
            firstThread.set_value(std::this_thread::get_id());
        ++firstTicks;
    });
    std::atomic<bool> secondTold{false};
    const auto tell = second->repeating(1e-4, 1e-4, [&] {
        if (!secondTold.exchange(true))
            secondThread.set_value(std::this_thread::get_id());
    });
    EXPECT_EQ(firstThread.get_future().get(), secondThread.get_future().get());
    second->cancel(tell);

    first.reset();
    const int ended = firstTicks;
    std::promise<void> stillRuns;
    std::atomic<int> ticks{0};
    second->repeating(1e-4, 1e-4, [&] {
        if (++ticks == 20)
            stillRuns.set_value();
    });
    stillRuns.get_future().wait();
    EXPECT_EQ(firstTicks, ended) << "the other queue's timer went with it";

    second.reset();
    std::promise<void> again;
    std::atomic<bool> ranAgain{false};
    auto third = queues("third");
    third->repeating(1e-4, 1e-4, [&] {
        if (!ranAgain.exchange(true))
            again.set_value();
    });
    again.get_future().wait();
}

TEST(ClockedSerialQueueTest, TicksAtExactlyItsTimesAndNotBeyondItsEnd) {
    ManualClock clock;
    std::vector<int> blocksOfTicks;
    int block = 0;
    bool leaked = false;
    {
        auto queue = clockedSerialQueues(clock)("test");
        queue->repeating(0.1, 0.05, [&] { blocksOfTicks.push_back(block); });
        SerialQueue::TimerID once = 0;
        once = queue->repeating(0.01, 0.01, [&] { queue->cancel(once); });
        for (block = 1; block <= 25; ++block)
            clock.advance(512 / 48'000.0);
        queue->repeating(0.001, 0.001, [&] { leaked = true; });
    }
    clock.advance(1.0);
    // Frames 4800, 7200, 9600 and 12000 lie in the blocks that end at 5120, 7680, 9728 and 12288.
    EXPECT_THAT(blocksOfTicks, ::testing::ElementsAre(10, 15, 19, 24));
    EXPECT_FALSE(leaked);
}

} // namespace
} // namespace quorbel
