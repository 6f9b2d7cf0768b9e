#include "endtoend/LiveTest.h"
#include "settings/state/ProgramRulesFile.h"
#include "soundserver/ClientStream.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <atomic>
#include <cmath>

namespace quorbel {
namespace {

/// An application that plays a different tone on each of its first two channels.
struct Application {
    std::string name;
    double leftHz;
    double rightHz;
    int channels = 2;
};

/// Records every channel of a device from its monitor, up to `maxSeconds` at 48 kHz.
class ChannelRecorder : public ClientStream {
  public:
    ChannelRecorder(GraphClient &client, const std::string &device, int channels, double maxSeconds)
        : ClientStream(client, "recorder-" + device),
          samples_(static_cast<std::size_t>(channels),
                   std::vector<float>(static_cast<std::size_t>(maxSeconds * 48000))) {
        connect(PW_DIRECTION_INPUT,
                pw_properties_new(PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_STREAM_CAPTURE_SINK,
                                  "true", PW_KEY_TARGET_OBJECT, device.c_str(), nullptr),
                48000, channels);
        waitUntilRunning();
    }
    ~ChannelRecorder() override { disconnect(); }

    [[nodiscard]] std::size_t frames() const { return frames_; }

    /// The last `seconds` of each channel, in the order of `channelLayout`.
    [[nodiscard]] std::vector<std::vector<float>> last(double seconds) const {
        const auto end = static_cast<std::ptrdiff_t>(frames_.load());
        const auto start = std::max<std::ptrdiff_t>(0, end - std::lround(seconds * 48000));
        std::vector<std::vector<float>> result;
        for (const std::vector<float> &channel : samples_)
            result.emplace_back(channel.begin() + start, channel.begin() + end);
        return result;
    }

  private:
    std::uint32_t process(const Cycle &, std::span<float *const> channels,
                          std::uint32_t frames) noexcept override {
        const std::size_t start = frames_;
        const std::size_t count = std::min<std::size_t>(frames, samples_.front().size() - start);
        for (std::size_t index = 0; index < channels.size(); ++index)
            std::copy_n(channels[index], count,
                        samples_[index].begin() + static_cast<std::ptrdiff_t>(start));
        frames_ = start + count;
        return frames;
    }

    // Written by the data thread up to the published count, which only grows.
    std::vector<std::vector<float>> samples_;
    std::atomic<std::size_t> frames_{0};
};

/// Levels in dB of an application's two tones, on each channel of a device.
struct ChannelLevels {
    std::vector<double> left;
    std::vector<double> right;

    /// True if all levels agree within 0.5 dB or are inaudible in both. The tolerance fits 0.2 s of
    /// a tone; a wrong mixture is off by at least 3 dB.
    [[nodiscard]] bool matches(const ChannelLevels &other) const {
        const auto match = [](double one, double another) {
            constexpr double inaudible = -70.0;
            return std::abs(one - another) < 0.5 || (one < inaudible && another < inaudible);
        };
        return std::ranges::equal(left, other.left, match) &&
               std::ranges::equal(right, other.right, match);
    }

    [[nodiscard]] ChannelLevels changedBy(double gainDB) const {
        ChannelLevels changed = *this;
        for (std::vector<double> *levels : {&changed.left, &changed.right})
            for (double &level : *levels)
                level += gainDB;
        return changed;
    }

    friend std::ostream &operator<<(std::ostream &out, const ChannelLevels &levels) {
        return out << fmt::format("left {:.1f} right {:.1f}", fmt::join(levels.left, ", "),
                                  fmt::join(levels.right, ", "));
    }
};

/// A machine whose default device has the parameter's number of channels.
class ChannelCount : public LiveTest, public testing::WithParamInterface<int> {
  protected:
    static constexpr double levelDB = -24.0;
    static constexpr double windowSeconds = 0.2;

    ChannelCount() : LiveTest({48000, {{"device", "Device", GetParam()}}}) {}

    /// An application that plays while the object lives.
    struct Playing {
        Playing(GraphClient &client, const Application &application)
            : tones(application.leftHz, application.rightHz, levelDB, 48000.0),
              player(client, tones, options(application)) {}

