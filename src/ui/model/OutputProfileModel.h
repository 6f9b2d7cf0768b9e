#pragma once

#include "settings/state/AppState.h"
#include "ui/model/RecordListModel.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// Every known output with its profile: those that are there, those that have a profile but are
/// away, and last any other output. [main]
class OutputProfileModel final : public quorbel::RecordListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.profiles is the only one")
    /// The choices for an output: the current settings, flat, to be left alone, or a preset.
    Q_PROPERTY(QStringList choices READ choices NOTIFY choicesChanged)

  public:
    enum Role {
        nameRole = Qt::UserRole,
        placeRole,   ///< "In use", "Not connected" or empty
        profileRole, ///< "Bass Boost (modified)"
        choiceRole,  ///< the row of the choices; -1 for none of them
        hasProfileRole,
    };

    OutputProfileModel(AppState &state, QObject *parent);

    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] QStringList choices() const;

    /// Gives the output of a row what the choice of this index says. What does not exist is
    /// ignored.
    Q_INVOKABLE void choose(int row, int choice);
    /// The output of a row has no profile of its own from now on.
    Q_INVOKABLE void forget(int row);

  Q_SIGNALS:
    void choicesChanged();

  private:
    struct Row {
        OutputKey key;
        std::string label;
        QString name;
        QString place;
        QString profile;
        int choice = -1;
        bool hasProfile = false;
    };

    [[nodiscard]] std::vector<Row> currentRows() const;
    [[nodiscard]] Row rowOf(const OutputKey &key, const std::string &label) const;
    [[nodiscard]] int choiceOf(const OutputProfile &profile) const;
    void follow();

    AppState &state_;
    std::vector<Row> rows_; ///< as shown
};

} // namespace quorbel
