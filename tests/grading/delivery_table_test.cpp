// The HDR and BT.2020 conversion: fixed points of the formulas, the
// shoulder's shape, and the table both the preview and the export apply,
// against the exact formulas on edge and seeded random code values.
#include "grading/delivery_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>
#include <cstdio>
#include <random>

namespace tavrelune {
namespace {

using GradePipeline::Colour;

double toSteps(double value)
{
    return value * 255;
}

TEST(DeliveryTable, ReferenceWhiteGreyAndBlackLandWhereSdrHasThem)
{
    // PQ code values of 203 cd/m² (SDR white) and 38.9 cd/m² (SDR 50 % grey
    // on a gamma 2.4 display); HLG 75 % is reference white.
    const double white = std::pow(DeliveryTable::shoulder(1.0), 1 / 2.4);
    for (const auto& [conversion, code, expected] :
         {std::tuple{DeliveryConversion::pq, 0.58069, white}, std::tuple{DeliveryConversion::pq, 0.41767, 0.5},
          std::tuple{DeliveryConversion::hlg, 0.75, white}, std::tuple{DeliveryConversion::hlg, 0.0, 0.0},
          std::tuple{DeliveryConversion::pq, 0.0, 0.0}, std::tuple{DeliveryConversion::wideGamut, 0.5, 0.5}}) {
        const Colour grey = DeliveryTable::convert(conversion, {code, code, code});
        EXPECT_NEAR(toSteps(grey.red), toSteps(expected), 1.5) << deliveryConversionName(conversion).toStdString();
        EXPECT_NEAR(grey.red, grey.green, 1e-6);
        EXPECT_NEAR(grey.green, grey.blue, 1e-6);
    }
    // A pure BT.2020 green is outside BT.709: it clips, and stays green.
    const Colour green = DeliveryTable::convert(DeliveryConversion::wideGamut, {0, 1, 0});
    EXPECT_EQ(green.red, 0);
    EXPECT_EQ(green.green, 1);
    EXPECT_EQ(green.blue, 0);
}

TEST(DeliveryTable, ShoulderKeepsSdrLightAndBendsSmoothlyUpToThePeak)
{
    for (double x = 0; x <= DeliveryTable::shoulderStart; x += 0.05)
        EXPECT_DOUBLE_EQ(DeliveryTable::shoulder(x), x);
    const double peak = DeliveryTable::nominalPeakNits / DeliveryTable::sdrWhiteNits;
    EXPECT_NEAR(DeliveryTable::shoulder(peak), 1.0, 1e-12);
    EXPECT_EQ(DeliveryTable::shoulder(peak * 3), 1.0);
    // Slope 1 where it starts, rising all the way.
    const double h = 1e-6;
    EXPECT_NEAR((DeliveryTable::shoulder(DeliveryTable::shoulderStart + h) - DeliveryTable::shoulderStart) / h, 1.0,
                1e-3);
    double previous = 0;
    for (double x = 0.81; x < peak; x += 0.01) {
        EXPECT_GT(DeliveryTable::shoulder(x), previous);
        previous = DeliveryTable::shoulder(x);
    }
}

TEST(DeliveryTable, TablesFollowTheFormulasWithinAStep)
{
    std::mt19937 random(20261123);
    std::uniform_real_distribution<double> unit(0, 1);
    for (const DeliveryConversion conversion :
         {DeliveryConversion::hlg, DeliveryConversion::pq, DeliveryConversion::wideGamut}) {
        const CubeLUT table = DeliveryTable::table(conversion);
        ASSERT_TRUE(table.isValid());
        std::vector<double> errors;
        const int samples = 20000;
        for (int i = 0; i < samples; ++i) {
            const Colour code{unit(random), unit(random), unit(random)};
            const Colour exact = DeliveryTable::convert(conversion, code);
            const Colour linear = GradePipeline::lookUp(table, code);
            const Colour looked{DeliveryTable::encodeForDisplay(linear.red),
                                DeliveryTable::encodeForDisplay(linear.green),
                                DeliveryTable::encodeForDisplay(linear.blue)};
            for (const double error : {looked.red - exact.red, looked.green - exact.green, looked.blue - exact.blue})
                errors.push_back(std::abs(toSteps(error)));
        }
        std::sort(errors.begin(), errors.end());
        const double mean = std::accumulate(errors.begin(), errors.end(), 0.0) / double(errors.size());
        const double p99 = errors[errors.size() * 99 / 100];
        // The largest errors sit in PQ's brightest saturated highlights
        // (above about 700 cd/m²), where the shoulder bends within a cell.
        std::printf("%s table vs formula: mean %.3f, p99 %.2f, max %.1f steps of 1/255\n",
                    qPrintable(deliveryConversionName(conversion)), mean, p99, errors.back());
        EXPECT_LT(mean, 0.2);
        EXPECT_LT(p99, 1.5);
    }
    EXPECT_FALSE(DeliveryTable::table(DeliveryConversion::none).isValid());
}

}  // namespace
}  // namespace tavrelune
