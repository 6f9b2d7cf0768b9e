#include "ui/dotmatrix/Appearance.h"
#include "ui/symbols/Symbols.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>

Q_IMPORT_QML_PLUGIN(Quorbel_DotmatrixPlugin)

/// Shows every primitive in every state; with --grab, writes a picture and exits.
int main(int argc, char **argv) {
    const QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption grab(QStringLiteral("grab"),
                                  QStringLiteral("Write a picture and end."),
                                  QStringLiteral("FILE.png"));
    const QCommandLineOption contrast(QStringLiteral("contrast"), QStringLiteral("High contrast."));
    const QCommandLineOption still(QStringLiteral("still"), QStringLiteral("Reduced motion."));
    const QCommandLineOption dialog(QStringLiteral("dialog"),
                                    QStringLiteral("With an open dialog."));
    const QCommandLineOption menu(QStringLiteral("menu"), QStringLiteral("With an open menu."));
    parser.addOptions({grab, contrast, still, dialog, menu});
    parser.process(application);

    auto &appearance = quorbel::Appearance::instance();
    appearance.setHighContrast(parser.isSet(contrast));
    appearance.setReducedMotion(parser.isSet(still));

    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.setInitialProperties({{QStringLiteral("symbolNames"), quorbel::symbols::names()},
                                 {QStringLiteral("moving"), !parser.isSet(grab)},
                                 {QStringLiteral("dialogOpen"), parser.isSet(dialog)},
                                 {QStringLiteral("menuOpen"), parser.isSet(menu)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Quorbel/Gallery/Gallery.qml")));
    if (engine.rootObjects().isEmpty())
        return 1;
    if (parser.isSet(grab)) {
        auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
        // Waits for the opening transitions.
        QTimer::singleShot(300, window, [&, window] {
            const bool written = window->grabWindow().save(parser.value(grab));
            if (!written)
                std::fprintf(stderr, "cannot write %s\n", qPrintable(parser.value(grab)));
            QCoreApplication::exit(written ? 0 : 1);
        });
    }
    return QGuiApplication::exec();
}
