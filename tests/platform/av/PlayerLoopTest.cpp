#include <gtest/gtest.h>

#include <algorithm>

#include "tests/platform/av/PlayedReel.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

struct PlayerLoopTest : PlayedReel {
    /// Samples that a lap has too many or too few on the tape, from the first lap's first sample on.
    void expectUnbrokenLaps(std::int64_t from, int laps) const {
        const std::int64_t first = samples(loopPoint);
        const std::int64_t length = samples(reel.composition->duration()) - first;
        const auto lap = reel.sound(first, first + length);
        const auto& tape = outputs.tape->samples;
        ASSERT_GE(tape.size(), static_cast<std::size_t>(from + laps * length));
        for (int i = 0; i < laps; ++i)
            ASSERT_TRUE(std::equal(lap.begin(), lap.end(), tape.begin() + from + i * length)) << "lap " << i;
    }
    /// How far pictures are from the sound that belongs to them, over `laps` laps of an unbroken tape.
    double worstLipSyncSeconds(std::int64_t from) const {
        const std::int64_t length = samples(reel.composition->duration()) - samples(loopPoint);
        double worst = 0.0;
        for (const auto& shown : screen->all()) {
            if (shown.at <= heardAt(from))
                continue;
            const auto tapeAt = static_cast<double>(shown.at.count()) * kReelRateHz / 1e9;
            const double heard = std::fmod(tapeAt - static_cast<double>(from), static_cast<double>(length));
            const double wanted = static_cast<double>(samples(shown.time) - samples(loopPoint));
            double off = std::abs(heard - wanted);
            off = std::min(off, static_cast<double>(length) - off);
            worst = std::max(worst, off / kReelRateHz);
        }
        return worst;
    }
};

TEST_F(PlayerLoopTest, withAHintNotASampleAndNotAPictureIsMissingBetweenLaps) {
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    run(14s);
    EXPECT_GE(ends, 4);
    expectUnbrokenLaps(findSound(samples(loopPoint)), 4);
    EXPECT_EQ(outputs.tape->gaps, 0);
    EXPECT_EQ(player->statistics().droppedFrames, 0);
    EXPECT_EQ(player->statistics().soundUnderruns, 0);
    const auto shown = screen->all();
    for (std::size_t i = 3; i < shown.size(); ++i) {
        const double gap = std::chrono::duration<double>(shown[i].at - shown[i - 1].at).count();
        ASSERT_LT(gap, 1.0 / 30 + 0.006) << shown[i].time.toString();
        ASSERT_EQ(shown[i].number, reel.pictureAt(shown[i].time));
    }
}

TEST_F(PlayerLoopTest, withoutAHintTheFirstSeekAtTheEndTeachesWhereItGoesOn) {
    open();
    loop();
    start();
    run(14s);
    EXPECT_GE(ends, 4);
    const std::int64_t first = findSound(samples(loopPoint));
    const std::int64_t second = findSound(samples(loopPoint), first + 1000);
    expectUnbrokenLaps(second, 3);
}

TEST_F(PlayerLoopTest, aBusyMainThreadDoesNotBreakTheLoop) {
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    while (ends < 3) {
        clock.advance(5ms);
        clock.settle(threads);
        if (clock.now().count() / 1'000'000 % 100 == 0)  // only now and then
            settle();
    }
    settle();
    run(1s);
    expectUnbrokenLaps(findSound(samples(loopPoint)), 3);
}

TEST_F(PlayerLoopTest, itemTimeRunsOnFromTheLoopPoint) {
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    double before = seconds();
    int jumps = 0;
    for (int i = 0; i < 2000; ++i) {
        run(5ms);
        const double now = seconds();
        if (now < before) {
            ++jumps;
            EXPECT_LT(now, loopPoint.seconds() + 0.02);
            EXPECT_GT(before, reel.composition->duration().seconds() - 0.02);
        } else {
            EXPECT_LT(now - before, 0.012);
        }
        before = now;
    }
    EXPECT_EQ(jumps, ends);
    EXPECT_GE(jumps, 3);
}

TEST_F(PlayerLoopTest, anotherHintWhilePlayingCountsForTheNextEnd) {
    open();
    player->setLoopHint(MediaTime(600, 600));
    start();
    run(500ms);
    player->setLoopHint(loopPoint);
    loop();
    settle();
    run(4s);
    EXPECT_GE(ends, 1);
    EXPECT_GE(findSound(samples(loopPoint), 3 * kReelRateHz), 0);
    EXPECT_EQ(player->statistics().soundUnderruns, 0);
}

TEST_F(PlayerLoopTest, aPrerollOfZeroLoopsFromTheBeginning) {
    loopPoint = kZeroTime;
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    run(10s);
    EXPECT_GE(ends, 2);
    expectUnbrokenLaps(findSound(0), 2);
}

TEST_F(PlayerLoopTest, aReelOfOneShortWordLoopsWithoutAGap) {
    reel = makeReel(playedClip(), 1);
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    run(5s);
    EXPECT_GE(ends, 15);
    expectUnbrokenLaps(findSound(samples(loopPoint)), 15);
    EXPECT_EQ(outputs.tape->gaps, 0);
}

TEST_F(PlayerLoopTest, lipsMoveWithTheSoundAtEveryCutOnAnEvenDevice) {
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    run(14s);
    EXPECT_LT(worstLipSyncSeconds(findSound(samples(loopPoint))), 0.008);
}

TEST_F(PlayerLoopTest, lipsMoveWithTheSoundOnADeviceWithRoughReports) {
    outputs.script->reportStep = 50ms;
    outputs.script->startDelay = 90ms;
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    run(14s);
    expectUnbrokenLaps(findSound(samples(loopPoint)), 4);
    EXPECT_LT(worstLipSyncSeconds(findSound(samples(loopPoint))), 0.020);
    EXPECT_EQ(player->statistics().droppedFrames, 0);
}

TEST_F(PlayerLoopTest, anHourOfLapsDoesNotDrift) {
    reel.video.frameDuration = MediaTime(10, 1);  // one picture a lap, all the sound
    outputs.tape->isOn = false;
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    const std::int64_t heardBefore = outputs.tape->heard;
    run(3600s, 100ms);
    player->pause();
    settle();
    const std::int64_t length = samples(reel.composition->duration()) - samples(loopPoint);
    const std::int64_t heard = outputs.tape->heard - heardBefore;
    const double wanted = static_cast<double>(heard % length) / kReelRateHz + loopPoint.seconds();
    EXPECT_GE(ends, 1500);
    EXPECT_EQ(ends, heard / length);
    EXPECT_NEAR(seconds(), wanted, 0.005);
    EXPECT_EQ(outputs.tape->gaps, 0);
    const auto last = *screen->last();
    EXPECT_EQ(last.number, reel.pictureAt(last.time));
}

}  // namespace
}  // namespace korvane
