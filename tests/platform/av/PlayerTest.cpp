#include "platform/av/Player.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/fixtures/TestPattern.h"
#include "tests/platform/av/PlayedReel.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using PlayerTest = PlayedReel;
using Events = std::vector<std::string>;

TEST_F(PlayerTest, anExactSeekShowsThePictureOfThatTime) {
    open();
    std::mt19937 random(3);
    const auto end = reel.composition->duration().toUnits(6000);
    for (int i = 0; i < 60; ++i) {
        const MediaTime to(static_cast<std::int64_t>(random()) % (end - 1), 6000);
        events.clear();
        player->seek(to, kZeroTime, kZeroTime, note("seek"));
        settle();
        ASSERT_EQ(events, Events{"seek done"});
        ASSERT_EQ(screen->last()->number, reel.pictureAt(to)) << to.toString();
        ASSERT_EQ(screen->last()->time, to);
        ASSERT_EQ(player->currentTime(), to);
    }
}

TEST_F(PlayerTest, aSeekBeyondEitherEndStaysInsideTheItem) {
    open();
    player->seek(MediaTime(-600, 600), kZeroTime, kZeroTime, note("before"));
    settle();
    EXPECT_EQ(player->currentTime(), kZeroTime);
    EXPECT_EQ(screen->last()->number, reel.pictureAt(kZeroTime));
    player->seek(MediaTime(60'000, 600), kZeroTime, kZeroTime, note("behind"));
    settle();
    EXPECT_EQ(player->currentTime(), reel.composition->duration());
    EXPECT_EQ(screen->last()->number, reel.pictureAt(screen->last()->time));
    EXPECT_GT(screen->last()->time, reel.composition->duration() - MediaTime(1, 15));
    EXPECT_EQ(events, (Events{"before done", "behind done"}));
}

TEST_F(PlayerTest, completionsComeOnceOnTheMainQueueAndInOrder) {
    std::unique_lock gate(screen->gate);
    open();
    player->seek(MediaTime(1, 2), note("first"));
    player->seek(MediaTime(3, 4), note("second"));
    player->preroll(1.0, note("preroll"));
    player->seek(MediaTime(1, 4), note("third"));
    player->preroll(1.0, note("one"));
    player->preroll(1.0, note("two"));
    EXPECT_TRUE(events.empty());
    gate.unlock();
    settle();
    EXPECT_EQ(events, (Events{"first superseded", "second superseded", "preroll superseded", "one superseded",
                              "third done", "two done"}));
    events.clear();
    player->preroll(0.0, note("no rate"));
    settle();
    EXPECT_EQ(events, Events{"no rate superseded"});
    EXPECT_EQ(player->currentTime(), MediaTime(1, 4));
}

TEST_F(PlayerTest, whatWasAskedForIsAnsweredWhenThePlayerGoes) {
    for (int i = 0; i < 20; ++i) {
        events.clear();
        open();
        player->preroll(1.0, note("early"));
        player->seek(MediaTime(1, 2), note("seek"));
        player->preroll(1.0, note("late"));
        player.reset();
        queue.runAll();
        ASSERT_EQ(events.size(), 3U);
        EXPECT_TRUE(events[0].starts_with("early"));
        EXPECT_TRUE(events[1].starts_with("seek"));
        EXPECT_TRUE(events[2].starts_with("late"));
        EXPECT_EQ(queue.runAll(), 0U);
    }
}

TEST_F(PlayerTest, theItemBecomesReadyAndEveryoneHearsOfItFromItsPresentValueOn) {
    const auto item = reel.item();
    std::vector<PlayerItemStatus> early;
    std::vector<PlayerItemStatus> late;
    auto first = item->observeStatus(queue, [&](PlayerItemStatus s) { early.push_back(s); });
    EXPECT_TRUE(early.empty());
    queue.runAll();
    EXPECT_EQ(early, std::vector{PlayerItemStatus::unknown});
    open(item);
    settle();
    auto second = item->observeStatus(queue, [&](PlayerItemStatus s) { late.push_back(s); });
    settle();
    EXPECT_EQ(early, (std::vector{PlayerItemStatus::unknown, PlayerItemStatus::readyToPlay}));
    EXPECT_EQ(late, std::vector{PlayerItemStatus::readyToPlay});
    EXPECT_EQ(item->error(), nullptr);
}

TEST_F(PlayerTest, anInvalidatedObservationHearsNothingMoreNotEvenWhatWasPosted) {
    const auto item = reel.item();
    int calls = 0;
    Observation observation;
    observation = item->observeStatus(queue, [&](PlayerItemStatus) {
        ++calls;
        observation.invalidate();
    });
    item->becomeReady();
    queue.runAll();
    EXPECT_EQ(calls, 1);
}

TEST_F(PlayerTest, prerollMakesPicturesAndSoundReadyAndPlayBeginsWithoutDelay) {
    open();
    player->seek(loopPoint, kZeroTime, kZeroTime, note("seek"));
    player->preroll(1.0, note("preroll"));
    settle();
    EXPECT_EQ(events, (Events{"seek done", "preroll done"}));
    EXPECT_EQ(outputs.opened, 1);
    EXPECT_EQ(player->rate(), 0.0);
    EXPECT_EQ(player->currentTime(), loopPoint);
    outputs.script->startDelay = 0ms;
    const ClockTime began = clock.now();
    player->play();
    EXPECT_EQ(player->rate(), 1.0);
    settle();
    run(100ms);
    EXPECT_EQ(heardAt(findSound(samples(loopPoint))), began);
}

TEST_F(PlayerTest, everySampleAndEveryPictureOfTheReelIsPlayedInItsOrder) {
    open();
    start();
    const MediaTime end = reel.composition->duration();
    run(2900ms);
    EXPECT_EQ(player->currentTime(), end);
    const auto expected = reel.sound(samples(loopPoint), samples(end));
    const std::int64_t from = findSound(samples(loopPoint));
    ASSERT_GE(from, 0);
    const auto& tape = outputs.tape->samples;
    ASSERT_GE(tape.size(), static_cast<std::size_t>(from) + expected.size());
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), tape.begin() + from));
    std::vector<int> numbers;
    std::vector<int> wanted;
    for (const auto& shown : screen->all())
        if (shown.time >= loopPoint)
            numbers.push_back(shown.number);
    for (MediaTime t = loopPoint; t < end; t = t + MediaTime(1, 30))
        wanted.push_back(reel.pictureAt(t));
    // Counted from the loop point only once that is known.
    EXPECT_NEAR(static_cast<double>(numbers.size()), static_cast<double>(wanted.size()), 1.0);
    for (const auto& shown : screen->all())
        EXPECT_EQ(shown.number, reel.pictureAt(shown.time)) << shown.time.toString();
    EXPECT_EQ(player->statistics().droppedFrames, 0);
    EXPECT_EQ(player->statistics().soundUnderruns, 0);
}

