#include "ui/model/PresetListModel.h"

#include "platform/core/Trimmed.h"
#include "ui/logic/PresetTexts.h"
#include "ui/model/FavouritePresets.h"
#include "ui/model/HistoryModel.h"
#include "ui/model/UserPresets.h"

#include <algorithm>

namespace quorbel {

namespace {

/// Returns the name without blanks at both ends; empty if unusable.
std::string trimmedName(const QString &name) { return std::string(trimmed(name.toStdString())); }

} // namespace

PresetListModel::PresetListModel(AppState &state, FavouritePresets &favourites,
                                 HistoryModel &history, QObject *parent)
    : RecordListModel(parent), state_(state), favourites_(favourites), history_(history),
      choices_(state, favourites, nullptr), presets_(state.presets()),
      activeName_(QString::fromUtf8(state.activePresetDisplayName())) {
    connect(&favourites_, &FavouritePresets::changed, this, &PresetListModel::announceContents);
    connect(&state_, &AppState::presetsChanged, this, &PresetListModel::followPresets);
    connect(&state_, &AppState::activePresetIDChanged, this, &PresetListModel::followActive);
    // The displayed name compares these two with the active preset.
    connect(&state_.engine().eq(), &EQProcessor::bandsChanged, this,
            &PresetListModel::updateActiveName);
    connect(&state_.engine(), &AudioEngine::spatialChanged, this,
            &PresetListModel::updateActiveName);
}

int PresetListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(presets_.size());
}

QVariant PresetListModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Preset &preset = presets_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case presetIdRole:
        return QString::fromStdString(preset.id.text());
    case nameRole:
        return QString::fromUtf8(preset.name);
    case categoryTitleRole:
        return QString::fromUtf8(displayName(preset.category));
    case notesRole:
        return QString::fromUtf8(preset.notes);
    case summaryRole:
        return QString::fromUtf8(descriere(preset));
    case isUserRole:
        return preset.category == Preset::Category::user;
    case playingRole:
        return preset.id == state_.activePresetID();
    case favouriteRole:
        return favourites_.contains(preset.id);
    default:
        return {};
    }
}

QHash<int, QByteArray> PresetListModel::roleNames() const {
    return {{presetIdRole, "presetId"},
            {nameRole, "name"},
            {categoryTitleRole, "categoryTitle"},
            {notesRole, "notes"},
            {summaryRole, "summary"},
            {isUserRole, "isUser"},
            {playingRole, "playing"},
            {favouriteRole, "favourite"}};
}

int PresetListModel::activeIndex() const {
    const auto active = std::ranges::find_if(
        presets_, [&](const Preset &preset) { return preset.id == state_.activePresetID(); });
    return active == presets_.end() ? -1 : static_cast<int>(active - presets_.begin());
}

void PresetListModel::apply(const QString &id) {
    if (const Preset *preset = find(id))
        history_.edit(tr("Preset %1").arg(QString::fromUtf8(preset->name)), "preset",
                      [&] { state_.applyPreset(*preset); });
}

void PresetListModel::applyRow(int row) {
    if (row >= 0 && row < count())
        apply(data(index(row), presetIdRole).toString());
}

void PresetListModel::setFavourite(const QString &id, bool isFavourite) {
    const Preset *preset = find(id);
    if (preset == nullptr || favourites_.contains(preset->id) == isFavourite)
        return;
    std::vector<Uuid> next = favourites_.ids();
    if (isFavourite)
        next.push_back(preset->id);
    else
        std::erase(next, preset->id);
    history_.edit(tr("Favourite %1").arg(QString::fromUtf8(preset->name)),
                  "favourite " + id.toStdString(), [&] { favourites_.set(next); });
}

void PresetListModel::save(const QString &name) {
    const std::string saved = trimmedName(name);
    if (!saved.empty())
        history_.edit(tr("Save preset %1").arg(QString::fromUtf8(saved)), "save",
                      [&] { state_.savePreset(saved); });
}

bool PresetListModel::canSave(const QString &name) { return !trimmedName(name).empty(); }

QString PresetListModel::duplicate(const QString &id) {
    const Preset *preset = find(id);
    if (preset == nullptr)
        return {};
    Uuid copy;
    const Preset original = *preset;
    history_.edit(tr("Duplicate preset %1").arg(QString::fromUtf8(original.name)), "duplicate",
                  [&] { copy = duplicatePreset(state_, original); });
    return QString::fromStdString(copy.text());
}

void PresetListModel::remove(const QString &id) {
    if (const Preset *preset = findOwn(id))
        history_.edit(tr("Delete preset %1").arg(QString::fromUtf8(preset->name)),
                      "delete " + id.toStdString(), [&] { state_.deletePreset(*preset); });
}

void PresetListModel::rename(const QString &id, const QString &name) {
    const std::string next = trimmedName(name);
    const Preset *preset = findOwn(id);
    if (preset == nullptr || next.empty() || next == preset->name)
        return;
    history_.edit(tr("Rename preset %1").arg(QString::fromUtf8(preset->name)),
                  "rename " + id.toStdString(),
                  [&, own = preset->id] { renamePreset(state_, own, next); });
}

void PresetListModel::update(const QString &id) {
    if (const Preset *preset = findOwn(id))
        history_.edit(tr("Update preset %1").arg(QString::fromUtf8(preset->name)), "update",
                      [&, own = preset->id] { updatePreset(state_, own); });
}

void PresetListModel::followPresets() {
    replaceRecords(presets_, state_.presets(), &Preset::id);
    followActive();
}

void PresetListModel::followActive() {
    announceContents();
    Q_EMIT activeIndexChanged();
    updateActiveName();
}

void PresetListModel::updateActiveName() {
    const QString name = QString::fromUtf8(state_.activePresetDisplayName());
    if (name == activeName_)
        return;
    activeName_ = name;
    Q_EMIT activeNameChanged();
}

const Preset *PresetListModel::find(const QString &id) const {
    const auto uuid = Uuid::fromText(id.toStdString());
    const auto found = std::ranges::find_if(
        state_.presets(), [&](const Preset &preset) { return preset.id == uuid; });
    return found == state_.presets().end() ? nullptr : &*found;
}

const Preset *PresetListModel::findOwn(const QString &id) const {
    const Preset *preset = find(id);
    return preset != nullptr && preset->category == Preset::Category::user ? preset : nullptr;
}

} // namespace quorbel
