// Reads what a source file is made of.
#pragma once

#include <filesystem>
#include <memory>
#include <stop_token>
#include <vector>

#include "platform/geometry/Geometry.h"
#include "platform/time/MediaTime.h"

namespace korvane {

class KnownStreams;

struct StreamFacts {
    int index = 0;
    bool isVideo = false;  ///< else sound; other kinds and attached pictures are not listed
    bool decodable = false;
    TimeRange timeRange;  ///< on the file's time line

    Size naturalSize;             ///< pixel aspect applied to the width, before orientation
    AffineTransform orientation;  ///< in natural size units, moved so that the picture's corner is the origin
    double framesPerSecond = 0.0;

    int sampleRateHz = 0;
    int channels = 0;

    std::shared_ptr<const KnownStreams> known;  ///< for who decodes it; may be null
};

struct MediaFacts {
    std::vector<StreamFacts> streams;  ///< in the file's order
    MediaTime duration;                ///< end of the longest stream, never negative
};

enum class ProbeInterest { everything, sound };

/// With an interest in sound, pictures are listed with what the file's index says of them, which may be less;
/// that is quicker. Reads headers; reads every packet (without decoding) only where the headers don't know
/// how long the file is. \throws MediaError when the file can't be opened or understood, CancellationError.
MediaFacts probeMedia(const std::filesystem::path& path, std::stop_token stop = {},
                      ProbeInterest interest = ProbeInterest::everything);

}  // namespace korvane
