#include "settings/records/SettingsFile.h"

#include "settings/state/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace quorbel::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

class SettingsFile : public ::testing::Test {
  protected:
    [[nodiscard]] std::string path(const std::string &name) const { return folder_.path() / name; }
    [[nodiscard]] std::string file(const std::string &name, const std::string &text) const {
        write(path(name), text);
        return path(name);
    }
    static std::string failureReading(const std::string &path) {
        try {
            (void)readSettingsFile(path);
        } catch (const SettingsFileError &error) {
            return error.what();
        }
        return "read";
    }

  private:
    const TemporaryFolder folder_;
};

// Reading a pipe without a writer or an endless device must not block.
TEST_F(SettingsFile, NonFilesAreRefusedAtOnceByName) {
    EXPECT_THAT(failureReading(path("missing.json")),
                AllOf(HasSubstr("missing.json: "), HasSubstr("No such file")));
    EXPECT_THAT(failureReading(path("")), HasSubstr("is a directory"));

    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_THAT(failureReading(path("pipe")), HasSubstr("is not a regular file"));
    EXPECT_THAT(failureReading("/dev/zero"), HasSubstr("is not a regular file"));

    const std::string huge = file("huge.json", "{");
    std::filesystem::resize_file(huge, 200U << 20U); // sparse
    EXPECT_THAT(failureReading(huge), HasSubstr("is larger than 64 MiB"));

    if (geteuid() != 0) {
        const std::string secret = file("secret.json", "{}");
        ASSERT_EQ(chmod(secret.c_str(), 0), 0);
        EXPECT_THAT(failureReading(secret), HasSubstr("Permission denied"));
    }
}

} // namespace
} // namespace quorbel::testing
