// The words of one video with what is known about them, as the command line reads and writes them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/SpeechSegment.h"

namespace korvane::cli {

struct Transcript {
    std::string language;                   ///< BCP-47 identifier; empty when unknown
    std::optional<double> durationSeconds;  ///< of the source video; none when unknown
    std::vector<SpeechSegment> words;
};

}  // namespace korvane::cli
