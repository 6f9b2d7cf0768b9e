#include "ui/model/NavigationModel.h"

#include <algorithm>

namespace quorbel {

NavigationModel::NavigationModel(AppState &state, QObject *parent)
    : QAbstractListModel(parent), state_(state) {
    for (const GrupDestinatii &group : grupuri())
        for (const Destinatie destination : group.destinations)
            rows_.push_back({destination, group.title, destination == group.destinations.front()});
    badges_.resize(rows_.size());
    updateBadges();
    const auto update = [this] { updateBadges(); };
    connect(&state_.engine().eq(), &EQProcessor::bandsChanged, this, update);
    connect(&state_.engine(), &AudioEngine::spatialChanged, this, update);
    connect(&state_.engine(), &AudioEngine::mixerChanged, this, update);
    connect(&state_.deviceManager(), &DeviceManager::outputDevicesChanged, this, update);
    connect(&state_, &AppState::presetsChanged, this, update);
}

int NavigationModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant NavigationModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const auto position = static_cast<std::size_t>(index.row());
    const Row &row = rows_[position];
    switch (role) {
    case rawValueRole:
        return QString::fromUtf8(rawValue(row.destination));
    case titleRole:
        return QString::fromUtf8(title(row.destination));
    case symbolRole:
        return QString::fromUtf8(symbol(row.destination));
    case badgeRole:
        return badges_[position];
    case groupRole:
        return QString::fromUtf8(row.group);
    case startsGroupRole:
        return row.startsGroup;
    default:
        return {};
    }
}

QHash<int, QByteArray> NavigationModel::roleNames() const {
    return {{rawValueRole, "rawValue"}, {titleRole, "title"}, {symbolRole, "symbol"},
            {badgeRole, "badge"},       {groupRole, "group"}, {startsGroupRole, "startsGroup"}};
}

int NavigationModel::indexOf(const QString &raw) const {
    const auto found = std::ranges::find_if(
        rows_, [&](const Row &row) { return QString::fromUtf8(rawValue(row.destination)) == raw; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

QString NavigationModel::titleOf(const QString &raw) const {
    const int row = indexOf(raw);
    return row >= 0 ? data(index(row), titleRole).toString() : QString();
}

void NavigationModel::updateBadges() {
    const InsigneSource source{.bandCount = state_.engine().eq().bands().size(),
                               .spatial = state_.engine().spatial(),
                               .mixer = state_.engine().mixer(),
                               .deviceCount = state_.deviceManager().outputDevices().size(),
                               .presets = state_.presets()};
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const QString badge = QString::fromStdString(insigna(rows_[i].destination, source));
        if (badge == badges_[i])
            continue;
        badges_[i] = badge;
        const QModelIndex row = index(static_cast<int>(i));
        Q_EMIT dataChanged(row, row, {badgeRole});
    }
}

} // namespace quorbel
