#include "cli/TableFile.h"

#include "cli/CommandError.h"

#include <cerrno>
#include <cstddef>
#include <system_error>
#include <unistd.h>

namespace quorbel {

namespace {

constexpr std::size_t flushBytes = 65536;

} // namespace

TableFile::TableFile(const std::string &path, std::string_view names) : path_(path), file_(path) {
    addRow(names);
}

void TableFile::addRow(std::string_view row) {
    pending_ += row;
    pending_ += '\n';
    if (pending_.size() >= flushBytes)
        flush();
}

void TableFile::finish() {
    flush();
    file_.takeName();
}

void TableFile::flush() {
    std::size_t done = 0;
    while (done < pending_.size()) {
        const ssize_t count =
            write(file_.descriptor(), pending_.data() + done, pending_.size() - done);
        if (count < 0 && errno != EINTR)
            throw CommandError(path_ +
                               ": cannot be written: " + std::generic_category().message(errno));
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    pending_.clear();
}

} // namespace quorbel
