#pragma once

#include "ui/model/StartAtLoginModel.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

namespace quorbel {

class SessionMemory;

/// The switch "Start at login" in a sandbox: by the desktop's Background portal, which can be asked
/// for a change, but not for the current state. [main]
class AutostartPortal final : public QObject {
    Q_OBJECT

  public:
    /// Model and memory must outlive it.
    AutostartPortal(StartAtLoginModel &model, SessionMemory &memory, const QDBusConnection &bus);

  private Q_SLOTS:
    void takeResponse(uint response, const QVariantMap &results);

  private:
    void request(bool on);
    void show(const QString &failure = {});

    StartAtLoginModel &model_;
    SessionMemory &memory_;
    QDBusConnection bus_;
    bool isAsking_ = false;
    bool isAskedOn_ = false;
    int requests_ = 0;
    QString path_; ///< of the request under way
};

} // namespace quorbel
