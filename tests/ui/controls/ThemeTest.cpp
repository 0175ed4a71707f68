#include "Theme.h"

#include <gtest/gtest.h>

namespace korvane {

namespace {

void expectColor(const QColor& color, float red, float green, float blue) {
    EXPECT_NEAR(color.redF(), red, 1e-4);
    EXPECT_NEAR(color.greenF(), green, 1e-4);
    EXPECT_NEAR(color.blueF(), blue, 1e-4);
    EXPECT_EQ(color.alphaF(), 1.0F);
}

}  // namespace

TEST(ThemeColors, areTheGivenNumbers) {
    expectColor(Theme::bgTop(), 0.04F, 0.07F, 0.17F);
    expectColor(Theme::bgBottom(), 0.07F, 0.12F, 0.24F);
    expectColor(Theme::accent(), 0.24F, 0.6F, 1.0F);
    expectColor(Theme::accentLo(), 0.12F, 0.42F, 0.88F);
    expectColor(Theme::stopHi(), 0.95F, 0.34F, 0.34F);
    expectColor(Theme::stopLo(), 0.72F, 0.16F, 0.16F);
    expectColor(Theme::successGreen(), 0.25F, 0.85F, 0.55F);
    expectColor(Theme::cardFill(), 0.1F, 0.16F, 0.32F);
}

TEST(ThemeColors, whiteAndFadedTakeAnOpacity) {
    EXPECT_NEAR(Theme::white(0.45).alphaF(), 0.45F, 1e-4);
    EXPECT_EQ(Theme::white(0.45).redF(), 1.0F);
    EXPECT_NEAR(Theme::faded(Theme::accent(), 0.28).alphaF(), 0.28F, 1e-4);
    EXPECT_NEAR(Theme::faded(Theme::accent(), 0.28).greenF(), 0.6F, 1e-4);
}

TEST(ThemeColors, brighterIsWhiterAndLessSeeThrough) {
    const QColor faint = Theme::white(0.45);
    EXPECT_GT(Theme::brighter(faint).alphaF(), faint.alphaF());
    EXPECT_GT(Theme::brighter(Theme::accent()).redF(), Theme::accent().redF());
    EXPECT_LE(Theme::brighter(Qt::white).redF(), 1.0F);
}

}  // namespace korvane
