#include "ui/app/MainWindow.h"

#include <QCoreApplication>
#include <QEvent>
#include <QQuickWindow>
#include <QScreen>
#include <QtQml/QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(Quorbel_DotmatrixPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ModelPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ScreensPlugin)

namespace quorbel {

namespace {

// Estimates in device-independent pixels: the frame is known only after the window was shown. Title
// bars of common desktops are 20 to 40 high, panels 28 to 48.
constexpr QSize frame(8, 40);
constexpr int panel = 48;

} // namespace

WindowSizes fittedTo(const QRect &available, const QRect &whole, const WindowSizes &wanted) {
    QSize room = available.size() - frame;
    if (available == whole)
        room -= QSize(0, panel);
    return {wanted.start.boundedTo(room), wanted.minimum.boundedTo(room)};
}

MainWindow::MainWindow(const QVariantMap &properties) {
    engine_.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine_.setInitialProperties(properties);
    engine_.load(QUrl(QStringLiteral("qrc:/qt/qml/Quorbel/Screens/Main.qml")));
    if (!engine_.rootObjects().isEmpty())
        window_ = qobject_cast<QQuickWindow *>(engine_.rootObjects().constFirst());
    if (window_ == nullptr)
        return;
    window_->installEventFilter(this);
    wanted_ = {window_->size(), window_->minimumSize()};
    followScreen();
    const QScreen &screen = *window_->screen();
    window_->resize(fittedTo(screen.availableGeometry(), screen.geometry(), wanted_).start);
    connect(window_, &QWindow::screenChanged, this, &MainWindow::followScreen);
}

MainWindow::~MainWindow() = default;

void MainWindow::followScreen() {
    disconnect(screenWatch_);
    if (window_->screen() == nullptr) // the last one was unplugged
        return;
    screenWatch_ = connect(window_->screen(), &QScreen::availableGeometryChanged, this,
                           &MainWindow::fitMinimum);
    fitMinimum();
}

void MainWindow::fitMinimum() {
    const QScreen &screen = *window_->screen();
    window_->setMinimumSize(
        fittedTo(screen.availableGeometry(), screen.geometry(), wanted_).minimum);
}

void MainWindow::raise(const QString &activationToken) {
    if (!activationToken.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
    if (window_->visibility() == QWindow::Minimized)
        window_->showNormal();
    window_->show();
    window_->raise();
    window_->requestActivate();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event) {
    if (watched != window_ || event->type() != QEvent::Close)
        return QObject::eventFilter(watched, event);
    const Closing means = closing();
    if (means == Closing::ends)
        QCoreApplication::exit(0);
    if (means == Closing::stays)
        event->ignore();
    return means == Closing::stays;
}

} // namespace quorbel
