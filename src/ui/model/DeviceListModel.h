#pragma once

#include "platform/threads/Timer.h"
#include "settings/state/AppState.h"
#include "ui/model/RecordListModel.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// The output devices, in the platform's order, and the choice among them. [main]
class DeviceListModel final : public quorbel::RecordListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.devices is the only one")
    /// The row of the device in use; -1 where none is chosen or it is not there now.
    Q_PROPERTY(int currentIndex READ currentIndex NOTIFY currentChanged)
    /// Its name, also while the device is away; empty where none is chosen.
    Q_PROPERTY(QString currentName READ currentName NOTIFY currentChanged)

  public:
    enum Role {
        uidRole = Qt::UserRole,
        nameRole,
        isCurrentRole,
        isDefaultRole, ///< whether the system plays on it by default
    };

    DeviceListModel(AppState &state, Clock &clock, QObject *parent);

    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int currentIndex() const;
    [[nodiscard]] QString currentName() const;

    /// Makes the device with this uid the one in use; one that is not listed is ignored.
    Q_INVOKABLE void select(const QString &uid);
    /// Asks the system again.
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
