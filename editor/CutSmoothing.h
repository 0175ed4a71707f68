// Short volume ramps that take the click out of every cut.
#pragma once

#include <optional>
#include <vector>

#include "platform/av/AudioMix.h"
#include "platform/time/MediaTime.h"

namespace korvane {

/// Fades the lead-in in, and dips to silence at each cut:
///
///     1 |  /----\  /---\  /--
///     0 |_/      \/     \/
///        0  P     c0     c1       each dip at most 0.02 s and half of its neighbour to each side
///
/// \param boundaries  output end time of each inserted word, rising; the last one is no cut.
/// \param total       output end of the whole timeline.
/// \return the same ramps for each of `trackIDs`, in their order; none when there is neither a cut nor a
/// lead-in.
std::optional<AudioMix> makeCutSmoothingMix(const std::vector<MediaTime>& boundaries,
                                            MediaTime prerollDuration, MediaTime total,
                                            const std::vector<int>& trackIDs);

}  // namespace korvane
