// One subtitle on the output time line.
#pragma once

#include <string>

namespace korvane {

/// Shown in [start, end), seconds of composition time, pre-roll included.
struct SubtitleEntry {
    double start = 0.0;
    double end = 0.0;
    std::string text;
    friend bool operator==(const SubtitleEntry&, const SubtitleEntry&) = default;
};

}  // namespace korvane
