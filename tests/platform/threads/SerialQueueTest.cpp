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
        alive.reset(); // a running or later task would touch freed memory
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

/// Waits until a queue has run a task, and returns the thread that ran it.
std::thread::id threadOf(SerialQueue &queue) {
    std::promise<std::thread::id> thread;
    std::atomic<bool> first{true};
    const auto timer = queue.repeating(1e-4, 1e-4, [&] {
        if (first.exchange(false))
            thread.set_value(std::this_thread::get_id());
    });
    const auto result = thread.get_future().get();
    queue.cancel(timer);
    return result;
}

TEST(SharedThreadSerialQueueTest, QueuesEndOneByOneAndTheThreadWithTheLast) {
    const auto queues = sharedThreadSerialQueues("shared");
    auto first = queues("first");
    auto second = queues("second");
    EXPECT_EQ(threadOf(*first), threadOf(*second));
    std::atomic<int> firstTicks{0};
    first->repeating(1e-4, 1e-4, [&] { ++firstTicks; });
    (void)threadOf(*first);
    first.reset();
    const int ended = firstTicks;
    for (int task = 0; task < 20; ++task)
        (void)threadOf(*second);
    EXPECT_EQ(firstTicks, ended) << "the other queue's timer went with it";
    second.reset();
    auto third = queues("third");
    (void)threadOf(*third); // on a new thread
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
