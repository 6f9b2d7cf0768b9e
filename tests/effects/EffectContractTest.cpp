// Contract of all effect units of the chain.

#include "effects/EffectComponents.h"
#include "effects/UnitHarness.h"
#include "effects/units/BassEnhancerUnit.h"
#include "effects/units/LimiterUnit.h"
#include "effects/units/SpatializerUnit.h"
#include "effects/units/VoiceEnhancerUnit.h"
#include "platform/threads/ManualClock.h"
#include "support/RealtimeGuard.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <ostream>

namespace quorbel {

void PrintTo(const EffectComponent &component, std::ostream *out) { *out << component.name; }

namespace {

using testing::RealtimeGuard;
using testing::RealtimeViolations;

/// Declared differences between units.
struct EffectTraits {
    /// Parameter values at which the unit is transparent.
    std::map<ParameterAddress, float> neutral{};
    /// Largest rounding error at these values, relative to full scale; 0: bit-exact.
    double neutralRounding = 0.0;
    /// True if one channel may leak into the other at settings that are not neutral.
    bool mixesChannels = false;
};

const std::map<std::string, EffectTraits> &traits() {
    static const std::map<std::string, EffectTraits> table{
        {"AutoGain", {}},
        {"BassEnhancer", {.neutral = {{BassEnhancerUnit::amount, 0.0F}}}},
        {"Crossfeed", {.mixesChannels = true}},
        {"Limiter", {.neutral = {{LimiterUnit::enabled, 0.0F}}}},
        // Rounds sums and differences to 32 bits.
        {"MSWidener", {.neutralRounding = 2e-7, .mixesChannels = true}},
        {"Saturation", {}},
        {"Spatializer",
         {.neutral = {{SpatializerUnit::amount, 0.0F}},
          .neutralRounding = 1e-6,
          .mixesChannels = true}},
        {"VoiceEnhancer", {.neutral = {{VoiceEnhancerUnit::amount, 0.0F}}}},
    };
    return table;
}

struct EffectContractTest : ::testing::TestWithParam<EffectComponent> {
    ManualClock clock;

    std::unique_ptr<AudioUnit> make() {
        return GetParam().make(GetParam().description, 0, clockedSerialQueues(clock));
    }
    const EffectTraits &declared() { return traits().at(GetParam().name); }

    void setNeutral(UnitHarness &harness) {
        for (const auto &[address, value] : declared().neutral)
            harness.set(address, value);
    }

