#include "platform/time/MediaTime.h"

#include <gtest/gtest.h>

#include <limits>

namespace korvane {
namespace {

TEST(MediaTime, secondsRoundToTheNearestUnitWithHalvesAwayFromZero) {
    EXPECT_EQ(MediaTime::fromSeconds(0.25).value(), 150);
    EXPECT_EQ(MediaTime::fromSeconds(1.0 / 1200).value(), 1);
    EXPECT_EQ(MediaTime::fromSeconds(-1.0 / 1200).value(), -1);
    EXPECT_EQ(MediaTime::fromSeconds(0.99 / 1200).value(), 0);
    EXPECT_EQ(MediaTime::fromSeconds(0.02, 44100).value(), 882);
}

TEST(MediaTime, secondsThatAreNoNumberAreRefused) {
    EXPECT_THROW(MediaTime::fromSeconds(std::numeric_limits<double>::quiet_NaN()), std::invalid_argument);
    EXPECT_THROW(MediaTime::fromSeconds(std::numeric_limits<double>::infinity()), std::invalid_argument);
    EXPECT_THROW(MediaTime::fromSeconds(1e300), TimeOverflowError);
}

TEST(MediaTime, equalTimesInDifferentUnitsAreEqualAndGiveTheSameDouble) {
    EXPECT_EQ(MediaTime(390, 600), MediaTime(1170, 1800));
    EXPECT_EQ(MediaTime(390, 600).seconds(), MediaTime(1170, 1800).seconds());
    EXPECT_EQ(MediaTime(1, 3).seconds(), MediaTime(20000, 60000).seconds());
    EXPECT_LT(MediaTime(1, 3), MediaTime(334, 1000));
    EXPECT_GT(MediaTime(1, 3), MediaTime(333, 1000));
}

TEST(MediaTime, comparisonIsExactWhereDoublesAreNot) {
    const std::int64_t big = std::int64_t{1} << 61;
    EXPECT_LT(MediaTime(big, 600), MediaTime(big + 1, 600));
    EXPECT_LT(MediaTime(big, 600), MediaTime(big + 1, 599));
}

TEST(MediaTime, sumsAndDifferencesAreExactAcrossTimescales) {
    EXPECT_EQ(MediaTime(1, 600) + MediaTime(1, 44100), MediaTime(149, 88200));
    EXPECT_EQ(MediaTime(1, 2) - MediaTime(1, 3), MediaTime(1, 6));
    MediaTime sum;
    for (int i = 0; i < 1001; ++i)
        sum = sum + MediaTime(1001, 30000);
    EXPECT_EQ(sum, MediaTime(1001 * 1001, 30000));
}

TEST(MediaTime, aRatioIsExact) {
    EXPECT_EQ(multipliedByRatio(MediaTime(9, 600), 1, 2), MediaTime(9, 1200));
    EXPECT_EQ(multipliedByRatio(MediaTime(10, 600), 1, 2).timescale(), 600);
}

TEST(MediaTime, unitsRoundAsNamed) {
    EXPECT_EQ(MediaTime(1, 600).toUnits(44100), 74);  // 73.5
    EXPECT_EQ(MediaTime(1, 600).toUnits(44100, Rounding::down), 73);
    EXPECT_EQ(MediaTime(-1, 600).toUnits(44100), -74);
    EXPECT_EQ(MediaTime(-1, 600).toUnits(44100, Rounding::up), -73);
    EXPECT_EQ(MediaTime(-1, 600).toUnits(44100, Rounding::down), -74);
}

TEST(MediaTime, whatDoesNotFitIsAnErrorAndNeverWraps) {
    const MediaTime huge(std::numeric_limits<std::int64_t>::max(), 600);
    EXPECT_THROW(huge + MediaTime(1, 600), TimeOverflowError);
    EXPECT_THROW(huge.toUnits(48000), TimeOverflowError);
    EXPECT_THROW(MediaTime(1, 0), std::invalid_argument);
}

TEST(TimeRange, containsItsStartAndNotItsEnd) {
    const TimeRange range{{1, 4}, {1, 2}};
    EXPECT_TRUE(range.contains({1, 4}));
    EXPECT_FALSE(range.contains({3, 4}));
    EXPECT_EQ(range.end(), MediaTime(3, 4));
    EXPECT_TRUE((TimeRange{{1, 4}, {0, 1}}.isEmpty()));
}

}  // namespace
}  // namespace korvane
