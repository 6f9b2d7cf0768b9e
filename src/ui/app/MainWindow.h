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
/// `available` is the part of the screen that the desktop leaves to windows. Where it is the whole
/// screen the desktop has no panels or does not tell, as on Wayland; room for one is then left.
[[nodiscard]] WindowSizes fittedTo(const QRect &available, const QRect &whole,
                                   const WindowSizes &wanted);

/// The window as the program holds it: loads it, shows it, and handles its closing. [main]
class MainWindow final : public QObject {
    Q_OBJECT

  public:
    /// Loads the window and does not show it yet. `properties` are set on it before. The model must
    /// have been made, and outlive this.
    explicit MainWindow(const QVariantMap &properties = {});
    ~MainWindow() override;

    /// False where the QML could not be loaded; Qt has then said why.
    [[nodiscard]] bool isLoaded() const { return window_ != nullptr; }
    [[nodiscard]] QQuickWindow &window() { return *window_; }

    /// Meanings of closing the window: end the program, hide the window, or nothing.
    enum class Closing { ends, hides, stays };
    /// Asked when the window is closed. By default the program ends.
    std::function<Closing()> closing = [] { return Closing::ends; };

    /// Shows the window, in front of others where the desktop permits. The token is the desktop's
    /// permission; may be empty.
    void raise(const QString &activationToken = {});

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    /// Keeps the minimum within the screen that the window is on, which may become another.
    void followScreen();
    void fitMinimum();

    QQmlApplicationEngine engine_;
    WindowSizes wanted_; ///< as the QML has them
    QMetaObject::Connection screenWatch_;
    QQuickWindow *window_ = nullptr; ///< the engine's
};

} // namespace quorbel
