#include "ui/model/OutputProfileModel.h"

#include "settings/state/ProfileDecision.h"
#include "ui/logic/OutputTexts.h"

#include <algorithm>
#include <utility>

namespace quorbel {

namespace {

using Use = OutputProfile::Use;

/// Choices listed before the presets.
enum Choice { settingsOfNow, flat, leaveAlone, firstPreset };

} // namespace

OutputProfileModel::OutputProfileModel(AppState &state, QObject *parent)
    : RecordListModel(parent), state_(state), rows_(currentRows()) {
    connect(&state_.profiles(), &OutputProfiles::changed, this, &OutputProfileModel::follow);
    connect(&state_.deviceManager(), &DeviceManager::outputDevicesChanged, this,
            &OutputProfileModel::follow);
    connect(&state_.engine(), &AudioEngine::outputDeviceChanged, this, &OutputProfileModel::follow);
    connect(&state_, &AppState::presetsChanged, this, [this] {
        Q_EMIT choicesChanged();
        follow();
    });
}

int OutputProfileModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant OutputProfileModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row &row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case nameRole:
        return row.name;
    case placeRole:
        return row.place;
    case profileRole:
        return row.profile;
    case choiceRole:
        return row.choice;
    case hasProfileRole:
        return row.hasProfile;
    default:
        return {};
    }
}

QHash<int, QByteArray> OutputProfileModel::roleNames() const {
    return {{nameRole, "name"},
            {placeRole, "place"},
            {profileRole, "profile"},
            {choiceRole, "choice"},
            {hasProfileRole, "hasProfile"}};
}

QStringList OutputProfileModel::choices() const {
    QStringList choices{tr("Settings of now"), tr("Flat"), tr("Leave this output alone")};
    for (const Preset &preset : state_.presets())
        choices << QString::fromUtf8(preset.name);
    return choices;
}

int OutputProfileModel::choiceOf(const OutputProfile &profile) const {
    if (profile.use != Use::preset)
        return profile.use == Use::flat ? flat : leaveAlone;
    const auto found =
        std::ranges::find(state_.presets(), profile.presetID,
                          [](const Preset &preset) { return std::optional(preset.id); });
    return found == state_.presets().end()
               ? -1
               : firstPreset + static_cast<int>(found - state_.presets().begin());
}

OutputProfileModel::Row OutputProfileModel::rowOf(const OutputKey &key,
                                                  const std::string &label) const {
    const OutputProfiles &profiles = state_.profiles();
    Row row{
        .key = key, .label = label, .name = QString::fromUtf8(label), .place = {}, .profile = {}};
    if (const OutputProfile *profile = profiles.withKey(key)) {
        row.hasProfile = true;
        row.choice = choiceOf(*profile);
        row.profile = QString::fromUtf8(profiles.titleOf(*profile));
    } else {
        const bool isCallDefault =
            profiles.isActive() && key.bluetooth == OutputIdentity::Bluetooth::call;
        row.profile = isCallDefault ? tr("Left alone, as every call") : tr("No profile of its own");
    }
    return row;
}

std::vector<OutputProfileModel::Row> OutputProfileModel::currentRows() const {
    std::vector<Row> rows;
    const auto isListed = [&](const OutputKey &key) {
        return std::ranges::find(rows, key, &Row::key) != rows.end();
    };
    const auto &used = state_.engine().outputDevice();
    for (const AudioDevice &device : state_.deviceManager().outputDevices()) {
        const OutputKey key = keyOf(device.identity);
        if (device.identity.isAwaited || isListed(key))
            continue;
        rows.push_back(rowOf(key, outputLabel(device.name, device.identity)));
        if (used && used->uid == device.uid)
            rows.back().place = tr("In use");
    }
    for (const OutputProfile &profile : state_.profiles().profiles()) {
        if (profile.key.isAnyOther() || isListed(profile.key))
            continue;
        const std::string name = profile.key.card.value_or(profile.key.node.value_or("?"));
        rows.push_back(rowOf(profile.key, profile.label.empty() ? name : profile.label));
        const bool isInUse =
            state_.profiles().inUse() != nullptr && state_.profiles().inUse()->key == profile.key;
        rows.back().place = isInUse ? tr("In use") : tr("Not connected");
    }
    rows.push_back(rowOf({}, tr("Any other output").toStdString()));
    return rows;
}

void OutputProfileModel::follow() {
    const auto keyText = [](const Row &row) {
        return std::tuple(row.key.card, row.key.route, row.key.node, row.key.bluetooth);
    };
    replaceRecords(rows_, currentRows(), keyText);
}

void OutputProfileModel::choose(int row, int choice) {
    const auto presetCount = static_cast<int>(state_.presets().size());
    if (row < 0 || row >= count() || choice < 0 || choice >= firstPreset + presetCount)
        return;
    const Row chosen = rows_[static_cast<std::size_t>(row)];
    if (choice >= firstPreset) {
        const Preset &preset = state_.presets()[static_cast<std::size_t>(choice - firstPreset)];
        state_.assignProfile(chosen.key, chosen.label, Use::preset, preset.id);
    } else {
        const Use use = choice == flat         ? Use::flat
                        : choice == leaveAlone ? Use::leaveAlone
                                               : Use::preset;
        state_.assignProfile(chosen.key, chosen.label, use);
    }
}

void OutputProfileModel::forget(int row) {
    if (row >= 0 && row < count())
        state_.forgetProfile(OutputKey(rows_[static_cast<std::size_t>(row)].key));
}

} // namespace quorbel
