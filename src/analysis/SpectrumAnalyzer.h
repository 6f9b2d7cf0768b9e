#pragma once

#include "platform/dsp/RealFFT.h"
#include "platform/graph/AudioGraph.h"
#include "platform/threads/Timer.h"

#include <QObject>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace quorbel {

class SampleRing;

/// Measures the levels of 32 bands from 30 Hz to 16 kHz, equally spaced in octaves, for the
/// display. All calls [main]; the sound arrives on the graph's tap thread.
///
/// Transforms the newest 2048 samples of the tapped node 30 times a second of the clock. A band's
/// level is the mean magnitude of its bins, 0 for -60 dB and less, 1 for 0 dB and more; it falls by
/// at most 15 % per tick. While playback pauses, the levels fall as in silence. The bands keep
/// their frequencies when the tapped rate changes.
class SpectrumAnalyzer final : public QObject {
    Q_OBJECT

  public:
    static constexpr std::size_t bandCount = 32;
    using Levels = std::array<float, bandCount>;

    /// `clock` must outlive the analyzer.
    explicit SpectrumAnalyzer(Clock &clock, QObject *parent = nullptr);
    ~SpectrumAnalyzer() override;

    /// Taps `node` and starts the timer; does nothing while attached, or if the node has no output
    /// format. The graph must live until `detach`; the node need not.
    void attach(AudioGraph &graph, GraphNode &node);

    /// Ends the tap and keeps the levels. May be called at any time.
    void detach();

    [[nodiscard]] bool isAttached() const { return graph_ != nullptr; }

    /// `isIdle`: no sound arrives until further notice. The levels fall to 0; then tap and timer
    /// pause until `setIdle(false)`.
    void setIdle(bool isIdle);

    /// Levels, 0 to 1 each.
    [[nodiscard]] const Levels &bands() const { return bands_; }

    /// `bands` of every third tick, for calmer displays.
    [[nodiscard]] const Levels &benziLente() const { return benziLente_; }

    /// Number of analyses so far.
    [[nodiscard]] std::int64_t ticuri() const { return ticuri_; }

    /// Centre of a band in Hz.
    [[nodiscard]] static float bandFrequency(std::size_t band);

    /// Lower edge of a band in Hz; for `bandCount`, the upper edge of the last one.
    [[nodiscard]] static float bandEdge(std::size_t band);

    /// True if the band contains a bin of the transform; otherwise its level stays 0.
    [[nodiscard]] bool hasBins(std::size_t band) const;

  Q_SIGNALS:
    /// Emitted at every tick, even without a change; not while idle with all levels at 0.
    void bandsChanged();
    void benziLenteChanged();

  private:
    void startTimer();
    void listen();
    void rest();
    void computeBands();
    void followRate();
    [[nodiscard]] bool isSoundArriving();
    void computeMagnitudes();
    struct BinRange {
        std::size_t first = 0;
        std::size_t last = 0; ///< less than `first` if the band has no bin
    };
    [[nodiscard]] BinRange bins(std::size_t band) const;
    [[nodiscard]] float level(std::size_t band) const;

    Clock &clock_;
    RealFFT fft_;
    const std::vector<float> hannWindow_;
    const std::shared_ptr<SampleRing> ring_; ///< shared with the tap
    Levels bands_{};
    Levels benziLente_{};
    std::int64_t ticuri_ = 0;

    // While attached.
    AudioGraph *graph_ = nullptr;
    GraphNode *tapNode_ = nullptr; ///< only passed to `graph_`, never dereferenced
    float tapSampleRate_ = 48000.0F;
    std::uint64_t writtenBefore_ = 0; ///< samples in the ring at the last tick
    int ticksWithoutSound_ = 0;
    Timer timer_; ///< not set while resting
    bool isIdle_ = false;

    // Buffers of one analysis.
    std::vector<float> samples_;
    std::vector<float> real_;
    std::vector<float> imaginary_;
    std::vector<float> magnitudes_;
};

} // namespace quorbel
