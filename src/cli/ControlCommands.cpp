#include "cli/CommandError.h"
#include "cli/Commands.h"
#include "cli/PrintableText.h"
#include "remote/RemoteClient.h"
#include "remote/SessionBus.h"
#include "settings/records/SettingSchema.h"
#include "settings/records/json/JsonLiterals.h"

#include <fmt/format.h>

#include <QCoreApplication>
#include <QDBusVariant>

#include <cstdio>
#include <exception>
#include <functional>
#include <utility>

namespace quorbel {

namespace {

/// Calls `work` with an application object.
void withApplication(const std::function<void()> &work) {
    // Qt's own event loop starts faster than GLib's.
    qputenv("QT_NO_GLIB", "1");
    int argumentCount = 1;
    char name[] = "ostrafine-cli";
    char *arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    work();
}

/// A command that talks to the running program; fails with `nothingRuns` if there is none.
class ControlCommand : public Command {
  public:
    void run() const final {
        withApplication([this] { ask(); });
    }

  protected:
    using Command::Command;
    virtual void control(RemoteClient &client) const = 0;

  private:
    void ask() const {
        try {
            RemoteClient client;
            control(client);
        } catch (const NothingToControl &error) {
            throw CommandError(error.what(), CommandError::Status::nothingRuns);
        }
    }
};

/// A control command without arguments.
class PlainControlCommand final : public ControlCommand {
  public:
    PlainControlCommand(std::string name, std::string summary,
                        std::function<void(RemoteClient &)> work)
        : ControlCommand(std::move(name), std::move(summary)), work_(std::move(work)) {}

  private:
    void control(RemoteClient &client) const override { work_(client); }

    std::function<void(RemoteClient &)> work_;
};

void printResult(const QVariant &result) {
    fmt::print("{}\n", printable(result.toString().toStdString()));
}

void toggle(RemoteClient &client) {
    const QString state = client.properties().value(QStringLiteral("State")).toString();
    const bool isOn = state == QLatin1String("running") || state == QLatin1String("waiting");
    client.call(isOn ? QStringLiteral("Stop") : QStringLiteral("Start"));
}

std::string numberText(double number) {
    std::string text;
    appendNumber(text, number);
    return text;
}

// Output

std::string yesOrNo(const QVariant &value) { return value.toBool() ? "yes" : "no"; }

std::string deviceText(const QVariantMap &device) {
    if (device.isEmpty())
        return "none";
    return fmt::format("{}  ({})", device[QStringLiteral("name")].toString().toStdString(),
                       device[QStringLiteral("uid")].toString().toStdString());
}

std::string metersText(const QVariantMap &meters) {
    const auto number = [&](const char *key) { return meters[QLatin1String(key)].toDouble(); };
    return fmt::format("reduction {:.1f} dB, auto gain {:+.1f} dB, {:.0f} frames cut, "
                       "{:.0f} silent",
                       number("limiterReductionDB"), number("autoGainDB"), number("cutFrames"),
                       number("silentFrames"));
}

/// Prints one line per property, in the order of importance.
void printRows(const QVariantMap &properties) {
    const auto row = [&](const char *name, const std::function<std::string(QVariant)> &text) {
        if (const auto found = properties.find(QLatin1String(name)); found != properties.end())
            fmt::print("{:<9} {}\n", name, printable(text(*found)));
    };
    const auto plain = [](const QVariant &value) { return value.toString().toStdString(); };
    const auto orNone = [&](const QVariant &value) {
        return value.toString().isEmpty() ? "none" : plain(value);
    };
    row("State", plain);
    if (!properties.value(QStringLiteral("Reason")).toString().isEmpty())
        row("Reason", plain);
    row("Preset", orNone);
    row("Modified", yesOrNo);
    row("Profile", orNone);
    row("Compare", yesOrNo);
    row("Output", [](const QVariant &value) { return deviceText(value.toMap()); });
    row("Meters", [](const QVariant &value) { return metersText(value.toMap()); });
}

/// Converts a value to JSON; the keys start with a lower-case letter.
std::string jsonOf(const QVariant &value) {
    std::string json;
    if (value.typeId() == QMetaType::QVariantMap) {
        const QVariantMap map = value.toMap();
        for (auto member = map.begin(); member != map.end(); ++member) {
            QString key = member.key();
            key[0] = key[0].toLower();
            json += fmt::format("{}\"{}\":{}", json.empty() ? "{" : ",", key.toStdString(),
                                jsonOf(*member));
        }
        return json.empty() ? "{}" : json + "}";
    }
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? "true" : "false";
    if (value.typeId() != QMetaType::QString)
        return numberText(value.toDouble());
    return appendString(json, value.toString().toStdString()) ? json : "null";
}

class ControlStatusCommand final : public ControlCommand {
  public:
    ControlStatusCommand() : ControlCommand("ctl status", "Show what the program does") {
        declare({.name = "--json", .help = "As a JSON object", .variable = &json_});
    }