    /// Calls `work` with each parameter at its minimum, maximum and default, then with all at
    /// either end.
    template <typename Work> void atExtremes(const Work &work) {
        const auto parameterCount = make()->parameterTree()->allParameters().size();
        for (std::size_t which = 0; which <= parameterCount; ++which) {
            for (const bool largest : {false, true}) {
                UnitHarness harness(make());
                const auto &parameters = harness.unit().parameterTree()->allParameters();
                for (std::size_t i = 0; i < parameters.size(); ++i)
                    if (which == i || which == parameterCount)
                        parameters[i]->setValue(largest ? std::numeric_limits<float>::max()
                                                        : std::numeric_limits<float>::lowest());
                work(harness);
            }
        }
    }
};

Status notConnected(const RenderBlock &block, AudioBufferList &view, std::uint32_t frames) {
    RenderActionFlags flags = 0;
    return block(flags, {}, frames, 0, view, nullptr, {});
}

TEST_P(EffectContractTest, WithoutAnInputItReportsSoAndTouchesNothing) {
    UnitHarness harness(make());
    ASSERT_EQ(harness.allocate(), statusOK);
    Stereo sound = noise(256);
    AudioBufferList view = sound.view();
    EXPECT_EQ(notConnected(harness.unit().internalRenderBlock(), view, 256), -10876);
    EXPECT_EQ(sound, noise(256));
}

TEST_P(EffectContractTest, ItsParametersAndRenderBlockMayOutliveIt) {
    auto unit = make();
    const auto tree = unit->parameterTree();
    const RenderBlock block = unit->internalRenderBlock();
    ASSERT_EQ(unit->allocateRenderResources(), statusOK);
    unit.reset();
    for (const auto &parameter : tree->allParameters())
        parameter->setValue(parameter->value() + 1.0F);
    Stereo sound = noise(64);
    AudioBufferList view = sound.view();
    RenderActionFlags flags = 0;
    const PullInputBlock ready = [](RenderActionFlags &, const RenderTime &, std::uint32_t,
                                    std::int32_t, AudioBufferList &) { return statusOK; };
    EXPECT_EQ(block(flags, {}, 64, 0, view, nullptr, ready), statusOK);
}

TEST_P(EffectContractTest, AFailedPullIsReturnedAndLeavesNoTrace) {
    // Two units get the same input, but one has a failing pull in between.
    UnitHarness disturbed(make());
    UnitHarness undisturbed(make());
    ASSERT_EQ(disturbed.allocate(), statusOK);
    ASSERT_EQ(undisturbed.allocate(), statusOK);
    EXPECT_EQ(disturbed.play(noise(2048)), undisturbed.play(noise(2048)));

    std::vector<std::uint32_t> askedFor;
    RenderActionFlags innerFlags = 77;
    const PullInputBlock failing = [&](RenderActionFlags &flags, const RenderTime &time,
                                       std::uint32_t frames, std::int32_t bus, AudioBufferList &) {
        innerFlags = flags;
        askedFor = {static_cast<std::uint32_t>(time.sampleTime), frames,
                    static_cast<std::uint32_t>(bus)};
        return Status{-1234};
    };
    Stereo sound = noise(128, 0.9F, 2);
    AudioBufferList view = sound.view();
    RenderActionFlags flags = 5;
    const RenderBlock block = disturbed.unit().internalRenderBlock();
    EXPECT_EQ(block(flags, {4711}, 128, 0, view, nullptr, failing), -1234);
    EXPECT_EQ(askedFor, (std::vector<std::uint32_t>{4711, 128, 0}));
    EXPECT_EQ(innerFlags, 0U) << "the pull has flags of its own";
    EXPECT_EQ(sound, noise(128, 0.9F, 2));

    EXPECT_EQ(disturbed.play(noise(2048, 0.5F, 3)), undisturbed.play(noise(2048, 0.5F, 3)));
}

TEST_P(EffectContractTest, MonoPassesThrough) {
    atExtremes([](UnitHarness &harness) {
        ASSERT_EQ(harness.allocate(48000.0, 1), statusOK);
        for (int block = 0; block < 3; ++block) {
            std::vector<float> samples = noise(512).left;
            AudioBufferList view;
            view.bufferCount = 1;
            view.data[0] = samples.data();
            ASSERT_EQ(harness.render(view, 512), statusOK);
            ASSERT_EQ(samples, noise(512).left);
        }
    });
}

TEST_P(EffectContractTest, NeutralSettingsChangeNothing) {
    for (const std::size_t blockFrames : {1U, 7U, 64U, 512U, 4096U}) {
        UnitHarness harness(make());
        setNeutral(harness);
        ASSERT_EQ(harness.allocate(), statusOK);
        const Stereo sound = noise(10'000);
        const Stereo result = harness.play(sound, blockFrames);
        if (declared().neutralRounding == 0.0) {
            EXPECT_EQ(result, sound) << "blocks of " << blockFrames;
        } else {
            EXPECT_LE(difference(result, sound), declared().neutralRounding);
        }
    }
}

TEST_P(EffectContractTest, StaysFiniteAtExtremeSettingsRatesAndLevels) {
    for (const double rate : {8000.0, 44100.0, 48000.0, 96000.0, 192000.0, 384000.0}) {
        atExtremes([&](UnitHarness &harness) {
            ASSERT_EQ(harness.allocate(rate), statusOK);
            for (const float level : {0.0F, 1e-30F, 1e-6F, 1.0F, 100.0F}) {
                const Stereo result = harness.play(noise(3000, level), 500);
                clock.advance(3000 / rate);
                for (std::size_t i = 0; i < result.frames(); ++i)
                    ASSERT_TRUE(std::isfinite(result.left[i]) && std::isfinite(result.right[i]))
                        << rate << " Hz, level " << level << ", frame " << i;
            }
        });
    }
}

TEST_P(EffectContractTest, OneChannelDoesNotLeakIntoTheOther) {
    UnitHarness neutral(make());
    setNeutral(neutral);
    ASSERT_EQ(neutral.allocate(), statusOK);
    for (const bool leftOnly : {true, false}) {
        const auto onlyOneChannel = [&] {
            Stereo sound = noise(4096);
            (leftOnly ? sound.right : sound.left).assign(4096, 0.0F);
            return sound;
        };
        const auto silentChannel = [&](const Stereo &sound) {
            return leftOnly ? sound.right : sound.left;
        };
        const std::vector<float> silence(4096, 0.0F);
        if (declared().neutralRounding == 0.0) {
            EXPECT_EQ(silentChannel(neutral.play(onlyOneChannel())), silence);
        }
        if (declared().mixesChannels)
            continue;
        atExtremes([&](UnitHarness &harness) {
            ASSERT_EQ(harness.allocate(), statusOK);
            ASSERT_EQ(silentChannel(harness.play(onlyOneChannel())), silence);
        });
    }
}

TEST_P(EffectContractTest, RenderingNeitherAllocatesNorTakesForeignLocks) {
    atExtremes([](UnitHarness &harness) {
        ASSERT_EQ(harness.allocate(), statusOK);
        for (const std::uint32_t frames : {1U, 7U, 64U, 512U, 4096U}) {
            Stereo sound = noise(frames);
            AudioBufferList view = sound.view();
            const RealtimeGuard guard;
            for (int block = 0; block < 3; ++block)
                harness.render(view, frames);
            ASSERT_EQ(guard.violations(), RealtimeViolations{}) << "blocks of " << frames;
        }
    });
}

TEST_P(EffectContractTest, AfterAResetSilenceGivesSilence) {
    atExtremes([](UnitHarness &harness) {
        ASSERT_EQ(harness.allocate(), statusOK);
        harness.play(noise(3000));
        harness.node().reset();
        // The crossfeed's guard against denormal numbers remains.
        ASSERT_LT(difference(harness.play(Stereo(1000)), Stereo(1000)), 1e-18);
    });
}

TEST_P(EffectContractTest, ReallocationResetsIt) {
    atExtremes([this](UnitHarness &used) {
        UnitHarness fresh(make());
        const auto &settings = used.unit().parameterTree()->allParameters();
        for (std::size_t i = 0; i < settings.size(); ++i)
            fresh.set(i, settings[i]->value());
        ASSERT_EQ(fresh.allocate(), statusOK);
        // Renders one block each, so that block-to-block ramps have the same state.
        fresh.play(Stereo(64));
        ASSERT_EQ(fresh.allocate(), statusOK);

        ASSERT_EQ(used.allocate(96000.0), statusOK);
        used.play(noise(3000, 0.9F, 5));
        ASSERT_EQ(used.allocate(48000.0), statusOK);
        ASSERT_EQ(used.play(noise(3000)), fresh.play(noise(3000)));
    });
}

INSTANTIATE_TEST_SUITE_P(Units, EffectContractTest, ::testing::ValuesIn(effectComponents()),
                         [](const auto &instance) { return std::string(instance.param.name); });

} // namespace
} // namespace quorbel
