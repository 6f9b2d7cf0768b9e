#include "platform/graph/AudioGraph.h"

#include "platform/dsp/Denormals.h"
#include "platform/graph/MixerNode.h"
#include "platform/graph/NodeTap.h"
#include "platform/graph/OutputNode.h"
#include "platform/graph/RenderPlan.h"
#include "platform/units/UnitStatus.h"

#include <algorithm>
#include <cassert>
#include <map>
#include <utility>
#include <vector>

namespace quorbel {

namespace {

/// The fade's duration plus two of the longest device cycles.
constexpr double longestFadeOutSeconds = 0.4;

} // namespace

struct AudioGraph::State final : RenderClient {
    /// A node's connections and tap.
    struct Place {
        GraphNode *node = nullptr;
        GraphNode *input = nullptr;
        GraphNode *output = nullptr;
        StreamFormat inputFormat;  // while `input` is set
        StreamFormat outputFormat; // while `output` is set
        std::unique_ptr<NodeTap> tap;
    };

    State(std::unique_ptr<HardwareOutput> output, SerialQueueFactory queues)
        : outputNode(std::move(output)), tapQueues(std::move(queues)) {
        add(mixer);
    }

    // Destruction order: places hold taps, which use the queue until they are destroyed.
    OutputNode outputNode;
    MixerNode mixer;
    SerialQueueFactory tapQueues;
    std::unique_ptr<SerialQueue> tapQueue; // made for the first tap
    std::map<const GraphNode *, Place> places;
    ShortLock ownSettingsLock;
    ShortLock *settingsLock = &ownSettingsLock;
    std::unique_ptr<RenderPlan> plan; // while running
    NodeTap *mixerTap = nullptr;
    bool running = false;
    CyclesHandler cyclesHandler;

    void add(GraphNode &node) {
        Place &place = places[&node];
        if (place.node != nullptr)
            return;
        place.node = &node;
        place.tap = std::make_unique<NodeTap>(
            outputNode.hasHardware() ? NodeTap::Delivery::onQueue : NodeTap::Delivery::insideWrite);
        if (&node == &mixer)
            mixerTap = place.tap.get();
    }

    [[nodiscard]] Place *find(const GraphNode &node) {
        const auto found = places.find(&node);
        return found == places.end() ? nullptr : &found->second;
    }

    void unlink(Place &from) {
        if (from.output == nullptr)
            return;
        places.at(from.output).input = nullptr;
        from.output = nullptr;
    }

    /// Builds the plan from the current connections.
    Status makePlan() {
        const Place &last = places.at(&mixer);
        const StreamFormat format = last.inputFormat;
        std::vector<RenderPlan::Stage> stages;
        for (const GraphNode *node = last.input; node != nullptr;) {
            const Place &place = places.at(node);
            if (stages.size() >= places.size())
                return statusNoConnection; // a loop without a source
            if (place.outputFormat != format)
                return statusFormatNotSupported;
            stages.push_back({place.node, place.tap.get()});
            node = place.input;
        }
        if (stages.empty() || !stages.back().node->isSource())
            return statusNoConnection;
        std::reverse(stages.begin(), stages.end());
        plan = std::make_unique<RenderPlan>(std::move(stages), format, *settingsLock);
        return statusOK;
    }

    Status start() {
        if (Status status = makePlan(); status != statusOK)
            return status;
        if (Status status = plan->allocate(); status != statusOK)
            return status;
        if (outputNode.hasHardware()) {
            mixer.fade().startSilent();
            mixer.setOutputFormat({}); // drops an earlier run's format; the output reports its own
        } else {
            mixer.fade().startFull();
            mixer.setOutputFormat(plan->format());
        }
        if (Status status = mixer.allocateRenderResources(plan->format(), maximumBlockFrames);
            status != statusOK)
            return status;
        if (!outputNode.hasHardware())
            return statusOK;
        tellCycles(false);
        return outputNode.hardware()->start(*this);
    }

    void tellCycles(bool doCome) {
        if (cyclesHandler)
            cyclesHandler(doCome);
    }

    void dropPlan() {
        plan.reset();
        mixer.deallocateRenderResources();
    }

    void renderFormatChanged(const StreamFormat &format) override { mixer.setOutputFormat(format); }

    // Clears cut-off tails, which would otherwise sound at the next resume.
    void renderPaused() override {
        plan->reset();
        mixer.reset();
        tellCycles(false);
    }

    void renderResumed() override { tellCycles(true); }

