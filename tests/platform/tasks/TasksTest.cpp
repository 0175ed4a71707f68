#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/tasks/BackgroundTask.h"
#include "platform/tasks/Cancellation.h"
#include "platform/tasks/QtMainQueue.h"
#include "platform/tasks/RunOnWorker.h"

using namespace korvane;

namespace {

class Tasks : public testing::Test {
  protected:
    int argc_ = 1;
    char name_[6] = "tests";
    char* argv_[2] = {name_, nullptr};
    QCoreApplication app_{argc_, argv_};
    QtMainQueue queue_;

    // Everything that waits in the event queue now, and what that posts.
    static void drain() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents();
    }
    static bool onMainThread() { return QThread::currentThread() == QCoreApplication::instance()->thread(); }
};

struct TypedError : std::runtime_error {
    explicit TypedError(int wanted) : std::runtime_error("typed"), code(wanted) {}
    int code;
};

void waitUntilStopped(const std::stop_token& stop) {
    std::promise<void> stopped;
    const std::stop_callback callback(stop, [&] { stopped.set_value(); });
    stopped.get_future().wait();
}

}  // namespace

TEST_F(Tasks, postedWorkRunsLaterOnTheMainThreadInOrder) {
    std::vector<int> seen;
    std::thread([&] {
        for (int i = 0; i < 1000; ++i)
            queue_.post([&, i] {
                EXPECT_TRUE(onMainThread());
                seen.push_back(i);
            });
    }).join();
    EXPECT_TRUE(seen.empty());
    drain();
    ASSERT_EQ(seen.size(), 1000u);
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(seen[static_cast<std::size_t>(i)], i);
}

TEST_F(Tasks, postingFromTheMainThreadDoesNotRunAtOnce) {
    bool ran = false;
    queue_.post([&] { ran = true; });
    EXPECT_FALSE(ran);
    drain();
    EXPECT_TRUE(ran);
}

TEST_F(Tasks, aStoppedQueueDropsWhatWaitsAndWhatComesLater) {
    bool ran = false;
    queue_.post([&] { ran = true; });
    queue_.stop();
    queue_.post([&] { ran = true; });
    drain();
    EXPECT_FALSE(ran);
}

TEST_F(Tasks, postedWorkMayStopTheQueue) {
    int ran = 0;
    queue_.post([&] {
        ++ran;
        queue_.stop();
    });
    queue_.post([&] { ++ran; });
    drain();
    EXPECT_EQ(ran, 1);
}

TEST_F(Tasks, theValueComesBackAfterEverythingThatTheWorkPosted) {
    std::vector<int> reports;
    const int result = runOnWorker<int>(queue_, {}, [&](const std::stop_token&) {
        EXPECT_FALSE(onMainThread());
        for (int i = 0; i < 50; ++i)
            queue_.post([&, i] { reports.push_back(i); });
        return 42;
    });
    EXPECT_EQ(result, 42);
    EXPECT_EQ(reports.size(), 50u);
}

TEST_F(Tasks, anExceptionIsRethrownOnTheMainThreadWithItsType) {
    try {
        runOnWorker<void>(queue_, {}, [](const std::stop_token&) { throw TypedError(7); });
        FAIL() << "nothing was thrown";
    } catch (const TypedError& error) {
        EXPECT_EQ(error.code, 7);
        EXPECT_TRUE(onMainThread());
    }
}

TEST_F(Tasks, aValueThatCanOnlyBeMovedComesThrough) {
    const auto result = runOnWorker<std::unique_ptr<std::string>>(
        queue_, {}, [](const std::stop_token&) { return std::make_unique<std::string>("moved"); });
    EXPECT_EQ(*result, "moved");
}

TEST_F(Tasks, theEventLoopRunsWhileTheWorkerBlocks) {
    std::promise<void> ticked;
    auto future = ticked.get_future();
    QTimer::singleShot(0, &app_, [&] { ticked.set_value(); });
    runOnWorker<void>(queue_, {}, [&](const std::stop_token&) { future.wait(); });
}

TEST_F(Tasks, aRequestedStopReachesTheWork) {
    std::stop_source source;
    QTimer::singleShot(0, &app_, [&] { source.request_stop(); });
    EXPECT_THROW(runOnWorker<void>(queue_, source.get_token(),
                                   [](const std::stop_token& stop) {
                                       waitUntilStopped(stop);
                                       checkCancelled(stop);
                                   }),
                 CancellationError);
}

TEST_F(Tasks, aStopRequestedBeforeTheStartReachesTheWorkToo) {
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(runOnWorker<void>(queue_, source.get_token(),
                                   [](const std::stop_token& stop) {
                                       waitUntilStopped(stop);
                                       checkCancelled(stop);
                                   }),
                 CancellationError);
}

TEST_F(Tasks, destroyingATaskStopsItWaitsForItAndReportsNothing) {
    bool returned = false;
    bool finished = false;
    {
        const BackgroundTask<void> task(
            queue_,
            [&](const std::stop_token& stop) {
                waitUntilStopped(stop);
                returned = true;
            },
            [&](Outcome<void>) { finished = true; });
    }
    EXPECT_TRUE(returned);
    drain();
    EXPECT_FALSE(finished);
}

TEST_F(Tasks, theFinishedCallbackMayDestroyItsTask) {
    QEventLoop loop;
    std::unique_ptr<BackgroundTask<int>> task;
    int seen = 0;
    task = std::make_unique<BackgroundTask<int>>(
        queue_, [](const std::stop_token&) { return 5; },
        [&](Outcome<int> outcome) {
            task.reset();
            seen = outcome.take();
            loop.quit();
        });
    loop.exec();
    EXPECT_EQ(seen, 5);
}
