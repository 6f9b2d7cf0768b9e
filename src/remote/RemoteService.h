#pragma once

#include "remote/RemoteControl.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QVariantMap>

namespace quorbel {

/// Answers on the session bus for a RemoteControl, and signals its changes.
///
/// The programs that offer this share one bus name: a program asks for it when it is made, and
/// takes it over when its processing starts. So the name leads to the program that processes, or
/// else to the one that did last; the bus passes it on when that one ends. [main]
class RemoteService final : public QDBusVirtualObject {
  public:
    /// The control must outlive it. On a bus that is not connected it does nothing.
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
    RemoteStatus announced_; ///< last
};

} // namespace quorbel
