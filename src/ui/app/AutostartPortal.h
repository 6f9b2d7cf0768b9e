#pragma once

#include "ui/model/StartAtLoginModel.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

namespace quorbel {

class SessionMemory;

/// Switch "Start at login" in a sandbox. The desktop's Background portal accepts changes but does
/// not report the current state. [main]
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
    QString path_; ///< of the pending request
};

} // namespace quorbel
