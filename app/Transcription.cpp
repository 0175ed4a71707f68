// From a video to words: permission, sound, recognition, one after the other.
#include <utility>

#include "app/ContentView.h"
#include "app/StatusTexts.h"
#include "app/TemporaryAudio.h"
#include "editor/LogFormat.h"
#include "platform/tasks/Cancellation.h"
#include "platform/tasks/OnLeaving.h"
#include "platform/tasks/PhaseProgress.h"

namespace korvane {
namespace {

using Words = std::vector<SpeechSegment>;

// How much of the bar taking the sound out fills; recognition fills the rest.
constexpr double kExtractionShare = 0.3;
constexpr double kRecognitionShare = 0.7;

bool saysNoRecognizer(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const SpeechError& speech) {
        return speech.errorCase() == SpeechError::Case::recognizerUnavailable;
    } catch (...) {
        return false;
    }
}

}  // namespace

void ContentView::startTranscription() {
    if (isAnyActive())
        return;
    MainTask task = runTranscription();
    if (hasVideo())
        transcriptionTask_ = task.handle();
    tasks_.start(std::move(task));
}

void ContentView::stopTranscription() {
    if (transcriptionTask_)
        transcriptionTask_->cancel();
    transcriptionTask_.reset();
}

void ContentView::beginTranscription() {
    setIsProcessing(true);
    setOverallProgress(0.0);
    setWords({});
    setPreviewBundle(std::nullopt);
    setErrorMessage(std::nullopt);
    setProcessingStartTime(now_());
    setStatusText(QStringLiteral("Requesting permission…"));
    setExportedFile(std::nullopt);
}

MainTask ContentView::runTranscription() {
    if (!selectedURL_) {
        setErrorMessage("Please select a video file first.");
        co_return;
    }
    beginTranscription();
    const OnLeaving end([this] {
        transcriptionTask_.reset();  // before the signal, on which the next task may be started
        setIsProcessing(false);
    });
    try {
        auto permission = onWorker<void>(
            mainQueue_,
            [&service = *speechService_](const std::stop_token& stop) { service.requestPermission(stop); });
        co_await permission;

        setStatusText(QStringLiteral("Extracting audio…"));
        std::optional<PhaseProgress> progress;
        progress.emplace(mainQueue_,
                         [this](double fraction) { setOverallProgress(fraction * kExtractionShare); });
        auto extraction = onWorker<TemporaryAudio>(
            mainQueue_, [&processor = *videoProcessor_, video = *selectedURL_,
                         onProgress = progress->callback()](const std::stop_token& stop) {
                return TemporaryAudio(processor.extractAudio(video, onProgress, stop));
            });
        const TemporaryAudio audio = co_await extraction;

        progress.emplace(mainQueue_, [this](double fraction) {
            setOverallProgress(kExtractionShare + fraction * kRecognitionShare);
        });
        setOverallProgress(kExtractionShare);
        setStatusText(QStringLiteral("Transcribing speech…"));
        auto recognition = onWorker<Words>(
            mainQueue_, [&service = *speechService_, &audio, locale = selectedLanguage_.locale(),
                         onProgress = progress->callback()](const std::stop_token& stop) {
                return service.transcribe(audio.url(), audio.duration(), locale, onProgress, stop);
            });
        Words words = co_await recognition;
        showTranscript(std::move(words));
    } catch (const CancellationError&) {
        setStatusText(QStringLiteral("Cancelled"));
    } catch (...) {
        setStatusText(QStringLiteral("Failed"));
        setErrorMessage(describeError(std::current_exception()), saysNoRecognizer(std::current_exception()));
    }
}

void ContentView::showTranscript(Words words) {
    const std::size_t count = words.size();
    setOverallProgress(1.0);
    setWords(std::move(words));
    if (count == 0) {
        setStatusText(QStringLiteral("No speech detected"));
        setErrorMessage("No speech was detected in the video.");
        return;
    }
    setStatusText(transcribedText(count));
}

}  // namespace korvane
