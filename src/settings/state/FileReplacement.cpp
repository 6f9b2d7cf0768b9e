#include "settings/state/FileReplacement.h"

#include <QFile>
#include <QSaveFile>

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quorbel {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(int errorNumber) {
    throw FileReplacementError(std::generic_category().message(errorNumber));
}

[[noreturn]] void fail(const QSaveFile &file) {
    throw FileReplacementError(file.errorString().toStdString());
}

/// Makes a name that was given or taken in this folder outlast a power cut.
void syncFolder(const fs::path &folder) {
    const int descriptor =
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return; // One may write into a folder that one may not read, but not sync it.
    const int result = ::fsync(descriptor);
    const int errorNumber = errno;
    ::close(descriptor);
    if (result != 0 && errorNumber != EINVAL) // EINVAL: a file system without such a thing
        fail(errorNumber);
}

void makeFolder(const fs::path &folder) {
    std::error_code ignored;
    if (folder.empty() || fs::is_directory(folder, ignored))
        return;
    makeFolder(folder.parent_path());
    // A file in the folder's place is left to be found when the folder is used.
    if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        fail(errno);
    syncFolder(folder.parent_path());
}

} // namespace

std::string fileBehindLinks(const std::string &path) {
    constexpr int mostLinks = 40; // as Linux follows
    fs::path target = path;
    std::error_code error;
    for (int links = 0; fs::is_symlink(target, error); ++links) {
        if (links == mostLinks)
            return path;
        target = target.parent_path() / fs::read_symlink(target, error);
        if (error)
            return path;
    }
    return target;
}

void makeFolderOf(const std::string &path) { makeFolder(fs::path(path).parent_path()); }

void requireFileOrNothing(const std::string &path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode))
        return;
    if (S_ISDIR(status.st_mode))
        fail(EISDIR);
    throw FileReplacementError(path + " is not a regular file");
}

void replaceFile(const std::string &path, std::string_view content) {
    requireFileOrNothing(path);
    const fs::path target = fileBehindLinks(path);
    makeFolder(target.parent_path());

    QSaveFile file(QFile::decodeName(target.c_str()));
    if (!file.open(QIODevice::WriteOnly))
        fail(file);
    while (!content.empty()) {
        // On a full disk a part is written first and only the next call fails.
        const qint64 written = file.write(content.data(), static_cast<qint64>(content.size()));
        if (written <= 0)
            fail(file);
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    if (!file.flush())
        fail(file);
    // Before the file takes the name: otherwise a power cut could leave the name on an empty file.
    if (::fsync(file.handle()) != 0)
        fail(errno);
    if (!file.commit())
        fail(file);
    syncFolder(target.parent_path());
}

} // namespace quorbel
