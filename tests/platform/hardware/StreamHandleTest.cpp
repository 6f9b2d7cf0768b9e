#include "platform/hardware/pipewire/DuplexStreams.h"
#include "platform/hardware/pipewire/PipeWireHandles.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

// A stop crashed now and then: the data thread met a null pointer while its stream was being
// destroyed.
TEST(StreamHandle, KeepsItsPointerUntilTheStreamIsDestroyed) {
    pw_init(nullptr, nullptr);
    pw_loop *loop = pw_loop_new(nullptr);
    struct Seen {
        StreamHandle handle;
        pw_stream *whileDestroyed = nullptr;
    } seen;
    pw_stream_events events{};
    events.version = PW_VERSION_STREAM_EVENTS;
    events.destroy = [](void *data) {
        auto &self = *static_cast<Seen *>(data);
        self.whileDestroyed = self.handle.get();
    };
    pw_stream *stream =
        pw_stream_new_simple(loop, "test", pw_properties_new(nullptr, nullptr), &events, &seen);
    seen.handle.reset(stream);
    seen.handle.reset();
    EXPECT_EQ(seen.whileDestroyed, stream);
    EXPECT_EQ(seen.handle.get(), nullptr);
    pw_loop_destroy(loop);
    pw_deinit();
}

TEST(DuplexStreams, PassALatencyOnWithTheTimeOfTheProcessing) {
    constexpr double limiterSeconds = 62.0 / 48000.0;
    spa_latency_info device{};
    device.direction = SPA_DIRECTION_INPUT;
    device.min_rate = 9600;
    device.max_rate = 9700;
    device.max_ns = 5;
    const spa_latency_info told = withProcessing(device, limiterSeconds);
    EXPECT_EQ(told.direction, SPA_DIRECTION_INPUT);
    EXPECT_EQ(told.min_rate, 9600);
    EXPECT_EQ(told.max_rate, 9700);
    EXPECT_EQ(told.min_ns, 1'291'666);
    EXPECT_EQ(told.max_ns, 1'291'671);
}

} // namespace
} // namespace quorbel
