// Takes pictures of every screen in its main states from the real window on simulated hardware.
// Usage: quorbel-screenshots FOLDER [WIDTH HEIGHT [TEXT]]; TEXT is the text size in percent.

#include "ui/app/LinuxWording.h"
#include "ui/app/simulated/Stage.h"

#include <QDir>
#include <QGuiApplication>
#include <QtQml/QQmlExtensionPlugin>

#include <functional>
#include <iostream>

Q_IMPORT_QML_PLUGIN(Quorbel_DotmatrixPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ModelPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ScreensPlugin)

namespace quorbel {

namespace {

using simulated::Stage;

struct Picture {
    const char *name;
    std::function<void(Stage &)> prepare;
};

const Picture pictures[] = {
    {"equalizer-stopped", [](Stage &) {}},
    {"equalizer-running",
     [](Stage &stage) {
         stage.tune();
         stage.startWithMusic();
     }},
    {"equalizer-error",
     [](Stage &stage) {
         stage.machine.failCapture();
         stage.app().engine()->start();
         stage.run(0.5);
     }},
    {"spatial-stopped", [](Stage &stage) { stage.open("spatial"); }},
    {"spatial-expanded",
     [](Stage &stage) {
         stage.app().setting("xtcEnabled")->setValue(1);
         stage.app().setting("voiceEnabled")->setValue(1);
         stage.app().setting("voiceAdaptiveEnabled")->setValue(1);
         stage.open("spatial");
         stage.startWithMusic();
         stage.openCards({0, 3});
     }},
    {"spatial-expanded-end",
     [](Stage &stage) {
         stage.app().setting("bassEnabled")->setValue(1);
         stage.app().setting("bassAdaptiveEnabled")->setValue(1);
         stage.app().setting("toneBassDB")->setValue(3.0);
         stage.app().setting("toneTrebleDB")->setValue(-4.5);
         stage.open("spatial");
         stage.startWithMusic();
         stage.openCards({2, 4});
         stage.scrollToEnd();
     }},
    {"mixer-running",
     [](Stage &stage) {
         stage.app().setting("saturationEnabled")->setValue(1);
         stage.open("mixer");
         stage.startWithMusic();
     }},
    {"devices-running",
     [](Stage &stage) {
         stage.open("devices");
         stage.startWithMusic();
     }},
    {"devices-empty",
     [](Stage &stage) {
         stage.machine.removeAllDevices();
         stage.open("devices");
     }},
    {"programs-running",
     [](Stage &stage) {
         stage.machine.playPrograms();
         stage.open("programs");
         stage.startWithMusic();
         stage.app().programs()->setProcessed(1, false);
         stage.app().programs()->setProcessed(3, true);
     }},
    {"programs-empty", [](Stage &stage) { stage.open("programs"); }},
    {"limiter-running",
     [](Stage &stage) {
         stage.app().setting("autoGainEnabled")->setValue(1);
         stage.app().setting("limiterThresholdDB")->setValue(-6.0);
         stage.app().equalizer()->setGlobalGainDB(6.0);
         stage.open("limiter");
         stage.startWithMusic();
     }},
    {"presets-all",
     [](Stage &stage) {
         stage.app().presets()->applyRow(4);
         stage.open("presetsAll");
         stage.startWithMusic();
     }},
    {"presets-mine-empty", [](Stage &stage) { stage.open("presetsMine"); }},
    {"presets-imported",
     [](Stage &stage) {
         stage.app().presets()->save("Desk, evening");
         stage.open("presetsMine");
         stage.importTextWithGaps();
     }},
    {"save-sheet",
     [](Stage &stage) {
         stage.open("presetsAll");
         stage.openDialog("saveSheet");
     }},
    {"setup-stopped", [](Stage &stage) { stage.open("setup"); }},
    {"setup-running-end",
     [](Stage &stage) {
         stage.open("setup");
         stage.startWithMusic();
         stage.scrollToEnd();
     }},
    {"warning",
     [](Stage &stage) {
         stage.machine.blockSaving();
         stage.machine.persist();
     }},
};

} // namespace

} // namespace quorbel

int main(int argc, char **argv) {
    QGuiApplication application(argc, argv);
    quorbel::LinuxWording wording;
    QCoreApplication::installTranslator(&wording);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2 && arguments.size() != 4 && arguments.size() != 5) {
        std::cerr << "Usage: quorbel-screenshots FOLDER [WIDTH HEIGHT [TEXT]]\n";
        return 2;
    }
    const QDir folder(arguments[1]);
    const int width = arguments.size() >= 4 ? arguments[2].toInt() : 1280;
    const int height = arguments.size() >= 4 ? arguments[3].toInt() : 900;
    quorbel::simulated::setTextSize(arguments.size() == 5 ? arguments[4].toInt() : 100);
    folder.mkpath(".");
    for (const quorbel::Picture &picture : quorbel::pictures) {
        quorbel::simulated::Stage stage(width, height);
        picture.prepare(stage);
        const QString path = folder.filePath(QString(picture.name) + ".png");
        if (!stage.save(path)) {
            std::cerr << "quorbel-screenshots: " << path.toStdString() << " cannot be written\n";
            return 1;
        }
        std::cout << path.toStdString() << '\n';
    }
    return 0;
}
