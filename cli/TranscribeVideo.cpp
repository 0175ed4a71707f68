#include "cli/TranscribeVideo.h"

#include <system_error>

#include "cli/Failure.h"
#include "media/SpeechError.h"
#include "media/SpeechService.h"
#include "media/VideoProcessor.h"
#include "platform/speech/SystemSpeechAuthorization.h"

namespace korvane::cli {
namespace {

/// Deletes the file at its end.
class TemporaryFile {
  public:
    explicit TemporaryFile(std::filesystem::path path) : path_(std::move(path)) {}
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

std::function<void(double)> progressOf(Phase phase, const CommandContext& context) {
    return [&console = context.console, phase](double fraction) { console.showProgress(phase, fraction); };
}

void requireRecognizer(const Locale& locale, const CommandContext& context) {
    const auto support = context.recognizers.support(locale);
    if (!support.installed)
        throw Failure(SpeechError::recognizerUnavailable(locale).what(), support.description);
}

}  // namespace

Transcript transcribeVideo(const std::filesystem::path& video, const std::string& language,
                           const CommandContext& context, const std::stop_token& stop) {
    const Locale locale{language};
    SystemSpeechAuthorization authorization;
    SpeechService speech(context.queue, authorization, context.recognizers);
    speech.requestPermission(stop);
    requireRecognizer(locale, context);

    context.queue.post([&console = context.console] {
        console.beginOperation();
        console.showProgress(Phase::extractingAudio, 0.0);
    });
    const auto audio =
        VideoProcessor(context.queue).extractAudio(video, progressOf(Phase::extractingAudio, context), stop);
    const TemporaryFile temporary(audio.url);
    auto words = speech.transcribe(temporary.path(), audio.duration, locale,
                                   progressOf(Phase::transcribing, context), stop);
    if (words.empty())
        throw Failure("No speech was detected in the video.");
    return {language, audio.duration, std::move(words)};
}

}  // namespace korvane::cli
