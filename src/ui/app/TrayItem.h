#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <vector>

namespace quorbel {

class AppModel;

/// The program's item in the desktop's tray, where it has one: start and stop, the presets, quit.
/// [main]
class TrayItem final : public QObject {
    Q_OBJECT

  public:
    /// The model must outlive it.
    explicit TrayItem(AppModel &model);

    /// Whether the user can see it now.
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
    std::vector<QAction *> presetActions_; ///< as the choices are, row by row
    QSystemTrayIcon icon_;
};

} // namespace quorbel
