#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QVariant>

#include <stdexcept>

namespace quorbel {

/// No program to control is running; `what()` is one line for the user.
class NothingToControl : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Calls the running program; never starts, raises or ends one. Needs an application object. [main]
class RemoteClient final : public QObject {
    Q_OBJECT

  public:
    /// Throws NothingToControl without a session bus.
    RemoteClient();
    ~RemoteClient() override;

    // Each waits up to ten seconds for the answer. Throws NothingToControl, or std::runtime_error
    // with the program's own text.
    QVariant call(const QString &method, const QVariantList &arguments = {});
    [[nodiscard]] QVariantMap properties();
    void setProperty(const QString &name, const QVariant &value);

    /// Starts emitting `changed` and `moved`. Throws NothingToControl.
    void watch();

  Q_SIGNALS:
    void changed(const QVariantMap &properties);
    /// Another program answers from now on; none if `isThere` is false.
    void moved(bool isThere);

  private Q_SLOTS:
    void takeChange(const QString &interface, const QVariantMap &properties,
                    const QStringList &invalidated);

  private:
    QVariantList callInterface(const QString &interface, const QString &method,
                               const QVariantList &arguments);
    void settle();

    QDBusConnection bus_;
};

} // namespace quorbel
