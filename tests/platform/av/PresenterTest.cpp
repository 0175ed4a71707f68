#include "platform/av/Presenter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "tests/platform/av/PlayedReel.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

/// A presenter whose sound and pictures a test makes ready, or doesn't.
struct PresenterTest : testing::Test {
    static constexpr int kChunk = kReelRateHz / 50;

    Reel reel = makeReel(playedClip());
    ScriptedClock clock;
    ScriptedOutputs outputs{clock};
    CollectingMainQueue queue;
    PlayerState state{reel.item(), queue, clock};
    std::jthread thread{[this] { Presenter(state, outputs).run(); }};

    ~PresenterTest() override {
        const std::scoped_lock lock(state.mutex);
        state.stopping = true;
        state.notify();
    }
    /// Sound up to line position `to`, all of it louder than silence.
    void makeSoundReady(std::int64_t to) {
        const std::scoped_lock lock(state.mutex);
        while (state.nextSoundFrom < to) {
            const std::int64_t from = state.nextSoundFrom;
            state.sound.push_back({0, from, from + kChunk, {}});
            for (std::int64_t i = from; i < from + kChunk; ++i)
                state.sound.back().samples.push_back(0.1F + static_cast<float>(i) * 1e-6F);
            state.nextSoundFrom += kChunk;
        }
        state.notify();
    }
    void play() {
        const std::scoped_lock lock(state.mutex);
        state.picturesFailed = true;  // no pictures to wait for
        state.firstFrameDone = true;
        state.firstSoundDone = true;
        state.shown.emplace();
        state.tellReady();
        state.rate = 1.0;
        state.deviceWanted = true;
        state.notify();
    }
    void run(ClockTime time) {
        for (ClockTime done{0}; done < time; done += 5ms) {
            clock.advance(5ms);
            clock.settle(1);
        }
    }
    double seconds() {
        const std::scoped_lock lock(state.mutex);
        return state.timeAt(clock.now()).seconds();
    }
};

TEST_F(PresenterTest, soundThatIsNotReadyIsLeftOutAndPicturesGoOnWithoutIt) {
    makeSoundReady(kReelRateHz / 2);
    play();
    clock.settle(1);
    run(400ms);
    const double before = seconds();
    run(600ms);
    EXPECT_NEAR(seconds() - before, 0.6, 0.006);
    {
        const std::scoped_lock lock(state.mutex);
        EXPECT_EQ(state.statistics.soundUnderruns, 1);
    }
    // It is there again: what belongs to times gone by stays unheard, the rest comes at its own.
    makeSoundReady(kReelRateHz * 2);
    clock.settle(1);
    run(600ms);
    EXPECT_NEAR(seconds() - before, 1.2, 0.006);
    const auto& tape = outputs.tape->samples;
    const auto place = [](std::size_t n) { return (static_cast<double>(n)) * 1e-6 + 0.1; };
    const auto begin = std::ranges::find_if(tape, [](float s) { return s > 0.05F; }) - tape.begin();
    ASSERT_LT(static_cast<std::size_t>(begin) + kReelRateHz * 3 / 2, tape.size());
    const auto heard = [&](std::size_t n) {
        return static_cast<double>(tape[static_cast<std::size_t>(begin) + n]);
    };
    EXPECT_NEAR(heard(1'000), place(1'000), 1e-6);
    EXPECT_EQ(heard(kReelRateHz * 3 / 4), 0.0);
    EXPECT_NEAR(heard(kReelRateHz * 3 / 2), place(kReelRateHz * 3 / 2), 1e-6);
}

}  // namespace
}  // namespace korvane