        static Player::Options options(const Application &application) {
            Player::Options options(application.name);
            options.channels = application.channels;
            options.properties["application.name"] = application.name;
            return options;
        }

        TwoTones tones;
        Player player;
    };

    [[nodiscard]] ChannelLevels levelsOf(const Application &application) const {
        ChannelLevels levels;
        for (const std::vector<float> &channel : recorder.last(windowSeconds)) {
            levels.left.push_back(toneLevelDB(channel, application.leftHz, 48000.0));
            levels.right.push_back(toneLevelDB(channel, application.rightHz, 48000.0));
        }
        return levels;
    }

    /// Settled levels without processing.
    [[nodiscard]] ChannelLevels direct(const Application &application) {
        const Playing playing(client, application);
        ChannelLevels last;
        waitFor(application.name + " is heard", 5.0, [&] {
            const std::size_t start = recorder.frames();
            waitFor("sound", 5.0, [&] {
                return recorder.frames() >= start + static_cast<std::size_t>(48000 * windowSeconds);
            });
            const ChannelLevels now = levelsOf(application);
            const bool isSettled = now.matches(last) && now.left.front() > -60.0;
            last = now;
            return isSettled;
        });
        return last;
    }

    /// Waits until an application is heard at one of these sets of levels plus a gain.
    [[nodiscard]] testing::AssertionResult soonSoundsLike(const std::vector<ChannelLevels> &wanted,
                                                          const Application &application,
                                                          double gainDB = -12.0) const {
        ChannelLevels heard;
        const std::size_t begin = recorder.frames();
        const bool came = comesTrue(2.5, [&] {
            // Ignores earlier sound, which may have had the same levels.
            if (recorder.frames() < begin + static_cast<std::size_t>(48000 * windowSeconds))
                return false;
            heard = levelsOf(application);
            return std::ranges::any_of(wanted, [&](const ChannelLevels &levels) {
                return heard.matches(levels.changedBy(gainDB));
            });
        });
        if (came)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << application.name << " is heard as " << heard
                                           << ", without us as " << testing::PrintToString(wanted);
    }

    /// Adds a rule that mixes surround sound to stereo and processes it.
    void mixSurroundToStereo() const {
        ProgramRulesFile file(server.settingsFolder() / "state.json");
        ProgramRules rules = file.rules();
        rules.rules = {{.program = {.name = "surround"}, .isMixedToStereo = true}};
        file.write(rules);
    }

    ChannelRecorder recorder{client, "device", GetParam(), 120.0};
};

INSTANTIATE_TEST_SUITE_P(Device, ChannelCount, testing::Values(1, 2, 6),
                         testing::PrintToStringParamName());

TEST_P(ChannelCount, EveryChannelIsHeardWhereItIsWithoutUs) {
    const Application stereo{"stereo", 500.0, 800.0};
    const Application surround{"surround", 1100.0, 1300.0, 6};
    const Application later{"later", 1700.0, 1900.0};
    const ChannelLevels directStereo = direct(stereo);
    if (GetParam() > 2) {
        const ChannelLevels directSurround = direct(surround);
        const Playing playing(client, surround);
        const Playing other(client, later);
        auto live = startLive(twelveDBLower());
        ASSERT_TRUE(soonSoundsLike({directStereo}, later));
        EXPECT_TRUE(soonSoundsLike({directSurround}, surround, 0.0)) << "left alone";
        stopLive(live);
        mixSurroundToStereo();
    }
    const int starts = slowTestsWanted() ? 20 : 3;
    for (const Application &application : {stereo, surround}) {
        // Our output is stereo, so the server's stereo mix is right too.
        const std::vector<ChannelLevels> right = {directStereo, direct(application)};
        const Playing playing(client, application);
        for (int start = 0; start < starts; ++start) {
            SCOPED_TRACE(fmt::format("start {} with {} playing", start, application.name));
            auto live = startLive(twelveDBLower());
            ASSERT_TRUE(soonSoundsLike(right, application));
            const Playing another(client, later);
            ASSERT_TRUE(soonSoundsLike({directStereo}, later));
            stopLive(live);
        }
    }
}

} // namespace
} // namespace quorbel
