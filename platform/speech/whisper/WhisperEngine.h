// Recognises with a Whisper model that the person has installed, in a worker process.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/models/SpeechModelStore.h"
#include "platform/speech/OpenRecording.h"
#include "platform/speech/RecognitionWorkers.h"
#include "platform/speech/SpeechRecognizerRegistry.h"
#include "platform/speech/whisper/WhisperKeeper.h"

namespace korvane {

/// The model to recognise with, looked up anew each time; none when none is installed.
using FindWhisperModel = std::function<std::optional<InstalledSpeechModel>()>;

/// As the library names languages: "en" of "en-US"; empty for one that it doesn't know.
std::string whisperLanguage(const Locale& locale);

/// The worker of this installation, on the cores and with the memory of this machine.
WhisperSettings whisperSettingsHere();

/// One worker, kept with its model as long as it is used; recognitions take turns, recording by recording.
class WhisperEngine final : public SpeechEngine {
  public:
    WhisperEngine(FindWhisperModel model, WhisperSettings settings,
                  OpenRecording open = openMediaRecording());

    /// \return null when there is no model, no worker, or the language is unknown.
    std::unique_ptr<SpeechRecognizer> makeRecognizer(const Locale& locale) override;
    SpeechSupport support(const Locale& locale) const override;

    /// For measurements and tests.
    const WhisperKeeper& keeper() const { return keeper_; }

  private:
    const FindWhisperModel model_;
    const bool hasWorker_;
    const OpenRecording open_;
    WhisperKeeper keeper_;
    RecognitionWorkers workers_;
};

}  // namespace korvane
