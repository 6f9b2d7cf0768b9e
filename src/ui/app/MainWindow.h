#pragma once

#include <QObject>
#include <QQmlApplicationEngine>
#include <QRect>
#include <QSize>
#include <QVariantMap>

#include <functional>

class QQuickWindow;

namespace quorbel {

/// Sizes of a window's content, without its frame.
struct WindowSizes {
    QSize start;
    QSize minimum;
};

/// Returns `wanted`, each size limited to the screen without the desktop's panels and the window's
/// frame.
///
/// `available` is the screen area without panels. Reserves room for one panel if it equals `whole`:
/// the desktop then has none or does not report them, as on Wayland.
[[nodiscard]] WindowSizes fittedTo(const QRect &available, const QRect &whole,
                                   const WindowSizes &wanted);

/// Loads and shows the window, and handles its closing. [main]
class MainWindow final : public QObject {
    Q_OBJECT

  public:
    /// Loads the window with `properties` set, without showing it. The model must exist before and
    /// outlive it.
    explicit MainWindow(const QVariantMap &properties = {});
    ~MainWindow() override;

    /// False if the QML could not be loaded; Qt has logged the reason.
    [[nodiscard]] bool isLoaded() const { return window_ != nullptr; }
    [[nodiscard]] QQuickWindow &window() { return *window_; }

    /// Effects of closing the window: ends the program, hides the window, or none.
    enum class Closing { ends, hides, stays };
    /// Called when the window is closed; ends the program by default.
    std::function<Closing()> closing = [] { return Closing::ends; };

    /// Shows the window, in front of others if the desktop permits. The token is the desktop's
    /// permission; may be empty.
    void raise(const QString &activationToken = {});

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    /// Keeps the minimum size within the window's current screen.
    void followScreen();
    void fitMinimum();

    QQmlApplicationEngine engine_;
    WindowSizes wanted_; ///< sizes set by the QML
    QMetaObject::Connection screenWatch_;
    QQuickWindow *window_ = nullptr; ///< owned by the engine
};

} // namespace quorbel
