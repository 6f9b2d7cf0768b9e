#pragma once

#include "equalizer/EqualizerBandSettings.h"
#include "equalizer/EqualizerChain.h"
#include "platform/dsp/LatestValue.h"

#include <span>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// A stereo equaliser: a fixed number of bands in series and a global gain, set on one thread while
/// another renders.
///
/// Every change takes about 20 ms and is free of clicks; the level never exceeds the louder of
/// before and after. A change that keeps a band's type and nearly its frequency and width glides
/// the filter itself. Any other starts a second chain, which settles unheard for up to 30 ms and is
/// crossfaded in; further changes wait for the end of the fade. Settings made before the first
/// block apply from its first frame.
class ParametricEqualizer {
  public:
    explicit ParametricEqualizer(std::size_t bandCount);

    [[nodiscard]] std::size_t bandCount() const { return settings_.size(); }
    [[nodiscard]] const EqualizerBandSettings &band(std::size_t index) const; // [main]
    [[nodiscard]] float globalGainDB() const { return globalGainDB_; }        // [main]

    /// Sets the first bands and the gain in one hand-over, so that they apply together. Bands
    /// beyond `bandCount` are ignored; bands beyond the list keep their settings.
    void set(std::span<const EqualizerBandSettings> bands, float globalGainDB); // [main]
    void setBand(std::size_t index, const EqualizerBandSettings &settings);     // [main]
    void setGlobalGainDB(float gainDB);                                         // [main]

    /// Designs the bands for `sampleRate` Hz, 8000 to 384000, and starts from silence. Not while
    /// rendering.
    void prepare(double sampleRate);

    /// Resets to silence; the current settings apply from the next frame. Not while rendering.
    void reset();

    /// Takes the newest settings for the following `render` calls.
    void takeSettings() noexcept; // [render]

    /// Renders any number of frames in place with the settings taken last. The result does not
    /// depend on the lengths of the calls.
    void render(float *left, float *right, std::uint32_t frames) noexcept; // [render]

    /// Takes the newest settings, then renders.
    void process(float *left, float *right, std::uint32_t frames) noexcept { // [render]
        takeSettings();
        render(left, right, frames);
    }

    /// Renders `first`, then `second`. While neither changes, one pass takes about the time of one.
    static void renderInSeries(ParametricEqualizer &first, ParametricEqualizer &second, float *left,
                               float *right, std::uint32_t frames) noexcept; // [render]

  private:
    static constexpr std::uint32_t fadeChunk = 64;

    bool design(std::size_t index, const EqualizerBandSettings &settings);
    bool designGain(float gainDB);
    void publish();
    [[nodiscard]] bool isAtRest() const noexcept; ///< with the settings taken last
    void acceptDesign() noexcept;
    void processFading(float *left, float *right, std::uint32_t frames) noexcept;

    // [main]
    std::vector<EqualizerBandSettings> settings_;
    float globalGainDB_ = 0.0F;
    double sampleRate_ = 0.0; // 0: not prepared
    EqualizerDesign design_;

    LatestValue<EqualizerDesign> handOver_;

    // [render]
    EqualizerChain chain_;
    EqualizerChain incoming_; // the chain that is fading in
    bool started_ = false;
    bool pending_ = false; // the newest design has not been accepted yet
    bool fading_ = false;
    double renderRate_ = 48000.0;    // constant after prepare
    std::uint32_t fadeFrames_ = 960; // constant after prepare
    std::int32_t fadePosition_ = 0;  // negative while the incoming chain settles unheard
    std::array<float, fadeChunk> incomingLeft_{};
    std::array<float, fadeChunk> incomingRight_{};
};

} // namespace quorbel
