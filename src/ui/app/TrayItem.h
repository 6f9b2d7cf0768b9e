#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <vector>

namespace quorbel {

class AppModel;

/// Tray item of the program, if the desktop has a tray: start and stop, presets, quit. [main]
class TrayItem final : public QObject {
    Q_OBJECT

  public:
    /// The model must outlive it.
    explicit TrayItem(AppModel &model);

    /// True if the desktop has a tray now.
    [[nodiscard]] bool isThere() const;

    [[nodiscard]] QMenu &menu() { return menu_; }

  Q_SIGNALS:
    void windowRequested();

  private:
    void followEngine();
    void fillPresets();
    void markPreset();

    AppModel &model_;
    QMenu menu_;
    QAction *startStop_;
    QMenu *presets_;
    std::vector<QAction *> presetActions_; ///< one per row of the choices
    QSystemTrayIcon icon_;
};

} // namespace quorbel
