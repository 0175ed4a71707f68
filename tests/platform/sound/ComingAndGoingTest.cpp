// A sound server and its devices that come, go, change and hang while a reel plays.
#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "tests/platform/sound/Listening.h"

namespace korvane {
namespace {

const double kLapSeconds = 3 * 0.45 - 0.25;

/// Leaves the server running with its one device, whatever a test did to it.
struct ComingAndGoing : testing::Test {
    void TearDown() override {
        soundServer->resume();
        soundServer->kill();
        ASSERT_TRUE(soundServer->start());
    }
};

/// Takes a player and its outputs down. \return milliseconds that took.
double millisecondsToEnd(std::unique_ptr<LoopedReel> reel) {
    QElapsedTimer time;
    time.start();
    reel.reset();
    return static_cast<double>(time.nsecsElapsed()) / 1e6;
}

TEST_F(ComingAndGoing, withoutAServerASteadyClockPlaysAtItsPace) {
    soundServer->kill();
    LoopedReel reel;
    ASSERT_GT(reel.lap(1), 0.0);
    EXPECT_NEAR(reel.lap(3), 3 * kLapSeconds, 0.25);
    EXPECT_EQ(reel.outputs.open({48'000, 1}), nullptr);
}

TEST_F(ComingAndGoing, aServerThatAppearsAfterTheStartIsHeard) {
    soundServer->kill();
    LoopedReel reel;
    ASSERT_GT(reel.lap(3), 0.0);
    ASSERT_TRUE(soundServer->start());
    EXPECT_TRUE(isHeard());
    EXPECT_GT(reel.lap(2), 0.0);
}

TEST_F(ComingAndGoing, soundComesBackEachTimeTheServerDoes) {
    LoopedReel reel;
    ASSERT_TRUE(isHeard());
    for (const int awayMs : {1'000, 5'000, 1'000}) {
        soundServer->kill();
        const int before = reel.ends;
        pass(awayMs);
        if (awayMs > 2'000) {
            EXPECT_GE(reel.ends - before, 3) << "time stands still";
        }
        ASSERT_TRUE(soundServer->start());
        EXPECT_TRUE(isHeard()) << "after " << awayMs << " ms";
    }
}

TEST_F(ComingAndGoing, anotherDefaultDeviceIsHeardAndTheFirstAgainWhenThatOneGoes) {
    LoopedReel reel;
    ASSERT_TRUE(isHeard());
    const QString other =
        soundServer->ask({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
                          QStringLiteral("sink_name=other"), QStringLiteral("norewinds=1")});
    soundServer->ask({QStringLiteral("set-default-sink"), QStringLiteral("other")});
    EXPECT_TRUE(isHeard(QStringLiteral("other")));
    EXPECT_NEAR(reel.lap(2), 1.5 * kLapSeconds, 0.5 * kLapSeconds + 0.3);
    soundServer->ask({QStringLiteral("unload-module"), other});
    EXPECT_TRUE(isHeard());
    EXPECT_NEAR(reel.lap(2), 1.5 * kLapSeconds, 0.5 * kLapSeconds + 0.3);
}

TEST_F(ComingAndGoing, theOnlyDeviceGoesAndAnotherOneComes) {
    LoopedReel reel;
    ASSERT_TRUE(isHeard());
    soundServer->ask({QStringLiteral("unload-module"), QStringLiteral("module-null-sink")});
    ASSERT_GT(reel.lap(3), 0.0) << "time stands still without a device";
    soundServer->ask({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
                      QStringLiteral("sink_name=new"), QStringLiteral("norewinds=1")});
    EXPECT_TRUE(isHeard(QStringLiteral("new")));
}

TEST_F(ComingAndGoing, aDeviceThatIsPutToSleepStopsNothingAndIsHeardOnceAwake) {
    LoopedReel reel;
    ASSERT_TRUE(isHeard());
    const QString sleep = QStringLiteral("suspend-sink");
    soundServer->ask({sleep, QStringLiteral("nul"), QStringLiteral("1")});
    ASSERT_GT(reel.lap(1), 0.0);
    EXPECT_NEAR(reel.lap(6), 6 * kLapSeconds, 0.4);
    soundServer->ask({sleep, QStringLiteral("nul"), QStringLiteral("0")});
    EXPECT_TRUE(isHeard());
}

TEST_F(ComingAndGoing, aServerThatHangsStopsThePicturesForAMomentOnly) {
    LoopedReel reel;
    ASSERT_TRUE(isHeard());
    soundServer->halt();
    double longest = 0.0;
    MediaTime last = reel.player->currentTime();
    QElapsedTimer still;
    still.start();
    until(
        [&] {
            const MediaTime now = reel.player->currentTime();
            if (now != last)
                still.restart();
            last = now;
            longest = std::max(longest, static_cast<double>(still.elapsed()) / 1e3);
            return false;
        },
        5'000);
    std::printf("pictures stood still for %.0f ms\n", longest * 1e3);
    EXPECT_LT(longest, 0.8);
    soundServer->resume();
    EXPECT_TRUE(isHeard());
}

TEST_F(ComingAndGoing, everythingEndsAtOnceWhateverTheServerDoes) {
    auto playing = std::make_unique<LoopedReel>();
    auto paused = std::make_unique<LoopedReel>();
    auto flushed = std::make_unique<LoopedReel>();
    for (const auto* reel : {&playing, &paused, &flushed})
        ASSERT_GT((*reel)->lap(1), 0.0);
    paused->player->pause();
    soundServer->halt();
    flushed->player->seek(kZeroTime, [](bool) {});
    auto begun = std::make_unique<LoopedReel>();
    pass(300);
    auto justBegun = std::make_unique<LoopedReel>();
    EXPECT_LT(millisecondsToEnd(std::move(justBegun)), 400.0);
    EXPECT_LT(millisecondsToEnd(std::move(begun)), 400.0);
    EXPECT_LT(millisecondsToEnd(std::move(flushed)), 400.0);
    EXPECT_LT(millisecondsToEnd(std::move(paused)), 400.0);
    EXPECT_LT(millisecondsToEnd(std::move(playing)), 400.0);
    auto deaf = std::make_unique<LoopedReel>();
    EXPECT_GT(deaf->lap(2), 0.0) << "time stands still";
    soundServer->resume();
    EXPECT_TRUE(isHeard());
    soundServer->kill();
    EXPECT_LT(millisecondsToEnd(std::move(deaf)), 400.0);
}

}  // namespace
}  // namespace korvane
