#include "ui/model/PresetChoiceModel.h"

#include "settings/presets/PresetChoice.h"
#include "ui/model/FavouritePresets.h"

#include <algorithm>
#include <utility>

namespace quorbel {

PresetChoiceModel::PresetChoiceModel(AppState &state, FavouritePresets &favourites, QObject *parent)
    : RecordListModel(parent), state_(state), favourites_(favourites), choices_(currentChoices()) {
    connect(&state_, &AppState::presetsChanged, this, &PresetChoiceModel::followPresets);
    connect(&favourites_, &FavouritePresets::changed, this, &PresetChoiceModel::followPresets);
    connect(&state_, &AppState::activePresetIDChanged, this, &PresetChoiceModel::followActive);
    connect(&state_.engine().eq(), &EQProcessor::bandsChanged, this,
            &PresetChoiceModel::followActive);
    connect(&state_.engine(), &AudioEngine::spatialChanged, this, &PresetChoiceModel::followActive);
    followActive();
}

int PresetChoiceModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(choices_.size());
}

QVariant PresetChoiceModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Choice &choice = choices_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case presetIdRole:
        return choice.id;
    case nameRole:
        return choice.name;
    case groupRole:
        return choice.group;
    default:
        return {};
    }
}

QHash<int, QByteArray> PresetChoiceModel::roleNames() const {
    return {{presetIdRole, "presetId"}, {nameRole, "name"}, {groupRole, "group"}};
}

std::vector<PresetChoiceModel::Choice> PresetChoiceModel::currentChoices() const {
    std::vector<Choice> choices;
    for (const Preset &preset : inPickerOrder(state_.presets(), favourites_.ids()))
        choices.push_back({.id = QString::fromStdString(preset.id.text()),
                           .name = QString::fromUtf8(preset.name),
                           .group = favourites_.contains(preset.id)
                                        ? tr("Favourites")
                                        : QString::fromUtf8(displayName(preset.category))});
    return choices;
}

void PresetChoiceModel::followPresets() {
    // The key includes the group, because views read the group of a row only once.
    replaceRecords(choices_, currentChoices(),
                   [](const Choice &choice) { return std::pair(choice.id, choice.group); });
    Q_EMIT choicesChanged();
    currentIndex_ = -1; // a view may have lost its index with the rows
    followActive();
}

void PresetChoiceModel::followActive() {
    int index = -1;
    if (const auto &active = state_.activePresetID()) {
        const QString id = QString::fromStdString(active->text());
        const auto found = std::ranges::find(choices_, id, &Choice::id);
        if (found != choices_.end())
            index = static_cast<int>(found - choices_.begin());
    }
    const bool isUnchanged = state_.isActivePresetUnchanged();
    if (index == currentIndex_ && isUnchanged == isCurrentUnchanged_)
        return;
    currentIndex_ = index;
    isCurrentUnchanged_ = isUnchanged;
    Q_EMIT currentChanged();
}

} // namespace quorbel
