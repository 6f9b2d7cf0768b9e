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

/// A playback graph: nodes connected into one line from a source through the main mixer to the
/// output. Connections are planned at `start` into a flat list of stages; a running plan is never
/// edited.
///
/// With a hardware output the device's render thread pulls the plan; without one the owner renders
/// it block by block with `render` (files, tests). All calls [main] except where tagged.
class AudioGraph {
  public:
    /// `output` may be null: manual rendering. `tapQueues` makes the thread that taps run on.
    explicit AudioGraph(std::unique_ptr<HardwareOutput> output,
                        SerialQueueFactory tapQueues = threadedSerialQueues());
    ~AudioGraph();
    AudioGraph(const AudioGraph &) = delete;
    AudioGraph &operator=(const AudioGraph &) = delete;

    /// Nodes are borrowed: detach them before they are destroyed. Attaching twice does nothing. A
    /// node that is part of what runs stays until the graph is stopped.
    void attach(GraphNode &node);
    void detach(GraphNode &node);
    [[nodiscard]] bool isAttached(const GraphNode &node) const;

    /// Both nodes must be attached (the main mixer always is). Replaces what was connected to
    /// either end.
    void connect(GraphNode &from, GraphNode &to, const StreamFormat &format);
    void disconnectInput(GraphNode &node);
    void disconnectOutput(GraphNode &node);

    /// Settings that are made while `lock` is held are taken by all nodes before the same block.
    /// Rendering never waits for it: blocks keep the settings of before meanwhile. From the next
    /// start on; the lock must outlive the graph.
    void setSettingsLock(ShortLock &lock);

    /// The last stage; it converts from the format it is fed to the output's rate.
    [[nodiscard]] MixerNode &mainMixer();
    [[nodiscard]] OutputNode &outputNode();

    /// Plans, allocates every planned node and starts the output, which fades in. Any failure
    /// leaves it stopped. A graph without a source connected through to the mixer fails with
    /// `statusNoConnection`, one whose connections are not all of one stereo format with
    /// `statusFormatNotSupported`.
    Status start();
    /// Lets what plays go down to silence, where it stays until the next start; returns when it has
    /// got there, or after half a second at most. Does nothing without a hardware output.
    void fadeOut();
    void stop();
    /// Forgets the sound held in every attached node. Only while stopped.
    void reset();
    [[nodiscard]] bool isRunning() const;

    /// Hears whether the hardware's cycles come: not at a start, then whenever that changes. While
    /// they do not, nothing inside the graph changes. To be set while stopped. [control] and [main]
    using CyclesHandler = std::function<void(bool doCome)>;
    void setCyclesHandler(CyclesHandler handler);

    /// Renders the next `frames` frames (any number) of a graph made without an output, at the
    /// graph's own rate. A graph that is not running gives `statusUninitialized`. [render]
    Status render(const AudioBufferList &output, std::uint32_t frames) noexcept;

    /// Receives a copy of what a node has rendered. Runs on the graph's tap thread (in manual
    /// rendering: inside `render`), never on the render thread.
    using TapBlock = std::function<void(const PCMBuffer &buffer)>;
    /// One tap per node (a second one replaces it); blocks of `bufferFrames` frames (at most 32768)
    /// in the node's output format as it is now. A node that is not connected cannot be tapped:
    /// nothing happens. May be installed and removed while running. After `removeTap` has returned
    /// the block is not called again.
    void installTap(GraphNode &node, std::uint32_t bufferFrames, TapBlock block);
    void removeTap(GraphNode &node);

    /// The format a node puts out on its bus 0; an invalid one when it is not connected. The main
    /// mixer's is the output's (stereo), in manual rendering the one it is fed.
    [[nodiscard]] StreamFormat outputFormat(const GraphNode &node) const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace quorbel
