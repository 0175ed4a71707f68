#include "media/SpeechService.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <future>
#include <limits>
#include <random>
#include <thread>

#include "platform/ffmpeg/MediaError.h"
#include "platform/tasks/Cancellation.h"
#include "tests/media/SpeechDoubles.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Status = SpeechAuthorizationStatus;
using Words = std::vector<SpeechSegment>;

RecognitionResult finalResult(std::vector<RecognizedSegment> segments) {
    return {true, std::move(segments)};
}

std::exception_ptr asPointer(const auto& error) {
    return std::make_exception_ptr(error);
}

class SpeechServiceTest : public testing::Test {
  protected:
    SpeechServiceTest() {
        auto made = std::make_unique<ManualEngine>();
        engine = made.get();
        std::vector<std::unique_ptr<SpeechEngine>> engines;
        engines.push_back(std::move(made));
        registry = std::make_unique<SpeechRecognizerRegistry>(std::move(engines));
        service = std::make_unique<SpeechService>(queue, authorization, *registry, clock);
    }

    /// Runs transcribe on a thread of its own.
    std::future<Words> transcribe(double audioDuration = 10.0, const char* locale = "en-US") {
        return std::async(std::launch::async, [this, audioDuration, locale] {
            return service->transcribe(
                "speech.m4a", audioDuration, Locale{locale}, [this](double p) { progress.push_back(p); },
                stop.get_token());
        });
    }

    KeepingQueue queue;
    FixedAuthorization authorization{Status::authorized};
    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
    ManualEngine* engine = nullptr;
    std::unique_ptr<SpeechRecognizerRegistry> registry;
    std::unique_ptr<SpeechService> service;
    std::stop_source stop;
    std::vector<double> progress;  // delivered by the queue
};

// Permission

std::string refusal(SpeechAuthorization& authorization) {
    KeepingQueue queue;
    SpeechRecognizerRegistry registry({});
    try {
        SpeechService(queue, authorization, registry).requestPermission({});
    } catch (const SpeechError& error) {
        return error.what();
    }
    return "";
}

TEST(SpeechPermission, authorizedReturnsAndEverythingElseIsRefused) {
    const auto denied = std::string(SpeechError::permissionDenied().what());
    const auto restricted = std::string(SpeechError::permissionRestricted().what());
    const std::pair<int, std::string> table[] = {{0, denied}, {1, denied},  {2, restricted}, {3, ""},
                                                 {4, denied}, {-1, denied}, {99, denied}};
    for (const auto& [raw, sentence] : table) {
        FixedAuthorization authorization(static_cast<Status>(raw));
        EXPECT_EQ(refusal(authorization), sentence) << raw;
    }
}

TEST(SpeechPermission, theAnswerMayComeFromAnotherThread) {
    std::jthread answering;
    FixedAuthorization authorization([&](const auto& completion) {
        answering = std::jthread([completion] { completion(Status::restricted); });
    });
    EXPECT_EQ(refusal(authorization), SpeechError::permissionRestricted().what());
}

TEST(SpeechPermission, aSecondAnswerChangesNothing) {
    FixedAuthorization authorization([](const auto& completion) {
        completion(Status::denied);
        completion(Status::authorized);
    });
    EXPECT_EQ(refusal(authorization), SpeechError::permissionDenied().what());
}

TEST(SpeechPermission, aStopEndsTheWaitAndALateAnswerDoesNoHarm) {
    KeepingQueue queue;
    SpeechRecognizerRegistry registry({});
    std::function<void(Status)> late;
    std::stop_source stop;
    FixedAuthorization authorization([&](const auto& completion) {
        late = completion;
        stop.request_stop();
    });
    EXPECT_THROW(SpeechService(queue, authorization, registry).requestPermission(stop.get_token()),
                 CancellationError);
    late(Status::authorized);
}

// The estimate

