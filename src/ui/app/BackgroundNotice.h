#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <functional>

namespace quorbel {

/// Desktop notification that sound is processed without a window, with the actions Stop and Quit.
/// Shows at most one at a time. [main]
class BackgroundNotice final : public QObject {
    Q_OBJECT

  public:
    explicit BackgroundNotice(const QDBusConnection &bus);

    /// Asks the desktop to show it. Calls `answered` once, later; with false if the desktop has no
    /// notifications or does not answer in time.
    void show(std::function<void(bool isShown)> answered);
    /// Removes the notification if it is shown.
    void withdraw();

  Q_SIGNALS:
    /// Emitted after a click on the notification itself. The token is the desktop's permission to
    /// take the focus; may be empty.
    void windowRequested(const QString &activationToken);
    void stopRequested();
    void quitRequested();

  private Q_SLOTS:
    void takeToken(uint id, const QString &token);
    void takeAction(uint id, const QString &action);

  private:
    QDBusConnection bus_;
    uint id_ = 0; ///< assigned by the desktop; 0 while hidden
    QString token_;
};

} // namespace quorbel
