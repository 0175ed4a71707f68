#include "platform/av/PlayLine.h"

#include <gtest/gtest.h>

namespace korvane {
namespace {

// From 1 s of an item of 3 s on, looping from 0.25 s.
PlayLine line() {
    PlayLine l(MediaTime(600, 600), MediaTime(1800, 600), 48'000);
    l.setLoop(MediaTime(150, 600));
    return l;
}

TEST(PlayLine, lapsFollowOneAnotherWithoutAGap) {
    const PlayLine l = line();
    EXPECT_EQ(l.lapStart(0), 0);
    EXPECT_EQ(l.lapEnd(0), 96'000);
    for (std::int64_t lap = 1; lap < 1'000'000; lap = lap * 7 + 1) {
        EXPECT_EQ(l.lapStart(lap), 96'000 + (lap - 1) * 132'000);
        EXPECT_EQ(l.lapEnd(lap), l.lapStart(lap + 1));
    }
}

TEST(PlayLine, timesAndPositionsAreTwoViewsOfTheSame) {
    const PlayLine l = line();
    EXPECT_EQ(l.timeAt(0, 0.0), MediaTime(1, 1));
    EXPECT_EQ(l.timeAt(0, 48'000.9), MediaTime(2, 1));
    EXPECT_EQ(l.timeAt(0, 96'000.0), MediaTime(3, 1));
    EXPECT_EQ(l.timeAt(0, 99'000.0), MediaTime(3, 1));
    EXPECT_EQ(l.timeAt(1, 96'000.0), MediaTime(1, 4));
    EXPECT_EQ(l.positionOf(1, MediaTime(1, 4)), 96'000);
    EXPECT_EQ(l.positionOf(2, MediaTime(1, 1)), 96'000 + 132'000 + 36'000);
    EXPECT_EQ(l.sampleAt(2, 96'000 + 132'000 + 36'000), 48'000);
    EXPECT_EQ(l.sampleAt(0, 0), 48'000);
}

TEST(PlayLine, aLoopPointWithoutALapBehindItIsNone) {
    PlayLine l = line();
    for (const MediaTime none : {MediaTime(1800, 600), MediaTime(2000, 600), MediaTime(-1, 600)}) {
        l.setLoop(none);
        EXPECT_FALSE(l.loop());
        EXPECT_FALSE(l.hasLap(1));
    }
    EXPECT_TRUE(l.hasLap(0));
    EXPECT_EQ(l.lapEnd(0), 96'000);
}

TEST(FrameGrid, picturesStandOnTheGridOfTheirOrigin) {
    const FrameGrid grid{MediaTime(150, 600), MediaTime(1, 30)};
    EXPECT_EQ(grid.atOrBefore(MediaTime(150, 600)), MediaTime(150, 600));
    EXPECT_EQ(grid.atOrBefore(MediaTime(149, 600)), MediaTime(130, 600));
    EXPECT_EQ(grid.atOrBefore(MediaTime(169, 600)), MediaTime(150, 600));
    EXPECT_EQ(grid.atOrBefore(MediaTime(0, 600)), MediaTime(-10, 600));
    EXPECT_EQ(grid.after(MediaTime(150, 600)), MediaTime(170, 600));
    EXPECT_EQ(grid.after(MediaTime(7, 44'100)), MediaTime(10, 600));
}

}  // namespace
}  // namespace korvane
