// The embedded default engine: recognises with the PocketSphinx library and whatever models are installed.
#pragma once

#include <memory>

#include "platform/speech/OpenRecording.h"
#include "platform/speech/RecognitionWorkers.h"
#include "platform/speech/SpeechRecognizerRegistry.h"
#include "platform/speech/pocketsphinx/PocketSphinxModel.h"

namespace korvane {

class PocketSphinxEngine final : public SpeechEngine {
  public:
    explicit PocketSphinxEngine(PocketSphinxModels models, OpenRecording open = openMediaRecording());

    /// \return null when there is no model for the locale.
    std::unique_ptr<SpeechRecognizer> makeRecognizer(const Locale& locale) override;
    SpeechSupport support(const Locale& locale) const override;

  private:
    PocketSphinxModels models_;
    OpenRecording open_;
    RecognitionWorkers workers_;
};

}  // namespace korvane
