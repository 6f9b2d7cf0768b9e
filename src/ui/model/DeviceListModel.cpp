#include "ui/model/DeviceListModel.h"

#include <algorithm>

namespace quorbel {
namespace {

constexpr double lookSeconds = 2.0;

} // namespace

DeviceListModel::DeviceListModel(AppState &state, Clock &clock, QObject *parent)
    : RecordListModel(parent), state_(state), devices_(state.deviceManager().outputDevices()),
      defaultUID_(state.deviceManager().currentDefaultOutputUID()) {
    connect(&state_.deviceManager(), &DeviceManager::outputDevicesChanged, this,
            &DeviceListModel::followDevices);
    connect(&state_.engine(), &AudioEngine::outputDeviceChanged, this,
            &DeviceListModel::followCurrent);
    look_ = Timer::repeating(clock, lookSeconds, [this] {
        if (state_.engine().state() != EngineLifecycle::State::running())
            state_.deviceManager().refreshIfChanged();
    });
}

int DeviceListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(devices_.size());
}

QVariant DeviceListModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const AudioDevice &device = devices_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case uidRole:
        return QString::fromStdString(device.uid);
    case nameRole:
        return QString::fromStdString(device.name);
    case isCurrentRole:
        return index.row() == currentIndex();
    case isDefaultRole:
        return device.uid == defaultUID_;
    default:
        return {};
    }
}

QHash<int, QByteArray> DeviceListModel::roleNames() const {
    return {{uidRole, "uid"},
            {nameRole, "name"},
            {isCurrentRole, "isCurrent"},
            {isDefaultRole, "isDefault"}};
}

int DeviceListModel::currentIndex() const {
    const auto &current = state_.engine().outputDevice();
    if (!current)
        return -1;
    // Compares uids: a reconnected device has another id.
    const auto found = std::ranges::find(devices_, current->uid, &AudioDevice::uid);
    return found == devices_.end() ? -1 : static_cast<int>(found - devices_.begin());
}

QString DeviceListModel::currentName() const {
    const auto &current = state_.engine().outputDevice();
    return current ? QString::fromStdString(current->name) : QString();
}

void DeviceListModel::select(const QString &uid) {
    if (auto device = state_.deviceManager().outputDevice(uid.toStdString()))
        state_.engine().setOutputDevice(std::move(device));
}

void DeviceListModel::refresh() { state_.deviceManager().refresh(); }

void DeviceListModel::followDevices() {
    defaultUID_ = state_.deviceManager().currentDefaultOutputUID();
    replaceRecords(devices_, state_.deviceManager().outputDevices(), &AudioDevice::uid);
    Q_EMIT currentChanged();
}

void DeviceListModel::followCurrent() {
    announceContents();
    Q_EMIT currentChanged();
}

} // namespace quorbel
