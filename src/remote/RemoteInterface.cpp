#include "remote/RemoteInterface.h"

#include <QMetaType>

#include <array>
#include <cmath>

namespace quorbel {

const char *const remote::introspection = R"(
  <interface name="com.quorbel.Ostrafine1">
    <method name="Start"/>
    <method name="Stop"/>
    <method name="ApplyPreset">
      <arg name="name" type="s" direction="in"/>
      <arg name="applied" type="s" direction="out"/>
    </method>
    <method name="NextPreset">
      <arg name="applied" type="s" direction="out"/>
    </method>
    <method name="PreviousPreset">
      <arg name="applied" type="s" direction="out"/>
    </method>
    <method name="Get">
      <arg name="key" type="s" direction="in"/>
      <arg name="value" type="v" direction="out"/>
    </method>
    <method name="Set">
      <arg name="key" type="s" direction="in"/>
      <arg name="value" type="v" direction="in"/>
    </method>
    <property name="State" type="s" access="read"/>
    <property name="Reason" type="s" access="read"/>
    <property name="Preset" type="s" access="read"/>
    <property name="Modified" type="b" access="read"/>
    <property name="Profile" type="s" access="read"/>
    <property name="Compare" type="b" access="readwrite"/>
    <property name="Output" type="a{sv}" access="read"/>
    <property name="Meters" type="a{sv}" access="read">
      <annotation name="org.freedesktop.DBus.Property.EmitsChangedSignal" value="false"/>
    </property>
  </interface>
)";

namespace {

/// Rounds away the meaningless digits of a 32-bit value as a double; meters show tenths.
double rounded(float value) { return std::round(static_cast<double>(value) * 1e4) / 1e4 + 0.0; }

} // namespace

QString stateName(RemoteStatus::State state) {
    switch (state) {
    case RemoteStatus::State::running:
        return QStringLiteral("running");
    case RemoteStatus::State::waiting:
        return QStringLiteral("waiting");
    case RemoteStatus::State::error:
        return QStringLiteral("error");
    case RemoteStatus::State::stopped:
        break;
    }
    return QStringLiteral("stopped");
}

QVariantMap propertiesOf(const RemoteStatus &status) {
    QVariantMap output;
    if (!status.outputUID.empty())
        output = {{QStringLiteral("uid"), QString::fromStdString(status.outputUID)},
                  {QStringLiteral("name"), QString::fromStdString(status.outputName)}};
    return {{QStringLiteral("State"), stateName(status.state)},
            {QStringLiteral("Reason"), QString::fromStdString(status.reason)},
            {QStringLiteral("Preset"), QString::fromStdString(status.preset)},
            {QStringLiteral("Modified"), status.isModified},
            {QStringLiteral("Profile"), QString::fromStdString(status.profile)},
            {QStringLiteral("Compare"), status.isComparing},
            {QStringLiteral("Output"), output}};
}

QVariantMap metersOf(const RemoteControl &control) {
    const MeterReadings meters = control.meters();
    const EngineLosses &losses = control.losses();
    return {{QStringLiteral("limiterReductionDB"), rounded(meters.limiterReductionDB)},
            {QStringLiteral("autoGainDB"), rounded(meters.autoGainDB)},
            {QStringLiteral("bassTrackedFrequency"), rounded(meters.bassTrackedFrequency)},
            {QStringLiteral("voiceConfidence"), rounded(meters.voiceConfidence)},
            {QStringLiteral("cutFrames"), static_cast<qlonglong>(losses.cutFrames)},
            {QStringLiteral("silentFrames"), static_cast<qlonglong>(losses.silentFrames)},
            {QStringLiteral("lostCycles"), static_cast<qlonglong>(losses.lostCycles)},
            {QStringLiteral("nonFiniteFrames"), static_cast<qulonglong>(losses.nonFiniteFrames)}};
}

SettingValue settingValueOf(const QVariant &variant) {
    switch (variant.typeId()) {
    case QMetaType::Bool:
        return variant.toBool();
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
        return variant.toDouble();
    case QMetaType::QString:
        return variant.toString().toStdString();
    default:
        throw RemoteError(RemoteError::Kind::invalid,
                          "a value is a boolean, a number or a text, with JSON in it for lists "
                          "and records");
    }
}

QVariant variantOf(const SettingValue &value) {
    if (const auto *text = std::get_if<std::string>(&value))
        return QString::fromStdString(*text);
    if (const auto *isOn = std::get_if<bool>(&value))
        return *isOn;
    return std::get<double>(value);
}

} // namespace quorbel
