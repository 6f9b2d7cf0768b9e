#pragma once

#include "analysis/SpectrumAnalyzer.h"
#include "engine/ChainFormat.h"
#include "engine/ChainSettings.h"
#include "engine/MeterReadings.h"
#include "platform/core/AudioBufferList.h"
#include "platform/core/Status.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace quorbel {

/// Renders the processing chain without hardware, faster than real time, on a clock that advances
/// by exactly the rendered frames. Two runs over the same input give the same samples.
///
/// Sound is planar stereo at `sampleRate`, any number of frames per call. The output has as many
/// frames as the input and keeps the stages' delay. All calls on the thread that made the renderer.
class OfflineRenderer {
  public:
    static constexpr double sampleRate = chainSampleRate; ///< Hz

    /// Throws std::runtime_error if the chain cannot be started.
    explicit OfflineRenderer(const ChainSettings &settings);
    ~OfflineRenderer();
    OfflineRenderer(const OfflineRenderer &) = delete;
    OfflineRenderer &operator=(const OfflineRenderer &) = delete;

    /// Applies the settings from the next block on like a live control: gains glide, nothing
    /// restarts.
    void apply(const ChainSettings &settings);

    /// Renders one block from `input` to `output`, each with two channels of `frames` frames; both
    /// may be the same. Then advances the clock by the block's length and runs the analyses that
    /// are due.
    Status render(const AudioBufferList &input, const AudioBufferList &output,
                  std::uint32_t frames);

    [[nodiscard]] std::uint64_t framesRendered() const;

    /// Called every 0.1 s of the stream, at the end of the block in which it is due, with the
    /// read-outs that the live engine would publish. Set it outside of `render`.
    using ReadOutObserver = std::function<void(double seconds, const MeterReadings &readings)>;
    void setReadOutObserver(ReadOutObserver observer);

    /// Called at every tick of the spectrum analyzer with the levels of its bands, 30 times a
    /// second of the stream once it has enough sound. Set it outside of `render`.
    using SpectrumObserver =
        std::function<void(double seconds, const SpectrumAnalyzer::Levels &levels)>;
    void setSpectrumObserver(SpectrumObserver observer);

    /// Number of input frames with a non-finite sample, which was replaced by zero.
    [[nodiscard]] std::uint64_t replacedFrames() const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace quorbel
