#pragma once

#include "settings/state/AppState.h"
#include "ui/model/RecordListModel.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// Known outputs with their profiles: connected ones, disconnected ones with a profile, and last
/// any other output. [main]
class OutputProfileModel final : public quorbel::RecordListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.profiles is the only one")
    /// Choices for an output: the current settings, flat, left alone, or a preset.
    Q_PROPERTY(QStringList choices READ choices NOTIFY choicesChanged)

  public:
    enum Role {
        nameRole = Qt::UserRole,
        placeRole,   ///< "In use", "Not connected" or empty
        profileRole, ///< "Bass Boost (modified)"
        choiceRole,  ///< index into `choices`; -1 for none
        hasProfileRole,
    };

    OutputProfileModel(AppState &state, QObject *parent);

    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] QStringList choices() const;

    /// Assigns the choice of this index to the output in `row`; ignores invalid indices.
    Q_INVOKABLE void choose(int row, int choice);
    /// Removes the profile of the output in `row`.
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
