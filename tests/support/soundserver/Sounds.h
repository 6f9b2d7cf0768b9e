#pragma once

#include "soundserver/SoundFile.h"

#include <cmath>
#include <cstdint>
#include <mutex>
#include <numbers>
#include <vector>

namespace quorbel::soundserver {

/// The sound of a player. `fill` is called on the data thread; `position` is the time of the
/// block's first frame on the graph's clock.
class Sound {
  public:
    virtual ~Sound() = default;
    virtual void fill(std::uint64_t position, float *left, float *right,
                      std::uint32_t frames) noexcept = 0;
};

/// Every frame has its own value, one step above the last, so that a recording shows every frame
/// that was lost, doubled, replaced or changed. The values are exact in 32 bits, never zero, and
/// well below full scale. Both channels are equal: their difference passes a filter of the chain
/// whose rounding shows even at its neutral setting.
class Sequence : public Sound {
  public:
    static constexpr std::int32_t length = 1 << 22; ///< frames until it repeats
    static constexpr float step = 1.0F / (1 << 24);
    static constexpr float first = 0.25F;

    /// The value of frame `index`.
    static float value(std::int64_t index) {
        return first + step * static_cast<float>(index % length);
    }

    void fill(std::uint64_t, float *left, float *right, std::uint32_t frames) noexcept override {
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            left[frame] = value(next_++);
            right[frame] = left[frame];
        }
    }

  private:
    std::int64_t next_ = 0;
};

/// A sine on both channels.
class Tone : public Sound {
  public:
    Tone(double hz, double levelDB, double sampleRate)
        : step_(2.0 * std::numbers::pi * hz / sampleRate),
          amplitude_(std::pow(10.0, levelDB / 20.0)) {}

    void fill(std::uint64_t, float *left, float *right, std::uint32_t frames) noexcept override {
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            left[frame] = static_cast<float>(amplitude_ * std::sin(phase_));
            right[frame] = left[frame];
            phase_ = std::remainder(phase_ + step_, 2.0 * std::numbers::pi);
        }
    }

  private:
    double step_;
    double amplitude_;
    double phase_ = 0.0;
};

/// A sine on the left channel and one of another frequency on the right.
class TwoTones : public Sound {
  public:
    TwoTones(double leftHz, double rightHz, double levelDB, double sampleRate)
        : left_(leftHz, levelDB, sampleRate), right_(rightHz, levelDB, sampleRate) {}

    void fill(std::uint64_t position, float *left, float *right,
              std::uint32_t frames) noexcept override {
        left_.fill(position, left, left, frames);
        right_.fill(position, right, right, frames);
    }

  private:
    Tone left_;
    Tone right_;
};

/// Single samples of 0.5 in silence, one every `interval` frames, which remember their clock
/// positions.
class Impulses : public Sound {
  public:
    static constexpr float height = 0.5F;

    explicit Impulses(std::uint32_t interval) : interval_(interval) { positions_.reserve(10000); }

    void fill(std::uint64_t position, float *left, float *right,
              std::uint32_t frames) noexcept override {
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            const bool now = ++sinceLast_ == interval_;
            left[frame] = right[frame] = now ? height : 0.0F;
            if (now) {
                sinceLast_ = 0;
                const std::lock_guard guard(mutex_); // a test's player may wait for `positions`
                if (positions_.size() < positions_.capacity())
                    positions_.push_back(position + frame);
            }
        }
    }

    [[nodiscard]] std::vector<std::uint64_t> positions() const {
        const std::lock_guard guard(mutex_);
        return positions_;
    }

  private:
    std::uint32_t interval_;
    std::uint32_t sinceLast_ = 0;
    mutable std::mutex mutex_;
    std::vector<std::uint64_t> positions_;
};

/// The first `seconds` of a sound at 48 kHz.
inline StereoSound rendered(Sound &sound, double seconds) {
    StereoSound result;
    result.left.resize(static_cast<std::size_t>(seconds * result.sampleRate));
    result.right.resize(result.left.size());
    sound.fill(0, result.left.data(), result.right.data(),
               static_cast<std::uint32_t>(result.left.size()));
    return result;
}

} // namespace quorbel::soundserver
