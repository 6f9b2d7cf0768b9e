#pragma once

#include "platform/hardware/AudioHardware.h"
#include "settings/state/AppState.h"
#include "ui/model/RecordListModel.h"

#include <QPointer>
#include <QString>

#include <atomic>
#include <vector>

namespace quorbel {

/// The streams that programs play at present, with what happens to them. [main]
class ProgramListModel final : public quorbel::RecordListModel, private HardwareListener {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.programs is the only one")
    /// True while the list is looked at. It follows the sound server only then.
    Q_PROPERTY(bool watched READ watched WRITE setWatched NOTIFY watchedChanged)

  public:
    enum Role {
        nameRole = Qt::UserRole,
        titleRole, ///< of the stream; empty where it is the program's name
        statusRole,
        processedRole, ///< whether the rules have it processed
        fixedRole,     ///< whether no rule could change that
        surroundRole,  ///< whether it would be mixed to stereo
    };

    ProgramListModel(AppState &state, Clock &clock, QObject *parent);
    ~ProgramListModel() override;

    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] bool watched() const { return watched_; }
    void setWatched(bool watched);

    /// Processes the row's program from now on, or leaves it alone, and remembers it.
    Q_INVOKABLE void setProcessed(int row, bool processed);

  Q_SIGNALS:
    void watchedChanged();

  private:
    void playbackStreamsChanged() override;
    void follow();

    AppState &state_;
    Clock &clock_;
    const QPointer<ProgramListModel> self_; ///< for what is handed over to the main thread
    bool watched_ = false;
    std::atomic<bool> isLookDue_ = false;
    std::vector<PlaybackStream> streams_; ///< as shown
};

} // namespace quorbel
