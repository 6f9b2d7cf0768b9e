#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <functional>

namespace quorbel {

/// The desktop's notification that sound is processed without a window, with the actions Stop and
/// Quit. One at a time. [main]
class BackgroundNotice final : public QObject {
    Q_OBJECT

  public:
    explicit BackgroundNotice(const QDBusConnection &bus);

    /// Asks the desktop to show it. `answered` is called once, later: whether it is shown. A
    /// desktop without notifications, or one that does not answer in time, shows none.
    void show(std::function<void(bool isShown)> answered);
    /// Takes it away again, where it is shown.
    void withdraw();

  Q_SIGNALS:
    /// The user has clicked on the notification itself. The token is the desktop's permission to
    /// take the focus; may be empty.
    void windowRequested(const QString &activationToken);
    void stopRequested();
    void quitRequested();

  private Q_SLOTS:
    void takeToken(uint id, const QString &token);
    void takeAction(uint id, const QString &action);

  private:
    QDBusConnection bus_;
    uint id_ = 0; ///< the desktop's; 0 while none is shown
    QString token_;
};

} // namespace quorbel
