#pragma once

#include "remote/RemoteControl.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QVariantMap>

namespace quorbel {

/// Answers calls on the session bus for a RemoteControl, and signals its changes.
///
/// The programs with this service share one bus name: each requests it at construction, and takes
/// it over when its processing starts. So the name belongs to the program that processes, or else
/// to the last one that did; the bus passes it on when that one ends. [main]
class RemoteService final : public QDBusVirtualObject {
  public:
    /// The control must outlive it. Does nothing on a disconnected bus.
    RemoteService(RemoteControl &control, const QDBusConnection &bus);
    ~RemoteService() override;

    [[nodiscard]] QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override;

  private:
    void requestName(bool takesOver);
    void announce();
    void call(const QDBusMessage &message);
    void callProperties(const QDBusMessage &message);
    void start(const QDBusMessage &message);
    void reply(const QDBusMessage &message, const QVariantList &values = {});

    RemoteControl &control_;
    QDBusConnection bus_;
    RemoteStatus announced_; ///< last signalled status
};

} // namespace quorbel
