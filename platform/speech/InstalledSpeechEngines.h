// What this build can recognise speech with on this machine.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/speech/SpeechRecognizerRegistry.h"

namespace korvane {

/// What a person insists on.
struct SpeechChoice {
    std::optional<std::string> engine;  ///< "whisper" or "pocketsphinx"
    std::optional<std::string> model;   ///< of Whisper: an installed model's id, or a model file
};

/// Takes a sentence about what recognition does without, on whichever thread notices it.
using SpeechLog = std::function<void(const std::string&)>;

/// Made once, at the top of a program. Looks for models where the desktop's rules and the distribution put
/// them. A Whisper model serves what it can; PocketSphinx serves its languages where there is none. Never
/// null; without any engine it serves no locale and says what to install.
/// \param log  null: each sentence goes to standard error.
/// \throws RecognitionError for an engine that doesn't exist or takes no model, ModelError for a model that
///         isn't there or can't be used.
std::unique_ptr<SpeechRecognizerRegistry> makeInstalledSpeechEngines(const SpeechChoice& choice = {},
                                                                     const SpeechLog& log = {});

}  // namespace korvane
