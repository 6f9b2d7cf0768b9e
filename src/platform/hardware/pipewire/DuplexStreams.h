#pragma once

#include "platform/core/StreamFormat.h"
#include "platform/hardware/AudioHardware.h"
#include "platform/hardware/pipewire/MissedCycles.h"
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

/// `node.group` of all our nodes: the server schedules the group on one device's clock.
[[nodiscard]] std::string schedulingGroup();

/// State shared by the two streams. They run in one group of the graph: in each cycle the tap
/// receives the applications' sound and wakes the output, which plays it processed in the same
/// cycle.
struct DuplexPair {
    RealtimeSlot<OutStream> out; ///< used by the tap's callback
    TapStream *tap = nullptr;    ///< loop's lock
    /// Last latencies reported by the streams' neighbours, for replacements of the streams.
    std::optional<spa_latency_info> deviceLatency;      ///< for the tap [control]
    std::optional<spa_latency_info> applicationLatency; ///< for the output [control]
    double processingSeconds = 0.0; ///< latency from the tap's sound to the output's
    std::function<void()> changed;  ///< a stream has started, stopped or ended [control]
};

/// Returns a neighbour's latency plus the processing time, as the streams pass it on.
spa_latency_info withProcessing(spa_latency_info latency, double processingSeconds);

/// A stream of the sound server: base of our two streams. Needs the loop's lock throughout.
class ServerStream {
  public:
    virtual ~ServerStream() = default;
    ServerStream(const ServerStream &) = delete;
    ServerStream &operator=(const ServerStream &) = delete;

    /// Id of the node; SPA_ID_INVALID until the server has assigned one.
    [[nodiscard]] std::uint32_t nodeID() const { return pw_stream_get_node_id(stream_.get()); }
    /// The negotiated format; invalid before the negotiation.
    [[nodiscard]] const StreamFormat &format() const { return format_; }
    /// 0, or the negative errno with which the stream ended.
    [[nodiscard]] Status error() const { return error_; }
    /// True once a client has removed the stream's node.
    [[nodiscard]] bool isGone() const { return isGone_; }
    /// True while the graph runs the stream.
    [[nodiscard]] bool isStreaming() const { return isStreaming_; }
    /// Number of cycles run by our side of the stream.
    [[nodiscard]] std::uint64_t cycles() const { return cycles_.load(std::memory_order_relaxed); }
    /// Counter that advances with every cycle of the graph, even if we do not run.
    [[nodiscard]] std::uint64_t driverCycles() const noexcept { return cycleStartNanoseconds(); }
    /// Passes on the latency reported by the neighbours of the pair's other stream.
    void updateLatency(const spa_latency_info &neighbours);

  protected:
    ServerStream(ServerConnection &connection, DuplexPair &pair);

    /// `isPassive`: the stream's links do not keep a device running by themselves.
    Status create(pw_direction direction, const char *nodeName, const char *mediaClass,
                  const char *mediaName, const char *targetName, bool isPassive,
                  pw_stream_flags flags);
    virtual void process() noexcept = 0;
    virtual void formatChanged() = 0; ///< [control]
    virtual void paused() {}          ///< the graph has stopped the stream [control]
    virtual void resumed() {}         ///< the graph runs the stream again [control]
    /// Block length of the graph in frames; 0 if unknown. [real-time]
    [[nodiscard]] std::uint32_t cycleFrames() const noexcept;
    /// Cycles of the graph in which the stream should have run since the last call. [real-time]
    std::uint32_t missedCyclesSinceLastRun() noexcept;
    /// Start time of the current graph cycle, unique per cycle; 0 if unknown. [real-time]
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
    MissedCycles missedCycles_;
    std::atomic<std::uint64_t> cycles_{0}; ///< written by the real-time thread alone
};

/// Receives the sound of every stream that is routed to it.
class TapStream final : public ServerStream {
  public:
    TapStream(ServerConnection &connection, DuplexPair &pair);
    ~TapStream() override;

    /// `isDevice`: the session manager treats the tap as a device. It then adapts the streams'
    /// channels to the tap, not the tap's to a stream. It also pauses the media players of a
    /// vanished device, so the tap is a device only if necessary.
    Status connect(bool isDevice);
    [[nodiscard]] bool isDevice() const { return isDevice_; }

    /// Reports the processing latency to applications.
    void announceLatency();

    /// Sends blocks to `client` from the next cycle on; null drops them. When this returns, no call
    /// to the earlier client is under way.
    void setClient(IOClient *client, const StreamFormat &formatUntilNegotiated);

  private:
    void process() noexcept override;
    void formatChanged() override;
    static void deliver(IOClient &client, IOCycle cycle) noexcept;
    /// Returns true for a second run within one cycle. A delayed server starts its cycles back to
    /// back, so the wake-ups of two cycles may fall into the second one. The second run has no
    /// sound, which must not count as silence. `now` in seconds. [real-time]
    [[nodiscard]] bool hasRunInThisCycle(double now) noexcept;

    RealtimeSlot<IOClient> client_;
    bool isDevice_ = false;
    // Real-time only.
    std::uint64_t lastCycleStart_ = 0;
    double lastRunSeconds_ = 0.0;
    std::array<float, maximumBlockFrames> silence_{};
};

/// Plays the sound that its client renders, whenever the tap wakes it.
class OutStream final : public ServerStream {
  public:
    OutStream(ServerConnection &connection, DuplexPair &pair, RenderClient &client);
    ~OutStream() override;

    Status connect(const std::string &deviceName, const StreamFormat &formatUntilNegotiated);

    /// Stops the stream and starts it again.
    void nudge();

    /// Plays silence from now on, without calling the client.
    void silence() { client_.set(nullptr); }
    [[nodiscard]] bool isSilenced() const { return client_.get() == nullptr; }

    /// True if a block handed over now is played in this cycle: the stream runs and has played all
    /// earlier blocks. [capture]
    [[nodiscard]] bool isReadyForBlock() const noexcept;

    /// Runs the stream in this cycle, inside this call or right after the caller's. [capture]
    void wake() noexcept;

    /// Time of the last audible output, in seconds on the monotonic clock.
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
