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
    std::vector<std::filesystem::path> system; ///< those of the machine, the first one counts
    std::string desktops;                      ///< as in XDG_CURRENT_DESKTOP
    std::string commandProgram;                ///< absolute path of `ostrafine-cli`

    /// Those of this session.
    [[nodiscard]] static AutostartPlaces ofSession();
};

/// The switch "Start at login" by an entry in the autostart folder of the user. The file is the
/// truth: changes that the desktop's settings or an editor make are shown at once. [main]
///
/// Invariants:
/// 1. An entry that others have written or changed keeps everything but its switches; it is never
///    removed.
/// 2. Nothing is written until the file has been read. One that cannot be read is left as it is.
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
    QString obstacle_; ///< the reason why the session could not start the program; empty for none
};

/// The one of the two that this program needs. All must outlive the result.
[[nodiscard]] std::unique_ptr<QObject> makeAutostart(StartAtLoginModel &model,
                                                     SessionMemory &memory,
                                                     const QDBusConnection &bus, Clock &clock);

} // namespace quorbel
