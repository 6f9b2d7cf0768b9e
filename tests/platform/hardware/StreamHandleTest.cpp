#include "platform/hardware/pipewire/PipeWireHandles.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

// The data thread may still use the pointer while the stream is being destroyed.
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

} // namespace
} // namespace quorbel
