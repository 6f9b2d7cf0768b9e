#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// Switch "Start at login". The program sets its state and carries out its requests. [main]
class StartAtLoginModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.startAtLogin is the only one")
    Q_PROPERTY(bool on READ on NOTIFY changed)
    /// True if the user can switch it now.
    Q_PROPERTY(bool offered READ offered NOTIFY changed)
    /// Reason why it is not offered, or failure of the last request; empty for none.
    Q_PROPERTY(QString note READ note NOTIFY changed)

  public:
    struct State {
        bool isOn = false;
        bool isOffered = true;
        QString note{};
    };

    explicit StartAtLoginModel(QObject *parent) : QObject(parent) {}

    [[nodiscard]] bool on() const { return state_.isOn; }
    [[nodiscard]] bool offered() const { return state_.isOffered; }
    [[nodiscard]] const QString &note() const { return state_.note; }

    /// Always emits `changed`: the control has moved even if the request fails.
    void setState(const State &state) {
        state_ = state;
        Q_EMIT changed();
    }

    Q_INVOKABLE void toggle() { Q_EMIT requested(!state_.isOn); }

  Q_SIGNALS:
    void changed();
    void requested(bool on);

  private:
    State state_;
};

} // namespace quorbel
