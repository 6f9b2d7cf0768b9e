#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// The switch "Start at login". It shows what the desktop says; the program sets that and carries
/// out the requests. [main]
class StartAtLoginModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.startAtLogin is the only one")
    Q_PROPERTY(bool on READ on NOTIFY changed)
    /// True if it can be switched now.
    Q_PROPERTY(bool offered READ offered NOTIFY changed)
    /// The reason why it is not offered, or the failure of the last request; empty for none.
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

    /// Announced in any case: the control has moved, whether or not the request succeeds.
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
