#include "ui/app/WindowClosing.h"

#include "ui/model/EngineModel.h"

#include <QCoreApplication>
#include <QPushButton>
#include <QQuickWindow>
#include <QWindow>

#include <utility>

namespace quorbel {

WindowClosing::WindowClosing(MainWindow &window, EngineModel &engine, BackgroundNotice &notice,
                             std::function<bool()> hasTray)
    : window_(window), engine_(engine), notice_(notice), hasTray_(std::move(hasTray)) {
    window_.closing = [this] { return close(); };
}

bool WindowClosing::isProcessing() const { return engine_.wanted(); }

MainWindow::Closing WindowClosing::close() {
    if (!isProcessing())
        return MainWindow::Closing::ends;
    if (hasTray_())
        return MainWindow::Closing::hides;
    if (!std::exchange(isWaiting_, true))
        notice_.show([this](bool isShown) { hideOrAsk(isShown); });
    return MainWindow::Closing::stays;
}

void WindowClosing::hideOrAsk(bool isNoticeShown) {
    isWaiting_ = false;
    if (!isProcessing()) // it has ended meanwhile
        QCoreApplication::exit(0);
    else if (isNoticeShown)
        window_.window().hide();
    else
        ask();
}

void WindowClosing::ask() {
    if (question_ && question_->isVisible()) {
        question_->raise();
        return;
    }
    question_ =
        std::make_unique<QMessageBox>(QMessageBox::Question, QStringLiteral("Ostrafine"),
                                      tr("Ostrafine processes the sound."), QMessageBox::Cancel);
    question_->setTextFormat(Qt::PlainText);
    question_->setInformativeText(tr(
        "This desktop has neither a tray nor notifications, so nothing would show that Ostrafine "
        "runs without its window. To continue, minimise the window."));
    QPushButton *quit = question_->addButton(tr("Stop and quit"), QMessageBox::AcceptRole);
    connect(quit, &QPushButton::clicked, this, [] { QCoreApplication::exit(0); });
    // The window is no QWidget: only its handle can be the box's parent.
    question_->winId();
    question_->windowHandle()->setTransientParent(&window_.window());
    question_->open();
    if (question_->windowHandle()->isVisible())
        question_->activateWindow();
}

} // namespace quorbel
