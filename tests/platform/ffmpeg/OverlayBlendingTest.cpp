#include "platform/ffmpeg/OverlayBlending.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "platform/ffmpeg/CanvasPictures.h"
#include "platform/ffmpeg/Handles.h"

namespace korvane {
namespace {

struct Straight {
    double r, g, b, a;
};

double luma(const Straight& c) {
    return 16 + 219 * (0.2126 * c.r + 0.7152 * c.g + 0.0722 * c.b);
}
double blueness(const Straight& c) {
    return 128 + 224 * (c.b - (0.2126 * c.r + 0.7152 * c.g + 0.0722 * c.b)) / 1.8556;
}

std::vector<std::uint8_t> filled(int width, int height, const Straight& c) {
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < width * height; ++i)
        for (const double v : {c.b * c.a, c.g * c.a, c.r * c.a, c.a})
            pixels.push_back(static_cast<std::uint8_t>(std::lround(v * 255)));
    return pixels;
}

TEST(OverlayBlending, anOpaqueColourReplacesThePicture) {
    const auto canvas = blackCanvas(64, 64);
    const Straight colour{0.9, 0.3, 0.1, 1.0};
    const auto pixels = filled(20, 16, colour);
    BlendPlanes(pixels.data(), 20, 16, 80, 10, 8, 1.0).blendOnto(*canvas);
    EXPECT_NEAR(canvas->data[0][10 * canvas->linesize[0] + 15], luma(colour), 1.0);
    EXPECT_NEAR(canvas->data[1][6 * canvas->linesize[1] + 8], blueness(colour), 1.0);
    EXPECT_EQ(canvas->data[0][7 * canvas->linesize[0] + 15], 16);   // above
    EXPECT_EQ(canvas->data[0][10 * canvas->linesize[0] + 9], 16);   // left
    EXPECT_EQ(canvas->data[0][10 * canvas->linesize[0] + 30], 16);  // right
}

TEST(OverlayBlending, halfCoverageAndHalfOpacityMixInThePicturesOwnValues) {
    const auto canvas = blackCanvas(64, 64);
    const auto pixels = filled(32, 32, {1.0, 1.0, 1.0, 0.5});
    BlendPlanes(pixels.data(), 32, 32, 128, 16, 16, 0.5).blendOnto(*canvas);
    EXPECT_NEAR(canvas->data[0][32 * canvas->linesize[0] + 32], 16 + 219 * 0.25, 1.0);
    EXPECT_NEAR(canvas->data[1][16 * canvas->linesize[1] + 16], 128, 1);
}

TEST(OverlayBlending, aColourSampleTakesFromTheThreeColumnsAroundItsPlace) {
    // One opaque red column at an even place: the sample on it takes half of it, those beside it nothing; at
    // an odd place its two neighbours take a quarter each.
    for (const int column : {20, 21}) {
        const auto canvas = blackCanvas(64, 64);
        const auto pixels = filled(1, 64, {1.0, 0.0, 0.0, 1.0});
        BlendPlanes(pixels.data(), 1, 64, 4, column, 0, 1.0).blendOnto(*canvas);
        const double full = 240.0 - 128.0;
        const std::uint8_t* row = canvas->data[2] + 10 * canvas->linesize[2];
        if (column % 2 == 0) {
            EXPECT_NEAR(row[column / 2] - 128.0, full * 0.5, 1.0);
            EXPECT_NEAR(row[column / 2 + 1], 128, 1);
            EXPECT_NEAR(row[column / 2 - 1], 128, 1);
        } else {
            EXPECT_NEAR(row[column / 2] - 128.0, full * 0.25, 1.0);
            EXPECT_NEAR(row[column / 2 + 1] - 128.0, full * 0.25, 1.0);
        }
    }
}

TEST(OverlayBlending, whatReachesBeyondTheCanvasIsCutAndHarmsNothing) {
    std::mt19937 random(9);
    const auto pixels = filled(40, 30, {0.2, 0.8, 0.4, 0.9});
    for (int i = 0; i < 300; ++i) {
        const auto canvas = blackCanvas(48, 36);
        const int x = static_cast<int>(random() % 140) - 70;
        const int y = static_cast<int>(random() % 120) - 60;
        BlendPlanes(pixels.data(), 40, 30, 160, x, y, 1.0).blendOnto(*canvas);
        for (const auto& [px, py] : {std::pair{0, 0}, {47, 0}, {0, 35}, {47, 35}}) {
            const bool inside = px >= x && px < x + 40 && py >= y && py < y + 30;
            EXPECT_EQ(canvas->data[0][py * canvas->linesize[0] + px] != 16, inside) << x << "," << y;
        }
    }
}

}  // namespace
}  // namespace korvane
