#pragma once

#include "settings/state/LastSessionFile.h"

#include <QObject>
#include <QString>

#include <string>

namespace quorbel {

class EngineModel;

/// Remembers on the disk whether the user wants processing, so that a start at login can continue
/// it. A program that ends while it processes leaves that wish behind, however it ends: by Quit,
/// with the session, by a crash or a power failure. Stop ends the wish. [main]
class SessionMemory final : public QObject {
    Q_OBJECT

  public:
    /// Reads the notes of the last program.
    explicit SessionMemory(const std::string &settingsPath);

    /// True if processing was wanted when the last program ended. False once it was wanted or
    /// stopped in this one.
    [[nodiscard]] bool isToContinue() const { return isToContinue_; }

    /// From now on notes each change of the engine's wish, until `close`. The model must outlive
    /// that.
    void follow(EngineModel &engine);
    /// To be called where this program does not continue what the last one did: from now on it
    /// counts as not processing. `isToContinue` stays, for a login that follows.
    void noteIdle() { noteProcessing(false); }
    /// The user has stopped what was to be continued.
    void noteStop();
    /// To be called before the program stops the engine for its own end.
    void close();

    /// Last answer of the desktop's portal.
    [[nodiscard]] bool startsAtLogin() const { return file_.content().startsAtLogin; }
    void noteStartsAtLogin(bool starts);

    /// The last problem with the file; empty when the last save succeeded.
    [[nodiscard]] const QString &warning() const { return warning_; }

  Q_SIGNALS:
    void warningChanged();

  private:
    void noteProcessing(bool isProcessing);
    void write(const LastSession &next);
    void setWarning(const QString &warning);

    LastSessionFile file_;
    EngineModel *engine_ = nullptr; ///< null unless followed
    bool isToContinue_ = false;
    bool wasWanted_ = false; ///< by the engine, when it last announced its state
    QString warning_;
};

} // namespace quorbel
