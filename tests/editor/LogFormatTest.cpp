#include "editor/LogFormat.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <random>

namespace korvane {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(LogFormat, wholeNumbersKeepAFraction) {
    EXPECT_EQ(formatDecimal(3.0), "3.0");
    EXPECT_EQ(formatDecimal(0.0), "0.0");
    EXPECT_EQ(formatDecimal(-0.0), "-0.0");
    EXPECT_EQ(formatDecimal(-17.0), "-17.0");
    EXPECT_EQ(formatDecimal(123456789.0), "123456789.0");
}

TEST(LogFormat, fractionsAreAsShortAsTheyReadBack) {
    EXPECT_EQ(formatDecimal(0.25), "0.25");
    EXPECT_EQ(formatDecimal(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(formatDecimal(1.0 / 30), "0.03333333333333333");
    EXPECT_EQ(formatDecimal(0.0001), "0.0001");
}

TEST(LogFormat, exponentsBeginBelowATenThousandthAndBeyondExactWholes) {
    EXPECT_EQ(formatDecimal(0.00001), "1e-05");
    EXPECT_EQ(formatDecimal(0.0000999), "9.99e-05");
    EXPECT_EQ(formatDecimal(5e-324), "5e-324");
    EXPECT_EQ(formatDecimal(9007199254740992.0), "9007199254740992.0");
    EXPECT_EQ(formatDecimal(1e16), "1e+16");
    EXPECT_EQ(formatDecimal(-1.5e300), "-1.5e+300");
}

TEST(LogFormat, singlePrecisionIsShortInItsOwnTerms) {
    EXPECT_EQ(formatDecimal(29.97F), "29.97");
    EXPECT_EQ(formatDecimal(0.0F), "0.0");
    EXPECT_EQ(formatDecimal(16777216.0F), "16777216.0");
    EXPECT_EQ(formatDecimal(33554432.0F), "3.3554432e+07");
}

TEST(LogFormat, whatIsNoFiniteNumberIsNamed) {
    EXPECT_EQ(formatDecimal(kInfinity), "inf");
    EXPECT_EQ(formatDecimal(-kInfinity), "-inf");
    EXPECT_EQ(formatDecimal(std::numeric_limits<double>::quiet_NaN()), "nan");
    EXPECT_EQ(formatDecimal(std::numeric_limits<float>::quiet_NaN()), "nan");
}

TEST(LogFormat, anyDoubleReadsBackAsItself) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-1070, 1020);
    for (int i = 0; i < 20000; ++i) {
        const double value = std::ldexp(mantissa(random), exponent(random));
        const std::string text = formatDecimal(value);
        ASSERT_EQ(std::strtod(text.c_str(), nullptr), value) << text;
        ASSERT_NE(text.find_first_of(".e"), std::string::npos) << text;
    }
}

TEST(LogFormat, compositeValuesListTheirNumbers) {
    EXPECT_EQ(formatSeconds(MediaTime(690, 600)), "1.15");
    EXPECT_EQ(formatSize({1080.0, 1920.0}), "(1080.0, 1920.0)");
    EXPECT_EQ(formatTransform({0.0, 1.0, -1.0, 0.0, 1080.0, 0.0}), "[0.0, 1.0, -1.0, 0.0, 1080.0, 0.0]");
    EXPECT_EQ(formatBool(true), "true");
    EXPECT_EQ(formatBool(false), "false");
    EXPECT_EQ(formatStringList({}), "[]");
    EXPECT_EQ(formatStringList({"a", "b"}), R"(["a", "b"])");
}

TEST(LogFormat, errorsAreDescribedByTheirOwnWords) {
    EXPECT_EQ(describeError(std::make_exception_ptr(std::runtime_error("disk full"))), "disk full");
    EXPECT_EQ(describeError(std::make_exception_ptr(5)), "unknown error");
    EXPECT_EQ(describeError(nullptr), "unknown error");
}

}  // namespace
}  // namespace korvane
