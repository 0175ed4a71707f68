// From what Whisper heard in a window to words of the recording. Pure.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/locale/Locale.h"
#include "platform/speech/WordTimes.h"
#include "platform/speech/whisper/SpeechWindow.h"
#include "platform/speech/whisper/WhisperHeard.h"

namespace korvane {

/// Words of one piece of the window, in order; their edges within its stretch of the recording.
struct PieceWords {
    std::size_t piece = 0;
    std::vector<TimedWord> words;
};

/// The alignment says where tokens *end*: a word begins where the token before it ends, and the first word of
/// all has no beginning. So the first and last word of a piece begin and end where its voice does, unless
/// that is so far away that something else must have been heard there, or a cut in mid-speech.
///
/// Segments that the model itself takes for silence, and those that lie where nobody speaks, are dropped:
/// text that was made up.
std::vector<PieceWords> wordsOfWindow(const std::vector<WhisperSegment>& segments, const SpeechWindow& window,
                                      const Locale& locale);

}  // namespace korvane
