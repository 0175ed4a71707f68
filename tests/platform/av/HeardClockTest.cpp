#include "platform/av/HeardClock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace korvane {
namespace {

using namespace std::chrono_literals;
constexpr int kRate = 48'000;
constexpr std::int64_t kEndless = 1'000'000'000;

std::int64_t framesAfter(ClockTime time) {
    return std::max<std::int64_t>(0, time.count() * kRate / 1'000'000'000);
}
double milliseconds(double frames) {
    return frames * 1000.0 / kRate;
}
double milliseconds(ClockTime time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

TEST(HeardClock, reportsThatJitterMakeAnEvenClock) {
    std::mt19937 random(1);
    HeardClock clock(kRate);
    double last = 0.0;
    for (ClockTime now = 1s; now < 20s; now += 5ms) {
        const ClockTime lag(std::chrono::milliseconds(random() % 30));
        const double frames = clock.framesAt(now, {framesAfter(now - 1s - lag), now}, kEndless);
        EXPECT_GE(frames, last);
        if (now > 2s) {
            EXPECT_NEAR(milliseconds(frames - last), 5.0, 1.0);
        }
        last = frames;
    }
    EXPECT_NEAR(milliseconds(last), 18'980.0, 15.0);
}

TEST(HeardClock, reportsInStepsAreReadWhenTheyChange) {
    HeardClock clock(kRate);
    for (ClockTime now = 1s; now < 10s; now += 5ms) {
        const ClockTime reported = (now - 1s) / 50ms * 50ms;
        const double frames = clock.framesAt(now, {framesAfter(reported), now}, kEndless);
        if (now > 1500ms) {
            ASSERT_NEAR(milliseconds(frames), milliseconds(now - 1s), 5.1);
        }
    }
}

TEST(HeardClock, anUntruthAtTheBeginningIsSoonForgotten) {
    HeardClock clock(kRate);
    for (ClockTime now = 1s; now < 3s; now += 5ms) {
        const ClockTime late = now < 1050ms ? 7ms : 57ms;
        const double frames = clock.framesAt(now, {framesAfter(now - 1s - late), now}, kEndless);
        if (now > 1200ms) {
            ASSERT_NEAR(milliseconds(frames), milliseconds(now - 1s) - 57.0, 5.0);
        }
    }
}

TEST(HeardClock, nothingIsHeardBeforeTheFirstReportNorBeyondWhatWasWritten) {
    HeardClock clock(kRate);
    EXPECT_EQ(clock.framesAt(1s, {0, 1s}, 9'600), 0.0);
    EXPECT_EQ(clock.framesAt(2s, {0, 2s}, 9'600), 0.0);
    EXPECT_GT(clock.framesAt(2010ms, {480, 2010ms}, 9'600), 0.0);
    EXPECT_EQ(clock.framesAt(5s, {480, 2010ms}, 9'600), 9'600.0);
}

TEST(HeardClock, aDeviceWithAClockOfItsOwnIsFollowed) {
    HeardClock clock(kRate);
    double frames = 0.0;
    for (ClockTime now = 1s; now < 300s; now += 10ms)  // a thousandth too fast
        frames = clock.framesAt(now, {framesAfter((now - 1s) / 1000 * 1001), now}, kEndless);
    EXPECT_NEAR(milliseconds(frames), 298'990.0 * 1.001, 5.0);
}

TEST(HeardClock, aDeviceThatStoodStillIsFollowedFromWhereItGoesOn) {
    HeardClock clock(kRate);
    double frames = 0.0;
    for (ClockTime now = 1s; now < 6s; now += 5ms) {
        const ClockTime played = now < 3s ? now - 1s : std::max<ClockTime>(2s, now - 2s);
        const std::int64_t written = framesAfter(played) + kRate / 10;
        frames = clock.framesAt(now, {framesAfter(played), now}, written);
        EXPECT_LE(frames, static_cast<double>(written));
    }
    EXPECT_NEAR(milliseconds(frames), 4'000.0, 10.0);
}

TEST(HeardClock, aDeviceThatRanDryIsFollowedFromItsFirstReportOn) {
    // Dry from 2 s to 2.5 s; half a second of sound comes then, and is heard 40 ms later.
    for (const bool isTold : {false, true}) {
        HeardClock clock(kRate);
        double frames = 0.0;
        for (ClockTime now = 1s; now < 4s; now += 5ms) {
            const ClockTime played = now < 2540ms ? std::min<ClockTime>(now - 1s, 1s) : now - 1540ms;
            const std::int64_t written = framesAfter(now < 2500ms ? 1s : 3s);
            // One that tells makes a report every 50 ms, which may miss that it was dry.
            const ClockTime reported = isTold ? played / 50ms * 50ms : played;
            const HeardFrames heard{framesAfter(reported), now - (played - reported),
                                    isTold && now > 2500ms ? 1 : 0};
            frames = clock.framesAt(now, heard, written);
            if (now > 1100ms) {
                ASSERT_NEAR(milliseconds(frames), milliseconds(played), now < 2600ms ? 50.1 : 5.1)
                    << milliseconds(now) << (isTold ? " told" : " seen");
            }
        }
    }
}

TEST(HeardClock, aDeviceThatTellsMoreThanCanHaveBeenHeardIsNotBelieved) {
    HeardClock clock(kRate);
    clock.framesAt(1s, {}, 0);
    for (ClockTime now = 1005ms; now < 5s; now += 5ms) {
        const ClockTime block = (now - 1s) / 20ms * 20ms + 40ms;  // taken, in blocks, not heard
        const double frames = clock.framesAt(now, {framesAfter(block), now}, kEndless);
        if (now > 2s) {
            ASSERT_NEAR(milliseconds(frames), milliseconds(now - 1s), 12.0);
        }
        EXPECT_LE(milliseconds(frames), milliseconds(now - 1s) + 0.1);
    }
}

TEST(HeardClock, itTellsForHowLongADeviceWithWorkHasBeenSilent) {
    HeardClock clock(kRate);
    clock.framesAt(1s, {100, 1s}, 100);
    clock.framesAt(3s, {100, 3s}, 100);
    EXPECT_EQ(clock.silentFor(3s), 0s) << "it had nothing to play";
    clock.framesAt(4s, {100, 4s}, 500);
    EXPECT_EQ(clock.silentFor(4s), 1s);
    clock.framesAt(5s, {200, 5s}, 500);
    EXPECT_EQ(clock.silentFor(5s), 0s);
}

}  // namespace
}  // namespace korvane
