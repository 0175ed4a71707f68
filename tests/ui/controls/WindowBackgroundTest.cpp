#include "WindowBackground.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "DitheredGradient.h"
#include "Stage.h"
#include "Theme.h"

namespace korvane {

namespace {

constexpr int width = 1280;
constexpr int height = 800;

QImage ground() {
    return ditheredGradient({width, height}, Theme::bgTop(), Theme::bgBottom());
}

// The exact blue level at a pixel's middle.
double exactBlue(int x, int y) {
    const double part =
        ((x + 0.5) * width + (y + 0.5) * height) / (double(width) * width + double(height) * height);
    return 255 * (double(Theme::bgTop().blueF()) +
                  part * double(Theme::bgBottom().blueF() - Theme::bgTop().blueF()));
}

double meanBlue(const QImage& image, int left, int top, int side) {
    double sum = 0;
    for (int y = top; y < top + side; ++y) {
        for (int x = left; x < left + side; ++x) {
            sum += qBlue(image.pixel(x, y));
        }
    }
    return sum / (side * side);
}

}  // namespace

TEST(DitheredGradient, runsFromCornerToCorner) {
    const QImage image = ground();
    const QColor first = image.pixelColor(0, 0);
    const QColor last = image.pixelColor(width - 1, height - 1);
    EXPECT_NEAR(first.red(), 255 * 0.04, 1);
    EXPECT_NEAR(first.green(), 255 * 0.07, 1);
    EXPECT_NEAR(first.blue(), 255 * 0.17, 1);
    EXPECT_NEAR(last.red(), 255 * 0.07, 1);
    EXPECT_NEAR(last.green(), 255 * 0.12, 1);
    EXPECT_NEAR(last.blue(), 255 * 0.24, 1);
    EXPECT_EQ(qAlpha(image.pixel(600, 400)), 255);
}

TEST(DitheredGradient, noPixelIsMoreThanALevelOff) {
    const QImage image = ground();
    for (int y = 0; y < height; y += 7) {
        for (int x = 0; x < width; ++x) {
            ASSERT_LE(std::abs(qBlue(image.pixel(x, y)) - exactBlue(x, y)), 1.01) << x << ' ' << y;
        }
    }
}

// Plain rounding is up to half a level off over areas hundreds of pixels wide: the bands that are seen.
TEST(DitheredGradient, everySmallAreaHasTheExactColorOnAverage) {
    const QImage image = ground();
    for (int y = 0; y + 16 <= height; y += 16) {
        for (int x = 0; x + 16 <= width; x += 16) {
            const double exact = (exactBlue(x, y) + exactBlue(x + 15, y + 15)) / 2;
            ASSERT_NEAR(meanBlue(image, x, y, 16) + 0.0, exact, 0.06) << x << ' ' << y;
        }
    }
}

TEST(DitheredGradient, growsAlongTheDiagonal) {
    const QImage image = ground();
    double before = 0;
    for (int i = 0; i + 32 <= height; i += 32) {
        const double now = meanBlue(image, i * (width - 32) / (height - 32), i, 32);
        EXPECT_GT(now, before);
        before = now;
    }
}

TEST(DitheredGradient, hasNoRunOfOneColorWiderThanAFewPixels) {
    const QImage image = ground();
    int longest = 0;
    for (int y = 0; y < height; y += 13) {
        int run = 1;
        for (int x = 1; x < width; ++x) {
            run = image.pixel(x, y) == image.pixel(x - 1, y) ? run + 1 : 1;
            longest = std::max(longest, run);
        }
    }
    // A band of plain rounding would be about 60 pixels wide, with sharp edges.
    EXPECT_LT(longest, 24);
}

TEST(DitheredGradient, mayFallAsWellAsRise) {
    const QImage image = ditheredGradient({64, 64}, Qt::white, Qt::black);
    EXPECT_GE(qRed(image.pixel(0, 0)), 252);
    EXPECT_LE(qRed(image.pixel(63, 63)), 3);
    EXPECT_NEAR(qRed(image.pixel(32, 32)), 126, 3);
}

TEST(WindowBackground, fillsTheWindow) {
    Stage stage(R"qml(WindowBackground { })qml", QSize(300, 200));
    const QImage picture = stage.picture();
    EXPECT_NEAR(picture.pixelColor(0, 0).blue(), 255 * 0.17, 1);
    EXPECT_NEAR(picture.pixelColor(299, 199).blue(), 255 * 0.24, 1);
}

TEST(WindowBackground, isTransparentOutsideItsRoundedCorners) {
    Stage stage(R"qml(WindowBackground { cornerRadius: 12 })qml", QSize(300, 200));
    stage.view().setColor(Qt::red);
    const QImage picture = stage.picture();
    for (const QPoint corner : {QPoint(0, 0), QPoint(299, 0), QPoint(0, 199), QPoint(299, 199)}) {
        EXPECT_EQ(picture.pixelColor(corner), QColor(Qt::red));
    }
    EXPECT_LT(picture.pixelColor(12, 0).red(), 20);
    EXPECT_LT(picture.pixelColor(0, 187).red(), 20);
    EXPECT_LT(picture.pixelColor(5, 5).red(), 20);
    bool between = false;
    for (int x = 0; x < 12; ++x) {
        const int red = picture.pixelColor(x, 2).red();
        between = between || (red > 30 && red < 225);
    }
    EXPECT_TRUE(between) << "the corner's edge is not smooth";

    stage.root().setProperty("cornerRadius", 0);
    EXPECT_LT(stage.picture().pixelColor(0, 0).red(), 20);
}

}  // namespace korvane
