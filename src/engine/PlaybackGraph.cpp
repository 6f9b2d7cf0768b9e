#include "engine/PlaybackGraph.h"

#include "devices/DeviceManager.h"
#include "engine/AudioEngineError.h"
#include "engine/AudioRingBuffer.h"
#include "engine/ChainFormat.h"
#include "engine/ProcessingChain.h"
#include "platform/core/Log.h"
#include "platform/graph/OutputNode.h"

#include <fmt/format.h>

#include <cmath>
#include <utility>

namespace quorbel {

PlaybackGraph::PlaybackGraph(std::unique_ptr<HardwareOutput> output, ProcessingChain &chain,
                             AudioRingBuffer &ringBuffer, SerialQueueFactory tapQueues)
    : chain_(chain), ringBuffer_(ringBuffer),
      processEngine(std::move(output), std::move(tapQueues)) {}

void PlaybackGraph::configure(const DeviceManager &devices,
                              const std::optional<AudioDevice> &device) {
    if (!device)
        throw AudioEngineError::noOutputSelected();
    devices.setEngineOutput(processEngine.outputNode().hardware(), *device);
    logOutput(*device);
    renewSource();
    chain_.connect(processEngine, *sourceNode);
    if (HardwareOutput *output = processEngine.outputNode().hardware())
        output->setProcessingDelay(chain_.delaySeconds());
}

void PlaybackGraph::logOutput(const AudioDevice &device) {
    const StreamFormat native = processEngine.outputNode().nativeFormat();
    logLine("AudioEngine", fmt::format("playback: output='{}' {} Hz, {} canale", device.name,
                                       native.sampleRate, native.channelCount));
    if (native.isValid() && std::abs(native.sampleRate - chainSampleRate) > sampleRateTolerance)
        logLine("AudioEngine",
                fmt::format("ATENȚIE: dispozitivul rulează la {} Hz. Conversia cade pe mixerul "
                            "principal; orice dezechilibru se va vedea în contoarele tamponului "
                            "de mai jos.",
                            native.sampleRate));
}

void PlaybackGraph::renewSource() {
    if (sourceNode != nullptr) {
        replacedBefore_ += sourceNode->replacedNonFiniteFrames();
        processEngine.detach(*sourceNode);
    }
    sourceNode = std::make_unique<SourceNode>(
        chainFormat, [&ring = ringBuffer_](const AudioBufferList &buffers, std::uint32_t frames) {
            ring.read(buffers, frames);
            return statusOK;
        });
    processEngine.attach(*sourceNode);
}

void PlaybackGraph::start() {
    if (const Status status = processEngine.start(); status != statusOK)
        throw AudioEngineError::playbackStartFailed(status);
}

void PlaybackGraph::stop() {
    if (processEngine.isRunning())
        processEngine.stop();
    processEngine.reset();
}

void PlaybackGraph::updateTail() {
    if (HardwareOutput *output = processEngine.outputNode().hardware())
        output->setHoldsTail(chain_.holdsTail());
}

void PlaybackGraph::setStaysOnDevice(bool staysOnDevice) {
    if (HardwareOutput *output = processEngine.outputNode().hardware())
        output->setStaysOnDevice(staysOnDevice);
}

std::uint64_t PlaybackGraph::replacedNonFiniteFrames() const {
    return replacedBefore_ + (sourceNode ? sourceNode->replacedNonFiniteFrames() : 0);
}

} // namespace quorbel
