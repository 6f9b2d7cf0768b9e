#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

#include <optional>

class QEventLoop;

namespace quorbel {

/// A request of the desktop or of a second start.
struct DesktopRequest {
    /// `resume` is a login's: to continue what the last program did.
    enum class Kind { show, resume, startProcessing, stopProcessing, nextPreset, previousPreset };
    Kind kind = Kind::show;
    QString activationToken{}; ///< the desktop's permission to take the focus; may be empty
};

/// One window per user session: the first program to start owns a name on the session bus, a second
/// one asks it to show itself and ends. Without a session bus every program is the first. [main]
class SingleInstance final : public QObject {
    Q_OBJECT

  public:
    explicit SingleInstance(const QDBusConnection &bus);
    ~SingleInstance() override;

    [[nodiscard]] bool isFirst() const { return isFirst_; }

    /// Asks the first one to show its window. False if it does not answer.
    [[nodiscard]] bool raiseFirst() const;

    /// The request that this program was started for: to show the window, unless the session bus
    /// started it for another one. Nothing if the bus started it and no request follows.
    [[nodiscard]] std::optional<DesktopRequest> startingRequest() const;

    /// The next request, for which the event loop runs. Nothing after `milliseconds`, or when the
    /// program is told to quit.
    [[nodiscard]] std::optional<DesktopRequest> waitForRequest(int milliseconds) const;

  Q_SIGNALS:
    void requested(const quorbel::DesktopRequest &request);

  private:
    [[nodiscard]] std::optional<DesktopRequest> firstRequestWithin(QEventLoop &loop) const;

    QDBusConnection bus_;
    bool isStartedByBus_;
    bool isFirst_ = true;
};

/// The face of a program on the bus, as the desktop entry specification (D-Bus activation) has it.
/// Actions are the desktop entry's; an unknown one shows the window.
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
