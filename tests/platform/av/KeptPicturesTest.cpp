#include "platform/av/KeptPictures.h"

#include <gtest/gtest.h>

#include "platform/ffmpeg/CanvasPictures.h"

namespace korvane {
namespace {

const MediaTime kFirst(1, 1);
const MediaTime kSecond(2, 1);
const MediaTime kThird(3, 1);

struct KeptPicturesTest : testing::Test {
    KeptPictures::Canvas canvas = blackCanvas(64, 64);
    std::size_t each = bytesOf(*canvas);
    KeptPictures kept{10 * each};
};

TEST_F(KeptPicturesTest, aPictureIsFoundAtItsVeryTimeOnly) {
    EXPECT_EQ(kept.find(kFirst), nullptr);
    EXPECT_TRUE(kept.offer(kFirst, 2, kFirst, canvas, 5));
    EXPECT_EQ(kept.find(kFirst), canvas);
    EXPECT_EQ(kept.find(MediaTime(600, 600)), canvas);
    EXPECT_EQ(kept.find(kFirst + MediaTime(1, 600)), nullptr);
    EXPECT_EQ(kept.find(kZeroTime), nullptr);
}

TEST_F(KeptPicturesTest, roomIsMadeForTheWholeStretchAtItsFirstPicture) {
    EXPECT_TRUE(kept.offer(kFirst, 8, kFirst, canvas, 5));
    EXPECT_EQ(kept.bytes(), 8 * each);
    EXPECT_FALSE(kept.offer(kSecond, 3, kSecond, canvas, 1));
    EXPECT_TRUE(kept.offer(kFirst, 8, kFirst + MediaTime(1, 30), canvas, 1));
    EXPECT_TRUE(kept.offer(kThird, 2, kThird, canvas, 1));
    EXPECT_EQ(kept.bytes(), 10 * each);
}

TEST_F(KeptPicturesTest, aStretchThatCostMoreForEachPictureTakesThePlaceOfOneThatCostLess) {
    EXPECT_TRUE(kept.offer(kFirst, 5, kFirst, canvas, 50));
    EXPECT_TRUE(kept.offer(kSecond, 5, kSecond, canvas, 10));
    EXPECT_TRUE(kept.offer(kThird, 4, kThird, canvas, 60));
    EXPECT_EQ(kept.find(kFirst), canvas);
    EXPECT_EQ(kept.find(kSecond), nullptr);
    EXPECT_EQ(kept.find(kThird), canvas);
    EXPECT_EQ(kept.bytes(), 9 * each);
}

TEST_F(KeptPicturesTest, nothingGoesForAStretchThatDoesNotFitEvenSo) {
    EXPECT_TRUE(kept.offer(kFirst, 5, kFirst, canvas, 5));
    EXPECT_TRUE(kept.offer(kSecond, 5, kSecond, canvas, 500));
    EXPECT_FALSE(kept.offer(kThird, 6, kThird, canvas, 60));
    EXPECT_EQ(kept.find(kFirst), canvas);
    EXPECT_EQ(kept.find(kSecond), canvas);
}

TEST_F(KeptPicturesTest, stretchesOfTheSameWorthDontDriveEachOtherOut) {
    EXPECT_TRUE(kept.offer(kFirst, 6, kFirst, canvas, 60));
    EXPECT_FALSE(kept.offer(kSecond, 6, kSecond, canvas, 60));
    EXPECT_EQ(kept.find(kFirst), canvas);
}

TEST_F(KeptPicturesTest, aStretchNeverHoldsMoreThanRoomWasMadeFor) {
    EXPECT_TRUE(kept.offer(kFirst, 1, kFirst, canvas, 5));
    EXPECT_FALSE(kept.offer(kFirst, 1, kFirst + MediaTime(1, 30), canvas, 1));
    kept.clear();
    EXPECT_EQ(kept.bytes(), 0U);
    EXPECT_EQ(kept.find(kFirst), nullptr);
}

}  // namespace
}  // namespace korvane
