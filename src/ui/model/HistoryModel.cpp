#include "ui/model/HistoryModel.h"

#include "settings/state/SharedSettingsFile.h"
#include "ui/model/UserPresets.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorbel {

HistoryModel::HistoryModel(AppState &state, FavouritePresets &favourites, Clock &clock,
                           QObject *parent)
    : QObject(parent), state_(state), favourites_(favourites), clock_(clock),
      userPresets_(quorbel::userPresets(state.presets())) {
    connect(&state_, &AppState::presetsChanged, this, &HistoryModel::followPresets);
    // Drops the steps, which belong to another output's settings.
    connect(&state_.profiles(), &OutputProfiles::switched, this, [this] {
        history_ = {};
        Q_EMIT changed();
    });
}

void HistoryModel::edit(const QString &what, const std::string &key,
                        const std::function<void()> &change) {
    EditState before = current();
    {
        // A save within the change may take over presets of another program. Excludes them from the
        // step: undoing it must not delete them.
        QObject context;
        connect(&state_, &AppState::presetsTaken, &context, [&](const auto &from, const auto &to) {
            before.userPresets = PresetSnapshot(
                mergedPresets(userPresets(from), userPresets(to), *before.userPresets));
        });
        change();
    }
    history_.record(std::move(before), current(), what.toStdString(), key, clock_.now());
    Q_EMIT changed();
}

QString HistoryModel::undoText() const {
    return canUndo() ? tr("Undo %1").arg(QString::fromStdString(history_.undoable().what))
                     : tr("Undo");
}

QString HistoryModel::redoText() const {
    return canRedo() ? tr("Redo %1").arg(QString::fromStdString(history_.redoable().what))
                     : tr("Redo");
}

void HistoryModel::undo() {
    history_.endGesture();
    if (canUndo()) {
        const EditStep step = history_.undo();
        restore(step.after, step.before);
    }
    Q_EMIT changed();
}

void HistoryModel::redo() {
    history_.endGesture();
    if (canRedo()) {
        const EditStep step = history_.redo();
        restore(step.before, step.after);
    }
    Q_EMIT changed();
}

void HistoryModel::beginGesture() { history_.beginGesture(); }

void HistoryModel::endGesture() {
    history_.endGesture();
    Q_EMIT changed();
}

EditState HistoryModel::current() const {
    AudioEngine &engine = state_.engine();
    return {.bands = engine.eq().bands(),
            .globalGainDB = engine.eq().globalGainDB(),
            .presetGainDB = engine.eq().presetGainDB(),
            .spatial = engine.spatial(),
            .mixer = engine.mixer(),
            .userPresets = userPresets_,
            .activePresetID = state_.activePresetID(),
            .favourites = favourites_.ids(),
            .presetGains = {.ofPresets = state_.presetGains().ofPresets, .applied = {}}};
}

/// Keeps an unchanged snapshot, so that steps still share it.
void HistoryModel::followPresets() {
    std::vector<Preset> now = userPresets(state_.presets());
    if (now != *userPresets_)
        userPresets_ = PresetSnapshot(std::move(now));
}

void HistoryModel::restore(const EditState &from, const EditState &to) {
    restorePresetGains(from, to);
    restoreSound(from, to);
    if (from.favourites != to.favourites)
        restoreFavourites(from, to);
    // Last, because it saves all that was restored.
    if (from.userPresets != to.userPresets)
        state_.setUserPresets(
            mergedPresets(*from.userPresets, *to.userPresets, userPresets(state_.presets())));
}

/// Skips presets with a gain unchanged by the step: another program may have changed it since.
void HistoryModel::restorePresetGains(const EditState &from, const EditState &to) {
    const auto restoreWhereChanged = [&](const std::map<std::string, float> &presets) {
        for (const auto &preset : presets) {
            const auto id = Uuid::fromText(preset.first);
            if (from.presetGains.of(*id) != to.presetGains.of(*id))
                state_.setPresetGainDB(*id, to.presetGains.of(*id));
        }
    };
    restoreWhereChanged(from.presetGains.ofPresets);
    restoreWhereChanged(to.presetGains.ofPresets);
}

void HistoryModel::restoreFavourites(const EditState &from, const EditState &to) {
    const auto isIn = [](const std::vector<Uuid> &ids, const Uuid &id) {
        return std::ranges::find(ids, id) != ids.end();
    };
    std::vector<Uuid> next = favourites_.ids();
    std::erase_if(next, [&](const Uuid &id) {
        return isIn(from.favourites, id) && !isIn(to.favourites, id);
    });
    std::ranges::copy_if(to.favourites, std::back_inserter(next), [&](const Uuid &id) {
        return !isIn(from.favourites, id) && !isIn(next, id);
    });
    favourites_.set(next);
}

void HistoryModel::restoreSound(const EditState &from, const EditState &to) {
    AudioEngine &engine = state_.engine();
    const auto change = engine.changeSettings();
    const float presetGainDB =
        from.presetGainDB == to.presetGainDB ? engine.eq().presetGainDB() : to.presetGainDB;
    const auto &bands = from.bands == to.bands ? engine.eq().bands() : to.bands;
    const SpatialConfig &spatial = from.spatial == to.spatial ? engine.spatial() : to.spatial;
    if (from.activePresetID != to.activePresetID && to.activePresetID) {
        // Activates the preset with the restored content, which only `applyPreset` can do.
        state_.applyPreset({.id = *to.activePresetID, .bands = bands, .spatial = spatial});
    } else {
        if (from.bands != to.bands)
            engine.eq().setBands(bands);
        if (from.spatial != to.spatial)
            engine.setSpatial(spatial);
    }
    // After the preset, which sets its own gain.
    if (engine.eq().presetGainDB() != presetGainDB)
        engine.eq().setPresetGainDB(presetGainDB);
    if (from.globalGainDB != to.globalGainDB)
        engine.eq().setGlobalGainDB(to.globalGainDB);
    if (from.mixer != to.mixer)
        engine.setMixer(to.mixer);
}

} // namespace quorbel
