#pragma once

#include "ui/app/BackgroundNotice.h"
#include "ui/app/MainWindow.h"

#include <QMessageBox>
#include <QObject>

#include <functional>
#include <memory>

namespace quorbel {

class EngineModel;

/// Decides the effect of closing the window, so that the sound never ends without notice:
///
/// 1. Nothing is processed: the program ends.
/// 2. The desktop has a tray: the window hides.
/// 3. It shows notifications: the window hides, and one says that processing continues.
/// 4. It has neither: the user is asked, and the window stays until the answer.
///
/// [main]
class WindowClosing final : public QObject {
    Q_OBJECT

  public:
    /// All must outlive it. Takes over `window.closing`.
    WindowClosing(MainWindow &window, EngineModel &engine, BackgroundNotice &notice,
                  std::function<bool()> hasTray);

  private:
    [[nodiscard]] bool isProcessing() const;
    [[nodiscard]] MainWindow::Closing close();
    void hideOrAsk(bool isNoticeShown);
    void ask();

    MainWindow &window_;
    EngineModel &engine_;
    BackgroundNotice &notice_;
    std::function<bool()> hasTray_;
    bool isWaiting_ = false; ///< for the desktop's answer
    std::unique_ptr<QMessageBox> question_;
};

} // namespace quorbel
