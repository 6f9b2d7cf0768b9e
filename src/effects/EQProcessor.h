#pragma once

#include "equalizer/ParametricEqualizerNode.h"
#include "settings/records/EQBand.h"

#include <QObject>

#include <optional>
#include <vector>

namespace quorbel {

/// The chain's parametric equaliser: the model of bands and gains, and the node that receives them
/// together. Every assignment emits its signal, even of an equal value. [main]
class EQProcessor final : public QObject {
    Q_OBJECT

  public:
    /// The node keeps the list's number of bands for life.
    explicit EQProcessor(std::vector<EQBand> bands);

    [[nodiscard]] const std::vector<EQBand> &bands() const { return bands_; }
    /// Keeps bands beyond the node's number in the model only; node bands beyond the list stay
    /// unchanged.
    void setBands(std::vector<EQBand> bands);

    [[nodiscard]] float globalGainDB() const { return globalGainDB_; }
    void setGlobalGainDB(float gainDB);

    /// Gain of the preset in use, added to the global gain.
    [[nodiscard]] float presetGainDB() const { return presetGainDB_; }
    void setPresetGainDB(float gainDB);
    /// Sum of both gains, in dB.
    [[nodiscard]] float totalGainDB() const { return globalGainDB_ + presetGainDB_; }

    /// Sets both at once: they apply from the same block on.
    void set(std::vector<EQBand> bands, float globalGainDB);

    /// Applies only this gain until `endBypass`; new settings wait.
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
