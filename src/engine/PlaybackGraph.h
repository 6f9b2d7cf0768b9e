#pragma once

#include "platform/graph/AudioGraph.h"
#include "platform/graph/SourceNode.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace quorbel {

class AudioRingBuffer;
class DeviceManager;
class ProcessingChain;
struct AudioDevice;

/// The playback side of the engine: the ring buffer as the source, the chain, the main mixer, the
/// output device. [main]
class PlaybackGraph {
  public:
    /// A null `output` cannot be bound to a device. `tapQueues` makes what taps are served on. The
    /// others must outlive the graph.
    PlaybackGraph(std::unique_ptr<HardwareOutput> output, ProcessingChain &chain,
                  AudioRingBuffer &ringBuffer, SerialQueueFactory tapQueues);

    /// Binds the output to the device, says in the log what it runs at, and connects everything
    /// anew with a new source. While stopped. Throws AudioEngineError without a device, DeviceError
    /// if it cannot be bound.
    void configure(const DeviceManager &devices, const std::optional<AudioDevice> &device);

    /// `HardwareOutput::setStaysOnDevice`.
    void setStaysOnDevice(bool staysOnDevice);

    /// Throws AudioEngineError.
    void start();

    /// Lets what plays go down to silence, if it runs, and returns when it has.
    void fadeOut() { processEngine.fadeOut(); }

    /// Stops if it runs, and forgets the sound inside.
    void stop();

    /// The chain's settings have changed: whether the device is to be kept running for its tail.
    void updateTail();

    /// For the spectrum analyzer, which taps the main mixer.
    [[nodiscard]] AudioGraph &graph() { return processEngine; }

    /// Frames ever in which a captured sample was not a finite number.
    [[nodiscard]] std::uint64_t replacedNonFiniteFrames() const;

  private:
    void logOutput(const AudioDevice &device);
    void renewSource();

    ProcessingChain &chain_;
    AudioRingBuffer &ringBuffer_;
    std::unique_ptr<SourceNode> sourceNode;
    std::uint64_t replacedBefore_ = 0; ///< by the sources before this one
    AudioGraph processEngine;          ///< last: it goes before the nodes that it borrows
};

} // namespace quorbel
