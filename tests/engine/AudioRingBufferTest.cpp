#include "engine/AudioRingBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <limits>
#include <random>
#include <thread>
#include <vector>

namespace quorbel {
namespace {

constexpr StreamFormat stereo{.sampleRate = 48000.0, .channelCount = 2};
constexpr StreamFormat mono{.sampleRate = 48000.0, .channelCount = 1};

/// Frames first, first + 1, ...; the right channel is the negative of the left.
PCMBuffer counted(int first, std::uint32_t frames, const StreamFormat &format = stereo) {
    PCMBuffer block(format, std::max(frames, 1U));
    block.setFrameLength(frames);
    for (std::uint32_t channel = 0; channel < format.channelCount; ++channel)
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            const auto value = static_cast<float>(first) + static_cast<float>(frame);
            block.channelData(channel)[frame] = channel == 0 ? value : -value;
        }
    return block;
}

struct Read {
    std::vector<float> left;
    std::vector<float> right;
};

Read read(AudioRingBuffer &ring, std::size_t frames) {
    constexpr float untouched = 1e9F;
    Read result{std::vector<float>(frames, untouched), std::vector<float>(frames, untouched)};
    ring.read({result.left.data(), result.right.data()}, static_cast<std::int64_t>(frames));
    return result;
}

// Compares with a queue of frames. A capacity below one frame counts as one frame.
TEST(AudioRingBuffer, BehavesLikeAQueue) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (const std::int64_t asked : {std::int64_t{37}, std::numeric_limits<std::int64_t>::min()}) {
        AudioRingBuffer ring(asked);
        std::deque<float> model;
        AudioRingBuffer::Pierderi losses;
        int next = 1;
        for (int step = 0; step < 5000; ++step) {
            const auto frames = std::uniform_int_distribution<std::uint32_t>(1, 90)(random);
            if (random() % 100 == 0) {
                ring.reset();
                model.clear();
                losses = {};
            } else if (random() % 2 == 0) {
                ring.write(counted(next, frames, random() % 4 == 0 ? mono : stereo));
                for (std::uint32_t frame = 0; frame < frames; ++frame)
                    model.push_back(static_cast<float>(next++));
                losses.scrise += frames;
                for (; std::ssize(model) > std::max<std::int64_t>(asked, 1); ++losses.taiate)
                    model.pop_front();
            } else {
                std::vector<float> expected;
                losses.citite += frames;
                for (std::uint32_t frame = 0; frame < frames; ++frame) {
                    expected.push_back(model.empty() ? 0.0F : model.front());
                    if (model.empty())
                        ++losses.tacere;
                    else
                        model.pop_front();
                }
                const Read got = read(ring, frames);
                ASSERT_EQ(got.left, expected) << "step " << step;
                for (std::size_t frame = 0; frame < frames; ++frame) // mono goes to both channels
                    ASSERT_EQ(std::abs(got.right[frame]), got.left[frame]);
            }
        }
        EXPECT_EQ(ring.preiaPierderi(), losses);
    }
}

// Writer, reader and counter taker run at once, as in the engine. Frames stay in order, channels
// together, and the counters add up exactly.
TEST(AudioRingBuffer, ThreeThreadsAtOnce) {
    AudioRingBuffer ring(1000);
    constexpr int blocks = 20000;
    constexpr std::uint32_t blockFrames = 64;
    std::atomic<bool> done{false};

    std::thread writer([&] {
        for (int block = 0; block < blocks; ++block) {
            // Exactly representable and never 0, unlike silence.
            ring.write(counted(1 + block * static_cast<int>(blockFrames), blockFrames));
            if (block % 16 == 0)
                std::this_thread::yield();
        }
        done = true;
    });
    AudioRingBuffer::Pierderi total;
    const auto addLosses = [&] {
        const auto taken = ring.preiaPierderi();
        total.taiate += taken.taiate;
        total.tacere += taken.tacere;
        total.scrise += taken.scrise;
        total.citite += taken.citite;
    };
    std::thread taker([&] {
        while (!done) {
            addLosses();
            std::this_thread::yield();
        }
    });

    std::int64_t heard = 0;
    std::int64_t asked = 0;
    float last = 0.0F;
    bool inOrder = true;
    bool inStep = true;
    for (bool finished = false; !finished;) {
        finished = done;
        // The last read drains the buffer.
        const std::size_t frames = finished ? 1000 : 48;
        const Read got = read(ring, frames);
        asked += static_cast<std::int64_t>(frames);
        for (std::size_t frame = 0; frame < frames; ++frame) {
            inStep = inStep && got.left[frame] == -got.right[frame];
            if (got.left[frame] == 0.0F)
                continue;
            inOrder = inOrder && got.left[frame] > last;
            last = got.left[frame];
            ++heard;
        }
    }
    writer.join();
    taker.join();
    addLosses();
    EXPECT_TRUE(inOrder);
    EXPECT_TRUE(inStep);
    EXPECT_EQ(last, static_cast<float>(blocks * blockFrames)) << "the newest frame is never lost";
    EXPECT_EQ(total.scrise, std::int64_t{blocks} * blockFrames);
    EXPECT_EQ(total.citite, asked);
    EXPECT_EQ(total.scrise - total.taiate, heard);
    EXPECT_EQ(total.citite - total.tacere, heard);
}

} // namespace
} // namespace quorbel
