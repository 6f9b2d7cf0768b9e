#include "ui/model/PresetListModel.h"

#include "ui/logic/PresetTexts.h"
#include "ui/model/HistoryModel.h"
#include "ui/model/PresetExchange.h"
#include "ui/model/PresetFileChooser.h"
#include "ui/model/UserPresets.h"

#include <QFileInfo>

#include <algorithm>

namespace quorbel {

namespace {

QStringList shownNotes(const std::vector<LineNote> &notes) {
    QStringList lines;
    for (const LineNote &note : notes)
        lines << PresetListModel::tr("line %1: %2")
                     .arg(note.line)
                     .arg(QString::fromUtf8(note.reason));
    return lines;
}

ExchangeResult failed(const QString &why) {
    ExchangeResult result;
    result.message = why;
    return result;
}

} // namespace

PresetListModel::PresetListModel(AppState &state, HistoryModel &history, QObject *parent)
    : RecordListModel(parent), state_(state), history_(history), presets_(state.presets()),
      activeName_(QString::fromUtf8(state.activePresetDisplayName())) {
    connect(&state_, &AppState::presetsChanged, this, &PresetListModel::followPresets);
    connect(&state_, &AppState::activePresetIDChanged, this, &PresetListModel::followActive);
    // The name shown compares these two with the active preset.
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
    default:
        return {};
    }
}

QHash<int, QByteArray> PresetListModel::roleNames() const {
    return {
        {presetIdRole, "presetId"}, {nameRole, "name"},       {categoryTitleRole, "categoryTitle"},
        {notesRole, "notes"},       {summaryRole, "summary"}, {isUserRole, "isUser"},
        {playingRole, "playing"}};
}

int PresetListModel::activeIndex() const {
    const auto active = std::ranges::find_if(
        presets_, [&](const Preset &preset) { return preset.id == state_.activePresetID(); });
    return active == presets_.end() ? -1 : static_cast<int>(active - presets_.begin());
}

QStringList PresetListModel::names() const {
    QStringList names;
    for (const Preset &preset : presets_)
        names << QString::fromUtf8(preset.name);
    return names;
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

void PresetListModel::remove(const QString &id) {
    const Preset *preset = find(id);
    if (preset != nullptr && preset->category == Preset::Category::user)
        history_.edit(tr("Delete preset %1").arg(QString::fromUtf8(preset->name)),
                      "delete " + id.toStdString(), [&] { state_.deletePreset(*preset); });
}

void PresetListModel::save(const QString &name) {
    const std::string trimmed = trimmedName(name.toStdString());
    if (!trimmed.empty())
        history_.edit(tr("Save preset %1").arg(QString::fromUtf8(trimmed)), "save",
                      [&] { state_.savePreset(trimmed); });
}

bool PresetListModel::canSave(const QString &name) {
    return !trimmedName(name.toStdString()).empty();
}

void PresetListModel::requestImport() {
    if (chooser_ != nullptr)
        chooser_->chooseImport([this](const QString &path) { Q_EMIT exchanged(importFile(path)); });
}

void PresetListModel::requestExport(const QString &id) {
    const Preset *preset = find(id);
    if (chooser_ != nullptr && preset != nullptr)
        chooser_->chooseExport(
            QString::fromUtf8(fileNameFor(preset->name)),
            [this, id](const QString &path) { Q_EMIT exchanged(exportPreset(id, path)); });
}

ExchangeResult PresetListModel::importFile(const QString &path) {
    try {
        const ImportedPreset imported = readPreset(path.toStdString());
        history_.edit(tr("Import %1").arg(QString::fromUtf8(imported.preset.name)), "import",
                      [&] { adoptPreset(state_, imported.preset, imported.globalGainDB); });
        return {.ok = true,
                .message = QString::fromUtf8(imported.summary),
                .skipped = shownNotes(imported.skipped),
                .limited = shownNotes(imported.limited)};
    } catch (const PresetExchangeError &error) {
        return failed(QString::fromUtf8(error.what()));
    }
}

ExchangeResult PresetListModel::exportPreset(const QString &id, const QString &path) const {
    const Preset *preset = find(id);
    if (preset == nullptr)
        return failed(tr("This preset is no longer there."));
    try {
        // The global gain belongs to what is heard now, and so to the preset in force alone.
        const bool isActive = preset->id == state_.activePresetID();
        writePreset(path.toStdString(), *preset,
                    isActive ? state_.engine().eq().globalGainDB() : 0.0F);
        ExchangeResult done;
        done.ok = true;
        done.message = tr("%1 was written to %2")
                           .arg(QString::fromUtf8(preset->name), QFileInfo(path).fileName());
        return done;
    } catch (const PresetExchangeError &error) {
        return failed(QString::fromUtf8(error.what()));
    }
}

void PresetListModel::followPresets() {
    replaceRecords(presets_, state_.presets(), &Preset::id);
    Q_EMIT namesChanged();
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

} // namespace quorbel
