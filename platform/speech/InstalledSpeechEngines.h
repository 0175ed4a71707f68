// What this build can recognise speech with on this machine.
#pragma once

#include <memory>

#include "platform/speech/SpeechRecognizerRegistry.h"

namespace korvane {

/// Made once, at the top of a program. Looks for models where the desktop's rules and the distribution put
/// them. Never null; without any engine it serves no locale and says what to install.
std::unique_ptr<SpeechRecognizerRegistry> makeInstalledSpeechEngines();

}  // namespace korvane
