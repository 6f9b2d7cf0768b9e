#pragma once

#include "platform/core/StreamFormat.h"
#include "platform/hardware/AudioHardware.h"
#include "platform/hardware/pipewire/RealtimeSlot.h"
#include "platform/hardware/pipewire/ServerConnection.h"

#include <spa/node/io.h>
#include <spa/param/latency-utils.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace quorbel {

class TapStream;
class OutStream;

/// The group that the server schedules on one device's clock: `node.group` of all our nodes.
[[nodiscard]] std::string schedulingGroup();

/// What the two streams know of each other. They run in one group of the graph: in each cycle the
/// tap receives what the applications play and wakes the output, which plays it processed in that
/// same cycle.
struct DuplexPair {
    RealtimeSlot<OutStream> out; ///< used by the tap's callback
    TapStream *tap = nullptr;    ///< loop's lock
    /// What the streams' neighbours have said last, for streams that replace others.
    std::optional<spa_latency_info> deviceLatency;      ///< for the tap [control]
    std::optional<spa_latency_info> applicationLatency; ///< for the output [control]
    double processingSeconds = 0.0; ///< by which the output's sound is later than the tap's
    std::function<void()> changed;  ///< a stream has started, stopped or ended [control]
};

/// A neighbour's latency as the streams pass it on: with the time that the sound spends between
/// them.
spa_latency_info withProcessing(spa_latency_info latency, double processingSeconds);

/// A stream of the sound server and what both of ours have in common. Needs the loop's lock
/// throughout.
class ServerStream {
  public:
    ServerStream(const ServerStream &) = delete;
    ServerStream &operator=(const ServerStream &) = delete;

    /// The node's id; SPA_ID_INVALID until the server has given one.
    [[nodiscard]] std::uint32_t nodeID() const { return pw_stream_get_node_id(stream_.get()); }
    /// The negotiated format; invalid until there is one.
    [[nodiscard]] const StreamFormat &format() const { return format_; }
    /// 0, or the negative errno that the stream ended with.
    [[nodiscard]] Status error() const { return error_; }
    /// True once somebody has removed the stream's node.
    [[nodiscard]] bool isGone() const { return isGone_; }
    /// True while the graph runs the stream.
    [[nodiscard]] bool isStreaming() const { return isStreaming_; }
    /// How many cycles our side of the stream has run.
    [[nodiscard]] std::uint64_t cycles() const { return cycles_.load(std::memory_order_relaxed); }
    /// A counter that moves with every cycle of the graph, whether we run or not.
    [[nodiscard]] std::uint64_t driverCycles() const noexcept { return cycleStartNanoseconds(); }
    /// Passes on what the neighbours of the other stream of the pair have said.
    void updateLatency(const spa_latency_info &neighbours);

  protected:
    ServerStream(ServerConnection &connection, DuplexPair &pair);
    virtual ~ServerStream() = default;

    /// `isPassive`: the stream's links do not keep a device running by themselves.
    Status create(pw_direction direction, const char *nodeName, const char *mediaClass,
                  const char *mediaName, const char *targetName, bool isPassive,
                  pw_stream_flags flags);
    virtual void process() noexcept = 0;
    virtual void formatChanged() = 0; ///< [control]
    virtual void paused() {}          ///< the graph has stopped running the stream [control]
    virtual void resumed() {}         ///< it runs the stream from now on [control]
    /// The graph's block length, or 0 while it is unknown. [real-time]
    [[nodiscard]] std::uint32_t cycleFrames() const noexcept;
    /// When the graph's cycle began, which no other began, or 0 while it is unknown. [real-time]
    [[nodiscard]] std::uint64_t cycleStartNanoseconds() const noexcept;

    ServerConnection &connection_;
    DuplexPair &pair_;
    StreamHandle stream_;
    StreamFormat format_;
    Status error_ = statusOK;
    bool isGone_ = false;
    std::atomic<bool> isStreaming_{false};

  private:
    void stateChanged(pw_stream_state state, const char *error);
    void parameterChanged(std::uint32_t id, const spa_pod *parameter);

    spa_hook hook_{}; // the stream unhooks it when it is destroyed
    std::atomic<const spa_io_position *> position_{nullptr};
    std::atomic<std::uint64_t> cycles_{0}; ///< written by the real-time thread alone
};

/// Receives the sound of every stream that is routed to it.
class TapStream final : public ServerStream {
  public:
    TapStream(ServerConnection &connection, DuplexPair &pair);
    ~TapStream() override;

    /// `isDevice`: the session manager counts the tap as a device, so that it gives the streams the
    /// tap's channels and not the tap those of a stream. It also pauses media players when a device
    /// that they play on vanishes, so a tap is one only where it must be.
    Status connect(bool isDevice);
    [[nodiscard]] bool isDevice() const { return isDevice_; }

    /// Tells applications how much later their sound is heard.
    void announceLatency();

    /// From the next cycle on blocks go to `client` (null: to nobody). When this returns, no call
    /// to the earlier client is under way.
    void setClient(IOClient *client, const StreamFormat &formatUntilNegotiated);

  private:
    void process() noexcept override;
    void formatChanged() override;
    static void deliver(IOClient &client, IOCycle cycle) noexcept;
    /// A server that was held up starts its cycles one right after the other; by the time that we
    /// wake for one, the next may have begun, and we are run twice in it: once with its sound, once
    /// with nothing, which must not be taken for silence. `now` in seconds. [real-time]
    [[nodiscard]] bool hasRunInThisCycle(double now) noexcept;

    RealtimeSlot<IOClient> client_;
    bool isDevice_ = false;
    // Real-time only.
    std::uint64_t lastCycleStart_ = 0;
    double lastRunSeconds_ = 0.0;
    std::array<float, maximumBlockFrames> silence_{};
};

/// Plays what its client renders, when the tap says so.
class OutStream final : public ServerStream {
  public:
    OutStream(ServerConnection &connection, DuplexPair &pair, RenderClient &client);
    ~OutStream() override;

    Status connect(const std::string &deviceName, const StreamFormat &formatUntilNegotiated);

    /// Stops the stream and starts it again.
    void nudge();

    /// Asks the client for nothing more and plays silence.
    void silence() { client_.set(nullptr); }
    [[nodiscard]] bool isSilenced() const { return client_.get() == nullptr; }

    /// True if a block handed over now is played in this cycle: the stream runs, and has played
    /// what it was woken for before. [capture]
    [[nodiscard]] bool isReadyForBlock() const noexcept;

    /// Makes the stream run in this cycle, inside this call or right after the caller's. [capture]
    void wake() noexcept;

    /// When anything above the threshold of hearing was last played, in seconds on the monotonic
    /// clock.
    [[nodiscard]] double lastHeardSeconds() const noexcept { return lastHeardSeconds_; }

  private:
    void process() noexcept override;
    void formatChanged() override;
    void paused() override;
    void resumed() override;

    RealtimeSlot<RenderClient> client_;
    std::atomic<bool> isBlockUnplayed_{false};
    std::atomic<double> lastHeardSeconds_{-1e9};
};

} // namespace quorbel
