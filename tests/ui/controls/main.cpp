#include "ui/controls/AccessibleProbe.h"

#include <QQmlEngine>
#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest/quicktest.h>

Q_IMPORT_QML_PLUGIN(Quorbel_DotmatrixPlugin)

namespace quorbel {

/// Gives the cases the module under test and the probe.
class Setup : public QObject {
    Q_OBJECT

  public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine *engine) {
        QAccessible::setActive(true); // as if a screen reader ran
        engine->addImportPath(QStringLiteral("qrc:/qt/qml"));
        qmlRegisterSingletonInstance("Quorbel.Probe", 1, 0, "Probe", &probe_);
    }

  private:
    AccessibleProbe probe_;
};

} // namespace quorbel

QUICK_TEST_MAIN_WITH_SETUP(controls, quorbel::Setup)

#include "main.moc"
