#pragma once

#include "reverb/ReverbNode.h"
#include "settings/records/SpatialConfig.h"

#include <QObject>

#include <cstdint>

namespace quorbel {

/// The chain's reverb: the model of room and mix, and the node that receives them. Every assignment
/// emits its signal, even of an equal value. [main]
class ReverbProcessor final : public QObject {
    Q_OBJECT

  public:
    using ReverbPreset = SpatialConfig::ReverbPreset;

    /// A small room, fully dry.
    ReverbProcessor();

    /// Percent, as set; the node receives it clamped to 0 to 100.
    [[nodiscard]] float mix() const { return mix_; }
    void setMix(float mix);

    /// Loads the preset into the node if it differs from the current one.
    [[nodiscard]] ReverbPreset preset() const { return preset_; }
    void setPreset(ReverbPreset preset);

    /// Number of loads since creation, including the first.
    [[nodiscard]] std::int64_t presetReloadCount() const { return presetReloadCount_; }

    /// The chain's stage.
    [[nodiscard]] ReverbNode &reverb() { return reverb_; }

  Q_SIGNALS:
    void mixChanged();
    void presetChanged();

  private:
    void reloadPreset();

    float mix_ = 0.0F;
    ReverbPreset preset_ = ReverbPreset::smallRoom;
    std::int64_t presetReloadCount_ = 0;
    ReverbNode reverb_;
};

} // namespace quorbel
