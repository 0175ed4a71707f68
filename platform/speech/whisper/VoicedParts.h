// What is left of a stretch of sound where a model has told voices from other sounds. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/speech/SpeechStretches.h"

namespace korvane {

/// A piece for the recogniser. Where it was cut off music or noise, the first or last word can't be looked
/// for by its loudness: it begins or ends where the voice does.
struct VoicedPart {
    SpeechStretch stretch;
    std::optional<std::int64_t> voiceBegin = {};  ///< sample of the recording, where it was cut
    std::optional<std::int64_t> voiceEnd = {};
};

/// The parts of a stretch with voices, in order: all of it when the voices fill it but for short times, none
/// when there are none. What is left keeps its edges, to the sample, unless it was cut there.
/// \param chances  that somebody speaks, 0 to 1, for each frame of whisper::voiceFrame samples from the
///                 stretch's first on; the last frame may be longer than what is left.
std::vector<VoicedPart> voicedParts(const SpeechStretch& stretch, const std::vector<double>& chances);

}  // namespace korvane
