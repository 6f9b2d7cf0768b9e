#include "settings/state/FileWatch.h"

#include <QFile>
#include <QStringList>

#include <filesystem>
#include <utility>

namespace quorbel {

namespace {

namespace fs = std::filesystem;

/// Quiet time after a change: a program may write the file in pieces.
constexpr double quietSeconds = 0.25;

/// Paths to watch for changes of the content behind `path`: the file, its folder and the folders of
/// all links to it. The nearest existing ancestor replaces a missing folder.
QStringList placesOf(const std::string &path) {
    constexpr int mostLinks = 40;
    QStringList places;
    std::error_code error;
    fs::path place = fs::absolute(path, error);
    for (int links = 0; links <= mostLinks; ++links) {
        fs::path folder = place.parent_path();
        while (!fs::is_directory(folder, error) && folder != folder.parent_path())
            folder = folder.parent_path();
        places << QFile::decodeName(folder.c_str());
        if (!fs::is_symlink(place, error))
            break;
        const fs::path target = fs::read_symlink(place, error);
        place = place.parent_path() / target;
    }
    if (fs::is_regular_file(place, error))
        places << QFile::decodeName(place.c_str());
    places.removeDuplicates();
    return places;
}

} // namespace

FileWatch::FileWatch(std::string path, Clock &clock, std::function<void()> changed)
    : path_(std::move(path)), clock_(clock), changed_(std::move(changed)) {
    const auto notice = [this] {
        watchPlaces();
        look_ = Timer::once(clock_, quietSeconds, [this] { changed_(); });
    };
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, notice);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, notice);
    watchPlaces();
}

/// Replaces every watch: the same name may now mean another file.
void FileWatch::watchPlaces() {
    if (const QStringList watched = watcher_.files() + watcher_.directories(); !watched.isEmpty())
        watcher_.removePaths(watched);
    watcher_.addPaths(placesOf(path_));
}

} // namespace quorbel
