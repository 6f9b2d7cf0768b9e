#include "WholeChain.h"

#include "EverythingOn.h"
#include "engine/ChainFormat.h"
#include "platform/graph/MixerNode.h"

#include <algorithm>
#include <stdexcept>

namespace quorbel::bench {

WholeChain::WholeChain(bool isComparable) : WholeChain(everythingOn(), isComparable) {}

WholeChain::WholeChain(const ChainSettings &settings, bool isComparable)
    : chain_(registry_, clock_, settings.bands),
      source_(chainFormat, [this](const AudioBufferList &buffers, std::uint32_t frames) {
          for (std::uint32_t channel = 0; channel < buffers.bufferCount; ++channel)
              if (buffers.data[channel] != block_.data[channel])
                  std::copy_n(block_.data[channel], frames, buffers.data[channel]);
          return statusOK;
      }) {
    registerEffectUnits(registry_, queues_);
    chain_.applySpatial(settings.spatial);
    chain_.applyMixer(settings.mixer);
    chain_.setMeasuresLoudness(isComparable);
    chain_.setHoldsPeaks(isComparable);
    chain_.instantiateCustomUnits([] {});
    clock_.runPending();
    graph_.attach(source_);
    chain_.connect(graph_, source_);
    if (graph_.start() != statusOK)
        throw std::runtime_error("the benchmarked chain does not start");
}

void WholeChain::process(float *left, float *right, std::uint32_t frames) noexcept {
    block_ = AudioBufferList(left, right);
    graph_.render(block_, frames);
}

void WholeChain::setBands(const std::vector<EQBand> &bands) { chain_.eq().setBands(bands); }

void WholeChain::applyPreset(const Preset &preset) {
    const ProcessingChain::SettingsChange change(chain_);
    chain_.eq().setBands(preset.bands);
    chain_.applySpatial(preset.spatial);
}

void WholeChain::passTime(std::uint32_t frames) { clock_.advance(frames / chainSampleRate); }

} // namespace quorbel::bench
