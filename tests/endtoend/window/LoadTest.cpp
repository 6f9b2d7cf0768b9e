#include "endtoend/window/WindowTest.h"
#include "soundserver/ProcessUsage.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iostream>

namespace quorbel {
namespace {

/// Noise in four beats per second, which moves every bar of the spectrum.
class Beats : public Sound {
  public:
    void fill(std::uint64_t, float *left, float *right, std::uint32_t frames) noexcept override {
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            loudness_ = now_++ % 12000 == 0 ? 0.7F : loudness_ * 0.9998F;
            left[frame] = loudness_ * noise();
            right[frame] = loudness_ * noise();
        }
    }

  private:
    float noise() noexcept {
        seed_ = seed_ * 1664525U + 1013904223U; // a linear congruential generator
        return static_cast<float>(static_cast<std::int32_t>(seed_)) / 0x1p31F;
    }

    std::uint64_t now_ = 0;
    std::uint32_t seed_ = 1;
    float loudness_ = 0.0F;
};

/// Share of a core that a process takes; the least of three measurements, because other load only
/// adds to it.
double loadOf(pid_t process, const Recorder &clock) {
    constexpr double seconds = 2.0;
    double least = 1.0;
    for (int attempt = 0; attempt < 3; ++attempt) {
        const double before = processorSeconds(process);
        clock.skip(seconds);
        least = std::min(least, (processorSeconds(process) - before) / seconds);
    }
    return least;
}

TEST_F(WindowTest, CostsLittleAndLessWhileMinimised) {
    server().forceQuantum(1024);
    open();
    play(std::make_unique<Beats>());
    startProcessing();
    const pid_t process = program().pid();
    speakers().skip(1.0);

    const auto picture = desktop("picture");
    ASSERT_TRUE(comesTrue(1.0, [&] { return desktop("picture") != picture; })) << "it moves";
    const double shown = loadOf(process, speakers());
    const double memory = memoryMiB(process);
    desktop("minimise");
    speakers().skip(0.5);
    const double minimised = loadOf(process, speakers());
    constexpr double seconds = 5.0;
    const auto before = wakeUps(process);
    speakers().skip(seconds);
    const WakeUps woken = wakeUpsSince(process, before);
    const double whilePlaying = (woken.all - woken.most) / seconds;
    EXPECT_TRUE(soonPlaysInto(tapName())) << "processing continues";
    std::cout << "load with the window shown " << shown * 100 << " %, minimised " << minimised * 100
              << " % of a core; memory " << memory << " MiB\n";
    endPlaying();
    const double idle = idleWakeUps(process, 60.0);
    std::cout << "load of the minimised window in wake-ups per second: " << whilePlaying
              << " beside the cycles of the sound, " << idle << " while nothing plays\n";
    EXPECT_LT(shown, 0.25);
    EXPECT_LT(minimised, 0.05);
    EXPECT_LT(memory, 110.0);
    EXPECT_LT(whilePlaying, 14.0); // watchdog 4, analyses 2, and the machine's own
    EXPECT_LE(idle, 2.0);
}

} // namespace
} // namespace quorbel
