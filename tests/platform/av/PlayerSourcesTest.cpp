// What lies ready and what is kept: looked at behind the player's back, since a player may only show that it
// is quicker with it.
#include "platform/av/PlayerSources.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/platform/av/PlayedReel.h"

namespace korvane {
namespace {

using Lock = std::scoped_lock<std::mutex>;

struct PlayerSourcesTest : testing::Test {
    std::filesystem::path clip = copyOf(playedClip());  // its sound keeps the words apart in the file
    Reel reel = makeReel(clip);
    ScriptedClock clock;
    CollectingMainQueue queue;
    std::unique_ptr<PlayerState> state;
    std::stop_source stop;
    std::jthread thread;
    const MediaTime loopPoint{150, 600};

    static std::filesystem::path copyOf(const std::filesystem::path& file) {
        auto copy =
            std::filesystem::path(testing::TempDir()) /
            (std::string("kept-") + testing::UnitTest::GetInstance()->current_test_info()->name() + ".mov");
        std::filesystem::copy_file(file, copy, std::filesystem::copy_options::overwrite_existing);
        return copy;
    }
    ~PlayerSourcesTest() override {
        {
            const Lock lock(state->mutex);
            state->stopping = true;
            state->notify();
        }
        thread.join();
        std::filesystem::remove(clip);
    }
    void begin(bool loops = true) {
        state = std::make_unique<PlayerState>(reel.item(), queue, clock);
        state->frameWidth = 180;
        state->frameHeight = 320;
        state->actionAtItemEnd = loops ? ActionAtItemEnd::none : ActionAtItemEnd::pause;
        state->setLoop(loopPoint);
        thread = std::jthread([this] { FrameSource(*state, stop.get_token()).run(); });
        clock.settle(1);
    }
    /// Plays from lap 0 at `from`: what is made from there on until enough lies ready.
    void playFrom(MediaTime from, MediaTime nextPicture, std::size_t bytesHeld = 0) {
        {
            const Lock lock(state->mutex);
            state->halt(clock.now());
            state->lap = 0;
            state->position = static_cast<double>(state->line.positionOf(0, from));
            state->running = true;
            state->moving = false;
            state->remakeFrames(clock.now());
            state->nextFrameTime = nextPicture;
            state->frameBytes = bytesHeld;
        }
        clock.settle(1);
    }
    std::vector<int> readyNumbers() {
        const Lock lock(state->mutex);
        std::vector<int> numbers;
        for (const ReadyFrame& f : state->frames)
            numbers.push_back(frameNumberOf(*f.frame.picture));
        return numbers;
    }
    std::vector<int> numbersIn(TimeRange range) const {
        std::vector<int> numbers;
        for (MediaTime t = loopPoint; t < range.end(); t = t + MediaTime(1, 30))
            if (range.contains(t))
                numbers.push_back(reel.pictureAt(t));
        return numbers;
    }
    TimeRange word(std::size_t index) const {
        return reel.composition->tracks(MediaType::video).at(0)->segments().at(index + 1).target;
    }
    void breakTheSource() { std::filesystem::resize_file(clip, 0); }
};

TEST_F(PlayerSourcesTest, aSeekToWhatLiesReadyTakesIt) {
    begin();
    const Lock lock(state->mutex);
    std::vector<PlayerFrame> ready;
    for (const ReadyFrame& f : state->frames)
        if (f.frame.time >= loopPoint)
            ready.push_back(f.frame);
    ASSERT_GT(ready.size(), 10U);
    const MediaTime next = state->nextFrameTime;
    state->restart(loopPoint);
    ASSERT_EQ(state->frames.size(), ready.size());
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < ready.size(); ++i) {
        EXPECT_EQ(state->frames[i].frame.picture, ready[i].picture);
        EXPECT_EQ(state->frames[i].due, state->line.positionOf(0, ready[i].time));
        bytes += ready[i].picture->bytes();
    }
    EXPECT_EQ(state->frames.front().due, 0);
    EXPECT_EQ(state->frameBytes, bytes);
    EXPECT_EQ(state->nextFrameTime, next);
}

TEST_F(PlayerSourcesTest, aSeekToWhatIsNotReadyBeginsThere) {
    begin();
    const Lock lock(state->mutex);
    const MediaTime between = loopPoint + MediaTime(1, 90);
    for (const MediaTime to : {between, MediaTime(2, 1), kZeroTime}) {
        state->restart(to);
        EXPECT_TRUE(state->frames.empty());
        EXPECT_EQ(state->frameBytes, 0U);
        EXPECT_EQ(state->nextFrameTime, to);
    }
}

TEST_F(PlayerSourcesTest, soundThatLiesReadyBehindASeekIsKeptToTheSample) {
    begin();
    const Lock lock(state->mutex);
    const std::int64_t to = state->line.positionOf(0, loopPoint);
    for (std::int64_t from = 0; from < 2 * to; from += 960)
        state->sound.push_back({0, from, from + 960, std::vector<float>(960, static_cast<float>(from))});
    state->nextSoundFrom = state->sound.back().to;
    const std::int64_t generation = state->soundGeneration;
    state->restart(loopPoint);
    EXPECT_EQ(state->soundGeneration, generation);
    ASSERT_FALSE(state->sound.empty());
    EXPECT_LE(state->sound.front().from, 0);
    EXPECT_GT(state->sound.front().to, 0);
    EXPECT_EQ(static_cast<std::int64_t>(state->sound.front().samples[0]), state->sound.front().from + to);
    EXPECT_EQ(state->nextSoundFrom, state->sound.back().to);
    state->restart(MediaTime(2, 1));
    EXPECT_TRUE(state->sound.empty());
    EXPECT_EQ(state->nextSoundFrom, 0);
    EXPECT_NE(state->soundGeneration, generation);
}

TEST_F(PlayerSourcesTest, aLoopsPicturesAreMadeOnce) {
    begin();
    playFrom(loopPoint, loopPoint);
    const auto before = readyNumbers();
    ASSERT_GT(before.size(), 20U);
    breakTheSource();
    playFrom(loopPoint, loopPoint);
    const auto again = readyNumbers();
    ASSERT_GE(again.size(), 20U);
    EXPECT_TRUE(std::equal(again.begin(), again.end(), before.begin()));
}

TEST_F(PlayerSourcesTest, nothingIsKeptOfWhatIsPlayedOnce) {
    begin(false);
    playFrom(loopPoint, loopPoint);
    ASSERT_GT(readyNumbers().size(), 20U);
    breakTheSource();
    playFrom(loopPoint, loopPoint);
    EXPECT_TRUE(readyNumbers().empty());
}

TEST_F(PlayerSourcesTest, atAnotherSizeAllPicturesAreMadeAnew) {
    begin();
    playFrom(loopPoint, loopPoint);
    {
        const Lock lock(state->mutex);
        state->frameWidth = 90;
        state->frameHeight = 160;
    }
    playFrom(loopPoint, loopPoint);
    const Lock lock(state->mutex);
    ASSERT_FALSE(state->frames.empty());
    EXPECT_EQ(state->frames.front().frame.picture->height, 160);
    EXPECT_EQ(frameNumberOf(*state->frames.front().frame.picture), reel.pictureAt(loopPoint));
}

TEST_F(PlayerSourcesTest, aStretchInHandIsFinishedForTheNextLapAlthoughItsTimeIsOver) {
    begin();
    const auto whole = numbersIn(word(4));  // further on than what lies ready at first
    const MediaTime first = state->grid.after(word(4).start);
    playFrom(word(4).start, first, 1'000'000'000);  // as if memory were full: only the fewest
    ASSERT_LT(readyNumbers().size(), whole.size());
    {
        const Lock lock(state->mutex);
        state->position = static_cast<double>(state->line.positionOf(0, word(6).start));
        state->frames.clear();
        state->notify();
    }
    clock.settle(1);
    ASSERT_FALSE(readyNumbers().empty());
    EXPECT_EQ(readyNumbers().front(), reel.pictureAt(state->grid.atOrBefore(word(6).start)));

    breakTheSource();
    playFrom(word(4).start, first);
    auto kept = readyNumbers();
    ASSERT_GE(kept.size(), whole.size());
    kept.resize(whole.size());
    EXPECT_EQ(kept, whole);
}

}  // namespace
}  // namespace korvane
