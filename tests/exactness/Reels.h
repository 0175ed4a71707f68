// The reels whose exactness is tested: 300 words out of ten minutes, at each frame rate. Sources and reels
// are made once for each build of the test program and shared by all of its tests.
#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "model/SpeechSegment.h"
#include "tests/exactness/ReelModel.h"
#include "tests/fixtures/ClipSpec.h"
#include "tests/fixtures/InkMeter.h"

namespace korvane::exactness {

struct ReelCase {
    std::string name;
    fixtures::ClipSpec source;
    std::vector<SpeechSegment> words;
    int outputRate = 0;  ///< frames/s that the reel must have
    const fixtures::VideoSpec& video() const { return source.video.front(); }
    ReelModel model() const { return ReelModel(words); }
};

/// Names a case in a test's output.
inline void PrintTo(const ReelCase& reel, std::ostream* out) {
    *out << reel.name;
}

/// One case for each rate, in time order; and one whose words overlap and stand out of order.
const std::vector<ReelCase>& reelCases();

/// The written reel; the source and the reel are made on the first call.
std::filesystem::path reelOf(const ReelCase& reel);

/// What is to be seen in one frame of a reel.
struct FrameReading {
    std::int64_t pts = 0;  ///< in units of timeBase
    fixtures::Ratio timeBase;
    int number = -1;      ///< of the source frame; -1 when it can't be read
    double margin = 0.0;  ///< how clearly
    std::optional<fixtures::Ink> ink;
};
/// Every frame of the written reel. Decoding is done once for each reel and kept beside it.
std::vector<FrameReading> readingsOf(const ReelCase& reel);

/// Strokes that a line's text has; neighbouring lines differ.
int strokesOfLine(std::size_t line);

}  // namespace korvane::exactness
