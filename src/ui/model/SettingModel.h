#pragma once

#include "settings/records/SettingSchema.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace quorbel {

class HistoryModel;

/// One setting for a control: its value, and caption, range and step from the schema. A switch has
/// the value 0 or 1, a choice its index. [main]
class SettingModel final : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Setting)
    QML_UNCREATABLE("App.setting(key) returns it")
    Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged)
    Q_PROPERTY(bool on READ isOn NOTIFY valueChanged)
    /// Value with its unit.
    Q_PROPERTY(QString text READ text NOTIFY valueChanged)
    /// Position of the value in its range, 0 to 1.
    Q_PROPERTY(double position READ position NOTIFY valueChanged)
    Q_PROPERTY(double from READ from CONSTANT)
    Q_PROPERTY(double to READ to CONSTANT)
    Q_PROPERTY(double stepSize READ stepSize CONSTANT)
    /// Value at which the lit part of a slider begins.
    Q_PROPERTY(double origin READ origin CONSTANT)
    Q_PROPERTY(double defaultValue READ defaultValue CONSTANT)
    Q_PROPERTY(QString label READ label CONSTANT)
    /// Label with its stage: "Deep Bass, Drive".
    Q_PROPERTY(QString name READ name CONSTANT)

  public:
    /// Field of the record behind the setting. `write` calls the engine's setter at once.
    struct Field {
        std::string_view key;
        std::string_view label;
        std::string_view stage;
        SettingScale scale;
        int choices; ///< 0 for a number
        double defaultValue;
        std::function<double()> read;
        std::function<void(double)> write;
    };

    /// `history` must outlive it.
    SettingModel(Field field, HistoryModel &history, QObject *parent);

    [[nodiscard]] double value() const { return value_; }
    /// Ignores non-finite values and invalid choice indices.
    void setValue(double value);
    /// Re-reads the record's value.
    void refresh();

    [[nodiscard]] bool isOn() const { return value_ != 0.0; }
    Q_INVOKABLE void toggle() { setValue(isOn() ? 0.0 : 1.0); }

    [[nodiscard]] QString text() const;
    [[nodiscard]] double position() const;
    [[nodiscard]] double from() const;
    [[nodiscard]] double to() const;
    [[nodiscard]] double stepSize() const;
    [[nodiscard]] double origin() const;
    [[nodiscard]] double defaultValue() const { return field_.defaultValue; }
    [[nodiscard]] QString label() const;
    [[nodiscard]] QString name() const;

  Q_SIGNALS:
    void valueChanged();

  private:
    Field field_;
    HistoryModel &history_;
    double value_;
};

} // namespace quorbel
