// Moves the edges of recognised words from where a recogniser's frames put them to where they are heard.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/speech/SpeechStretches.h"

namespace korvane {

/// A word at samples [begin, end) of the recording.
struct TimedWord {
    std::string text;
    std::int64_t begin = 0;
    std::int64_t end = 0;
    friend bool operator==(const TimedWord&, const TimedWord&) = default;
};

/// Pure. Recognisers look at windows that begin before the sound does, so all edges come 8 ms early and are
/// moved by as much. An edge with at least 80 ms to its neighbour is then moved to the first or last moment
/// that is louder than the background + 6 dB and than the word's loudest moment - 38 dB, at most 60 ms
/// outwards and 160 ms inwards. (Edges inside connected speech stay: the quietest moment near by is more
/// often inside a word than between two.)
/// \param words     in order, from one stretch; their edges within it.
/// \param stretch   where the sound is.
/// \param notBefore the end of the last word before the stretch.
/// \return the same words, none empty, none overlapping, all at or after `notBefore` and within the stretch;
///         a word for which that leaves no room is missing.
std::vector<TimedWord> refineWordTimes(std::vector<TimedWord> words, const SpeechStretch& stretch, int rateHz,
                                       std::int64_t notBefore);

/// Start and length in seconds, such that start + length is never past the end sample's time in doubles.
struct WordSeconds {
    double start = 0.0;
    double duration = 0.0;
    static WordSeconds of(const TimedWord& word, int rateHz);
};

}  // namespace korvane
