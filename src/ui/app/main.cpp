// Ostrafine: the window.

#include "platform/threads/MainLoopClock.h"
#include "settings/state/AppState.h"
#include "ui/app/MainWindow.h"
#include "ui/app/PresetFileDialogs.h"
#include "ui/app/ProcessingPermit.h"
#include "ui/app/QuitSignals.h"
#include "ui/app/Setup.h"
#include "ui/app/SingleInstance.h"
#include "ui/app/SoundServerConnection.h"
#include "ui/app/TrayItem.h"
#include "ui/model/AppModel.h"

#include <QApplication>
#include <QDBusConnection>
#include <QQuickWindow>

#include <cstdio>

int main(int argc, char **argv) {
    using namespace quorbel;

    QuitSignals signals;
    QApplication application(argc, argv);
    setUpApplication(application);
    signals.watch();

    const SingleInstance instance(QDBusConnection::sessionBus());
    if (!instance.isFirst()) {
        if (instance.raiseFirst())
            return 0;
        std::fputs("ostrafine: the one that is running does not answer\n", stderr);
        return 1;
    }

    const auto hardware = connectToSoundServer();
    if (!hardware)
        return 1;
    MainLoopClock clock;
    AppState state(*hardware, clock);
    AppModel model(state, clock);
    const ProcessingPermit permit(*model.engine());

    MainWindow window;
    if (!window.isLoaded())
        return 1;
    PresetFileDialogs fileDialogs(window.window());
    model.presets()->setFileChooser(&fileDialogs);
    const TrayItem tray(model);
    window.goesOnWithoutWindow = [&] {
        const EngineModel &engine = *model.engine();
        return (engine.running() || engine.comingBack()) && tray.isThere();
    };
    const auto raise = [&](const QString &token = {}) { window.raise(token); };
    QObject::connect(&tray, &TrayItem::windowRequested, &window, [&] { raise(); });
    QObject::connect(&instance, &SingleInstance::raiseRequested, &window, raise);
    // The session may end without letting us come to our own end.
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &window,
                     [&] { state.persist(); });
    raise();

    QCoreApplication::exec();

    // Everyone's sound first, then the edits of the last half second.
    state.engine().stop();
    state.persist();
    return 0;
}
