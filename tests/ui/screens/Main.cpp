// Runs the tst_*.qml of a folder: the controls one by one, or the screens in the real window.

#include "ui/app/simulated/SimulatedMachine.h"
#include "ui/controls/ContrastRatio.h"
#include "ui/dotmatrix/Appearance.h"
#include "ui/screens/AccessibleWindow.h"
#include "ui/symbols/Symbols.h"

#include <QQmlEngine>
#include <QtQml/QQmlExtensionPlugin>
#include <QtQuickTest/quicktest.h>

#include <memory>

Q_IMPORT_QML_PLUGIN(Quorbel_DotmatrixPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ModelPlugin)
Q_IMPORT_QML_PLUGIN(Quorbel_ScreensPlugin)

namespace quorbel::testing {

/// Appearance of the controls, and the desktop's preferences for it.
class Look final : public QObject {
    Q_OBJECT

  public:
    /// Names of all symbols.
    Q_INVOKABLE QStringList symbolNames() const { return symbols::names(); }
    Q_INVOKABLE double contrast(const QColor &one, const QColor &other) const {
        return contrastRatio(one, other);
    }
    Q_INVOKABLE void setHighContrast(bool on) { Appearance::instance().setHighContrast(on); }
    Q_INVOKABLE void setReducedMotion(bool on) { Appearance::instance().setReducedMotion(on); }
};

/// Gives each test file a simulated machine of its own.
class Setup final : public QObject {
    Q_OBJECT

  public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine *engine) {
        machine_ = std::make_unique<simulated::SimulatedMachine>();
        engine->addImportPath("qrc:/qt/qml");
        qmlRegisterSingletonInstance("Quorbel.Testing", 1, 0, "Machine", machine_.get());
        qmlRegisterSingletonInstance("Quorbel.Testing", 1, 0, "Assistive", &screen_);
        qmlRegisterSingletonInstance("Quorbel.Testing", 1, 0, "Look", &look_);
    }
    void cleanupTestCase() { machine_.reset(); }

  private:
    AccessibleWindow screen_;
    Look look_;
    std::unique_ptr<simulated::SimulatedMachine> machine_;
};

} // namespace quorbel::testing

using quorbel::testing::Setup;
QUICK_TEST_MAIN_WITH_SETUP(screens, Setup)

#include "Main.moc"
