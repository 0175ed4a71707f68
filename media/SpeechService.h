// The service that asks for permission and turns an audio file into words. It keeps nothing between calls,
// so any number of calls may run at once on any threads; what it is given must outlive it.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

#include "media/SpeechError.h"
#include "media/TickClock.h"
#include "model/SpeechSegment.h"
#include "platform/locale/Locale.h"
#include "platform/speech/SpeechAuthorization.h"
#include "platform/speech/SpeechRecognizerRegistry.h"
#include "platform/tasks/MainQueue.h"

namespace korvane {

class SpeechService {
  public:
    SpeechService(MainQueue& mainQueue, SpeechAuthorization& authorization,
                  SpeechRecognizerRegistry& recognizers,
                  std::shared_ptr<TickClock> clock = std::make_shared<SteadyTickClock>());
    virtual ~SpeechService() = default;

    /// Returns when recognition is authorised. Blocks while the question is open.
    /// \throws SpeechError permissionDenied or permissionRestricted, CancellationError when stopped first.
    virtual void requestPermission(std::stop_token stop);

    /// Recognises the words of `audioURL`, one segment each, just as the recogniser gave them, on the
    /// recording's own time line. No words are no error. Blocks.
    /// \param audioDuration  seconds; how long recognition takes is guessed from it.
    /// \param onProgress  0 to 1, never falling, through the main queue. Recognisers tell nothing, so it
    /// follows a curve over time that stops at 0.95 until the words are there; the last one on success is
    /// 1.0 and may come after the return.
    /// \throws SpeechError recognizerUnavailable before anything is started, or the recogniser's own error:
    /// MediaError, RecognitionError, or CancellationError once `stop` is requested.
    virtual std::vector<SpeechSegment> transcribe(const std::filesystem::path& audioURL, double audioDuration,
                                                  const Locale& locale,
                                                  std::function<void(double)> onProgress,
                                                  std::stop_token stop);

  private:
    MainQueue& mainQueue_;
    SpeechAuthorization& authorization_;
    SpeechRecognizerRegistry& recognizers_;
    std::shared_ptr<TickClock> clock_;
};

/// How far a recognition of so many seconds of sound is believed to be after `elapsed` seconds: from 0
/// towards 0.95, about 0.78 when 1.2 times the length of the sound (5 s at least) has passed.
double estimatedRecognitionProgress(double elapsedSeconds, double audioDuration);

}  // namespace korvane
