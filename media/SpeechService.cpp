#include "media/SpeechService.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "media/FirstAnswer.h"
#include "platform/tasks/Cancellation.h"
#include "platform/tasks/ProgressReporter.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Words = std::vector<SpeechSegment>;

/// Where a cancellation finds the task. It may come before the task is there; then the task is cancelled as
/// soon as it is.
class TaskSlot {
  public:
    void fill(std::shared_ptr<RecognitionTask> task) {
        {
            const std::lock_guard lock(mutex_);
            task_ = task;
            if (!cancelled_)
                return;
        }
        task->cancel();
    }
    void cancel() {
        std::shared_ptr<RecognitionTask> task;
        {
            const std::lock_guard lock(mutex_);
            cancelled_ = true;
            task = task_;
        }
        if (task)
            task->cancel();
    }

  private:
    std::mutex mutex_;
    bool cancelled_ = false;
    std::shared_ptr<RecognitionTask> task_;
};

/// Reports the estimate every 250 ms, the first one at once, until its thread is stopped.
std::jthread startTicker(ProgressReporter progress, double audioDuration, std::shared_ptr<TickClock> clock) {
    return std::jthread(
        [progress, audioDuration, clock = std::move(clock)](const std::stop_token& stop) mutable {
            const auto start = clock->now();
            while (!stop.stop_requested()) {
                const std::chrono::duration<double> elapsed = clock->now() - start;
                progress.report(estimatedRecognitionProgress(elapsed.count(), audioDuration));
                if (!clock->sleepFor(250ms, stop))
                    return;
            }
        });
}

Words segmentsOf(const RecognitionResult& result) {
    Words words;
    words.reserve(result.segments.size());
    for (const auto& segment : result.segments)
        words.emplace_back(segment.substring, segment.timestamp, segment.timestamp + segment.duration);
    return words;
}

/// Ends the wait at the first error or final result. Runs on the recogniser's thread, perhaps late.
RecognitionHandler handlerFor(const std::shared_ptr<FirstAnswer<Words>>& outcome, ProgressReporter progress) {
    return [outcome, progress](const std::optional<RecognitionResult>& result,
                               const std::exception_ptr& error) mutable {
        if (error) {
            outcome->resume([&]() -> Words { std::rethrow_exception(error); });
            return;
        }
        if (!result || !result->isFinal)
            return;
        outcome->resume([&] {
            progress.finish();
            return segmentsOf(*result);
        });
    };
}

}  // namespace

double estimatedRecognitionProgress(double elapsedSeconds, double audioDuration) {
    // Written so that a duration that is no number counts as short.
    const double seconds = audioDuration > 5.0 ? audioDuration : 5.0;
    const double expected = seconds * 1.2;
    return std::min(1.0 - std::exp(-(elapsedSeconds / expected) * 1.5), 0.95);
}

SpeechService::SpeechService(MainQueue& mainQueue, SpeechAuthorization& authorization,
                             SpeechRecognizerRegistry& recognizers, std::shared_ptr<TickClock> clock)
    : mainQueue_(mainQueue),
      authorization_(authorization),
      recognizers_(recognizers),
      clock_(std::move(clock)) {}

void SpeechService::requestPermission(std::stop_token stop) {
    const auto answer = std::make_shared<FirstAnswer<SpeechAuthorizationStatus>>();
    const std::stop_callback giveUp(stop, [&answer] {
        answer->resume([]() -> SpeechAuthorizationStatus { throw CancellationError(); });
    });
    authorization_.request(
        [answer](SpeechAuthorizationStatus status) { answer->resume([status] { return status; }); });
    switch (answer->wait()) {
        case SpeechAuthorizationStatus::authorized:
            return;
        case SpeechAuthorizationStatus::restricted:
            throw SpeechError::permissionRestricted();
        case SpeechAuthorizationStatus::denied:
        case SpeechAuthorizationStatus::notDetermined:
            break;
    }
    // Also what no enumerator names: whatever isn't a yes is a no.
    throw SpeechError::permissionDenied();
}

std::vector<SpeechSegment> SpeechService::transcribe(const std::filesystem::path& audioURL,
                                                     double audioDuration, const Locale& locale,
                                                     std::function<void(double)> onProgress,
                                                     std::stop_token stop) {
    const auto recognizer = recognizers_.makeRecognizer(locale);
    if (!recognizer || !recognizer->isAvailable()) {
        checkCancelled(stop);  // who has stopped is not told what is missing
        throw SpeechError::recognizerUnavailable(locale);
    }
    FileRecognitionRequest request;
    request.path = audioURL;
    request.shouldReportPartialResults = false;

    const ProgressReporter progress(mainQueue_, std::move(onProgress), stop);
    const auto outcome = std::make_shared<FirstAnswer<Words>>();
    TaskSlot slot;
    // Destroyed in reverse on every way out: no cancellation reaches the slot any more, then the ticker
    // stops, then the slot lets go of the task, which waits for its handler.
    const std::jthread ticker = startTicker(progress, audioDuration, clock_);
    const std::stop_callback cancel(stop, [&slot] { slot.cancel(); });
    slot.fill(recognizer->recognitionTask(request, handlerFor(outcome, progress)));
    return outcome->wait();
}

}  // namespace korvane
