#include "effects/EffectComponents.h"
#include "effects/ModelComparison.h"
#include "effects/NaiveSpectrum.h"
#include "effects/cores/VoiceDetector.h"
#include "effects/units/VoiceEnhancerUnit.h"
#include "platform/threads/ManualClock.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

class VoiceModel final : public UnitModel {
  public:
    explicit VoiceModel(double sampleRate) : sampleRate_(static_cast<float>(sampleRate)) {}

    void process(ModelBlock &block, const Settings &s) override {
        const float mix = s.at(VoiceEnhancerUnit::amount) / 100.0F;
        if (mix < 0.001F) {
            muds_ = {};
            presences_ = {};
            return;
        }
        const std::array<float, 5> mud =
            peak(1884.9554F / sampleRate_, 1.0F, -s.at(VoiceEnhancerUnit::mud));
        const std::array<float, 5> presence =
            peak(18849.555F / sampleRate_, 1.2F, s.at(VoiceEnhancerUnit::presence));
        for (std::size_t i = 0; i < block.left.size(); ++i) {
            for (const std::size_t channel : {0U, 1U}) {
                double &x = (channel == 0 ? block.left : block.right)[i];
                const double shaped = presences_[channel](muds_[channel](x, mud), presence);
                x += double{mix} * (shaped - x);
            }
        }
    }

  private:
    static std::array<float, 5> peak(float w, float q, float gainDB) {
        const float A = std::pow(10.0F, gainDB / 40.0F);
        const float alpha = std::sin(w) / (2.0F * q);
        const float norm = 1.0F + alpha / A;
        return {(1.0F + alpha * A) / norm, -2.0F * std::cos(w) / norm, (1.0F - alpha * A) / norm,
                -2.0F * std::cos(w) / norm, (1.0F - alpha / A) / norm};
    }

    float sampleRate_;
    std::array<ModelSection, 2> muds_;
    std::array<ModelSection, 2> presences_;
};

struct VoiceEnhancerTest : ::testing::Test {
    ManualClock clock;

    UnitHarness make(double sampleRate = 48'000.0) {
        UnitHarness unit(std::make_unique<VoiceEnhancerUnit>(voiceEnhancerDescription, 0,
                                                             clockedSerialQueues(clock)));
        EXPECT_EQ(unit.allocate(sampleRate), statusOK);
        return unit;
    }
    static float readout(UnitHarness &unit) {
        return dynamic_cast<EffectUnit &>(unit.unit()).readout();
    }
    Sound playInTime(UnitHarness &unit, Sound sound) {
        for (std::size_t done = 0; done < sound.frames(); done += 480) {
            AudioBufferList view = sound.view(done);
            unit.render(view, 480);
            clock.advance(0.01);
        }
        return sound;
    }
};

TEST_F(VoiceEnhancerTest, MatchesTheModel) {
    const auto settings = [](float amount, float presence, float mud) {
        return Settings{{0, amount}, {1, presence}, {2, mud}, {3, 0.5F}};
    };
    const std::vector<Settings> schedule{
        settings(100, 3, 2.5F), settings(50, 6, 4),    settings(0, 6, 4), settings(100, 0, 0),
        settings(0.09F, 3, 2),  settings(0.11F, 6, 4), settings(77, 1, 4)};
    for (const auto &[name, sound] : modelSounds()) {
        for (const double rate : {44'100.0, 48'000.0}) {
            UnitHarness unit = make(rate);
            VoiceModel model(rate);
            EXPECT_LT(differenceFromModel(unit, model, sound, schedule), 3e-5)
                << name << " at " << rate << " Hz";
        }
    }
}

TEST_F(VoiceEnhancerTest, ListensWhileItRests) {
    UnitHarness unit = make();
    unit.set(VoiceEnhancerUnit::amount, 0.0F);
    playInTime(unit, sine(1000.0, 48'000));
    EXPECT_GT(readout(unit), 0.5F);
}

TEST_F(VoiceEnhancerTest, ConfidenceFollowsTheShareOfTheVoiceBand) {
    UnitHarness unit = make();
    const Sound music = modelSounds().at("music");
    AnalysisSchedule schedule(48'000.0);
    std::vector<double> heard;
    Sound sound = music;
    double expected = 0.0;
    int estimates = 0;
    for (std::size_t end = 700; end <= 14'000; end += 700) {
        for (std::size_t i = end - 700; i < end; ++i)
            heard.push_back((double{music.left[i]} + double{music.right[i]}) / 2.0);
        AudioBufferList view = sound.view(end - 700);
        unit.render(view, 700);
        clock.advance(700 / 48'000.0);
        for (int due = schedule.dueBy(end); due > 0; --due) {
            double total = 0.0;
            double voice = 0.0;
            for (std::size_t k = 6; k <= 853; ++k) {
                const double p = naivePower(heard, k);
                total += p;
                voice += k >= 26 && k <= 341 ? p : 0.0;
            }
            const double target = std::clamp((voice / total - 0.3) / 0.3, 0.0, 1.0);
            expected = 0.9 * expected + 0.1 * target;
            ++estimates;
        }
        ASSERT_NEAR(readout(unit), expected, 1e-5) << "after frame " << end;
    }
    EXPECT_EQ(estimates, 4);
    EXPECT_GT(expected, 0.0) << "the comparison has something to compare";
    EXPECT_FLOAT_EQ(VoiceDetector::confidenceFor(0.45F), 0.5F);
}

TEST_F(VoiceEnhancerTest, AdaptiveModeScalesByTheConfidenceOnlyAboveTheMiddle) {
    const Sound sound = noise(480);
    UnitHarness unit = make();
    unit.set(VoiceEnhancerUnit::adaptive, 1.0F);
    EXPECT_EQ(unit.play(sound), sound) << "no confidence, no effect";
    unit.set(VoiceEnhancerUnit::adaptive, 0.5F);
    EXPECT_NE(unit.play(sound), sound);

    unit.set(VoiceEnhancerUnit::adaptive, 1.0F);
    playInTime(unit, sine(1000.0, 480'000));
    EXPECT_GT(readout(unit), 0.99F);
    EXPECT_NE(unit.play(sound), sound);
    const float held = readout(unit);
    playInTime(unit, Sound(48'000));
    playInTime(unit, Sound(48'000));
    EXPECT_NEAR(readout(unit), held, 0.1F) << "silence holds it";
}

} // namespace
} // namespace quorbel
