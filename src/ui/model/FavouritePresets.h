#pragma once

#include "settings/state/FavouritePresetsFile.h"

#include <QObject>
#include <QString>

#include <string>
#include <vector>

namespace quorbel {

/// Favourite presets of the user: read once, written at every change. [main]
class FavouritePresets final : public QObject {
    Q_OBJECT

  public:
    FavouritePresets(const std::string &settingsPath, QObject *parent);

    [[nodiscard]] const std::vector<Uuid> &ids() const { return file_.ids(); }
    [[nodiscard]] bool contains(const Uuid &id) const;
    /// Saves at once. Keeps the old favourites and sets a warning if that fails.
    void set(const std::vector<Uuid> &ids);

    /// Last problem with the file; empty if the last save succeeded.
    [[nodiscard]] const QString &warning() const { return warning_; }

  Q_SIGNALS:
    void changed();
    void warningChanged();

  private:
    void setWarning(const QString &warning);

    FavouritePresetsFile file_;
    QString warning_;
};

} // namespace quorbel
