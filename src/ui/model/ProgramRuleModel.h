#pragma once

#include "settings/state/AppState.h"
#include "ui/model/RecordListModel.h"

#include <QString>

#include <vector>

namespace quorbel {

/// Rules that decide which programs are processed. [main]
class ProgramRuleModel final : public quorbel::RecordListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.programRules is the only one")
    Q_PROPERTY(bool othersProcessed READ othersProcessed WRITE setOthersProcessed NOTIFY changed)
    Q_PROPERTY(bool callsProcessed READ callsProcessed WRITE setCallsProcessed NOTIFY changed)

  public:
    enum Role {
        nameRole = Qt::UserRole,
        processedRole,
        stereoRole, ///< true if surround sound is mixed to stereo
        titleRole,  ///< pattern of the streams' titles; empty: all
    };

    ProgramRuleModel(AppState &state, QObject *parent);

    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] bool othersProcessed() const { return rules_.processesOthers; }
    void setOthersProcessed(bool processed);
    [[nodiscard]] bool callsProcessed() const { return rules_.processesCalls; }
    void setCallsProcessed(bool processed);

    // Changes the rule in `row`; ignores an unknown row.
    Q_INVOKABLE void setProcessed(int row, bool processed);
    /// Limits the rule to streams whose title matches the pattern; empty: all.
    Q_INVOKABLE void setTitle(int row, const QString &pattern);
    Q_INVOKABLE void forget(int row);

  Q_SIGNALS:
    void changed();

  private:
    void follow();
    template <typename Change> void changeRule(int row, Change change);

    AppState &state_;
    ProgramRules rules_; ///< as shown
};

} // namespace quorbel
