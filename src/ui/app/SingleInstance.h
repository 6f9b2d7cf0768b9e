#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

#include <optional>

class QEventLoop;

namespace quorbel {

/// Request from the desktop or from a second instance.
struct DesktopRequest {
    /// `resume` comes from a login: continues the processing of the last run.
    enum class Kind { show, resume, startProcessing, stopProcessing, nextPreset, previousPreset };
    Kind kind = Kind::show;
    QString activationToken{}; ///< the desktop's permission to take the focus; may be empty
};

/// Allows one window per user session: the first instance owns a name on the session bus, later
/// ones activate its window and end. Without a session bus, every instance is the first. [main]
class SingleInstance final : public QObject {
    Q_OBJECT

  public:
    explicit SingleInstance(const QDBusConnection &bus);
    ~SingleInstance() override;

    [[nodiscard]] bool isFirst() const { return isFirst_; }

    /// Asks the first instance to show its window. False if it does not answer.
    [[nodiscard]] bool raiseFirst() const;

    /// Returns the request that started this program: `show`, unless the session bus delivers
    /// another. Nullopt if the bus started it and no request follows.
    [[nodiscard]] std::optional<DesktopRequest> startingRequest() const;

    /// Runs the event loop until the next request and returns it. Nullopt after `milliseconds`, or
    /// when the program is told to quit.
    [[nodiscard]] std::optional<DesktopRequest> waitForRequest(int milliseconds) const;

  Q_SIGNALS:
    void requested(const quorbel::DesktopRequest &request);

  private:
    [[nodiscard]] std::optional<DesktopRequest> firstRequestWithin(QEventLoop &loop) const;

    QDBusConnection bus_;
    bool isStartedByBus_;
    bool isFirst_ = true;
};

/// D-Bus interface of the program (Desktop Entry Specification, D-Bus activation). Actions are
/// those of the desktop entry; an unknown one shows the window.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

  public:
    explicit ApplicationAdaptor(SingleInstance &instance)
        : QDBusAbstractAdaptor(&instance), instance_(instance) {}

  public Q_SLOTS:
    // D-Bus methods; the interface defines their names.
    void Activate(const QVariantMap &platformData);                           // NOLINT
    void Open(const QStringList &files, const QVariantMap &platformData);     // NOLINT
    void ActivateAction(const QString &action, const QVariantList &parameter, // NOLINT
                        const QVariantMap &platformData);

  private:
    SingleInstance &instance_;
};

} // namespace quorbel
