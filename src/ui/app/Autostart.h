#pragma once

#include "settings/state/FileWatch.h"
#include "ui/app/AutostartEntry.h"
#include "ui/model/StartAtLoginModel.h"

#include <QDBusConnection>
#include <QObject>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorbel {

class SessionMemory;

/// Places of the entry that starts the program at login.
struct AutostartPlaces {
    std::filesystem::path user;                ///< the user's entry, which has precedence
    std::vector<std::filesystem::path> system; ///< machine-wide entries; the first one counts
    std::string desktops;                      ///< as in XDG_CURRENT_DESKTOP
    std::string commandProgram;                ///< absolute path of `ostrafine-cli`

    /// Returns the places of this session.
    [[nodiscard]] static AutostartPlaces ofSession();
};

/// Switch "Start at login", stored as an entry in the user's autostart folder. Shows changes by the
/// desktop's settings or an editor at once. [main]
///
/// Invariants:
/// 1. Entries written by others are never removed; only their switches and unusable commands
///    change.
/// 2. A file is read before it is written; an unreadable file is never overwritten.
class AutostartFile final : public QObject {
    Q_OBJECT

  public:
    /// Model and clock must outlive it.
    AutostartFile(StartAtLoginModel &model, const QDBusConnection &bus, Clock &clock,
                  AutostartPlaces places);

  private:
    void askWhetherStartable();
    void switchTo(bool on);
    void write(bool on) const;
    void show(const QString &failure = {});
    [[nodiscard]] std::optional<AutostartEntry> userEntry() const;
    [[nodiscard]] std::optional<AutostartEntry> systemEntry() const;

    StartAtLoginModel &model_;
    QDBusConnection bus_;
    AutostartPlaces places_;
    FileWatch watch_;
    QString obstacle_; ///< why the session cannot start the program; empty if it can
};

/// Returns the portal's switch in a Flatpak sandbox, else the file's. All must outlive the result.
[[nodiscard]] std::unique_ptr<QObject> makeAutostart(StartAtLoginModel &model,
                                                     SessionMemory &memory,
                                                     const QDBusConnection &bus, Clock &clock);

} // namespace quorbel
