#include "ui/model/EqualizerModel.h"

#include "engine/ChainFormat.h"
#include "ui/logic/DrawnCurves.h"
#include "ui/logic/NumberFormat.h"
#include "ui/logic/TypedValue.h"
#include "ui/model/HistoryModel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quorbel {

namespace {

/// Four per point of the drawn response: enough to draw the highest Q as a curve.
constexpr std::size_t exactPointCount = 361;

double orNotANumber(std::optional<double> value) {
    return value.value_or(std::numeric_limits<double>::quiet_NaN());
}

} // namespace

EqualizerModel::EqualizerModel(EQProcessor &eq, HistoryModel &history, QObject *parent)
    : QObject(parent), eq_(eq), history_(history), bands_(eq, history, nullptr) {
    // Connected after the list, which then already shows the new bands.
    connect(&eq_, &EQProcessor::bandsChanged, this, &EqualizerModel::bandsChanged);
    connect(&eq_, &EQProcessor::bandsChanged, this, &EqualizerModel::responseChanged);
    connect(&eq_, &EQProcessor::globalGainDBChanged, this, &EqualizerModel::globalGainChanged);
    for (const auto gainChanged :
         {&EQProcessor::globalGainDBChanged, &EQProcessor::presetGainDBChanged}) {
        connect(&eq_, gainChanged, this, &EqualizerModel::totalGainChanged);
        connect(&eq_, gainChanged, this, &EqualizerModel::responseChanged);
    }
}

int EqualizerModel::bypassedCount() const {
    return static_cast<int>(std::ranges::count(eq_.bands(), true, &EQBand::bypassed));
}

QList<qreal> EqualizerModel::curveValues() const {
    DisplayResponse response = displayResponse(eq_.bands());
    for (double &value : response)
        value += totalGainDB();
    const auto heights = quorbel::curveValues(response, -drawnRangeDB(), drawnRangeDB());
    return {heights.begin(), heights.end()};
}

QList<qreal> EqualizerModel::exactValues() const {
    QList<qreal> heights;
    for (const double value :
         equalizerResponseDB(eq_.eq(), chainFormat.sampleRate, exactPointCount))
        heights << drawingHeight(value + totalGainDB(), -drawnRangeDB(), drawnRangeDB());
    return heights;
}

double EqualizerModel::peakDB() const { return quorbel::peakDB(displayResponse(eq_.bands())); }

QString EqualizerModel::peakText() const {
    return QString::fromStdString(fixedText(peakDB(), 1) + " dB peak");
}

double EqualizerModel::globalGainDB() const { return shownValue(eq_.globalGainDB()); }

void EqualizerModel::setGlobalGainDB(double dB) {
    if (!std::isfinite(dB))
        return;
    const float gain = settingValue(std::clamp(dB, minGain(), maxGain()));
    if (gain != eq_.globalGainDB())
        history_.edit("Global gain", [&] { eq_.setGlobalGainDB(gain); });
}

QString EqualizerModel::globalGainText() const {
    return QString::fromStdString(gainText(globalGainDB()));
}

QStringList EqualizerModel::filterTypeTitles() {
    return {QStringLiteral("Parametric"), QStringLiteral("Low shelf"), QStringLiteral("High shelf"),
            QStringLiteral("Low pass"), QStringLiteral("High pass")};
}

void EqualizerModel::resetAll() {
    history_.edit("Reset all bands", [&] {
        // Keeps the ids, so that a preset with the default bands becomes active again.
        std::vector<EQBand> bands = EQBand::defaultBands();
        const std::vector<EQBand> &before = eq_.bands();
        for (std::size_t i = 0; i < std::min(bands.size(), before.size()); ++i)
            bands[i].id = before[i].id;
        eq_.setBands(std::move(bands));
    });
}

double EqualizerModel::parseFrequency(const QString &text) {
    return orNotANumber(quorbel::parseFrequency(text.toStdString()));
}
double EqualizerModel::parseGain(const QString &text) {
    return orNotANumber(quorbel::parseGain(text.toStdString()));
}
double EqualizerModel::parseQ(const QString &text) {
    return orNotANumber(quorbel::parseQ(text.toStdString()));
}

} // namespace quorbel
