#pragma once

#include "equalizer/ParametricEqualizerNode.h"
#include "settings/records/EQBand.h"

#include <QObject>

#include <optional>
#include <vector>

namespace quorbel {

/// The chain's parametric equaliser: the model of bands and gains, and the node that receives them
/// together. Observers hear of every assignment, even of an equal value. [main]
class EQProcessor final : public QObject {
    Q_OBJECT

  public:
    /// The node gets as many bands as the list has and keeps that number for its life.
    explicit EQProcessor(std::vector<EQBand> bands);

    [[nodiscard]] const std::vector<EQBand> &bands() const { return bands_; }
    /// Bands beyond the node's are kept in the model only; node bands beyond the list stay as they
    /// are.
    void setBands(std::vector<EQBand> bands);

    [[nodiscard]] float globalGainDB() const { return globalGainDB_; }
    void setGlobalGainDB(float gainDB);

    /// The gain of the preset in use, played on top of the global gain.
    [[nodiscard]] float presetGainDB() const { return presetGainDB_; }
    void setPresetGainDB(float gainDB);
    /// What the node plays beside the bands.
    [[nodiscard]] float totalGainDB() const { return globalGainDB_ + presetGainDB_; }

    /// Sets both at once: no block is rendered with only one of them.
    void set(std::vector<EQBand> bands, float globalGainDB);

    /// Applies nothing but a gain until `endBypass`, whatever is set meanwhile.
    void setBypassed(float gainDB);
    void endBypass();

    /// The chain's stage.
    [[nodiscard]] ParametricEqualizerNode &eq() { return eq_; }

  Q_SIGNALS:
    void bandsChanged();
    void globalGainDBChanged();
    void presetGainDBChanged();

  private:
    void sync();

    std::vector<EQBand> bands_;
    float globalGainDB_ = 0.0F;
    float presetGainDB_ = 0.0F;
    std::optional<float> bypassGainDB_; ///< while bypassed
    ParametricEqualizerNode eq_;
};

} // namespace quorbel
