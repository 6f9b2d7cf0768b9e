#pragma once

#include "platform/threads/Timer.h"

#include <QFileSystemWatcher>
#include <QObject>

namespace quorbel {

class AppState;

/// Lets the state take other programs' changes of the settings file at once: changes in place, by a
/// rename, of a new file, behind symbolic links or of a link. Needs an application with an event
/// loop. [main]
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
