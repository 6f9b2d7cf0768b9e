// Pictures of every screen in its main states, taken from the real window on a machine in memory.
// Usage: quorbel-screenshots FOLDER [WIDTH HEIGHT]

#include "ui/app/LinuxWording.h"
#include "ui/screens/SimulatedMachine.h"

#include <QDir>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTest>
#include <QtQml/QQmlExtensionPlugin>

#include <functional>
#include <iostream>
#include <memory>

Q_IMPORT_QML_PLUGIN(Quorbel_DotmatrixPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ModelPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ScreensPlugin)

namespace quorbel {

namespace {

/// The window of a program that has just been started.
class Stage {
  public:
    Stage(int width, int height) {
        engine_.addImportPath("qrc:/qt/qml");
        engine_.load(QUrl("qrc:/qt/qml/Quorbel/Screens/Main.qml"));
        window_ = qobject_cast<QQuickWindow *>(engine_.rootObjects().value(0));
        if (window_ == nullptr)
            qFatal("the window cannot be made");
        window_->resize(width, height);
        window_->show();
        settle();
    }

    testing::SimulatedMachine machine;

    AppModel &app() { return machine.model(); }
    void open(const char *destination) {
        window_->setProperty("destination", QString(destination));
        settle();
    }
    void openCards(std::initializer_list<int> stages) {
        QVariantList list;
        for (const int stage : stages)
            list.append(stage);
        part("mainView").setProperty("expandedStages", list);
        settle();
    }
    void scrollToEnd() {
        QMetaObject::invokeMethod(&part("screenPage"), "scrollToEnd");
        settle();
    }
    void openDialog(const char *name) {
        QMetaObject::invokeMethod(&part(name), "open");
        settle();
    }
    void startWithMusic() {
        machine.playMusic();
        app().engine()->start();
        run(1.5);
    }
    /// Lets time pass in steps short enough for the display to keep up.
    void run(double seconds) {
        for (double done = 0.0; done < seconds; done += 0.02) {
            machine.advance(0.02);
            QTest::qWait(2); // the spectrum's copies are made on a thread of real time
        }
        settle();
    }
    void importTextWithGaps() {
        const QString file =
            machine.writeFile("Headphones.txt", "Preamp: -4.5 dB\n"
                                                "Filter 1: ON PK Fc 63 Hz Gain 3.5 dB Q 0.9\n"
                                                "Filter 2: ON NO Fc 900 Hz\n"
                                                "Filter 3: ON HSC Fc 8000 Hz Gain -2 dB Q 0.7\n"
                                                "Channel: L\n");
        machine.setProperty("chosenFile", file);
        app().presets()->requestImport();
        settle();
    }

    bool save(const QString &path) {
        settle();
        return window_->grabWindow().save(path);
    }

  private:
    static void settle() { QTest::qWait(180); }
    QObject &part(const char *name) {
        QObject *found = window_->findChild<QObject *>(name);
        if (found == nullptr)
            qFatal("there is no part \"%s\"", name);
        return *found;
    }

    QQmlApplicationEngine engine_;
    QQuickWindow *window_ = nullptr;
};

struct Picture {
    const char *name;
    std::function<void(Stage &)> prepare;
};

/// A curve worth looking at.
void tune(AppModel &app) {
    app.presets()->applyRow(3);
    BandListModel &bands = *app.equalizer()->bands();
    bands.setGain(0, 4.5);
    bands.setGain(2, 2.0);
    bands.setGain(3, -3.0);
    bands.setGain(5, 1.5);
    bands.setFrequency(6, 2500);
    bands.setGain(6, -2.5);
    bands.setQ(6, 2.8);
    bands.setGain(8, 3.5);
    bands.setBypassed(7, true);
    app.equalizer()->setGlobalGainDB(-1.5);
}

const Picture pictures[] = {
    {"equalizer-stopped", [](Stage &) {}},
    {"equalizer-running",
     [](Stage &stage) {
         tune(stage.app());
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
    if (arguments.size() != 2 && arguments.size() != 4) {
        std::cerr << "Usage: quorbel-screenshots FOLDER [WIDTH HEIGHT]\n";
        return 2;
    }
    const QDir folder(arguments[1]);
    const int width = arguments.size() == 4 ? arguments[2].toInt() : 1280;
    const int height = arguments.size() == 4 ? arguments[3].toInt() : 900;
    folder.mkpath(".");
    for (const quorbel::Picture &picture : quorbel::pictures) {
        quorbel::Stage stage(width, height);
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
