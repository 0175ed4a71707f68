#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/fixtures/ClipCache.h"
#include "tests/platform/av/PlayedReel.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

struct PlayerDeviceTest : PlayedReel {
    void expectTimeGoesOn(double least, double most) {
        const double before = seconds();
        run(500ms);
        EXPECT_GE(seconds() - before, least);
        EXPECT_LE(seconds() - before, most);
    }
};

TEST_F(PlayerDeviceTest, withoutADeviceTheSteadyClockPlaysAndLoopsJustTheSame) {
    outputs.hasDevice = false;
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    const ClockTime began = clock.now();
    run(14s);
    EXPECT_GE(ends, 4);
    EXPECT_EQ(player->statistics().droppedFrames, 0);
    const double lap = reel.composition->duration().seconds() - loopPoint.seconds();
    for (const auto& shown : screen->all()) {
        EXPECT_EQ(shown.number, reel.pictureAt(shown.time));
        if (shown.at <= began)
            continue;
        const double at = std::fmod(std::chrono::duration<double>(shown.at - began).count(), lap);
        double off = std::abs(at - (shown.time.seconds() - loopPoint.seconds()));
        off = std::min(off, lap - off);
        EXPECT_LT(off, 0.006) << shown.time.toString();
    }
}

TEST_F(PlayerDeviceTest, aReelWithoutSoundAsksForNoDevice) {
    reel = makeReel(playedClip(false));
    threads = 2;  // nobody reads sound
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    run(8s);
    EXPECT_GE(ends, 2);
    EXPECT_EQ(outputs.opened, 0);
    EXPECT_EQ(player->currentItem()->status(), PlayerItemStatus::readyToPlay);
    EXPECT_EQ(player->statistics().droppedFrames, 0);
}

TEST_F(PlayerDeviceTest, aDeviceThatAppearsTakesOverWhereTimeHasCome) {
    outputs.hasDevice = false;
    open();
    start();
    run(500ms);
    const MediaTime at = player->currentTime();
    outputs.hasDevice = true;
    outputs.tellChange();
    settle();
    run(300ms);
    EXPECT_EQ(outputs.opened, 1);
    EXPECT_GE(findSound(samples(at) + 48), 0);
    EXPECT_NEAR(seconds(), at.seconds() + 0.26, 0.006);
}

TEST_F(PlayerDeviceTest, aDeviceThatDiesLeavesTheSteadyClockAndAnotherOneIsTried) {
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    run(500ms);
    const auto dead = outputs.script;
    outputs.script = std::make_shared<DeviceScript>();
    outputs.hasDevice = false;
    dead->dead = true;
    run(20ms);
    expectTimeGoesOn(0.495, 0.505);
    EXPECT_EQ(outputs.opened, 1);
    outputs.hasDevice = true;
    run(4s);
    EXPECT_EQ(outputs.opened, 2);
    const std::int64_t heard = outputs.tape->heard;
    expectTimeGoesOn(-10.0, 0.505);
    EXPECT_GT(outputs.tape->heard, heard);
}

TEST_F(PlayerDeviceTest, aDeviceThatTakesSoundAndPlaysNothingIsGivenUp) {
    outputs.script->silent = true;
    open();
    start();
    run(1s);
    EXPECT_EQ(player->currentTime(), loopPoint);
    run(600ms);
    expectTimeGoesOn(0.495, 0.505);
}

TEST_F(PlayerDeviceTest, anotherDefaultDeviceGoesOnInTheMiddleOfAWord) {
    open();
    start();
    run(400ms);
    outputs.tellChange();
    settle();
    EXPECT_EQ(outputs.opened, 2);
    const double before = seconds();
    run(500ms);
    EXPECT_NEAR(seconds() - before, 0.46, 0.006);
    EXPECT_EQ(player->statistics().droppedFrames, 0);
}

TEST_F(PlayerDeviceTest, aDeviceThatComesWhilePausedIsUsedAtTheNextPlay) {
    outputs.hasDevice = false;
    open();
    start();
    run(300ms);
    player->pause();
    settle();
    outputs.hasDevice = true;
    outputs.tellChange();
    settle();
    const MediaTime paused = player->currentTime();
    player->play();
    settle();
    run(300ms);
    EXPECT_GE(findSound(samples(paused) + 48), 0);
}

