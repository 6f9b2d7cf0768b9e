// Spatial and mixer settings, navigation and warnings as QML sees them.

#include "settings/records/json/SettingsCoding.h"
#include "ui/model/ModelFixture.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <iterator>
#include <limits>
#include <string>

namespace quorbel::testing {
namespace {

class SettingsModelsTest : public ModelTest {
  protected:
    template <typename Record> [[nodiscard]] static QJsonObject fields(const Record &record) {
        return QJsonDocument::fromJson(QByteArray::fromStdString(encodeRecord(record))).object();
    }

    /// Writes every setting; expects only the field of its key to change and the setting to show
    /// the written value.
    void expectOneFieldPerRow(const auto &rows, const auto &record) {
        EXPECT_EQ(fields(record()).size(), static_cast<qsizetype>(std::size(rows)));
        for (const auto &row : rows) {
            SCOPED_TRACE(std::string(row.key));
            const QString name = QString::fromStdString(std::string(row.key));
            SettingModel &setting = *app->setting(name);
            const QJsonObject before = fields(record());
            const double next = setting.isOn() ? setting.value() - 1.0 : setting.value() + 1.0;
            setting.setValue(next);
            EXPECT_EQ(setting.value(), next);
            const QJsonObject after = fields(record());
            QJsonObject expected = before;
            expected[name] = after[name];
            EXPECT_EQ(after, expected);
            EXPECT_NE(after, before);
            if (after[name].isDouble()) {
                EXPECT_EQ(after[name].toDouble(), next);
            }
        }
    }
};

TEST_F(SettingsModelsTest, EverySettingIsOneField) {
    expectOneFieldPerRow(spatialSettings, [&] { return engine().spatial(); });
    expectOneFieldPerRow(mixerSettings, [&] { return engine().mixer(); });
}

TEST_F(SettingsModelsTest, ValuesAreRoundedSoThatFilesKeepShortDecimals) {
    app->setting("limiterThresholdDB")->setValue(-0.1 - 0.2);
    EXPECT_EQ(engine().mixer().limiterThresholdDB, -0.3F);
    EXPECT_EQ(app->setting("limiterThresholdDB")->value(), -0.3);
    app->setting("toneBassDB")->setValue(-1e-9);
    EXPECT_FALSE(std::signbit(app->setting("toneBassDB")->value()));
}

TEST_F(SettingsModelsTest, InvalidValuesAndAToneResetChangeNothingElse) {
    app->setting("xtcAmount")->setValue(70);
    const SpatialConfig before = engine().spatial();
    for (const double none :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
        app->setting("xtcAmount")->setValue(none);
    for (const int none : {7, -1})
        app->setting("reverbPreset")->setValue(none);
    for (const char *tone : {"toneBassDB", "toneMidDB", "toneTrebleDB"})
        app->setting(tone)->setValue(3);
    app->settings()->resetTone();
    EXPECT_EQ(engine().spatial(), before);
    EXPECT_THAT(app->settings()->reverbPresetTitles(), ::testing::SizeIs(7));
}

TEST_F(SettingsModelsTest, BadgesFollowTheSettings) {
    NavigationModel &navigation = *app->navigation();
    const auto badge = [&](const QString &destination) {
        return says(navigation, navigation.indexOf(destination), "badge").toString();
    };
    EXPECT_EQ(badge("limiter"), "on");
    EXPECT_EQ(badge("devices"), "2 found");
    Announcements changes(navigation, &NavigationModel::dataChanged);
    app->setting("limiterEnabled")->setValue(0);
    EXPECT_EQ(changes.take(), 1) << "only the badge that has changed";
    EXPECT_EQ(badge("limiter"), "off");
    app->setting("bassEnabled")->setValue(1);
    EXPECT_EQ(badge("spatial"), "1 on");
    app->presets()->save("Mine");
    EXPECT_EQ(badge("presetsMine"), "1");
    hardware.removeDevice("hdmi");
    app->devices()->refresh();
    EXPECT_EQ(badge("devices"), "1 found");
}

} // namespace
} // namespace quorbel::testing
