#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "tests/platform/layers/RenderedPicture.h"

namespace korvane {
namespace {

using namespace layertest;

int alphaAt(const PlacedOverlay& overlay, int x, int y) {
    const QImage image = imageOf(overlay);
    const QPoint at(x - overlay.x, y - overlay.y);
    return image.rect().contains(at) ? qAlpha(image.pixel(at)) : 0;
}

/// A solid block, so large that its edge's blur is that of a half-plane.
Line block(double radius, Point offset) {
    return {.text = "\u2588",
            .font = "DejaVuSansMono",
            .fontSize = 400.0,
            .color = {1, 1, 1, 0.0},
            .shadow = Shadow{{1.0, 0.5, 0.0, 1.0}, 0.85, radius, offset},
            .frame = {75.6, 500.0, 928.8, 800.0}};
}

Box blockBox(double radius = 0.0) {
    auto line = block(radius, {});
    line.color = Color::white();
    line.shadow.reset();
    return inkBox(rendered(line));
}

class ShadowRadius : public ::testing::TestWithParam<double> {};

TEST_P(ShadowRadius, fallsOffAsAGaussianOfThatDeviation) {
    const double radius = GetParam();
    auto line = block(radius, {0.0, 0.0});
    const Box box = blockBox();
    line.color = Color::white();
    const auto overlay = rendered(line);
    const int middle = static_cast<int>(box.centerY());
    // Outside of the block only the shadow is seen.
    for (int distance = 1; distance <= static_cast<int>(2.5 * radius); ++distance) {
        const int x = static_cast<int>(std::ceil(box.right)) + distance;
        const double away = x + 0.5 - box.right;
        const double wanted = 255.0 * 0.85 * 0.5 * std::erfc(away / (radius * std::numbers::sqrt2));
        EXPECT_NEAR(alphaAt(overlay, x, middle), wanted, 2.5)
            << "radius " << radius << ", " << away << " px away";
    }
    const int reach = static_cast<int>(std::ceil(3.0 * radius)) + 2;
    EXPECT_EQ(alphaAt(overlay, static_cast<int>(box.right) + reach + 1, middle), 0);
    EXPECT_LE(overlay.bitmap->width, box.width() + 2 * reach + 2) << "no larger than the ink and its blur";
}

INSTANTIATE_TEST_SUITE_P(Radii, ShadowRadius, ::testing::Values(2.0, 4.0, 8.0, 16.0, 32.0));

TEST(Shadow, belowAFlippedParentANegativeOffsetGoesUp) {
    const Line plain{.text = "HIH"};
    Line shadowed = plain;
    shadowed.shadow = Shadow{{1.0, 0.0, 0.0, 1.0}, 1.0, 0.0, {0.0, -20.0}};
    const Box without = inkBox(rendered(plain));
    const Box with = inkBox(rendered(shadowed));
    EXPECT_NEAR(with.top, without.top - 20.0, 0.1);
    EXPECT_NEAR(with.bottom, without.bottom, 0.1);
    // Where text and shadow share a partly covered pixel, more of it is covered than by either.
    EXPECT_NEAR(with.left, without.left, 0.3);
}

TEST(Shadow, aFractionOfAPixelsOffsetIsKept) {
    Line line{.text = "HIH", .color = Color::white()};
    line.shadow = Shadow{{1.0, 0.0, 0.0, 1.0}, 1.0, 0.0, {0.5, -20.25}};
    Line plain = line;
    plain.shadow.reset();
    EXPECT_NEAR(inkBox(rendered(line)).top, inkBox(rendered(plain)).top - 20.25, 0.15);
}

TEST(Shadow, growsAndMovesWithTheScale) {
    Line line{.text = "HIH", .popping = true};
    line.shadow = Shadow{{1.0, 0.0, 0.0, 1.0}, 1.0, 0.0, {0.0, -40.0}};
    Line plain = line;
    plain.shadow.reset();
    const double offset = inkBox(rendered(plain, 0.0)).top - inkBox(rendered(line, 0.0)).top;
    EXPECT_NEAR(offset, 40.0 * 0.78, 0.1);
}

TEST(Shadow, hasItsColourBehindTheText) {
    auto line = block(10.0, {0.0, -60.0});
    line.color = {0.0, 0.0, 1.0, 1.0};
    const auto overlay = rendered(line);
    const Box box = blockBox();
    const QImage image = imageOf(overlay);
    const int x = static_cast<int>(box.centerX()) - overlay.x;
    const QRgb text = image.pixel(x, static_cast<int>(box.centerY()) - overlay.y);
    EXPECT_EQ(qRed(text), 0);
    EXPECT_EQ(qBlue(text), 255);
    const QRgb shadow = image.pixel(x, static_cast<int>(box.top) - 30 - overlay.y);
    EXPECT_NEAR(qAlpha(shadow), 0.85 * 255, 2.0);
    EXPECT_NEAR(qRed(shadow), 0.85 * 255, 2);  // colours are premultiplied
    EXPECT_NEAR(qGreen(shadow), 0.85 * 128, 2);
    EXPECT_EQ(qBlue(shadow), 0);
}

TEST(Shadow, withoutOneNothingSurroundsTheText) {
    const auto overlay = rendered({.text = "HIH"});
    const Box box = inkBox(overlay);
    EXPECT_LE(overlay.bitmap->width, box.width() + 3);
    EXPECT_LE(overlay.bitmap->height, box.height() + 3);
}

}  // namespace
}  // namespace korvane