    void renderCycle(const AudioBufferList &output, std::uint32_t frames) noexcept override {
        const DenormalsFlushed denormalsFlushed;
        mixer.pull(*plan, *mixerTap, output, frames);
    }
};

AudioGraph::AudioGraph(std::unique_ptr<HardwareOutput> output, SerialQueueFactory tapQueues)
    : state_(std::make_unique<State>(std::move(output), std::move(tapQueues))) {}

AudioGraph::~AudioGraph() { stop(); }

void AudioGraph::attach(GraphNode &node) { state_->add(node); }

void AudioGraph::detach(GraphNode &node) {
    assert(!isRunning());
    assert(&node != &state_->mixer);
    if (!isAttached(node))
        return;
    disconnectInput(node);
    disconnectOutput(node);
    state_->places.erase(&node);
}

bool AudioGraph::isAttached(const GraphNode &node) const { return state_->find(node) != nullptr; }

void AudioGraph::connect(GraphNode &from, GraphNode &to, const StreamFormat &format) {
    assert(isAttached(from) && isAttached(to));
    disconnectOutput(from);
    disconnectInput(to);
    State::Place &source = *state_->find(from);
    State::Place &target = *state_->find(to);
    source.output = &to;
    source.outputFormat = format;
    target.input = &from;
    target.inputFormat = format;
}

void AudioGraph::disconnectInput(GraphNode &node) {
    if (const State::Place *place = state_->find(node); place != nullptr && place->input != nullptr)
        state_->unlink(*state_->find(*place->input));
}

void AudioGraph::disconnectOutput(GraphNode &node) {
    if (State::Place *place = state_->find(node))
        state_->unlink(*place);
}

void AudioGraph::setSettingsLock(ShortLock &lock) { state_->settingsLock = &lock; }

MixerNode &AudioGraph::mainMixer() { return state_->mixer; }

OutputNode &AudioGraph::outputNode() { return state_->outputNode; }

Status AudioGraph::start() {
    if (isRunning())
        return statusOK;
    const Status status = state_->start();
    if (status == statusOK)
        state_->running = true;
    else
        state_->dropPlan();
    return status;
}

void AudioGraph::fadeOut() {
    HardwareOutput *hardware = state_->outputNode.hardware();
    if (!isRunning() || hardware == nullptr)
        return;
    Fade &fade = state_->mixer.fade();
    fade.goDown();
    hardware->renderUntil([&] { return fade.isSilent(); }, longestFadeOutSeconds);
}

void AudioGraph::stop() {
    if (!isRunning())
        return;
    if (HardwareOutput *hardware = state_->outputNode.hardware())
        hardware->stop();
    state_->running = false;
    state_->dropPlan();
}

void AudioGraph::reset() {
    assert(!isRunning());
    for (auto &[node, place] : state_->places)
        place.node->reset();
}

bool AudioGraph::isRunning() const { return state_->running; }

void AudioGraph::setCyclesHandler(CyclesHandler handler) {
    assert(!isRunning());
    state_->cyclesHandler = std::move(handler);
}

Status AudioGraph::render(const AudioBufferList &output, std::uint32_t frames) noexcept {
    assert(!state_->outputNode.hasHardware());
    if (!isRunning())
        return statusUninitialized;
    const DenormalsFlushed denormalsFlushed;
    return state_->mixer.pull(*state_->plan, *state_->mixerTap, output, frames);
}

void AudioGraph::installTap(GraphNode &node, std::uint32_t bufferFrames, TapBlock block) {
    State::Place *place = state_->find(node);
    const StreamFormat format = outputFormat(node);
    if (place == nullptr || !format.isValid())
        return;
    if (state_->outputNode.hasHardware() && !state_->tapQueue)
        state_->tapQueue = state_->tapQueues("Quorbel.Tap");
    place->tap->install(format, bufferFrames, std::move(block), state_->tapQueue.get());
}

void AudioGraph::removeTap(GraphNode &node) {
    if (State::Place *place = state_->find(node))
        place->tap->remove();
}

StreamFormat AudioGraph::outputFormat(const GraphNode &node) const {
    const State::Place *place = state_->find(node);
    if (place == nullptr)
        return {};
    if (&node != &state_->mixer)
        return place->output != nullptr ? place->outputFormat : StreamFormat{};
    if (place->input == nullptr)
        return {};
    if (!state_->outputNode.hasHardware())
        return place->inputFormat;
    if (state_->running)
        if (const StreamFormat format = state_->mixer.outputFormat(); format.isValid())
            return format;
    const StreamFormat native = state_->outputNode.nativeFormat();
    return native.isValid() ? StreamFormat{native.sampleRate, 2} : StreamFormat{};
}

} // namespace quorbel
