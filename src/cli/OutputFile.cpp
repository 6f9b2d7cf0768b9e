#include "cli/OutputFile.h"

#include "cli/CommandError.h"

#include <sys/stat.h>

namespace quorbel {

namespace {

[[noreturn]] void failToWrite(const std::string &path, const std::string &reason) {
    throw CommandError(path + ": cannot be written: " + reason);
}

/// Returns the result of `work`; reports its failure with the file's path.
template <class Work> auto writing(const std::string &path, const Work &work) {
    try {
        return work();
    } catch (const FileReplacementError &error) {
        failToWrite(path, error.what());
    }
}

const std::string &requireFile(const std::string &path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
        throw CommandError(
            path + (S_ISDIR(status.st_mode) ? ": is a directory" : ": is not a regular file"));
    return path;
}

} // namespace

OutputFile::OutputFile(const std::string &path)
    : path_(requireFile(path)), file_(writing(path, [&] { return FileReplacement(path); })) {}

void OutputFile::write(std::string_view bytes) {
    writing(path_, [&] { file_.write(bytes); });
}

void OutputFile::commit() {
    writing(path_, [&] { file_.commit(); });
}

void OutputFile::fail(const std::string &reason) const { failToWrite(path_, reason); }

} // namespace quorbel
