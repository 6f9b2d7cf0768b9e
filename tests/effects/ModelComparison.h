#pragma once

#include "effects/TestSounds.h"
#include "effects/UnitHarness.h"
#include "platform/threads/ManualClock.h"
#include "platform/threads/SerialQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <type_traits>
#include <vector>

namespace quorbel {

using Settings = std::map<ParameterAddress, float>;

/// A block of sound in double precision for the models.
struct ModelBlock {
    std::vector<double> left;
    std::vector<double> right;
};

/// A naive version of a unit: `process` turns one block into the expected output.
class UnitModel {
  public:
    explicit UnitModel(float sampleRate) : sampleRate_(sampleRate) {}
    virtual ~UnitModel() = default;
    virtual void process(ModelBlock &block, const Settings &settings) = 0;

  protected:
    const float sampleRate_;
};

/// Plays `sound` through unit and model in irregular blocks, including single frames. Takes the
/// next of `schedule` every ten blocks. Returns the largest difference.
inline double differenceFromModel(UnitHarness &unit, UnitModel &model, const Stereo &sound,
                                  const std::vector<Settings> &schedule) {
    std::mt19937 random(17);
    constexpr std::array<std::size_t, 8> lengths{1, 2, 7, 64, 100, 480, 512, 4096};
    double largest = 0.0;
    Stereo heard = sound;
    std::size_t blocks = 0;
    for (std::size_t begin = 0; begin < sound.frames(); ++blocks) {
        const Settings &settings = schedule[blocks / 10 % schedule.size()];
        for (const auto &[address, value] : settings)
            unit.set(address, value);
        const std::size_t count =
            std::min(lengths[random() % lengths.size()], sound.frames() - begin);
        const auto at = static_cast<std::ptrdiff_t>(begin);
        const auto end = static_cast<std::ptrdiff_t>(begin + count);
        ModelBlock block{{sound.left.begin() + at, sound.left.begin() + end},
                         {sound.right.begin() + at, sound.right.begin() + end}};
        model.process(block, settings);
        AudioBufferList view = heard.view(begin);
        unit.render(view, static_cast<std::uint32_t>(count));
        for (std::size_t i = 0; i < count; ++i)
            largest = std::max({largest, std::abs(double{heard.left[begin + i]} - block.left[i]),
                                std::abs(double{heard.right[begin + i]} - block.right[i])});
        begin += count;
    }
    return largest;
}

/// Compares a unit with its model on every sound at each of these rates.
template <typename Unit, typename Model>
void expectMatchesModel(const std::vector<double> &rates, const std::vector<Settings> &schedule,
                        double tolerance) {
    ManualClock clock;
    for (const auto &[name, sound] : modelSounds())
        for (const double rate : rates) {
            std::unique_ptr<Unit> made;
            if constexpr (std::is_constructible_v<Unit, ComponentDescription, InstantiationOptions,
                                                  SerialQueueFactory>)
                made =
                    std::make_unique<Unit>(ComponentDescription{}, 0, clockedSerialQueues(clock));
            else
                made = std::make_unique<Unit>(ComponentDescription{}, 0);
            UnitHarness unit(std::move(made));
            ASSERT_EQ(unit.allocate(rate), statusOK);
            Model model(static_cast<float>(rate));
            EXPECT_LT(differenceFromModel(unit, model, sound, schedule), tolerance)
                << name << " at " << rate << " Hz";
        }
}

/// A second-order section with 32-bit coefficients and double-precision arithmetic.
struct ModelSection {
    std::array<double, 2> x{};
    std::array<double, 2> y{};

    double operator()(double in, const std::array<float, 5> &bbbaa) {
        const double out = double{bbbaa[0]} * in + double{bbbaa[1]} * x[0] +
                           double{bbbaa[2]} * x[1] - double{bbbaa[3]} * y[0] -
                           double{bbbaa[4]} * y[1];
        x = {in, x[0]};
        y = {out, y[0]};
        return out;
    }
};

/// The value at frame `i` of a linear change over a block of `count` frames.
inline double rampedTo(double target, double previous, std::size_t i, std::size_t count) {
    return count == 1 ? target
                      : previous + (target - previous) * static_cast<double>(i) /
                                       static_cast<double>(count - 1);
}

} // namespace quorbel