  private:
    void control(RemoteClient &client) const override {
        const QVariantMap properties = client.properties();
        if (json_)
            fmt::print("{}\n", jsonOf(properties));
        else
            printRows(properties);
    }

    bool json_ = false;
};

class ControlWatchCommand final : public ControlCommand {
  public:
    ControlWatchCommand()
        : ControlCommand("ctl watch", "Show the status, and then every change, until Ctrl-C") {
        declare({.name = "--json",
                 .help = "The whole status as a JSON object on one line, for each change",
                 .variable = &json_});
    }

  private:
    void control(RemoteClient &client) const override {
        QVariantMap known;
        const auto show = [&](const QVariantMap &properties) {
            QVariantMap news;
            for (auto property = properties.begin(); property != properties.end(); ++property)
                if (property.key() != QLatin1String("Meters") && // only a snapshot
                    known.value(property.key()) != *property)
                    news[property.key()] = known[property.key()] = *property;
            if (news.isEmpty())
                return;
            if (json_)
                fmt::print("{}\n", jsonOf(known));
            else
                printRows(news);
            if (std::fflush(stdout) != 0)
                throw CommandError("standard output cannot be written");
        };
        // An exception must not pass through Qt's event loop.
        std::exception_ptr failure;
        const auto attempt = [&](const std::function<void()> &work) {
            try {
                work();
            } catch (...) {
                failure = std::current_exception();
                QCoreApplication::quit();
            }
        };
        QObject::connect(&client, &RemoteClient::changed, &client,
                         [&](const QVariantMap &changed) { attempt([&] { show(changed); }); });
        QObject::connect(&client, &RemoteClient::moved, &client, [&](bool isThere) {
            attempt([&] {
                if (!isThere)
                    throw NothingToControl("Ostrafine has ended");
                show(client.properties());
            });
        });
        client.watch();
        show(client.properties());
        QCoreApplication::exec();
        if (failure)
            std::rethrow_exception(failure);
    }

    bool json_ = false;
};

/// The only command that starts a program; an entry in the autostart folder calls it.
class ResumeCommand final : public Command {
  public:
    ResumeCommand()
        : Command("ctl resume",
                  "Start the window's program without its window, as a login does: it "
                  "processes if it did when it last ended") {}

    void run() const override { withApplication(resumeProgram); }
};

class ControlPresetCommand final : public ControlCommand {
  public:
    ControlPresetCommand() : ControlCommand("ctl preset", "Apply a preset and print its name") {
        declare({.name = "NAME",
                 .help = "Name of the preset",
                 .values = {{"NAME", CommandValue::Completion::presetName}},
                 .variable = &name_,
                 .isRequired = true});
    }

  private:
    void control(RemoteClient &client) const override {
        printResult(client.call(QStringLiteral("ApplyPreset"), {QString::fromStdString(name_)}));
    }

