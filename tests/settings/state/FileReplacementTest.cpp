#include "settings/files/FileReplacement.h"

#include "settings/state/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

/// Called before every fsync of this program; a result other than 0 fails it with that errno.
std::function<int(bool ofFolder)> beforeSync;

} // namespace

extern "C" int fsync(int descriptor) {
    struct stat status {};
    if (beforeSync && fstat(descriptor, &status) == 0)
        if (const int failure = beforeSync(S_ISDIR(status.st_mode)); failure != 0) {
            errno = failure;
            return -1;
        }
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

namespace quorbel::testing {
namespace {

class FileReplacement : public ::testing::Test {
  public:
    ~FileReplacement() override { beforeSync = nullptr; }

  protected:
    /// Expects a replacement of "old" to fail with the text `failure` and to leave no other file.
    void expectOldFileKept(const std::string &content, const char *failure) {
        write(file, "old");
        try {
            replaceFile(file, content);
            ADD_FAILURE() << "claims to be on the disk";
        } catch (const FileReplacementError &error) {
            EXPECT_STREQ(error.what(), failure);
        }
        EXPECT_EQ(contentOf(file), "old");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    }

    TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "file";
};

TEST_F(FileReplacement, TheContentIsOnTheDiskBeforeTheNameAndTheNameOnReturn) {
    write(file, "old");
    std::vector<std::string> seen;
    beforeSync = [&](bool ofFolder) {
        seen.push_back((ofFolder ? "folder with " : "content beside ") + contentOf(file));
        return 0;
    };
    replaceFile(file, "new");
    ASSERT_GE(seen.size(), 2U);
    EXPECT_EQ(seen.front(), "content beside old");
    EXPECT_EQ(seen.back(), "folder with new");
}

TEST_F(FileReplacement, AFileKeepsItsPermissions) {
    namespace fs = std::filesystem;
    write(file, "old");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    replaceFile(file, "new");
    EXPECT_EQ(contentOf(file), "new");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(FileReplacement, ADiskThatCannotSyncKeepsTheOldFile) {
    beforeSync = [](bool ofFolder) { return ofFolder ? 0 : EIO; };
    expectOldFileKept("new", "Input/output error");
}

TEST_F(FileReplacement, AFullDiskKeepsTheOldFile) {
    // A file size limit fails in the middle of a write, as a full disk does.
    rlimit unlimited{};
    getrlimit(RLIMIT_FSIZE, &unlimited);
    const rlimit small{.rlim_cur = 10000, .rlim_max = unlimited.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    expectOldFileKept(std::string(20000, 'x'), "File too large");
    setrlimit(RLIMIT_FSIZE, &unlimited);
    std::signal(SIGXFSZ, handler);
}

} // namespace
} // namespace quorbel::testing
