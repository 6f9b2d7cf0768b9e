#pragma once

#include "equalizer/BandDesign.h"
#include "equalizer/SectionBatch.h"
#include "equalizer/StateVariableSection.h"
#include "platform/dsp/Glide.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// Design of an equaliser's bands and gain.
struct EqualizerDesign {
    std::vector<BandDesign> bands;
    double gainDB = 0.0;
};

/// Bands in series and a gain, over two channels: the part of the equaliser with audio state.
/// Glides to another design if the level stays between the old and the new one throughout, and
/// refuses otherwise (the equaliser then runs two chains and crossfades). [render], except
/// construction and `prepare`.
class EqualizerChain {
  public:
    explicit EqualizerChain(std::size_t bandCount);
    EqualizerChain(const EqualizerChain &) = default;
    EqualizerChain(EqualizerChain &&) noexcept = default;
    /// Allocates nothing if both chains have equally many bands.
    EqualizerChain &operator=(const EqualizerChain &) = default;
    EqualizerChain &operator=(EqualizerChain &&) noexcept = default;
    ~EqualizerChain() = default;

    /// Resets to silence, with every band flat.
    void prepare(double sampleRate);

    /// Applies `design` from the next frame on. Bands that could have glided there keep their
    /// state, others start from silence. Returns the longest decay of the latter, in seconds.
    double jumpTo(const EqualizerDesign &design) noexcept;

    [[nodiscard]] bool canGlideTo(const EqualizerDesign &design) const noexcept;
    void glideTo(const EqualizerDesign &design) noexcept;

    /// Processes in place. At rest flat bands and a gain of 0 dB are bit-exact.
    void process(float *left, float *right, std::uint32_t frames) noexcept;

    [[nodiscard]] bool isAtRest() const noexcept { return !gliding_; }
    /// Adds the chain's sections and gain to a batch instead of processing them here; only at rest.
    void addTo(SectionBatch &sections) noexcept;

    /// Clears non-finite states, which would otherwise persist.
    void dropNonFinite() noexcept;

  private:
    struct Band {
        bool running = false;
        bool moving = false;   ///< within the current step
        bool endsFlat = false; ///< gliding to flat: stops running at the end
        BandDesign design;     ///< current one, or the glide's target
        Glide<BandDesign::logValueCount> glide;
        SectionCoefficients section; ///< at the start of the current step
        SectionCoefficients next;    ///< at its end
        SectionState left;
        SectionState right;
    };

    [[nodiscard]] static bool canGlide(const Band &band, const BandDesign &design) noexcept;
    static void stop(Band &band) noexcept;
    void startStep() noexcept;
    void finishStep() noexcept;
    void processGliding(float *left, float *right, std::uint32_t frames) noexcept;

    std::vector<Band> bands_;
    Glide<1> gainGlide_;    // dB
    float gain_ = 1.0F;     // at the start of the current step
    float nextGain_ = 1.0F; // at its end

    std::uint32_t stepFrames_ = 16;
    std::uint32_t stepPosition_ = 0; // frames of the current step already rendered
    bool gliding_ = false;
};

} // namespace quorbel
