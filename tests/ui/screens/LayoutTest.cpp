// The window on any screen, at any text size: nothing is cut, covered or out of reach.

#include "ui/app/MainWindow.h"
#include "ui/app/simulated/Stage.h"
#include "ui/screens/LayoutFaults.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QGuiApplication>
#include <QTranslator>
#include <QtQml/QQmlExtensionPlugin>

#include <functional>

Q_IMPORT_QML_PLUGIN(Quorbel_DotmatrixPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ModelPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ScreensPlugin)

namespace quorbel::testing {

namespace {

using simulated::Stage;

/// Makes every text half as long again, as German or Finnish would.
class LongTexts final : public QTranslator {
  public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char *, const char *source, const char *,
                                    int) const override {
        const QString text = QString::fromUtf8(source);
        static const QString filling = QString("nel mezzo del cammin di vita ").repeated(20);
        return text + ' ' + filling.left(text.size() / 2).trimmed();
    }
};

using Prepare = std::function<void(Stage &)>;

void nothing(Stage &) {}

void error(Stage &stage) {
    stage.machine.failCapture();
    stage.app().engine()->start();
    stage.run(0.2);
}

void running(Stage &stage) {
    stage.tune();
    stage.machine.playPrograms();
    stage.app().setting("autoGainEnabled")->setValue(1);
    stage.machine.playMusic();
    stage.app().engine()->start();
    stage.run(0.3);
}

/// Interrupted, retrying.
void interrupted(Stage &stage) {
    running(stage);
    stage.machine.removeDevice("headphones");
    stage.machine.removeDevice("speakers");
    stage.run(0.2);
}

void cardsOpen(Stage &stage) { stage.openCards({0, 1, 2, 3, 4}); }

void noDevices(Stage &stage) { stage.machine.removeAllDevices(); }

void longNames(Stage &stage) {
    stage.machine.addDevice("long", "HDA Intel PCH, ALC892 Digital (HDMI 3 Output, Living Room)");
    stage.app().devices()->select("long");
    stage.app().presets()->save("Headphones of the living room, late in the evening, second try");
    stage.importTextWithGaps();
    stage.machine.playPrograms();
    for (int row = 0; row < 3; ++row)
        stage.app().programs()->setProcessed(row, row == 2);
}

void warning(Stage &stage) {
    stage.machine.blockSaving();
    stage.machine.persist();
}

Prepare all(std::initializer_list<Prepare> steps) {
    return [steps = std::vector<Prepare>(steps)](Stage &stage) {
        for (const Prepare &step : steps)
            step(stage);
    };
}

/// Screens are paired with states so that each state meets a small screen and a large text at least
/// once. Sizes are logical: a screen of 1920 x 1080 at scale 1.5 has 1280 x 720 logical pixels, and
/// only painting depends on the scale.
struct Case {
    const char *name;
    int width;
    int height;
    int textPercent;
    bool longTexts;
    Prepare prepare;
    bool byKeyboard = false;
};

const Case cases[] = {
    {"minimum", 1020, 760, 100, false, nothing, true},
    {"minimumLongTexts", 1020, 760, 100, true, interrupted},
    {"small", 720, 480, 100, false, all({longNames, running, cardsOpen}), true},
    {"laptop", 1366, 728, 100, true, all({warning, error})},
    {"laptopScale1_5", 911, 485, 100, false, all({noDevices, warning})},
    {"laptopScale2", 683, 364, 100, true, error, true},
    {"fullHD", 1920, 1080, 200, true, all({running, cardsOpen, longNames})},
    {"fullHDScale1_5", 1280, 720, 150, true, all({interrupted, warning})},
    {"fullHDScale2", 960, 540, 200, true, all({longNames, error})},
    {"laptopText150", 1366, 728, 150, false, all({running, cardsOpen}), true},
    {"minimumText150", 1020, 760, 150, true, noDevices},
    {"minimumText200", 1020, 760, 200, true, all({longNames, running, cardsOpen}), true},
    {"smallText200", 720, 480, 200, true, all({cardsOpen, warning, error})},
    {"smallText200Stopped", 720, 480, 200, true, nothing, true},
};

constexpr const char *destinations[] = {"equalizer",  "spatial",     "mixer",
                                        "devices",    "limiter",     "programs",
                                        "presetsAll", "presetsMine", "setup"};

class LayoutTest : public ::testing::TestWithParam<Case> {
  protected:
    LayoutTest() {
        QAccessible::setActive(true);
        simulated::setTextSize(GetParam().textPercent);
        if (GetParam().longTexts)
            QCoreApplication::installTranslator(&longTexts_);
    }
    ~LayoutTest() override {
        QCoreApplication::removeTranslator(&longTexts_);
        simulated::setTextSize(100);
    }

