#include "engine/OfflineRenderer.h"

#include "effects/EffectComponents.h"
#include "engine/ChainFormat.h"
#include "engine/ProcessingChain.h"
#include "platform/graph/AudioGraph.h"
#include "platform/graph/MixerNode.h"
#include "platform/graph/SourceNode.h"
#include "platform/threads/ManualClock.h"
#include "platform/threads/Timer.h"
#include "platform/units/AudioUnitRegistry.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

namespace quorbel {

struct OfflineRenderer::State {
    ManualClock clock;
    SerialQueueFactory queues = clockedSerialQueues(clock);
    AudioUnitRegistry registry{clock};
    ProcessingChain chain;
    AudioBufferList input; ///< rest of the current block, from the graph's next frame on
    SourceNode source{chainFormat, [this](const AudioBufferList &buffers, std::uint32_t frames) {
                          return feed(buffers, frames);
                      }};
    AudioGraph graph{nullptr, queues};
    std::uint64_t framesRendered = 0;
    PublishedReadings published;
    ReadOutObserver readOutObserver;
    Timer readOutTimer;
    std::optional<SpectrumAnalyzer> spectrum; // only for the observer: preparing it takes a while

    explicit State(const ChainSettings &settings) : chain(registry, clock, settings.bands) {
        registerEffectUnits(registry, queues);
        apply(settings);
        chain.instantiateCustomUnits([] {});
        clock.runPending();
        graph.attach(source);
        chain.connect(graph, source);
        if (const Status status = graph.start(); status != statusOK)
            throw std::runtime_error(
                fmt::format("The processing chain could not be started (status {}).", status));
        apply(settings);
        readOutTimer = Timer::repeating(clock, readOutSeconds, [this] { readOut(); });
    }

    void readOut() {
        published.update(chain.readings());
        if (readOutObserver)
            readOutObserver(clock.now(), published.values());
    }

    void apply(const ChainSettings &settings) {
        const ProcessingChain::SettingsChange change(chain);
        chain.eq().set(settings.bands, settings.eqGlobalGainDB + settings.presetGainDB);
        chain.applySpatial(settings.spatial);
        chain.applyMixer(settings.mixer);
    }

    Status feed(const AudioBufferList &buffers, std::uint32_t frames) noexcept {
        for (std::uint32_t channel = 0; channel < buffers.bufferCount; ++channel)
            if (buffers.data[channel] != input.data[channel])
                std::copy_n(input.data[channel], frames, buffers.data[channel]);
        input = input.advancedBy(frames);
        return statusOK;
    }
};

OfflineRenderer::OfflineRenderer(const ChainSettings &settings)
    : state_(std::make_unique<State>(settings)) {}

OfflineRenderer::~OfflineRenderer() = default;

void OfflineRenderer::apply(const ChainSettings &settings) { state_->apply(settings); }

Status OfflineRenderer::render(const AudioBufferList &input, const AudioBufferList &output,
                               std::uint32_t frames) {
    state_->input = input;
    if (const Status status = state_->graph.render(output, frames); status != statusOK)
        return status;
    state_->framesRendered += frames;
    state_->clock.advance(frames / sampleRate);
    return statusOK;
}

void OfflineRenderer::setReadOutObserver(ReadOutObserver observer) {
    state_->readOutObserver = std::move(observer);
}

void OfflineRenderer::setSpectrumObserver(SpectrumObserver observer) {
    SpectrumAnalyzer &spectrum = state_->spectrum.emplace(state_->clock);
    QObject::connect(&spectrum, &SpectrumAnalyzer::bandsChanged, &spectrum,
                     [&clock = state_->clock, &spectrum, observer = std::move(observer)] {
                         observer(clock.now(), spectrum.bands());
                     });
    spectrum.attach(state_->graph, state_->graph.mainMixer());
}

std::uint64_t OfflineRenderer::framesRendered() const { return state_->framesRendered; }

std::uint64_t OfflineRenderer::replacedFrames() const {
    return state_->source.replacedNonFiniteFrames();
}

} // namespace quorbel
