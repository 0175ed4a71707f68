#include "platform/speech/NoiseFloor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace korvane {
namespace {

std::vector<NoiseFloor::Frame> floorsOf(const std::vector<double>& levels) {
    NoiseFloor floor;
    std::vector<NoiseFloor::Frame> frames;
    for (const double level : levels) {
        floor.push(std::pow(10.0, level / 10.0));
        while (const auto frame = floor.next())
            frames.push_back(*frame);
    }
    floor.finish();
    while (const auto frame = floor.next())
        frames.push_back(*frame);
    return frames;
}

std::vector<double> steady(std::size_t frames, double level) {
    return std::vector<double>(frames, level);
}

TEST(NoiseFloor, everyFrameComesOutOnceAndInOrder) {
    for (const std::size_t count : {0U, 1U, 2U, 3U, 399U, 400U, 401U, 5000U}) {
        std::vector<double> levels;
        for (std::size_t i = 0; i < count; ++i)
            levels.push_back(-60.0 + static_cast<double>(i % 50));
        const auto frames = floorsOf(levels);
        ASSERT_EQ(frames.size(), count);
        for (std::size_t i = 0; i < count; ++i)
            EXPECT_NEAR(frames[i].level, levels[i], 1e-6);
    }
}

TEST(NoiseFloor, digitalSilenceIsTheLowestFloor) {
    const auto frames = floorsOf(steady(10, -300.0));
    EXPECT_EQ(frames.front().floor, silenceDb);
}

TEST(NoiseFloor, speechDoesNotLiftTheFloorBetweenItsPauses) {
    auto levels = steady(2000, -20.0);
    for (std::size_t i = 100; i < levels.size(); i += 300) {
        for (std::size_t pause = 0; pause < 10; ++pause)
            levels[i + pause] = -60.0;
    }
    for (const auto& frame : floorsOf(levels))
        EXPECT_NEAR(frame.floor, -60.0, 0.5);
}

TEST(NoiseFloor, aFanThatSetsInBecomesBackgroundAtOnce) {
    auto levels = steady(1000, -60.0);
    const auto fan = steady(1000, -35.0);
    levels.insert(levels.end(), fan.begin(), fan.end());
    const auto frames = floorsOf(levels);
    EXPECT_NEAR(frames[990].floor, -60.0, 0.5);
    EXPECT_NEAR(frames[1010].floor, -35.0, 0.5);
}

TEST(NoiseFloor, aFanThatStopsIsForgottenAtOnce) {
    auto levels = steady(1000, -35.0);
    const auto quiet = steady(1000, -60.0);
    levels.insert(levels.end(), quiet.begin(), quiet.end());
    const auto frames = floorsOf(levels);
    EXPECT_NEAR(frames[990].floor, -35.0, 0.5);
    EXPECT_NEAR(frames[1010].floor, -60.0, 0.5);
}

TEST(NoiseFloor, aRecordingThatEndsInAVowelStillKnowsItsBackground) {
    auto levels = steady(1000, -60.0);
    const auto vowel = steady(100, -20.0);
    levels.insert(levels.end(), vowel.begin(), vowel.end());
    EXPECT_NEAR(floorsOf(levels).back().floor, -60.0, 0.5);
}

}  // namespace
}  // namespace korvane
