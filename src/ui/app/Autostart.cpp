#include "ui/app/Autostart.h"

#include "remote/SessionBus.h"
#include "settings/files/FileReplacement.h"
#include "settings/files/TextFile.h"
#include "settings/records/SettingsFile.h"
#include "ui/app/AutostartPortal.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <exception>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace quorbel {

namespace {

namespace fs = std::filesystem;

constexpr const char *entryName = "autostart/com.quorbel.Ostrafine.desktop";

/// Returns the file's entry; nullopt if it is missing. Throws std::runtime_error with its name.
std::optional<AutostartEntry> entryIn(const fs::path &file) {
    constexpr std::size_t maximumBytes = std::size_t{1} << 20U;
    try {
        return AutostartEntry(readTextFile(file, maximumBytes));
    } catch (const TextFileError &error) {
        if (error.reason() == TextFileError::Reason::missing)
            return std::nullopt;
        throw std::runtime_error(file.string() + ": " + error.what());
    }
}

/// True if `program`, an absolute path or a name in PATH, is executable.
bool isProgram(const std::string &program) {
    const QString name = QString::fromStdString(program);
    return name.startsWith('/') ? QFileInfo(name).isFile() && QFileInfo(name).isExecutable()
                                : !QStandardPaths::findExecutable(name).isEmpty();
}

} // namespace

AutostartPlaces AutostartPlaces::ofSession() {
    AutostartPlaces places;
    places.user = fs::path(userSettingsPath()).parent_path().parent_path() / entryName;
    const QString folders = qEnvironmentVariable("XDG_CONFIG_DIRS", QStringLiteral("/etc/xdg"));
    for (const QString &folder : folders.split(':', Qt::SkipEmptyParts))
        places.system.push_back(fs::path(folder.toStdString()) / entryName);
    places.desktops = qgetenv("XDG_CURRENT_DESKTOP").toStdString();
    places.commandProgram =
        (QCoreApplication::applicationDirPath() + QStringLiteral("/ostrafine-cli")).toStdString();
    return places;
}

AutostartFile::AutostartFile(StartAtLoginModel &model, const QDBusConnection &bus, Clock &clock,
                             AutostartPlaces places)
    : model_(model), bus_(bus), places_(std::move(places)),
      watch_(places_.user, clock, [this] { show(); }) {
    connect(&model_, &StartAtLoginModel::requested, this, &AutostartFile::switchTo);
    askWhetherStartable();
    show();
}

void AutostartFile::askWhetherStartable() {
    obstacle_ = tr("This Ostrafine is not installed: the session bus knows no service %1 that it "
                   "could start at login.")
                    .arg(activation::service);
    if (!isProgram(places_.commandProgram)) {
        obstacle_ = tr("%1 is missing. It starts Ostrafine at login.")
                        .arg(QString::fromStdString(places_.commandProgram));
        return;
    }
    const QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListActivatableNames"));
    auto *reply = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
        reply->deleteLater();
        const QDBusPendingReply<QStringList> names = *reply;
        if (names.isError() || !names.value().contains(activation::service))
            return;
        obstacle_.clear();
        show();
    });
}

std::optional<AutostartEntry> AutostartFile::userEntry() const { return entryIn(places_.user); }

std::optional<AutostartEntry> AutostartFile::systemEntry() const {
    for (const fs::path &file : places_.system)
        if (auto entry = entryIn(file))
            return entry;
    return std::nullopt;
}

void AutostartFile::switchTo(bool on) {
    try {
        write(on);
        show();
    } catch (const std::exception &error) {
        show(QString::fromUtf8(error.what()));
    }
}

/// Throws std::runtime_error that names the file.
void AutostartFile::write(bool on) const {
    const AutostartEntry own = AutostartEntry::running(places_.commandProgram);
    std::optional<AutostartEntry> entry = userEntry();
    const std::optional<AutostartEntry> general = systemEntry();
    const std::string file = places_.user.string();
    if (!on && !general && (!entry || entry->text() == own.text())) {
        std::error_code error;
        fs::remove(places_.user, error);
        if (error)
            throw std::runtime_error(file + " could not be removed: " + error.message());
        return;
    }
    if (!entry)
        entry = general.value_or(own);
    if (on && entry->isForOthers(places_.desktops))
        throw std::runtime_error(file + " is limited to other desktops by OnlyShowIn or NotShowIn. "
                                        "Change or remove that file.");
    if (on)
        entry->switchOn(own, isProgram);
    else
        entry->switchOff();
    try {
        replaceFile(file, entry->text());
    } catch (const FileReplacementError &error) {
        throw std::runtime_error(file + " could not be written: " + error.what());
    }
}

void AutostartFile::show(const QString &failure) {
    StartAtLoginModel::State state;
    try {
        std::optional<AutostartEntry> entry = userEntry();
        if (!entry)
            entry = systemEntry();
        state.isOn = entry && entry->isOn(places_.desktops, isProgram);
        state.isOffered = state.isOn || obstacle_.isEmpty();
        state.note = failure.isEmpty() ? obstacle_ : failure;
    } catch (const std::exception &error) {
        state = {.isOffered = false, .note = QString::fromUtf8(error.what())};
    }
    model_.setState(state);
}

std::unique_ptr<QObject> makeAutostart(StartAtLoginModel &model, SessionMemory &memory,
                                       const QDBusConnection &bus, Clock &clock) {
    if (QFile::exists(QStringLiteral("/.flatpak-info")))
        return std::make_unique<AutostartPortal>(model, memory, bus);
    return std::make_unique<AutostartFile>(model, bus, clock, AutostartPlaces::ofSession());
}

} // namespace quorbel