    /// Rows of lists appear some frames after the list.
    void expectNoFaults(Stage &stage, const std::string &where) {
        const double scale = GetParam().textPercent / 100.0;
        QStringList faults = layoutFaults(stage.window(), scale);
        for (int frame = 0; frame < 20 && !faults.isEmpty(); ++frame) {
            stage.run(0.02);
            faults = layoutFaults(stage.window(), scale);
        }
        expectNone(faults, where);
    }
    void expectNone(const QStringList &faults, const std::string &where) {
        EXPECT_TRUE(faults.isEmpty())
            << faults.size() << " on " << where << ":\n  " << faults.join("\n  ").toStdString();
    }

  private:
    LongTexts longTexts_;
};

TEST_P(LayoutTest, ShowsEverything) {
    const Case &param = GetParam();
    Stage stage(param.width, param.height);
    param.prepare(stage);
    for (const char *destination : destinations) {
        stage.open(destination);
        expectNoFaults(stage, destination);
        if (param.byKeyboard)
            expectNone(keyboardFaults(stage.window()), std::string(destination) + " by keyboard");
    }
    for (const char *dialog : {"saveSheet", "aboutDialog"}) {
        stage.openDialog(dialog);
        expectNoFaults(stage, dialog);
        stage.closeDialog(dialog);
    }
    for (const char *box : {"outputBox", "presetBox"}) {
        auto *popup =
            stage.window().findChild<QObject *>(box)->property("popup").value<QObject *>();
        QMetaObject::invokeMethod(popup, "open");
        stage.settle();
        expectNoFaults(stage, box);
        QMetaObject::invokeMethod(popup, "close");
        stage.settle();
    }
}

/// Content, title bar and a panel of the desktop always fit on the screen.
TEST(WindowSizesTest, FitTheScreen) {
    const WindowSizes wanted{.start = {1280, 900}, .minimum = {1020, 760}};
    struct {
        QRect available;
        QRect whole;
        WindowSizes expected;
    } const screens[] = {
        {{0, 0, 1920, 1040}, {0, 0, 1920, 1080}, wanted},
        {{0, 0, 1366, 728}, {0, 0, 1366, 768}, {{1280, 688}, {1020, 688}}},
        {{0, 0, 1366, 768}, {0, 0, 1366, 768}, {{1280, 680}, {1020, 680}}}, // Wayland
        {{1920, 32, 960, 508}, {1920, 0, 960, 540}, {{952, 468}, {952, 468}}},
        {{0, 0, 800, 600}, {0, 0, 800, 600}, {{792, 512}, {792, 512}}},
    };
    for (const auto &screen : screens) {
        const WindowSizes sizes = fittedTo(screen.available, screen.whole, wanted);
        EXPECT_EQ(sizes.start, screen.expected.start) << screen.available.width();
        EXPECT_EQ(sizes.minimum, screen.expected.minimum) << screen.available.width();
    }
}

INSTANTIATE_TEST_SUITE_P(Screens, LayoutTest, ::testing::ValuesIn(cases),
                         [](const auto &test) { return test.param.name; });

} // namespace

} // namespace quorbel::testing

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
