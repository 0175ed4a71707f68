// The one timeline that leaves the editor: to the player and to the encoder.
//
//   output  |--P--|---word 0---|--word 1--|-----word 3-----|      (word 2 had no length)
//   source  [s0-P,s0)[s0, e0)   [s1, e1)   [s3, e3)
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "editor/SubtitleEntry.h"
#include "platform/av/AudioMix.h"
#include "platform/av/Composition.h"
#include "platform/av/VideoComposition.h"
#include "platform/time/MediaTime.h"

namespace korvane {

struct CompositionData {
    /// One video track, then one audio track for each source audio track.
    std::shared_ptr<const Composition> composition;
    VideoComposition videoComposition;
    /// One for each inserted word, back to back in output time from the pre-roll's end on.
    std::vector<SubtitleEntry> subtitleEntries;
    /// None without sound, and when there is nothing to soften.
    std::optional<AudioMix> audioMix;
    /// Length of the lead-in P; zero when there is none.
    MediaTime prerollDuration;
};

}  // namespace korvane
