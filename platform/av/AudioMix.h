// How loud each composition track is at each time: linear ramps, values held between them.
#pragma once

#include <vector>

#include "platform/time/MediaTime.h"

namespace korvane {

/// Volume goes linearly from `startVolume` at range.start to `endVolume` at range.end().
struct VolumeRamp {
    double startVolume = 1.0;
    double endVolume = 1.0;
    TimeRange range;
    friend bool operator==(const VolumeRamp&, const VolumeRamp&) = default;
};

struct AudioMixInputParameters {
    int trackID = 0;
    std::vector<VolumeRamp> ramps;  ///< by start, without overlap

    void setVolumeRamp(double startVolume, double endVolume, TimeRange range) {
        ramps.push_back({startVolume, endVolume, range});
    }
    friend bool operator==(const AudioMixInputParameters&, const AudioMixInputParameters&) = default;
};

struct AudioMix {
    std::vector<AudioMixInputParameters> inputParameters;
    friend bool operator==(const AudioMix&, const AudioMix&) = default;
};

}  // namespace korvane
