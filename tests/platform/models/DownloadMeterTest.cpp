#include "platform/models/DownloadMeter.h"

#include <gtest/gtest.h>

using namespace korvane;
using namespace std::chrono_literals;

namespace {

constexpr DownloadMeter::Clock::time_point start{};
constexpr auto downloading = DownloadStage::downloading;

TEST(DownloadMeter, tellsNothingInTheFirstMoment) {
    DownloadMeter meter(1000);
    meter.restart(0, start);
    meter.add(100, start + 100ms);
    const auto now = meter.progress(downloading, 100, start + 200ms);
    EXPECT_EQ(now.bytesPerSecond, 0);
    EXPECT_FALSE(now.secondsLeft);
    EXPECT_EQ(now.receivedBytes, 100U);
    EXPECT_EQ(now.totalBytes, 1000U);
}

TEST(DownloadMeter, tellsSpeedAndTimeLeft) {
    DownloadMeter meter(10000);
    meter.restart(0, start);
    for (int i = 1; i <= 10; ++i)
        meter.add(static_cast<std::uint64_t>(i) * 100, start + i * 100ms);
    const auto now = meter.progress(downloading, 1000, start + 1s);
    EXPECT_DOUBLE_EQ(now.bytesPerSecond, 1000);
    EXPECT_DOUBLE_EQ(now.secondsLeft.value(), 9);
}

TEST(DownloadMeter, whatWasThereBeforeIsNoSpeed) {
    DownloadMeter meter(10000);
    meter.restart(5000, start);
    meter.add(6000, start + 1s);
    const auto now = meter.progress(downloading, 6000, start + 1s);
    EXPECT_DOUBLE_EQ(now.bytesPerSecond, 1000);
    EXPECT_DOUBLE_EQ(now.secondsLeft.value(), 4);
}

TEST(DownloadMeter, followsALineThatGetsSlower) {
    DownloadMeter meter(1000000);
    meter.restart(0, start);
    std::uint64_t bytes = 0;
    for (int i = 1; i <= 100; ++i)
        meter.add(bytes += 1000, start + i * 100ms);
    for (int i = 101; i <= 200; ++i)
        meter.add(bytes += 10, start + i * 100ms);
    EXPECT_NEAR(meter.progress(downloading, bytes, start + 20s).bytesPerSecond, 100, 5);
}

TEST(DownloadMeter, aLineThatStandsStillFallsToNothing) {
    DownloadMeter meter(1000000);
    meter.restart(0, start);
    meter.add(10000, start + 1s);
    EXPECT_LT(meter.progress(downloading, 10000, start + 1000s).bytesPerSecond, 20);
}

TEST(DownloadMeter, tellsNoSpeedWhileItWaits) {
    DownloadMeter meter(10000);
    meter.restart(0, start);
    meter.add(1000, start + 1s);
    for (const auto stage : {DownloadStage::connecting, DownloadStage::waiting, DownloadStage::verifying}) {
        const auto now = meter.progress(stage, 1000, start + 1s);
        EXPECT_EQ(now.bytesPerSecond, 0);
        EXPECT_FALSE(now.secondsLeft);
        EXPECT_EQ(now.stage, stage);
    }
}

}  // namespace
