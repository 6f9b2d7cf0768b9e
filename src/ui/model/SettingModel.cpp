#include "ui/model/SettingModel.h"

#include "ui/logic/NumberFormat.h"
#include "ui/model/HistoryModel.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorbel {
namespace {

QString translated(std::string_view text) {
    return QCoreApplication::translate("Setting", std::string(text).c_str());
}

} // namespace

SettingModel::SettingModel(Field field, HistoryModel &history, QObject *parent)
    : QObject(parent), field_(std::move(field)), history_(history), value_(field_.read()) {}

void SettingModel::setValue(double value) {
    const bool isChoice = field_.choices > 0;
    if (!std::isfinite(value) || (isChoice && (value < 0.0 || value >= field_.choices)))
        return;
    const double next = isChoice ? std::floor(value) : shownValue(value);
    if (next == value_)
        return;
    history_.edit(name(), std::string(field_.key), [&] { field_.write(next); });
}

void SettingModel::refresh() {
    if (const double now = field_.read(); now != value_) {
        value_ = now;
        Q_EMIT valueChanged();
    }
}

QString SettingModel::text() const {
    return QString::fromStdString(valueText(value_, field_.scale));
}

double SettingModel::position() const {
    return std::clamp((value_ - from()) / (to() - from()), 0.0, 1.0);
}

double SettingModel::from() const { return shownValue(field_.scale.from); }
double SettingModel::to() const { return shownValue(field_.scale.to); }
double SettingModel::stepSize() const { return shownValue(field_.scale.step); }
double SettingModel::origin() const { return shownValue(field_.scale.neutral); }

QString SettingModel::label() const { return translated(field_.label); }

QString SettingModel::name() const {
    return field_.stage.empty() ? label() : translated(field_.stage) + ", " + label();
}

} // namespace quorbel
