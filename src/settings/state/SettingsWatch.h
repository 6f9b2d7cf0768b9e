#pragma once

#include "platform/threads/Timer.h"

#include <QFileSystemWatcher>
#include <QObject>

namespace quorbel {

class AppState;

/// Lets the state take what other programs write into the settings file while this one runs:
/// changed in place, replaced by a rename, made where there was none, behind symbolic links or by
/// another link. Needs an application with an event loop. [main]
class SettingsWatch final : public QObject {
    Q_OBJECT

  public:
    /// Both must outlive it.
    SettingsWatch(AppState &state, Clock &clock);

  private:
    void watchPlaces();

    AppState &state_;
    Clock &clock_;
    QFileSystemWatcher watcher_;
    Timer look_;
};

} // namespace quorbel
