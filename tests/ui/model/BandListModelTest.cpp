// The equaliser as QML sees it.

#include "ui/model/ModelFixture.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace quorbel::testing {
namespace {

class BandListModelTest : public ModelTest {
  protected:
    [[nodiscard]] BandListModel &list() { return *app->equalizer()->bands(); }
    [[nodiscard]] QString label(int row, const QByteArray &role) {
        return says(list(), row, role).toString();
    }
};

TEST_F(BandListModelTest, WritesOneFieldOfOneBandAndKeepsWithinTheControlsRange) {
    EXPECT_EQ(label(0, "frequencyLabel"), "31.5");
    EXPECT_EQ(label(3, "bandId").toStdString(), bands()[3].id.text());
    std::vector<EQBand> expected = bands();
    list().setGain(4, -3.1);
    expected[4].gainDB = -3.1F;
    EXPECT_EQ(bands(), expected);
    EXPECT_EQ(label(4, "gainLabel"), "-3.1");

    list().setGain(4, 99);
    list().setFrequency(4, 5);
    list().setQ(4, 0);
    list().setFilterType(4, 3);
    list().setBypassed(4, true);
    list().setFrequency(5, 1e9);
    const EQBand &band = bands()[4];
    EXPECT_EQ(std::tuple(band.gainDB, band.frequency, band.q, band.filterType, band.bypassed),
              std::tuple(12.0F, 20.0F, 0.1F, EQBand::FilterType::lowPass, true));
    EXPECT_EQ(bands()[5].frequency, 20000.0F);
    EXPECT_EQ(says(list(), 4, "filterType").toInt(), 3);
    EXPECT_EQ(app->equalizer()->bypassedCount(), 1);
}

TEST_F(BandListModelTest, InvalidRowsAndValuesAreIgnored) {
    const std::vector<EQBand> before = bands();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    list().setGain(-1, 3);
    list().setGain(10, 3);
    list().setGain(0, nan);
    list().setFrequency(0, nan);
    list().setQ(0, std::numeric_limits<double>::infinity());
    list().setFilterType(0, 5);
    list().resetBand(42);
    EXPECT_EQ(bands(), before);
}

TEST_F(BandListModelTest, ViewsKeepTheirRowsWhileBandsChange) {
    // Another preset has other ids, but a view that lost its rows would lose the user's focus.
    Announcements resets(list(), &QAbstractItemModel::modelReset);
    Announcements removals(list(), &QAbstractItemModel::rowsRemoved);
    list().setGain(2, 4);
    app->equalizer()->resetAll();
    EXPECT_EQ(resets.take() + removals.take(), 0);

    std::vector<EQBand> fewer = bands();
    fewer.erase(fewer.begin() + 3, fewer.begin() + 5);
    engine().eq().setBands(fewer);
    EXPECT_EQ(app->equalizer()->count(), 8);
    EXPECT_EQ(removals.take(), 1);
    EXPECT_EQ(label(3, "frequencyLabel"), "1k");
}

TEST_F(BandListModelTest, ResetsOneBandOrAll) {
    list().setFrequency(0, 44);
    list().setGain(0, 6);
    list().setFilterType(0, 0);
    const Uuid id = bands()[0].id;
    list().resetBand(0);
    EXPECT_EQ(bands()[0],
              (EQBand{.id = id, .frequency = 31.5F, .filterType = EQBand::FilterType::lowShelf}));

    list().setGain(7, 2);
    EXPECT_EQ(app->presets()->activeName(), "Custom");
    app->equalizer()->resetAll();
    EXPECT_EQ(app->presets()->activeName(), "Flat") << "the default bands are that preset's";
}

TEST_F(BandListModelTest, CurvesCountTheGainsAndThePeakIsOfTheBandsAlone) {
    EqualizerModel &equalizer = *app->equalizer();
    list().setGain(5, 6);
    EXPECT_EQ(equalizer.peakText(), "6.0 dB peak");
    // 1 kHz lies at 0.566 of the axis; +6 of 30 dB are a fifth above the middle.
    const QList<qreal> exact = equalizer.exactValues();
    EXPECT_NEAR(exact[static_cast<qsizetype>(0.5663 * static_cast<double>(exact.size() - 1))], 0.7,
                0.005);
    EXPECT_NEAR(exact.first(), 0.5, 0.001);

    equalizer.setGlobalGainDB(-3);
    EXPECT_EQ(equalizer.globalGainText(), "-3.0 dB");
    engine().eq().setPresetGainDB(-1.5F);
    EXPECT_NEAR(equalizer.exactValues().first(), 0.5 - 4.5 / 30.0, 0.001);
    EXPECT_EQ(equalizer.peakText(), "6.0 dB peak");
    const QList<qreal> drawn = equalizer.curveValues();
    EXPECT_NEAR((*std::ranges::max_element(drawn) - 0.5) * 2 * equalizer.drawnRangeDB(),
                equalizer.peakDB() - 4.5, 1e-9);
    equalizer.setGlobalGainDB(-40);
    EXPECT_EQ(equalizer.globalGainDB(), -12);
}

} // namespace
} // namespace quorbel::testing
