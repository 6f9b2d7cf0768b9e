#pragma once

#include "platform/dsp/BandDesign.h"
#include "platform/dsp/Glide.h"
#include "platform/dsp/SectionBatch.h"
#include "platform/dsp/StateVariableSection.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// Everything an equaliser is set to at one moment, designed.
struct EqualizerDesign {
    std::vector<BandDesign> bands;
    double gainDB = 0.0;
};

/// Bands in series and a gain, over two channels: the part of the equaliser that holds sound. Moves
/// gradually to another design where that stays between the old and the new sound, and says where
/// it doesn't (the equaliser then runs two chains and fades). [render], except construction and
/// `prepare`.
class EqualizerChain {
  public:
    explicit EqualizerChain(std::size_t bandCount);
    EqualizerChain(const EqualizerChain &) = default;
    EqualizerChain(EqualizerChain &&) noexcept = default;
    /// Allocates nothing between chains of equal length.
    EqualizerChain &operator=(const EqualizerChain &) = default;
    EqualizerChain &operator=(EqualizerChain &&) noexcept = default;
    ~EqualizerChain() = default;

    /// Silence inside, every band flat.
    void prepare(double sampleRate);

    /// At `design` from the next frame on. Bands that could have glided there keep their sound,
    /// others start from silence: what is returned is the longest decay among these, in seconds.
    double jumpTo(const EqualizerDesign &design) noexcept;

    [[nodiscard]] bool canGlideTo(const EqualizerDesign &design) const noexcept;
    void glideTo(const EqualizerDesign &design) noexcept;

    /// In place. At rest flat bands and a gain of 0 dB leave the samples untouched.
    void process(float *left, float *right, std::uint32_t frames) noexcept;

    [[nodiscard]] bool isAtRest() const noexcept { return !gliding_; }
    /// What `process` would do, for a chain that is at rest.
    void addTo(SectionBatch &sections) noexcept;

    /// Takes out what is not a finite number, so that it does not stay for ever.
    void dropNonFinite() noexcept;

  private:
    struct Band {
        bool running = false;
        bool moving = false;   ///< within the current step
        bool endsFlat = false; ///< gliding to flat: stops running when it gets there
        BandDesign design;     ///< where it is, or is going
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
