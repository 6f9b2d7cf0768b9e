#include "ui/model/SettingsModel.h"

#include "ui/logic/NumberFormat.h"
#include "ui/logic/PanelTexts.h"
#include "ui/logic/Stages.h"
#include "ui/model/HistoryModel.h"

#include <cstddef>
#include <type_traits>
#include <variant>

namespace quorbel {
namespace {

using ReverbPreset = SpatialConfig::ReverbPreset;

/// Number of choices of a field; 0 for a numeric field.
template <class Value> constexpr int choicesOf = 0;
template <> constexpr int choicesOf<bool> = 2;
template <>
constexpr int choicesOf<ReverbPreset> = static_cast<int>(SpatialConfig::allReverbPresets.size());

template <class Value> double shown(Value value) {
    if constexpr (std::is_same_v<Value, float>)
        return shownValue(value);
    else
        return static_cast<double>(value);
}

template <class Value> Value stored(double value) {
    if constexpr (std::is_same_v<Value, float>)
        return settingValue(value);
    else
        return static_cast<Value>(static_cast<int>(value));
}

} // namespace

template <> const SpatialConfig &SettingsModel::current() const { return engine_.spatial(); }
template <> const MixerConfig &SettingsModel::current() const { return engine_.mixer(); }

SettingsModel::SettingsModel(AudioEngine &engine, HistoryModel &history, QObject *parent)
    : QObject(parent), engine_(engine), history_(history) {
    for (const auto &setting : spatialSettings)
        add(setting);
    for (const auto &setting : mixerSettings)
        add(setting);
    connect(&engine_, &AudioEngine::spatialChanged, this, &SettingsModel::refresh);
    connect(&engine_, &AudioEngine::mixerChanged, this, &SettingsModel::refresh);
}

template <class Record> void SettingsModel::add(const Setting<Record> &setting) {
    const Record defaults;
    std::visit(
        [&]<class Value>(Value Record::*member) {
            settings_[setting.key] = new SettingModel(
                {.key = setting.key,
                 .label = setting.label,
                 .stage = setting.stage,
                 .scale = setting.scale,
                 .choices = choicesOf<Value>,
                 .defaultValue = shown(defaults.*member),
                 .read = [this, member] { return shown(current<Record>().*member); },
                 .write =
                     [this, member](double value) {
                         Record record = current<Record>();
                         record.*member = stored<Value>(value);
                         apply(record);
                     }},
                history_, this);
        },
        setting.field);
}

SettingModel *SettingsModel::setting(std::string_view key) const {
    const auto found = settings_.find(key);
    Q_ASSERT(found != settings_.end());
    return found == settings_.end() ? nullptr : found->second;
}

void SettingsModel::refresh() {
    for (const auto &[key, setting] : settings_)
        setting->refresh();
    Q_EMIT stagesChanged();
}

QStringList SettingsModel::reverbPresetTitles() {
    QStringList titles;
    for (const auto preset : SpatialConfig::allReverbPresets)
        titles << QString::fromUtf8(title(preset));
    return titles;
}

int SettingsModel::spatialStagesOn() const { return quorbel::spatialStagesOn(engine_.spatial()); }
int SettingsModel::colourStagesOn() const { return quorbel::colourStagesOn(engine_.mixer()); }
int SettingsModel::levelStagesOn() const { return quorbel::levelStagesOn(engine_.mixer()); }
QString SettingsModel::peakProtection() const {
    return QString::fromStdString(protectie(engine_.mixer()));
}

void SettingsModel::resetTone() {
    history_.edit("Tone reset", [&] {
        SpatialConfig spatial = engine_.spatial();
        spatial.toneBassDB = 0.0F;
        spatial.toneMidDB = 0.0F;
        spatial.toneTrebleDB = 0.0F;
        engine_.setSpatial(spatial);
    });
}

} // namespace quorbel
