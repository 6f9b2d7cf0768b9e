#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

namespace quorbel {

/// One window per user session: the first program to start owns a name on the session bus, a second
/// one asks it to show itself and ends. Without a session bus everyone is the first. [main]
class SingleInstance final : public QObject {
    Q_OBJECT

  public:
    explicit SingleInstance(const QDBusConnection &bus);
    ~SingleInstance() override;

    [[nodiscard]] bool isFirst() const { return isFirst_; }

    /// Asks the first one to show its window. False if it does not answer.
    [[nodiscard]] bool raiseFirst() const;

  Q_SIGNALS:
    /// Another one was started. `activationToken` is the desktop's permission to take the focus;
    /// may be empty.
    void raiseRequested(const QString &activationToken);

  private:
    QDBusConnection bus_;
    bool isFirst_ = true;
};

/// The face of a program on the bus, as the desktop entry specification (D-Bus activation) has it.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

  public:
    explicit ApplicationAdaptor(SingleInstance &instance)
        : QDBusAbstractAdaptor(&instance), instance_(instance) {}

  public Q_SLOTS:
    // Called from outside, by these names.
    void Activate(const QVariantMap &platformData);                           // NOLINT
    void Open(const QStringList &files, const QVariantMap &platformData);     // NOLINT
    void ActivateAction(const QString &action, const QVariantList &parameter, // NOLINT
                        const QVariantMap &platformData);

  private:
    SingleInstance &instance_;
};

} // namespace quorbel
