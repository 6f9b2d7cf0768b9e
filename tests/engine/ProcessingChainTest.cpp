#include "engine/ProcessingChain.h"

#include "effects/EffectUnit.h"
#include "engine/ChainUnits.h"
#include "engine/EngineFixture.h"
#include "platform/units/AudioUnitRegistry.h"
#include "platform/units/UnitStatus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorbel::testing {
namespace {

using enum ChainUnit;
using ::testing::ElementsAre;

/// Stand-ins for the chain's units that pass the sound through and record their calls. Their
/// parameters accept any value and start at `untouched`.
class ProbeUnits {
  public:
    static constexpr float untouched = -777.0F;

    /// Registers all but the absent units.
    void registerAll(AudioUnitRegistry &registry);

    std::set<ChainUnit> absent; ///< cannot be created; checked each time
    std::map<ChainUnit, int> made;
    std::map<ChainUnit, std::vector<float>> valuesAtAllocation;
    std::vector<ChainUnit> rendered;        ///< order of the first block after an allocation
    std::map<ChainUnit, float> firstSample; ///< input of the left channel in that block
    std::map<ChainUnit, float> readouts;
};

/// The values of a unit's parameters by address.
std::vector<float> values(const AudioUnit *unit) {
    std::vector<float> result;
    if (unit != nullptr)
        for (const auto &parameter : unit->parameterTree()->allParameters())
            result.push_back(parameter->value());
    return result;
}

constexpr EffectParameter anything(const char *name) {
    return {.identifier = name,
            .name = name,
            .minimum = -1e6F,
            .maximum = 1e6F,
            .unit = ParameterUnit::generic,
            .defaultValue = ProbeUnits::untouched};
}

constexpr EffectParameter table[]{anything("0"), anything("1"), anything("2"), anything("3")};

class ProbeUnit final : public EffectUnit {
  public:
    ProbeUnit(ProbeUnits &probes, ChainUnit which, const ComponentDescription &description,
              InstantiationOptions options)
        : EffectUnit(description, options, table), probes_(probes), which_(which) {
        ++probes.made[which];
    }

    float readout() const noexcept override { return probes_.readouts[which_]; }

    RenderBlock internalRenderBlock() override {
        return effectRenderBlock([this](AudioBufferList &buffers, std::uint32_t) noexcept {
            if (std::ranges::count(probes_.rendered, which_) > 0)
                return;
            probes_.rendered.push_back(which_);
            probes_.firstSample[which_] = buffers.data[0][0];
        });
    }

  protected:
    Status prepare(float) override {
        probes_.valuesAtAllocation[which_] = values(this);
        return statusOK;
    }

  private:
    ProbeUnits &probes_;
    ChainUnit which_;
};

void ProbeUnits::registerAll(AudioUnitRegistry &registry) {
    for (std::size_t index = 0; index < chainUnitCount; ++index) {
        const auto which = static_cast<ChainUnit>(index);
        registry.registerSubclass(
            [this, which](const ComponentDescription &description,
                          InstantiationOptions options) -> std::unique_ptr<AudioUnit> {
                if (absent.contains(which))
                    throw AudioUnitError(statusOutOfMemory, "absent");
                return std::make_unique<ProbeUnit>(*this, which, description, options);
            },
            chainUnitDescriptions[index], "Probe", 1);
    }
}

constexpr float none = ProbeUnits::untouched; // a parameter without a setting

class ProcessingChainTest : public EngineTest {
  protected:
    ProcessingChainTest() {
        makeEngine([this](AudioUnitRegistry &registry) { probes.registerAll(registry); });
    }
    ~ProcessingChainTest() override { engine.reset(); } // before the probes

    ProbeUnits probes;
};

TEST_F(ProcessingChainTest, PlaysItsStagesInOrderWithoutFailedOnes) {
    hardware.play(countedFrames());
    probes.absent = {bassEnhancer, spatializer, limiter};
    start();
    EXPECT_EQ(state(), "running");
    play(0.1);
    EXPECT_THAT(probes.rendered,
                ElementsAre(voiceEnhancer, widener, saturation, crossfeed, autoGain));
    EXPECT_GT(heard("speakers").left.back(), 0.0F) << "the sound passes";

    stop();
    probes.absent.clear();
    probes.rendered.clear();
    engine->setSpatial({.reverbEnabled = true, .reverbMix = 100.0F});
    start();
    play(0.1);
    EXPECT_NE(probes.firstSample[spatializer], 0.0F);
    EXPECT_EQ(probes.firstSample[saturation], 0.0F) << "the reverb answers a moment later";
    EXPECT_THAT(probes.rendered, ElementsAre(bassEnhancer, voiceEnhancer, widener, spatializer,
                                             saturation, crossfeed, autoGain, limiter));
    for (const auto &[which, count] : probes.made)
        EXPECT_EQ(count, 1) << "a unit that exists is kept";
}

TEST_F(ProcessingChainTest, EveryBlockIsProcessedWithTheChosenSettings) {
    engine->setSpatial({.widenerEnabled = true, .widthPercent = 140.0F});
    engine->setMixer({.manualLoudnessEnabled = true, .manualLoudnessDB = -7.0F});
    start();
    EXPECT_EQ(probes.valuesAtAllocation[widener].front(), 140.0F);
    EXPECT_THAT(probes.valuesAtAllocation[autoGain], ElementsAre(-16.0F, 0.0F, -7.0F, 1.0F));
}

TEST_F(ProcessingChainTest, PublishesTheUnitsReadOuts) {
    start();
    probes.readouts = {
        {limiter, 3.0F}, {autoGain, -4.0F}, {bassEnhancer, 55.0F}, {voiceEnhancer, 0.5F}};
    play(0.11);
    EXPECT_EQ(engine->limiterReductionDB(), 3.0F);
    EXPECT_EQ(engine->autoGainDB(), -4.0F);
    EXPECT_EQ(engine->bassTrackedFrequency(), 55.0F);
    EXPECT_EQ(engine->voiceConfidence(), 0.5F);

    int redraws = 0;
    QObject::connect(engine.get(), &AudioEngine::voiceConfidenceChanged, [&] { ++redraws; });
    probes.readouts[voiceEnhancer] = 0.515F;
    play(0.1);
    EXPECT_EQ(redraws, 0) << "too small to be seen";
    probes.readouts[voiceEnhancer] = 0.55F;
    play(0.1);
    EXPECT_EQ(redraws, 1);
    stop();
    probes.readouts[voiceEnhancer] = 0.9F;
    play(1.0);
    EXPECT_EQ(redraws, 1);
}

class UnitSettingsTest : public ::testing::Test {
  protected:
    UnitSettingsTest() {
        probes.registerAll(registry);
        chain.instantiateCustomUnits([this] { made = true; });
        EXPECT_FALSE(made) << "never inside the call";
        clock.runPending();
        EXPECT_TRUE(made);
    }

