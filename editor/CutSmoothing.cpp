#include "editor/CutSmoothing.h"

#include <algorithm>
#include <cstddef>

namespace korvane {
namespace {

constexpr double kLongestRampSeconds = 0.02;
constexpr std::int32_t kRampTimescale = 44100;

MediaTime half(MediaTime time) {
    return multipliedByRatio(time, 1, 2);
}

void addCutRamps(AudioMixInputParameters& parameters, const std::vector<MediaTime>& cuts,
                 MediaTime prerollDuration, MediaTime total) {
    const MediaTime longest = MediaTime::fromSeconds(kLongestRampSeconds, kRampTimescale);
    for (std::size_t i = 0; i < cuts.size(); ++i) {
        const MediaTime cut = cuts[i];
        const MediaTime previous = i == 0 ? prerollDuration : cuts[i - 1];
        const MediaTime next = i + 1 < cuts.size() ? cuts[i + 1] : total;
        // Half of each neighbour leaves the other half to the ramp of the cut at its far end.
        const MediaTime ramp = std::min(longest, std::min(half(cut - previous), half(next - cut)));
        if (ramp <= kZeroTime)
            continue;
        if (cut - ramp >= kZeroTime)
            parameters.setVolumeRamp(1.0, 0.0, {cut - ramp, ramp});
        if (cut + ramp <= total)
            parameters.setVolumeRamp(0.0, 1.0, {cut, ramp});
    }
}

}  // namespace

std::optional<AudioMix> makeCutSmoothingMix(const std::vector<MediaTime>& boundaries,
                                            MediaTime prerollDuration, MediaTime total,
                                            const std::vector<int>& trackIDs) {
    std::vector<MediaTime> cuts = boundaries;
    if (!cuts.empty())
        cuts.pop_back();
    const bool hasPreroll = prerollDuration > kZeroTime;
    if (cuts.empty() && !hasPreroll)
        return std::nullopt;

    AudioMixInputParameters parameters;
    if (hasPreroll)
        parameters.setVolumeRamp(0.0, 1.0, {kZeroTime, prerollDuration});
    addCutRamps(parameters, cuts, prerollDuration, total);

    AudioMix mix;
    for (const int trackID : trackIDs) {
        parameters.trackID = trackID;
        mix.inputParameters.push_back(parameters);
    }
    return mix;
}

}  // namespace korvane
