#include "ui/app/simulated/Stage.h"

#include <QFont>
#include <QGuiApplication>
#include <QTest>
#include <QtQuickTest/quicktest.h>

namespace quorbel::simulated {

void settleLayout(QQuickWindow &window) {
    // Text layout may request another layout of its parent in the next frame.
    for (int quiet = 0, frames = 0; quiet < 3 && frames < 200; ++frames) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        quiet = QQuickTest::qIsPolishScheduled(&window) ? 0 : quiet + 1;
        if (quiet == 0)
            QTest::qWait(1);
    }
}

void setTextSize(int percent) {
    QFont font = QGuiApplication::font();
    font.setPointSizeF(10 * percent / 100.0);
    QGuiApplication::setFont(font);
}

Stage::Stage(int width, int height) {
    engine_.addImportPath("qrc:/qt/qml");
    engine_.load(QUrl("qrc:/qt/qml/Quorbel/Screens/Main.qml"));
    window_ = qobject_cast<QQuickWindow *>(engine_.rootObjects().value(0));
    if (window_ == nullptr)
        qFatal("the window cannot be made");
    window_->setMinimumSize({});
    window_->resize(width, height);
    window_->show();
    window_->requestActivate();
    settle();
}

void Stage::open(const char *destination) {
    window_->setProperty("destination", QString(destination));
    settle();
}

void Stage::openCards(std::initializer_list<int> stages) {
    QVariantList list;
    for (const int stage : stages)
        list.append(stage);
    part("mainView").setProperty("expandedStages", list);
    settle();
}

void Stage::scrollToEnd() {
    QMetaObject::invokeMethod(&part("screenPage"), "scrollToEnd");
    settle();
}

void Stage::openDialog(const char *name) {
    QMetaObject::invokeMethod(&part(name), "open");
    settle();
}

void Stage::closeDialog(const char *name) {
    QMetaObject::invokeMethod(&part(name), "close");
    settle();
}

void Stage::startWithMusic() {
    machine.playMusic();
    app().engine()->start();
    run(1.5);
}

void Stage::run(double seconds) {
    for (double done = 0.0; done < seconds; done += 0.02) {
        machine.advance(0.02);
        QTest::qWait(2); // the spectrum's thread runs in wall-clock time
    }
    settle();
}

void Stage::importTextWithGaps() {
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

void Stage::tune() {
    app().presets()->applyRow(3);
    BandListModel &bands = *app().equalizer()->bands();
    bands.setGain(0, 4.5);
    bands.setGain(2, 2.0);
    bands.setGain(3, -3.0);
    bands.setGain(5, 1.5);
    bands.setFrequency(6, 2500);
    bands.setGain(6, -2.5);
    bands.setQ(6, 2.8);
    bands.setGain(8, 3.5);
    bands.setBypassed(7, true);
    app().equalizer()->setGlobalGainDB(-1.5);
}

bool Stage::save(const QString &path) {
    QTest::qWait(180); // transitions
    settle();
    return window_->grabWindow().save(path);
}

QObject &Stage::part(const char *name) {
    QObject *found = window_->findChild<QObject *>(name);
    if (found == nullptr)
        qFatal("there is no part \"%s\"", name);
    return *found;
}

} // namespace quorbel::simulated
