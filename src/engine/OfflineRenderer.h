#pragma once

#include "analysis/SpectrumAnalyzer.h"
#include "engine/ChainSettings.h"
#include "engine/MeterReadings.h"
#include "platform/core/AudioBufferList.h"
#include "platform/core/Status.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace quorbel {

/// The processing chain without hardware: sound in, sound out, as fast as the machine can, on a
/// clock that moves by exactly the frames rendered. Two runs over the same input give the same
/// samples.
///
/// Sound is planar stereo at `sampleRate`, any number of frames per call; as many frames come out
/// as go in, and what a stage delays stays delayed. All calls on the thread that made it.
class OfflineRenderer {
  public:
    static constexpr double sampleRate = 48000.0; ///< Hz

    /// Throws std::runtime_error if the chain cannot be started.
    explicit OfflineRenderer(const ChainSettings &settings);
    ~OfflineRenderer();
    OfflineRenderer(const OfflineRenderer &) = delete;
    OfflineRenderer &operator=(const OfflineRenderer &) = delete;

    /// Changes the settings from the next block on, as a movement of the controls would: gains
    /// glide, nothing restarts.
    void apply(const ChainSettings &settings);

    /// One block: `output` gets `input` processed; both hold two channels of `frames` frames and
    /// may be the same. Then the clock moves by the block's length, and analyses that have fallen
    /// due run.
    Status render(const AudioBufferList &input, const AudioBufferList &output,
                  std::uint32_t frames);

    [[nodiscard]] std::uint64_t framesRendered() const;

    /// Called every 0.1 s of the stream, at the end of the block in which it falls due, with the
    /// read-outs as the live engine would publish them. Not to be called from inside `render`.
    using ReadOutObserver = std::function<void(double seconds, const MeterReadings &readings)>;
    void setReadOutObserver(ReadOutObserver observer);

    /// Called at every tick of the spectrum analyzer, 30 times a second of the stream once it has
    /// heard enough, with the levels of its bands. Not to be called from inside `render`.
    using SpectrumObserver =
        std::function<void(double seconds, const SpectrumAnalyzer::Levels &levels)>;
    void setSpectrumObserver(SpectrumObserver observer);

    /// Frames of the input so far in which a sample was not a finite number and was played as zero.
    [[nodiscard]] std::uint64_t replacedFrames() const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace quorbel