TEST_F(PlayerDeviceTest, aDeviceThatRanDryWhileThePlayerSleptIsCounted) {
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    run(500ms);
    EXPECT_EQ(player->statistics().soundUnderruns, 0);
    for (const int times : {1, 2, 3}) {
        run(400ms, 400ms);  // all at once
        run(300ms);
        EXPECT_EQ(outputs.tape->gaps, times);
        EXPECT_EQ(player->statistics().soundUnderruns, times);
    }
}

TEST_F(PlayerDeviceTest, theEndOfTheItemIsNoUnderrun) {
    open();
    player->setActionAtItemEnd(ActionAtItemEnd::pause);
    start();
    run(6s);
    EXPECT_EQ(player->rate(), 0.0);
    EXPECT_EQ(player->statistics().soundUnderruns, 0);
}

TEST_F(PlayerDeviceTest, aSourceThatIsMissingFailsTheItemAndAnswersEverybody) {
    const fixtures::ScratchFolder folder;
    std::filesystem::copy(playedClip(), folder / "gone.mov");
    reel = makeReel(folder / "gone.mov");
    std::filesystem::remove(folder / "gone.mov");
    std::vector<PlayerItemStatus> seen;
    const auto item = reel.item();
    auto observation = item->observeStatus(queue, [&](PlayerItemStatus s) { seen.push_back(s); });
    open(item);
    settle();
    EXPECT_EQ(seen, (std::vector{PlayerItemStatus::unknown, PlayerItemStatus::failed}));
    EXPECT_NE(item->error(), nullptr);
    player->seek(loopPoint, kZeroTime, kZeroTime, note("seek"));
    settle();
    player->preroll(1.0, note("preroll"));
    player->play();
    settle();
    run(1s);
    EXPECT_EQ(events, (std::vector<std::string>{"seek superseded", "preroll superseded"}));
    EXPECT_EQ(player->currentTime(), loopPoint);
    EXPECT_FALSE(screen->last());
    EXPECT_EQ(outputs.tape->heard, 0);
}

TEST_F(PlayerDeviceTest, aSourceThatIsDeletedWhilePlayingPlaysOn) {
    const fixtures::ScratchFolder folder;
    std::filesystem::copy(playedClip(), folder / "going.mov");
    reel = makeReel(folder / "going.mov");
    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    run(300ms);
    std::filesystem::remove(folder / "going.mov");
    run(9s);
    EXPECT_GE(ends, 2);
    EXPECT_EQ(player->currentItem()->status(), PlayerItemStatus::readyToPlay);
    EXPECT_EQ(outputs.tape->gaps, 0);
    EXPECT_EQ(screen->last()->number, makeReel(playedClip()).pictureAt(screen->last()->time));
}

TEST_F(PlayerDeviceTest, aSourceThatBreaksWhilePlayingFailsTheItemAndTimeGoesOn) {
    // The last word lies in a file that is not there.
    const fixtures::ScratchFolder folder;
    std::filesystem::copy(playedClip(), folder / "gone.mov");
    Asset other(folder / "gone.mov");
    const auto picture = other.loadTracks(MediaType::video).at(0);
    const auto sound = other.loadTracks(MediaType::audio).at(0);
    const auto at = reel.composition->duration();
    auto* composition = reel.composition.get();
    const TimeRange word{{600, 600}, {900, 600}};
    for (const CompositionTrack* track : composition->tracks())
        const_cast<CompositionTrack*>(track)->insertTimeRange(
            word, track->mediaType() == MediaType::video ? picture : sound, at);
    std::filesystem::remove(folder / "gone.mov");

    open();
    player->setLoopHint(loopPoint);
    loop();
    start();
    EXPECT_EQ(player->currentItem()->status(), PlayerItemStatus::readyToPlay);
    run(3s);
    EXPECT_EQ(player->currentItem()->status(), PlayerItemStatus::failed);
    run(3s);
    EXPECT_GE(ends, 1);
    EXPECT_EQ(screen->last()->number, reel.pictureAt(screen->last()->time));
    EXPECT_EQ(outputs.tape->gaps, 0);
}

}  // namespace
}  // namespace korvane
