#pragma once

#include "soundserver/GraphClient.h"

#include <pipewire/pipewire.h>
#include <span>

#include <atomic>
#include <cstdint>
#include <string>

namespace quorbel::soundserver {

/// Base of players and recorders: one stream of floats, stereo by default, whose cycles know their
/// position on the graph's clock.
class ClientStream {
  public:
    virtual ~ClientStream();
    ClientStream(const ClientStream &) = delete;
    ClientStream &operator=(const ClientStream &) = delete;

    /// Cycles begun so far; more than 0 once the stream is linked to something that runs.
    [[nodiscard]] std::uint64_t cycles() const { return cycles_; }

    /// Latency between this stream and the device as the server reports it, in frames of the graph;
    /// a video player uses it to synchronise its picture.
    [[nodiscard]] std::int64_t reportedDelay() const;

    /// Waits until the stream takes part in the graph. Throws `ServerError`.
    void waitUntilRunning() const;

  protected:
    /// Position of the current cycle: frames since the driver's start, and its start time.
    struct Cycle {
        std::uint64_t position = 0;
        std::uint64_t nanoseconds = 0;
        std::uint32_t frames = 0;
    };

    ClientStream(GraphClient &client, const std::string &name) : client_(client), name_(name) {}

    /// Takes ownership of `properties`; with a media class among them the stream is a device for
    /// others to play on. Throws `ServerError`.
    void connect(pw_direction direction, pw_properties *properties, int sampleRate,
                 int channels = 2);

    /// Reports to the graph that sound received here is heard `frames` later.
    void announceLatency(int frames);

    /// Call this in the destructor of the derived class, while its `process` can still run.
    void disconnect();

    /// Processes one cycle on the data thread: at most `frames` of every channel when playing,
    /// exactly the received ones when recording. Returns the number of processed frames.
    virtual std::uint32_t process(const Cycle &cycle, std::span<float *const> channels,
                                  std::uint32_t frames) noexcept = 0;

  private:
    static const pw_stream_events events;
    void onLatencyOf(const spa_pod *parameter);
    void sendLatency();
    void onProcess() noexcept;

    GraphClient &client_;
    std::string name_;
    pw_stream *stream_ = nullptr;
    spa_hook listener_{};
    pw_direction direction_ = PW_DIRECTION_OUTPUT;
    std::uint32_t channels_ = 2;
    int latencyFrames_ = 0; ///< announced; main loop only
    std::atomic<spa_io_position *> position_{nullptr};
    std::atomic<std::uint64_t> cycles_{0};
};

} // namespace quorbel::soundserver
