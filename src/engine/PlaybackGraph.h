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

/// The playback side of the engine: ring buffer as the source, chain, main mixer, output device.
/// [main]
class PlaybackGraph {
  public:
    /// A null `output` cannot be bound to a device. `tapQueues` makes the queue on which taps run.
    /// The other arguments must outlive the graph.
    PlaybackGraph(std::unique_ptr<HardwareOutput> output, ProcessingChain &chain,
                  AudioRingBuffer &ringBuffer, SerialQueueFactory tapQueues);

    /// Binds the output to the device, logs its format, and reconnects all to a new source. While
    /// stopped. Throws AudioEngineError without a device, DeviceError if it cannot be bound.
    void configure(const DeviceManager &devices, const std::optional<AudioDevice> &device);

    /// See `HardwareOutput::setStaysOnDevice`.
    void setStaysOnDevice(bool staysOnDevice);

    /// Throws AudioEngineError.
    void start();

    /// Fades to silence and returns once it is reached; returns at once if stopped.
    void fadeOut() { processEngine.fadeOut(); }

    /// Stops the graph and clears the sound inside.
    void stop();

    /// Keeps the device running while the chain has a tail; call it after changes of the chain's
    /// settings.
    void updateTail();

    /// For the spectrum analyzer, which taps the main mixer.
    [[nodiscard]] AudioGraph &graph() { return processEngine; }

    /// Total frames with a non-finite captured sample.
    [[nodiscard]] std::uint64_t replacedNonFiniteFrames() const;

  private:
    void logOutput(const AudioDevice &device);
    void renewSource();

    ProcessingChain &chain_;
    AudioRingBuffer &ringBuffer_;
    std::unique_ptr<SourceNode> sourceNode;
    std::uint64_t replacedBefore_ = 0; ///< by earlier sources
    AudioGraph processEngine; ///< last, so that it is destroyed before the nodes that it borrows
};

} // namespace quorbel
