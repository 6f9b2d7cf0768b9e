// Main program of Ostrafine with its window.

#include "platform/hardware/SystemHardware.h"
#include "platform/threads/MainLoopClock.h"
#include "platform/threads/TerminationSignals.h"
#include "remote/RemoteClient.h"
#include "remote/RemoteService.h"
#include "settings/state/AppState.h"
#include "settings/state/FileWatch.h"
#include "ui/app/Autostart.h"
#include "ui/app/BackgroundNotice.h"
#include "ui/app/ControlledWindow.h"
#include "ui/app/MainWindow.h"
#include "ui/app/PresetFileDialogs.h"
#include "ui/app/ProcessingPermit.h"
#include "ui/app/Resumption.h"
#include "ui/app/SessionMemory.h"
#include "ui/app/Setup.h"
#include "ui/app/SingleInstance.h"
#include "ui/app/SoundServerWait.h"
#include "ui/app/TrayArrival.h"
#include "ui/app/TrayItem.h"
#include "ui/app/WindowClosing.h"
#include "ui/model/AppModel.h"

#include <QApplication>
#include <QDBusConnection>
#include <QQuickWindow>
#include <QSessionManager>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <vector>

namespace quorbel {

namespace {

/// Maximum wait for the desktop's tray at login.
constexpr double trayPatienceSeconds = 10.0;

/// Forwards a request to `ostrafine-cli live` if it runs.
void passOn(DesktopRequest::Kind kind) {
    using Kind = DesktopRequest::Kind;
    try {
        RemoteClient().call(kind == Kind::stopProcessing ? QStringLiteral("Stop")
                            : kind == Kind::nextPreset   ? QStringLiteral("NextPreset")
                                                         : QStringLiteral("PreviousPreset"));
    } catch (const NothingToControl &) {
    } catch (const std::exception &error) {
        std::fprintf(stderr, "ostrafine: %s\n", error.what());
    }
}

} // namespace

} // namespace quorbel

