#include "settings/interchange/BandFit.h"

#include "effects/FilterBandwidth.h"
#include "equalizer/SectionDesign.h"
#include "settings/interchange/BandResponse.h"
#include "settings/records/PlayedFilterType.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace quorbel {
namespace {

double bandResponseDB(const EQBand &band, double frequencyHz) {
    std::vector<double> sumDB{0.0};
    addBandResponseDB(band, {frequencyHz}, sumDB);
    return sumDB[0];
}

using FilterType = EQBand::FilterType;

EQBand peak(double frequency, double gainDB, double q) {
    return {.frequency = static_cast<float>(frequency),
            .gainDB = static_cast<float>(gainDB),
            .q = static_cast<float>(q)};
}

TEST(BandResponse, EqualsThePlayedResponse) {
    for (const FilterType type : EQBand::allFilterTypes)
        for (const float frequency : {40.0F, 1000.0F, 9000.0F})
            for (const float q : {0.05F, 0.7F, 4.0F, 90.0F}) {
                const EQBand band{
                    .frequency = frequency, .gainDB = -7.5F, .q = q, .filterType = type};
                const auto design = designBand({.filterType = playedFilterType(type),
                                                .frequencyHz = frequency,
                                                .bandwidthOctaves = bandwidthOctaves(q),
                                                .gainDB = band.gainDB,
                                                .bypass = false},
                                               48000.0);
                ASSERT_TRUE(design);
                for (const double at : {30.0, 500.0, 2000.0, 9500.0}) {
                    const double played = 10.0 * std::log10(design->power(at / 48000.0));
                    if (played > -40.0) { // the design is less accurate below
                        EXPECT_NEAR(bandResponseDB(band, at), played, 0.15)
                            << frequency << " Hz, Q " << q << ", at " << at << " Hz";
                    }
                }
            }
    EXPECT_EQ(bandResponseDB({.gainDB = 6.0F, .bypassed = true}, 1000.0), 0.0);
}

/// RMS error in dB of keeping the ten strongest bands unchanged: the baseline for a fit.
double rmsOfTheStrongest(std::vector<EQBand> bands) {
    std::sort(bands.begin(), bands.end(), [](const EQBand &a, const EQBand &b) {
        return std::abs(a.gainDB) / a.q > std::abs(b.gainDB) / b.q;
    });
    return responseError({bands.begin(), bands.begin() + 10}, bands).rmsDB;
}

TEST(BandFit, CorrectionsOfManyFiltersComeNear) {
    std::mt19937 random(20);
    const auto between = [&random](double low, double high) {
        return low + (high - low) * static_cast<double>(random()) / 4294967295.0;
    };
    const struct {
        std::size_t filters;
        double rmsDB, maximumDB; // measured values plus half
    } cases[] = {{12, 0.07, 0.25}, {20, 0.36, 1.5}, {31, 0.8, 3.5}};
    for (const auto &c : cases)
        for (int round = 0; round < 3; ++round) {
            std::vector<EQBand> bands{{.frequency = 105,
                                       .gainDB = static_cast<float>(between(-6, 6)),
                                       .q = 0.7F,
                                       .filterType = FilterType::lowShelf},
                                      {.frequency = 10000,
                                       .gainDB = static_cast<float>(between(-6, 6)),
                                       .q = 0.7F,
                                       .filterType = FilterType::highShelf}};
            while (bands.size() < c.filters)
                bands.push_back(
                    peak(20.0 * std::pow(1000.0, between(0, 1)), between(-5, 5), between(0.5, 4)));
            const BandFit fit = fitBands(bands, 10);
            EXPECT_LT(fit.error.rmsDB, c.rmsDB) << c.filters << " filters";
            EXPECT_LT(fit.error.maximumDB, c.maximumDB) << c.filters << " filters";
            EXPECT_LT(fit.error.rmsDB, 0.5 * rmsOfTheStrongest(bands));
            for (const EQBand &band : fit.bands) {
                EXPECT_LE(std::abs(band.gainDB), 12.0F);
                EXPECT_FALSE(band.bypassed);
            }
        }
}

TEST(BandFit, AHighPassKeepsItsStopBand) {
    std::vector<EQBand> bands{{.frequency = 40, .q = 0.7F, .filterType = FilterType::highPass}};
    for (int i = 0; i < 12; ++i)
        bands.push_back(peak(60.0 * std::exp2(0.6 * i), i % 2 == 0 ? 2 : -2, 1.5));
    const BandFit fit = fitBands(bands, 10);
    EXPECT_EQ(fit.bands.front().filterType, FilterType::highPass);
    EXPECT_NEAR(fit.bands.front().frequency, 40.0F, 2.0F);
    EXPECT_LT(fit.error.rmsDB, 0.5);
}

} // namespace
} // namespace quorbel
