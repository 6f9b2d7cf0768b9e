// Spatial and mixer settings, navigation and warnings as QML sees them.

#include "settings/records/json/SettingsCoding.h"
#include "ui/model/ModelFixture.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaProperty>

#include <filesystem>
#include <limits>

namespace quorbel::testing {
namespace {

class SettingsModelsTest : public ModelTest {
  protected:
    template <typename Record> [[nodiscard]] static QJsonObject fields(const Record &record) {
        return QJsonDocument::fromJson(QByteArray::fromStdString(encodeRecord(record))).object();
    }

    /// Writes every property that is named like a field, and expects exactly that field to change,
    /// to what was written, and the property to show it.
    template <typename Read> void expectOnePropertyPerField(QObject &model, const Read &record) {
        const QStringList names = fields(record()).keys();
        for (const QString &name : names) {
            const int index = model.metaObject()->indexOfProperty(qPrintable(name));
            ASSERT_GE(index, 0) << qPrintable(name);
            const QMetaProperty property = model.metaObject()->property(index);
            const QJsonObject before = fields(record());
            const QVariant was = property.read(&model);
            const bool isSwitch = was.typeId() == QMetaType::Bool;
            const QVariant next = isSwitch ? QVariant(!was.toBool()) : was.toDouble() + 1.0;
            ASSERT_TRUE(property.write(&model, next)) << qPrintable(name);
            EXPECT_EQ(property.read(&model).toDouble(), next.toDouble()) << qPrintable(name);

            QJsonObject expected = before;
            const QJsonObject after = fields(record());
            if (isSwitch)
                expected[name] = next.toBool();
            else if (before[name].isDouble())
                expected[name] = after[name]; // shown above
            else
                expected[name] = QStringLiteral("mediumRoom");
            EXPECT_EQ(after, expected) << qPrintable(name);
            EXPECT_NE(after, before) << qPrintable(name);
        }
    }
};

TEST_F(SettingsModelsTest, EveryFieldHasItsOwnProperty) {
    expectOnePropertyPerField(*app->spatial(), [&] { return engine().spatial(); });
    expectOnePropertyPerField(*app->mixer(), [&] { return engine().mixer(); });
}

TEST_F(SettingsModelsTest, ValuesAreRoundedSoThatFilesKeepShortDecimals) {
    app->mixer()->setLimiterThresholdDB(-0.1 - 0.2);
    EXPECT_EQ(engine().mixer().limiterThresholdDB, -0.3F);
    EXPECT_EQ(app->mixer()->limiterThresholdDB(), -0.3);
    app->spatial()->setToneBassDB(-1e-9);
    EXPECT_FALSE(std::signbit(app->spatial()->toneBassDB()));
}

TEST_F(SettingsModelsTest, WhatIsNoValueIsIgnored) {
    const Announcements spatial(engine(), &AudioEngine::spatialChanged);
    const SpatialConfig before = engine().spatial();
    app->spatial()->setXtcAmount(std::numeric_limits<double>::quiet_NaN());
    app->spatial()->setXtcAmount(std::numeric_limits<double>::infinity());
    app->spatial()->setReverbPresetIndex(7);
    app->spatial()->setReverbPresetIndex(-1);
    EXPECT_EQ(engine().spatial(), before);
}

TEST_F(SettingsModelsTest, ToneResetLeavesEverythingElse) {
    app->spatial()->setXtcAmount(70);
    const SpatialConfig before = engine().spatial();
    app->spatial()->setToneBassDB(3);
    app->spatial()->setToneMidDB(-2);
    app->spatial()->setToneTrebleDB(1);
    app->spatial()->resetTone();
    EXPECT_EQ(engine().spatial(), before);
}

TEST_F(SettingsModelsTest, SwitchingAStageOffKeepsItsValues) {
    app->spatial()->setBassEnabled(true);
    app->spatial()->setBassDrive(5);
    EXPECT_EQ(app->spatial()->enabledCount(), 1);
    app->spatial()->setBassEnabled(false);
    EXPECT_EQ(app->spatial()->enabledCount(), 0);
    EXPECT_EQ(app->spatial()->bassDrive(), 5);
    EXPECT_THAT(app->spatial()->reverbPresetTitles(),
                ::testing::AllOf(::testing::SizeIs(7), ::testing::Contains("Medium Hall")));
}

TEST_F(SettingsModelsTest, BadgesFollow) {
    NavigationModel &navigation = *app->navigation();
    const auto badge = [&](const QString &destination) {
        return says(navigation, navigation.indexOf(destination), "badge").toString();
    };
    EXPECT_EQ(badge("limiter"), "on");
    EXPECT_EQ(badge("mixer"), "0 on");
    EXPECT_EQ(badge("devices"), "2 found");
    EXPECT_EQ(badge("setup"), "");
    Announcements changes(navigation, &NavigationModel::dataChanged);
    app->mixer()->setLimiterEnabled(false);
    EXPECT_EQ(changes.take(), 1) << "only the badge that has changed";
    EXPECT_EQ(badge("limiter"), "off");
    app->presets()->save("Mine");
    EXPECT_EQ(badge("presetsMine"), "1");
    EXPECT_EQ(badge("presetsFactory"), "33");
    hardware.removeDevice("hdmi");
    app->devices()->refresh();
    EXPECT_EQ(badge("devices"), "1 found");
    EXPECT_EQ(navigation.groupOf("presetsMine"), "Presets");
    EXPECT_EQ(navigation.titleOf("nowhere"), "");
}

TEST_F(SettingsModelsTest, AWarningStaysUntilDismissedOrSolvedAndANewOneComesBack) {
    Announcements changes(*app, &AppModel::persistWarningChanged);
    EXPECT_EQ(app->persistWarning(), "");
    const auto file = folder.path() / "state.json";
    std::filesystem::create_directory(file); // nothing can be saved under this name now
    state->persist();
    EXPECT_TRUE(app->persistWarning().startsWith("Settings could not be saved: "));
    EXPECT_EQ(changes.take(), 1);
    app->dismissWarning();
    EXPECT_EQ(app->persistWarning(), "");
    EXPECT_EQ(changes.take(), 1);

    std::filesystem::remove(file);
    state->persist();
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    state->persist();
    EXPECT_NE(app->persistWarning(), "") << "another failure is said again";
    std::filesystem::remove(file);
    state->persist();
    EXPECT_EQ(app->persistWarning(), "");
}

} // namespace
} // namespace quorbel::testing
