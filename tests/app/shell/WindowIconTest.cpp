#include "app/WindowIcon.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPixmap>

using namespace korvane;

namespace {

TEST(WindowIcon, standsInEverySizeThatTaskBarsAskFor) {
    const QIcon icon = windowIcon();
    for (const int sizePx : {16, 32, 48, 128})
        EXPECT_TRUE(icon.availableSizes().contains({sizePx, sizePx})) << sizePx;
}

TEST(WindowIcon, isABlueReelWithWhiteWordsOnANightBluePlateWithRoundCorners) {
    for (const int sizePx : {16, 32, 48, 128}) {
        const QImage image = windowIcon().pixmap(sizePx, sizePx).toImage();
        const auto at = [&](int x, int y) { return image.pixelColor(x * sizePx / 128, y * sizePx / 128); };
        EXPECT_EQ(at(0, 0).alpha(), 0) << sizePx;
        EXPECT_EQ(at(127, 127).alpha(), 0) << sizePx;
        EXPECT_LT(at(20, 64).lightness(), 70) << sizePx;
        EXPECT_EQ(at(20, 64).alpha(), 255) << sizePx;
        EXPECT_GT(at(64, 70).blue(), 200) << sizePx;
        EXPECT_LT(at(64, 70).red(), 120) << sizePx;
        EXPECT_GT(at(52, 82).lightness(), at(64, 70).lightness()) << sizePx;
    }
}

}  // namespace