    std::string name_;
};

class ControlCompareCommand final : public ControlCommand {
  public:
    ControlCompareCommand()
        : ControlCommand("ctl compare", "Play the unprocessed sound, as loud as the processed") {
        declare({.name = "STATE",
                 .help = "on or off",
                 .values = {{.name = "STATE", .choices = {"on", "off"}, .isOneOfThem = true}},
                 .variable = &state_,
                 .isRequired = true});
    }

  private:
    void control(RemoteClient &client) const override {
        client.setProperty(QStringLiteral("Compare"), state_ == "on");
    }

    std::string state_;
};

std::vector<std::string> settingKeys() {
    std::vector<std::string> keys{"eqGlobalGainDB", "outputDeviceUID"};
    for (const auto &setting : spatialSettings)
        keys.push_back("spatial." + std::string(setting.key));
    for (const auto &setting : mixerSettings)
        keys.push_back("mixer." + std::string(setting.key));
    return keys;
}

CommandArgument keyArgument(std::string &key) {
    return {.name = "KEY",
            .help = "Its path in the settings file, such as spatial.reverbMix or bands.0.gainDB",
            .values = {{.name = "KEY", .choices = settingKeys()}},
            .variable = &key,
            .isRequired = true};
}

class ControlGetCommand final : public ControlCommand {
  public:
    ControlGetCommand() : ControlCommand("ctl get", "Print a setting") {
        declare(keyArgument(key_));
    }

  private:
    void control(RemoteClient &client) const override {
        const QVariant value = client.call(QStringLiteral("Get"), {QString::fromStdString(key_)});
        if (value.typeId() == QMetaType::QString)
            printResult(value);
        else
            fmt::print("{}\n", jsonOf(value));
    }

    std::string key_;
};

class ControlSetCommand final : public ControlCommand {
  public:
    ControlSetCommand() : ControlCommand("ctl set", "Change a setting") {
        declare(keyArgument(key_));
        declare({.name = "VALUE",
                 .help = "As in the settings file, without the quotation marks of a text",
                 .values = {{.name = "VALUE"}},
                 .variable = &value_,
                 .isRequired = true});
    }

  private:
    void control(RemoteClient &client) const override {
        client.call(QStringLiteral("Set"),
                    {QString::fromStdString(key_),
                     QVariant::fromValue(QDBusVariant(QString::fromStdString(value_)))});
    }

    std::string key_;
    std::string value_;
};

} // namespace

std::vector<std::unique_ptr<Command>> makeControlCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    const auto add = [&](std::unique_ptr<Command> command) {
        commands.push_back(std::move(command));
    };
    const auto addPlain = [&](const char *name, const char *summary, auto work) {
        add(std::make_unique<PlainControlCommand>(name, summary, std::move(work)));
    };
    const auto calling = [](const char *method) {
        return [name = QString::fromLatin1(method)](RemoteClient &client) { client.call(name); };
    };
    const auto printing = [](const char *method) {
        return [name = QString::fromLatin1(method)](RemoteClient &client) {
            printResult(client.call(name));
        };
    };
    add(std::make_unique<ControlStatusCommand>());
    addPlain("ctl start", "Start processing; ends when it runs", calling("Start"));
    addPlain("ctl stop", "Stop processing", calling("Stop"));
    addPlain("ctl toggle", "Stop processing where it runs or waits to return, else start it",
             toggle);
    add(std::make_unique<ResumeCommand>());
    add(std::make_unique<ControlPresetCommand>());
    addPlain("ctl next", "Apply the next preset of the window's list and print its name",
             printing("NextPreset"));
    addPlain("ctl previous", "Apply the previous one and print its name",
             printing("PreviousPreset"));
    add(std::make_unique<ControlCompareCommand>());
    add(std::make_unique<ControlGetCommand>());
    add(std::make_unique<ControlSetCommand>());
    add(std::make_unique<ControlWatchCommand>());
    return commands;
}

} // namespace quorbel
