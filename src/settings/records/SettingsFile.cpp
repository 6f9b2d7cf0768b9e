#include "settings/records/SettingsFile.h"

#include "settings/records/json/SettingsCoding.h"

#include <QDir>

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quorbel {

namespace {

// A preset takes about 2 KiB, so this is some 30000 of them.
constexpr std::size_t maximumBytes = std::size_t{64} << 20U;

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

[[noreturn]] void fail(const std::string &path, const std::string &reason) {
    throw SettingsFileError(path + ": " + reason);
}

[[noreturn]] void failWithErrno(const std::string &path) {
    fail(path, std::generic_category().message(errno));
}

} // namespace

std::string userSettingsPath() {
    const char *configured = std::getenv("XDG_CONFIG_HOME"); // NOLINT(concurrency-mt-unsafe)
    std::string folder;
    if (configured != nullptr && configured[0] == '/')
        folder = configured;
    else
        folder = QDir::homePath().toStdString() + "/.config";
    return folder + "/Quorbel/state.json";
}

std::string readSettingsText(const std::string &path) {
    // Not to wait on a named pipe that nobody writes to.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (file.get() < 0)
        failWithErrno(path);
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        failWithErrno(path);
    if (S_ISDIR(status.st_mode))
        fail(path, "is a directory, not a settings file");
    if (!S_ISREG(status.st_mode))
        fail(path, "is not a regular file");
    const std::string tooLarge = "is larger than 64 MiB, not a settings file";
    if (status.st_size > static_cast<off_t>(maximumBytes))
        fail(path, tooLarge);

    // One byte beyond the size tells whether the file has grown since.
    std::string text(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t length = 0;
    while (true) {
        if (length == text.size())
            text.resize(text.size() * 2);
        const ssize_t count = ::read(file.get(), text.data() + length, text.size() - length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            failWithErrno(path);
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
        if (length > maximumBytes)
            fail(path, tooLarge);
    }
    text.resize(length);
    return text;
}

Persisted readSettingsFile(const std::string &path) {
    return decodeRecord<Persisted>(readSettingsText(path));
}

} // namespace quorbel
