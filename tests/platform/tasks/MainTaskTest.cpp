#include "platform/tasks/MainTask.h"

#include <gtest/gtest.h>

#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/tasks/Cancellation.h"
#include "platform/tasks/OnLeaving.h"
#include "platform/tasks/PhaseProgress.h"
#include "tests/support/CollectingMainQueue.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;

void waitUntilStopped(const std::stop_token& stop) {
    std::promise<void> stopped;
    const std::stop_callback callback(stop, [&] { stopped.set_value(); });
    stopped.get_future().wait();
    throw CancellationError();
}

/// Says what happens to it; tasks are made from its functions.
class MainTasks : public testing::Test {
  protected:
    CollectingMainQueue queue_;
    Lines log_;

    void note(const std::string& line) { log_.push_back(line); }

    /// Until the task has come to its end.
    void runUntilDone(const MainTask& task) {
        while (!task.isDone()) {
            queue_.runAll();
            std::this_thread::yield();
        }
    }
    void runUntilLogged(std::size_t lines) {
        while (log_.size() < lines) {
            queue_.runAll();
            std::this_thread::yield();
        }
    }

    MainTask addTwoNumbers() {
        auto first = onWorker<int>(queue_, [](const std::stop_token&) { return 20; });
        const int a = co_await first;
        note("first " + std::to_string(a));
        auto second = onWorker<int>(queue_, [a](const std::stop_token&) { return a + 22; });
        const int b = co_await second;
        note("second " + std::to_string(b));
    }
    MainTask fail() {
        try {
            auto call = onWorker<std::string>(
                queue_, [](const std::stop_token&) -> std::string { throw std::out_of_range("too far"); });
            const std::string never = co_await call;
            note(never);
        } catch (const std::out_of_range& error) {
            note(error.what());
        }
    }
    MainTask waitForStop() {
        const OnLeaving end([this] { note("left"); });
        try {
            auto call = onWorker<void>(queue_, waitUntilStopped);
            co_await call;
        } catch (const CancellationError&) {
            note("cancelled");
        }
    }
    MainTask letEscape() {
        auto call = onWorker<void>(queue_, [](const std::stop_token&) { throw std::runtime_error("lost"); });
        co_await call;
    }
    MainTask throwAtOnce() {
        note("about to throw");
        throw std::runtime_error("lost");
        co_return;
    }
    MainTask moveOnlyResult() {
        auto call = onWorker<std::unique_ptr<int>>(
            queue_, [](const std::stop_token&) { return std::make_unique<int>(7); });
        const std::unique_ptr<int> seven = co_await call;
        note(std::to_string(*seven));
    }
    MainTask runThrough() {
        note("ran");
        co_return;
    }
    MainTask destroyFromWithin(std::unique_ptr<TaskScope>& scope) {
        scope.reset();
        co_return;
    }
};

TEST_F(MainTasks, nothingRunsBeforeTheStartAndEverythingUpToTheFirstWaitAtOnce) {
    MainTask task = runThrough();
    EXPECT_EQ(log_, Lines{});
    task.start();
    EXPECT_EQ(log_, Lines{"ran"});
    EXPECT_TRUE(task.isDone());
}

TEST_F(MainTasks, aTaskThatNeverStartsLeavesNothing) {
    { const MainTask task = waitForStop(); }
    EXPECT_EQ(log_, Lines{});
}

TEST_F(MainTasks, stepsFollowEachOtherWithTheirResults) {
    MainTask task = addTwoNumbers();
    task.start();
    EXPECT_FALSE(task.isDone());
    runUntilDone(task);
    EXPECT_EQ(log_, (Lines{"first 20", "second 42"}));
}

TEST_F(MainTasks, resultsMayBeMoveOnly) {
    MainTask task = moveOnlyResult();
    task.start();
    runUntilDone(task);
    EXPECT_EQ(log_, Lines{"7"});
}

TEST_F(MainTasks, anExceptionOfTheWorkerArrivesWithItsType) {
    MainTask task = fail();
    task.start();
    runUntilDone(task);
    EXPECT_EQ(log_, Lines{"too far"});
}

