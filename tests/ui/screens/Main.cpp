// Runs the tst_*.qml of this folder on the real window; see README.md.

#include "ui/screens/AccessibleWindow.h"
#include "ui/screens/SimulatedMachine.h"

#include <QQmlEngine>
#include <QtQml/QQmlExtensionPlugin>
#include <QtQuickTest/quicktest.h>

#include <memory>

Q_IMPORT_QML_PLUGIN(Quorbel_DotmatrixPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ModelPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ScreensPlugin)

namespace quorbel::testing {

/// A machine of its own for each file of tests.
class Setup final : public QObject {
    Q_OBJECT

  public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine *engine) {
        machine_ = std::make_unique<SimulatedMachine>();
        engine->addImportPath("qrc:/qt/qml");
        qmlRegisterSingletonInstance("Quorbel.Testing", 1, 0, "Machine", machine_.get());
        qmlRegisterSingletonInstance("Quorbel.Testing", 1, 0, "Assistive", &screen_);
    }
    void cleanupTestCase() { machine_.reset(); }

  private:
    AccessibleWindow screen_;
    std::unique_ptr<SimulatedMachine> machine_;
};

} // namespace quorbel::testing

using quorbel::testing::Setup;
QUICK_TEST_MAIN_WITH_SETUP(screens, Setup)

#include "Main.moc"
