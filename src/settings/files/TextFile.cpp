#include "settings/files/TextFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quorbel {

namespace {

using Reason = TextFileError::Reason;

class Descriptor {
  public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }
    [[nodiscard]] int get() const { return descriptor_; }

  private:
    int descriptor_;
};

[[noreturn]] void failReading() {
    throw TextFileError(errno == ENOENT ? Reason::missing : Reason::system,
                        std::generic_category().message(errno));
}

} // namespace

std::string readTextFile(const std::string &path, std::size_t maximumBytes) {
    // Non-blocking: a named pipe may have no writer.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0)
        failReading();
    if (S_ISDIR(status.st_mode))
        throw TextFileError(Reason::directory, "is a directory");
    if (!S_ISREG(status.st_mode))
        throw TextFileError(Reason::irregular, "is not a regular file");
    const TextFileError tooLarge(Reason::tooLarge,
                                 "is larger than " + std::to_string(maximumBytes >> 20U) + " MiB");
    if (status.st_size > static_cast<off_t>(maximumBytes))
        throw tooLarge;

    // One extra byte detects a file that has grown since.
    std::string text(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t length = 0;
    while (true) {
        if (length == text.size())
            text.resize(text.size() * 2);
        const ssize_t count = ::read(file.get(), text.data() + length, text.size() - length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            failReading();
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
        if (length > maximumBytes)
            throw tooLarge;
    }
    text.resize(length);
    return text;
}

} // namespace quorbel
