#pragma once

#include "platform/threads/Timer.h"

#include <QFileSystemWatcher>
#include <QObject>

#include <functional>
#include <string>

namespace quorbel {

/// Notices another program's changes of a file at once: changes in place, by a rename, of a new
/// file, behind symbolic links or of a link. The file and its folder need not exist. Needs an
/// application with an event loop. [main]
class FileWatch final : public QObject {
    Q_OBJECT

  public:
    /// Calls `changed` a quarter of a second after the last change. The clock must outlive it.
    FileWatch(std::string path, Clock &clock, std::function<void()> changed);

  private:
    void watchPlaces();

    std::string path_;
    Clock &clock_;
    std::function<void()> changed_;
    QFileSystemWatcher watcher_;
    Timer look_;
};

} // namespace quorbel
