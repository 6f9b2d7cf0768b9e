#pragma once

#include "settings/state/LastSessionFile.h"

#include <QObject>
#include <QString>

#include <string>

namespace quorbel {

class EngineModel;

/// Stores on disk whether the user wants processing, so that a start at login can continue it.
/// Quit, the session's end, a crash or a power failure keep that wish; Stop clears it. [main]
class SessionMemory final : public QObject {
    Q_OBJECT

  public:
    /// Reads the notes of the last run.
    explicit SessionMemory(const std::string &settingsPath);

    /// True if the last run ended while processing was wanted. False once processing is wanted or
    /// stopped in this run.
    [[nodiscard]] bool isToContinue() const { return isToContinue_; }

    /// Notes each change of `engine.wanted()` until `close`. The model must live until then.
    void follow(EngineModel &engine);
    /// Notes that processing is off, for a run that does not continue the last one's. Keeps
    /// `isToContinue` for a later login.
    void noteIdle() { noteProcessing(false); }
    /// Notes that the user has stopped processing, also if it was only to be continued.
    void noteStop();
    /// Stops following the engine; called before the program stops it at its own end.
    void close();

    /// Last answer of the desktop's portal.
    [[nodiscard]] bool startsAtLogin() const { return file_.content().startsAtLogin; }
    void noteStartsAtLogin(bool starts);

    /// Last problem with the file; empty if the last save succeeded.
    [[nodiscard]] const QString &warning() const { return warning_; }

  Q_SIGNALS:
    void warningChanged();

  private:
    void noteProcessing(bool isProcessing);
    void write(const LastSession &next);
    void setWarning(const QString &warning);

    LastSessionFile file_;
    EngineModel *engine_ = nullptr; ///< null unless following
    bool isToContinue_ = false;
    bool wasWanted_ = false; ///< value at the engine's last change of state
    QString warning_;
};

} // namespace quorbel
