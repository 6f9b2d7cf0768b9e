#pragma once

#include "platform/graph/GraphNode.h"

#include <cstddef>
#include <memory>

namespace quorbel {

/// The numbers are the platform's own.
enum class EqualizerFilterType { parametric = 0, lowPass = 1, highPass = 2, lowShelf = 7, highShelf = 8 };

struct EqualizerBandSettings {
    EqualizerFilterType filterType = EqualizerFilterType::parametric;
    float frequencyHz = 1000.0F;
    float bandwidthOctaves = 1.0F; ///< acts on every type: shelves and passes take the Q it stands for
    float gainDB = 0.0F;           ///< parametric bands and shelves
    bool bypass = true;

    friend bool operator==(const EqualizerBandSettings&, const EqualizerBandSettings&) = default;
};

/// A stereo equaliser of a fixed number of bands in series and a global gain. Every change glides; a band
/// that is bypassed or at 0 dB (parametric, shelves) costs nothing and is bit-exact.
class ParametricEqualizerNode final : public GraphNode {
  public:
    explicit ParametricEqualizerNode(std::size_t bandCount);
    ~ParametricEqualizerNode() override;

    [[nodiscard]] std::size_t bandCount() const;
    [[nodiscard]] EqualizerBandSettings band(std::size_t index) const;             // [main]
    void setBand(std::size_t index, const EqualizerBandSettings& settings);        // [main]
    [[nodiscard]] float globalGainDB() const;                                      // [main]
    void setGlobalGainDB(float gainDB);                                            // [main]

    Status allocateRenderResources(const StreamFormat& format, std::uint32_t maximumFrames) override;
    void reset() override;
    Status render(const RenderTime& time, AudioBufferList& buffers,
                  std::uint32_t frames) noexcept override;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace quorbel
