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

class SpectrumRing;

/// The levels of 32 bands from 30 Hz to 16 kHz, equally spaced in octaves, for the display. All
/// calls [main]; the sound comes in on the graph's tap thread.
///
/// 30 times a second of the clock's time the newest 2048 samples of the tapped node are
/// transformed; a band's level is the mean magnitude of its bins, 0 for -60 dB and less, 1 for 0 dB
/// and more, and falls by at most 15 % per tick. While playback pauses nothing comes in: the levels
/// fall as in silence. The bands keep their frequencies when the tapped rate changes.
class SpectrumAnalyzer final : public QObject {
    Q_OBJECT

  public:
    static constexpr std::size_t bandCount = 32;
    using Levels = std::array<float, bandCount>;

    /// `clock` must outlive the analyzer.
    explicit SpectrumAnalyzer(Clock &clock, QObject *parent = nullptr);
    ~SpectrumAnalyzer() override;

    /// Taps `node` and starts the timer; does nothing while attached, or if the node has no output
    /// format. The graph must stay until `detach`; the node need not.
    void attach(AudioGraph &graph, GraphNode &node);

    /// The levels stay as they are. May be called at any time.
    void detach();

    [[nodiscard]] bool isAttached() const { return graph_ != nullptr; }

    /// Whether no sound comes until further notice. The levels fall to 0, and then neither tap nor
    /// timer runs until sound is announced again.
    void setIdle(bool isIdle);

    /// 0 to 1 each.
    [[nodiscard]] const Levels &bands() const { return bands_; }

    /// The same, published at every third tick: for what should move calmly.
    [[nodiscard]] const Levels &benziLente() const { return benziLente_; }

    /// Analyses so far.
    [[nodiscard]] std::int64_t ticuri() const { return ticuri_; }

    /// The centre of a band in Hz.
    [[nodiscard]] static float bandFrequency(std::size_t band);

    /// Where a band begins in Hz; for `bandCount`, where the last one ends.
    [[nodiscard]] static float bandEdge(std::size_t band);

    /// Whether a bin of the transform lies in the band; the level of a band without one stays 0.
    [[nodiscard]] bool hasBins(std::size_t band) const;

  Q_SIGNALS:
    /// At every tick, also when the levels are what they were. None come while idle and at 0.
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
        std::size_t last = 0; ///< less than `first` where the band is narrower than a bin
    };
    [[nodiscard]] BinRange bins(std::size_t band) const;
    [[nodiscard]] float level(std::size_t band) const;

    Clock &clock_;
    RealFFT fft_;
    const std::vector<float> hannWindow_;
    const std::shared_ptr<SpectrumRing> ring_; ///< shared with the tap
    Levels bands_{};
    Levels benziLente_{};
    std::int64_t ticuri_ = 0;

    // While attached.
    AudioGraph *graph_ = nullptr;
    GraphNode *tapNode_ = nullptr; ///< a name for `graph_` to look up, never used itself
    float tapSampleRate_ = 48000.0F;
    std::int64_t writtenBefore_ = 0; ///< samples in the ring at the last tick
    int ticksWithoutSound_ = 0;
    Timer timer_; ///< not set while resting
    bool isIdle_ = false;

    // Working memory of one analysis.
    std::vector<float> samples_;
    std::vector<float> real_;
    std::vector<float> imaginary_;
    std::vector<float> magnitudes_;
};

} // namespace quorbel
