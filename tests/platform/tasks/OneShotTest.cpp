#include "platform/tasks/OneShot.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/tasks/OnLeaving.h"
#include "tests/support/CollectingMainQueue.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;
using Answer = std::function<void(std::string)>;

/// A task that waits for an answer, and what it says.
class OneShots : public testing::Test {
  protected:
    CollectingMainQueue queue_;
    Lines log_;
    Answer answer_;
    std::function<void(const Answer&)> ask_ = [this](const Answer& answer) { answer_ = answer; };

    MainTask ask() {
        const OnLeaving end([this] { log_.emplace_back("left"); });
        try {
            OneShot<std::string> answered(queue_);
            ask_(answered.answer());
            const std::string text = co_await answered;
            log_.push_back(text);
        } catch (const CancellationError&) {
            log_.emplace_back("cancelled");
        }
    }
    MainTask askTwice() {
        OneShot<std::string> first(queue_);
        answer_ = first.answer();
        const std::string text = co_await first;
        log_.push_back(text);
        OneShot<std::string> second(queue_);
        const std::string more = co_await second;
        log_.push_back(more);
    }
    MainTask lookAtStop() {
        OwnStop own;
        const std::stop_token stop = co_await own;
        log_.emplace_back(stop.stop_requested() ? "stopped" : "going");
    }
};

TEST_F(OneShots, theTaskGoesOnInsideOfTheAnswer) {
    MainTask task = ask();
    task.start();
    EXPECT_EQ(log_, Lines{});
    answer_("yes");
    EXPECT_TRUE(task.isDone());
    EXPECT_EQ(log_, (Lines{"yes", "left"}));
}

TEST_F(OneShots, anAnswerBeforeTheTaskWaitsCountsToo) {
    ask_ = [](const Answer& answer) { answer("at once"); };
    MainTask task = ask();
    task.start();
    EXPECT_TRUE(task.isDone());
    EXPECT_EQ(log_, (Lines{"at once", "left"}));
}

TEST_F(OneShots, onlyTheFirstAnswerCounts) {
    ask_ = [](const Answer& answer) {
        answer("first");
        answer("second");
    };
    MainTask task = ask();
    task.start();
    EXPECT_EQ(log_, (Lines{"first", "left"}));
}

TEST_F(OneShots, aSecondAnswerDoesNotTouchTheNextWait) {
    MainTask task = askTwice();
    task.start();
    const Answer stale = answer_;
    stale("first");
    stale("again");
    EXPECT_FALSE(task.isDone());
    EXPECT_EQ(log_, Lines{"first"});
}

TEST_F(OneShots, aCancelledTaskIsWokenThroughTheQueue) {
    MainTask task = ask();
    task.start();
    task.handle().cancel();
    EXPECT_EQ(log_, Lines{});
    queue_.runAll();
    EXPECT_TRUE(task.isDone());
    EXPECT_EQ(log_, (Lines{"cancelled", "left"}));
    answer_("too late");
    EXPECT_EQ(log_, (Lines{"cancelled", "left"}));
}

TEST_F(OneShots, aTaskMayBeCancelledFromAnyThread) {
    MainTask task = ask();
    task.start();
    std::thread([handle = task.handle()]() mutable { handle.cancel(); }).join();
    queue_.runAll();
    EXPECT_EQ(log_, (Lines{"cancelled", "left"}));
}

TEST_F(OneShots, aTaskCancelledBeforeItWaitsIsWokenToo) {
    MainTask task = ask();
    task.handle().cancel();
    task.start();
    queue_.runAll();
    EXPECT_EQ(log_, (Lines{"cancelled", "left"}));
}

TEST_F(OneShots, anAnswerAfterTheCancellationIsNoAnswer) {
    MainTask task = ask();
    task.start();
    task.handle().cancel();
    answer_("too late");
    queue_.runAll();
    EXPECT_EQ(log_, (Lines{"cancelled", "left"}));
}

TEST_F(OneShots, anAnswerAtOnceDoesNotHideTheCancellation) {
    ask_ = [](const Answer& answer) { answer("at once"); };
    MainTask task = ask();
    task.handle().cancel();
    task.start();
    EXPECT_EQ(log_, (Lines{"cancelled", "left"}));
}

TEST_F(OneShots, aTaskThatGoesIsUnwoundAndNeverWoken) {
    {
        MainTask task = ask();
        task.start();
        task.handle().cancel();
    }
    EXPECT_EQ(log_, Lines{"left"});
    answer_("nobody hears this");
    queue_.runAll();
    EXPECT_EQ(log_, Lines{"left"});
}

TEST_F(OneShots, aTaskKnowsItsOwnStop) {
    MainTask going = lookAtStop();
    going.start();
    MainTask stopped = lookAtStop();
    stopped.handle().cancel();
    stopped.start();
    EXPECT_EQ(log_, (Lines{"going", "stopped"}));
    EXPECT_TRUE(going.isDone() && stopped.isDone());
}

}  // namespace
}  // namespace korvane
