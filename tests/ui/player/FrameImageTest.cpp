#include "ui/player/FrameImage.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "tests/ui/player/PlayedPictures.h"

namespace korvane {
namespace {

TEST(FrameImage, withoutARadiusEveryPixelIsThePictures) {
    const QSize size(30, 20);
    const auto frame = pictureOf(size, [](int x, int y) { return QColor(x * 8, y * 12, 255 - x * y / 3); });
    FrameImage maker;
    const QImage image = maker.made(*frame.picture, 0.0);
    ASSERT_EQ(image.size(), size);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            ASSERT_EQ(image.pixel(x, y), qRgb(x * 8, y * 12, 255 - x * y / 3)) << x << ' ' << y;
    }
}

TEST(FrameImage, theFourCornersAreCutAlikeAndNothingElseIs) {
    const auto frame = pictureOf(QSize(90, 160), Qt::white);
    FrameImage maker;
    const QImage image = maker.made(*frame.picture, 10.0);
    EXPECT_EQ(image.pixel(0, 0), 0U);
    EXPECT_EQ(image.pixel(1, 1), 0U);
    int partly = 0;
    for (int y = 0; y < 160; ++y) {
        for (int x = 0; x < 90; ++x) {
            const QRgb pixel = reinterpret_cast<const QRgb*>(image.constScanLine(y))[x];
            EXPECT_EQ(pixel, reinterpret_cast<const QRgb*>(image.constScanLine(y))[89 - x]);
            EXPECT_EQ(pixel, reinterpret_cast<const QRgb*>(image.constScanLine(159 - y))[x]);
            // White stays white: colours are multiplied by their coverage.
            EXPECT_EQ(qRed(pixel), qAlpha(pixel));
            partly += qAlpha(pixel) > 0 && qAlpha(pixel) < 255 ? 1 : 0;
            const bool inCorner = (x < 16 || x >= 74) && (y < 16 || y >= 144);
            EXPECT_TRUE(inCorner || pixel == 0xFFFFFFFFU) << x << ' ' << y;
        }
    }
    EXPECT_GT(partly, 40) << "the edge of the corners is smooth";
}

TEST(FrameImage, aPictureThatIsSmallerThanItsCornersIsCutToo) {
    const auto frame = pictureOf(QSize(5, 3), Qt::white);
    FrameImage maker;
    const QImage image = maker.made(*frame.picture, 10.0);
    EXPECT_LT(qAlpha(image.pixel(0, 0)), 255);
    EXPECT_EQ(qAlpha(image.pixel(2, 1)), 255);
}

TEST(FrameImage, memoryIsWrittenAgainOnlyOnceNobodyHoldsIt) {
    const QSize size(64, 64);
    const auto red = pictureOf(size, Qt::red);
    const auto blue = pictureOf(size, Qt::blue);
    FrameImage maker;
    std::vector<QImage> held;
    for (int i = 0; i < 6; ++i)
        held.push_back(maker.made(*(i % 2 ? blue : red).picture, 0.0));
    for (std::size_t i = 0; i < held.size(); ++i)
        EXPECT_EQ(held[i].pixel(5, 5), i % 2 ? qRgb(0, 0, 255) : qRgb(255, 0, 0)) << i;

    held.clear();
    std::set<const uchar*> places;
    for (int i = 0; i < 30; ++i)
        places.insert(maker.made(*red.picture, 0.0).constBits());
    EXPECT_LE(places.size(), 3U);
}

TEST(FrameImage, aPictureOfAnotherSizeGetsItsOwnCorners) {
    FrameImage maker;
    maker.made(*pictureOf(QSize(90, 160), Qt::white).picture, 10.0);
    const QImage image = maker.made(*pictureOf(QSize(180, 320), Qt::white).picture, 20.0);
    EXPECT_EQ(qAlpha(image.pixel(3, 3)), 0);
    EXPECT_EQ(qAlpha(image.pixel(176, 316)), 0);
    EXPECT_EQ(qAlpha(image.pixel(90, 0)), 255);
}

}  // namespace
}  // namespace korvane