TEST_F(PlayerTest, withALoopPointTheExportedPicturesAreTheOnesShown) {
    open();
    player->setLoopHint(loopPoint);
    start();
    run(1000ms);
    std::int64_t i = 0;
    for (const auto& shown : screen->all())
        if (shown.time >= loopPoint) {
            EXPECT_EQ(shown.time, loopPoint + MediaTime(i, 30));
            ++i;
        }
    EXPECT_GT(i, 25);
}

TEST_F(PlayerTest, pauseIsSilentAtOnceAndPlayGoesOnWhereItStopped) {
    open();
    start();
    run(600ms);
    player->pause();
    EXPECT_EQ(player->rate(), 0.0);
    const MediaTime paused = player->currentTime();
    settle();
    const std::int64_t heard = outputs.tape->heard;
    run(500ms);
    EXPECT_EQ(outputs.tape->heard, heard);
    EXPECT_EQ(player->currentTime(), paused);
    player->play();
    settle();
    run(300ms);
    const std::int64_t pausedSample = samples(paused);
    const std::int64_t again = findSound(pausedSample + 100, heard);
    EXPECT_GT(heardAt(again), 500ms);
    EXPECT_NEAR(seconds(), paused.seconds() + 0.3 - 0.04, 0.005);
}

TEST_F(PlayerTest, aSeekWhilePlayingGoesOnFromThere) {
    open();
    start();
    run(400ms);
    player->seek(MediaTime(3, 2), kZeroTime, kZeroTime, note("seek"));
    settle();
    EXPECT_EQ(events, Events{"seek done"});
    run(300ms);
    EXPECT_NEAR(seconds(), 1.5 + 0.3 - 0.04, 0.005);
    EXPECT_GE(findSound(samples(MediaTime(3, 2))), 0);
    EXPECT_EQ(player->rate(), 1.0);
}

TEST_F(PlayerTest, atTheEndTheActionPauseTakesTheRateAway) {
    open();
    player->setActionAtItemEnd(ActionAtItemEnd::pause);
    player->setLoopHint(loopPoint);
    atEnd = player->observeEnd([this] { ++ends; });
    start();
    run(4s);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(player->rate(), 0.0);
    EXPECT_EQ(player->currentTime(), reel.composition->duration());
    EXPECT_EQ(outputs.tape->heard, samples(reel.composition->duration()) - samples(loopPoint));
}

TEST_F(PlayerTest, atTheEndTheActionNoneKeepsTheRateAndStaysUntilASeek) {
    open();
    atEnd = player->observeEnd([this] { ++ends; });
    start();
    run(4s);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(player->rate(), 1.0);
    EXPECT_EQ(player->currentTime(), reel.composition->duration());
    player->seek(kZeroTime, note("seek"));
    settle();
    run(500ms);
    EXPECT_NEAR(seconds(), 0.46, 0.005);
}

