#pragma once

#include "ui/app/simulated/SimulatedMachine.h"

#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include <initializer_list>

namespace quorbel::simulated {

/// Waits until no layout is pending.
void settleLayout(QQuickWindow &window);

/// Sets the desktop's text size, in percent of the window's design size.
void setTextSize(int percent);

/// Window of a freshly started program on simulated hardware. [main]
class Stage {
  public:
    Stage(int width, int height);

    SimulatedMachine machine;

    AppModel &app() { return machine.model(); }
    QQuickWindow &window() { return *window_; }

    void open(const char *destination);
    void openCards(std::initializer_list<int> stages);
    void scrollToEnd();
    void openDialog(const char *name);
    void closeDialog(const char *name);
    void startWithMusic();
    /// Advances time in steps short enough for the display to keep up.
    void run(double seconds);
    void importTextWithGaps();
    /// Sets up a varied equalizer curve.
    void tune();

    bool save(const QString &path);

    void settle() { settleLayout(*window_); }

  private:
    QObject &part(const char *name);

    QQmlApplicationEngine engine_;
    QQuickWindow *window_ = nullptr;
};

} // namespace quorbel::simulated