TEST(EstimatedRecognitionProgress, shortClipsCountAsFiveSeconds) {
    for (const double duration : {0.0, 0.5, 4.99, 5.0, -3.0, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_DOUBLE_EQ(estimatedRecognitionProgress(0.0, duration), 0.0);
        EXPECT_NEAR(estimatedRecognitionProgress(6.0, duration), 1.0 - std::exp(-1.5), 1e-12);
        EXPECT_NEAR(estimatedRecognitionProgress(6.0, duration), 0.777, 0.0005);
    }
}

TEST(EstimatedRecognitionProgress, longClipsTakeTheirLengthTimesOnePointTwo) {
    EXPECT_NEAR(estimatedRecognitionProgress(120.0, 100.0), 1.0 - std::exp(-1.5), 1e-12);
    EXPECT_NEAR(estimatedRecognitionProgress(60.0, 100.0), 1.0 - std::exp(-0.75), 1e-12);
}

TEST(EstimatedRecognitionProgress, itRisesAndIsHeldAtNinetyFivePerCent) {
    double last = -1.0;
    for (double t = 0.0; t < 100.0; t += 0.25) {
        const double p = estimatedRecognitionProgress(t, 10.0);
        EXPECT_GE(p, last);
        EXPECT_LE(p, 0.95);
        last = p;
    }
    EXPECT_LT(estimatedRecognitionProgress(23.9, 10.0), 0.95);
    EXPECT_EQ(estimatedRecognitionProgress(24.0, 10.0), 0.95);
    EXPECT_EQ(estimatedRecognitionProgress(1e9, 10.0), 0.95);
}

TEST_F(SpeechServiceTest, progressFollowsTheCurveEachQuarterSecondAndEndsWithOne) {
    auto words = transcribe(10.0);
    const auto handler = engine->handler();
    clock->letPass(200);
    handler(finalResult({}), nullptr);
    words.get();
    queue.runAll();
    ASSERT_EQ(progress.size(), 202U);
    for (int tick = 0; tick <= 200; ++tick)
        EXPECT_NEAR(progress[static_cast<std::size_t>(tick)], estimatedRecognitionProgress(0.25 * tick, 10.0),
                    1e-9);
    EXPECT_EQ(progress[200], 0.95);
    EXPECT_EQ(progress[201], 1.0);
}

TEST_F(SpeechServiceTest, progressComesThroughTheMainQueueOnly) {
    auto words = transcribe();
    engine->handler()(finalResult({}), nullptr);
    words.get();
    EXPECT_TRUE(progress.empty());
    EXPECT_GE(queue.count(), 1U);
    queue.runAll();
    EXPECT_EQ(progress.back(), 1.0);
}

TEST_F(SpeechServiceTest, theTickerIsGoneWhenTheCallReturns) {
    auto words = transcribe();
    const auto handler = engine->handler();
    clock->letPass(3);
    handler(std::nullopt, asPointer(MediaError("broken")));
    EXPECT_THROW(words.get(), MediaError);
    EXPECT_FALSE(clock->isSomebodySleeping());
    queue.runAll();
    EXPECT_EQ(progress.size(), 4U) << "no 1.0 after an error";
    EXPECT_LT(progress.back(), 0.95);
}

// The recogniser

TEST_F(SpeechServiceTest, anUnsupportedLocaleFailsBeforeAnyRequest) {
    auto words = transcribe(10.0, "ja-JP");
    try {
        words.get();
        FAIL();
    } catch (const SpeechError& error) {
        EXPECT_EQ(error, SpeechError::recognizerUnavailable(Locale{"ja-JP"}));
    }
    EXPECT_EQ(engine->started, 0);
    EXPECT_EQ(queue.count(), 0U);
}

TEST_F(SpeechServiceTest, whoHasStoppedIsNotToldWhatIsMissing) {
    stop.request_stop();
    auto words = transcribe(10.0, "ja-JP");
    EXPECT_THROW(words.get(), CancellationError);
}

TEST_F(SpeechServiceTest, aRecogniserThatIsNotAvailableFailsBeforeAnyRequest) {
    engine->isAvailable = false;
    auto words = transcribe();
    try {
        words.get();
        FAIL();
    } catch (const SpeechError& error) {
        EXPECT_STREQ(error.what(), "Speech recognizer is not available for 'en-US'.");
    }
    EXPECT_EQ(engine->started, 0);
    EXPECT_EQ(queue.count(), 0U);
}

TEST_F(SpeechServiceTest, theRequestNamesTheFileAndWantsNoPartialResults) {
    std::optional<FileRecognitionRequest> seen;
    engine->onStart = [&](const auto& request, const auto& handler) {
        seen = request;
        handler(finalResult({}), nullptr);
    };
    EXPECT_TRUE(transcribe().get().empty()) << "no words are no error";
    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->path, "speech.m4a");
    EXPECT_FALSE(seen->shouldReportPartialResults);
    EXPECT_EQ(engine->started, 1);
}