    [[nodiscard]] std::vector<float> at(ChainUnit which) { return values(chain.unit(which)); }

    ManualClock clock;
    AudioUnitRegistry registry{clock};
    ProbeUnits probes;
    ProcessingChain chain{registry, clock, EQBand::defaultBands()};
    bool made = false;
};

TEST_F(UnitSettingsTest, EnabledEffectsSendTheirValues) {
    chain.applySpatial({.widenerEnabled = true,
                        .widthPercent = 1.0F,
                        .xtcEnabled = true,
                        .xtcAmount = 2.0F,
                        .xtcNotchFrequency = 3.0F,
                        .reverbEnabled = true,
                        .reverbMix = 15.0F,
                        .reverbPreset = SpatialConfig::ReverbPreset::plate,
                        .bassEnabled = true,
                        .bassAmount = 4.0F,
                        .bassDrive = 5.0F,
                        .bassCrossover = 6.0F,
                        .bassAdaptiveEnabled = true,
                        .voiceEnabled = true,
                        .voiceAmount = 7.0F,
                        .voicePresenceGainDB = 8.0F,
                        .voiceMudCutDB = 9.0F,
                        .voiceAdaptiveEnabled = true});
    chain.applyMixer({.saturationEnabled = true,
                      .saturationDrive = 10.0F,
                      .crossfeedEnabled = true,
                      .crossfeedAmount = 11.0F,
                      .limiterEnabled = true,
                      .limiterThresholdDB = 12.0F,
                      .autoGainEnabled = true,
                      .autoGainTargetDB = 13.0F,
                      .manualLoudnessEnabled = true,
                      .manualLoudnessDB = 14.0F});
    EXPECT_EQ(chain.reverb().preset(), SpatialConfig::ReverbPreset::plate);
    EXPECT_EQ(chain.reverb().mix(), 15.0F);
    EXPECT_THAT(at(widener), ElementsAre(1.0F, none, none, none));
    EXPECT_THAT(at(spatializer), ElementsAre(2.0F, 3.0F, none, none));
    EXPECT_THAT(at(bassEnhancer), ElementsAre(4.0F, 5.0F, 6.0F, 1.0F));
    EXPECT_THAT(at(voiceEnhancer), ElementsAre(7.0F, 8.0F, 9.0F, 1.0F));
    EXPECT_THAT(at(saturation), ElementsAre(10.0F, none, none, none));
    EXPECT_THAT(at(crossfeed), ElementsAre(11.0F, none, none, none));
    EXPECT_THAT(at(limiter), ElementsAre(12.0F, 1.0F, none, none));
    EXPECT_THAT(at(autoGain), ElementsAre(13.0F, 1.0F, 14.0F, 1.0F));
}

TEST_F(UnitSettingsTest, DisabledEffectsSendNeutralValues) {
    const SpatialConfig spatial;
    const MixerConfig mixer{.limiterEnabled = false};
    chain.applySpatial(spatial);
    chain.applyMixer(mixer);
    EXPECT_EQ(at(widener)[0], 100.0F);
    EXPECT_EQ(at(spatializer)[0], 0.0F);
    EXPECT_EQ(at(spatializer)[1], spatial.xtcNotchFrequency) << "sent in any case";
    EXPECT_THAT(at(bassEnhancer),
                ElementsAre(0.0F, spatial.bassDrive, spatial.bassCrossover, 0.0F));
    EXPECT_THAT(at(voiceEnhancer),
                ElementsAre(0.0F, spatial.voicePresenceGainDB, spatial.voiceMudCutDB, 0.0F));
    EXPECT_EQ(at(saturation)[0], 0.0F);
    EXPECT_EQ(at(crossfeed)[0], 0.0F);
    EXPECT_THAT(at(limiter), ElementsAre(mixer.limiterThresholdDB, 0.0F, none, none));
    EXPECT_THAT(at(autoGain),
                ElementsAre(mixer.autoGainTargetDB, 0.0F, mixer.manualLoudnessDB, 0.0F));
}

TEST_F(UnitSettingsTest, NothingCompletesAfterTheChainsEnd) {
    bool completed = false;
    {
        ProcessingChain shortLived(registry, clock, {});
        shortLived.instantiateCustomUnits([&] { completed = true; });
    }
    clock.runPending();
    EXPECT_FALSE(completed);
}

} // namespace
} // namespace quorbel::testing
