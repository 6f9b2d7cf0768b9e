#include "remote/RemoteService.h"

#include "remote/RemoteInterface.h"

#include <QDBusError>
#include <QDBusVariant>
#include <QPointer>

namespace quorbel {

namespace {

using enum RemoteError::Kind;

QString text(const QVariant &argument) { return argument.toString(); }
std::string utf8(const QVariant &argument) { return argument.toString().toStdString(); }

void requireArguments(const QDBusMessage &message, const QString &signature) {
    if (message.signature() != signature)
        throw RemoteError(invalid, (message.member() + " takes arguments of the types \"" +
                                    signature + "\", not \"" + message.signature() + '"')
                                       .toStdString());
}

QVariant wrapped(const QVariant &value) { return QVariant::fromValue(QDBusVariant(value)); }

/// Returns the value within an argument of the type variant.
QVariant unwrapped(const QVariant &argument) { return argument.value<QDBusVariant>().variant(); }

} // namespace

RemoteService::RemoteService(RemoteControl &control, const QDBusConnection &bus)
    : control_(control), bus_(bus), announced_(control.status()) {
    if (!bus_.isConnected())
        return;
    bus_.registerVirtualObject(remote::path, this);
    requestName(announced_.state == RemoteStatus::State::running);
    connect(&control_, &RemoteControl::statusChanged, this, &RemoteService::announce);
}

RemoteService::~RemoteService() {
    if (!bus_.isConnected())
        return;
    bus_.unregisterObject(remote::path);
    QDBusMessage release = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ReleaseName"));
    release << remote::service;
    bus_.send(release);
}

void RemoteService::requestName(bool takesOver) {
    // D-Bus flags, without DO_NOT_QUEUE (4).
    constexpr uint allowReplacement = 1;
    constexpr uint replaceExisting = 2;
    QDBusMessage request = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("RequestName"));
    request << remote::service << (allowReplacement | (takesOver ? replaceExisting : 0U));
    bus_.send(request);
}

void RemoteService::announce() {
    const RemoteStatus now = control_.status();
    if (now == announced_)
        return;
    if (now.state == RemoteStatus::State::running && announced_.state != now.state)
        requestName(true);
    QVariantMap changed = propertiesOf(now);
    const QVariantMap before = propertiesOf(announced_);
    for (auto property = changed.begin(); property != changed.end();)
        property =
            before[property.key()] == *property ? changed.erase(property) : std::next(property);
    announced_ = now;
    QDBusMessage signal = QDBusMessage::createSignal(remote::path, remote::propertiesInterface,
                                                     QStringLiteral("PropertiesChanged"));
    signal << remote::interface << changed << QStringList();
    bus_.send(signal);
}

QString RemoteService::introspect(const QString &) const {
    return QString::fromLatin1(remote::introspection);
}

bool RemoteService::handleMessage(const QDBusMessage &message, const QDBusConnection &) {
    const QString interface = message.interface();
    const bool isOurs = interface.isEmpty() || interface == remote::interface;
    if (message.type() != QDBusMessage::MethodCallMessage ||
        (!isOurs && interface != remote::propertiesInterface))
        return false; // the library answers
    try {
        if (isOurs)
            call(message);
        else
            callProperties(message);
    } catch (const RemoteError &error) {
        const QString problem = QString::fromStdString(error.what());
        bus_.send(error.kind() == invalid
                      ? message.createErrorReply(QDBusError::InvalidArgs, problem)
                      : message.createErrorReply(remote::refusedError, problem));
    }
    return true;
}

void RemoteService::call(const QDBusMessage &message) {
    const QString method = message.member();
    const QVariantList arguments = message.arguments();
    const auto shown = [](const std::string &name) { return QString::fromStdString(name); };
    if (method == QLatin1String("Start")) {
        requireArguments(message, "");
        start(message);
    } else if (method == QLatin1String("Stop")) {
        requireArguments(message, "");
        control_.stop();
        reply(message);
    } else if (method == QLatin1String("ApplyPreset")) {
        requireArguments(message, "s");
        reply(message, {shown(control_.applyPreset(utf8(arguments[0])))});
    } else if (method == QLatin1String("NextPreset")) {
        requireArguments(message, "");
        reply(message, {shown(control_.nextPreset())});
    } else if (method == QLatin1String("PreviousPreset")) {
        requireArguments(message, "");
        reply(message, {shown(control_.previousPreset())});
    } else if (method == QLatin1String("Get")) {
        requireArguments(message, "s");
        reply(message, {wrapped(variantOf(control_.get(utf8(arguments[0]))))});
    } else if (method == QLatin1String("Set")) {
        requireArguments(message, "sv");
        control_.set(utf8(arguments[0]), settingValueOf(unwrapped(arguments[1])));
        reply(message);
    } else {
        bus_.send(
            message.createErrorReply(QDBusError::UnknownMethod, "no method is named " + method));
    }
}

void RemoteService::callProperties(const QDBusMessage &message) {
    const QString method = message.member();
    const QVariantList arguments = message.arguments();
    if (method != QLatin1String("Get") && method != QLatin1String("GetAll") &&
        method != QLatin1String("Set")) {
        bus_.send(
            message.createErrorReply(QDBusError::UnknownMethod, "no method is named " + method));
        return;
    }
    requireArguments(message, method == QLatin1String("Get")      ? "ss"
                              : method == QLatin1String("GetAll") ? "s"
                                                                  : "ssv");
    if (const QString interface = text(arguments[0]);
        !interface.isEmpty() && interface != remote::interface) {
        bus_.send(message.createErrorReply(QDBusError::UnknownInterface,
                                           "no interface is named " + interface));
        return;
    }
    QVariantMap properties = propertiesOf(control_.status());
    const QString meters = QStringLiteral("Meters");
    if (method == QLatin1String("GetAll")) {
        properties[meters] = metersOf(control_);
        reply(message, {properties});
        return;
    }
    const QString name = text(arguments[1]);
    if (name != meters && !properties.contains(name)) {
        bus_.send(
            message.createErrorReply(QDBusError::UnknownProperty, "no property is named " + name));
    } else if (method == QLatin1String("Get")) {
        reply(message, {wrapped(name == meters ? QVariant(metersOf(control_)) : properties[name])});
    } else if (name != QLatin1String("Compare")) {
        bus_.send(
            message.createErrorReply(QDBusError::PropertyReadOnly, name + " can only be read"));
    } else {
        const QVariant value = unwrapped(arguments[2]);
        if (value.typeId() != QMetaType::Bool)
            throw RemoteError(invalid, "Compare is a boolean");
        control_.setComparing(value.toBool());
        reply(message);
    }
}

void RemoteService::start(const QDBusMessage &message) {
    message.setDelayedReply(true);
    control_.start([self = QPointer(this), message](const std::string &failure) {
        if (self == nullptr)
            return;
        self->bus_.send(
            failure.empty()
                ? message.createReply()
                : message.createErrorReply(remote::refusedError, QString::fromStdString(failure)));
    });
}

void RemoteService::reply(const QDBusMessage &message, const QVariantList &values) {
    bus_.send(message.createReply(values));
}

} // namespace quorbel
