#include "app/WindowGeometry.h"

#include <gtest/gtest.h>

using namespace korvane;

namespace {

const QRect start(100, 50, 1000, 700);
const QSize smallest(960, 680);

TEST(WindowGeometry, aWindowStartsNoLargerThanTheScreen) {
    EXPECT_EQ(fittedSize(comfortableSize, {1920, 1040}), comfortableSize);
    EXPECT_EQ(fittedSize(comfortableSize, {1024, 740}), QSize(1024, 740));
    EXPECT_EQ(fittedSize(smallestSize, {800, 600}), QSize(800, 600));
    EXPECT_EQ(fittedSize(comfortableSize, {}), comfortableSize);
}

TEST(WindowGeometry, anEdgeFollowsThePointerAndTheOppositeOneStays) {
    EXPECT_EQ(resized(start, Qt::RightEdge, {30, 99}, smallest), QRect(100, 50, 1030, 700));
    EXPECT_EQ(resized(start, Qt::BottomEdge, {99, 20}, smallest), QRect(100, 50, 1000, 720));
    EXPECT_EQ(resized(start, Qt::LeftEdge, {-30, 99}, smallest), QRect(70, 50, 1030, 700));
    EXPECT_EQ(resized(start, Qt::TopEdge, {99, -20}, smallest), QRect(100, 30, 1000, 720));
}

TEST(WindowGeometry, aCornerFollowsThePointerBothWays) {
    EXPECT_EQ(resized(start, Qt::TopEdge | Qt::LeftEdge, {-10, -20}, smallest), QRect(90, 30, 1010, 720));
    EXPECT_EQ(resized(start, Qt::BottomEdge | Qt::RightEdge, {10, 20}, smallest), QRect(100, 50, 1010, 720));
}

TEST(WindowGeometry, itStopsAtTheSmallestSizeWithTheOppositeEdgeInPlace) {
    const QRect left = resized(start, Qt::LeftEdge, {500, 0}, smallest);
    EXPECT_EQ(left.width(), smallest.width());
    EXPECT_EQ(left.right(), start.right());
    const QRect top = resized(start, Qt::TopEdge, {0, 500}, smallest);
    EXPECT_EQ(top.height(), smallest.height());
    EXPECT_EQ(top.bottom(), start.bottom());
    EXPECT_EQ(resized(start, Qt::RightEdge | Qt::BottomEdge, {-500, -500}, smallest),
              QRect(start.topLeft(), smallest));
}

TEST(WindowGeometry, aWindowFromEdgeToEdgeLooksTiled) {
    const QRect free(0, 30, 1920, 1050);
    EXPECT_TRUE(looksTiled({0, 30, 960, 1050}, free));
    EXPECT_TRUE(looksTiled({960, 30, 960, 1050}, free));
    EXPECT_TRUE(looksTiled({0, 30, 1920, 525}, free));
    EXPECT_FALSE(looksTiled({0, 30, 960, 700}, free));
    EXPECT_FALSE(looksTiled({400, 100, 1180, 800}, free));
    EXPECT_FALSE(looksTiled({0, 0, 100, 100}, {}));
}

}  // namespace
