// One recording on its way from file to words, through a worker.
#pragma once

#include <cstdint>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/ffmpeg/AudioDecoder.h"
#include "platform/locale/Locale.h"
#include "platform/speech/SpeechRecognizer.h"
#include "platform/speech/SpeechStretches.h"
#include "platform/speech/whisper/SpeechWindow.h"
#include "platform/speech/whisper/WhisperKeeper.h"

namespace korvane {

/// Lives on a worker thread, for one recording. Holds about a minute of sound, however long that is.
class WhisperTranscription {
  public:
    /// \param language  as the library names it.
    WhisperTranscription(WhisperKeeper::Loan& loan, Locale locale, std::string language,
                         std::stop_token stop);

    /// \throws MediaError, RecognitionError, CancellationError
    std::vector<RecognizedSegment> of(AudioDecoder& recording);

  private:
    void takeStretches();
    void take(VoicedPart part);
    void recognizeWindow();

    WhisperKeeper::Loan& loan_;
    const Locale locale_;
    const std::string language_;
    const std::stop_token stop_;
    SpeechStretches stretches_;
    SpeechWindow window_;
    std::int64_t lastEnd_ = 0;
    std::vector<RecognizedSegment> segments_;
};

}  // namespace korvane
