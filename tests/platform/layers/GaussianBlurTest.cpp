#include "platform/layers/GaussianBlur.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <numeric>

namespace korvane {
namespace {

class GaussianBlur : public ::testing::TestWithParam<double> {};

/// The blur of a half-plane's edge is the Gaussian's integral.
double edge(double distance, double sigma) {
    return 0.5 * (1.0 + std::erf(distance / (sigma * std::numbers::sqrt2)));
}

TEST_P(GaussianBlur, anEdgeFadesAsTheGaussiansIntegral) {
    const double sigma = GetParam();
    const int size = static_cast<int>(16 * sigma) + 16;
    const int at = size / 2 + 3;  // off the grid that wide blurs work on
    for (const bool vertical : {false, true}) {
        CoveragePlane plane{size, size, std::vector<float>(static_cast<std::size_t>(size * size), 0.0F)};
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x)
                plane.values[static_cast<std::size_t>(y * size + x)] =
                    (vertical ? y : x) >= at ? 255.0F : 0.0F;
        gaussianBlur(plane, sigma);
        const int middle = size / 2;
        for (int i = at - static_cast<int>(3 * sigma); i <= at + static_cast<int>(3 * sigma); ++i) {
            const float value =
                plane.values[static_cast<std::size_t>(vertical ? i * size + middle : middle * size + i)];
            EXPECT_NEAR(value, 255.0 * edge(i + 0.5 - at, sigma), 1.5)
                << "sigma " << sigma << " at " << i - at;
        }
    }
}

TEST_P(GaussianBlur, aPointKeepsItsLightAndItsPlaceMovedByTheShift) {
    const double sigma = GetParam();
    const int size = 2 * (static_cast<int>(std::ceil(5 * sigma)) + 8) + 1;
    const int at = size / 2;
    CoveragePlane plane{size, size, std::vector<float>(static_cast<std::size_t>(size * size), 0.0F)};
    plane.values[static_cast<std::size_t>(at * size + at)] = 1e6F;
    gaussianBlur(plane, sigma, 0.25, -0.4);
    double sum = 0.0;
    double x = 0.0;
    double y = 0.0;
    double spread = 0.0;
    for (int i = 0; i < size * size; ++i) {
        const double value = plane.values[static_cast<std::size_t>(i)];
        sum += value;
        x += value * (i % size - at);
        y += value * (i / size - at);
    }
    x /= sum;
    y /= sum;
    for (int i = 0; i < size * size; ++i)
        spread += plane.values[static_cast<std::size_t>(i)] * (i % size - at - x) * (i % size - at - x);
    EXPECT_NEAR(sum, 1e6, 1e6 * 0.003);
    EXPECT_NEAR(x, 0.25, 0.01);
    EXPECT_NEAR(y, -0.4, 0.01);
    // The point is a pixel wide itself.
    EXPECT_NEAR(std::sqrt(spread / sum), std::sqrt(sigma * sigma + 1.0 / 12.0), 0.03 * sigma);
}

INSTANTIATE_TEST_SUITE_P(Radii, GaussianBlur,
                         ::testing::Values(0.78, 1.0, 2.0, 4.9, 5.0, 6.24, 8.0, 8.64, 12.0, 20.0, 32.0));

TEST(GaussianBlurOfNothing, withoutRadiusThePlaneOnlyMoves) {
    CoveragePlane plane{3, 1, {0.0F, 100.0F, 0.0F}};
    gaussianBlur(plane, 0.0);
    EXPECT_EQ(plane.values, (std::vector<float>{0.0F, 100.0F, 0.0F}));
    gaussianBlur(plane, 0.0, 0.25, 0.0);
    EXPECT_EQ(plane.values, (std::vector<float>{0.0F, 75.0F, 25.0F}));
}

}  // namespace
}  // namespace korvane
