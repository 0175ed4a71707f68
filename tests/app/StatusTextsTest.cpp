#include "app/StatusTexts.h"

#include <gtest/gtest.h>

#include <limits>

namespace korvane {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

/// At half of the work as much time remains as has passed.
std::optional<std::string> remaining(double seconds) {
    return remainingTimeText(seconds, 0.5);
}

TEST(RemainingTimeText, thereIsNoGuessInTheFirstTwentieth) {
    EXPECT_EQ(remainingTimeText(10.0, 0.0), std::nullopt);
    EXPECT_EQ(remainingTimeText(10.0, 0.05), std::nullopt);
    EXPECT_EQ(remainingTimeText(10.0, -1.0), std::nullopt);
    EXPECT_EQ(remainingTimeText(10.0, kNoNumber), std::nullopt);
    EXPECT_EQ(remainingTimeText(1.0, 0.0500001), "~18s left");
}

TEST(RemainingTimeText, isInSecondsBelowAMinuteAndNeverRounded) {
    EXPECT_EQ(remaining(0.0), "Almost done…");
    EXPECT_EQ(remaining(4.9), "Almost done…");
    EXPECT_EQ(remaining(5.0), "~5s left");
    EXPECT_EQ(remaining(42.7), "~42s left");
    EXPECT_EQ(remaining(59.9), "~59s left");
}

TEST(RemainingTimeText, isInMinutesAndSecondsFromAMinuteOn) {
    EXPECT_EQ(remaining(60.0), "~1m 0s left");
    EXPECT_EQ(remaining(119.99), "~1m 59s left");
    EXPECT_EQ(remaining(187.0), "~3m 7s left");
    EXPECT_EQ(remaining(7325.0), "~122m 5s left");
}

TEST(RemainingTimeText, aClockThatWasSetBackIsAlmostDone) {
    EXPECT_EQ(remaining(-30.0), "Almost done…");
}

TEST(RemainingTimeTextDeathTest, timeWithoutEndStopsTheProgram) {
    EXPECT_DEATH(remainingTimeText(kInfinity, 0.5), "Fatal error: Double value cannot be converted to Int");
    EXPECT_DEATH(remainingTimeText(1e300, 0.5), "Fatal error: Double value cannot be converted to Int");
}

TEST(PercentText, dropsTheFraction) {
    EXPECT_EQ(percentText(0.0).toStdString(), "0%");
    EXPECT_EQ(percentText(0.3).toStdString(), "30%");
    EXPECT_EQ(percentText(0.429).toStdString(), "42%");
    EXPECT_EQ(percentText(0.999).toStdString(), "99%");
    EXPECT_EQ(percentText(1.0).toStdString(), "100%");
}

TEST(PercentTextDeathTest, whatIsNoNumberStopsTheProgram) {
    EXPECT_DEATH(percentText(kNoNumber), "Fatal error: Double value cannot be converted to Int");
}

TEST(CountedTexts, onlyOneIsWithoutTheS) {
    EXPECT_EQ(transcribedText(1).toStdString(), "Transcribed — 1 word");
    EXPECT_EQ(transcribedText(57).toStdString(), "Transcribed — 57 words");
    EXPECT_EQ(wordsTitle(0).toStdString(), "Words");
    EXPECT_EQ(wordsTitle(1).toStdString(), "Words — 1 token");
    EXPECT_EQ(wordsTitle(42).toStdString(), "Words — 42 tokens");
    EXPECT_EQ(wordsTitle(12345).toStdString(), "Words — 12345 tokens");
    EXPECT_EQ(exportSummary(0).toStdString(), "0 words · 1080 × 1920");
    EXPECT_EQ(exportSummary(1).toStdString(), "1 word · 1080 × 1920");
    EXPECT_EQ(exportSummary(12).toStdString(), "12 words · 1080 × 1920");
}

TEST(CountedTexts, theirSignsAreTheIntendedCharacters) {
    EXPECT_TRUE(transcribedText(1).contains(QStringLiteral(" \u2014 ")));
    EXPECT_TRUE(exportSummary(1).contains(QStringLiteral(" \u00B7 1080 \u00D7 1920")));
    EXPECT_TRUE(QString::fromStdString(*remaining(1.0)).endsWith(QChar(0x2026)));
}

TEST(DurationText, hasOneDecimalBelowAMinute) {
    EXPECT_EQ(durationText(0.0).toStdString(), "0.0s");
    EXPECT_EQ(durationText(12.3).toStdString(), "12.3s");
    EXPECT_EQ(durationText(59.94).toStdString(), "59.9s");
    EXPECT_EQ(durationText(59.96).toStdString(), "60.0s");
    EXPECT_EQ(durationText(-1.25).toStdString(), "-1.2s");
}

TEST(DurationText, isMinutesAndTwoDigitsOfSecondsFromAMinuteOn) {
    EXPECT_EQ(durationText(60.0).toStdString(), "1:00");
    EXPECT_EQ(durationText(75.9).toStdString(), "1:15");
    EXPECT_EQ(durationText(3599.5).toStdString(), "59:59");
    EXPECT_EQ(durationText(3600.0).toStdString(), "60:00");
}

TEST(DurationTextDeathTest, timeWithoutEndStopsTheProgram) {
    EXPECT_DEATH(durationText(kInfinity), "Fatal error: Double value cannot be converted to Int");
    EXPECT_DEATH(durationText(kNoNumber), "Fatal error: Double value cannot be converted to Int");
}

TEST(FileName, isTheLastComponent) {
    EXPECT_EQ(fileName("/home/me/clip.mp4").toStdString(), "clip.mp4");
    EXPECT_EQ(fileName("clip.mp4").toStdString(), "clip.mp4");
    EXPECT_EQ(fileName("/home/me/Фильм 日本.mov").toStdString(), "Фильм 日本.mov");
}

}  // namespace
}  // namespace korvane
