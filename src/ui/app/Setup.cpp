#include "ui/app/Setup.h"

#include "ui/app/GraphicsChoice.h"
#include "ui/app/LinuxWording.h"
#include "ui/app/ProgramIcon.h"

#include <QApplication>
#include <QQuickStyle>
#include <QStyle>
#include <QStyleFactory>

#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
#include <QStyleHints>
#endif

#include <csignal>

namespace quorbel {

void setUpApplication(QApplication &application) {
    // The reader of the log may end, and a file may reach its limit: neither ends the program.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    QCoreApplication::setApplicationName(QStringLiteral("ostrafine"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Ostrafine"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.quorbel.Ostrafine"));
    QGuiApplication::setWindowIcon(windowIcon());
    // The tray's item goes on when the window is closed; MainWindow says when that is the end.
    QGuiApplication::setQuitOnLastWindowClosed(false);

    // Light, whatever the desktop's scheme: menus and message boxes are to look like the window.
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