int main(int argc, char **argv) {
    using namespace quorbel;

    TerminationSignals signals;
    QApplication application(argc, argv);
    setUpApplication(application);
    signals.endEventLoop();

    MainLoopClock clock;
    const SingleInstance instance(QDBusConnection::sessionBus());
    // Opens a window only on request if the bus started the program.
    using Kind = DesktopRequest::Kind;
    const std::optional<DesktopRequest> first = instance.startingRequest();
    if (!first)
        return 0;
    if (!instance.isFirst()) {
        if (instance.raiseFirst())
            return 0;
        std::fputs("ostrafine: the one that is running does not answer\n", stderr);
        return 1;
    }
    const bool isLogin = first->kind == Kind::resume;
    if (first->kind != Kind::show && first->kind != Kind::startProcessing && !isLogin) {
        passOn(first->kind);
        return 0;
    }

    SessionMemory memory(userSettingsPath());
    std::vector<DesktopRequest> requests{*first};
    const auto hardware = isLogin                     ? awaitHardware(instance, clock, requests)
                          : first->kind == Kind::show ? hardwareOrQuestion()
                                                      : hardwareOrComplaint();
    if (std::ranges::count(requests, Kind::stopProcessing, &DesktopRequest::kind) > 0) {
        memory.noteStop();
        return 0;
    }
    if (!hardware)
        return 1;
    AppState state(*hardware, clock);
    const auto takeChanges = [&] { state.takeFileChanges(); };
    const FileWatch settingsWatch(state.settingsPath(), clock, takeChanges);
    const FileWatch profilesWatch(state.profiles().path(), clock, takeChanges);
    const FileWatch rulesWatch(state.programRulesPath(), clock, takeChanges);
    AppModel model(state, clock);
    model.about()->setSoundLibrary(QString::fromStdString(systemHardwareLibrary()));
    model.spectrum()->setVisible(false); // until a window is shown
    EngineModel &engine = *model.engine();
    const ProcessingPermit permit(engine);
    ControlledWindow controlled(state, model);
    RemoteControl control(controlled, clock);
    const RemoteService service(control, QDBusConnection::sessionBus());

    std::optional<TrayItem> tray; // created once a tray may be looked for
    std::optional<TrayArrival> trayArrival;
    std::optional<Resumption> resumption;
    BackgroundNotice notice(QDBusConnection::sessionBus());
    std::optional<MainWindow> window; // created when first shown
    std::optional<WindowClosing> closing;
    std::optional<PresetFileDialogs> fileDialogs;
    const auto show = [&](const QString &token) {
        if (!window) {
            window.emplace();
            if (!window->isLoaded())
                return false;
            closing.emplace(*window, engine, notice, [&] { return tray && tray->isThere(); });
            fileDialogs.emplace(window->window());
            model.presets()->setFileChooser(&*fileDialogs);
        }
        notice.withdraw();
        window->raise(token);
        return true;
    };
    // Ends the program if it neither processes nor is visible to the user.
    const auto endIfOfNoUse = [&] {
        if (engine.wanted() || (resumption && resumption->isUnderWay()) || !tray)
            return;
        if (window && window->window().isVisible())
            return;
        if ((window || isLogin) && tray->isThere())
            return;
        const QString error = engine.errorMessage();
        if (window && !error.isEmpty()) {
            show({}); // shows the reason
            return;
        }
        if (!error.isEmpty())
            std::fprintf(stderr, "ostrafine: %s\n", qPrintable(error));
        QCoreApplication::exit(error.isEmpty() ? 0 : 1);
    };
    const auto answer = [&](const DesktopRequest &request) {
        if (request.kind == Kind::resume && memory.isToContinue() && !engine.wanted())
            resumption.emplace(state.engine(), engine, clock, endIfOfNoUse);
        if (request.kind == Kind::startProcessing && !engine.running())
            engine.start();
        if (request.kind == Kind::stopProcessing) {
            engine.stop();
            endIfOfNoUse();
        }
        if (request.kind == Kind::nextPreset)
            control.nextPreset();
        if (request.kind == Kind::previousPreset)
            control.previousPreset();
        return request.kind != Kind::show || show(request.activationToken);
    };
    QObject::connect(&engine, &EngineModel::stopRequested, &application, [&] {
        resumption.reset();
        memory.noteStop();
    });
    const auto answerOrEnd = [&](const DesktopRequest &request) {
        if (!answer(request))
            QCoreApplication::exit(1);
    };
    const auto makeTray = [&] {
        tray.emplace(model);
        QObject::connect(&*tray, &TrayItem::windowRequested, &application,
                         [&] { answerOrEnd(DesktopRequest{}); });
    };
    QObject::connect(&instance, &SingleInstance::requested, &application, answerOrEnd);
    QObject::connect(
        &notice, &BackgroundNotice::windowRequested, &application,
        [&](const QString &token) { answerOrEnd({.kind = Kind::show, .activationToken = token}); });
    QObject::connect(&notice, &BackgroundNotice::stopRequested, &application,
                     [&] { answerOrEnd({.kind = Kind::stopProcessing}); });
    QObject::connect(&notice, &BackgroundNotice::quitRequested, &application,
                     [] { QCoreApplication::exit(0); });
    // Queued: the engine leaves one state before it enters the next.
    QObject::connect(&engine, &EngineModel::stateChanged, &application, endIfOfNoUse,
                     Qt::QueuedConnection);
    // Saves now, because the session may end before the program's normal exit.
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &application,
                     [&] { state.persist(); });
    // Leaves the restart to the autostart entry, which opens no window.
    QObject::connect(&application, &QGuiApplication::saveStateRequest, &application,
                     [&](QSessionManager &session) {
                         if (model.startAtLogin()->on())
                             session.setRestartHint(QSessionManager::RestartNever);
                     });
    const auto autostart =
        makeAutostart(*model.startAtLogin(), memory, QDBusConnection::sessionBus(), clock);
    const auto showMemoryWarning = [&] { model.setSessionWarning(memory.warning()); };
    QObject::connect(&memory, &SessionMemory::warningChanged, &model, showMemoryWarning);
    showMemoryWarning();
    memory.follow(engine);
    if (!isLogin)
        memory.noteIdle();
    for (const DesktopRequest &request : requests)
        if (!answer(request))
            return 1;
    if (isLogin)
        trayArrival.emplace(QDBusConnection::sessionBus(), clock, trayPatienceSeconds, [&] {
            makeTray();
            endIfOfNoUse();
        });
    else
        makeTray();

    const int result = QCoreApplication::exec();

    memory.close();
    // Stops the sound first, then saves the edits of the last 0.5 s.
    state.engine().stop();
    notice.withdraw();
    state.persist();
    return result;
}
