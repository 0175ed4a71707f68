#include "editor/RuntimeTrap.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace korvane {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(RuntimeTrap, valuesAreHeldBetweenZeroAndTheUpperBound) {
    EXPECT_EQ(clampedToZeroAnd(3.0, 10.0), 3.0);
    EXPECT_EQ(clampedToZeroAnd(-3.0, 10.0), 0.0);
    EXPECT_EQ(clampedToZeroAnd(11.0, 10.0), 10.0);
    EXPECT_EQ(clampedToZeroAnd(kInfinity, 10.0), 10.0);
    EXPECT_EQ(clampedToZeroAnd(-kInfinity, 10.0), 0.0);
    EXPECT_EQ(clampedToZeroAnd(5.0, 0.0), 0.0);
    EXPECT_FALSE(std::signbit(clampedToZeroAnd(-0.0, 10.0)));
    EXPECT_TRUE(std::isnan(clampedToZeroAnd(std::numeric_limits<double>::quiet_NaN(), 10.0)));
}

TEST(RuntimeTrap, floatsLoseTheirFraction) {
    EXPECT_EQ(int32FromFloat(29.0F), 29);
    EXPECT_EQ(int32FromFloat(-1.9F), -1);
    EXPECT_EQ(int32FromFloat(-2147483648.0F), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(int32FromFloat(2147483520.0F), 2147483520);
}

TEST(RuntimeTrap, doublesLoseTheirFraction) {
    EXPECT_EQ(int64FromDouble(59.9), 59);
    EXPECT_EQ(int64FromDouble(-1.9), -1);
    EXPECT_EQ(int64FromDouble(-9223372036854775808.0), std::numeric_limits<std::int64_t>::min());
}

TEST(RuntimeTrapDeathTest, aDoubleThatIsNoNumberOrDoesNotFitStopsTheProgram) {
    EXPECT_DEATH(int64FromDouble(std::numeric_limits<double>::quiet_NaN()), "either infinite or NaN");
    EXPECT_DEATH(int64FromDouble(kInfinity), "either infinite or NaN");
    EXPECT_DEATH(int64FromDouble(9223372036854775808.0), "greater than Int.max");
    EXPECT_DEATH(int64FromDouble(-9223372036854777856.0), "less than Int.min");
}

TEST(RuntimeTrapDeathTest, aNegativeUpperBoundStopsTheProgram) {
    EXPECT_DEATH(clampedToZeroAnd(0.0, -1.0), "Fatal error: Range requires lowerBound <= upperBound");
}

TEST(RuntimeTrapDeathTest, aFloatThatIsNoNumberStopsTheProgram) {
    const char* text =
        "Fatal error: Float value cannot be converted to Int32 because it is either infinite or NaN";
    EXPECT_DEATH(int32FromFloat(std::numeric_limits<float>::quiet_NaN()), text);
    EXPECT_DEATH(int32FromFloat(std::numeric_limits<float>::infinity()), text);
    EXPECT_DEATH(int32FromFloat(-std::numeric_limits<float>::infinity()), text);
}

TEST(RuntimeTrapDeathTest, aFloatThatDoesNotFitStopsTheProgram) {
    EXPECT_DEATH(int32FromFloat(-2147483904.0F),
                 "Fatal error: Float value cannot be converted to Int32 because the result would be less "
                 "than Int32.min");
    EXPECT_DEATH(int32FromFloat(2147483648.0F),
                 "Fatal error: Float value cannot be converted to Int32 because the result would be greater "
                 "than Int32.max");
}

}  // namespace
}  // namespace korvane
