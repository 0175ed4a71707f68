// One odd source: how it is made, and what a reel made from it must show and sound like.
#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tests/fixtures/ClipSpec.h"
#include "tests/fixtures/TestPattern.h"

namespace korvane::sources {

/// What the corners must look like.
enum class ColorCheck {
    exact,      ///< the corners' R'G'B' by BT.709, within the tolerance
    grey,       ///< no chroma, the corners' order of brightness
    plausible,  ///< each corner's own hue; white bright, black dark
};

struct SourceCase {
    std::string name;
    fixtures::ClipSpec clip;
    std::string fileName = "clip.mov";
    /// Changes the finished file.
    std::function<void(const std::filesystem::path&)> surgery = {};

    std::vector<std::pair<double, double>> words{{0.513, 0.913}, {1.31, 1.75}, {2.407, 2.8}};
    int outputRate = 30;  ///< 0: not checked
    /// Number of the source frame that is shown at a source time; none: not checked there. Empty: from the
    /// times that the file's packets have.
    std::function<std::optional<int>(double seconds)> frameAt = {};
    /// Seconds by which the sound of this file is heard later than the clip's description says.
    double soundDelaySeconds = 0.0;
    /// Source times from which on there is sound, and up to which.
    double soundFrom = 0.0;
    double soundTo = 1e9;
    double soundToleranceSamples = 1.5;
    int outputChannels = 1;
    ColorCheck colors = ColorCheck::exact;
    double colorTolerance = 8.0;
};

inline void PrintTo(const SourceCase& source, std::ostream* out) {
    *out << source.name;
}

/// A portrait clip of 4 s at 30 frames/s with mono AAC at 48 kHz.
SourceCase plainCase(std::string name);

std::vector<SourceCase> pictureCases();
std::vector<SourceCase> codecCases();
std::vector<SourceCase> timeCases();
std::vector<SourceCase> soundCases();

}  // namespace korvane::sources
