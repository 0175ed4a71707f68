// data/speech-models.json as it was when the program was built.
#pragma once

#include <string_view>

namespace korvane {

extern const std::string_view builtInSpeechModels;

}  // namespace korvane
