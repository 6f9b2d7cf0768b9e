#pragma once

#include "platform/threads/Timer.h"
#include "settings/state/AppState.h"
#include "ui/model/RecordListModel.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// Output devices, in the platform's order, and the one in use. [main]
class DeviceListModel final : public quorbel::RecordListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.devices is the only one")
    /// Row of the device in use; -1 if none is chosen or it is disconnected.
    Q_PROPERTY(int currentIndex READ currentIndex NOTIFY currentChanged)
    /// Its name, also while disconnected; empty if none is chosen.
    Q_PROPERTY(QString currentName READ currentName NOTIFY currentChanged)

  public:
    enum Role {
        uidRole = Qt::UserRole,
        nameRole,
        isCurrentRole,
        isDefaultRole, ///< true for the system's default output
    };

    DeviceListModel(AppState &state, Clock &clock, QObject *parent);

    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int currentIndex() const;
    [[nodiscard]] QString currentName() const;

    /// Selects the device with this uid; ignores an unlisted one.
    Q_INVOKABLE void select(const QString &uid);
    /// Re-reads the device list from the system.
    Q_INVOKABLE void refresh();

  Q_SIGNALS:
    void currentChanged();

  private:
    void followDevices();
    void followCurrent();

    AppState &state_;
    std::vector<AudioDevice> devices_; ///< as shown
    std::optional<std::string> defaultUID_;
    Timer look_; ///< polls the hardware while no engine listens to it
};

} // namespace quorbel
