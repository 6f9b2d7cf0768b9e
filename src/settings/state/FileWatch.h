#pragma once

#include "platform/threads/Timer.h"

#include <QFileSystemWatcher>
#include <QObject>

#include <functional>
#include <string>

namespace quorbel {

/// Watches a file for other programs' changes: in place, by a rename, of a new file, behind
/// symbolic links or of a link. The file and its folder need not exist. Needs a Qt event loop.
/// [main]
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
