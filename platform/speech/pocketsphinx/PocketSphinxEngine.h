// The embedded default engine: recognises with the PocketSphinx library and whatever models are installed.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>

#include "platform/ffmpeg/AudioDecoder.h"
#include "platform/speech/RecognitionWorkers.h"
#include "platform/speech/SpeechRecognizerRegistry.h"
#include "platform/speech/pocketsphinx/PocketSphinxModel.h"

namespace korvane {

/// Opens a recording as mono at a rate. \throws MediaError when it can't be read.
using OpenRecording = std::function<std::unique_ptr<AudioDecoder>(const std::filesystem::path& path,
                                                                  int rateHz, std::stop_token stop)>;

/// Opens the first audio stream of any file that the media libraries read.
OpenRecording openMediaRecording();

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
