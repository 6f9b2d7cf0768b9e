#include "ui/app/LinuxWording.h"

#include "engine/SystemAudioTap.h"
#include "ui/model/EngineModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>

namespace quorbel {
namespace {

/// Installs the catalogue for one test.
class LinuxWordingTest : public ::testing::Test {
  protected:
    LinuxWordingTest() { QCoreApplication::installTranslator(&wording_); }
    ~LinuxWordingTest() override { QCoreApplication::removeTranslator(&wording_); }

    [[nodiscard]] static std::string shown(const char *context, const char *text) {
        return QCoreApplication::translate(context, text).toStdString();
    }

  private:
    int count_ = 1;
    char name_[5] = "test";
    char *arguments_[2] = {name_, nullptr};
    QCoreApplication application_{count_, arguments_};
    LinuxWording wording_;
};

TEST_F(LinuxWordingTest, RewordsATextWhereverItIsShownAndNoOther) {
    const char *text = "Quit the app and macOS sound returns by itself.";
    EXPECT_THAT(shown("DevicesView", text), ::testing::HasSubstr("your system"));
    EXPECT_EQ(shown("SetupGuideView", text), shown("DevicesView", text));
    EXPECT_EQ(shown("DevicesView", "Devices"), "Devices");
}

TEST_F(LinuxWordingTest, RewordsTheEnginesTextAndKeepsItsStatus) {
    const std::string error = SystemAudioTap::Error::captureStartFailed(-13).what();
    EXPECT_THAT(error, ::testing::HasSubstr("System Settings"));
    const std::string text = shownError(error).toStdString();
    EXPECT_THAT(text, ::testing::HasSubstr("(OSStatus -13)"));
    EXPECT_THAT(text, ::testing::Not(::testing::HasSubstr("System Settings")));
    EXPECT_EQ(shownError("No output device selected."), "No output device selected.");
}

} // namespace
} // namespace quorbel
