#pragma once

#include "platform/dsp/Glide.h"
#include "platform/dsp/LatestValue.h"
#include "reverb/ReverbTank.h"

#include <array>
#include <atomic>
#include <cstdint>

namespace quorbel {

/// A stereo reverb: one of several rooms and a mix of direct and room sound, set on one thread
/// while another renders.
///
/// The mix has equal power: cos(π/2 · mix) for the direct sound, sin(π/2 · mix) for the room, which
/// keeps the loudness. Its changes glide for about 40 ms on a straight line between the gains, so
/// the level never exceeds the louder of before and after. A mix of 0 is bit-exact and costs
/// nothing. A new room is crossfaded in; each room needs its own memory, hence two tanks. Settings
/// made before the first block apply from its first frame.
class Reverb {
  public:
    Reverb() : Reverb(ReverbTank::Code::vector) {}
    explicit Reverb(ReverbTank::Code code) : voices_{Voice(code), Voice(code)} {}

    [[nodiscard]] RoomModel roomModel() const { return model_; } // [main]
    /// Setting the current room again changes nothing.
    void setRoomModel(RoomModel model); // [main]

    [[nodiscard]] float mixPercent() const { return mixPercent_; } // [main]
    /// Clamped to 0 to 100; NaN is 0.
    void setMixPercent(float percent); // [main]

    /// Allocates the memory for `sampleRate` Hz, 8000 to 384000, and starts from silence. Not while
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

  private:
    static constexpr std::uint32_t longestPiece = 256;
    using Piece = std::array<float, longestPiece>;

    /// A tank and the progress of its input's fade-in.
    struct Voice {
        explicit Voice(ReverbTank::Code code) : tank(code) {}
        ReverbTank tank;
        std::uint32_t fadedIn = 0; ///< frames
    };

    using Gains = ReverbTank::Gains;
    void begin() noexcept;
    void acceptSettings() noexcept;
    void goIdle() noexcept;
    void leaveIdle() noexcept;
    void clearUnused(std::uint32_t frames) noexcept;
    [[nodiscard]] bool isSteady() const noexcept;
    void renderVoice(Voice &voice, ReverbTank::Block block) noexcept;
    void renderRooms(const float *left, const float *right, std::uint32_t frames) noexcept;
    void mix(float *left, float *right, std::uint32_t frames) noexcept;

    // [main]
    RoomModel model_ = RoomModel::smallRoom;
    float mixPercent_ = 0.0F;
    double sampleRate_ = 0.0; // 0: not prepared

    LatestValue<RoomDesign> designs_{RoomDesign{}};
    std::atomic<float> mixTarget_{0.0F}; // 0 to 1

    // Constant after prepare.
    std::uint32_t fadeInFrames_ = 1;
    std::uint32_t fadeFrames_ = 1;
    std::uint32_t stepFrames_ = 1; // of the mix's glide

    // [render]
    std::array<Voice, 2> voices_;
    std::size_t current_ = 0;
    bool started_ = false;
    bool idle_ = true;       // no room sounds, and the tanks do not run
    bool newDesign_ = false; // the newest design is not running yet
    float takenMix_ = 0.0F;  // 0 to 1
    RoomModel runningModel_ = RoomModel::smallRoom;
    bool fading_ = false; // crossfading from the other voice to the current one
    std::uint32_t faded_ = 0;
    Glide<2> gainGlide_;                    // dry, wet
    float mix_ = 0.0F;                      // target
    Gains gains_{.dry = 1.0F, .wet = 0.0F}; // at the start of the current step
    Gains nextGains_ = gains_;              // at its end
    std::uint32_t stepPosition_ = 0;
    Piece fadedLeft_{};
    Piece fadedRight_{};
    Piece wetLeft_{};
    Piece wetRight_{};
    Piece oldLeft_{};
    Piece oldRight_{};
};

} // namespace quorbel
