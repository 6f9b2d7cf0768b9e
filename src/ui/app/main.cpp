// Ostrafine: the window.

#include "platform/hardware/SystemHardware.h"
#include "platform/threads/MainLoopClock.h"
#include "platform/threads/TerminationSignals.h"
#include "remote/RemoteClient.h"
#include "remote/RemoteService.h"
#include "settings/state/AppState.h"
#include "settings/state/FileWatch.h"
#include "ui/app/BackgroundNotice.h"
#include "ui/app/ControlledWindow.h"
#include "ui/app/MainWindow.h"
#include "ui/app/PresetFileDialogs.h"
#include "ui/app/ProcessingPermit.h"
#include "ui/app/Setup.h"
#include "ui/app/SingleInstance.h"
#include "ui/app/TrayItem.h"
#include "ui/app/WindowClosing.h"
#include "ui/model/AppModel.h"

#include <QApplication>
#include <QDBusConnection>
#include <QMessageBox>
#include <QQuickWindow>

#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <system_error>

namespace quorbel {

namespace {

QString complaint(Status status) {
    return QCoreApplication::translate("ostrafine", "No PipeWire sound server answers (%1).")
        .arg(QString::fromStdString(std::generic_category().message(-status)));
}

bool asksForAnotherTry(Status status) {
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Ostrafine"), complaint(status),
                    QMessageBox::Retry | QMessageBox::Close);
    box.setInformativeText(QCoreApplication::translate(
        "ostrafine", "Start one with: systemctl --user start pipewire wireplumber pipewire-pulse"));
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return box.exec() == QMessageBox::Retry;
}

/// Reaction to a missing sound server: a message box that offers another try, or one line on
/// standard error.
enum class WithoutServer { ask, complain };

/// The hardware layer of this machine; null without a sound server, or when the user gives up.
std::unique_ptr<AudioHardware> hardwareOrComplaint(WithoutServer otherwise) {
    for (;;) {
        Status status = statusOK;
        auto hardware = makeSystemHardware(status);
        if (hardware)
            return hardware;
        if (otherwise == WithoutServer::complain)
            std::fprintf(stderr, "ostrafine: %s\n", qPrintable(complaint(status)));
        if (otherwise == WithoutServer::complain || !asksForAnotherTry(status))
            return nullptr;
    }
}

/// Hands a request over to `ostrafine-cli live`, if that runs.
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

    const bool isBusStart = wasStartedByBus();
    const SingleInstance instance(QDBusConnection::sessionBus());
    if (!instance.isFirst()) {
        if (isBusStart || instance.raiseFirst())
            return 0;
        std::fputs("ostrafine: the one that is running does not answer\n", stderr);
        return 1;
    }
    // Started by the bus, the program obeys the request and shows no window by itself.
    using Kind = DesktopRequest::Kind;
    constexpr int patienceMilliseconds = 5000;
    const std::optional<DesktopRequest> first =
        isBusStart ? instance.waitForRequest(patienceMilliseconds) : DesktopRequest{};
    if (!first)
        return 0;
    if (first->kind != Kind::show && first->kind != Kind::startProcessing) {
        passOn(first->kind);
        return 0;
    }

    const auto hardware = hardwareOrComplaint(first->kind == Kind::show ? WithoutServer::ask
                                                                        : WithoutServer::complain);
    if (!hardware)
        return 1;
    MainLoopClock clock;
    AppState state(*hardware, clock);
    const FileWatch watch(state.settingsPath(), clock, [&] { state.takeFileChanges(); });
    AppModel model(state, clock);
    model.about()->setSoundLibrary(QString::fromStdString(systemHardwareLibrary()));
    model.spectrum()->setVisible(false); // until a window says otherwise
    EngineModel &engine = *model.engine();
    const ProcessingPermit permit(engine);
    ControlledWindow controlled(state, model);
    RemoteControl control(controlled, clock);
    const RemoteService service(control, QDBusConnection::sessionBus());

    const TrayItem tray(model);
    BackgroundNotice notice(QDBusConnection::sessionBus());
    std::optional<MainWindow> window; // made when it is first shown
    std::optional<WindowClosing> closing;
    std::optional<PresetFileDialogs> fileDialogs;
    const auto show = [&](const QString &token) {
        if (!window) {
            window.emplace();
            if (!window->isLoaded())
                return false;
            closing.emplace(*window, engine, notice, [&] { return tray.isThere(); });
            fileDialogs.emplace(window->window());
            model.presets()->setFileChooser(&*fileDialogs);
        }
        notice.withdraw();
        window->raise(token);
        return true;
    };
    // Processing has ended, and nothing shows that the program is there.
    const auto endIfOfNoUse = [&] {
        if (engine.wanted())
            return;
        if (window && (window->window().isVisible() || tray.isThere()))
            return;
        const QString error = engine.errorMessage();
        if (window && !error.isEmpty()) {
            show({}); // which says why
            return;
        }
        if (!error.isEmpty())
            std::fprintf(stderr, "ostrafine: %s\n", qPrintable(error));
        QCoreApplication::exit(error.isEmpty() ? 0 : 1);
    };
    const auto answer = [&](const DesktopRequest &request) {
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
    const auto answerOrEnd = [&](const DesktopRequest &request) {
        if (!answer(request))
            QCoreApplication::exit(1);
    };
    QObject::connect(&tray, &TrayItem::windowRequested, &application,
                     [&] { answerOrEnd(DesktopRequest{}); });
    QObject::connect(&instance, &SingleInstance::requested, &application, answerOrEnd);
    QObject::connect(
        &notice, &BackgroundNotice::windowRequested, &application,
        [&](const QString &token) { answerOrEnd({.kind = Kind::show, .activationToken = token}); });
    QObject::connect(&notice, &BackgroundNotice::stopRequested, &application,
                     [&] { answerOrEnd({.kind = Kind::stopProcessing}); });
    QObject::connect(&notice, &BackgroundNotice::quitRequested, &application,
                     [] { QCoreApplication::exit(0); });
    // Queued: a state is left before the next one is entered.
    QObject::connect(&engine, &EngineModel::stateChanged, &application, endIfOfNoUse,
                     Qt::QueuedConnection);
    // The session may end without letting us come to our own end.
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &application,
                     [&] { state.persist(); });
    if (!answer(*first))
        return 1;

    const int result = QCoreApplication::exec();

    // The sound first, then the edits of the last half second.
    state.engine().stop();
    notice.withdraw();
    state.persist();
    return result;
}
