#include "ui/app/Setup.h"

#include "ui/app/LinuxWording.h"
#include "ui/app/ProgramIcon.h"

#include <QApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QStyle>
#include <QStyleFactory>

#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
#include <QStyleHints>
#endif

#include <csignal>

namespace quorbel {

namespace {

bool hasGraphicsHardware() {
    QOpenGLContext context;
    QOffscreenSurface surface;
    surface.create();
    if (!surface.isValid() || !context.create() || !context.makeCurrent(&surface))
        return false;
    const auto *name =
        reinterpret_cast<const char *>(context.functions()->glGetString(GL_RENDERER));
    const QString renderer = QString::fromLatin1(name).toLower();
    context.doneCurrent();
    return !renderer.contains(QLatin1String("llvmpipe")) &&
           !renderer.contains(QLatin1String("softpipe")) &&
           !renderer.contains(QLatin1String("swrast"));
}

/// Selects software rendering if there is no graphics hardware. Emulated OpenGL counts as none: the
/// software renderer costs a fraction of it. The user's environment (QT_QUICK_BACKEND,
/// QSG_RHI_BACKEND) takes precedence. To be called before the first window.
void chooseGraphics() {
    if (qEnvironmentVariableIsSet("QT_QUICK_BACKEND") ||
        qEnvironmentVariableIsSet("QSG_RHI_BACKEND"))
        return;
    if (!hasGraphicsHardware())
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

} // namespace

void setUpApplication(QApplication &application) {
    // Keeps running if the log's reader ends (SIGPIPE) or a file reaches its limit (SIGXFSZ).
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    QCoreApplication::setApplicationName(QStringLiteral("ostrafine"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Ostrafine"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.quorbel.Ostrafine"));
    QGuiApplication::setWindowIcon(windowIcon());
    // The tray's item outlives the window; MainWindow decides when the program ends.
    QGuiApplication::setQuitOnLastWindowClosed(false);

    // Light under every desktop scheme: menus and message boxes match the window.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QGuiApplication::styleHints()->setColorScheme(Qt::ColorScheme::Light);
#endif
    QApplication::setPalette(QApplication::style()->standardPalette());
    QQuickStyle::setStyle(QStringLiteral("Basic"));

#ifdef Q_OS_LINUX
    QCoreApplication::installTranslator(new LinuxWording(&application));
#endif
    chooseGraphics();
}

} // namespace quorbel
