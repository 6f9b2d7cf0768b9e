#include "ui/model/FavouritePresets.h"

#include <algorithm>
#include <exception>

namespace quorbel {

FavouritePresets::FavouritePresets(const std::string &settingsPath, QObject *parent)
    : QObject(parent), file_(settingsPath) {
    try {
        if (const auto warning = file_.read())
            warning_ = QString::fromStdString(*warning);
    } catch (const std::exception &error) {
        warning_ = tr("The favourite presets could not be read: %1. The file is left as it is.")
                       .arg(QString::fromUtf8(error.what()));
    }
}

bool FavouritePresets::contains(const Uuid &id) const {
    return std::ranges::find(ids(), id) != ids().end();
}

void FavouritePresets::set(const std::vector<Uuid> &ids) {
    try {
        const auto warning = file_.write(ids);
        setWarning(warning ? QString::fromStdString(*warning) : QString());
    } catch (const std::exception &error) {
        setWarning(tr("The favourite presets could not be saved: %1")
                       .arg(QString::fromUtf8(error.what())));
    }
    Q_EMIT changed();
}

void FavouritePresets::setWarning(const QString &warning) {
    if (warning.isEmpty() && warning_.isEmpty())
        return;
    warning_ = warning;
    Q_EMIT warningChanged(); // even if equal: announces each failed save
}

} // namespace quorbel
