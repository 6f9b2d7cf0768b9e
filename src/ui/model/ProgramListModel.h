#pragma once

#include "platform/hardware/AudioHardware.h"
#include "settings/state/AppState.h"
#include "ui/model/RecordListModel.h"

#include <QPointer>
#include <QString>

#include <atomic>
#include <vector>

namespace quorbel {

/// Current playback streams of programs, with their treatment. [main]
class ProgramListModel final : public quorbel::RecordListModel, private HardwareListener {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.programs is the only one")
    /// True while the list is visible; it follows the sound server only then.
    Q_PROPERTY(bool watched READ watched WRITE setWatched NOTIFY watchedChanged)

  public:
    enum Role {
        nameRole = Qt::UserRole,
        titleRole, ///< of the stream; empty if equal to the name
        statusRole,
        processedRole, ///< true if the rules process it
        fixedRole,     ///< true if no rule can change that
        surroundRole,  ///< true if processing would mix it to stereo
    };

    ProgramListModel(AppState &state, Clock &clock, QObject *parent);
    ~ProgramListModel() override;

    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] bool watched() const { return watched_; }
    void setWatched(bool watched);

    /// Updates the rules so that the row's program is processed or left alone; saves them.
    Q_INVOKABLE void setProcessed(int row, bool processed);

  Q_SIGNALS:
    void watchedChanged();

  private:
    void playbackStreamsChanged() override;
    void follow();

    AppState &state_;
    Clock &clock_;
    const QPointer<ProgramListModel> self_; ///< guards calls posted to the main thread
    bool watched_ = false;
    std::atomic<bool> isLookDue_ = false;
    std::vector<PlaybackStream> streams_; ///< as shown
};

} // namespace quorbel