TEST_F(MainTasks, cancellingReachesTheWorkerAndTheTaskUnwinds) {
    MainTask task = waitForStop();
    task.start();
    TaskHandle handle = task.handle();
    EXPECT_FALSE(handle.isCancelled());
    handle.cancel();
    EXPECT_TRUE(handle.isCancelled());
    EXPECT_EQ(log_, Lines{});  // a request only
    runUntilDone(task);
    EXPECT_EQ(log_, (Lines{"cancelled", "left"}));
}

TEST_F(MainTasks, aTaskCancelledBeforeItsStartStillAsksItsWorker) {
    MainTask task = waitForStop();
    task.handle().cancel();
    task.start();
    runUntilDone(task);
    EXPECT_EQ(log_, (Lines{"cancelled", "left"}));
}

TEST_F(MainTasks, cancellingMayComeFromAnyThreadAndAfterTheEnd) {
    std::optional<TaskHandle> handle;
    {
        MainTask task = waitForStop();
        task.start();
        handle = task.handle();
        std::thread([&] { handle->cancel(); }).join();
        runUntilDone(task);
    }
    handle->cancel();
    EXPECT_EQ(log_, (Lines{"cancelled", "left"}));
}

TEST_F(MainTasks, destroyingAWaitingTaskStopsJoinsAndUnwindsIt) {
    {
        MainTask task = waitForStop();
        task.start();
    }
    EXPECT_EQ(log_, Lines{"left"});  // no step ran on
    queue_.runAll();
    EXPECT_EQ(log_, Lines{"left"});
}

TEST_F(MainTasks, aScopeKeepsTasksWhoseHandlesWereGivenUp) {
    TaskScope scope;
    scope.start(waitForStop());
    scope.start(addTwoNumbers());
    runUntilLogged(2);
    EXPECT_EQ(log_, (Lines{"first 20", "second 42"}));
    scope.start(runThrough());
    scope.clear();
    EXPECT_EQ(log_, (Lines{"first 20", "second 42", "ran", "left"}));
}

TEST_F(MainTasks, aScopeThatGoesTakesItsTasksAlong) {
    {
        TaskScope scope;
        scope.start(waitForStop());
        scope.start(waitForStop());
    }
    EXPECT_EQ(log_, (Lines{"left", "left"}));
}

using MainTasksDeathTest = MainTasks;

TEST_F(MainTasksDeathTest, anExceptionThatNobodyHandlesStopsTheProgram) {
    const auto run = [this] {
        MainTask task = letEscape();
        task.start();
        runUntilDone(task);
    };
    EXPECT_DEATH(run(), "lost");
    const auto runAtOnce = [this] {
        MainTask task = throwAtOnce();
        task.start();
    };
    EXPECT_DEATH(runAtOnce(), "lost");
}

TEST_F(MainTasksDeathTest, aTaskThatDestroysItselfStopsTheProgram) {
    const auto run = [this] {
        auto scope = std::make_unique<TaskScope>();
        TaskScope& kept = *scope;
        kept.start(destroyFromWithin(scope));
    };
    EXPECT_DEATH(run(), "destroyed by one of its own steps");
}

TEST_F(MainTasks, progressIsAppliedOnTheMainThreadOnly) {
    std::vector<double> seen;
    const PhaseProgress progress(queue_, [&](double fraction) { seen.push_back(fraction); });
    const auto callback = progress.callback();
    callback(0.1);
    EXPECT_EQ(seen, std::vector<double>{0.1});
    std::thread([&] { callback(0.2); }).join();
    EXPECT_EQ(seen, std::vector<double>{0.1});
    queue_.runAll();
    EXPECT_EQ(seen, (std::vector<double>{0.1, 0.2}));
}

TEST_F(MainTasks, progressOfAnEndedPhaseIsDropped) {
    std::vector<double> seen;
    std::function<void(double)> callback;
    {
        const PhaseProgress progress(queue_, [&](double fraction) { seen.push_back(fraction); });
        callback = progress.callback();
        std::thread([&] { callback(0.5); }).join();
    }
    queue_.runAll();
    callback(0.6);
    std::thread([&] { callback(0.7); }).join();
    queue_.runAll();
    EXPECT_EQ(seen, std::vector<double>{});
}

}  // namespace
}  // namespace korvane
