#include "editor/CutSmoothing.h"

#include <gtest/gtest.h>

namespace korvane {
namespace {

MediaTime units(std::int64_t value) {
    return {value, 600};
}

const MediaTime kLongest{882, 44100};  // 0.02 s

std::vector<VolumeRamp> rampsOf(const std::vector<MediaTime>& boundaries, MediaTime preroll) {
    const auto mix = makeCutSmoothingMix(boundaries, preroll, boundaries.back(), {2});
    return mix ? mix->inputParameters.at(0).ramps : std::vector<VolumeRamp>{};
}

TEST(CutSmoothing, oneWordWithoutLeadInNeedsNoMix) {
    EXPECT_FALSE(makeCutSmoothingMix({units(300)}, kZeroTime, units(300), {2}).has_value());
    EXPECT_FALSE(makeCutSmoothingMix({}, kZeroTime, kZeroTime, {2}).has_value());
}

TEST(CutSmoothing, theLeadInFadesInOverItsWholeLength) {
    EXPECT_EQ(rampsOf({units(450)}, units(150)),
              (std::vector<VolumeRamp>{{0.0, 1.0, {kZeroTime, units(150)}}}));
}

TEST(CutSmoothing, aLeadInWithoutWordsStillFadesIn) {
    const auto mix = makeCutSmoothingMix({}, units(150), units(150), {2});
    ASSERT_TRUE(mix.has_value());
    EXPECT_EQ(mix->inputParameters[0].ramps, (std::vector<VolumeRamp>{{0.0, 1.0, {kZeroTime, units(150)}}}));
}

TEST(CutSmoothing, aCutBetweenLongWordsDipsForAFiftiethOfASecondToEachSide) {
    EXPECT_EQ(rampsOf({units(300), units(600)}, kZeroTime),
              (std::vector<VolumeRamp>{{1.0, 0.0, {units(300) - kLongest, kLongest}},
                                       {0.0, 1.0, {units(300), kLongest}}}));
}

TEST(CutSmoothing, aShortWordBeforeTheCutHalvesIntoTheRamp) {
    // 0.03 s = 18 units, so the ramp lasts 0.015 s = 9 units.
    EXPECT_EQ(rampsOf({units(150 + 18), units(600)}, units(150)),
              (std::vector<VolumeRamp>{{0.0, 1.0, {kZeroTime, units(150)}},
                                       {1.0, 0.0, {units(159), units(9)}},
                                       {0.0, 1.0, {units(168), units(9)}}}));
}

TEST(CutSmoothing, aShortWordAfterTheCutHalvesIntoTheRamp) {
    EXPECT_EQ(rampsOf({units(300), units(307)}, kZeroTime),
              (std::vector<VolumeRamp>{{1.0, 0.0, {MediaTime(593, 1200), MediaTime(7, 1200)}},
                                       {0.0, 1.0, {units(300), MediaTime(7, 1200)}}}));
}

TEST(CutSmoothing, neighbouringCutsShareTheShortWordBetweenThemWithoutOverlap) {
    EXPECT_EQ(rampsOf({units(300), units(310), units(600)}, kZeroTime),
              (std::vector<VolumeRamp>{{1.0, 0.0, {units(295), units(5)}},
                                       {0.0, 1.0, {units(300), units(5)}},
                                       {1.0, 0.0, {units(305), units(5)}},
                                       {0.0, 1.0, {units(310), units(5)}}}));
}

TEST(CutSmoothing, aWordOfNoLengthLeavesItsCutsWithoutRamps) {
    EXPECT_EQ(rampsOf({units(300), units(300), units(600)}, kZeroTime), (std::vector<VolumeRamp>{}));
}

TEST(CutSmoothing, everyTrackGetsTheSameRamps) {
    const auto mix = makeCutSmoothingMix({units(300), units(600)}, kZeroTime, units(600), {2, 5});
    ASSERT_TRUE(mix.has_value());
    ASSERT_EQ(mix->inputParameters.size(), 2U);
    EXPECT_EQ(mix->inputParameters[0].trackID, 2);
    EXPECT_EQ(mix->inputParameters[1].trackID, 5);
    EXPECT_EQ(mix->inputParameters[0].ramps, mix->inputParameters[1].ramps);
    EXPECT_EQ(mix->inputParameters[0].ramps.size(), 2U);
}

}  // namespace
}  // namespace korvane
