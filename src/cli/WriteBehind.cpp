#include "cli/WriteBehind.h"

#include <cerrno>
#include <fcntl.h>

namespace quorbel {

namespace {

// Some tens of milliseconds for a disk.
constexpr std::uint64_t stretchBytes = std::uint64_t{8} << 20U;

bool isOfTheDisk(int error) noexcept { return error == EIO || error == ENOSPC || error == EDQUOT; }

} // namespace

int WriteBehind::wrote(std::uint64_t bytes) noexcept {
    handed_ += bytes;
    if (handed_ < started_ + stretchBytes)
        return 0;
    const auto offset = [](std::uint64_t position) { return static_cast<off64_t>(position); };
    sync_file_range(descriptor_, offset(started_), offset(handed_ - started_),
                    SYNC_FILE_RANGE_WRITE);
    // The stretch before has had the time of one to get there.
    if (started_ > written_) {
        constexpr unsigned all =
            SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
        // An error is told once: a later synchronisation of the whole file would not know of it.
        if (sync_file_range(descriptor_, offset(written_), offset(started_ - written_), all) != 0 &&
            isOfTheDisk(errno))
            return errno;
        posix_fadvise(descriptor_, offset(written_), offset(started_ - written_),
                      POSIX_FADV_DONTNEED);
    }
    written_ = started_;
    started_ = handed_;
    return 0;
}

} // namespace quorbel
