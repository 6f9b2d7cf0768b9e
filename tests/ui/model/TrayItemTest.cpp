#include "ui/app/TrayItem.h"

#include "ui/model/ModelFixture.h"

#include <QApplication>

namespace quorbel::testing {
namespace {

class TrayItemTest : public ModelTest {
  protected:
    [[nodiscard]] static QAction *entry(const QMenu &menu, const QString &text) {
        for (QAction *action : menu.actions())
            if (action->text() == text)
                return action;
        ADD_FAILURE() << "no entry " << text.toStdString();
        return nullptr;
    }

  private:
    int count_ = 3;
    char name_[5] = "test";
    char option_[10] = "-platform";
    char platform_[10] = "offscreen";
    char *arguments_[4] = {name_, option_, platform_, nullptr};
    QApplication application_{count_, arguments_};
};

TEST_F(TrayItemTest, OffersTheUsersPresetsAtHandAndTheLibraryInGroups) {
    TrayItem tray(*app);
    app->presets()->save("Desk & chair");
    app->presets()->setFavourite(presetId(28), true);
    QMenu &presets = *entry(tray.menu(), "Preset")->menu();
    EXPECT_EQ(presets.actions().front()->text(), "Cinema / Film");
    EXPECT_TRUE(entry(presets, "Desk && chair")->isChecked());
    QMenu &bass = *entry(presets, "Bass")->menu();
    EXPECT_EQ(bass.actions().size(), 4);

    entry(bass, "Bass Heavy")->trigger();
    EXPECT_EQ(app->presets()->activeName(), "Bass Heavy");
    EXPECT_TRUE(entry(bass, "Bass Heavy")->isChecked());
    EXPECT_FALSE(entry(presets, "Desk && chair")->isChecked());
    app->equalizer()->bands()->setGain(0, 1);
    EXPECT_FALSE(entry(bass, "Bass Heavy")->isChecked()) << "Custom";
}

} // namespace
} // namespace quorbel::testing
