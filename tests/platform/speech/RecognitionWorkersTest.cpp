#include "platform/speech/RecognitionWorkers.h"

#include <gtest/gtest.h>

#include <future>

#include "tests/platform/speech/ScriptedRecognizer.h"

namespace korvane {
namespace {

using Clock = std::chrono::steady_clock;

TEST(RecognitionWorkers, aCancelledTaskAnswersWhileItsWorkerIsStuckInALibrary) {
    RecognitionWorkers workers;
    std::promise<void> libraryReturns;
    std::promise<std::exception_ptr> answer;
    auto task = workers.start(
        [until = libraryReturns.get_future().share()](const auto&) {
            until.wait();
            return std::vector<RecognizedSegment>();
        },
        [&](const auto&, const std::exception_ptr& error) { answer.set_value(error); });
    task->cancel();
    const auto error = answer.get_future().get();
    EXPECT_THROW(std::rethrow_exception(error), CancellationError);
    task.reset();
    libraryReturns.set_value();
}

TEST(RecognitionWorkers, destroyingATaskAnswersItBeforeTheDestructorReturns) {
    RecognitionWorkers workers;
    int answers = 0;
    workers.start([](const auto& stop) { return waitForCancellation(stop); },
                  [&](const auto&, const std::exception_ptr& error) { answers += error ? 1 : 100; });
    EXPECT_EQ(answers, 1);
}

TEST(RecognitionWorkers, whatTheWorkThrowsArrivesWithItsType) {
    RecognitionWorkers workers;
    std::promise<std::exception_ptr> answer;
    const auto task = workers.start(
        [](const auto&) -> std::vector<RecognizedSegment> { throw RecognitionError("The engine broke."); },
        [&](const auto& result, const std::exception_ptr& error) {
            EXPECT_FALSE(result);
            answer.set_value(error);
        });
    EXPECT_THROW(std::rethrow_exception(answer.get_future().get()), RecognitionError);
}

TEST(RecognitionWorkers, destroyingThemStopsAndJoinsEveryWorker) {
    std::atomic<int> running = 0;
    {
        RecognitionWorkers workers;
        for (int i = 0; i < 8; ++i) {
            std::promise<void> started;
            const auto task = workers.start(
                [&](const auto& stop) -> std::vector<RecognizedSegment> {
                    ++running;
                    started.set_value();
                    try {
                        return waitForCancellation(stop);
                    } catch (...) {
                        --running;
                        throw;
                    }
                },
                [](const auto&, const auto&) {});
            started.get_future().wait();
        }
    }
    EXPECT_EQ(running, 0);
}

}  // namespace
}  // namespace korvane