TEST_F(PlayerTest, aLoopThatNobodyTakesFallsSilentAtTheEnd) {
    open();
    player->setLoopHint(loopPoint);
    atEnd = player->observeEnd([this] { ++ends; });
    start();
    run(6s);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(player->currentTime(), reel.composition->duration());
    const std::int64_t once = samples(reel.composition->duration()) - samples(loopPoint);
    EXPECT_LE(outputs.tape->heard, once + kReelRateHz * 3 / 10);
}

TEST_F(PlayerTest, anEndThatIsNotObservedAnyMoreIsNotHeard) {
    open();
    loop();
    start();
    atEnd.invalidate();
    run(4s);
    EXPECT_EQ(ends, 0);
}

TEST_F(PlayerTest, aPauseAtTheMomentOfTheEndStaysThere) {
    open();
    player->setLoopHint(loopPoint);
    atEnd = player->observeEnd([this] {
        ++ends;
        player->pause();
    });
    start();
    run(4s);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(player->currentTime(), reel.composition->duration());
    player->seek(loopPoint, [this](bool) { player->play(); });
    settle();
    run(300ms);
    EXPECT_NEAR(seconds(), 0.25 + 0.26, 0.005);
}

TEST_F(PlayerTest, whatCannotBeShownInTimeIsLeftOutAndCounted) {
    outputs.hasDevice = false;
    open();
    start();
    run(200ms);
    const auto before = screen->all().size();
    run(700ms, 700ms);  // as if the machine had stood still
    EXPECT_EQ(screen->all().size(), before + 1);
    EXPECT_EQ(screen->last()->number, reel.pictureAt(screen->last()->time));
    EXPECT_NEAR(screen->last()->time.seconds(), seconds(), 1.0 / 30 + 0.001);
    EXPECT_EQ(player->statistics().droppedFrames, 20);
}

TEST_F(PlayerTest, aLapThatWasMissedIsNotMadeUpFor) {
    outputs.hasDevice = false;
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    run(1800ms);
    const auto before = screen->all().size();
    run(2000ms, 2000ms);
    EXPECT_EQ(ends, 1);
    EXPECT_LE(screen->all().size(), before + 2);
    EXPECT_NEAR(screen->last()->time.seconds(), seconds(), 1.0 / 30 + 0.001);
    EXPECT_EQ(screen->last()->number, reel.pictureAt(screen->last()->time));
    run(100ms);
    EXPECT_NEAR(screen->last()->time.seconds(), seconds(), 1.0 / 30 + 0.001);
}

TEST_F(PlayerTest, aScreenThatComesLaterGetsThePictureOfNow) {
    open();
    player->setFrameConsumer(nullptr);
    player->seek(MediaTime(1, 1), kZeroTime, kZeroTime, note("seek"));
    settle();
    EXPECT_EQ(events, Events{"seek done"});
    const auto other = std::make_shared<ScriptedScreen>(clock);
    player->setFrameConsumer(other);
    settle();
    ASSERT_TRUE(other->last());
    EXPECT_EQ(other->last()->number, reel.pictureAt(MediaTime(1, 1)));
}

TEST_F(PlayerTest, picturesHaveTheSizeAskedForAndAlignedRows) {
    open();
    for (const auto& [width, height] : {std::pair{180, 320}, {91, 163}, {405, 720}, {90, 1000}}) {
        player->setFrameSize(width, height);
        settle();
        const auto picture = screen->lastPicture();
        ASSERT_TRUE(picture);
        const double scale = std::min(width / 180.0, height / 320.0);
        EXPECT_EQ(picture->width, std::lround(180 * scale));
        EXPECT_EQ(picture->height, std::lround(320 * scale));
        EXPECT_EQ(picture->strideBytes % 64, 0);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(picture->data) % 64, 0U);
        EXPECT_EQ(frameNumberOf(*picture), reel.pictureAt(kZeroTime));
    }
}

TEST_F(PlayerTest, coloursAreTheOnesOfTheSource) {
    open();
    player->setFrameSize(360, 640);
    settle();
    const auto picture = screen->lastPicture();
    ASSERT_TRUE(picture);
    for (const fixtures::Corner corner : fixtures::kCorners) {
        const fixtures::UnitRect rect = fixtures::cornerRect(corner);
        const int x = static_cast<int>((rect.left + rect.right) / 2 * picture->width);
        const int y = static_cast<int>((rect.top + rect.bottom) / 2 * picture->height);
        const std::uint8_t* pixel =
            picture->data + static_cast<std::ptrdiff_t>(y) * picture->strideBytes + 4 * x;
        const fixtures::Rgb wanted = fixtures::cornerColor(corner);
        EXPECT_NEAR(pixel[0], 255 * wanted.blue, 4);
        EXPECT_NEAR(pixel[1], 255 * wanted.green, 4);
        EXPECT_NEAR(pixel[2], 255 * wanted.red, 4);
        EXPECT_EQ(pixel[3], 255);
    }
}

}  // namespace
}  // namespace korvane