TEST_F(SpeechServiceTest, segmentsBecomeWordsOneForOne) {
    engine->onStart = [](const auto&, const auto& handler) {
        handler(finalResult({{"So", 0.5, 0.25}, {"", 3.0, 0.0}, {" so ", 1.0, 1.5}, {"so", 1.0, -0.5}}),
                nullptr);
    };
    const auto words = transcribe().get();
    ASSERT_EQ(words.size(), 4U);
    EXPECT_EQ(words[0].text(), "So");
    EXPECT_EQ(words[0].start(), 0.5);
    EXPECT_EQ(words[0].end(), 0.75);
    EXPECT_EQ(words[1].text(), "");
    EXPECT_EQ(words[1].end(), 3.0);
    EXPECT_EQ(words[2].text(), " so ");
    EXPECT_EQ(words[2].end(), 2.5);
    EXPECT_EQ(words[3].end(), 0.5);
}

TEST_F(SpeechServiceTest, whatIsNotFinalIsIgnored) {
    auto words = transcribe();
    const auto handler = engine->handler();
    handler(RecognitionResult{false, {{"early", 0.0, 1.0}}}, nullptr);
    handler(std::nullopt, nullptr);
    EXPECT_EQ(words.wait_for(20ms), std::future_status::timeout);
    handler(finalResult({{"done", 0.0, 1.0}}), nullptr);
    const auto found = words.get();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].text(), "done");
}

TEST_F(SpeechServiceTest, theRecognisersErrorPassesUnchanged) {
    engine->onStart = [](const auto&, const auto& handler) {
        handler(std::nullopt, asPointer(RecognitionError("The engine broke.")));
    };
    try {
        transcribe().get();
        FAIL();
    } catch (const RecognitionError& error) {
        EXPECT_STREQ(error.what(), "The engine broke.");
    }
}

TEST_F(SpeechServiceTest, anErrorCountsEvenIfAResultComesWithIt) {
    engine->onStart = [](const auto&, const auto& handler) {
        handler(finalResult({}), asPointer(MediaError("broken")));
    };
    EXPECT_THROW(transcribe().get(), MediaError);
}

TEST_F(SpeechServiceTest, ofTwoEndsOnlyTheFirstCounts) {
    auto words = transcribe();
    auto handler = engine->handler();
    handler(finalResult({{"first", 0.0, 1.0}}), nullptr);
    handler(std::nullopt, asPointer(MediaError("late")));
    handler(finalResult({}), nullptr);
    EXPECT_EQ(words.get().at(0).text(), "first");
    handler(finalResult({}), nullptr);
    queue.runAll();
    EXPECT_EQ(std::count(progress.begin(), progress.end(), 1.0), 1);
}

TEST_F(SpeechServiceTest, aResultAfterAnErrorReportsNoCompletion) {
    auto words = transcribe();
    const auto handler = engine->handler();
    handler(std::nullopt, asPointer(MediaError("first")));
    handler(finalResult({}), nullptr);
    EXPECT_THROW(words.get(), MediaError);
    queue.runAll();
    EXPECT_EQ(std::count(progress.begin(), progress.end(), 1.0), 0);
}

