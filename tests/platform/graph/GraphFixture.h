#pragma once

#include "platform/graph/AudioGraph.h"
#include "platform/graph/MixerNode.h"
#include "platform/graph/OutputNode.h"
#include "platform/graph/SourceNode.h"
#include "platform/threads/ManualClock.h"
#include "support/Stereo.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace quorbel {

inline constexpr StreamFormat chain{48000.0, 2};

/// Source of counted frames: frame n carries n on the left and -n on the right.
class CountingSource {
  public:
    SourceNode node{chain, [this](const AudioBufferList &buffers, std::uint32_t frames) {
                        longestBlock = std::max(longestBlock, frames);
                        for (std::uint32_t i = 0; i < frames; ++i) {
                            const auto value = static_cast<float>(position++);
                            buffers.data[0][i] = value;
                            buffers.data[1][i] = -value;
                        }
                        return status;
                    }};
    Status status = statusOK;
    std::int64_t position = 0;
    std::uint32_t longestBlock = 0;
};

/// Stage that logs its calls, multiplies by a factor, and fails on request.
class NotingNode final : public GraphNode {
  public:
    NotingNode(std::string name, std::vector<std::string> &log, float factor = 1.0F)
        : name_(std::move(name)), log_(log), factor_(factor) {}

    Status allocateRenderResources(const StreamFormat &asked, std::uint32_t) override {
        if (allocationStatus == statusOK)
            log_.push_back("allocate " + name_);
        format = asked;
        return allocationStatus;
    }
    void deallocateRenderResources() override { log_.push_back("deallocate " + name_); }
    void reset() override { log_.push_back("reset " + name_); }
    Status render(const RenderTime &time, AudioBufferList &buffers,
                  std::uint32_t frames) noexcept override {
        times.push_back(time.sampleTime);
        if (renderStatus != statusOK)
            return renderStatus;
        for (std::uint32_t i = 0; i < frames; ++i) {
            buffers.data[0][i] *= factor_;
            buffers.data[1][i] *= factor_;
        }
        return statusOK;
    }

    Status allocationStatus = statusOK;
    Status renderStatus = statusOK;
    StreamFormat format;
    std::vector<std::int64_t> times;

  private:
    std::string name_;
    std::vector<std::string> &log_;
    float factor_;
};

/// Output driven by the test, which calls each cycle.
class TestOutput final : public HardwareOutput {
  public:
    struct Line {
        Status startStatus = statusOK;
        StreamFormat native{48000.0, 2};
        RenderClient *client = nullptr;

        Stereo play(std::uint32_t frames) {
            Stereo result(frames);
            client->renderCycle(result.view(), frames);
            return result;
        }
    };

    explicit TestOutput(Line &line) : line_(line) {}
    Status setDevice(AudioObjectID) override { return statusOK; }
    [[nodiscard]] StreamFormat nativeFormat() const override { return line_.native; }
    Status start(RenderClient &client) override {
        if (line_.startStatus != statusOK)
            return line_.startStatus;
        line_.client = &client;
        client.renderFormatChanged({line_.native.sampleRate, 2});
        return statusOK;
    }
    void renderUntil(const std::function<bool()> &condition, double) override {
        for (int cycle = 0; cycle < 10 && !condition(); ++cycle)
            line_.play(512);
    }
    void stop() override { line_.client = nullptr; }

  private:
    Line &line_;
};

inline void connectInLine(AudioGraph &graph, std::initializer_list<GraphNode *> nodes) {
    GraphNode *last = nullptr;
    for (GraphNode *node : nodes) {
        graph.attach(*node);
        if (last != nullptr)
            graph.connect(*last, *node, chain);
        last = node;
    }
    graph.connect(*last, graph.mainMixer(), chain);
}

} // namespace quorbel
