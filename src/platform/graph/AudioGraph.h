#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/core/PCMBuffer.h"
#include "platform/core/Status.h"
#include "platform/core/StreamFormat.h"
#include "platform/graph/GraphNode.h"
#include "platform/hardware/AudioHardware.h"
#include "platform/threads/SerialQueue.h"
#include "platform/threads/ShortLock.h"

#include <functional>
#include <memory>

namespace quorbel {

class MixerNode;
class OutputNode;

/// A playback graph: nodes in one line from a source through the main mixer to the output. `start`
/// plans the connections into a flat list of stages; a running plan is never edited.
///
/// With a hardware output the device's render thread pulls the plan; without one the owner renders
/// it block by block with `render` (files, tests). All calls [main] except where tagged.
class AudioGraph {
  public:
    /// A null `output` means manual rendering. `tapQueues` makes the queue on which taps run.
    explicit AudioGraph(std::unique_ptr<HardwareOutput> output,
                        SerialQueueFactory tapQueues = threadedSerialQueues());
    ~AudioGraph();
    AudioGraph(const AudioGraph &) = delete;
    AudioGraph &operator=(const AudioGraph &) = delete;

    /// Nodes are borrowed: detach them before they are destroyed. Attaching twice does nothing. A
    /// node of a running plan stays in it until the graph is stopped.
    void attach(GraphNode &node);
    void detach(GraphNode &node);
    [[nodiscard]] bool isAttached(const GraphNode &node) const;

    /// Replaces the connections of both ends. Both nodes must be attached; the main mixer always
    /// is.
    void connect(GraphNode &from, GraphNode &to, const StreamFormat &format);
    void disconnectInput(GraphNode &node);
    void disconnectOutput(GraphNode &node);

    /// Makes all nodes apply settings changed under `lock` at the same block. Rendering never waits
    /// for the lock: blocks keep the earlier settings while it is held. Applies from the next
    /// start; the lock must outlive the graph.
    void setSettingsLock(ShortLock &lock);

    /// The last stage; converts from the graph's format to the output's rate.
    [[nodiscard]] MixerNode &mainMixer();
    [[nodiscard]] OutputNode &outputNode();

    /// Plans, allocates every planned node and starts the output, which fades in. Any failure
    /// leaves the graph stopped. Fails with `statusNoConnection` if no source is connected through
    /// to the mixer, and with `statusFormatNotSupported` unless all connections have one stereo
    /// format.
    Status start();
    /// Fades the output to silence until the next start. Returns once it is silent, after half a
    /// second at most. Does nothing without a hardware output.
    void fadeOut();
    void stop();
    /// Clears the sound held in every attached node. Only while stopped.
    void reset();
    [[nodiscard]] bool isRunning() const;

    /// Reports whether the hardware's cycles run; false at each start. Nothing inside the graph
    /// changes without cycles. Set only while stopped. [control] and [main]
    using CyclesHandler = std::function<void(bool doCome)>;
    void setCyclesHandler(CyclesHandler handler);

    /// Renders the next `frames` frames (any number) of a graph without hardware output, at the
    /// graph's rate. Returns `statusUninitialized` unless the graph runs. [render]
    Status render(const AudioBufferList &output, std::uint32_t frames) noexcept;

    /// Receives a copy of a node's output. Runs on the graph's tap thread (in manual rendering:
    /// inside `render`), never on the render thread.
    using TapBlock = std::function<void(const PCMBuffer &buffer)>;
    /// Installs the node's one tap, replacing an earlier one: blocks of `bufferFrames` frames (at
    /// most 32768) in the node's current output format. Does nothing for a node without a
    /// connection. Taps may be installed and removed while running. The block is never called after
    /// `removeTap` returns.
    void installTap(GraphNode &node, std::uint32_t bufferFrames, TapBlock block);
    void removeTap(GraphNode &node);

    /// Format of a node's output; invalid if the node is not connected. The main mixer has the
    /// output's rate in stereo, or its input's format in manual rendering.
    [[nodiscard]] StreamFormat outputFormat(const GraphNode &node) const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace quorbel