TEST_F(SpeechServiceTest, aRecogniserThatThrowsInsteadOfStartingLeavesNothingRunning) {
    engine->onStart = [](const auto&, const auto&) { throw RecognitionError("No thread to be had."); };
    EXPECT_THROW(transcribe().get(), RecognitionError);
    EXPECT_FALSE(clock->isSomebodySleeping());
}

// Cancellation

TEST_F(SpeechServiceTest, aStopCancelsTheTaskAndEndsInWhateverItDelivers) {
    std::atomic<int> cancels = 0;
    engine->onCancel = [&](const auto& handler) {
        ++cancels;
        handler(std::nullopt, asPointer(CancellationError()));
    };
    auto words = transcribe();
    engine->handler();
    clock->letPass(2);
    stop.request_stop();
    EXPECT_THROW(words.get(), CancellationError);
    EXPECT_EQ(cancels, 1);
    EXPECT_FALSE(clock->isSomebodySleeping());
    queue.runAll();
    EXPECT_TRUE(progress.empty()) << "a stopped operation reports no more";
}

TEST_F(SpeechServiceTest, aRecogniserMayAnswerACancellationWithItsOwnErrorOrEvenAResult) {
    engine->onCancel = [](const auto& handler) {
        handler(std::nullopt, asPointer(RecognitionError("Recognition was stopped.")));
    };
    auto words = transcribe();
    engine->handler();
    stop.request_stop();
    EXPECT_THROW(words.get(), RecognitionError);
}

TEST_F(SpeechServiceTest, aStopBeforeTheCallStillReachesTheTask) {
    engine->onCancel = [](const auto& handler) { handler(std::nullopt, asPointer(CancellationError())); };
    stop.request_stop();
    EXPECT_THROW(transcribe().get(), CancellationError);
}

TEST_F(SpeechServiceTest, aStopWhileTheTaskIsBeingStartedReachesIt) {
    engine->onStart = [this](const auto&, const auto&) { stop.request_stop(); };
    engine->onCancel = [](const auto& handler) { handler(std::nullopt, asPointer(CancellationError())); };
    EXPECT_THROW(transcribe().get(), CancellationError);
}

TEST_F(SpeechServiceTest, stopsThatRaceWithTheStartNeverHang) {
    engine->onCancel = [](const auto& handler) { handler(std::nullopt, asPointer(CancellationError())); };
    std::mt19937 random(3);
    for (int i = 0; i < 500; ++i) {
        stop = std::stop_source();
        auto words = transcribe();
        for (auto spins = random() % 20000; spins > 0; --spins)
            std::atomic_signal_fence(std::memory_order_seq_cst);
        stop.request_stop();
        ASSERT_EQ(words.wait_for(10s), std::future_status::ready);
        EXPECT_THROW(words.get(), CancellationError);
    }
}

TEST_F(SpeechServiceTest, aStopAfterTheResultChangesNothing) {
    engine->onStart = [](const auto&, const auto& handler) { handler(finalResult({{"a", 0, 1}}), nullptr); };
    EXPECT_EQ(transcribe().get().size(), 1U);
    stop.request_stop();
    queue.runAll();
    EXPECT_EQ(progress.back(), 1.0);
}

TEST(SteadyTickClock, itSleepsAsLongAsAskedAndNotAfterAStop) {
    SteadyTickClock clock;
    std::stop_source stop;
    const auto before = clock.now();
    EXPECT_TRUE(clock.sleepFor(20ms, stop.get_token()));
    EXPECT_GE(clock.now() - before, 20ms);
    stop.request_stop();
    EXPECT_FALSE(clock.sleepFor(1h, stop.get_token()));
}

}  // namespace
}  // namespace korvane
